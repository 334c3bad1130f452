#pragma once

#include "exchange/Delimiter.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// A line of a data file, split as the import splits it, long cells cut. The last column of a "CSV Quotes"
/// line keeps its quotes, as it does there.
struct PreviewLine {
    std::int64_t Number = 0; ///< in the file, from 1
    std::vector<std::string> Cells;
};

/// The columns of a data file around the line at which its data starts.
struct PreviewColumns {
    std::size_t Count = 0;          ///< as the import counts them; 0 when the file ends before that line
    std::vector<PreviewLine> Above; ///< the line above it, if there is one: mostly the headings
    std::vector<PreviewLine> Data;  ///< that line and the next ones that are not empty, three at most

    /// The data starts at line 1, but this line looks like the headings of what stands below.
    bool StartsWithHeadings = false;
};

/// The beginning of a text file from an accounting system, for an operator who maps its columns. The
/// file is read anew for each look; it may be as long as it likes.
class ImportPreview {
public:
    ImportPreview() = default;

    /// RunTimeFailure as TextReader.
    explicit ImportPreview(std::string_view path);

    /// The first lines, up to MaxLines, in code page 1252. Very long ones are cut.
    const std::vector<std::string>& Lines() const { return lines_; }

    /// The file has more lines.
    bool HasMore() const { return hasMore_; }

    /// RunTimeFailure as TextReader.
    PreviewColumns Columns(Delimiter delimiter, std::int32_t startLine) const;

    static constexpr std::size_t MaxLines = 500;

private:
    std::string path_;
    bool utf8_ = false;
    bool hasMore_ = false;
    std::vector<std::string> lines_;
};

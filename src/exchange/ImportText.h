#pragma once

#include "core/TextFile.h"
#include "exchange/Delimiter.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// What one pass over a text file from an accounting system tells of it.
struct ImportSurvey {
    std::int32_t LineCount = 0; ///< lines that are not empty
    bool Utf8 = false;          ///< begins with the mark of UTF-8, or is valid UTF-8 with bytes above 127
};

/// Reads the file once, in blocks. RunTimeFailure as TextReader.
ImportSurvey SurveyImportFile(std::string_view path);

/// The number of non-empty lines. RunTimeFailure as TextReader.
std::int32_t CountLines(std::string_view path);

/// Reads the lines of a text file from an accounting system as code page 1252.
class ImportReader {
public:
    /// `utf8` as SurveyImportFile found it. RunTimeFailure as TextReader.
    ImportReader(std::string_view path, bool utf8);

    /// The next line without its end and without a mark of UTF-8; false at the end of the file.
    /// RunTimeFailure 6 for a line longer than TextReader::MaxLine, of which `line` then holds the
    /// beginning in the same form, and which is passed: the next call goes on behind it. Otherwise as
    /// TextReader; the next call then opens the file anew and tries the same line again.
    bool ReadLine(std::string& line);

    /// The number, from 1, of the line that was read last, also of one that could not be handed on.
    std::int64_t LineNumber() const { return passed_ + (broken_ ? 1 : 0); }

    /// True once a first line with the mark of UTF-8 has been read.
    bool HasMark() const { return hasMark_; }

private:
    bool TakeLine(std::string& line);
    void Reopen();

    std::string path_;
    std::optional<TextReader> file_;
    bool utf8_;
    bool hasMark_ = false;
    bool tooLong_ = false;  ///< the line that was taken last
    std::string beginning_; ///< of that line, when it was
    bool broken_ = false;   ///< a read has failed, and what the reader holds is not to be used
    std::int64_t passed_ = 0;
};

/// The next line, or the beginning of one that is too long; false at the end of the file.
/// RunTimeFailure as ImportReader::ReadLine, but never 6.
bool ReadOrPass(ImportReader& file, std::string& line);

/// The number of columns of a line, its separators simply counted: one inside quotes counts too.
std::size_t CountColumns(std::string_view line, Delimiter delimiter);

/// The delimiter of a file by its first line that shows one: CSV Quotes for a double quote directly
/// followed by a comma, else CSV for a comma, else TAB for a tab character. Nothing when no line
/// shows any. RunTimeFailure as TextReader.
std::optional<Delimiter> RecogniseDelimiter(std::string_view path);

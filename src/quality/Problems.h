#pragma once

#include "core/Text.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Fatal blocks a download, Warn does not.
enum class Severity { Fatal, Warn };

/// "Fatal" or "Warn".
Text SeverityText(Severity severity);
std::string_view SeverityName(Severity severity);

/// One row of the report: what a test has found, in which records or templates, and what is to be
/// done about it.
struct ProblemRow {
    ::Severity Severity = Severity::Warn;
    Text Group; ///< as "Handheld: Basic Setup: Customers"
    Text Problem;
    Text Issue; ///< a sentence; below it, for what has a list, a label and the list
    Text Correction;

    /// Where the fault lies: the full path of a table, or one of the words of TemplateTarget.
    std::string Target;
    std::string List;               ///< record numbers or names of templates (code page 1252), parted by ", "
    std::string Field;              ///< the field that the row is about; empty for a template
    std::vector<std::string> Files; ///< full paths of the files that decide it, where it is about templates

    bool operator==(const ProblemRow&) const = default;
};

/// The words by which a row says what kind of template it is about.
namespace TemplateTarget {
inline constexpr std::string_view Download = "Download";
inline constexpr std::string_view Upload = "Upload";
inline constexpr std::string_view Import = "Import";
inline constexpr std::string_view Export = "Export";
inline constexpr std::string_view QuickButtons = "QuickButtons";
inline constexpr std::string_view Unattended = "Unattended";
} // namespace TemplateTarget

/// Whether it is one of these, letter by letter.
bool IsTemplateTarget(std::string_view target);

/// What stands between the entries of a list.
inline constexpr std::string_view ListSeparator = ", ";

/// The problems that the checks of one run have found, in the order in which they found them.
class ProblemList {
public:
    /// Adds a row; a Fatal one sets Global.QCFatalFound.
    void Add(ProblemRow row);

    bool ProblemFound() const { return !rows_.empty(); }
    std::size_t ProblemRows() const { return rows_.size(); }
    const ProblemRow& Row(std::size_t index) const { return rows_.at(index); } ///< from 0
    const std::vector<ProblemRow>& Rows() const { return rows_; }

    /// Rows of a severity behind the first `from` ones.
    std::int32_t Count(Severity severity, std::size_t from = 0) const;

private:
    std::vector<ProblemRow> rows_;
};

#include "quality/ReportCsv.h"

#include "core/Messages.h"
#include "core/SafeFile.h"

namespace {

std::string Quoted(const Text& cell) {
    std::string quoted = "\"";
    for (const char c : cell.Utf8()) {
        if (c == '"') quoted += '"';
        quoted += c;
    }
    return quoted + '"';
}

std::string Line(const std::vector<Text>& cells) {
    std::string line;
    for (const Text& cell : cells) {
        if (!line.empty()) line += ',';
        line += Quoted(cell);
    }
    return line;
}

} // namespace

std::vector<Text> ReportHeadings() {
    return {msg::ColumnSeverity, msg::ColumnGroup, msg::ColumnProblem, msg::ColumnIssue,
            msg::ColumnCorrection};
}

void SaveReport(std::string_view path, const std::vector<ProblemRow>& rows) {
    SafeFile file(path);
    file.Write("\xEF\xBB\xBF");
    file.WriteLine(Line(ReportHeadings()));
    for (const ProblemRow& row : rows)
        file.WriteLine(Line({SeverityText(row.Severity), row.Group, row.Problem, row.Issue, row.Correction}));
    file.Commit();
}

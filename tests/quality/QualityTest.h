#pragma once

#include "quality/Checks.h"
#include "support/EngineTest.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

/// What stands in an office that is checked. What is not told is there and empty.
struct QualityOffice {
    using Record = std::vector<std::pair<std::string, std::string>>; ///< field and text
    std::map<std::string, std::vector<Record>> Tables = {};          ///< by name, as "ZUKCUST"
    std::map<std::string, std::string> Files = {};                   ///< by path in the application directory
    std::vector<std::string> HotSyncUsers = {};
};

// Records with the fields that the checks look at.
QualityOffice::Record Customer(const std::string& search, const std::string& code,
                               const std::string& taxCode = {});
QualityOffice::Record Item(const std::string& search, const std::string& code, const std::string& price,
                           const std::string& barcode = {});

/// A row of the report, all eight columns of it, in UTF-8. The target of a table is its file's name.
struct ReportRow {
    std::string Severity, Group, Problem, Issue, Correction, Target, List, Field;

    bool operator==(const ReportRow&) const = default;
};
void PrintTo(const ReportRow& row, std::ostream* out);

/// An office whose tables and templates are checked.
class QualityTest : public EngineTest {
protected:
    QualityTest();

    void Given(const QualityOffice& office);
    void GivenTemplate(const std::string& pathInTemplates, std::string_view content) {
        GivenFile("app/Templates/" + pathInTemplates, content);
    }

    /// The rows that a check adds.
    std::vector<ReportRow> Checked(Check check);
    /// Their lists alone, in their order: what tests of one rule look at.
    std::vector<std::string> Lists(Check check);
    /// The list of the row with a problem about a field, empty when there is no such row.
    std::string ListOf(Check check, const std::string& problem, const std::string& field);

    /// As the report holds it.
    static std::vector<ReportRow> RowsOf(const ProblemList& problems);
    /// The rows as a check adds them.
    ProblemList ProblemsOf(Check check);

private:
    std::vector<std::string> users_;
};

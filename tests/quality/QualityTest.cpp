#include "quality/QualityTest.h"

#include "core/Paths.h"
#include "core/Progress.h"
#include "support/Tables.h"

#include <ostream>

QualityOffice::Record Customer(const std::string& search, const std::string& code,
                               const std::string& taxCode) {
    return {{"C_SEARCH", search}, {"C_CODE", code}, {"C_STCODE", taxCode}};
}

QualityOffice::Record Item(const std::string& search, const std::string& code, const std::string& price,
                           const std::string& barcode) {
    return {{"I_SEARCH", search}, {"I_ITEMCODE", code}, {"I_PRICE", price}, {"I_BARCODE", barcode}};
}

void PrintTo(const ReportRow& row, std::ostream* out) {
    *out << row.Severity << " | " << row.Group << " | " << row.Problem << " | " << row.Issue << " | "
         << row.Correction << " | " << row.Target << " | " << row.List << " | " << row.Field << "\n";
}

QualityTest::QualityTest() {
    GivenAppDirectory();
    const auto make = [](std::string& path, const char* folder) {
        path = Global.TemplatesPath + folder;
        MakePath(path);
    };
    make(Global.DownloadTemplates, "Download/");
    make(Global.UploadTemplates, "Upload/");
    make(Global.ClearPCTemplates, "ClearPC/");
    make(Global.UnattendedTemplates, "UnattendedHotsync/");
    Given({});
}

void QualityTest::Given(const QualityOffice& office) {
    for (const std::string name : {"ZUKCUST", "ZUKITEM", "ZUKBARIN", "ZUKSTAX", "ZUKPAY", "ZUKLINK"}) {
        std::vector<std::vector<std::string>> rows;
        if (const auto table = office.Tables.find(name); table != office.Tables.end()) {
            for (const auto& record : table->second) rows.push_back(RowOf(name, record));
        }
        GivenTable(Global.DBFPath, name, rows);
    }
    for (const auto& [path, content] : office.Files) GivenFile("app/" + path, content);
    users_ = office.HotSyncUsers;
}

ProblemList QualityTest::ProblemsOf(Check check) {
    NoProgress silent;
    ProblemList problems;
    RunCheck(check, {silent, [this] { return users_; }}, problems);
    return problems;
}

std::vector<ReportRow> QualityTest::RowsOf(const ProblemList& problems) {
    std::vector<ReportRow> rows;
    for (const ProblemRow& row : problems.Rows()) {
        std::string target = row.Target;
        if (target.starts_with(Global.DBFPath)) target = target.substr(Global.DBFPath.size());
        rows.push_back({SeverityText(row.Severity).Utf8(), row.Group.Utf8(), row.Problem.Utf8(),
                        row.Issue.Utf8(), row.Correction.Utf8(), target, row.List, row.Field});
    }
    return rows;
}

std::vector<ReportRow> QualityTest::Checked(Check check) {
    return RowsOf(ProblemsOf(check));
}

std::vector<std::string> QualityTest::Lists(Check check) {
    std::vector<std::string> lists;
    for (const ReportRow& row : Checked(check)) lists.push_back(row.List);
    return lists;
}

std::string QualityTest::ListOf(Check check, const std::string& problem, const std::string& field) {
    for (const ReportRow& row : Checked(check)) {
        if (row.Problem == problem && row.Field == field) return row.List;
    }
    return {};
}

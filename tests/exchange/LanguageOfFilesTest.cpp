#include "core/Messages.h"
#include "exchange/Activity.h"
#include "exchange/ExportTemplate.h"
#include "exchange/ImportMapping.h"
#include "exchange/ImportTemplate.h"
#include "quality/CheckResults.h"
#include "support/EngineTest.h"
#include "support/ForeignTexts.h"
#include "sync/TableTemplates.h"
#include "sync/UnattendedSettings.h"

#include <algorithm>

namespace {

// The files that an office saves are the same bytes whatever the language of its texts.

Activity TwoSettings() {
    Activity activity;
    activity.Rows[0].Template = "Morning.cst";
    return activity;
}

ImportTemplate OneOfImports() {
    return {"items.txt", Delimiter::Tab, "2", {"I_ITEMCODE", "Ignore", "I_DESC1; I_DESC2"}, {"I_UM = EA"}};
}

ExportTemplate OneOfExports() {
    ExportTemplate content;
    content.FileName = "orders.csv";
    content.SortOrders = content.AddHeadings = true;
    content.Columns = {"H_ORDCODE", "H_ORDDATE Format: yyyy", "Literal = None", "L_QTY * L_PRICE"};
    return content;
}

ClearPlan SomeTables() {
    ClearPlan plan;
    for (std::size_t group = 0; group < ClearGroups; group += 2) plan.Chosen[group] = true;
    return plan;
}

CheckResults OneResult() {
    CheckResults results;
    results.Set(Check::Upload, {DateTime{2026, 11, 22, 9, 30, 0}, 1, 2});
    return results;
}

/// Reads what another choice would change, so that a line that is not taken is seen.
template <typename Choice>
bool IsReadAs(const std::string& path, const Choice& written, Choice read) {
    ReadTemplate(path, read);
    return read == written;
}

struct Kind {
    const char* Name;
    void (*Write)(const std::string& path);
    bool (*IsRead)(const std::string& path); ///< as it was written
};

const Kind Kinds[] = {
    {"Upload",
     [](const std::string& path) {
         WriteTemplate(path, UploadChoice{true, false, true, false, true, false});
     },
     [](const std::string& path) {
         return IsReadAs<UploadChoice>(path, {true, false, true, false, true, false},
                                       {false, true, false, true, false, true});
     }},
    {"Download",
     [](const std::string& path) {
         WriteTemplate(path, DownloadChoice{true, false, true});
     },
     [](const std::string& path) {
         return IsReadAs<DownloadChoice>(path, {true, false, true}, {false, true, false});
     }},
    {"ClearHandheld",
     [](const std::string& path) {
         WriteTemplate(path, ClearChoice{true, false, true});
     },
     [](const std::string& path) {
         return IsReadAs<ClearChoice>(path, {true, false, true}, {false, true, false});
     }},
    {"ClearPC", [](const std::string& path) { WriteTemplate(path, SomeTables()); },
     [](const std::string& path) {
         ClearPlan others = SomeTables();
         for (auto& chosen : others.Chosen) chosen = !chosen;
         return IsReadAs(path, SomeTables(), others);
     }},
    {"Unattended",
     [](const std::string& path) {
         SaveUA(path, {true, "Prices", false, "", true, "Old"});
     },
     [](const std::string& path) {
         return ReadUnattendedSettings(path) == UnattendedSettings{true, "Prices", false, "", true, "Old"};
     }},
    {"Activity", [](const std::string& path) { WriteActivity(path, TwoSettings()); },
     [](const std::string& path) {
         const Activity read = ReadActivity(path);
         return read.Rows[0].Template == "Morning.cst" && read.Rows[1].Template.empty();
     }},
    {"Import", [](const std::string& path) { WriteImportTemplate(path, OneOfImports()); },
     [](const std::string& path) {
         const ImportTemplate read = ReadImportTemplate(path).Template;
         return read.Fields == OneOfImports().Fields && read.Literals == OneOfImports().Literals &&
                read.Delimiter == Delimiter::Tab && read.StartLine == "2";
     }},
    {"Export", [](const std::string& path) { WriteExportTemplate(path, OneOfExports()); },
     [](const std::string& path) {
         const ExportTemplate read = ReadExportTemplate(path).Template;
         return read.Columns == OneOfExports().Columns && read.SortOrders && read.AddHeadings &&
                !read.AddBlankLine && !read.QualityCheck;
     }},
    {"CheckResults", [](const std::string& path) { OneResult().Write(path); },
     [](const std::string& path) {
         return CheckResults::Read(path).Of(Check::Upload) == OneResult().Of(Check::Upload);
     }},
};

class LanguageOfFiles : public EngineTest {
protected:
    std::string Path(const Kind& kind) const { return Folder() + kind.Name; }
};

TEST_F(LanguageOfFiles, WhatIsSavedInAnotherLanguageIsWhatIsSavedInEnglish) {
    for (const Kind& kind : Kinds) {
        kind.Write(Path(kind));
        const std::string english = Bytes(Path(kind));
        UseForeignTexts();
        kind.Write(Path(kind));
        UseEnglishTexts();
        EXPECT_EQ(Bytes(Path(kind)), english) << kind.Name;
    }
}

TEST_F(LanguageOfFiles, WhatIsSavedInOneLanguageIsReadInTheOther) {
    for (const Kind& kind : Kinds) {
        kind.Write(Path(kind));
        UseForeignTexts();
        EXPECT_TRUE(kind.IsRead(Path(kind))) << kind.Name;
        kind.Write(Path(kind));
        UseEnglishTexts();
        EXPECT_TRUE(kind.IsRead(Path(kind))) << kind.Name;
    }
}

TEST_F(LanguageOfFiles, ASelectionThatHoldsTheNamesOfTheLanguageIsReadToo) {
    UseForeignTexts();
    const std::string upload = GivenFile("x.ust", ForeignText(msg::UploadOrders) + "=1\r\n" +
                                                      ForeignText(msg::TablesItems) + "=1\r\n");
    const std::string clear = GivenFile("x.pct", ForeignText(msg::TablesHelp) + "1\r\n");

    EXPECT_TRUE(IsReadAs<UploadChoice>(upload, {.Orders = true, .Items = true}, {}));
    ClearPlan help;
    help.Choose(ClearGroup::Help);
    EXPECT_TRUE(IsReadAs(clear, help, {}));
}

TEST_F(LanguageOfFiles, AnIgnoredColumnAndNoTemplateAreReadInTheLanguageToo) {
    UseForeignTexts();
    const std::string import =
        GivenFile("x.itm", "items.txt\r\nCSV\r\n[FIELDS]\r\n" + ForeignText(msg::IgnoreField) + "\r\n");
    const std::string label = "Saved Setting 1:    ";
    const std::string activity =
        GivenFile("x.ipm", label + ForeignText(msg::None) + ";\r\n" + label + "None;\r\n");

    EXPECT_EQ(ReadImportTemplate(import).Template.Fields, std::vector<std::string>{std::string(IgnoreRow)});
    for (const ActivityRow& row : ReadActivity(activity).Rows) EXPECT_EQ(row.Template, "");
}

TEST_F(LanguageOfFiles, TheWordForAnIgnoredColumnIsThatOfTheCatalogue) {
    EXPECT_EQ(KeyOf(msg::IgnoreField), IgnoreRow);
}

} // namespace

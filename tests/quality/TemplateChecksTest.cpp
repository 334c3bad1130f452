#include "quality/QualityTest.h"

#include "support/RefusingDisk.h"
#include "support/Rubbish.h"

#include <array>
#include <filesystem>

namespace {

using Texts = std::vector<std::string>;

constexpr const char* NoDownload = "Order Tables=0\r\nAudit Tables=0\r\nHandheld Totals=0\r\n";

class TemplateChecksTest : public QualityTest {
protected:
    /// Whether a template is reported by the check of its kind.
    bool IsReported(Check check, const std::string& path, std::string_view content) {
        GivenTemplate(path, content);
        const bool found = !Checked(check).empty();
        std::filesystem::remove(Global.TemplatesPath + path);
        return found;
    }

    std::string Issue(Check check) {
        const auto rows = Checked(check);
        return rows.empty() ? std::string() : rows.front().Issue;
    }

    /// The lists of the three rows, empty for one that is not there.
    struct UAFound {
        std::string Idle, Nameless, Gone;
        bool operator==(const UAFound&) const = default;
    };
    UAFound UA(std::string_view content) {
        GivenTemplate("UnattendedHotsync/S.uhs", content);
        return {ListOf(Check::Unattended, "No action specified", ""),
                ListOf(Check::Unattended, "No templates specified", ""),
                ListOf(Check::Unattended, "Template does not exist", "")};
    }

    struct QBFound {
        std::string Blank, Gone;
        bool operator==(const QBFound&) const = default;
    };
    QBFound QB(const std::string& file, std::string_view content) {
        GivenTemplate("QuickButtons/" + file, content);
        const QBFound found{ListOf(Check::QuickButtons, "Blank Quick Button saved settings", ""),
                            ListOf(Check::QuickButtons, "Template does not exist", "")};
        std::filesystem::remove(Global.QuickButtonTemplates + file);
        return found;
    }
};

constexpr std::array TemplateChecks = {Check::Download, Check::Upload,       Check::Import,
                                       Check::Export,   Check::QuickButtons, Check::Unattended};

TEST_F(TemplateChecksTest, WithoutTemplatesThereIsNoRow) {
    for (const Check check : TemplateChecks) EXPECT_EQ(Checked(check), std::vector<ReportRow>{});
}

TEST_F(TemplateChecksTest, WithoutTheFoldersOfTemplatesThereIsNoRow) {
    std::filesystem::remove_all(Global.TemplatesPath);

    for (const Check check : TemplateChecks) EXPECT_EQ(Checked(check), std::vector<ReportRow>{});
}

TEST_F(TemplateChecksTest, NoTemplateIsFatal) {
    for (const char* name :
         {"Download/a.dct", "Download/b.dst", "Upload/c.ust", "Import/d.cst", "Import/e.itm", "Export/f.xor",
          "QuickButtons/g.ipm", "QuickButtons/h.xpm", "QuickButtons/i.ctm", "UnattendedHotsync/j.uhs"}) {
        GivenTemplate(name, "");
    }

    Texts lists;
    for (const Check check : TemplateChecks) {
        for (const std::string& list : Lists(check)) lists.push_back(list);
    }

    EXPECT_EQ(lists,
              (Texts{"a.dct, b.dst", "c.ust", "d.cst, e.itm", "f.xor", "g.ipm, h.xpm, i.ctm", "j.uhs"}));
    EXPECT_FALSE(Global.QCFatalFound);
}

// ---- downloads and uploads ----

struct Selection {
    const char* File;
    const char* Content;
    bool IsBlank;
};

const Selection Selections[] = {
    {"Download/x.dct", NoDownload, true},
    {"Download/x.dct", "Order Tables=1\r\nAudit Tables=0\r\n", false},
    {"Download/x.dct", "Order Tables=0\r\nAudit Tables=1\r\n", false},
    {"Download/x.dct", "Handheld Totals=1", false},
    {"Download/x.dct", "ORDER tables=1\n", false},
    {"Download/x.dct", "Order Tables=1   \r\n", false},
    {"Download/x.dct", "Order Tables=9\r\n", false},
    {"Download/x.dct", "Order Tables=10\r\n", true},
    {"Download/x.dct", "Order Tables=x\r\n", true},
    {"Download/x.dct", "Order Tables\r\n", true},
    {"Download/x.dct", "Customers=1\r\nItems=1\r\nSetup Tables=1\r\n", true},
    {"Download/x.dct", "1\r\n", true},
    {"Download/x.dct", "", true},
    {"Download/x.dct", "\r\n\r\n", true},
    {"Download/X.DCT", NoDownload, true},
    {"Download/x.dct.old", NoDownload, false},
    {"Download/x.dst", "Customers=0\r\nItems=0\r\nSetup Tables=0\r\n", true},
    {"Download/x.dst", "Customers=1\r\n", false},
    {"Download/x.dst", "Items=1\r\n", false},
    {"Download/x.dst", "Setup Tables=1\r\n", false},
    {"Download/x.dst", "Order Tables=1\r\n", false},
    {"Download/x.dst", "Audit Tables=1\r\n", false},
    {"Download/x.dst", "Handheld Totals=1\r\n", true},
    {"Upload/x.ust", "Orders=0\r\nAudits=0\r\n", true},
    {"Upload/x.ust", "Orders=1\r\n", false},
    {"Upload/x.ust", "Audits=1\r\n", false},
    {"Upload/x.ust", "Handheld Totals=1\r\n", false},
    {"Upload/x.ust", "Print Spooler=1\r\n", false},
    {"Upload/x.ust", "Customers=1\r\n", false},
    {"Upload/x.ust", "Items=1\r\n", false},
    {"Upload/x.ust", "Setup Tables=1\r\n", true},
    {"Upload/x.ust", "Order Tables=1\r\n", true},
};

TEST_F(TemplateChecksTest, ASelectionIsBlankUnlessALineOfItsKindEndsInADigitOtherThanNought) {
    for (const Selection& each : Selections) {
        const Check check = std::string(each.File).starts_with("Upload") ? Check::Upload : Check::Download;
        EXPECT_EQ(IsReported(check, each.File, each.Content), each.IsBlank)
            << each.File << ": " << each.Content;
    }
}

TEST_F(TemplateChecksTest, ClearTemplatesStandBeforeDownloadTemplatesInTheOrderOfTheirNames) {
    for (const char* name : {"b.dst", "a.dst", "d.dct", "C.DCT"})
        GivenTemplate("Download/" + std::string(name), "");

    EXPECT_EQ(Lists(Check::Download), (Texts{"C.DCT, d.dct, a.dst, b.dst"}));
}

TEST_F(TemplateChecksTest, AFolderThatIsNamedLikeATemplateIsNone) {
    for (const char* folder : {"Download/x.dct", "Import/x.cst", "Export/x.xor", "QuickButtons/x.ipm",
                               "UnattendedHotsync/x.uhs"}) {
        std::filesystem::create_directories(Global.TemplatesPath + folder);
    }

    for (const Check check : TemplateChecks) EXPECT_EQ(Checked(check), std::vector<ReportRow>{});
}

TEST_F(TemplateChecksTest, ATemplateThatCannotBeReadDoesNothingAndIsReported) {
    GivenTemplate("Download/a.dct", "Order Tables=1\r\n");
    GivenTemplate("Import/b.cst", "b.csv\r\n");
    GivenFile("app/DataIn/b.csv", "1");
    GivenTemplate("Export/c.xor", "Filename=c.csv\r\n");
    GivenTemplate("QuickButtons/d.ipm", "Saved Setting 1:    b.cst;\r\n");
    GivenTemplate("UnattendedHotsync/e.uhs", "Clear=True\r\nClearTemplate=a\r\n");
    for (const Check check : TemplateChecks) ASSERT_EQ(Checked(check), std::vector<ReportRow>{});
    RefusingDisk refusing(Global.TemplatesPath, Access::Read);
    Global.TheDisk = &refusing;

    Texts lists;
    for (const Check check : TemplateChecks) {
        for (const std::string& list : Lists(check)) lists.push_back(list);
    }

    EXPECT_EQ(lists, (Texts{"a.dct", "b.cst", "c.xor", "d.ipm", "e.uhs"}));
}

// ---- imports ----

TEST_F(TemplateChecksTest, AnImportFileThatIsThereUnderAnyCaseIsFound) {
    GivenTemplate("Import/a.cst", " Firms.CSV \r\nCSV\r\n");
    GivenFile("app/DataIn/firms.csv", "");

    EXPECT_EQ(Checked(Check::Import), std::vector<ReportRow>{});
}

TEST_F(TemplateChecksTest, AnImportTemplateWithoutItsFirstLineNamesNoFile) {
    GivenTemplate("Import/a.cst", "");

    EXPECT_EQ(Issue(Check::Import),
              "Import file specified in template does not exist in DataIn directory.\nTemplate name: "
              "a.cst\nImport filename: ");
}

TEST_F(TemplateChecksTest, EachTemplateHasItsPlaceInTheListOfImportFiles) {
    GivenTemplate("Import/a.cst", "\r\nCSV\r\n");
    GivenTemplate("Import/b.cst", "b.csv\r\n");
    GivenTemplate("Import/c.itm", "");

    EXPECT_EQ(Issue(Check::Import),
              "Import file specified in template does not exist in DataIn directory.\nTemplate name: a.cst, "
              "b.cst, c.itm\nImport filename: , b.csv, ");
}

TEST_F(TemplateChecksTest, CustomerTemplatesStandBeforeItemTemplates) {
    GivenTemplate("Import/a.itm", "a.csv");
    GivenTemplate("Import/z.cst", "z.csv");

    EXPECT_EQ(Lists(Check::Import), (Texts{"z.cst, a.itm"}));
}

TEST_F(TemplateChecksTest, AnImportFileInAnotherFolderIsReportedAsItStands) {
    GivenTemplate("Import/a.cst", "C:\\Old\\firms.csv\r\nCSV\r\n");
    GivenFile("app/DataIn/firms.csv", "1");

    EXPECT_EQ(Issue(Check::Import),
              "Import file specified in template does not exist in DataIn directory.\nTemplate name: "
              "a.cst\nImport filename: C:\\Old\\firms.csv");
}

TEST_F(TemplateChecksTest, NoFileOutsideTheFolderOfIncomingFilesCounts) {
    GivenFile("app/secret.csv", "1");

    EXPECT_TRUE(IsReported(Check::Import, "Import/a.cst", "../secret.csv\r\n"));
    EXPECT_TRUE(IsReported(Check::Import, "Import/a.cst", "..\r\n"));
}

TEST_F(TemplateChecksTest, AFolderIsNoImportFile) {
    std::filesystem::create_directories(Global.DataInPath + "firms.csv");

    EXPECT_TRUE(IsReported(Check::Import, "Import/a.cst", "firms.csv\r\n"));
}

TEST_F(TemplateChecksTest, LettersOfTheCodePageReachTheReport) {
    GivenTemplate("Import/Gro\xC3\x9F.cst", "M\xFCller.csv\r\n");

    EXPECT_EQ(Issue(Check::Import),
              "Import file specified in template does not exist in DataIn directory.\nTemplate name: "
              "Gro\xC3\x9F.cst\nImport filename: M\xC3\xBCller.csv");
    GivenFile("app/DataIn/M\xC3\xBCller.csv", "1");
    EXPECT_EQ(Checked(Check::Import), std::vector<ReportRow>{});
}

// ---- exports ----

TEST_F(TemplateChecksTest, AnExportTemplateNeedsALineWithAFileName) {
    EXPECT_FALSE(IsReported(Check::Export, "Export/a.xor", "Filename=a.csv\r\nCSV\r\n"));
    EXPECT_FALSE(IsReported(Check::Export, "Export/a.xor", "CSV\r\nFILENAME= a.csv\r\n"));
    EXPECT_FALSE(IsReported(Check::Export, "Export/a.XOR", "Filename=a.csv"));
    EXPECT_TRUE(IsReported(Check::Export, "Export/a.xor", "Filename=\r\n"));
    EXPECT_TRUE(IsReported(Check::Export, "Export/a.xor", "CSV\r\nH_ORDCODE\r\n")) << "no such line";
    EXPECT_TRUE(IsReported(Check::Export, "Export/a.xor", ""));
    EXPECT_TRUE(IsReported(Check::Export, "Export/a.xor", "Filename a.csv\r\n"));
}

TEST_F(TemplateChecksTest, AFileNameThatNoFileCanHaveIsAFileName) {
    EXPECT_FALSE(IsReported(Check::Export, "Export/a.xor", "Filename=C:\\Old\\\r\nCSV\r\n"));
}

// ---- QuickButtons ----

TEST_F(TemplateChecksTest, AnActivityIsBlankWhenAllItsNamesAreEmptyOrNone) {
    for (const char* content : {"", "\r\n", "Saved Setting 1:    ;\r\nSaved Setting 2:    ;\r\n",
                                "Saved Setting 1:    none;\r\nSaved Setting 2:    NONE ;\r\n",
                                "Saved Setting 1:\r\nSaved Setting 2:"}) {
        for (const char* file : {"a.ipm", "a.xpm", "a.ctm", "a.IPM"})
            EXPECT_EQ(QB(file, content), (QBFound{file, ""})) << content;
    }
}

TEST_F(TemplateChecksTest, AnActivityNamesTemplatesOfItsOwnKind) {
    GivenTemplate("Import/Firms.cst", "firms.csv");
    GivenTemplate("Import/Stock.itm", "stock.csv");
    GivenTemplate("Export/Web.xor", "Filename=w.csv");
    GivenTemplate("ClearPC/All.pct", "Order Tables1");
    const auto line = [](const std::string& name) { return "Saved Setting 1:    " + name + ";\r\n"; };

    EXPECT_EQ(QB("a.ipm", line("Firms.cst") + line("Stock.itm")), QBFound{});
    EXPECT_EQ(QB("a.xpm", line("Web.xor")), QBFound{});
    EXPECT_EQ(QB("a.ctm", line("All.pct")), QBFound{});
    EXPECT_EQ(QB("a.ipm", line("Web.xor")), (QBFound{"", "a.ipm"}));
    EXPECT_EQ(QB("a.xpm", line("Firms.cst")), (QBFound{"", "a.xpm"}));
    EXPECT_EQ(QB("a.ctm", line("Web.xor")), (QBFound{"", "a.ctm"}));
}

TEST_F(TemplateChecksTest, OneLostTemplateOfTwoIsEnough) {
    GivenTemplate("Import/Firms.cst", "firms.csv");

    EXPECT_EQ(QB("a.ipm", "Saved Setting 1:    Firms.cst;\r\nSaved Setting 2:    Gone.itm;\r\n"),
              (QBFound{"", "a.ipm"}));
    EXPECT_EQ(QB("a.ipm", "Saved Setting 1:    ;\r\nSaved Setting 2:    Gone.itm;\r\n"),
              (QBFound{"", "a.ipm"}));
    EXPECT_EQ(QB("a.ipm", "Saved Setting 1:    Firms.cst;\r\nSaved Setting 2:    None;\r\n"), QBFound{});
}

TEST_F(TemplateChecksTest, ANameIsFoundInAnyCaseAndWithoutItsExtension) {
    GivenTemplate("Import/Firms.cst", "firms.csv");

    EXPECT_EQ(QB("a.ipm", "Saved Setting 1:    FIRMS.CST;\r\n"), QBFound{});
    EXPECT_EQ(QB("a.ipm", "Saved Setting 1:    firms;\r\n"), QBFound{});
}

TEST_F(TemplateChecksTest, ANameReachesFromColumnTwentyToTheNextSemicolonOrTheEnd) {
    GivenTemplate("Import/Firms.cst", "firms.csv");

    EXPECT_EQ(QB("a.ipm", "Saved Setting 1:   Firms.cst;\r\n"), QBFound{}) << "column 20";
    EXPECT_EQ(QB("a.ipm", "Saved Setting 1:    Firms.cst\r\n"), QBFound{}) << "no semicolon";
    EXPECT_EQ(QB("a.ipm", "Saved Setting 1:      Firms.cst  ; and more;\r\n"), QBFound{});
    EXPECT_EQ(QB("a.ipm", ";aved Setting 1:    Firms.cst;\r\n"), QBFound{}) << "a semicolon before";
    EXPECT_EQ(QB("a.ipm", "Setting 1: Firms.cst;\r\n"), (QBFound{"", "a.ipm"}))
        << "cut by the label's columns";
    EXPECT_EQ(QB("a.ipm", "1: Firms.cst;\r\n"), (QBFound{"a.ipm", ""})) << "all of it in the label's columns";
}

TEST_F(TemplateChecksTest, ANameThatIsAPathIsNoTemplate) {
    GivenTemplate("Import/Firms.cst", "firms.csv");

    for (const char* name : {"../Import/Firms.cst", "..\\Import\\Firms.cst", "..", "/etc/passwd"}) {
        EXPECT_EQ(QB("a.ipm", "Saved Setting 1:    " + std::string(name) + ";\r\n"), (QBFound{"", "a.ipm"}))
            << name;
    }
}

// ---- unattended settings ----

TEST_F(TemplateChecksTest, SettingsWithoutAnActionAreIdleWhateverTemplatesTheyName) {
    EXPECT_EQ(UA("Download=False\r\nDownloadTemplate=Gone\r\n"), (UAFound{"S.uhs", "", ""}));
    EXPECT_EQ(UA(""), (UAFound{"S.uhs", "", ""}));
    EXPECT_EQ(UA("Download=1\r\nUpload=Yes\r\nClear=\r\n"), (UAFound{"S.uhs", "", ""}));
}

TEST_F(TemplateChecksTest, AnActionNeedsATemplateOfItsKind) {
    GivenTemplate("Download/D.dst", "");
    GivenTemplate("Download/C.dct", "");
    GivenTemplate("Upload/U.ust", "");

    EXPECT_EQ(UA("Download=True\r\nDownloadTemplate=D\r\nUpload=True\r\nUploadTemplate=U\r\nClear=True\r\n"
                 "ClearTemplate=C\r\n"),
              UAFound{});
    EXPECT_EQ(UA("Download=True\r\nDownloadTemplate=D.dst\r\n"), UAFound{}) << "with its extension";
    EXPECT_EQ(UA("Download=True\r\nDownloadTemplate=C\r\n"), (UAFound{"", "", "S.uhs"}));
    EXPECT_EQ(UA("Upload=True\r\nUploadTemplate=D\r\n"), (UAFound{"", "", "S.uhs"}));
    EXPECT_EQ(UA("Clear=True\r\nClearTemplate=D\r\n"), (UAFound{"", "", "S.uhs"}));
    EXPECT_EQ(UA("Clear=True\r\nClearTemplate=\r\n"), (UAFound{"", "S.uhs", ""}));
    EXPECT_EQ(UA("Clear=True\r\n"), (UAFound{"", "S.uhs", ""}));
    EXPECT_EQ(UA("Clear=True\r\nClearTemplate= \r\nUpload=True\r\nUploadTemplate=Gone\r\n"),
              (UAFound{"", "S.uhs", "S.uhs"}));
}

TEST_F(TemplateChecksTest, ATemplateOfAnActionThatIsOffMayBeGone) {
    GivenTemplate("Upload/U.ust", "");

    EXPECT_EQ(
        UA("Upload=True\r\nUploadTemplate=U\r\nDownload=False\r\nDownloadTemplate=Gone\r\nClear=False\r\n"
           "ClearTemplate=\r\n"),
        UAFound{});
}

TEST_F(TemplateChecksTest, KeysAndTrueCountInAnyCaseAndInAnyOrder) {
    GivenTemplate("Upload/U.ust", "");

    EXPECT_EQ(UA("UPLOADTEMPLATE= u \r\nupload= TRUE \r\n"), UAFound{});
}

TEST_F(TemplateChecksTest, ATemplateNameThatIsAPathIsGone) {
    GivenTemplate("Upload/U.ust", "");

    EXPECT_EQ(UA("Upload=True\r\nUploadTemplate=../Upload/U\r\n"), (UAFound{"", "", "S.uhs"}));
}

// ---- hostile files ----

TEST_F(TemplateChecksTest, TemplatesOfRubbishAreReportedOrNotAndNothingElse) {
    const struct {
        const char* File;
        Check Of;
        std::string Good;
    } kinds[] = {
        {"Download/x.dct", Check::Download, "Order Tables=1\r\nAudit Tables=0\r\nHandheld Totals=1\r\n"},
        {"Upload/x.ust", Check::Upload, "Orders=1\r\nAudits=1\r\nPrint Spooler=0\r\n"},
        {"Import/x.cst", Check::Import, "firms.csv\r\nCSV\r\nStartLine=1\r\n[FIELDS]\r\nC_CODE\r\n"},
        {"Export/x.xor", Check::Export, "Filename=a.csv\r\nCSV\r\nHDR=1\r\nH_ORDCODE\r\n"},
        {"QuickButtons/x.ipm", Check::QuickButtons,
         "Saved Setting 1:    x.cst;\r\nSaved Setting 2:    ;\r\n"},
        {"UnattendedHotsync/x.uhs", Check::Unattended, "Clear=True\r\nClearTemplate=x\r\nUpload=False\r\n"},
    };
    for (const auto& kind : kinds) {
        for (const std::string& content : Rubbish(kind.Good)) {
            GivenTemplate(kind.File, content);
            OnlyRunTimeFailures([&] {
                for (const ReportRow& row : Checked(kind.Of)) {
                    EXPECT_EQ(row.Severity, "Warn");
                    EXPECT_EQ("x" + std::string(kind.File).substr(std::string(kind.File).rfind('.')),
                              row.List);
                }
            });
        }
    }
}

} // namespace

#include "core/Catalogue.h"
#include "core/Messages.h"
#include "core/Progress.h"
#include "core/Settings.h"
#include "exchange/Activity.h"
#include "exchange/ExportTemplate.h"
#include "exchange/ImportTemplate.h"
#include "maintenance/ClearTables.h"
#include "maintenance/Restore.h"
#include "quality/CheckResults.h"
#include "store/DBFEdit.h"
#include "support/DocumentedBytes.h"
#include "support/EngineTest.h"
#include "sync/Status.h"
#include "sync/TableTemplates.h"
#include "sync/UnattendedSettings.h"

// The worked examples of docs/files.md are what the engine reads and writes.

namespace {

using Strings = std::vector<std::string>;

class DocumentedOffice : public EngineTest {
protected:
    DocumentedOffice() {
        GivenAppDirectory();
        Global.Clock = [] { return DateTime{2026, 11, 22, 9, 30, 0}; };
    }

    std::string GivenExample(const std::string& heading, const std::string& name, int which = 1) {
        const std::string example = DocumentedText(heading, which);
        EXPECT_NE(example, "") << heading;
        return GivenFile(name, example);
    }
};

TEST_F(DocumentedOffice, TheSettingsOfTheExampleAreTheDefaults) {
    Global.MainHeight = 9600;
    Global.MainWidth = 14400;

    MakeIniFile();

    EXPECT_EQ(Bytes(Global.IniFile), DocumentedText("ZUKTramble.ini"));
}

TEST_F(DocumentedOffice, TwoRecordsBehindTheInstalledTableGiveTheBytesThatAreToldToBeOthers) {
    const std::string path =
        GivenFile("ZUKVER.dbf", Bytes(std::string(TRAMBLE_INSTALLED) + "/Install/ZUKVER.dbf"));
    DBFEdit table;
    table.FileOpen(path);
    table.Go(DBFEdit::Last);
    table.KillEOFFlag();
    for (const char* value : {"100", "101"}) {
        table.Go(DBFEdit::Append);
        table.WriteData("V_MAJOR", value);
        table.UpDate();
    }
    table.Go(1);
    table.DeleteRecord();
    table.FileClose();

    const std::string bytes = Bytes(path);

    EXPECT_EQ(bytes.size(), 88U);
    EXPECT_EQ(bytes.substr(4, 4), std::string("\2\0\0\0", 4));
    EXPECT_EQ(bytes.substr(0x41), "*100        101        ");
    const std::string told = DocumentedText("Tables: `DBFFiles/*.dbf`", 2);
    EXPECT_NE(told.find("041  2A \"100       \""), std::string::npos) << told;
    EXPECT_NE(told.find("04C  20 \"101       \""), std::string::npos) << told;
}

TEST_F(DocumentedOffice, TheStatusOfTwoHandheldsIsReadAndWrittenBack) {
    GivenExample("HSStatus.dat", "app/Install/HSStatus.dat");

    GetHHStatus();

    EXPECT_EQ(Global.HHSyncID, (Strings{"", "ANNA", "BEN"}));
    EXPECT_EQ(Global.HHStatus, (Strings{"", "G", ""}));
    EXPECT_EQ(Global.HHStatusStd, (Strings{"", "S", ""}));
    UpdateHHStatus();
    EXPECT_EQ(Bytes(Global.InstallPath + "HSStatus.dat"), "ANNA" + std::string(26, ' ') + "G" +
                                                              std::string(29, ' ') + "S\r\nBEN" +
                                                              std::string(57, ' ') + "\r\n");
}

TEST_F(DocumentedOffice, TheTextsOfTheExampleTakeThePlaceOfTheBuiltInOnes) {
    const std::string path =
        GivenExample("Texts: `Languages/<name>.tsv` and `Messages.tsv`", "app/Messages.tsv");

    EXPECT_EQ(LoadMessages(path), "");

    EXPECT_EQ(CatalogueCaption(msg::Yes), "&Ja");
    EXPECT_EQ(CatalogueText(msg::No), "Nein");
}

TEST_F(DocumentedOffice, TheImportTemplateOfTheExampleIsReadAndWrittenAsItStandsThere) {
    const std::string path = GivenExample("Import templates", "x.cst");

    const ImportTemplateRead read = ReadImportTemplate(path);

    EXPECT_TRUE(read.Complete);
    EXPECT_EQ(read.Template.DataFile, "customers.csv");
    EXPECT_EQ(read.Template.Delimiter, Delimiter::CsvQuotes);
    EXPECT_EQ(read.Template.StartLine, "2");
    EXPECT_EQ(read.Template.Fields, (Strings{"C_CODE; C_SEARCH", "Ignore"}));
    EXPECT_EQ(read.Template.Literals, Strings{"C_SHIPVIA = Ground"});
    WriteImportTemplate(Folder() + "y.cst", read.Template);
    EXPECT_EQ(Bytes(Folder() + "y.cst"), Bytes(path));
}

TEST_F(DocumentedOffice, TheExportTemplateOfTheExampleIsReadAndWrittenAsItStandsThere) {
    const std::string path = GivenExample("Export templates", "x.xor");

    const ExportTemplateRead read = ReadExportTemplate(path);

    EXPECT_TRUE(read.Complete);
    EXPECT_EQ(read.Template.FileName, "orders.csv");
    EXPECT_TRUE(read.Template.AddHeadings);
    EXPECT_FALSE(read.Template.SortOrders || read.Template.AddBlankLine || read.Template.QualityCheck);
    EXPECT_EQ(read.Template.Columns,
              (Strings{"H_ORDDATE Format: dd.mm.yyyy", "Literal = WEB", "L_QTY * L_PRICE"}));
    WriteExportTemplate(Folder() + "y.xor", read.Template);
    EXPECT_EQ(Bytes(Folder() + "y.xor"), Bytes(path));
}

TEST_F(DocumentedOffice, TheActivityOfTheExampleIsReadAndWrittenAsItStandsThere) {
    const std::string path = GivenExample("Activities", "x.ipm");

    const Activity activity = ReadActivity(path);

    EXPECT_EQ(activity.Rows[0].Template, "DemoCustomers.cst");
    EXPECT_EQ(activity.Rows[1].Template, "");
    WriteActivity(Folder() + "y.ipm", activity);
    EXPECT_EQ(Bytes(Folder() + "y.ipm"), Bytes(path));
}

TEST_F(DocumentedOffice, TheUnattendedSettingsOfTheExampleAreReadAndWrittenAsTheyStandThere) {
    const std::string path = GivenExample("Unattended settings", "x.uhs");

    const UnattendedSettings settings = ReadUnattendedSettings(path);

    EXPECT_EQ(settings, (UnattendedSettings{true, "Prices", true, "Orders", false, ""}));
    SaveUA(Folder() + "y.uhs", settings);
    EXPECT_EQ(Bytes(Folder() + "y.uhs"), Bytes(path));
}

TEST_F(DocumentedOffice, TheTablesToClearOfTheExampleAreReadAndWrittenAsTheyStandThere) {
    const std::string path = GivenExample("Tables to clear on the PC", "x.pct");
    ClearPlan plan;

    ReadTemplate(path, plan);

    WriteTemplate(Folder() + "y.pct", plan);
    EXPECT_EQ(Bytes(Folder() + "y.pct"), Bytes(path));
}

TEST_F(DocumentedOffice, TheResultsOfTheQualityCheckOfTheExampleAreReadAndWrittenAsTheyStandThere) {
    const std::string path = GivenExample("QCResults.dat", "x.dat");

    const CheckResults results = CheckResults::Read(path);

    EXPECT_EQ(results.Of(Check::Customers), (CheckResult{{2026, 11, 21, 14, 5, 9}, 2, 0}));
    results.Write(Folder() + "y.dat");
    EXPECT_EQ(Bytes(Folder() + "y.dat"), Bytes(path));
}

TEST_F(DocumentedOffice, TheBackupOfTheExampleIsListedAsItTells) {
    GivenExample("Backups: `Backup/", "app/Backup/61115023607/Backup.txt");
    NoProgress silent;

    const std::vector<BackupPoint> backups = ReadBackups(silent);

    ASSERT_EQ(backups.size(), 1U);
    EXPECT_EQ(backups[0].Values, (std::array<std::string, 8>{"CLEAR", "2026-11-15 02:36:07", "2", "3",
                                                             "12.75", "Bea", "B02", "B0200000012"}));
    EXPECT_FALSE(backups[0].TextIsBroken);
    ASSERT_EQ(backups[0].Tables.size(), 1U);
    EXPECT_EQ(backups[0].Tables[0].Records, 2);
    EXPECT_EQ(backups[0].Missing, Strings{"ZUKOrHdr.dbf"}) << "the text tells of a table, and none is there";
}

} // namespace

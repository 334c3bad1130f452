#include "core/Messages.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/Settings.h"
#include "exchange/Activity.h"
#include "exchange/forms/frmExport1.h"
#include "exchange/forms/frmImport1.h"
#include "exchange/forms/frmQBExport.h"
#include "exchange/forms/frmQBImport.h"
#include "forms/FormTest.h"
#include "forms/TopicList.h"
#include "platform/Registry.h"
#include "platform/Translation.h"
#include "program/forms/frmMain1.h"
#include "support/RefusingDisk.h"
#include "tools/forms/frmOptions.h"

#include <QComboBox>
#include <QDateEdit>
#include <QLineEdit>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

#include <filesystem>

namespace {

class Options : public FormTest {
protected:
    Options() {
        GivenOffice();
        Global.IniFile = Global.AppPath + "ZUKTramble.ini";
        UpdateIniFile();
    }

    static void GivenTemplate(const std::string& folder, const std::string& name) {
        WriteWholeFile(folder + name, "");
    }

    static void GivenActivity(const std::string& name, const std::string& first,
                              const std::string& second = {}) {
        Activity activity;
        activity.Rows[0].Template = first;
        activity.Rows[1].Template = second;
        WriteActivity(Global.QuickButtonTemplates + name, activity);
    }

    static void GivenUnattended(const std::string& name, const UnattendedSettings& settings) {
        SaveUA(Global.UnattendedTemplates + name, settings);
    }

    /// One template of each kind that unattended mode uses.
    static void GivenSelections() {
        GivenTemplate(Global.DownloadTemplates, "Prices.dst");
        GivenTemplate(Global.UploadTemplates, "Orders.ust");
        GivenTemplate(Global.DownloadTemplates, "Old orders.dct");
    }

    static QString Activity1(const std::string& name) {
        return QString::fromStdString(ReadActivity(Global.QuickButtonTemplates + name).Rows[0].Template);
    }

    static QStringList Entries(FormBehaviour& form, const char* box) {
        auto& control = dynamic_cast<QComboBox&>(Control(form, box));
        QStringList entries;
        for (int k = 0; k < control.count(); ++k) entries << control.itemText(k);
        return entries;
    }

    static QString Hint(FormBehaviour& form, const char* box) {
        auto& control = dynamic_cast<QComboBox&>(Control(form, box));
        return control.currentIndex() < 0 ? control.placeholderText() : QString();
    }

    static QString Tab(FormBehaviour& form) {
        auto& tabs = dynamic_cast<QTabWidget&>(Control(form, "SSTab1"));
        return tabs.tabText(tabs.currentIndex()).remove(QLatin1Char('&'));
    }

    static QString Focus(FormBehaviour& form) {
        return form.Window().focusWidget() ? form.Window().focusWidget()->objectName() : QString();
    }

    static bool On(FormBehaviour& form, const char* option) {
        return dynamic_cast<QAbstractButton&>(Control(form, option)).isChecked();
    }

    static std::string Ini() { return ReadWholeFile(Global.IniFile); }
    static bool InIni(const std::string& line) { return Ini().find(line + "\r\n") != std::string::npos; }

    /// Does something while a screen that the next click opens stands before the others.
    static void Meanwhile(std::function<void()> deed) { QTimer::singleShot(0, qApp, std::move(deed)); }
};

// ---- opening ----

TEST_F(Options, ThreeTabsGroupWhatBelongsTogether) {
    auto& form = Open<frmOptions>();

    auto& tabs = dynamic_cast<QTabWidget&>(Control(form, "SSTab1"));
    QStringList titles;
    for (int k = 0; k < tabs.count(); ++k) titles << tabs.tabText(k).remove(QLatin1Char('&'));
    EXPECT_EQ(titles, (QStringList{Q("QuickButtons"), Q("Unattended Hotsync"), Q("PC Backup / Updates")}));
}

TEST_F(Options, EachTabOpensItsTopicOfTheHelp) {
    TopicList help;
    auto& form = Open<frmOptions>();
    auto& tabs = dynamic_cast<QTabWidget&>(Control(form, "SSTab1"));

    for (int tab = 0; tab < tabs.count(); ++tab) {
        tabs.setCurrentIndex(tab);
        Click(form, "cmdHelp");
    }

    EXPECT_EQ(help.Opened(), (std::vector<std::string>{"QuickButtons.htm", "Unattended_Hotsync_.htm",
                                                       "Purging_Backup_PC_Tables.htm"}));
}

TEST_F(Options, TheDroplistsOfImportTemplatesHoldCustomersThenItemsBehindAnEmptyRow) {
    for (const char* name : {"b.cst", "A.CST", "a.itm", "c.txt"}) GivenTemplate(Global.ImportTemplates, name);

    auto& form = Open<frmOptions>();

    const QStringList expected{Q(""),      Q("A.CST"),        Q("b.cst"), Q("DemoCustomers.cst"),
                               Q("a.itm"), Q("DemoItems.itm")};
    EXPECT_EQ(Entries(form, "cboImpSS1"), expected);
    EXPECT_EQ(Entries(form, "cboImpSS2"), expected);
}

TEST_F(Options, TheOtherDroplistsHoldTheTemplatesOfTheirKind) {
    GivenSelections();
    GivenTemplate(Global.ClearPCTemplates, "All.pct");

    auto& form = Open<frmOptions>();

    EXPECT_EQ(Entries(form, "cboExpSS2"), (QStringList{Q(""), Q("DemoOrders.xor")}));
    EXPECT_EQ(Entries(form, "cboPCSS1"), (QStringList{Q(""), Q("All.pct")}));
    EXPECT_EQ(Entries(form, "cboSettings"), (QStringList{Q(""), Q("Prices")}));
    EXPECT_EQ(Entries(form, "cboULSettings"), (QStringList{Q(""), Q("Orders")}));
    EXPECT_EQ(Entries(form, "cboClearSettings"), (QStringList{Q(""), Q("Old orders")}));
    EXPECT_EQ(Entries(form, "cboImpAct"), QStringList{Q("DemoImport")});
    EXPECT_EQ(Entries(form, "cboExpAct"), QStringList{Q("DemoExport")});
}

TEST_F(Options, AListWithoutTemplatesSaysSo) {
    auto& form = Open<frmOptions>();

    for (const char* box : {"cboPCSS1", "cboSettings", "cboULSettings", "cboClearSettings"}) {
        EXPECT_EQ(Hint(form, box), Q("No template has been saved yet")) << box;
    }
    EXPECT_EQ(Hint(form, "cboExpSS1"), QString());
}

TEST_F(Options, TheSettingsAreShown) {
    GivenSelections();
    GivenUnattended("Evening.uhs", {});
    Global.RemoteSyncSettings = "evening";
    Global.RemoteSelect = true;
    Global.RemoteSelSettings = "prices";
    Global.UploadSelSettings = "Orders";
    Global.PurgeBackup = false;
    Global.PurgeDays = 30;
    Global.UpdateDemoTemplates = false;

    auto& form = Open<frmOptions>();

    EXPECT_EQ(TextOf(form, "cboRemoteSettings"), Q("Evening"));
    EXPECT_TRUE(On(form, "optRemoteSelect"));
    EXPECT_EQ(TextOf(form, "cboSettings"), Q("Prices"));
    EXPECT_TRUE(On(form, "optNoUpload"));
    EXPECT_EQ(TextOf(form, "cboULSettings"), Q("Orders"));
    EXPECT_TRUE(On(form, "optRemoteNoClear"));
    EXPECT_EQ(TextOf(form, "cboClearSettings"), Q(""));
    EXPECT_TRUE(On(form, "optNoPurge"));
    EXPECT_EQ(TextOf(form, "cboPurge"), Q("30"));
    EXPECT_FALSE(Enabled(form, "cboPurge"));
    EXPECT_FALSE(On(form, "chkDemoTemplates"));
}

TEST_F(Options, UnattendedSettingsThatAreGoneAreNotShownSoThatOkDoesNotMakeThemAgain) {
    Global.RemoteSyncSettings = "Deleted";
    auto& form = Open<frmOptions>();
    EXPECT_EQ(TextOf(form, "cboRemoteSettings"), Q(""));

    Click(form, "cmdOK");

    EXPECT_TRUE(FilesWithExtension(Global.UnattendedTemplates, "").empty());
    EXPECT_TRUE(InIni("RemoteSyncSettings="));
}

// ---- activities ----

TEST_F(Options, AnActivityShowsItsTemplatesWhateverTheirCase) {
    GivenTemplate(Global.ImportTemplates, "Cust.cst");
    GivenTemplate(Global.ImportTemplates, "Caf\xC3\xA9.itm");
    GivenActivity("Morning.ipm", "CUST.CST", "Caf\xE9.itm");
    auto& form = Open<frmOptions>();

    Choose(form, "cboImpAct", Q("Morning"));

    EXPECT_EQ(TextOf(form, "cboImpSS1"), Q("Cust.cst"));
    EXPECT_EQ(TextOf(form, "cboImpSS2"), Q("Café.itm"));
}

TEST_F(Options, AnotherActivityShowsNothingOfTheOneBefore) {
    GivenActivity("Morning.ipm", "DemoCustomers.cst", "DemoItems.itm");
    GivenActivity("Noon.ipm", "DemoItems.itm");
    auto& form = Open<frmOptions>();
    Choose(form, "cboImpAct", Q("Morning"));

    Choose(form, "cboImpAct", Q("Noon"));

    EXPECT_EQ(TextOf(form, "cboImpSS1"), Q("DemoItems.itm"));
    EXPECT_EQ(TextOf(form, "cboImpSS2"), Q(""));
}

TEST_F(Options, ATemplateThatIsGoneIsNamedInItsEmptyDroplist) {
    GivenActivity("Morning.ipm", "Gone.cst", "DemoItems.itm");
    auto& form = Open<frmOptions>();

    Choose(form, "cboImpAct", Q("Morning"));

    EXPECT_EQ(TextOf(form, "cboImpSS1"), Q(""));
    EXPECT_EQ(Hint(form, "cboImpSS1"), Q("Gone.cst is missing"));
    EXPECT_EQ(TextOf(form, "cboImpSS2"), Q("DemoItems.itm"));
}

TEST_F(Options, AnActivityThatCannotBeReadIsToldAndCanBeWrittenAnew) {
    WriteWholeFile(Global.QuickButtonTemplates + "Morning.ipm", "Saved Setting 1:    ..\\x.cst;\r\n");
    auto& form = Open<frmOptions>();
    Operator_.ExpectBeginning(msg::ActivityError).With(Icon::Warning);
    Choose(form, "cboImpAct", Q("Morning"));
    EXPECT_EQ(TextOf(form, "cboImpAct"), Q("Morning"));
    EXPECT_EQ(TextOf(form, "cboImpSS1"), Q(""));
    Choose(form, "cboImpSS1", Q("DemoItems.itm"));

    Click(form, "cmdOK");

    EXPECT_EQ(Activity1("Morning.ipm"), Q("DemoItems.itm"));
}

TEST_F(Options, ANewNameMakesAnActivityOfEachKind) {
    GivenTemplate(Global.ClearPCTemplates, "All.pct");
    auto& form = Open<frmOptions>();
    Type(form, "cboImpAct", Q(" Morning "));
    Choose(form, "cboImpSS1", Q("DemoCustomers.cst"));
    Choose(form, "cboImpSS2", Q("DemoItems.itm"));
    Type(form, "cboExpAct", Q("Évening"));
    Choose(form, "cboExpSS2", Q("DemoOrders.xor"));
    Type(form, "cboPCAct", Q("Night"));
    Choose(form, "cboPCSS1", Q("All.pct"));

    Click(form, "cmdOK");

    EXPECT_EQ(Bytes(Global.QuickButtonTemplates + "Morning.ipm"),
              "Saved Setting 1:    DemoCustomers.cst;\r\nSaved Setting 2:    DemoItems.itm;\r\n");
    EXPECT_EQ(Bytes(Global.QuickButtonTemplates + "\xC3\x89vening.xpm"),
              "Saved Setting 1:    ;\r\nSaved Setting 2:    DemoOrders.xor;\r\n");
    EXPECT_EQ(Bytes(Global.QuickButtonTemplates + "Night.ctm"),
              "Saved Setting 1:    All.pct;\r\nSaved Setting 2:    ;\r\n");
    EXPECT_TRUE(form.IsGone());
}

TEST_F(Options, AnActivityWithBothDroplistsOnTheEmptyRowIsWrittenAndIsValid) {
    GivenActivity("Morning.ipm", "DemoCustomers.cst", "DemoItems.itm");
    auto& form = Open<frmOptions>();
    Choose(form, "cboImpAct", Q("Morning"));
    Choose(form, "cboImpSS1", Q(""));
    Choose(form, "cboImpSS2", Q(""));

    Click(form, "cmdOK");

    EXPECT_EQ(Bytes(Global.QuickButtonTemplates + "Morning.ipm"),
              "Saved Setting 1:    ;\r\nSaved Setting 2:    ;\r\n");
    EXPECT_EQ(Activity1("Morning.ipm"), Q(""));
}

TEST_F(Options, DeletingAnActivityClearsTheDroplistsAndOkThenWritesNothingForIt) {
    GivenActivity("Morning.ipm", "DemoCustomers.cst");
    auto& form = Open<frmOptions>();
    Choose(form, "cboImpAct", Q("Morning"));
    Operator_.Expect(T("Are you sure you want to delete Morning")).Answer(Answer::Yes);
    Click(form, "cmdDelImpAct");
    EXPECT_EQ(TextOf(form, "cboImpAct"), Q(""));
    EXPECT_EQ(TextOf(form, "cboImpSS1"), Q(""));
    EXPECT_EQ(Entries(form, "cboImpAct"), QStringList{Q("DemoImport")});
    EXPECT_FALSE(Enabled(form, "cmdDelImpAct"));

    Click(form, "cmdOK");

    EXPECT_EQ(NamesWithExtension(Global.QuickButtonTemplates, ImportActivities),
              std::vector<std::string>{"DemoImport"});
}

TEST_F(Options, NoAtTheQuestionDeletesNoActivity) {
    auto& form = Open<frmOptions>();
    Choose(form, "cboExpAct", Q("DemoExport"));
    Operator_.Expect(T("Are you sure you want to delete DemoExport")).Answer(Answer::No);

    Click(form, "cmdDelExpAct");

    EXPECT_EQ(TextOf(form, "cboExpSS1"), Q("DemoOrders.xor"));
    EXPECT_TRUE(Exists(Global.QuickButtonTemplates + "DemoExport.xpm"));
}

TEST_F(Options, AnActivityThatCannotBeDeletedIsPassedOverAndANameThatLeadsElsewhereDeletesNothing) {
    GivenActivity("Night.ctm", "");
    GivenFile("app/Templates/Safe.ctm", "of somebody");
    KeepingDisk disk("Night.ctm");
    Global.TheDisk = &disk;
    auto& form = Open<frmOptions>();
    for (const char* name : {"Night", "../Safe"}) {
        Type(form, "cboPCAct", Q(name));
        Operator_.Expect(T("Are you sure you want to delete " + std::string(name))).Answer(Answer::Yes);

        Click(form, "cmdDelPCAct");

        EXPECT_EQ(TextOf(form, "cboPCAct"), Q(""));
    }
    EXPECT_TRUE(Exists(Global.QuickButtonTemplates + "Night.ctm"));
    EXPECT_TRUE(Exists(Global.TemplatesPath + "Safe.ctm"));
    Global.TheDisk = &NativeDisk();
}

TEST_F(Options, ANameThatIsNoFileNameIsRefusedBeforeAnythingIsWritten) {
    auto& form = Open<frmOptions>();
    Type(form, "cboImpAct", Q("Morning"));
    Click(form, "chkDemoTemplates");
    const std::string before = Ini();
    for (const auto& [box, tab] : {std::pair{"cboExpAct", "QuickButtons"},
                                   {"cboPCAct", "QuickButtons"},
                                   {"cboRemoteSettings", "Unattended Hotsync"}}) {
        for (const char* name : {"../Evening", "a\\b", "C:x", "NUL", "why?"}) {
            Type(form, box, Q(name));
            Operator_.Expect(::Lines(msg::NotAFileName, T(name))).With(Icon::Warning);

            Click(form, "cmdOK");

            EXPECT_EQ(Focus(form), Q(box));
            EXPECT_EQ(Tab(form), Q(tab));
        }
        Type(form, box, QString());
    }
    EXPECT_FALSE(Exists(Global.QuickButtonTemplates + "Morning.ipm"));
    EXPECT_EQ(Ini(), before);
    EXPECT_TRUE(Global.UpdateDemoTemplates);
}

TEST_F(Options, ATypedNameReplacesAnActivityThatWasNotOnTheScreenOnlyAfterAQuestion) {
    GivenActivity("Morning.ipm", "DemoCustomers.cst", "DemoItems.itm");
    const std::string before = Bytes(Global.QuickButtonTemplates + "Morning.ipm");
    auto& form = Open<frmOptions>();
    Type(form, "cboImpAct", Q("morning"));
    Operator_.Expect(T("morning exists already. Do you want to replace it?"))
        .With(Icon::Warning)
        .Answer(Answer::No);
    Click(form, "cmdOK");
    EXPECT_EQ(Bytes(Global.QuickButtonTemplates + "Morning.ipm"), before);
    EXPECT_EQ(Focus(form), Q("cboImpAct"));
    Operator_.Expect(T("morning exists already. Do you want to replace it?")).Answer(Answer::Yes);

    Click(form, "cmdOK");

    EXPECT_EQ(Activity1("Morning.ipm"), Q(""));
    EXPECT_EQ(FilesWithExtension(Global.QuickButtonTemplates, ImportActivities).size(), 2u);
}

TEST_F(Options, AnActivityThatCannotBeWrittenIsToldAndTheEarlierOnesStaySaved) {
    RefusingDisk disk(Global.QuickButtonTemplates + "Evening", Access::Create);
    auto& form = Open<frmOptions>();
    Type(form, "cboImpAct", Q("Morning"));
    Type(form, "cboExpAct", Q("Evening"));
    Type(form, "cboPCAct", Q("Night"));
    dynamic_cast<QTabWidget&>(Control(form, "SSTab1")).setCurrentIndex(2);
    Click(form, "chkDemoTemplates");
    const std::string before = Ini();
    Operator_
        .ExpectBeginning(
            T("File error! Cannot save to specified Activity Template filename. Please change the name and "
              "try again.\nPermission denied: "))
        .With(Icon::Warning);
    Global.TheDisk = &disk;

    Click(form, "cmdOK");

    Global.TheDisk = &NativeDisk();
    EXPECT_TRUE(Exists(Global.QuickButtonTemplates + "Morning.ipm"));
    EXPECT_FALSE(Exists(Global.QuickButtonTemplates + "Night.ctm"));
    EXPECT_EQ(TextOf(form, "cboExpAct"), Q(""));
    EXPECT_EQ(Focus(form), Q("cboExpAct"));
    EXPECT_EQ(Tab(form), Q("QuickButtons"));
    EXPECT_EQ(Ini(), before);
    EXPECT_FALSE(form.IsGone());

    // The one that was saved is this screen's own by now: nobody is asked about it.
    Click(form, "cmdOK");
    EXPECT_TRUE(form.IsGone());
}

TEST_F(Options, ATemplateWhoseNameAnActivityCannotKeepIsTold) {
    GivenTemplate(Global.ImportTemplates, "a;b.cst");
    GivenTemplate(Global.ImportTemplates, "\xCE\xB1.cst");
    GivenTemplate(Global.ImportTemplates, " b.cst");
    auto& form = Open<frmOptions>();
    Type(form, "cboImpAct", Q("Morning"));
    for (const char* name : {"a;b.cst", "α.cst", " b.cst"}) {
        Choose(form, "cboImpSS2", Q(name));
        Operator_.Expect(::Lines(msg::NameNotKeptInSettings, T(name))).With(Icon::Warning);

        Click(form, "cmdOK");

        EXPECT_EQ(Focus(form), Q("cboImpSS2"));
    }
    EXPECT_FALSE(Exists(Global.QuickButtonTemplates + "Morning.ipm"));
}

TEST_F(Options, AnActivityThatStandsUnderANameOfThisSystemCanBeChanged) {
    GivenActivity("Why?.ipm", "DemoItems.itm");
    auto& form = Open<frmOptions>();
    Choose(form, "cboImpAct", Q("Why?"));
    Choose(form, "cboImpSS1", Q("DemoCustomers.cst"));

    Click(form, "cmdOK");

    EXPECT_EQ(Activity1("Why?.ipm"), Q("DemoCustomers.cst"));
}

TEST_F(Options, TemplatesAreEditedOnTheirOwnScreenAndNewOnesAreListedAfterIt) {
    auto& form = Open<frmOptions>();
    Choose(form, "cboImpAct", Q("DemoImport"));
    bool editing = false;
    Meanwhile([&] {
        editing = Global.TemplateEditMode && The<frmImport1>().isModal();
        GivenTemplate(Global.ImportTemplates, "New.cst");
        std::filesystem::remove(Global.ImportTemplates + "DemoItems.itm");
        Click(The<frmImport1>(), "cmdCancel");
    });

    Click(form, "cmdEdtImp");

    EXPECT_TRUE(editing);
    EXPECT_FALSE(Global.TemplateEditMode);
    EXPECT_TRUE(Entries(form, "cboImpSS1").contains(Q("New.cst")));
    EXPECT_EQ(TextOf(form, "cboImpSS1"), Q("DemoCustomers.cst"));
    EXPECT_EQ(Hint(form, "cboImpSS2"), Q("DemoItems.itm is missing"));
}

TEST_F(Options, ExportTemplatesAreEditedOnTheExportScreen) {
    auto& form = Open<frmOptions>();
    bool editing = false;
    Meanwhile([&] {
        editing = Global.TemplateEditMode && The<frmExport1>().isModal();
        GivenTemplate(Global.ExportTemplates, "New.xor");
        Click(The<frmExport1>(), "cmdCancel");
    });

    Click(form, "cmdEdtExp");

    EXPECT_TRUE(editing);
    EXPECT_FALSE(Global.TemplateEditMode);
    EXPECT_EQ(Entries(form, "cboExpSS1"), (QStringList{Q(""), Q("DemoOrders.xor"), Q("New.xor")}));
}

// ---- unattended mode ----

TEST_F(Options, AnOptionWithoutASavedSettingIsToldAndNothingIsSaved) {
    GivenSelections();
    auto& form = Open<frmOptions>();
    Type(form, "cboImpAct", Q("Morning"));
    const std::string before = Ini();
    const std::tuple<const char*, const char*, const char*, const char*> selections[] = {
        {"optRemoteSelect", "cboSettings", "Download Tables", "Prices"},
        {"optUploadSelect", "cboULSettings", "Upload Tables", "Orders"},
        {"optRemoteClearSelect", "cboClearSettings", "Clear Tables on Handheld after HotSync", "Old orders"}};
    for (const auto& [option, box, words, entry] : selections) {
        dynamic_cast<QTabWidget&>(Control(form, "SSTab1")).setCurrentIndex(0);
        Click(form, option);
        Operator_
            .Expect(
                T("The '" + std::string(words) +
                  "' option is selected, but no file is selected from the 'Saved Settings' droplist! Please "
                  "select a saved file from the 'Saved Settings' droplist, or select another option."))
            .With(Icon::Warning);

        Click(form, "cmdOK");

        EXPECT_EQ(Tab(form), Q("Unattended Hotsync"));
        EXPECT_EQ(Focus(form), Q(box));
        EXPECT_FALSE(Global.RemoteSelect);
        EXPECT_EQ(Ini(), before);
        Choose(form, box, Q(entry));
    }
    EXPECT_FALSE(Exists(Global.QuickButtonTemplates + "Morning.ipm"));
}

TEST_F(Options, ASettingOfAnOptionThatIsOffCannotBeChosen) {
    GivenSelections();
    auto& form = Open<frmOptions>();
    EXPECT_FALSE(Enabled(form, "cboSettings"));
    Click(form, "optRemoteSelect");
    EXPECT_TRUE(Enabled(form, "cboSettings"));
    Choose(form, "cboSettings", Q("Prices"));

    Click(form, "optNoDownload");

    EXPECT_FALSE(Enabled(form, "cboSettings"));
    EXPECT_EQ(TextOf(form, "cboSettings"), Q("Prices"));
}

TEST_F(Options, OkSavesTheUnattendedSettingsWithTheNamesOfWhatIsOff) {
    GivenSelections();
    auto& form = Open<frmOptions>();
    Type(form, "cboRemoteSettings", Q("Evening"));
    Click(form, "optRemoteSelect");
    Choose(form, "cboSettings", Q("Prices"));
    Click(form, "optNoDownload");
    Click(form, "optUploadSelect");
    Choose(form, "cboULSettings", Q("Orders"));

    Click(form, "cmdOK");

    EXPECT_EQ(Bytes(Global.UnattendedTemplates + "Evening.uhs"),
              "Download=False\r\nDownloadTemplate=Prices\r\nUpload=True\r\nUploadTemplate=Orders\r\n"
              "Clear=False\r\nClearTemplate=\r\n");
    EXPECT_EQ(Global.RemoteSyncSettings, "Evening");
    EXPECT_TRUE(Global.UploadSelect);
    EXPECT_TRUE(InIni("RemoteSyncSettings=Evening"));
    EXPECT_TRUE(InIni("RemoteSelect=False"));
    EXPECT_TRUE(InIni("RemoteSelSettings=Prices"));
    EXPECT_TRUE(InIni("UploadSelect=True"));
    EXPECT_TRUE(InIni("UploadSelSettings=Orders"));
}

TEST_F(Options, ASemicolonInTheNameOfATableSelectionIsKept) {
    GivenTemplate(Global.DownloadTemplates, "Prices; all.dst");
    auto& form = Open<frmOptions>();
    Type(form, "cboRemoteSettings", Q("Evening; late"));
    Click(form, "optRemoteSelect");
    Choose(form, "cboSettings", Q("Prices; all"));

    Click(form, "cmdOK");

    EXPECT_EQ(ReadUnattendedSettings(Global.UnattendedTemplates + "Evening; late.uhs").DownloadTemplate,
              "Prices; all");
    EXPECT_TRUE(InIni("RemoteSyncSettings=Evening; late"));
}

TEST_F(Options, ChosenUnattendedSettingsAreReadAndALineThatIsMissingChangesNothing) {
    GivenSelections();
    WriteWholeFile(Global.UnattendedTemplates + "Evening.uhs",
                   "Download=True\r\nDownloadTemplate=Prices\r\nClear=False\r\n");
    auto& form = Open<frmOptions>();
    Click(form, "optUploadSelect");
    Choose(form, "cboULSettings", Q("Orders"));
    Click(form, "optRemoteClearSelect");

    Choose(form, "cboRemoteSettings", Q("Evening"));

    EXPECT_TRUE(On(form, "optRemoteSelect"));
    EXPECT_EQ(TextOf(form, "cboSettings"), Q("Prices"));
    EXPECT_TRUE(On(form, "optUploadSelect"));
    EXPECT_EQ(TextOf(form, "cboULSettings"), Q("Orders"));
    EXPECT_TRUE(On(form, "optRemoteNoClear"));
}

TEST_F(Options, ATemplateThatUnattendedSettingsNameAndThatIsGoneMustBeChosenAnew) {
    GivenUnattended("Evening.uhs", {true, "Gone", false, "", false, ""});
    auto& form = Open<frmOptions>();
    Choose(form, "cboRemoteSettings", Q("Evening"));
    EXPECT_EQ(Hint(form, "cboSettings"), Q("Gone is missing"));
    Operator_.Expect(msg::NoDownloadSelected);

    Click(form, "cmdOK");

    EXPECT_EQ(ReadUnattendedSettings(Global.UnattendedTemplates + "Evening.uhs").DownloadTemplate, "Gone");
}

TEST_F(Options, UnattendedSettingsThatCannotBeReadAreToldAndChangeNothing) {
    WriteWholeFile(Global.UnattendedTemplates + "Evening.uhs", "Upload=True\r\nDownload=perhaps\r\n");
    auto& form = Open<frmOptions>();
    Operator_.ExpectBeginning(msg::UnattendedUnreadable).With(Icon::Warning);

    Choose(form, "cboRemoteSettings", Q("Evening"));

    EXPECT_TRUE(On(form, "optNoUpload"));
}

TEST_F(Options, UnattendedSettingsAreDeletedWithoutAQuestion) {
    GivenUnattended("Evening.uhs", {});
    auto& form = Open<frmOptions>();
    EXPECT_FALSE(Enabled(form, "cmdDelete"));
    Choose(form, "cboRemoteSettings", Q("Evening"));

    Click(form, "cmdDelete");

    EXPECT_FALSE(Exists(Global.UnattendedTemplates + "Evening.uhs"));
    EXPECT_EQ(TextOf(form, "cboRemoteSettings"), Q(""));
    EXPECT_EQ(Entries(form, "cboRemoteSettings"), QStringList());
}

TEST_F(Options, ANameThatTheSettingsOfThePCCannotKeepIsRefused) {
    auto& form = Open<frmOptions>();
    Type(form, "cboRemoteSettings", Q("βράδυ"));
    Operator_.Expect(::Lines(msg::NameNotKeptInSettings, T("βράδυ")));

    Click(form, "cmdOK");

    EXPECT_TRUE(FilesWithExtension(Global.UnattendedTemplates, "").empty());
    EXPECT_FALSE(form.IsGone());
}

TEST_F(Options, UnattendedSettingsThatCannotBeWrittenAreToldAndNothingCloses) {
    GivenUnattended("Evening.uhs", {});
    const std::string file = Bytes(Global.UnattendedTemplates + "Evening.uhs");
    RefusingDisk disk(Global.UnattendedTemplates, Access::Create);
    auto& form = Open<frmOptions>();
    Choose(form, "cboRemoteSettings", Q("Evening"));
    Click(form, "chkDemoTemplates");
    const std::string before = Ini();
    Operator_.ExpectBeginning(msg::UnattendedNotSaved).With(Icon::Stop);
    Global.TheDisk = &disk;

    Click(form, "cmdOK");

    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(Bytes(Global.UnattendedTemplates + "Evening.uhs"), file);
    EXPECT_EQ(Ini(), before);
    EXPECT_FALSE(form.IsGone());
}

// ---- backups and updates ----

TEST_F(Options, DaysThatWereChosenReachTheSettings) {
    auto& form = Open<frmOptions>();
    EXPECT_TRUE(On(form, "optPurge"));
    EXPECT_EQ(TextOf(form, "cboPurge"), Q("7"));
    Choose(form, "cboPurge", Q("14"));
    Click(form, "chkDemoTemplates");

    Click(form, "cmdOK");

    EXPECT_EQ(Global.PurgeDays, 14);
    EXPECT_TRUE(InIni("PurgeBackup=True"));
    EXPECT_TRUE(InIni("PurgeDays=14"));
    EXPECT_TRUE(InIni("UpdateDemoTemplates=False"));
}

TEST_F(Options, WithNoPurgeTheDaysKeepTheirOldValue) {
    auto& form = Open<frmOptions>();
    Choose(form, "cboPurge", Q("14"));
    Click(form, "optNoPurge");
    EXPECT_FALSE(Enabled(form, "cboPurge"));

    Click(form, "cmdOK");

    EXPECT_TRUE(InIni("PurgeBackup=False"));
    EXPECT_TRUE(InIni("PurgeDays=7"));
}

TEST_F(Options, ToTurnThePurgeOnAgainShowsTheDaysOfTheSettings) {
    auto& form = Open<frmOptions>();
    Choose(form, "cboPurge", Q("14"));
    Click(form, "optNoPurge");

    Click(form, "optPurge");

    EXPECT_TRUE(Enabled(form, "cboPurge"));
    EXPECT_EQ(TextOf(form, "cboPurge"), Q("7"));
}

TEST_F(Options, UnusualDaysOfTheSettingsAreInTheListAtTheirPlaceAndStay) {
    Global.PurgeDays = 8;
    auto& form = Open<frmOptions>();
    const QStringList rows = Entries(form, "cboPurge");
    EXPECT_EQ(rows.indexOf(Q("8")), rows.indexOf(Q("7")) + 1);
    EXPECT_EQ(TextOf(form, "cboPurge"), Q("8"));

    Click(form, "cmdOK");

    EXPECT_TRUE(InIni("PurgeDays=8"));
}

TEST_F(Options, TheDateAndItsButtonShowWithTheirOptionAndHideWithTheOthers) {
    Global.Clock = [] { return DateTime{2026, 11, 15, 9, 30, 0}; };
    auto& form = Open<frmOptions>();
    EXPECT_FALSE(Visible(form, "DTPicker3"));
    EXPECT_EQ(TextOf(form, "optDelBackup"), Q("Delete Backup Tables dated before:"));

    for (const char* other : {"optPurge", "optNoPurge"}) {
        Click(form, "optDelBackup");
        dynamic_cast<QTabWidget&>(Control(form, "SSTab1")).setCurrentIndex(2);
        EXPECT_TRUE(Visible(form, "DTPicker3"));
        EXPECT_TRUE(Visible(form, "cmdDelBU"));
        EXPECT_FALSE(Enabled(form, "cboPurge"));
        EXPECT_EQ(dynamic_cast<QDateEdit&>(Control(form, "DTPicker3")).text(), Q("2026-11-15"));

        Click(form, other);

        EXPECT_FALSE(Visible(form, "DTPicker3"));
        EXPECT_FALSE(Visible(form, "cmdDelBU"));
    }
}

class DeletingBackups : public Options {
protected:
    DeletingBackups() {
        Global.Clock = [] { return DateTime{2026, 11, 15, 9, 30, 0}; };
        for (const char* name : {"61113120000", "61114235959", "61115080000"}) {
            for (const char* file : {"ZUKOrHdr.dbf", "ZUKOrLin.DBF", "Backup.txt"}) {
                GivenFile("app/Backup/" + std::string(name) + "/" + file, "x");
            }
        }
        form_ = &Open<frmOptions>();
        dynamic_cast<QTabWidget&>(Control(*form_, "SSTab1")).setCurrentIndex(2);
        Click(*form_, "optDelBackup");
    }

    static Text Question(const char* date) {
        return T("WARNING! You are about to permanently delete backup tables created or modified before " +
                 std::string(date) + " from all Backup sub-directories. Are you sure you want to continue?");
    }

    static bool Stands(const std::string& backup) {
        return Exists(Global.BackupPath + backup + "/ZUKOrHdr.dbf");
    }

    frmOptions* form_ = nullptr;
};

TEST_F(DeletingBackups, YesDeletesTheTablesFromBeforeTheDateAndCountsThem) {
    Operator_.Expect(Question("Sunday, November 15, 2026")).With(Icon::Warning).Answer(Answer::Yes);
    Operator_.Expect(T("A total of 4 backup tables were deleted!"));

    Click(*form_, "cmdDelBU");

    EXPECT_FALSE(Stands("61113120000"));
    EXPECT_FALSE(Stands("61114235959"));
    EXPECT_TRUE(Stands("61115080000"));
    EXPECT_TRUE(Exists(Global.BackupPath + "61114235959/Backup.txt"));
    EXPECT_FALSE(form_->IsGone());
}

TEST_F(DeletingBackups, TheDateOnTheScreenIsTheOneThatCounts) {
    dynamic_cast<QDateEdit&>(Control(*form_, "DTPicker3")).setDate(QDate(2026, 11, 14));
    Operator_.Expect(Question("Saturday, November 14, 2026")).Answer(Answer::Yes);
    Operator_.Expect(T("A total of 2 backup tables were deleted!"));

    Click(*form_, "cmdDelBU");

    EXPECT_TRUE(Stands("61114235959"));
}

TEST_F(DeletingBackups, NoDeletesNothing) {
    Operator_.Expect(Question("Sunday, November 15, 2026")).Answer(Answer::No);

    Click(*form_, "cmdDelBU");

    EXPECT_TRUE(Stands("61113120000"));
}

TEST_F(DeletingBackups, ATableThatCannotBeDeletedIsToldAndTheOthersGo) {
    KeepingDisk disk("ZUKOrHdr.dbf");
    Global.TheDisk = &disk;
    Operator_.Expect(Question("Sunday, November 15, 2026")).Answer(Answer::Yes);
    for (int backup = 1; backup <= 2; ++backup)
        Operator_.ExpectBeginning(msg::CannotDelete).With(Icon::Information);
    Operator_.Expect(T("A total of 2 backup tables were deleted!"));

    Click(*form_, "cmdDelBU");

    EXPECT_TRUE(Stands("61113120000"));
    Global.TheDisk = &NativeDisk();
}

TEST_F(DeletingBackups, OkBehindItLeavesThePurgeAsItWas) {
    Click(*form_, "cmdOK");

    EXPECT_TRUE(InIni("PurgeBackup=True"));
    EXPECT_TRUE(InIni("PurgeDays=7"));
}

// ---- closing ----

TEST_F(Options, OkLeavesTheSettingsThatItDoesNotShow) {
    Global.WindowState = 2;
    Global.LastReset = {2026, 11, 1, 8, 15, 0};
    Global.MainTop = 300;
    auto& form = Open<frmOptions>();

    Click(form, "cmdOK");

    EXPECT_TRUE(form.IsGone());
    EXPECT_TRUE(InIni("WindowState=2"));
    EXPECT_TRUE(InIni("MainTop=300"));
    EXPECT_TRUE(InIni("LastReset=2026-11-01 08:15:00"));
    EXPECT_EQ(Global.WindowState, 2);
}

TEST_F(Options, CancelAndEscSaveNothing) {
    for (const bool escape : {false, true}) {
        auto& form = Open<frmOptions>();
        const std::string before = Ini();
        Type(form, "cboImpAct", Q("Morning"));
        Choose(form, "cboPurge", Q("14"));

        if (escape)
            QTest::keyClick(&form, Qt::Key_Escape);
        else
            Click(form, "cmdCancel");

        EXPECT_TRUE(form.IsGone());
        EXPECT_EQ(Ini(), before);
        EXPECT_EQ(Global.PurgeDays, 7);
        EXPECT_FALSE(Exists(Global.QuickButtonTemplates + "Morning.ipm"));
        Settle();
    }
}

TEST_F(Options, EnterInANameIsOk) {
    auto& form = Open<frmOptions>();
    Type(form, "cboImpAct", Q("Morning"));

    QTest::keyClick(dynamic_cast<QComboBox&>(Control(form, "cboImpAct")).lineEdit(), Qt::Key_Return);

    EXPECT_TRUE(form.IsGone());
    EXPECT_TRUE(Exists(Global.QuickButtonTemplates + "Morning.ipm"));
}

TEST_F(Options, SettingsThatCannotBeWrittenAreToldAndNothingCloses) {
    RefusingDisk disk(Global.IniFile, Access::Create);
    auto& form = Open<frmOptions>();
    Choose(form, "cboPurge", Q("14"));
    const std::string before = Ini();
    Operator_.ExpectBeginning(msg::ConfigurationError).With(Icon::Stop);
    Global.TheDisk = &disk;

    Click(form, "cmdOK");

    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(Ini(), before);
    EXPECT_FALSE(form.IsGone());
    Click(form, "cmdOK");
    EXPECT_TRUE(InIni("PurgeDays=14"));
}

// ---- the ways to it ----

TEST_F(Options, TheToolsOfTheMainScreenOpenItAloneAndModally) {
    Operator_.Expect(msg::PalmDesktopMissing);
    auto& main = Open<frmMain1>();
    int opened = 0;
    const auto look = [&] {
        opened += The<frmOptions>().isModal() && !IfLoaded<frmQBImport>() ? 1 : 0;
        Click(The<frmOptions>(), "cmdCancel");
    };

    Open<frmQBImport>();
    Meanwhile(look);
    Click(main, "lblSetupPC");
    Open<frmQBImport>();
    Meanwhile(look);
    ClickMenu(main, "mnuPCSetup");

    EXPECT_EQ(opened, 2);
}

TEST_F(Options, SetupOnAQuickButtonScreenTurnsToItsActivitiesAndShowsTheOneThatIsChosen) {
    auto& form = Open<frmQBExport>();
    Choose(form, "cboMaster", Q("DemoExport"));
    QStringList seen;
    bool flag = false;
    Meanwhile([&] {
        auto& options = The<frmOptions>();
        seen = {Tab(options), Focus(options), TextOf(options, "cboExpAct"), TextOf(options, "cboExpSS1"),
                TextOf(options, "cboImpAct")};
        flag = Global.TemplateEditMode;
        Choose(options, "cboExpSS2", Q("DemoOrders.xor"));
        Click(options, "cmdOK");
    });

    Click(form, "cmdSetup");

    EXPECT_EQ(seen,
              (QStringList{Q("QuickButtons"), Q("cboExpAct"), Q("DemoExport"), Q("DemoOrders.xor"), Q("")}));
    EXPECT_TRUE(flag);
    EXPECT_FALSE(Global.TemplateEditMode);
    EXPECT_EQ(TextOf(form, "cboMaster"), Q("DemoExport"));
    EXPECT_EQ(TextOf(form, "lblSST_2"), Q("DemoOrders.xor"));
    EXPECT_TRUE(Enabled(form, "cmdOK"));
}

TEST_F(Options, AnOfficeWithoutActivitiesGetsItsFirstOneByTheSetupButton) {
    std::filesystem::remove(Global.QuickButtonTemplates + "DemoImport.ipm");
    auto& form = Open<frmQBImport>();
    EXPECT_TRUE(Visible(form, "lblNoActivity"));
    Meanwhile([&] {
        auto& options = The<frmOptions>();
        EXPECT_EQ(Focus(options), Q("cboImpAct"));
        Type(options, "cboImpAct", Q("Morning"));
        Choose(options, "cboImpSS1", Q("DemoItems.itm"));
        Click(options, "cmdOK");
    });

    Click(form, "cmdSetup");

    EXPECT_FALSE(Visible(form, "lblNoActivity"));
    EXPECT_EQ(Entries(form, "cboMaster"), QStringList{Q("Morning")});
    EXPECT_EQ(TextOf(form, "cboMaster"), Q(""));
    EXPECT_FALSE(Enabled(form, "cmdOK"));
}

TEST_F(Options, AnActivityThatWasDeletedThereIsNoLongerChosen) {
    auto& form = Open<frmQBImport>();
    Choose(form, "cboMaster", Q("DemoImport"));
    Operator_.Expect(T("Are you sure you want to delete DemoImport")).Answer(Answer::Yes);
    Meanwhile([&] {
        Click(The<frmOptions>(), "cmdDelImpAct");
        Click(The<frmOptions>(), "cmdCancel");
    });

    Click(form, "cmdSetup");

    EXPECT_EQ(Entries(form, "cboMaster"), QStringList());
    EXPECT_EQ(TextOf(form, "lblSST_1"), Q(""));
    EXPECT_FALSE(Enabled(form, "cmdOK"));
    EXPECT_TRUE(Visible(form, "lblNoActivity"));
}

TEST_F(Options, ADeletedSettingIsNotChosenAtTheNextStartAlsoAfterCancel) {
    GivenUnattended("Evening.uhs", {});
    Global.RemoteSyncSettings = "evening";
    Global.PurgeDays = 5;
    UpdateIniFile();
    auto& form = Open<frmOptions>();
    Choose(form, "cboPurge", Q("30"));

    Click(form, "cmdDelete");
    Click(form, "cmdCancel");

    EXPECT_TRUE(InIni("RemoteSyncSettings="));
    EXPECT_TRUE(InIni("PurgeDays=5")) << "nothing else was saved";
}

TEST_F(Options, DeletingAnotherSettingLeavesTheChosenOne) {
    GivenUnattended("Evening.uhs", {});
    GivenUnattended("Night.uhs", {});
    Global.RemoteSyncSettings = "Evening";
    UpdateIniFile();
    auto& form = Open<frmOptions>();
    Choose(form, "cboRemoteSettings", Q("Night"));

    Click(form, "cmdDelete");
    Click(form, "cmdCancel");

    EXPECT_TRUE(InIni("RemoteSyncSettings=Evening"));
}

// ---- the language ----

TEST_F(Options, EnglishAndEachLanguageThatThereIsCanBeChosen) {
    GivenFile("app/Languages/Suomi.tsv", "");
    GivenFile("app/Languages/Deutsch.tsv", "");

    auto& form = Open<frmOptions>();

    EXPECT_EQ(Entries(form, "cboLanguage"), (QStringList{Q("English"), Q("Deutsch"), Q("Suomi")}));
    EXPECT_EQ(TextOf(form, "cboLanguage"), Q("English"));
}

TEST_F(Options, AChosenLanguageIsKeptForTheNextStartAndTheOperatorIsToldSo) {
    GivenFile("app/Languages/Deutsch.tsv", "137\tYes\tJ\t\"Ja\"\n");
    auto& form = Open<frmOptions>();
    Choose(form, "cboLanguage", Q("Deutsch"));
    Operator_.Expect(msg::LanguageFromNextStart).With(Icon::Information);

    Click(form, "cmdOK");

    EXPECT_EQ(IfLoaded<frmOptions>(), nullptr);
    EXPECT_EQ(T("Yes"), msg::Yes);
    EXPECT_EQ(LoadTextsOfOffice(Global.AppPath), "");
    EXPECT_EQ(T("Ja"), msg::Yes);
}

TEST_F(Options, EnglishComesBackTheSameWay) {
    GivenFile("app/Languages/Deutsch.tsv", "137\tYes\tJ\t\"Ja\"\n");
    Registry::SetLanguage("Deutsch");
    auto& form = Open<frmOptions>();
    EXPECT_EQ(TextOf(form, "cboLanguage"), Q("Deutsch"));
    Choose(form, "cboLanguage", Q("English"));
    Operator_.Expect(msg::LanguageFromNextStart);

    Click(form, "cmdOK");

    EXPECT_EQ(Registry::Language(Global.AppPath), "");
}

TEST_F(Options, ALanguageThatStaysIsNotToldOf) {
    GivenFile("app/Languages/Deutsch.tsv", "");
    Registry::SetLanguage("Deutsch");
    auto& form = Open<frmOptions>();

    Click(form, "cmdOK");

    EXPECT_EQ(Registry::Language(Global.AppPath), "Deutsch");
}

TEST_F(Options, CancelKeepsTheLanguageAsItWas) {
    GivenFile("app/Languages/Deutsch.tsv", "");
    auto& form = Open<frmOptions>();
    Choose(form, "cboLanguage", Q("Deutsch"));

    Click(form, "cmdCancel");

    EXPECT_EQ(Registry::Language(Global.AppPath), "");
}

TEST_F(Options, ALanguageWhoseFileHasGoneIsNamedAndStaysChosen) {
    Registry::SetLanguage("Deutsch");
    auto& form = Open<frmOptions>();
    EXPECT_EQ(Hint(form, "cboLanguage"), Q("Deutsch is missing"));

    Click(form, "cmdOK");

    EXPECT_EQ(Registry::Language(Global.AppPath), "Deutsch");
}

TEST_F(Options, EachOfficeHasItsOwnLanguage) {
    Registry::SetLanguage("Deutsch");

    EXPECT_EQ(Registry::Language(Folder() + "another/"), "");
}

} // namespace

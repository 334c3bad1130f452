#include "core/Directories.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/Settings.h"
#include "core/forms/frmProgress.h"
#include "forms/FormTest.h"
#include "forms/TopicList.h"
#include "maintenance/Totals.h"
#include "platform/Convert.h"
#include "platform/Registry.h"
#include "platform/SingleInstance.h"
#include "platform/Translation.h"
#include "program/forms/frmMain1.h"
#include "sync/forms/frmHHStatus.h"
#include "tools/forms/frmAbout.h"

#include <QAction>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFile>
#include <QLabel>
#include <QLibraryInfo>
#include <QPushButton>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QTableView>
#include <QTimer>
#include <QToolButton>

#include <filesystem>
#include <map>

namespace {

DateTime Noon() {
    return {2026, 11, 15, 12, 0, 0};
}

class MainScreen : public FormTest {
protected:
    MainScreen() {
        GivenOffice();
        Global.Clock = Noon;
    }

    /// The start that an operator without a HotSync Manager sees.
    frmMain1& Start() {
        Operator_.Expect(msg::PalmDesktopMissing).With(Icon::Information);
        return Open<frmMain1>();
    }

    static std::vector<std::string> TotalsRow(const std::string& event, const std::string& id,
                                              const std::string& time) {
        return {"2|5|10.5|2|5|10.5|M1|" + event + "|" + time + "|" + id + "|M1000001"};
    }

    void GivenUploads(int count) {
        std::vector<std::string> rows{
            "TP_NUMHEAD|TP_NUMLINE|TP_DOL_LIN|TP_CURHEAD|TP_CURLINE|TP_CURDOL|TP_MACHINE|"
            "TP_EVENT|TP_DATETIM|TP_HOTSYNC|TP_LSTONUM"};
        for (int i = count; i >= 1; --i) {
            rows.push_back(TotalsRow("UPLOAD-ADD", "HH" + std::to_string(i),
                                     "2026-11-15 10:0" + std::to_string(i) + ":00")[0]);
        }
        GivenRows("ZUKTOTALPC", rows);
    }

    static QString Page(frmMain1& form) { return TextOf(form, "lblRemoteSync"); }

    /// Of the title of the Tools quadrant, with one of each page's labels that are to be seen.
    struct PageLook {
        QString Title;
        QImage Picture;
        std::vector<std::string> Labels;
    };
    static PageLook LookOf(frmMain1& form) {
        PageLook look{Page(form), dynamic_cast<QLabel&>(Control(form, "imgTools")).pixmap().toImage(), {}};
        for (const char* label : {"lblUpdateHSUsers", "lblQC", "lblDemoInstall", "lblHelpCompany",
                                  "lblSysCust", "lblSysOrders1"}) {
            if (Visible(form, label)) look.Labels.push_back(label);
        }
        return look;
    }

    /// Everything in the office but the trace, by its path.
    std::map<std::string, std::string> Office() const {
        std::map<std::string, std::string> files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(Global.AppPath)) {
            const std::string path = entry.path().string();
            if (entry.is_regular_file() && !path.ends_with("Events.log")) files[path] = Bytes(path);
        }
        return files;
    }
};

TEST_F(MainScreen, StartsWithoutAHotSyncManagerAndSaysSo) {
    auto& form = Start();

    EXPECT_FALSE(Global.Ending);
    EXPECT_EQ(form.windowTitle(), QStringLiteral("ZUK Tramble PC"));
    EXPECT_EQ(Global.CreatorID, "ZUK2");
    EXPECT_EQ(Global.Events.Entry(TraceEntries - 1), "");
    EXPECT_TRUE(Exists(Global.AppPath + "ZUKTramble.ini"));
}

TEST_F(MainScreen, ASecondStartShowsTheMessageAndEnds) {
    ASSERT_TRUE(SingleInstance::Take(Global.AppPath));
    Global.TheDisk->Remove(Global.AppPath + "Events.log");
    Operator_.Expect(msg::AlreadyRunning);

    The<frmMain1>();

    EXPECT_TRUE(Global.Ending);
    EXPECT_FALSE(Exists(Global.AppPath + "Events.log"));
    SingleInstance::Release();
}

TEST_F(MainScreen, MissingInstalledTablesStopTheStartBeforeAnyTableIsTouched) {
    Global.TheDisk->Remove(Global.InstallPath + "ZUKOrHdr.dbf");
    WriteWholeFile(Global.DBFEmptyPath + "ZUKStray.dbf", "x");
    Operator_.Expect(msg::PalmDesktopMissing);
    Operator_.Expect(msg::TablesMissing).With(Icon::Stop);

    The<frmMain1>();

    EXPECT_TRUE(Global.Ending);
    EXPECT_TRUE(Exists(Global.DBFEmptyPath + "ZUKStray.dbf"));
}

TEST_F(MainScreen, ATableThatIsMissingIsNotReplacedAtTheStart) {
    Global.TheDisk->Remove(Global.DBFPath + "ZUKCust.dbf");

    Start();

    EXPECT_FALSE(Exists(Global.DBFPath + "ZUKCust.dbf"));
    EXPECT_TRUE(Exists(Global.DBFEmptyPath + "ZUKCust.dbf"));
}

TEST_F(MainScreen, OldBackupsLoseTheirTablesAtTheStartOnlyWhenThePurgeIsOn) {
    for (const bool purge : {false, true}) {
        // Eight days before noon of the 15th, and the text that says what it was.
        GivenFile("app/Backup/61107115959/ZUKOrHdr.dbf", "x");
        GivenFile("app/Backup/61107115959/Backup.txt", "EXPORT\r\n");
        GivenFile("app/Backup/61109120000/ZUKOrHdr.dbf", "x");
        WriteWholeFile(Global.AppPath + "ZUKTramble.ini",
                       std::string("PurgeDays=7\r\nPurgeBackup=") + (purge ? "True" : "False") + "\r\n");

        auto& form = Start();

        EXPECT_EQ(Exists(Global.BackupPath + "61107115959/ZUKOrHdr.dbf"), !purge);
        EXPECT_TRUE(Exists(Global.BackupPath + "61107115959/Backup.txt"));
        EXPECT_TRUE(Exists(Global.BackupPath + "61109120000/ZUKOrHdr.dbf"));
        form.Unload();
        Settle();
        Global.Ending = false;
    }
}

TEST_F(MainScreen, ADownloadSelectionThatIsGoneIsTurnedOffWithOneMessage) {
    WriteWholeFile(Global.AppPath + "ZUKTramble.ini",
                   "RemoteSelect=True\r\nRemoteSelSettings=Gone\r\nUploadSelect=True\r\n");
    Operator_.Expect(msg::PalmDesktopMissing);
    Operator_.Expect(msg::DownloadSelectionMissing);

    Open<frmMain1>();

    EXPECT_FALSE(Global.RemoteSelect);
    EXPECT_FALSE(Global.UploadSelect);
    const auto lines = EngineTest::Lines(Global.AppPath + "ZUKTramble.ini");
    EXPECT_NE(std::find(lines.begin(), lines.end(), "RemoteSelect=False"), lines.end());
}

TEST_F(MainScreen, AFileErrorInTheStartIsToldAndEndsTheProgram) {
    Global.TheDisk->Remove(Global.InstallPath + "ZUKPAY.dbf");
    Operator_.Expect(msg::PalmDesktopMissing);
    Operator_.ExpectBeginning(msg::StartFileError).With(Icon::Stop);

    The<frmMain1>();

    EXPECT_TRUE(Global.Ending);
}

TEST_F(MainScreen, NextThreeTimesComesBackAndSoDoesPrevious) {
    auto& form = Start();

    for (const char* button : {"lblNext", "lblPrev"}) {
        QStringList pages{Page(form)};
        for (int i = 0; i < 3; ++i) {
            Click(form, button);
            pages << Page(form);
        }
        const QStringList next{QStringLiteral("Tools"), QStringLiteral("System Summary"),
                               QStringLiteral("QuickStart"), QStringLiteral("Tools")};
        const QStringList previous(next.rbegin(), next.rend());
        EXPECT_EQ(pages, std::string(button) == "lblNext" ? next : previous);
    }
}

TEST_F(MainScreen, EachPageShowsItsOwnLabelsAndItsOwnPicture) {
    auto& form = Start();
    const PageLook tools = LookOf(form);
    Click(form, "lblPrev");
    const PageLook start = LookOf(form);
    Click(form, "lblPrev");
    const PageLook summary = LookOf(form);
    Click(form, "lblPrev");
    const PageLook again = LookOf(form);

    using Labels = std::vector<std::string>;
    EXPECT_EQ(tools.Labels, (Labels{"lblUpdateHSUsers", "lblQC"}));
    EXPECT_EQ(start.Labels, (Labels{"lblDemoInstall", "lblHelpCompany"}));
    EXPECT_EQ(summary.Labels, (Labels{"lblSysCust", "lblSysOrders1"}));
    EXPECT_EQ(again.Labels, tools.Labels);
    EXPECT_TRUE(again.Picture == tools.Picture);
    EXPECT_FALSE(start.Picture == tools.Picture);
    EXPECT_FALSE(summary.Picture == tools.Picture);
    EXPECT_FALSE(summary.Picture == start.Picture);
}

TEST_F(MainScreen, EachQuadrantAndEachPageOfToolsOpensItsTopic) {
    TopicList help;
    auto& form = Start();
    for (const char* image : {"imgHHStatusHelp", "imgMatrixHelp", "imgQBHelp"}) Click(form, image);
    for (int page = 0; page < 3; ++page) {
        Click(form, "imgToolsHelp");
        Click(form, "lblPrev");
    }

    EXPECT_EQ(help.Opened(), (std::vector<std::string>{"Handheld_Status.htm", "Recent_Uploaded_Orders.htm",
                                                       "QuickButtons.htm", "_Tools_.htm", "QuickStart.htm",
                                                       "System_Summary.htm"}));
}

TEST_F(MainScreen, TheLabelsOfEnteringOrdersAndOfTheUsersHaveTopicsOfTheirOwn) {
    TopicList help;
    auto& form = Start();

    Press(form, "lblUpdateHSUsers", Qt::Key_F1);
    EXPECT_EQ(help.Opened(), std::vector<std::string>{"Update_Hotsync_Users.htm"});

    Click(form, "lblPrev");
    Click(form, "lblHelpOrders");
    EXPECT_EQ(help.Opened(), std::vector<std::string>{"QUICK_START_ENTERING_SALES_ORDERS_.htm"});
    EXPECT_TRUE(form.isVisible());
}

TEST_F(MainScreen, TheSummaryCountsTheRecordsWhenItIsEntered) {
    auto& form = Start();
    GivenRows("ZUKCUST", {"C_CODE", "A1", "A2", "A3"});
    GivenRows("ZUKITEM", {"I_ITEMCODE", "I1"});

    Click(form, "lblNext");

    EXPECT_EQ(TextOf(form, "lblSysCust1"), QStringLiteral("3"));
    EXPECT_EQ(TextOf(form, "lblSysItems1"), QStringLiteral("1"));
    EXPECT_EQ(TextOf(form, "lblSysOrders1"), QStringLiteral("0"));
}

TEST_F(MainScreen, ATableThatCannotBeReadHasNoCountAndIsToldOnlyWhereTheCountsAreLookedAt) {
    auto& form = Start();
    GivenRows("ZUKITEM", {"I_ITEMCODE", "I1", "I2"});
    WriteWholeFile(ResolvePath(Global.DBFPath + "ZUKCUST.DBF"), "no table");

    form.RefreshRecordCounts(); // as behind an import of items
    EXPECT_EQ(TextOf(form, "lblSysCust1"), QString());
    EXPECT_EQ(TextOf(form, "lblSysItems1"), QStringLiteral("2"));

    Operator_.ExpectBeginning(msg::FileError).With(Icon::Warning);
    Click(form, "lblNext");
    EXPECT_EQ(TextOf(form, "lblSysOrders1"), QStringLiteral("0"));
    EXPECT_FALSE(Global.Ending);
}

TEST_F(MainScreen, EightUploadsShowTheSevenNewestFirst) {
    Global.LastReset = {2026, 11, 15, 0, 0, 0};
    GivenUploads(8);

    auto& form = Start();

    const auto rows = GridRows(form, "FGTot");
    ASSERT_EQ(rows.size(), 7U);
    EXPECT_EQ(rows[0], (QStringList{QStringLiteral("HH8"), QStringLiteral("2026-11-15 10:08:00"),
                                    QStringLiteral("2"), QStringLiteral("5"), QStringLiteral("10.50")}));
    EXPECT_EQ(rows[6][0], QStringLiteral("HH2"));
}

TEST_F(MainScreen, LargeNumbersOfAnUploadTakeNoRoomFromTheNameOfItsHandheld) {
    const std::string name = "Bartholomew Featherstone";
    std::vector<std::string> row = TotalsRow("UPLOAD-ADD", name, "2026-11-15 10:01:00");
    GivenRows("ZUKTOTALPC", {"TP_NUMHEAD|TP_NUMLINE|TP_DOL_LIN|TP_CURHEAD|TP_CURLINE|TP_CURDOL|TP_MACHINE|"
                             "TP_EVENT|TP_DATETIM|TP_HOTSYNC|TP_LSTONUM",
                             row[0]});

    auto& form = Start();

    const auto& grid = dynamic_cast<QTableView&>(Control(form, "FGTot"));
    ASSERT_EQ(grid.model()->rowCount(), 1);
    EXPECT_GT(grid.columnWidth(0), grid.fontMetrics().horizontalAdvance(QString::fromStdString(name)));
}

TEST_F(MainScreen, AVeryLongIdIsCutOnItsBrickAndPushesNoOtherOutOfSight) {
    const std::string longest(30, 'm');
    GivenRows("ZUKLINK", {"LK_HOTSYNC", longest, "Ben", "Chloe", "Diego", "Emi"});
    auto& form = Start();
    form.GetHHBricks();
    Settle();

    const QWidget& last = Control(form, "cmdHHHSID_5");
    EXPECT_FALSE(last.visibleRegion().isEmpty());
    EXPECT_EQ(last.visibleRegion().boundingRect().width(), last.width());
    EXPECT_TRUE(Control(form, "cmdHHHSID_1").toolTip().startsWith(QString::fromStdString(longest)));
}

TEST_F(MainScreen, AUsualNameStandsInFullOnItsBrickBesideTheStatus) {
    GivenRows("ZUKLINK", {"LK_HOTSYNC", "Anna Berg", "Ben Okafor", "Frank Weiss"});
    auto& form = Start();
    form.GetHHBricks();
    Settle();

    for (const char* name : {"cmdHHHSID_1", "cmdHHHSID_2", "cmdHHHSID_3"}) {
        const auto& brick = dynamic_cast<QToolButton&>(Control(form, name));
        EXPECT_FALSE(brick.icon().isNull());
        EXPECT_EQ(brick.toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
        EXPECT_GE(brick.width(), brick.fontMetrics().horizontalAdvance(brick.text())) << name;
    }
}

TEST_F(MainScreen, AResetHidesTheUploadsUntilTheNextOneAndKeepsTheirRecords) {
    GivenUploads(3);
    auto& form = Start();
    ASSERT_EQ(GridRows(form, "FGTot").size(), 3U);
    Operator_.Expect(msg::ResetQuestion).Answer(Answer::Yes);

    Click(form, "cmdReset");

    EXPECT_TRUE(GridRows(form, "FGTot").empty());
    EXPECT_TRUE(Visible(form, "lblNoUploads"));
    EXPECT_EQ(RecordCount("ZUKTOTALPC"), 3);
    EXPECT_EQ(Global.LastReset, Noon());

    Global.Clock = [] { return DateTime{2026, 11, 15, 12, 0, 1}; };
    Global.CurrentHotSyncID = "Anna";
    RecordTotals(ProgressFlag::UploadAdd);
    form.GetPCTotals();

    const auto rows = GridRows(form, "FGTot");
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0][0], QStringLiteral("Anna"));
    EXPECT_FALSE(Visible(form, "lblNoUploads"));
    EXPECT_EQ(RecordCount("ZUKTOTALPC"), 4);
}

TEST_F(MainScreen, AResetWithNoChangesNothing) {
    GivenUploads(3);
    GivenRows("ZUKLINK", {"LK_HOTSYNC", "Anna", "Ben"});
    WriteWholeFile(Global.InstallPath + "HSStatus.dat", "Anna" + std::string(26, ' ') + "G" +
                                                            std::string(29, ' ') + "S\r\nBen" +
                                                            std::string(27, ' ') + "B\r\n");
    auto& form = Start();
    const DateTime reset = Global.LastReset;
    const auto rows = GridRows(form, "FGTot");
    const auto office = Office();
    const auto statuses = Global.HHStatus;
    const auto marks = Global.HHStatusStd;
    ASSERT_EQ(rows.size(), 3U);
    Operator_.Expect(msg::ResetQuestion).Answer(Answer::No);

    Click(form, "cmdReset");

    EXPECT_EQ(GridRows(form, "FGTot"), rows);
    EXPECT_EQ(Global.LastReset, reset);
    EXPECT_EQ(Global.HHStatus, statuses);
    EXPECT_EQ(Global.HHStatusStd, marks);
    EXPECT_FALSE(Enabled(form, "cmdHHHSIDStd_1")) << "the mark shows on the brick";
    EXPECT_EQ(Office(), office);
}

TEST_F(MainScreen, AResetEmptiesTheMarksOfTheHandhelds) {
    GivenRows("ZUKLINK", {"LK_HOTSYNC", "Anna", "Ben"});
    WriteWholeFile(Global.InstallPath + "HSStatus.dat",
                   "Anna" + std::string(26, ' ') + "G" + std::string(29, ' ') + "S\r\nBen\r\n");
    auto& form = Start();
    Operator_.Expect(msg::ResetQuestion).Answer(Answer::Yes);

    Click(form, "cmdReset");

    const auto lines = EngineTest::Lines(Global.InstallPath + "HSStatus.dat");
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0], "Anna" + std::string(56, ' '));
}

TEST_F(MainScreen, SixHandheldsGiveTwoRowsOfBricks) {
    GivenRows("ZUKLINK", {"LK_HOTSYNC", "A", "B", "C", "D", "E", "F"});

    auto& form = Start();
    form.resize(920, 620);
    Settle();

    std::map<int, int> perRow;
    for (const auto* brick :
         form.findChildren<QToolButton*>(QRegularExpression(QStringLiteral("^cmdHHHSIDStd_")))) {
        ++perRow[brick->y()];
    }
    ASSERT_EQ(perRow.size(), 2U);
    EXPECT_EQ(perRow.begin()->second, 5);
    EXPECT_EQ(perRow.rbegin()->second, 1);
}

TEST_F(MainScreen, TheFamilyDrawnLastIsShownAndTellsEachState) {
    GivenRows("ZUKLINK", {"LK_HOTSYNC", "Anna", "Ben", "Cleo"});
    WriteWholeFile(Global.InstallPath + "HSStatus.dat",
                   "Anna" + std::string(26, ' ') + "G\r\nBen" + std::string(27, ' ') + "B\r\nCleo\r\n");
    auto& form = Start();

    form.GetHHBricks();
    Settle();

    EXPECT_TRUE(form.findChildren<QToolButton*>(QStringLiteral("cmdHHHSIDStd_1")).empty());
    EXPECT_EQ(Control(form, "cmdHHHSID_1").accessibleName(), QStringLiteral("Anna: Sync OK"));
    EXPECT_EQ(Control(form, "cmdHHHSID_2").accessibleName(), QStringLiteral("Ben: Bad Sync"));
    EXPECT_EQ(Control(form, "cmdHHHSID_3").accessibleName(), QStringLiteral("Cleo: Not Synced"));
}

TEST_F(MainScreen, ABrickOfAHandheldThatNeverSyncedSaysThatThereAreNoDetails) {
    GivenRows("ZUKLINK", {"LK_HOTSYNC", "Anna"});
    auto& form = Start();
    form.GetHHBricks();
    Operator_.Expect(msg::NoStatusDetails).With(Icon::Information);

    Click(form, "cmdHHHSID_1");
}

TEST_F(MainScreen, ABrickShowsTheFiguresOfBothSidesAndTheirDifference) {
    GivenRows("ZUKLINK", {"LK_HOTSYNC", "Ben", "Anna"});
    GivenRows("ZUKAudHH", {"TH_NUMHEAD|TH_NUMLINE|TH_DOL_LIN", "3|9|120.5"});
    std::filesystem::create_directories(Global.HHTotalsPath + "Anna");
    std::filesystem::rename(Global.DBFPath + "ZUKAudHH.dbf", Global.HHTotalsPath + "Anna/ZUKAudHH.dbf");
    GivenRows("ZUKTOTALPC",
              {"TP_NUMHEAD|TP_NUMLINE|TP_DOL_LIN|TP_HOTSYNC", "9|9|9|Ben", "2|9|100|anna", "1|1|1|Anna"});
    auto& form = Start();
    form.GetHHBricks();
    std::vector<QStringList> rows;
    QString title;
    bool anyCellIsMarked = true;
    QTimer::singleShot(0, qApp, [&] {
        auto& details = The<frmHHStatus>();
        anyCellIsMarked = dynamic_cast<QTableView&>(Control(details, "FG1")).currentIndex().isValid();
        title = TextOf(details, "lblID");
        rows = GridRows(details, "FG1");
        Click(details, "cmdOK");
    });

    Click(form, "cmdHHHSID_2");

    EXPECT_EQ(title, QStringLiteral("Hotsync ID: Anna"));
    EXPECT_FALSE(anyCellIsMarked) << "nothing can be selected here";
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0].join(QLatin1Char('|')), QStringLiteral("Handheld|3|9|120.50"));
    EXPECT_EQ(rows[1].join(QLatin1Char('|')), QStringLiteral("PC|2|9|100.00"));
    EXPECT_EQ(rows[2].join(QLatin1Char('|')), QStringLiteral("Difference|1|0|20.50"));
}

TEST_F(MainScreen, ASavedMinimisedStateStartsNormalAndAMaximisedOneMaximised) {
    for (const int state : {1, 2}) {
        WriteWholeFile(Global.AppPath + "ZUKTramble.ini", "WindowState=" + std::to_string(state) + "\r\n");

        auto& form = Start();

        EXPECT_EQ(form.isMaximized(), state == 2);
        EXPECT_FALSE(form.isMinimized());
        form.Unload();
        Settle();
        Global.Ending = false;
        Global.AppPath = Folder() + "app/";
    }
}

TEST_F(MainScreen, AWindowThatWasNotMovedKeepsTheNumbersItWasReadWith) {
    WriteWholeFile(Global.AppPath + "ZUKTramble.ini",
                   "WindowState=0\r\nMainTop=1003\r\nMainLeft=604\r\nMainHeight=9301\r\nMainWidth=13807\r\n");
    auto& form = Start();

    form.Unload();

    const auto lines = EngineTest::Lines(Global.AppPath + "ZUKTramble.ini");
    EXPECT_NE(std::find(lines.begin(), lines.end(), "MainTop=1003"), lines.end());
    EXPECT_NE(std::find(lines.begin(), lines.end(), "MainWidth=13807"), lines.end());
}

TEST_F(MainScreen, TheEndEmptiesTheSessionEntriesAndWritesStatusAndSettings) {
    GivenRows("ZUKLINK", {"LK_HOTSYNC", "Anna"});
    WriteWholeFile(Global.InstallPath + "HSStatus.dat",
                   "Anna" + std::string(26, ' ') + "G" + std::string(29, ' ') + "S\r\n");
    auto& form = Start();
    Global.PurgeDays = 9;

    ClickMenu(form, "mnuExit");

    EXPECT_TRUE(Global.Ending);
    EXPECT_EQ(Global.ExitCode, 0);
    EXPECT_EQ(EngineTest::Lines(Global.InstallPath + "HSStatus.dat")[0], "Anna" + std::string(56, ' ') + "S");
    const auto lines = EngineTest::Lines(Global.AppPath + "ZUKTramble.ini");
    EXPECT_NE(std::find(lines.begin(), lines.end(), "PurgeDays=9"), lines.end());
}

TEST_F(MainScreen, TheEndRemovesTheTemporaryDirectory) {
    const QByteArray before = qgetenv("TMPDIR");
    const auto restore =
        qScopeGuard([&] { before.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", before); });
    qputenv("TMPDIR", QByteArray::fromStdString(Folder()));
    auto& form = Start();
    std::filesystem::create_directories(TemporaryDirectory());
    Global.TemporaryDirectory = true;

    form.Unload();

    EXPECT_FALSE(std::filesystem::exists(TemporaryDirectory()));
}

TEST_F(MainScreen, AStatusFileThatCannotBeWrittenIsToldOnceAndEndsTheProgram) {
    auto& form = Start();
    std::filesystem::remove(Global.InstallPath + "HSStatus.dat");
    std::filesystem::create_directories(Global.InstallPath + "HSStatus.dat/in the way");
    Operator_.Expect(msg::ResetQuestion).Answer(Answer::Yes);
    Operator_.ExpectBeginning(msg::ConfigurationError).With(Icon::Stop);

    Click(form, "cmdReset");
    form.Unload();

    EXPECT_EQ(Global.ExitCode, 1);
    EXPECT_EQ(Global.Events.Entry(0), "basCommon:EndProcess");
}

TEST_F(MainScreen, AMaximisedWindowKeepsTheNumbersOfItsPlace) {
    WriteWholeFile(Global.AppPath + "ZUKTramble.ini",
                   "WindowState=2\r\nMainTop=1003\r\nMainLeft=604\r\nMainHeight=9301\r\nMainWidth=13807\r\n");
    auto& form = Start();

    form.Unload();

    const auto lines = EngineTest::Lines(Global.AppPath + "ZUKTramble.ini");
    EXPECT_NE(std::find(lines.begin(), lines.end(), "MainTop=1003"), lines.end());
    EXPECT_NE(std::find(lines.begin(), lines.end(), "MainWidth=13807"), lines.end());
}

TEST_F(MainScreen, AWindowOfAScreenThatIsGoneIsShownWhereItCanBeReached) {
    WriteWholeFile(
        Global.AppPath + "ZUKTramble.ini",
        "WindowState=0\r\nMainTop=300\r\nMainLeft=-90000\r\nMainHeight=9300\r\nMainWidth=13800\r\n");

    auto& form = Start();

    EXPECT_GE(form.x(), 0);
    EXPECT_EQ(form.width(), 920);
}

TEST_F(MainScreen, ABrickShowsItsIdToTheLetter) {
    GivenRows("ZUKLINK", {"LK_HOTSYNC", "A & B"});

    auto& form = Start();

    EXPECT_EQ(Control(form, "cmdHHHSIDStd_1").accessibleName(), QStringLiteral("A & B: Not Synced"));
    EXPECT_EQ(dynamic_cast<QToolButton&>(Control(form, "cmdHHHSIDStd_1")).text(), QStringLiteral("A && B"));
}

TEST_F(MainScreen, ARestartKeepsTheTraceOfTheRunBefore) {
    WriteWholeFile(Global.AppPath + "Events.log", "frmMain1:Form_Unload\r\n");

    Start();

    bool found = false;
    for (std::size_t k = 0; k < TraceEntries; ++k)
        found = found || Global.Events.Entry(k) == "frmMain1:Form_Unload";
    EXPECT_TRUE(found);
    EXPECT_EQ(EngineTest::Lines(Global.AppPath + "Events.log").size(), TraceEntries);
}

TEST_F(MainScreen, TextsBesideTheProgramReplaceTheCaptions) {
    WriteWholeFile(Global.AppPath + "Messages.tsv", "17130\tlblImportBtn\tE\t\"Einlesen\"\n");

    auto& form = Start();

    EXPECT_EQ(TextOf(form, "lblImportBtn"), QStringLiteral("Einlesen"));
}

TEST_F(MainScreen, StartsInTheLanguageOfTheOffice) {
    GivenFile("app/Languages/Deutsch.tsv", "17130\tlblImportBtn\tE\t\"Einlesen\"\n");
    Registry::SetLanguage("Deutsch");

    auto& form = Start();

    EXPECT_EQ(TextOf(form, "lblImportBtn"), QStringLiteral("Einlesen"));
}

/// What Qt writes on the Cancel of its own boxes.
QString ToolkitsCancel() {
    const QDialogButtonBox box(QDialogButtonBox::Cancel);
    return box.button(QDialogButtonBox::Cancel)->text().remove('&');
}

TEST_F(MainScreen, TheToolkitsButtonsAreInTheLanguageOfTheOfficeWhereItsTextsAreInstalledAndInEnglishElse) {
    const bool installed =
        QFile::exists(QLibraryInfo::path(QLibraryInfo::TranslationsPath) + QStringLiteral("/qtbase_de.qm"));
    GivenFile("app/Languages/Deutsch.tsv", "");
    Registry::SetLanguage("Deutsch");

    LoadTextsOfOffice(Global.AppPath);
    EXPECT_EQ(ToolkitsCancel(), installed ? QStringLiteral("Abbrechen") : QStringLiteral("Cancel"));

    Registry::SetLanguage("");
    LoadTextsOfOffice(Global.AppPath);
    EXPECT_EQ(ToolkitsCancel(), QStringLiteral("Cancel"));
}

TEST_F(MainScreen, ALanguageThatHasGoneIsToldAndTheProgramStartsInEnglish) {
    Registry::SetLanguage("Deutsch");
    Operator_.ExpectBeginning(
        ::Lines(msg::TextsCannotBeRead, Text::Path(std::string_view("File not found: Deutsch.tsv"))));
    Operator_.Expect(msg::PalmDesktopMissing);

    auto& form = Open<frmMain1>();

    EXPECT_EQ(TextOf(form, "lblImportBtn"), ToQt(Text(msg::lblImportBtn)));
}

TEST_F(MainScreen, ATextThatCannotBeReadIsNamedWithItsLine) {
    WriteWholeFile(Global.AppPath + "Messages.tsv", "137\tJa\n");
    Operator_.ExpectBeginning(
        ::Lines(msg::TextsCannotBeRead, Text::Path(std::string_view("Messages.tsv, line 1: "))));
    Operator_.Expect(msg::PalmDesktopMissing);

    Open<frmMain1>();
}

TEST_F(MainScreen, OpeningAScreenClosesTheOneBefore) {
    auto& form = Start();
    The<frmAbout>().Show();

    form.UnloadForms();

    EXPECT_EQ(IfLoaded<frmAbout>(), nullptr);
    EXPECT_NE(IfLoaded<frmMain1>(), nullptr);
}

TEST_F(MainScreen, EachToolLeadsSomewhere) {
    auto& form = Start();

    EXPECT_TRUE(form.WiringProblems().empty());
    for (const char* name : {"lblInstallHH", "lblNotes", "lblHelpOrders", "lblDemoInstall", "lblHelpCompany"})
        EXPECT_TRUE(Enabled(form, name)) << name;
}

} // namespace

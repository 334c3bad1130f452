#include "core/Messages.h"
#include "core/SafeFile.h"
#include "core/forms/frmProgress.h"
#include "exchange/forms/frmExport1.h"
#include "forms/FormTest.h"
#include "platform/GridView.h"
#include "program/forms/frmMain1.h"
#include "quality/CheckResults.h"
#include "quality/forms/QCRun.h"
#include "quality/forms/frmConfig.h"
#include "quality/forms/frmConfigMsg.h"
#include "store/DBFEdit.h"
#include "sync/forms/frmTableSelectDL.h"
#include "views/forms/frmViewData.h"
#include "views/forms/frmViewGrid.h"

#include <QColor>
#include <QCoreApplication>
#include <QLabel>
#include <QPalette>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <filesystem>
#include <functional>

namespace {

constexpr const char* FatalRow = "Fatal";
constexpr const char* WarnRow = "Warn";

/// What a screen that sends tables away looks like to the gate: it asks once, and notes the answer.
class frmSender final : public Form {
    Q_OBJECT

public:
    frmSender() {
        setObjectName(QStringLiteral("frmSender"));
        auto* send = new QPushButton(this);
        send->setObjectName(QStringLiteral("cmdSend"));
    }

    std::optional<bool> MayGoOn;

private slots:
    void cmdSend_Click() { MayGoOn = PassQualityCheck(*this); }
};

class QualityCheck : public FormTest {
protected:
    QualityCheck() { GivenOffice(); }

    static void GivenFile(const std::string& path, const std::string& content) {
        WriteWholeFile(path, content, false);
    }

    /// An office whose tables and templates have no fault at all.
    void GivenCleanOffice() {
        GivenRows("ZUKCUST", {"C_SEARCH|C_CODE|C_NAME|C_STCODE", "ACME|A1|Acme|NY", "BOLT|B2|Bolt|"});
        GivenRows("ZUKITEM", {"I_SEARCH|I_ITEMCODE|I_DESC1|I_PRICE|I_BARCODE", "HAMMER|H1|Hammer|12.50|",
                              "SAW|S1|Saw|9.00|"});
        GivenRows("ZUKSTAX", {"ST_CODE|ST_RATE", "NY|8.25"});
        GivenRows("ZUKPAY", {"PAY_CODE", "CASH"});
        for (const char* template_ : {"DemoCustomers.cst", "DemoItems.itm"})
            std::filesystem::remove(Global.ImportTemplates + template_);
        for (const char* activity : {"DemoImport.ipm", "DemoExport.xpm"})
            std::filesystem::remove(Global.QuickButtonTemplates + activity);
    }
    void GivenWarning() { GivenRows("ZUKPAY", {"PAY_CODE"}); }
    void GivenFatal() {
        GivenRows("ZUKCUST", {"C_SEARCH|C_CODE|C_NAME", "ACME|A1|Acme", "|B2|Bolt", "CRANE|C-3|Crane"});
    }

    /// Column `column` of the report's rows, from 0.
    static QStringList Report(int column = 0) {
        QStringList cells;
        for (const QStringList& row : GridRows(The<frmConfigMsg>(), "FG1")) cells << row.at(column);
        return cells;
    }

    static bool ReportShown() {
        auto* report = IfLoaded<frmConfigMsg>();
        return report && report->isVisible();
    }

    static GridView& Grid(FormBehaviour& form) { return dynamic_cast<GridView&>(Control(form, "FG1")); }

    static QString ResultOf(Check check) {
        const QString name = QStringLiteral("lblResult_%1").arg(static_cast<int>(check) + 1);
        return TextOf(The<frmConfig>(), name.toLatin1().constData());
    }

    static QColor Ground(QWidget& grid, int row, int column) {
        const auto& view = dynamic_cast<GridView&>(grid);
        return view.model()->index(row, column).data(Qt::BackgroundRole).value<QColor>();
    }
};

// ---- one check ----

TEST_F(QualityCheck, ACheckAloneThatFindsNothingSaysSo) {
    GivenCleanOffice();
    Operator_.Expect(msg::NoProblems).With(Icon::Information);

    Click(Open<frmConfig>(), "cmdCust2");

    EXPECT_FALSE(IfLoaded<frmConfigMsg>());
    EXPECT_FALSE(IfLoaded<frmProgress>());
    EXPECT_TRUE(The<frmConfig>().isVisible());
}

TEST_F(QualityCheck, ACheckAloneShowsItsRows) {
    GivenCleanOffice();
    GivenFatal();

    Click(Open<frmConfig>(), "cmdCust2");
    Settle();

    EXPECT_TRUE(ReportShown());
    EXPECT_EQ(Report(), (QStringList{FatalRow, FatalRow}));
    EXPECT_EQ(Report(3), (QStringList{"Blank customer searchfield (C_SEARCH) in customer table.\nRecords: 1",
                                      "Customer Code (C_CODE) in customer table contains invalid "
                                      "characters.\nRecords: 3"}));
}

TEST_F(QualityCheck, RowsOfWarnFoundByACheckAloneAreShown) {
    GivenCleanOffice();
    GivenWarning();

    Click(Open<frmConfig>(), "cmdPay2");
    Settle();

    EXPECT_EQ(Report(), (QStringList{WarnRow}));
}

TEST_F(QualityCheck, BackupAndPrintingHaveNothingToFind) {
    Operator_.Expect(msg::NoProblems);
    Operator_.Expect(msg::NoProblems);
    auto& config = Open<frmConfig>();

    Click(config, "cmdBackup2");
    Click(config, "cmdPrinter2");
}

TEST_F(QualityCheck, TheNextCheckAloneStartsAnEmptyReport) {
    GivenCleanOffice();
    GivenFatal();
    GivenWarning();
    auto& config = Open<frmConfig>();

    Click(config, "cmdCust2");
    Click(config, "cmdPay2");
    Settle();

    EXPECT_EQ(Report(), (QStringList{WarnRow}));
}

TEST_F(QualityCheck, AFatalRowOfACheckAloneStopsNobodyLater) {
    GivenCleanOffice();
    GivenFatal();

    Click(Open<frmConfig>(), "cmdCust2");

    EXPECT_FALSE(Global.QCFatalFound);
}

TEST_F(QualityCheck, EachCheckButtonRunsItsOwnCheck) {
    GivenCleanOffice();
    GivenRows("ZUKCUST", {"C_SEARCH|C_CODE", "ACME|"});
    GivenRows("ZUKITEM", {"I_SEARCH|I_ITEMCODE|I_PRICE|I_BARCODE", "SAW||1|", "TAP|T1|1|12-3"});
    GivenRows("ZUKSTAX", {"ST_CODE", "N Y"});
    GivenRows("ZUKPAY", {"PAY_CODE", "MONEY"});
    GivenRows("ZUKLINK", {"LK_HOTSYNC"});
    GivenFile(Global.DownloadTemplates + "none.dst", "Customers=0\r\n");
    GivenFile(Global.UploadTemplates + "none.ust", "Orders=0\r\n");
    GivenFile(Global.ImportTemplates + "gone.cst", "gone.csv\r\nCSV\r\n");
    GivenFile(Global.ExportTemplates + "none.xor", "Filename=\r\n");
    GivenFile(Global.QuickButtonTemplates + "none.ipm", "Saved Setting 1:    ;\r\nSaved Setting 2:    ;\r\n");
    GivenFile(Global.UnattendedTemplates + "none.uhs", "Download=False\r\n");
    auto& config = Open<frmConfig>();
    const std::pair<const char*, const char*> buttons[] = {
        {"cmdLinks2", "Handheld: Basic Setup: Links"},
        {"cmdCust2", "Handheld: Basic Setup: Customers"},
        {"cmdItems2", "Handheld: Basic Setup: Items"},
        {"cmdBarcode2", "Handheld: Special Processes: Bar Codes"},
        {"cmdSTax2", "Handheld: Special Processes: Sales Tax"},
        {"cmdPay2", "Handheld: Special Processes: Payments"},
        {"cmdDownload2", "PC: Basic Setup: Download"},
        {"cmdUpload2", "PC: Basic Setup: Upload"},
        {"cmdImport2", "PC: Special Processes: Import"},
        {"cmdExport2", "PC: Special Processes: Export"},
        {"cmdQB2", "PC: Special Processes: Quick Buttons"},
        {"cmdUA2", "PC: Special Processes: Unattended Hotsync"}};

    for (const auto& [button, group] : buttons) {
        Click(config, button);
        Settle();

        QStringList groups = Report(1);
        groups.removeDuplicates();
        EXPECT_EQ(groups, (QStringList{group})) << button;
        The<frmConfigMsg>().Unload();
    }
}

// ---- the full run ----

TEST_F(QualityCheck, AFullRunThatFindsOnlyWarnShowsNoReport) {
    GivenCleanOffice();
    GivenWarning();
    Operator_.Expect(msg::NoFatalProblems).With(Icon::Information);

    Click(Open<frmConfig>(), "cmdCheckAll");

    EXPECT_FALSE(IfLoaded<frmConfigMsg>());
    EXPECT_FALSE(Global.QCCheckAll);
}

TEST_F(QualityCheck, AFullRunOfACleanOfficeSaysSoOnce) {
    GivenCleanOffice();
    Operator_.Expect(msg::NoFatalProblems).With(Icon::Information);

    Click(Open<frmConfig>(), "cmdCheckAll");

    EXPECT_FALSE(IfLoaded<frmConfigMsg>());
}

TEST_F(QualityCheck, AFullRunWithAFatalRowShowsTheRowsOfWarnToo) {
    GivenCleanOffice();
    GivenFatal();
    GivenWarning();
    Operator_.Expect(msg::FatalProblems).With(Icon::Warning).Then([] { EXPECT_FALSE(ReportShown()); });

    Click(Open<frmConfig>(), "cmdCheckAll");
    Settle();

    EXPECT_EQ(Report(), (QStringList{FatalRow, FatalRow, WarnRow}));
    EXPECT_FALSE(IfLoaded<frmProgress>());
}

TEST_F(QualityCheck, LinksNeverAppearInAFullRun) {
    GivenCleanOffice();
    GivenRows("ZUKLINK", {"LK_HOTSYNC"}); // alone it would be Fatal
    Operator_.Expect(msg::NoFatalProblems);

    Click(Open<frmConfig>(), "cmdCheckAll");
}

TEST_F(QualityCheck, WithNobodyWaitingTheFatalFlagIsClearBeforeTheBox) {
    GivenCleanOffice();
    GivenFatal();
    Operator_.Expect(msg::FatalProblems).Then([] { EXPECT_FALSE(Global.QCFatalFound); });

    Click(Open<frmConfig>(), "cmdCheckAll");
}

TEST_F(QualityCheck, ATableThatIsGoneStopsTheRunAndIsNamed) {
    GivenCleanOffice();
    std::filesystem::remove(Global.DBFPath + "ZUKItem.dbf");
    Operator_.ExpectBeginning(msg::FileError).With(Icon::Stop);

    Click(Open<frmConfig>(), "cmdCheckAll");

    EXPECT_FALSE(IfLoaded<frmConfigMsg>());
    EXPECT_FALSE(IfLoaded<frmProgress>());
    EXPECT_FALSE(Global.QCCheckAll);
    EXPECT_FALSE(Global.QCFatalFound);
}

TEST_F(QualityCheck, FormsThatAreClosedWhileTheProgressPausesHurtNothing) {
    GivenCleanOffice();
    GivenFatal();
    auto& config = Open<frmConfig>();
    bool closed = false;
    QTimer::singleShot(0, qApp, [&] {
        closed = IfLoaded<frmProgress>() && IfLoaded<frmConfigMsg>();
        FormRegistry::Instance().UnloadSecondary();
    });
    Operator_.Expect(msg::FatalProblems);

    Click(config, "cmdCheckAll");
    Settle();

    EXPECT_TRUE(closed);
    EXPECT_FALSE(IfLoaded<frmConfig>());
    EXPECT_EQ(Report(), (QStringList{FatalRow, FatalRow}));
}

TEST_F(QualityCheck, ACheckButtonPressedWhileAFullRunPausesAddsNoReportOfItsOwn) {
    GivenCleanOffice();
    GivenFatal();
    auto& config = Open<frmConfig>();
    bool pressed = false;
    QTimer::singleShot(0, qApp, [&] {
        pressed = Global.QCCheckAll;
        RunSingleCheck(Check::Customers);
    });
    Operator_.Expect(msg::FatalProblems);

    Click(config, "cmdCheckAll");
    Settle();

    EXPECT_TRUE(pressed);
    EXPECT_EQ(Report(), (QStringList{FatalRow, FatalRow}));
}

// ---- the gate ----

class QualityGate : public QualityCheck {
protected:
    std::optional<bool> Send() {
        auto& sender = The<frmSender>();
        Operator_.Expect(msg::QCWillRun);
        ask_(Operator_);
        sender.Show();
        Click(sender, "cmdSend");
        Settle();
        return sender.MayGoOn;
    }
    void Answering(std::function<void(ScriptedOperator&)> ask) { ask_ = std::move(ask); }

private:
    std::function<void(ScriptedOperator&)> ask_ = [](ScriptedOperator&) {};
};

TEST_F(QualityGate, ACleanOfficeLetsTheCallerGoOn) {
    GivenCleanOffice();
    Answering([](auto& operator_) { operator_.Expect(msg::NoFatalProblems); });

    EXPECT_EQ(Send(), true);

    EXPECT_FALSE(IfLoaded<frmConfig>());
    EXPECT_FALSE(IfLoaded<frmConfigMsg>());
    EXPECT_FALSE(Global.QCWaiting);
    EXPECT_FALSE(Global.QCAutoRun);
}

TEST_F(QualityGate, AWarnLetsTheCallerGoOn) {
    GivenCleanOffice();
    GivenWarning();
    Answering([](auto& operator_) { operator_.Expect(msg::NoFatalProblems); });

    EXPECT_EQ(Send(), true);
}

TEST_F(QualityGate, AFatalProblemStopsTheCallerWhileTheReportStands) {
    GivenCleanOffice();
    GivenFatal();
    Answering([](auto& operator_) {
        // It stays set until the caller that waits has read it.
        operator_.Expect(msg::FatalProblems).Then([] { EXPECT_TRUE(Global.QCFatalFound); });
    });

    EXPECT_EQ(Send(), false);

    EXPECT_TRUE(ReportShown());
    EXPECT_FALSE(Global.QCFatalFound);
    EXPECT_FALSE(Global.QCWaiting);
}

TEST_F(QualityGate, TheReportCanBeUsedWhileACallerThatIsModalStands) {
    GivenCleanOffice();
    GivenFatal();
    Operator_.Expect(msg::QCWillRun);
    Operator_.Expect(msg::FatalProblems);
    auto& sender = The<frmSender>();
    QTimer::singleShot(0, &sender, [&] {
        Click(sender, "cmdSend");
        Settle();
        auto& report = The<frmConfigMsg>();
        QWidget& ok = Control(report, "cmdOK");
        QTest::mouseClick(report.windowHandle(), Qt::LeftButton, {}, ok.mapTo(&report, ok.rect().center()));
        EXPECT_FALSE(IfLoaded<frmConfigMsg>());
        sender.Unload();
    });

    sender.Show(ShowMode::Modal);
}

TEST_F(QualityGate, AReportThatIsClosedInAPauseLetsNobodyThrough) {
    GivenCleanOffice();
    GivenFatal();
    bool closed = false;
    Answering([&](auto& operator_) {
        operator_.Expect(msg::FatalProblems);
        QTimer::singleShot(0, qApp, [&] {
            closed = IfLoaded<frmProgress>() && IfLoaded<frmConfigMsg>();
            if (closed) The<frmConfigMsg>().Unload();
        });
    });

    EXPECT_EQ(Send(), false);

    EXPECT_TRUE(closed);
}

TEST_F(QualityGate, AHotsyncThatIsBeingStartedHasItsOwnWords) {
    GivenCleanOffice();
    GivenFatal();
    Global.QCHotsyncPending = true;
    Answering([](auto& operator_) { operator_.Expect(msg::FatalHotsync).With(Icon::Warning); });

    EXPECT_EQ(Send(), false);

    EXPECT_TRUE(ReportShown());
    EXPECT_FALSE(Global.QCHotsyncPending);
}

TEST_F(QualityGate, TheEndOfACleanRunAlsoEndsThePendingHotsync) {
    GivenCleanOffice();
    Global.QCHotsyncPending = true;
    Answering([](auto& operator_) { operator_.Expect(msg::NoFatalProblems); });

    EXPECT_EQ(Send(), true);

    EXPECT_FALSE(Global.QCHotsyncPending);
}

TEST_F(QualityGate, ATableThatCannotBeCheckedStopsTheCaller) {
    GivenCleanOffice();
    std::filesystem::remove(Global.DBFPath + "ZUKCust.dbf");
    Answering([](auto& operator_) { operator_.ExpectBeginning(msg::FileError); });

    EXPECT_EQ(Send(), false);

    EXPECT_FALSE(Global.QCFatalFound);
}

TEST_F(QualityGate, AnOpenConfiguratorDoesNotKeepTheCallerWaitingForEver) {
    GivenCleanOffice();
    Open<frmConfig>();
    Answering([](auto& operator_) { operator_.Expect(msg::NoFatalProblems); });

    EXPECT_EQ(Send(), true);

    EXPECT_TRUE(The<frmConfig>().isVisible());
}

TEST_F(QualityGate, AnOldFatalFindingDoesNotStopALaterCaller) {
    GivenCleanOffice();
    Global.QCFatalFound = true;
    Answering([](auto& operator_) { operator_.Expect(msg::NoFatalProblems); });

    EXPECT_EQ(Send(), true);
}

// ---- from the main screen ----

class QualityOnMainScreen : public QualityCheck {
protected:
    frmMain1& Main() {
        Operator_.Expect(msg::PalmDesktopMissing);
        return Open<frmMain1>();
    }
};

TEST_F(QualityOnMainScreen, TheMenuAsksAndChecksEverything) {
    GivenCleanOffice();
    auto& main = Main();
    Operator_.Expect(msg::QCAllQuestion).WithHelp("Quality_Check_.htm").Answer(Answer::Yes);
    Operator_.Expect(msg::NoFatalProblems);

    ClickMenu(main, "mnuQC");

    EXPECT_FALSE(IfLoaded<frmConfig>());
}

TEST_F(QualityOnMainScreen, NoAtTheQuestionChecksNothing) {
    auto& main = Main();
    Operator_.Expect(msg::QCAllQuestion).Answer(Answer::No);

    Click(main, "lblQC");

    EXPECT_FALSE(IfLoaded<frmConfig>());
    EXPECT_FALSE(Global.QCAutoRun);
}

TEST_F(QualityOnMainScreen, OkOnTheReportOfSuchARunClosesTheConfiguratorBehindIt) {
    GivenCleanOffice();
    GivenFatal();
    auto& main = Main();
    Operator_.Expect(msg::QCAllQuestion).Answer(Answer::Yes);
    Operator_.Expect(msg::FatalProblems);
    ClickMenu(main, "mnuQC");
    Settle();
    ASSERT_TRUE(ReportShown());

    Click(The<frmConfigMsg>(), "cmdOK");

    EXPECT_FALSE(IfLoaded<frmConfigMsg>());
    EXPECT_FALSE(IfLoaded<frmConfig>());
}

TEST_F(QualityOnMainScreen, TheCrossOfTheReportLeavesNoHiddenConfiguratorEither) {
    GivenCleanOffice();
    GivenFatal();
    auto& main = Main();
    Operator_.Expect(msg::QCAllQuestion).Answer(Answer::Yes);
    Operator_.Expect(msg::FatalProblems);
    ClickMenu(main, "mnuQC");
    Settle();

    The<frmConfigMsg>().close();

    EXPECT_FALSE(IfLoaded<frmConfigMsg>());
    EXPECT_FALSE(IfLoaded<frmConfig>());
    EXPECT_FALSE(Global.QCAutoRun);
}

TEST_F(QualityOnMainScreen, AConfiguratorOpenedOverAReportDoesNotCheckByItself) {
    GivenCleanOffice();
    GivenFatal();
    auto& main = Main();
    Operator_.Expect(msg::QCAllQuestion).Answer(Answer::Yes);
    Operator_.Expect(msg::FatalProblems);
    ClickMenu(main, "mnuQC");
    Settle();

    Click(main, "lblConfigurator"); // closes the report without its Ok
    Settle();

    EXPECT_TRUE(The<frmConfig>().isVisible());
    EXPECT_FALSE(IfLoaded<frmConfigMsg>());
}

// ---- the Configurator ----

TEST_F(QualityCheck, AConfiguratorThatIsLoadedForARunChecksAtOnceAndWaitsForNoClick) {
    GivenCleanOffice();
    Global.QCAutoRun = true;
    Operator_.Expect(msg::NoFatalProblems);
    The<frmConfig>();
    EXPECT_FALSE(IfLoaded<frmConfig>()) << "nothing was shown, and nothing is left to be closed";
    EXPECT_FALSE(Global.QCAutoRun);

    GivenFatal();
    Global.QCAutoRun = true;
    Operator_.Expect(msg::FatalProblems);
    auto& form = The<frmConfig>();
    EXPECT_TRUE(ReportShown());
    EXPECT_FALSE(form.isVisible());
}

TEST_F(QualityCheck, TheConfiguratorSaysWhenEachLineWasCheckedAndHowItEnded) {
    GivenCleanOffice();
    GivenFatal();
    GivenWarning();
    Global.Clock = [] { return DateTime{2026, 11, 21, 18, 3, 9}; };
    Operator_.Expect(msg::FatalProblems);
    auto& config = Open<frmConfig>();
    EXPECT_EQ(ResultOf(Check::Customers), "never checked");

    Click(config, "cmdCheckAll");

    EXPECT_EQ(ResultOf(Check::Customers), "2026-11-21 18:03\n2 Fatal");
    EXPECT_EQ(ResultOf(Check::Payments), "2026-11-21 18:03\n1 Warn");
    EXPECT_EQ(ResultOf(Check::Items), "2026-11-21 18:03\nno problems");
    EXPECT_EQ(ResultOf(Check::Links), "never checked");

    config.Unload();
    Open<frmConfig>();
    EXPECT_EQ(ResultOf(Check::Payments), "2026-11-21 18:03\n1 Warn");
}

TEST_F(QualityCheck, NoLineOfTheConfiguratorMovesWhenResultsCome) {
    GivenCleanOffice();
    GivenFatal();
    Operator_.Expect(msg::FatalProblems);
    auto& config = Open<frmConfig>();
    const auto places = [&] {
        std::vector<QPoint> corners;
        for (const auto* button : config.findChildren<QPushButton*>())
            corners.push_back(button->mapTo(&config, QPoint()));
        return corners;
    };
    const auto before = places();
    const QSize size = config.size();

    Click(config, "cmdCheckAll");
    Settle();

    EXPECT_EQ(places(), before);
    EXPECT_EQ(config.size(), size);
}

TEST_F(QualityCheck, ResultsThatCannotBeKeptDoNotDisturbTheCheck) {
    GivenCleanOffice();
    std::filesystem::create_directory(CheckResultsFile());
    Operator_.Expect(msg::NoProblems);

    Click(Open<frmConfig>(), "cmdCust2");

    EXPECT_EQ(ResultOf(Check::Customers), "never checked");
}

TEST_F(QualityCheck, ConfigureOpensTheTableOfItsLine) {
    GivenCleanOffice();
    auto& config = Open<frmConfig>();
    const std::pair<const char*, MessageId> buttons[] = {{"cmdLinks1", msg::GridLink},
                                                         {"cmdBarcode1", msg::GridItem},
                                                         {"cmdSTax1", msg::GridSTax},
                                                         {"cmdPay1", msg::GridPay},
                                                         {"cmdPrinter1", msg::GridPrinter}};
    for (const auto& [button, title] : buttons) {
        Click(config, button);
        Settle();

        EXPECT_EQ(The<frmViewGrid>().windowTitle().toStdString(), Text(title).Utf8()) << button;
        EXPECT_FALSE(Global.FromConfigurator);
        Click(The<frmViewGrid>(), "cmdOK");
        EXPECT_TRUE(config.isVisible()) << button;
    }
}

// ---- the report ----

class QualityReport : public QualityCheck {
protected:
    frmConfigMsg& GivenReport(const char* button) {
        Click(Open<frmConfig>(), button);
        Settle();
        return The<frmConfigMsg>();
    }

    /// How many cells of a grid have a ground of their own.
    static int Marked(GridView& grid) {
        int marked = 0;
        for (int row = 0; row < grid.model()->rowCount(); ++row) {
            for (int column = 0; column < grid.model()->columnCount(); ++column)
                marked += Ground(grid, row, column).isValid();
        }
        return marked;
    }
};

TEST_F(QualityReport, ViewRecordsMarksExactlyTheFaultyCells) {
    GivenCleanOffice();
    GivenRows("ZUKCUST", {"C_SEARCH|C_CODE", "ACME|A1", "BOLT|B2", "CRANE|A1"});
    auto& report = GivenReport("cmdCust2");

    Click(report, "cmdView");
    Settle();

    auto& grid = Grid(The<frmViewGrid>());
    EXPECT_EQ(Marked(grid), 2);
    EXPECT_EQ(Ground(grid, 0, 1), QColor(255, 0, 0));
    EXPECT_EQ(Ground(grid, 2, 1), QColor(255, 0, 0));
    EXPECT_EQ(grid.SelectedRecord(), 1);
    EXPECT_EQ(grid.selectionModel()->selectedRows().size(), 2);
}

TEST_F(QualityReport, ViewRecordsBringsAFaultyCellFarToTheRightIntoSight) {
    GivenCleanOffice();
    GivenRows("ZUKCUST", {"C_SEARCH|C_CODE|C_NAME|C_ADDRESS1", "|A1|Acme Ironmongery and Sons|12 Mill Road",
                          "|B2|Bolt|"});
    auto& report = GivenReport("cmdCust2");

    Click(report, "cmdView");
    Settle();

    auto& grid = Grid(The<frmViewGrid>());
    constexpr int Search = 13;
    EXPECT_EQ(Ground(grid, 0, Search), QColor(255, 0, 0));
    EXPECT_TRUE(grid.viewport()->rect().contains(grid.visualRect(grid.model()->index(0, Search))));
    EXPECT_EQ(grid.currentIndex(), grid.model()->index(0, Search));
}

TEST_F(QualityReport, AWarnMarksInYellow) {
    GivenCleanOffice();
    GivenRows("ZUKITEM", {"I_SEARCH|I_ITEMCODE|I_PRICE", "ADZE|A1|0", "NAIL|N1|2.50", "SAW|S1|0"});
    auto& report = GivenReport("cmdItems2");

    Click(report, "cmdView");
    Settle();

    auto& grid = Grid(The<frmViewGrid>());
    EXPECT_EQ(Marked(grid), 2);
    EXPECT_EQ(Ground(grid, 0, 4), QColor(255, 255, 0));
    EXPECT_EQ(Ground(grid, 2, 4), QColor(255, 255, 0));
}

TEST_F(QualityReport, ARowOfTheLinksTableMarksTheHotsyncID) {
    GivenCleanOffice();
    GivenRows("ZUKLINK", {"LK_HOTSYNC", "Anna"});
    auto& report = GivenReport("cmdLinks2");

    Click(report, "cmdView");
    Settle();

    EXPECT_EQ(Marked(Grid(The<frmViewGrid>())), 1);
    EXPECT_EQ(Ground(Grid(The<frmViewGrid>()), 0, 1), QColor(255, 255, 0));
}

TEST_F(QualityReport, ADoubleClickOrEnterOnARowIsViewRecords) {
    GivenCleanOffice();
    GivenFatal();
    auto& report = GivenReport("cmdCust2");

    Press(report, "FG1", Qt::Key_Return);
    Settle();

    EXPECT_TRUE(The<frmViewGrid>().isVisible());
}

TEST_F(QualityReport, AnEditedTableIsMarkedOnlyForTheReport) {
    GivenCleanOffice();
    GivenFatal();
    auto& report = GivenReport("cmdCust2");
    Click(report, "cmdView");
    Settle();
    Click(The<frmViewGrid>(), "cmdOK");

    ShowTable(ViewCust);
    Settle();

    EXPECT_FALSE(Ground(Grid(The<frmViewGrid>()), 0, 13).isValid());
}

TEST_F(QualityReport, ATableThatTheReportOpenedOutlivesIt) {
    GivenCleanOffice();
    GivenFatal();
    auto& report = GivenReport("cmdCust2");
    Click(report, "cmdView");
    Settle();

    Click(report, "cmdOK");

    Click(The<frmViewGrid>(), "cmdDataView");
    Settle();
    EXPECT_TRUE(The<frmViewData>().isVisible());
    EXPECT_FALSE(Global.QCViewMode);
}

TEST_F(QualityReport, ARowWhoseRecordWasRepairedTurnsGreyAndSaysSo) {
    GivenCleanOffice();
    GivenFatal();
    auto& report = GivenReport("cmdCust2");
    const QString before = Report(4).at(0);

    DBFEdit table;
    table.FileOpen(Global.DBFPath + "ZUKCust.dbf");
    table.Go(1);
    FieldKey search("C_SEARCH");
    std::string value = "BOLT";
    table.WriteData(search, value);
    table.UpDate();
    table.FileClose();
    report.findChild<QTimer*>("TimerLook")->start(0); // it looks by itself, once a second
    Settle();

    EXPECT_EQ(Report(4).at(0), before + "\n" + QString::fromStdString(Text(msg::RowChanged).Utf8()));
    EXPECT_FALSE(Report(4).at(1).contains(QString::fromStdString(Text(msg::RowChanged).Utf8())));
    EXPECT_EQ(Grid(report).model()->index(0, 0).data(Qt::ForegroundRole).value<QBrush>(),
              QGuiApplication::palette().brush(QPalette::PlaceholderText));
}

TEST_F(QualityReport, OfSeveralTemplatesEachScreenSaysWhichItIsFor) {
    GivenCleanOffice();
    for (const char* name : {"a.xor", "b.xor"}) GivenFile(Global.ExportTemplates + name, "Filename=\r\n");
    auto& report = GivenReport("cmdExport2");
    QStringList titles;
    QTimer closing;
    QObject::connect(&closing, &QTimer::timeout, [&] {
        auto* mapping = IfLoaded<frmExport1>();
        if (!mapping || !mapping->isVisible()) return;
        titles << mapping->windowTitle();
        Click(*mapping, "cmdCancel");
    });
    closing.start(1);

    Click(report, "cmdView");

    EXPECT_EQ(titles, (QStringList{"Sales Orders (1 of 2)", "Sales Orders (2 of 2)"}));
}

TEST_F(QualityReport, TheListIsSavedForASpreadsheet) {
    GivenCleanOffice();
    GivenFatal();
    auto& report = GivenReport("cmdCust2");
    const std::string path = Global.DataOutPath + "monday.csv";
    Operator_.Expect(msg::SaveReportAs).Type("monday");
    Operator_.ExpectBeginning(msg::ReportSaved);

    Click(report, "cmdSave");

    const std::string saved = ReadWholeFile(path);
    EXPECT_TRUE(saved.starts_with("\xEF\xBB\xBF\"Severity\",\"Configurator Group\",\"Problem\",\"Issue\","
                                  "\"Correction\"\r\n\"Fatal\",\"Handheld: Basic Setup: Customers\","));
}

TEST_F(QualityReport, ASavedListIsNotReplacedWithoutAQuestion) {
    GivenCleanOffice();
    GivenFatal();
    auto& report = GivenReport("cmdCust2");
    const std::string path = Global.DataOutPath + "monday.csv";
    GivenFile(path, "mine");
    Operator_.Expect(msg::SaveReportAs).Type("monday.csv");
    Operator_.ExpectBeginning(msg::ReportNameTaken).Answer(Answer::No);

    Click(report, "cmdSave");

    EXPECT_EQ(ReadWholeFile(path), "mine");
}

TEST_F(QualityReport, AListIsNotSavedUnderAPath) {
    GivenCleanOffice();
    GivenFatal();
    auto& report = GivenReport("cmdCust2");
    Operator_.Expect(msg::SaveReportAs).Type("../monday");
    Operator_.ExpectBeginning(msg::ReportNameBad).With(Icon::Warning);

    Click(report, "cmdSave");
}

TEST_F(QualityReport, AListThatCannotBeSavedIsTold) {
    GivenCleanOffice();
    GivenFatal();
    auto& report = GivenReport("cmdCust2");
    std::filesystem::remove_all(Global.DataOutPath);
    Operator_.Expect(msg::SaveReportAs).Type("monday");
    Operator_.ExpectBeginning(msg::FileError).With(Icon::Stop);

    Click(report, "cmdSave");
}

TEST_F(QualityReport, TheButtonSaysWhetherARowIsAboutRecordsOrATemplate) {
    GivenCleanOffice();
    GivenFatal();
    GivenFile(Global.ExportTemplates + "none.xor", "Filename=\r\n");
    Operator_.Expect(msg::FatalProblems);
    Click(Open<frmConfig>(), "cmdCheckAll");
    Settle();
    auto& report = The<frmConfigMsg>();
    const qsizetype template_ = Report(1).indexOf("PC: Special Processes: Export");

    Grid(report).SelectRecord(static_cast<int>(template_) + 1);
    EXPECT_EQ(TextOf(report, "cmdView").remove('&'), "View Template");

    Grid(report).SelectRecord(static_cast<int>(Report().indexOf(FatalRow)) + 1);
    EXPECT_EQ(TextOf(report, "cmdView").remove('&'), "View Records");
}

TEST_F(QualityReport, WithNoRowSelectedViewTakesTheFirstOne) {
    GivenCleanOffice();
    GivenFatal();
    GivenFile(Global.DownloadTemplates + "Empty.dst", "");
    Operator_.Expect(msg::FatalProblems);
    Click(Open<frmConfig>(), "cmdCheckAll");
    Settle();
    auto& report = The<frmConfigMsg>();
    ASSERT_EQ(Report(1).at(0), "PC: Basic Setup: Download");
    Grid(report).SelectRecord(2);
    Grid(report).setCurrentIndex({});
    QString opened;
    QTimer::singleShot(0, qApp, [&] {
        auto& screen = The<frmTableSelectDL>();
        opened = TextOf(screen, "cboSettings");
        screen.Unload();
    });

    Click(report, "cmdView");

    EXPECT_EQ(Grid(report).SelectedRecord(), 1);
    EXPECT_EQ(opened, QStringLiteral("Empty"));
    EXPECT_FALSE(Global.QCViewMode);
}

} // namespace

#include "QualityTest.moc"

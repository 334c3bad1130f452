#include "maintenance/Restore.h"
#include "core/Failure.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "forms/FormTest.h"
#include "maintenance/Backup.h"
#include "maintenance/forms/frmUpdateMsg.h"
#include "platform/GridView.h"
#include "platform/QtOperator.h"
#include "program/forms/frmMain1.h"
#include "store/CreateTable.h"
#include "views/TableViews.h"
#include "views/forms/frmViewData.h"
#include "views/forms/frmViewGrid.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTextBlock>
#include <QTextEdit>
#include <QTimer>

#include <filesystem>

namespace {

DateTime clockTime;
DateTime TestNow() {
    return clockTime;
}

class RestoreScreen : public FormTest {
protected:
    RestoreScreen() {
        GivenOffice();
        Global.Clock = TestNow;
        GivenOrders({"A1", "A2"});
    }

    void GivenOrders(const std::vector<std::string>& codes) {
        std::vector<std::string> headers{"H_ORDCODE"}, lines{"L_ORDCODE|L_TOTPRICE"};
        for (const std::string& code : codes) {
            headers.push_back(code);
            lines.push_back(code + "|10.5");
        }
        GivenRows("ZUKORHDR", headers);
        GivenRows("ZUKORLIN", lines);
    }

    static void GivenBackup(const char* event, int minute) {
        clockTime = {2026, 11, 15, 2, minute, 7};
        ASSERT_TRUE(MakeBackup(event));
        clockTime = {2026, 11, 15, 9, 30, 0};
    }

    static frmViewGrid& OpenList() {
        ShowTable(ViewRestore);
        Settle();
        return The<frmViewGrid>();
    }

    static std::vector<std::string> Cells(FormBehaviour& form, int row) {
        std::vector<std::string> cells;
        const auto rows = GridRows(form, "FG1");
        for (const QString& cell : rows.at(static_cast<std::size_t>(row)))
            cells.push_back(cell.toStdString());
        return cells;
    }

    static GridView& Grid(FormBehaviour& form) { return dynamic_cast<GridView&>(Control(form, "FG1")); }

    static std::string Folder(int minute) {
        return Global.BackupPath + BackupName({2026, 11, 15, 2, minute, 7}) + "/";
    }
};

using Row = std::vector<std::string>;

} // namespace

TEST_F(RestoreScreen, ABackupIsListedLookedAtAndRestoredAndWhatWasThereBeforeIsListedToo) {
    GivenBackup("EXPORT", 10);
    GivenOrders({"B1"});
    GivenBackup("CLEAR", 20);
    GivenOrders({});
    Operator_.Expect(msg::PalmDesktopMissing);
    auto& main = Open<frmMain1>();
    ClickMenu(main, "mnuRestore");
    EXPECT_EQ(ChosenView()->Flag, ViewRestore);
    Click(main, "lblRestore");

    auto& form = The<frmViewGrid>();
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Restore Orders"));
    EXPECT_EQ(TextOf(form, "cmdEdit"), QStringLiteral("Restore"));
    EXPECT_EQ(TextOf(form, "cmdDataView"), QStringLiteral("Preview"));
    ASSERT_EQ(GridRows(form, "FG1").size(), 2U);
    EXPECT_EQ(Cells(form, 0),
              (Row{"CLEAR", "2026-11-15 02:20:07", "1", "1", "10.50", "", "", "", "complete"}));
    EXPECT_EQ(Cells(form, 1),
              (Row{"EXPORT", "2026-11-15 02:10:07", "2", "2", "21.00", "", "", "", "complete"}));

    // Looked at: no dialog gives a table that cannot be changed, and back it goes to the same row.
    Grid(form).SelectRecord(2);
    Operator_.Expect(msg::SelectTableToView);
    Click(form, "cmdDataView");
    EXPECT_EQ(ChosenView()->Flag, ViewRestore);
    Operator_.Expect(msg::SelectTableToView).Type(Folder(10) + "Backup.txt");
    Operator_.Expect(msg::CannotBePreviewed).With(Icon::Warning);
    Click(form, "cmdDataView");
    Operator_.Expect(msg::SelectTableToView).Type(Folder(10) + "ZUKOrLin.dbf");
    Click(form, "cmdDataView");
    EXPECT_EQ(form.windowTitle(), QStringLiteral("View Order Lines"));
    EXPECT_EQ(GridRows(form, "FG1").size(), 2U);
    EXPECT_EQ(Cells(form, 0)[1], "A1");
    EXPECT_FALSE(Enabled(form, "cmdEdit"));
    EXPECT_EQ(TextOf(form, "cmdOK"), QStringLiteral("Back to List"));
    Click(form, "cmdDataView");
    auto& records = The<frmViewData>();
    Settle();
    EXPECT_EQ(TextOf(records, "lblCount"), QStringLiteral("1 of 2"));
    EXPECT_FALSE(Enabled(records, "cmdEdit"));
    Click(records, "cmdGridView");
    auto& again = The<frmViewGrid>();
    Settle();
    EXPECT_EQ(TextOf(again, "cmdOK"), QStringLiteral("Back to List"));
    Click(again, "cmdOK");
    EXPECT_EQ(again.windowTitle(), QStringLiteral("Restore Orders"));
    EXPECT_EQ(Grid(again).SelectedRecord(), 2);

    // No leaves everything; a double click asks the same.
    Operator_.Expect(msg::RestoreQuestion).With(Icon::Warning).Answer(Answer::No);
    Press(again, "FG1", Qt::Key_Return);
    EXPECT_EQ(RecordCount("ZUKORHDR"), 0);

    Operator_.Expect(msg::RestoreQuestion).Answer(Answer::Yes);
    Operator_.Expect(::Lines(
        msg::RestoreDone, Words(Text::Value(2), msg::RestoredHeaders, Text::Value(2), msg::RestoredLines,
                                Text::Value(std::string_view(std::string("21.00"))), msg::RestoredDollars)));
    Click(again, "cmdEdit");
    EXPECT_EQ(Cell("ZUKORHDR", 2, "H_ORDCODE"), "A2");
    EXPECT_EQ(Cell("ZUKTOTALPC", 1, "TP_EVENT"), "RESTORE");
    EXPECT_EQ(Cell("ZUKTOTALPC", 1, "TP_DATETIM"), "2026-11-15 09:30:00");
    ASSERT_EQ(GridRows(again, "FG1").size(), 3U);
    EXPECT_EQ(Cells(again, 0)[0], "RESTORE");
    EXPECT_EQ(Cells(again, 0)[2], "0");
    EXPECT_EQ(Grid(again).SelectedRecord(), 3);
    EXPECT_FALSE(Global.CopySingleTable);
    Click(again, "cmdOK");
    EXPECT_EQ(IfLoaded<frmViewGrid>(), nullptr);
}

TEST_F(RestoreScreen, TwoRestoresInOneSecondLeaveTheStateBeforeEach) {
    GivenBackup("CLEAR", 10);
    auto& form = OpenList();
    const auto restore = [&](const std::vector<std::string>& before, const std::function<void()>& deed) {
        GivenOrders(before);
        Grid(form).SelectRecord(static_cast<int>(GridRows(form, "FG1").size())); // the oldest
        Operator_.Expect(msg::RestoreQuestion).Answer(Answer::Yes).Then(deed);
        Operator_.ExpectBeginning(msg::RestoreDone);
        Click(form, "cmdEdit");
    };
    restore({"B1"}, [] {});
    // Time passes only when the program waits.
    restore({"C1", "C2", "C3"}, [] { QTimer::singleShot(0, qApp, [] { clockTime.Second = 1; }); });

    ASSERT_EQ(GridRows(form, "FG1").size(), 3U);
    EXPECT_EQ(Cells(form, 0)[0] + Cells(form, 0)[2], "RESTORE3");
    EXPECT_EQ(Cells(form, 1)[0] + Cells(form, 1)[2], "RESTORE1");
}

TEST_F(RestoreScreen, WhatHasBecomeOfABackupIsMarkedAndTold) {
    auto& none = OpenList();
    EXPECT_FALSE(Enabled(none, "cmdEdit"));
    EXPECT_FALSE(Enabled(none, "cmdDataView"));
    none.Unload();

    GivenBackup("CLEAR", 10);
    PurgeBackups({2026, 11, 15, 2, 15, 0}, [](std::string_view) {});
    GivenBackup("CLEAR", 20);
    std::string bytes = ReadWholeFile(Folder(20) + "ZUKAudTH.dbf");
    bytes.back() ^= 1;
    WriteWholeFile(Folder(20) + "ZUKAudTH.dbf", bytes);
    GivenOrders({"B1"});

    // The bytes of the row that is selected are compared, and differ.
    auto& form = OpenList();
    Settle();
    const QAbstractItemModel* model = Grid(form).model();
    EXPECT_EQ(Cells(form, 0)[8], "changed: ZUKAudTH.dbf");
    EXPECT_EQ(model->index(0, 8).data(Qt::BackgroundRole).value<QColor>(), QColor(255, 255, 0));
    EXPECT_EQ(Cells(form, 1)[8], "deleted");
    EXPECT_NE(model->index(1, 0).data(Qt::ForegroundRole), model->index(0, 0).data(Qt::ForegroundRole));

    Operator_.Expect(msg::RestoreQuestion).Answer(Answer::Yes);
    Operator_
        .Expect(::Lines(
            ::Lines(msg::FilesNoLongerMatch, Text::Path(std::string_view(std::string("ZUKAudTH.dbf")))),
            msg::RestoreAnyway))
        .With(Icon::Warning)
        .Answer(Answer::No);
    Click(form, "cmdEdit");
    EXPECT_EQ(RecordCount("ZUKORHDR"), 1);

    Grid(form).SelectRecord(2);
    Operator_.Expect(msg::PreviewNotFound).With(Icon::Warning);
    Click(form, "cmdDataView");
    Operator_.Expect(msg::RestoreQuestion).Answer(Answer::Yes);
    Operator_.Expect(msg::RestoreNotFound).With(Icon::Warning);
    Click(form, "cmdEdit");
    EXPECT_EQ(GridRows(form, "FG1").size(), 2U);
    EXPECT_EQ(RecordCount("ZUKTOTALPC"), 0);

    Grid(form).SelectRecord(1);
    WriteWholeFile(Global.DBFPath + ".~lock.ZUKAudTL.dbf#", "somebody");
    Operator_.Expect(msg::RestoreQuestion).Answer(Answer::Yes);
    Operator_.ExpectBeginning(msg::FilesNoLongerMatch).Answer(Answer::Yes);
    Operator_.ExpectBeginning(::Lines(msg::FileError, msg::RestoreNothing)).With(Icon::Stop);
    Click(form, "cmdEdit");
    EXPECT_EQ(Cell("ZUKORHDR", 1, "H_ORDCODE"), "B1");
}

TEST_F(RestoreScreen, AStartTellsOfARestoreThatWasCutOffAndInUnattendedModeOnlyTheTraceDoes) {
    GivenBackup("CLEAR", 20);
    GivenOrders({"B1"});
    RestoreTables(Folder(20), [](const std::string& from, const std::string& to) {
        if (to.ends_with("ZUKOrLin.dbf")) throw RunTimeFailure(61, to);
        CopyOver(from, to);
    });
    Operator_.Expect(msg::PalmDesktopMissing);
    Operator_.ExpectBeginning(msg::RestoreCutOff).With(Icon::Warning);

    Open<frmMain1>().Unload();

    Global.UnattendedActive = true;
    Operator_.Expect(msg::PalmDesktopMissing);
    Open<frmMain1>();
    bool traced = false;
    for (int k = 0; k < 100; ++k)
        traced = traced || Global.Events.Entry(k).find("FindUnfinishedJobs RESTORE") != std::string::npos;
    EXPECT_TRUE(traced);
    Global.UnattendedActive = false;
}

TEST_F(RestoreScreen, AStartCarriesTheTablesOfAnUpdateAndTellsAFileThatIsNone) {
    std::filesystem::create_directories(Global.AppPath + "DBFNew");
    const FieldDef fields[] = {{"PAY_CODE", 'C', 12}, {"PAY_NEW", 'C', 5}};
    CreateTable(Global.AppPath + "DBFNew/ZUKPAY.dbf", fields);
    GivenRows("ZUKPAY", {"PAY_CODE", "N30"});
    Operator_.Expect(msg::PalmDesktopMissing);
    Open<frmMain1>().Unload();

    EXPECT_EQ(Cell("ZUKPAY", 1, "PAY_CODE"), "N30");
    EXPECT_EQ(Cell("ZUKPAY", 1, "PAY_NEW"), "");
    EXPECT_FALSE(std::filesystem::exists(Global.AppPath + "DBFNew/ZUKPAY.dbf"));

    Global.Ending = false;
    WriteWholeFile(Global.AppPath + "DBFNew/ZUKPAY.dbf", "no table");
    Operator_.Expect(msg::PalmDesktopMissing);
    Operator_.ExpectBeginning(msg::StartFileError).With(Icon::Stop);
    The<frmMain1>();
    EXPECT_TRUE(Global.Ending);
    EXPECT_EQ(Cell("ZUKPAY", 1, "PAY_CODE"), "N30");
}

TEST_F(RestoreScreen, TheNotesOnAnUpdateAreShownAndItCanBeGivenUp) {
    auto& missing = Open<frmUpdateMsg>();
    EXPECT_EQ(missing.windowTitle(), QStringLiteral("ZUK Tramble PC Update"));
    EXPECT_TRUE(TextOf(missing, "RTB1").contains(QStringLiteral("UpdateReadMe.rtf")));
    Click(missing, "cmdOK");
    EXPECT_FALSE(Global.UpdateCancelled);

    WriteWholeFile(Global.AppPath + "UpdateReadMe.rtf", "{\\rtf1 New:\\par{\\b wider} fields}");
    auto& form = Open<frmUpdateMsg>();
    auto& text = dynamic_cast<QTextEdit&>(Control(form, "RTB1"));
    EXPECT_EQ(text.toPlainText(), QStringLiteral("New:\nwider fields"));
    EXPECT_EQ(text.document()->lastBlock().begin().fragment().charFormat().fontWeight(), QFont::Bold);
    Press(form, "cmdOK", Qt::Key_Escape);
    EXPECT_TRUE(Global.UpdateCancelled);
    EXPECT_EQ(IfLoaded<frmUpdateMsg>(), nullptr);
}

TEST_F(RestoreScreen, TheFileDialogTakesAFileByItsNameAndIsGivenUpByEsc) {
    GivenBackup("CLEAR", 10);
    QtOperator screen;
    const FileQuestion question{msg::SelectTableToView, msg::DBFFiles, ".DBF", Folder(10)};
    QTimer::singleShot(0, qApp, [] {
        auto* box = dynamic_cast<QFileDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->windowTitle(), QStringLiteral("Select Table to View"));
        EXPECT_EQ(box->nameFilters(), QStringList(QStringLiteral("DBF Files (*.DBF)")));
        box->findChild<QLineEdit*>(QStringLiteral("txtAnswer"))->setText(QStringLiteral("ZUKOrLin.dbf"));
        box->findChild<QPushButton*>(QStringLiteral("Ok"))->click();
    });
    EXPECT_EQ(screen.OpenFile(question), Folder(10) + "ZUKOrLin.dbf");

    QTimer::singleShot(0, qApp, [] { QApplication::activeModalWidget()->close(); });
    EXPECT_EQ(screen.OpenFile(question), std::nullopt);
}

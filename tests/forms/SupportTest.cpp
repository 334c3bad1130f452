#include "core/Failure.h"
#include "core/Messages.h"
#include "core/forms/frmEventLog.h"
#include "forms/FormTest.h"
#include "forms/ReadPdf.h"
#include "platform/Convert.h"
#include "platform/DesktopLink.h"
#include "platform/GridView.h"
#include "platform/HotSyncManager.h"
#include "platform/Printing.h"
#include "platform/Registry.h"
#include "support/ForeignTexts.h"
#include "support/RefusingDisk.h"
#include "tools/Notes.h"
#include "tools/forms/frmAbout.h"
#include "tools/forms/frmFindNotes.h"
#include "tools/forms/frmNotes.h"

#include <QApplication>
#include <QCalendarWidget>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QTest>
#include <QTimer>

#include <filesystem>
#include <fstream>

#include <sys/stat.h>

namespace {

using namespace std::string_literals;

/// What the screens for support have in common: an office, a desk's addresses, a printer.
class Support : public FormTest {
protected:
    Support() {
        GivenAppDirectory();
        Global.Clock = [] { return DateTime{2026, 11, 22, 9, 30, 0}; };
        QApplication::setApplicationVersion(QStringLiteral("1.2.3"));
        GivenSupport("[Support]\r\nAddress=desk@example.com\r\nWeb=https://example.com/?a=1&b=2\r\n");
    }

    void GivenSupport(const std::string& content) { GivenFile("app/Support.ini", content); }

    /// A program of the shell, with a line that it runs.
    std::string GivenScript(const std::string& name, const std::string& line) {
        const std::string path = GivenFile(name, "#!/bin/sh\n" + line + "\n");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }

    std::string Pdf() const { return Folder() + "printed.pdf"; }
    void ExpectPdf(const Text& title) {
        Operator_.ExpectPrinterDialog(
            title, [this] { return NewPdfPrinter(Pdf(), UsualPaper(), QStringLiteral("printed")); });
        Operator_.Expect(msg::PrintingComplete).With(Icon::Information);
    }
    void ExpectBrokenPrinter(const Text& title) {
        Operator_.ExpectPrinterDialog(title,
                                      []() -> std::unique_ptr<Printer> { throw RunTimeFailure(57, "LPT1"); });
        Operator_.ExpectBeginning(msg::PrinterFailed).With(Icon::Stop);
    }

    /// The link that was handed to the desktop last.
    std::string Link() const { return Operator_.Links().empty() ? "" : Operator_.Links().back(); }

    static std::string InfoInLink() {
        return "ZUK Version:                  1.2.3%0D%0AOperating System Name:        ";
    }
};

// ---- frmAbout ----

using AboutScreen = Support;

TEST_F(AboutScreen, WithoutARegisteredManagerBothVersionsAreEmptyAndNothingFails) {
    auto& form = Open<frmAbout>();

    EXPECT_EQ(TextOf(form, "lblPalmDTVer1"), QString());
    EXPECT_EQ(TextOf(form, "lblHotsyncVer1"), QString());
}

TEST_F(AboutScreen, TheManagerIsAskedForItsVersion) {
    Registry::SetHotSyncManager(GivenScript("hotsync", "test \"$*\" = --version && echo hotsync 2.5.1"));
    EXPECT_EQ(HotSyncManagerVersion(), "2.5.1");

    EXPECT_EQ(TextOf(Open<frmAbout>(), "lblHotsyncVer1"), QStringLiteral("2.5.1"));
}

TEST_F(AboutScreen, AProgramThatTellsNoVersionHasNone) {
    for (const char* line : {"echo hotsync 2.5.1; exit 1", "echo", "echo no version here", "kill -9 $$",
                             "printf '2%100s' ' ' | tr ' ' 2", "printf '1.0\\001'", "echo 2.5.1 >&2"}) {
        Registry::SetHotSyncManager(GivenScript("hotsync", line));
        EXPECT_EQ(HotSyncManagerVersion(), "") << line;
    }
    Registry::SetHotSyncManager(GivenFile("nothing to run", "text"));
    EXPECT_EQ(HotSyncManagerVersion(), "");
    Registry::SetHotSyncManager(Folder() + "not there");
    EXPECT_EQ(HotSyncManagerVersion(), "");
}

TEST_F(AboutScreen, WhileTheManagerTakesItsTimeToAnswerTheScreenGoesOn) {
    const std::string pipe = Folder() + "answer";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    Registry::SetHotSyncManager(GivenScript("hotsync", "read answer < '" + pipe + "'; echo $answer"));
    std::fstream answer(pipe, std::ios::in | std::ios::out); // opened for both it waits for nobody
    QTimer::singleShot(0, qApp, [&] { answer << "hotsync 2.5.1" << std::endl; });

    EXPECT_EQ(HotSyncManagerVersion(), "2.5.1");
}

TEST_F(AboutScreen, FileVersionsOfWindowsProgramsAreReadAndTheProgramsNotRun) {
    std::string key;
    for (const char c : "VS_VERSION_INFO"s) (key += c) += '\0';
    const std::string program = "MZ" + key + "\0\0\0\0\xBD\x04\xEF\xFE\0\0\x01\0\x02\0\x06\0\x01\0\x00\0"s;
    GivenFile("Palm/Palm.exe", program);
    Registry::SetHotSyncManager(GivenFile("Palm/hotsync.exe", program));

    auto& form = Open<frmAbout>();

    EXPECT_EQ(TextOf(form, "lblPalmDTVer1"), QStringLiteral("6.2.0.1"));
    EXPECT_EQ(TextOf(form, "lblHotsyncVer1"), QStringLiteral("6.2.0.1"));
}

TEST_F(AboutScreen, ProgramLogOpensTheTraceAboveIt) {
    auto& form = Open<frmAbout>();
    QString seen;
    QTimer::singleShot(0, qApp, [&] {
        auto& log = The<frmEventLog>();
        seen = dynamic_cast<QPlainTextEdit&>(Control(log, "rtbEvents")).toPlainText();
        Click(log, "cmdOK");
    });

    Click(form, "cmdEventLog");

    EXPECT_TRUE(seen.contains(QStringLiteral("frmAbout:cmdEventLog_Click"))) << seen.toStdString();
    EXPECT_EQ(IfLoaded<frmEventLog>(), nullptr);
}

TEST_F(AboutScreen, LogFileWritesSysInfoAndTellsWhere) {
    auto& form = Open<frmAbout>();
    const std::string path = Global.AppPath + "SysInfo.txt";
    Operator_.Expect(::Lines(msg::LogFileCreated, Text::Path(std::string_view(path))))
        .With(Icon::Information);

    Click(form, "cmdLog");

    const std::vector<std::string> lines = FormTest::Lines(path);
    EXPECT_EQ(lines.size(), 9U);
    EXPECT_EQ(lines.at(0), "ZUK Version:                  1.2.3");
    EXPECT_EQ(lines.at(6), "Application Data Path:        " + Global.DBFPath);
}

TEST_F(AboutScreen, ALogFileThatCannotBeWrittenIsTold) {
    auto& form = Open<frmAbout>();
    std::filesystem::create_directories(Global.AppPath + "SysInfo.txt");
    Operator_.ExpectBeginning(msg::LogFileFailed).With(Icon::Stop);

    Click(form, "cmdLog");
}

TEST_F(AboutScreen, IsPrinted) {
    auto& form = Open<frmAbout>();
    ExpectPdf(msg::SysInfoTitle);

    Click(form, "cmdPrint");

    const QStringList lines = ReadPdf(Pdf());
    EXPECT_EQ(lines.at(0), QStringLiteral("ZUK Tramble PC System Information"));
    EXPECT_EQ(lines.at(1), QStringLiteral("ZUK Version: 1.2.3"));
}

TEST_F(AboutScreen, APrinterThatFailsIsToldInItsOwnWords) {
    auto& form = Open<frmAbout>();
    ExpectBrokenPrinter(msg::SysInfoTitle);

    Click(form, "cmdPrint");
}

TEST_F(AboutScreen, YesHandsTheMessageToTheDesktop) {
    auto& form = Open<frmAbout>();
    Operator_.Expect(msg::SysInfoMailQuestion).With(Icon::Question).Answer(Answer::Yes);
    Operator_.ExpectLink("mailto:desk@example.com?Subject=ZUK Tramble PC System Information"
                         "&Body=ZUK Tramble PC System Information:%0D%0A" +
                         InfoInLink());
    Operator_.Expect(msg::MailCreated).With(Icon::Information);

    Click(form, "cmdEMail");

    EXPECT_TRUE(Link().ends_with("DataOut (Export) Path:        " + Global.DataOutPath + "%0D%0A")) << Link();
}

TEST_F(AboutScreen, NoMakesNoMessage) {
    auto& form = Open<frmAbout>();
    Operator_.Expect(msg::SysInfoMailQuestion).Answer(Answer::No);

    Click(form, "cmdEMail");

    EXPECT_TRUE(Operator_.Links().empty());
}

TEST_F(AboutScreen, ADesktopThatDoesNotTakeTheMessageIsTold) {
    auto& form = Open<frmAbout>();
    Operator_.Expect(msg::SysInfoMailQuestion).Answer(Answer::Yes);
    Operator_.ExpectLink("mailto:", false);
    Operator_.Expect(::Lines(msg::MailFailed, msg::NoMailProgram)).With(Icon::Stop);

    Click(form, "cmdEMail");
}

TEST_F(AboutScreen, WithoutAnAddressTheMessageBeginsWithoutOne) {
    std::filesystem::remove(Global.AppPath + "Support.ini");
    auto& form = Open<frmAbout>();
    Operator_.Expect(msg::SysInfoMailQuestion).Answer(Answer::Yes);
    Operator_.ExpectLink("mailto:?Subject=");
    Operator_.Expect(msg::MailCreated);

    Click(form, "cmdEMail");

    EXPECT_FALSE(Visible(form, "lblWeb"));
}

TEST_F(AboutScreen, AnAddressThatIsNoneIsToldAndTheMessageBeginsWithoutIt) {
    GivenSupport("Address=nobody\n");
    Operator_.ExpectBeginning(msg::SupportFileProblem).With(Icon::Warning);
    auto& form = Open<frmAbout>();
    Operator_.Expect(msg::SysInfoMailQuestion).Answer(Answer::Yes);
    Operator_.ExpectBeginning(msg::SupportFileProblem).With(Icon::Warning);
    Operator_.ExpectLink("mailto:?Subject=");
    Operator_.Expect(msg::MailCreated);

    Click(form, "cmdEMail");
}

TEST_F(AboutScreen, ALabelThatIsTooLongIsToldWhereverItWouldBeUsed) {
    Global.Replacements[msg::lblAppPath.Number] = {std::string(30, 'x'), 0};
    auto& form = Open<frmAbout>();
    Operator_.ExpectBeginning(msg::LogFileFailed);
    Click(form, "cmdLog");
    Operator_.ExpectBeginning(msg::PrinterFailed);
    Click(form, "cmdPrint");
    Operator_.Expect(msg::SysInfoMailQuestion).Answer(Answer::Yes);
    Operator_.ExpectBeginning(msg::MailFailed);
    Click(form, "cmdEMail");

    EXPECT_TRUE(Operator_.Links().empty());
}

TEST_F(AboutScreen, ThePageOfTheSupportDeskOpensOnTheDesktop) {
    auto& form = Open<frmAbout>();
    EXPECT_TRUE(Visible(form, "lblWeb"));
    Operator_.ExpectLink("https://example.com/?a=1&b=2");
    Click(form, "lblWeb");

    Operator_.ExpectLink("https://example.com/", false);
    Operator_.ExpectBeginning(msg::WebFailed).With(Icon::Stop);
    Click(form, "lblWeb");
}

// ---- frmEventLog ----

using EventLogScreen = Support;

TEST_F(EventLogScreen, ItsLinesArePrintedNewestFirst) {
    TraceEvent("first");
    TraceEvent("second");
    auto& form = Open<frmEventLog>();
    ExpectPdf(msg::EventLogTitle);

    Click(form, "cmdPrint");

    EXPECT_EQ(ReadPdf(Pdf()).mid(0, 4), (QStringList{QStringLiteral("ZUK Tramble PC Program Log"),
                                                     QStringLiteral("frmEventLog:Form_Load"),
                                                     QStringLiteral("second"), QStringLiteral("first")}));
}

TEST_F(EventLogScreen, APrinterThatFailsIsToldInItsOwnWords) {
    auto& form = Open<frmEventLog>();
    ExpectBrokenPrinter(msg::EventLogTitle);

    Click(form, "cmdPrint");
}

TEST_F(EventLogScreen, TheMessageHasTheSystemInformationAndTheOperatorIsToldToAttachTheLog) {
    TraceEvent("a line that does not travel");
    auto& form = Open<frmEventLog>();
    Operator_.Expect(msg::EventLogMailQuestion).Answer(Answer::Yes);
    Operator_.ExpectLink("mailto:desk@example.com?Subject=ZUK Tramble PC Program Log"
                         "&Body=ZUK Tramble PC System Information:%0D%0A" +
                         InfoInLink());
    const std::string words = "Email message successfully created! NOTE: Please attach the file '" +
                              Global.AppPath + "Events.log' to the email message before sending the message.";
    Operator_.Expect(Text::Path(std::string_view(words))).With(Icon::Information);

    Click(form, "cmdEMail");

    EXPECT_EQ(Link().find("does not travel"), std::string::npos);
}

TEST_F(EventLogScreen, NoMakesNoMessageAndAFailureIsTold) {
    auto& form = Open<frmEventLog>();
    Operator_.Expect(msg::EventLogMailQuestion).Answer(Answer::No);
    Click(form, "cmdEMail");
    Operator_.Expect(msg::EventLogMailQuestion).Answer(Answer::Yes);
    Operator_.ExpectLink("mailto:", false);
    Operator_.Expect(::Lines(msg::MailFailed, msg::NoMailProgram));
    Click(form, "cmdEMail");
}

// ---- the notes ----

class NotesScreen : public Support {
protected:
    static std::string Path() { return Global.DBFPath + "Notes.dat"; }

    static Note Given(const std::string& issue, const char* process = "Import", double date = 46340) {
        Note note;
        note.Number = static_cast<std::int32_t>(ReadNotes().Notes.size()) + 1;
        note.Date = date;
        note.Issue = issue;
        note.Person = "Anna";
        note.Version = "1.0.0";
        note.Process = process;
        note.Resolution = "Once.\r\nTwice.";
        WriteNote(note);
        return note;
    }

    /// Does something on the note that opens next, which is modal.
    static void OnTheNote(std::function<void(frmNotes&)> deed) {
        QTimer::singleShot(0, qApp, [deed = std::move(deed)] { deed(The<frmNotes>()); });
    }

    /// A note that is opened by itself.
    frmNotes& OpenNote(std::int32_t number, bool isNew = false) {
        Global.CurrentNote = number;
        Global.NewNote = isNew;
        return Open<frmNotes>();
    }

    static QPlainTextEdit& Edit(frmNotes& form, const char* name) {
        return dynamic_cast<QPlainTextEdit&>(Control(form, name));
    }
    static std::string Shown(FormBehaviour& form, const char* name) {
        return TextOf(form, name).toStdString();
    }

    static std::string Numbers(frmFindNotes& list) {
        std::string numbers;
        for (const QStringList& row : GridRows(list, "FG1")) numbers += row.at(0).toStdString() + " ";
        return numbers;
    }
    static void ClickHeading(frmFindNotes& list, int column) {
        emit dynamic_cast<QTableView&>(Control(list, "FG1")).horizontalHeader()->sectionClicked(column);
        Settle();
    }
};

TEST_F(NotesScreen, WithoutNotesTheListSaysWhatToDo) {
    auto& list = Open<frmFindNotes>();

    EXPECT_EQ(GridRows(list, "FG1").size(), 0U);
    EXPECT_EQ(Bytes(Path()), "") << "the first open has made the file";
    Press(list, "FG1", Qt::Key_Escape);
    EXPECT_EQ(IfLoaded<frmFindNotes>(), nullptr);
}

TEST_F(NotesScreen, ANewNoteIsWrittenBehindTheLastAndListed) {
    Given("old");
    auto& list = Open<frmFindNotes>();
    OnTheNote([](frmNotes& note) {
        EXPECT_EQ(Shown(note, "lblRecNo"), "2");
        EXPECT_EQ(Shown(note, "lblDate"), "2026-11-22 09:30:00");
        EXPECT_EQ(Shown(note, "lblVersion"), "1.2.3");
        EXPECT_EQ(Shown(note, "cboProcess"), "");
        Choose(note, "cboProcess", QStringLiteral("Sales Tax"));
        Type(note, "txtPerson", QStringLiteral("José"));
        Edit(note, "txtIssue").setPlainText(QStringLiteral("R&D\nis late"));
        Edit(note, "txtNote").setPlainText(QStringLiteral("wait"));
        Click(note, "cmdOK");
    });

    Click(list, "cmdNew");

    EXPECT_EQ(GridRows(list, "FG1").at(1),
              (QStringList{QStringLiteral("2"), QStringLiteral("2026-11-22 09:30:00"),
                           QStringLiteral("Sales Tax"), QStringLiteral("R&D is late"), QStringLiteral("José"),
                           QString(), QStringLiteral("wait")}));
    const Note read = ReadNote(2);
    EXPECT_EQ(read.Issue, "R&D\r\nis late");
    EXPECT_EQ(read.Version, "1.2.3");
    EXPECT_EQ(dynamic_cast<GridView&>(Control(list, "FG1")).SelectedRecord(), 2);
    EXPECT_FALSE(Global.NewNote);
}

TEST_F(NotesScreen, ANoteWithoutAProcessIsRefused) {
    const std::string before = NoteRecord(Given("old"));
    auto& form = OpenNote(2, true);
    Operator_.Expect(msg::SelectProcess).With(Icon::Warning);

    Click(form, "cmdOK");

    EXPECT_EQ(Bytes(Path()), before);
    EXPECT_NE(IfLoaded<frmNotes>(), nullptr);
    EXPECT_EQ(form.focusWidget(), &Control(form, "cboProcess"));
}

TEST_F(NotesScreen, EnterAndADoubleClickOpenTheSelectedNote) {
    Given("one");
    Given("two");
    auto& list = Open<frmFindNotes>();
    std::string seen;
    const auto look = [&](frmNotes& note) {
        seen += Shown(note, "lblRecNo") + Edit(note, "txtIssue").toPlainText().toStdString() + " ";
        Click(note, "cmdCancel");
    };
    dynamic_cast<GridView&>(Control(list, "FG1")).SelectRecord(2);
    OnTheNote(look);
    Press(list, "FG1", Qt::Key_Return);
    dynamic_cast<GridView&>(Control(list, "FG1")).SelectRecord(1);
    OnTheNote(look);
    emit dynamic_cast<QTableView&>(Control(list, "FG1")).doubleClicked({});

    EXPECT_EQ(seen, "2two 1one ");
}

TEST_F(NotesScreen, ASavedNoteThatNobodyChangedIsTheSameByteForByte) {
    Note odd = Given("Caf\xE9\r\nline", "Unattended Hotsync", 1e300);
    odd.Resolved = "some day";
    odd.Resolution = "10\xA0"
                     "000 orders\nof two\rdays";
    WriteNote(odd);
    const std::string before = Bytes(Path());
    auto& form = OpenNote(1);
    EXPECT_EQ(Shown(form, "lblDate"), "");
    EXPECT_EQ(Shown(form, "txtResolved"), "some day");

    Click(form, "cmdOK");

    EXPECT_EQ(Bytes(Path()), before);
    EXPECT_EQ(IfLoaded<frmNotes>(), nullptr);
}

TEST_F(NotesScreen, AProcessIsSavedInEnglishWhateverTheLanguage) {
    UseForeignTexts();
    Given("x", ForeignText(msg::lblImport).c_str());
    auto& form = OpenNote(1);
    EXPECT_EQ(TextOf(form, "cboProcess"), ToQt(Text(msg::lblImport)));
    Type(form, "txtPerson", QStringLiteral("Bea"));

    Click(form, "cmdOK");

    EXPECT_EQ(ReadNote(1).Process, "Import");
}

TEST_F(NotesScreen, AProcessThatIsNotInTheListStaysWithItsNote) {
    Given("x", "Faxes");
    const std::string before = Bytes(Path());
    auto& form = OpenNote(1);
    EXPECT_EQ(Shown(form, "cboProcess"), "Faxes");

    Click(form, "cmdOK");

    EXPECT_EQ(Bytes(Path()), before);
}

TEST_F(NotesScreen, AClickOnAHeadingSortsByItsKindAndASecondOneReverses) {
    Given("b", "Items", 46340);
    Given("a", "Import", 46348.5);
    Given("C", "Export", 46341);
    auto& list = Open<frmFindNotes>();

    ClickHeading(list, 3);
    EXPECT_EQ(Numbers(list), "2 1 3 ");
    ClickHeading(list, 3);
    EXPECT_EQ(Numbers(list), "3 1 2 ");
    ClickHeading(list, 1);
    EXPECT_EQ(Numbers(list), "1 3 2 ");
    ClickHeading(list, 0);
    EXPECT_EQ(Numbers(list), "1 2 3 ");
}

TEST_F(NotesScreen, TheOrderStaysBehindAnEditedNote) {
    Given("b");
    Given("a");
    auto& list = Open<frmFindNotes>();
    ClickHeading(list, 3);
    dynamic_cast<GridView&>(Control(list, "FG1")).SelectRecord(1);
    OnTheNote([](frmNotes& note) {
        Edit(note, "txtIssue").setPlainText(QStringLiteral("A"));
        Click(note, "cmdOK");
    });

    Press(list, "FG1", Qt::Key_Return);

    EXPECT_EQ(GridRows(list, "FG1").at(0).at(3), QStringLiteral("A"));
    EXPECT_EQ(dynamic_cast<GridView&>(Control(list, "FG1")).SelectedRecord(), 1);
}

TEST_F(NotesScreen, AClickIntoTheDateOpensTheCalendarAndADatePutsItself) {
    auto& form = OpenNote(1, true);
    auto& calendar = dynamic_cast<QCalendarWidget&>(Control(form, "MonthView1"));
    EXPECT_FALSE(calendar.isVisible());

    QTest::mouseClick(&Control(form, "txtResolved"), Qt::LeftButton);
    Settle();
    EXPECT_TRUE(calendar.isVisible());
    EXPECT_EQ(calendar.selectedDate(), QDate(2026, 11, 22)) << "today";
    calendar.setSelectedDate(QDate(2026, 12, 3));
    emit calendar.clicked(calendar.selectedDate());

    EXPECT_FALSE(calendar.isVisible());
    EXPECT_EQ(Shown(form, "txtResolved"), "2026-12-03");
}

TEST_F(NotesScreen, TheDateCanBeChosenAndEmptiedByKeysAndByTheMenu) {
    auto& form = OpenNote(1, true);
    auto& calendar = dynamic_cast<QCalendarWidget&>(Control(form, "MonthView1"));
    Press(form, "txtResolved", Qt::Key_Space);
    EXPECT_TRUE(calendar.isVisible());
    emit calendar.activated(calendar.selectedDate());
    EXPECT_EQ(Shown(form, "txtResolved"), "2026-11-22");
    EXPECT_FALSE(calendar.isVisible());
    Press(form, "txtResolved", Qt::Key_Delete);
    EXPECT_EQ(Shown(form, "txtResolved"), "");

    auto* menu = form.findChild<QMenu*>(QStringLiteral("mnuPop"));
    emit Control(form, "txtResolved").customContextMenuRequested({});
    EXPECT_TRUE(menu->isVisible());
    menu->hide();
    ClickMenu(form, "mnuSelect");
    EXPECT_TRUE(calendar.isVisible());
    emit calendar.clicked(calendar.selectedDate());
    ClickMenu(form, "mnuClear");
    EXPECT_EQ(Shown(form, "txtResolved"), "");
}

TEST_F(NotesScreen, NothingElseCanBeTypedIntoTheDate) {
    auto& form = OpenNote(1, true);

    QTest::keyClicks(&Control(form, "txtResolved"), QStringLiteral("soon"));

    EXPECT_EQ(Shown(form, "txtResolved"), "");
}

TEST_F(NotesScreen, WhatWillBeCutIsSaidWhileItIsTyped) {
    auto& form = OpenNote(1, true);
    Choose(form, "cboProcess", QStringLiteral("Other"));
    Edit(form, "txtIssue").setPlainText(QString(250, QLatin1Char('i')));
    EXPECT_EQ(Shown(form, "lblWarning"), "");
    Edit(form, "txtIssue").appendPlainText(QStringLiteral("i"));
    EXPECT_EQ(Shown(form, "lblWarning"), Text(msg::IssueTooLong).Utf8());
    Edit(form, "txtNote").setPlainText(QString(751, QLatin1Char('r')));
    EXPECT_NE(Shown(form, "lblWarning").find(Text(msg::ResolutionTooLong).Utf8()), std::string::npos);

    Click(form, "cmdOK");

    EXPECT_EQ(ReadNote(1).Issue, std::string(250, 'i'));
    EXPECT_EQ(ReadNote(1).Resolution, std::string(750, 'r'));
}

TEST_F(NotesScreen, CharactersThatTheFileLacksAreSaid) {
    auto& form = OpenNote(1, true);

    Type(form, "txtPerson", QStringLiteral("日"));

    EXPECT_EQ(Shown(form, "lblWarning"), Text(msg::CharactersNotKept).Utf8());
}

TEST_F(NotesScreen, ANoteThatCannotBeSavedStaysOnTheScreen) {
    auto& form = OpenNote(1, true);
    Choose(form, "cboProcess", QStringLiteral("Other"));
    std::filesystem::create_directories(Path() + ".zuk~");
    Operator_.ExpectBeginning(msg::NoteNotSaved).With(Icon::Stop);

    Click(form, "cmdOK");

    EXPECT_NE(IfLoaded<frmNotes>(), nullptr);
}

TEST_F(NotesScreen, NotesThatCannotBeReadAreToldAndNoNewOneIsBegun) {
    std::filesystem::create_directories(Path());
    Operator_.ExpectBeginning(msg::NotesUnreadable).With(Icon::Stop);

    auto& list = Open<frmFindNotes>();

    EXPECT_FALSE(Enabled(list, "cmdNew"));
}

TEST_F(NotesScreen, AFileThatEndsInsideANoteIsToldAndTheNoteListed) {
    GivenFile("app/DBFFiles/Notes.dat",
              NoteRecord(Given("whole")) + NoteRecord(Given("cut off")).substr(0, 100));
    Operator_.ExpectBeginning(msg::NotesCutOff).With(Icon::Warning);

    auto& list = Open<frmFindNotes>();

    EXPECT_EQ(GridRows(list, "FG1").at(1).at(3), QStringLiteral("cut off"));
}

TEST_F(NotesScreen, ANoteThatHasGoneMeanwhileIsTold) {
    Operator_.ExpectBeginning(msg::NotesUnreadable).With(Icon::Stop);
    Global.CurrentNote = 7;

    The<frmNotes>().Show();

    EXPECT_EQ(IfLoaded<frmNotes>(), nullptr);
}

TEST_F(NotesScreen, IsPrintedAsItStandsOnTheScreen) {
    Given("one");
    auto& form = OpenNote(1);
    Edit(form, "txtIssue").setPlainText(QStringLiteral("not saved yet"));
    ExpectPdf(msg::NotesTitle);

    Click(form, "cmdPrint");

    const QStringList lines = ReadPdf(Pdf());
    EXPECT_EQ(lines.at(0), QStringLiteral("ZUK Tramble PC Notes"));
    EXPECT_TRUE(lines.contains(QStringLiteral("Issue: not saved yet"))) << lines.join(u'\n').toStdString();
    EXPECT_TRUE(lines.contains(QStringLiteral("System Information:")));
    EXPECT_TRUE(lines.contains(QStringLiteral("ZUK Version: 1.2.3")));
    EXPECT_EQ(ReadNote(1).Issue, "one");
}

TEST_F(NotesScreen, APrinterThatFailsIsToldInItsOwnWords) {
    auto& form = OpenNote(1, true);
    ExpectBrokenPrinter(msg::NotesTitle);

    Click(form, "cmdPrint");
}

TEST_F(NotesScreen, AnAmpersandInTheIssueReachesTheMailProgramAsAPercentSignFollowedBy26) {
    Given("R&D");
    auto& form = OpenNote(1);
    Operator_.Expect(msg::NoteMailQuestion).Answer(Answer::Yes);
    Operator_.ExpectLink("mailto:desk@example.com?Subject=ZUK Tramble Note # 1&Body=Record #:       1%0D%0A");
    Operator_.Expect(msg::MailCreated);

    Click(form, "cmdEMail");

    EXPECT_NE(Link().find("Issue:          R%26D%0D%0A"), std::string::npos) << Link();
    EXPECT_NE(
        Link().find(
            "%0D%0ASystem Information:%0D%0A    ZUK Version:                  1.2.3%0D%0A    Operating"),
        std::string::npos)
        << Link();
}

TEST_F(NotesScreen, NoMakesNoMessageAndAFailureIsTold) {
    auto& form = OpenNote(1, true);
    Operator_.Expect(msg::NoteMailQuestion).Answer(Answer::No);
    Click(form, "cmdEMail");
    Operator_.Expect(msg::NoteMailQuestion).Answer(Answer::Yes);
    Operator_.ExpectLink("mailto:", false);
    Operator_.Expect(::Lines(msg::MailFailed, msg::NoMailProgram));
    Click(form, "cmdEMail");
}

// ---- the desktop ----

class DesktopLink : public Support {
protected:
    DesktopLink() { Global.InstantPauses = false; }
    ~DesktopLink() override { qputenv("PATH", path_); }

    /// The desktop's opener writes down what it gets, and ends in a code.
    void GivenOpener(const std::string& ends) {
        GivenScript("bin/xdg-open", "printf '%s\\n' \"$#\" \"$1\" > '" + Folder() + "got'; " + ends);
        qputenv("PATH", QByteArray::fromStdString(Folder() + "bin:") + path_);
    }

private:
    QByteArray path_ = qgetenv("PATH");
};

TEST_F(DesktopLink, TheOpenerGetsOneArgument) {
    GivenOpener("exit 0");

    EXPECT_TRUE(OpenDesktopLink("mailto:a@b.c?Subject=R%26D; rm -rf $HOME `x` \"y\""));

    EXPECT_EQ(FormTest::Lines(Folder() + "got"),
              (std::vector<std::string>{
                  "1", "mailto:a@b.c?Subject=R%26D%3B%20rm%20-rf%20%24HOME%20%60x%60%20%22y%22"}));
}

TEST_F(DesktopLink, AnOpenerThatFindsNoProgramIsAFailure) {
    GivenOpener("exit 3");
    EXPECT_FALSE(OpenDesktopLink("mailto:a@b.c"));

    GivenOpener("kill -9 $$");
    EXPECT_FALSE(OpenDesktopLink("mailto:a@b.c"));
}

TEST_F(DesktopLink, AnOpenerThatGoesOnIsTheProgramItself) {
    Global.InstantPauses = true;
    const std::string signal = Folder() + "signal";
    ASSERT_EQ(mkfifo(signal.c_str(), 0600), 0);
    GivenOpener("read line < '" + signal + "'; touch '" + Folder() + "ended'; exit 3");

    EXPECT_TRUE(OpenDesktopLink("mailto:a@b.c"));

    std::ofstream(signal) << '\n'; // waits for its reader
    WaitInLoop([&] { return !Exists(Folder() + "ended"); });
}

TEST_F(DesktopLink, ALinkLongerThanADesktopTakesIsRefusedWhole) {
    GivenOpener("exit 0");
    const std::string mail = "mailto:?Body=";

    EXPECT_TRUE(OpenDesktopLink(mail + std::string(LongestLink - mail.size(), 'x')));
    std::filesystem::remove(Folder() + "got");
    EXPECT_FALSE(OpenDesktopLink(mail + std::string(LongestLink - mail.size() + 1, 'x')));

    EXPECT_FALSE(Exists(Folder() + "got"));
}

TEST_F(DesktopLink, TheLongestNoteGoesOut) {
    GivenOpener("exit 0");
    Note note;
    note.Number = 1;
    note.Issue = std::string(250, '\xE9');
    note.Resolution = std::string(750, '\x80');
    note.Process = "Other";
    WriteNote(note);
    Global.CurrentNote = 1;
    auto& form = Open<frmNotes>();
    Operator_.Expect(msg::NoteMailQuestion).Answer(Answer::Yes);
    Operator_.ExpectLink("mailto:");
    Operator_.Expect(msg::MailCreated);
    Click(form, "cmdEMail");

    EXPECT_TRUE(OpenDesktopLink(Link()));
}

} // namespace

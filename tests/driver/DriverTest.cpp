#include "driver/DriverClient.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QImage>
#include <QLocalSocket>
#include <QTimer>

#include <functional>
#include <ostream>
#include <string>

/// So that a failed comparison can be read.
void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

namespace {

using Milliseconds = DriverClient::Milliseconds;

constexpr int ExitCode = 5;

class Driven : public ::testing::Test {
protected:
    Driven()
        : client_({.Program = QStringLiteral(DRIVEN_PROGRAM),
                   .Arguments = {},
                   .Folder = {},
                   .Environment = {},
                   .Plugins = {}}) {}

    DriverClient& Started() {
        client_.Start();
        client_.WaitForm("frmMain1");
        return client_;
    }

    QString Log() { return client_.Text("frmMain1", "lblLog"); }

    DriverClient client_;
};

/// The words of the failure that a deed ends in; empty when it ends in none.
std::string FailureOf(const std::function<void()>& deed) {
    try {
        deed();
    } catch (const DriverFailure& failure) {
        return failure.what();
    }
    return {};
}

#define EXPECT_SAYS(words, piece) EXPECT_NE((words).find(piece), std::string::npos) << "said: " << (words)

// ---- deeds and looks ----

TEST_F(Driven, ButtonTakesAClick) {
    auto& client = Started();

    client.Click("frmMain1", "cmdImport");

    EXPECT_EQ(Log(), "imported");
}

TEST_F(Driven, ButtonFarDownAScrolledPageIsBroughtIntoSight) {
    auto& client = Started();

    client.Click("frmMain1", "cmdFarBelow");

    EXPECT_EQ(Log(), "far below");
}

TEST_F(Driven, MnemonicPressesItsButton) {
    auto& client = Started();

    client.Key("Alt+I");

    EXPECT_EQ(Log(), "imported");
}

TEST_F(Driven, TabMovesTheFocusAndTypedTextGoesThere) {
    auto& client = Started();
    client.Focus("frmMain1", "txtName");
    ASSERT_TRUE(client.HasFocus("frmMain1", "txtName"));

    client.Key("Tab");
    client.Type(QString::fromUtf8("Ünder A-1"));

    EXPECT_TRUE(client.HasFocus("frmMain1", "txtOther"));
    EXPECT_EQ(client.Text("frmMain1", "txtOther"), QString::fromUtf8("Ünder A-1"));
}

TEST_F(Driven, SetReplacesTheTextOfEachKindOfInput) {
    auto& client = Started();

    client.Set("frmMain1", "txtName", "new name");
    client.Set("frmMain1", "txtOther", "other");
    client.Set("frmMain1", "spnNumber", 42);
    client.Set("frmMain1", "cboEditable", "typed");
    client.Set("frmMain1", "rtbNotes", "two\nlines");

    EXPECT_EQ(client.Text("frmMain1", "txtName"), "new name");
    EXPECT_EQ(client.Text("frmMain1", "txtOther"), "other");
    EXPECT_EQ(client.Property("frmMain1", "spnNumber", "value").toInt(), 42);
    EXPECT_EQ(client.Text("frmMain1", "cboEditable"), "typed");
    EXPECT_EQ(client.Text("frmMain1", "rtbNotes"), "two\nlines");
}

TEST_F(Driven, SetEmptiesALine) {
    auto& client = Started();

    client.Set("frmMain1", "txtName", "");

    EXPECT_EQ(client.Text("frmMain1", "txtName"), "");
}

TEST_F(Driven, LeavingAnInputIsNoticedByTheProgram) {
    auto& client = Started();

    client.Set("frmMain1", "txtName", "abc");
    client.Set("frmMain1", "txtOther", "x");

    EXPECT_EQ(Log(), "left with abc");
}

TEST_F(Driven, TextThatDoesNotFitIsAFailure) {
    auto& client = Started();

    const std::string said = FailureOf([&] { client.Set("frmMain1", "txtName", "longer than twelve"); });

    EXPECT_SAYS(said, "frmMain1.txtName holds \"longer than \"");
}

TEST_F(Driven, ReadOnlyInputIsRefused) {
    auto& client = Started();

    EXPECT_SAYS(FailureOf([&] { client.Set("frmMain1", "txtFixed", "x"); }),
                "frmMain1.txtFixed cannot be changed");
}

TEST_F(Driven, TicksAndOptionsAreSetOnceAndForAll) {
    auto& client = Started();

    client.Set("frmMain1", "chkAsk", true);
    client.Set("frmMain1", "chkAsk", true);
    client.Set("frmMain1", "optTwo", true);
    client.Set("frmMain1", "fraExtras", false);

    EXPECT_TRUE(client.IsChecked("frmMain1", "chkAsk"));
    EXPECT_TRUE(client.IsChecked("frmMain1", "optTwo"));
    EXPECT_FALSE(client.IsChecked("frmMain1", "optOne"));
    EXPECT_FALSE(client.IsChecked("frmMain1", "fraExtras"));

    client.Set("frmMain1", "chkAsk", false);

    EXPECT_FALSE(client.IsChecked("frmMain1", "chkAsk"));
}

TEST_F(Driven, OptionThatCannotBeClearedIsAFailure) {
    auto& client = Started();
    client.Set("frmMain1", "optTwo", true);

    EXPECT_SAYS(FailureOf([&] { client.Set("frmMain1", "optTwo", false); }),
                "frmMain1.optTwo is still ticked");
}

TEST_F(Driven, ChosenEntryOfAComboBoxIsAnnounced) {
    auto& client = Started();

    client.Choose("frmMain1", "cboSettings", "Weekly");

    EXPECT_EQ(Log(), "activated Weekly");
    EXPECT_EQ(client.Text("frmMain1", "cboSettings"), "Weekly");
    EXPECT_EQ(client.Items("frmMain1", "cboSettings"), (QStringList{"Standard", "Weekly", "Locked"}));
    EXPECT_EQ(client.ChosenItems("frmMain1", "cboSettings"), QStringList{"Weekly"});
}

TEST_F(Driven, EntryThatIsChosenAlreadyIsAnnouncedAgain) {
    auto& client = Started();
    client.Choose("frmMain1", "cboSettings", "Weekly");
    client.Click("frmMain1", "cmdImport");

    client.Choose("frmMain1", "cboSettings", "Weekly");

    EXPECT_EQ(Log(), "activated Weekly");
}

TEST_F(Driven, MissingOrDisabledEntryIsRefused) {
    auto& client = Started();

    EXPECT_SAYS(FailureOf([&] { client.Choose("frmMain1", "cboSettings", "Daily"); }),
                "frmMain1.cboSettings has no entry \"Daily\"; it has: Standard, Weekly, Locked");
    EXPECT_SAYS(FailureOf([&] { client.Choose("frmMain1", "cboSettings", "Locked"); }), "cannot be chosen");
    EXPECT_EQ(Log(), "");
}

TEST_F(Driven, ListTakesSeveralEntriesAndADoubleClick) {
    auto& client = Started();

    client.Choose("frmMain1", "lstNames", "Ann");
    client.ChooseAlso("frmMain1", "lstNames", "Dee");

    EXPECT_EQ(client.ChosenItems("frmMain1", "lstNames"), (QStringList{"Ann", "Dee"}));

    client.ChooseTwice("frmMain1", "lstNames", "Bob");

    EXPECT_EQ(Log(), "twice on Bob");
}

TEST_F(Driven, TwoClicksInARowAreNoDoubleClick) {
    auto& client = Started();

    client.Choose("frmMain1", "lstNames", "Bob");
    client.Choose("frmMain1", "lstNames", "Bob");

    EXPECT_EQ(Log(), "");
}

TEST_F(Driven, TableIsReadWithItsHeadingsAndClicked) {
    auto& client = Started();

    const DrivenTable table = client.Rows("frmMain1", "FG1");

    EXPECT_EQ(table.Headings, (QStringList{"Code", "Name"}));
    EXPECT_EQ(table.Rows, (QList<QStringList>{{"A1", "Acme"}, {"B2", "Bolt"}}));
    EXPECT_EQ(table.Cell(1, "Name"), "Bolt");
    EXPECT_THROW(static_cast<void>(table.Cell(2, "Name")), DriverFailure);
    EXPECT_THROW(static_cast<void>(table.Cell(0, "Phone")), DriverFailure);

    EXPECT_EQ(table.Grounds, (QMap<QPair<int, int>, QString>{{{1, 0}, "#ff0000"}}));

    client.ClickHeading("frmMain1", "FG1", "Name");

    EXPECT_EQ(Log(), "heading 1");

    client.ChooseRow("frmMain1", "FG1", 1, 1, true);

    EXPECT_EQ(Log(), "cell Bolt");
}

TEST_F(Driven, NamedControlsOfAFormAreListed) {
    auto& client = Started();

    QStringList found;
    for (const DrivenControl& control : client.Controls("frmMain1")) {
        if (control.Class != "QPushButton") continue;
        found << control.Name + (control.Enabled ? "" : " disabled") + (control.Visible ? "" : " hidden");
    }

    for (const char* button :
         {"cmdImport", "cmdDisabled disabled", "cmdHidden hidden", "cmdSecondPage hidden"})
        EXPECT_TRUE(found.contains(button)) << button << " in " << found.join(", ").toStdString();
    EXPECT_THROW(client.Controls("frmNowhere"), DriverFailure);
}

TEST_F(Driven, ControlOnAnotherPageIsHiddenUntilItsTabIsChosen) {
    auto& client = Started();

    EXPECT_SAYS(FailureOf([&] { client.Click("frmMain1", "cmdSecondPage"); }),
                "frmMain1.cmdSecondPage is hidden");

    client.Choose("frmMain1", "tabPages", "Second");

    EXPECT_TRUE(client.IsVisible("frmMain1", "cmdSecondPage"));
    client.Click("frmMain1", "cmdSecondPage");
}

TEST_F(Driven, MenuEntriesAreChosenAsFromTheOpenMenu) {
    auto& client = Started();

    client.Click("frmMain1", "mnuWhenOpened");

    EXPECT_EQ(Log(), "when opened");
    EXPECT_EQ(client.Text("frmMain1", "mnuNew"), "New");
    EXPECT_SAYS(FailureOf([&] { client.Click("frmMain1", "mnuGray"); }), "menu entry mnuGray is disabled");
    EXPECT_SAYS(FailureOf([&] { client.Click("frmMain1", "mnuInside"); }), "menu that is disabled");
}

TEST_F(Driven, TitleCaptionAndPropertiesAreRead) {
    auto& client = Started();

    EXPECT_EQ(client.Title("frmMain1"), "The driven program");
    EXPECT_EQ(client.Text("frmMain1", "cmdImport"), "Import");
    EXPECT_TRUE(client.IsEnabled("frmMain1", "cmdImport"));
    EXPECT_FALSE(client.IsEnabled("frmMain1", "cmdDisabled"));
    EXPECT_FALSE(client.IsVisible("frmMain1", "cmdHidden"));
    EXPECT_EQ(client.Property("frmMain1", "txtName", "maxLength").toInt(), 12);
    EXPECT_SAYS(FailureOf([&] { client.Property("frmMain1", "txtName", "colour"); }),
                "has no property colour");
}

TEST_F(Driven, PictureOfAFormIsSaved) {
    auto& client = Started();
    const QString file = client.Folder() + "/main.png";

    client.Grab("frmMain1", file);

    EXPECT_GT(QImage(file).width(), 50);
    EXPECT_SAYS(FailureOf([&] { client.Grab("frmMain1", "main.png"); }), "full path");
}

// ---- what a person could not do ----

TEST_F(Driven, DisabledHiddenAndMissingControlsAreRefused) {
    auto& client = Started();

    EXPECT_SAYS(FailureOf([&] { client.Click("frmMain1", "cmdDisabled"); }),
                "frmMain1.cmdDisabled is disabled");
    EXPECT_SAYS(FailureOf([&] { client.Click("frmMain1", "cmdHidden"); }), "frmMain1.cmdHidden is hidden");
    EXPECT_SAYS(FailureOf([&] { client.Click("frmMain1", "cmdNone"); }),
                "form frmMain1 has no control cmdNone");
    EXPECT_SAYS(FailureOf([&] { client.Click("frmNone", "cmdOK"); }),
                "no form frmNone is on the screen; there is frmMain1");
    EXPECT_SAYS(FailureOf([&] { client.Click("frmMain1", "lblLog"); }), "does not answer to the mouse");
    EXPECT_SAYS(FailureOf([&] { client.Key("Hyper+Nothing"); }), "is no key");
    EXPECT_EQ(Log(), "");
}

TEST_F(Driven, FormBelowAModalOneIsBlocked) {
    auto& client = Started();
    client.Click("frmMain1", "cmdDialog");
    client.WaitForm("frmDialog");

    EXPECT_SAYS(FailureOf([&] { client.Click("frmMain1", "cmdImport"); }),
                "frmMain1 is blocked by frmDialog");
    EXPECT_SAYS(FailureOf([&] { client.Set("frmMain1", "txtName", "x"); }),
                "frmMain1 is blocked by frmDialog");
    EXPECT_SAYS(FailureOf([&] { client.Close("frmMain1"); }), "frmMain1 is blocked by frmDialog");

    const QList<DrivenForm> forms = client.Forms();
    ASSERT_EQ(forms.size(), 2);
    EXPECT_EQ(forms[0].Name, "frmDialog");
    EXPECT_TRUE(forms[0].Modal && forms[0].Active && !forms[0].Blocked);
    EXPECT_TRUE(forms[1].Blocked);
}

// ---- forms and waits ----

TEST_F(Driven, ModalFormIsDrivenInsideItsLoop) {
    auto& client = Started();

    client.Click("frmMain1", "cmdDialog");
    client.WaitForm("frmDialog");
    EXPECT_EQ(client.Text("frmDialog", "lblReady"), "ready");
    client.Expect("Delete all of it?", "Yes");
    client.Click("frmDialog", "cmdAsk");
    EXPECT_EQ(client.Text("frmDialog", "lblAnswer"), "deleted");
    client.Click("frmDialog", "cmdOK");
    client.WaitGone("frmDialog");

    EXPECT_EQ(Log(), "dialog over");
    client.Key("Alt+I");
    EXPECT_EQ(Log(), "imported");
    client.Done();
}

TEST_F(Driven, WhatFollowsAModalFormHasRunBeforeTheNextRequest) {
    auto& client = Started();
    client.Click("frmMain1", "cmdOwnLoop");
    client.WaitForm("frmDialog");

    client.Click("frmDialog", "cmdOK");

    EXPECT_EQ(Log(), "own loop over");
}

TEST_F(Driven, EscapeClosesAModalForm) {
    auto& client = Started();
    client.Click("frmMain1", "cmdDialog");
    client.WaitForm("frmDialog");

    client.Key("Escape");

    client.WaitGone("frmDialog");
    EXPECT_FALSE(client.IsShown("frmDialog"));
}

TEST_F(Driven, WaitsEndWhenWhatIsWaitedForComes) {
    auto& client = Started();

    client.WaitEnabled("frmMain1", "cmdLate");
    client.Click("frmMain1", "cmdTextSoon");
    EXPECT_EQ(client.WaitTextContaining("frmMain1", "lblLog", "soon"), "soon, with a tail");
    EXPECT_EQ(client.WaitText("frmMain1", "lblLog", "soon, with a tail"), "soon, with a tail");
    client.Click("frmMain1", "cmdFormSoon");
    client.WaitForm("frmDialog");
    client.Close("frmDialog");
    client.WaitGone("frmDialog");
    client.WaitDisabled("frmMain1", "cmdDisabled");
}

TEST_F(Driven, WaitsThatRunOutSayWhatTheyFound) {
    auto& client = Started();
    client.Click("frmMain1", "cmdImport");
    const Milliseconds brief(60);

    EXPECT_SAYS(FailureOf([&] { client.WaitForm("frmNone", brief); }),
                "form frmNone did not come; there is frmMain1");
    EXPECT_SAYS(FailureOf([&] { client.WaitGone("frmMain1", brief); }), "frmMain1 is still on the screen");
    EXPECT_SAYS(FailureOf([&] { client.WaitEnabled("frmMain1", "cmdDisabled", brief); }),
                "frmMain1.cmdDisabled is not enabled");
    EXPECT_SAYS(FailureOf([&] { client.WaitText("frmMain1", "lblLog", "exported", brief); }),
                "frmMain1.lblLog shows \"imported\" and not \"exported\"");
    EXPECT_SAYS(FailureOf([&] { client.WaitText("frmNone", "lblLog", "x", brief); }), "no form frmNone");
    EXPECT_EQ(Log(), "imported");
}

// ---- boxes ----

TEST_F(Driven, ExpectedBoxesAreAnsweredInTheirOrder) {
    auto& client = Started();
    client.Expect("First?", "No");
    client.ExpectContaining("econd");

    client.Click("frmMain1", "cmdTwoBoxes");

    EXPECT_EQ(Log(), "no, then told");
    client.Done();
    ASSERT_EQ(client.Boxes().size(), 2);
    EXPECT_EQ(client.Boxes()[0].Answer, "No");
    EXPECT_EQ(client.Boxes()[1].Text, "Second.");
}

TEST_F(Driven, InputBoxGetsItsTextOrIsGivenUp) {
    auto& client = Started();

    client.ExpectInput("A name?", "Smith");
    client.Click("frmMain1", "cmdInput");
    EXPECT_EQ(Log(), "Smith");

    client.ExpectInputCancelled("A name?");
    client.Click("frmMain1", "cmdInput");
    EXPECT_EQ(Log(), "(given up)");
    client.Done();
}

TEST_F(Driven, FileDialogGetsItsPath) {
    auto& client = Started();

    const QString file = QCoreApplication::applicationFilePath();
    client.ExpectFile("Which file?", file);
    client.Click("frmMain1", "cmdFile");
    EXPECT_EQ(Log(), file);
    client.Done();
}

TEST_F(Driven, InputBoxThatIsNotActiveYetIsMadeSoBeforeItsTextIsTyped) {
    auto& client = Started();

    client.ExpectInput("A name behind?", "Smith");
    client.Click("frmMain1", "cmdInputBehind");

    EXPECT_EQ(Log(), "Smith");
    client.Done();
}

TEST_F(Driven, BoxOfAMenuEntryIsAnswered) {
    auto& client = Started();
    client.Expect("A new one.");

    client.Click("frmMain1", "mnuNew");

    EXPECT_EQ(Log(), "new");
}

TEST_F(Driven, BoxBeforeTheFirstFormIsAnswered) {
    DriverClient client({.Program = QStringLiteral(DRIVEN_PROGRAM),
                         .Arguments = {"--ask-first"},
                         .Folder = {},
                         .Environment = {},
                         .Plugins = {}});
    client.Expect("Begin?", "Yes");

    client.Start();

    client.WaitForm("frmMain1");
    client.Done();
    EXPECT_EQ(client.Quit(), ExitCode);
}

TEST_F(Driven, ProgramMayEndAtItsFirstBox) {
    DriverClient client({.Program = QStringLiteral(DRIVEN_PROGRAM),
                         .Arguments = {"--ask-first"},
                         .Folder = {},
                         .Environment = {},
                         .Plugins = {}});
    client.Expect("Begin?", "No");

    client.Start();

    EXPECT_EQ(client.WaitForEnd(), 0);
    EXPECT_EQ(client.Boxes().size(), 1);
}

TEST_F(Driven, UnexpectedBoxBeforeTheFirstFormIsAFailure) {
    DriverClient client({.Program = QStringLiteral(DRIVEN_PROGRAM),
                         .Arguments = {"--ask-first"},
                         .Folder = {},
                         .Environment = {},
                         .Plugins = {}});

    EXPECT_SAYS(FailureOf([&] {
                    client.Start();
                    client.WaitForm("frmMain1");
                }),
                "Begin?");
}

TEST_F(Driven, UnexpectedBoxFailsEveryRequestUntilItsFailureIsRead) {
    auto& client = Started();
    client.Click("frmMain1", "cmdTwoBoxes");

    const std::string said = FailureOf([&] { client.Text("frmMain1", "lblLog"); });
    EXPECT_SAYS(said, "a box that was not expected: MsgBox \"First?\" (Yes, No)");
    EXPECT_SAYS(FailureOf([&] { client.Done(); }), "First?");

    const QStringList failures = client.Failures();
    ASSERT_EQ(failures.size(), 1);
    EXPECT_SAYS(failures[0].toStdString(), "First?");
    // It was not answered, and can be looked at and answered now.
    EXPECT_EQ(client.BoxText("MsgBox"), "First?");
    client.Expect("Second.");
    client.Click("MsgBox", "Yes");
    EXPECT_EQ(Log(), "yes, then told");
    client.Done();
}

TEST_F(Driven, UnexpectedBoxEndsAWait) {
    auto& client = Started();
    client.Click("frmMain1", "cmdBoxSoon");

    EXPECT_SAYS(FailureOf([&] { client.WaitForm("frmNone"); }), "Soon was now.");
}

TEST_F(Driven, OtherTextThanExpectedIsAFailureThatNamesBoth) {
    auto& client = Started();
    client.Expect("Second.", "Ok");

    const std::string said = FailureOf([&] {
        client.Click("frmMain1", "cmdTwoBoxes");
        client.Done();
    });

    EXPECT_SAYS(said, "MsgBox \"First?\"");
    EXPECT_SAYS(said, "expected was MsgBox \"Second.\"");
}

TEST_F(Driven, OtherKindOfBoxThanExpectedIsAFailure) {
    auto& client = Started();
    client.Expect("A name?", "Ok");

    EXPECT_SAYS(FailureOf([&] {
                    client.Click("frmMain1", "cmdInput");
                    client.Done();
                }),
                "another box than expected: InputBox \"A name?\"");
}

TEST_F(Driven, BoxWithoutTheExpectedButtonIsAFailure) {
    auto& client = Started();
    client.Expect("First?", "Ok");

    EXPECT_SAYS(FailureOf([&] {
                    client.Click("frmMain1", "cmdTwoBoxes");
                    client.Done();
                }),
                "the box has no button Ok; it has Yes, No");

    // With the failure read, the box is there to be answered by hand.
    EXPECT_EQ(client.Failures().size(), 1);
    client.Expect("Second.");
    client.Click("MsgBox", "No");
    EXPECT_EQ(Log(), "no, then told");
}

TEST_F(Driven, ExpectedBoxThatNeverComesIsAFailure) {
    auto& client = Started();
    client.Expect("Never.", "Yes");

    EXPECT_EQ(client.Expectations().size(), 1);
    EXPECT_SAYS(FailureOf([&] { client.Done(); }),
                "expected boxes never came: MsgBox \"Never.\" (answer: Yes)");
    EXPECT_SAYS(FailureOf([&] { client.Quit(); }), "never came");
}

TEST_F(Driven, DoneWaitsForABoxThatIsToComeInTime) {
    auto& client = Started();
    client.Expect("Soon was now.");
    client.Click("frmMain1", "cmdBoxSoon");

    client.Done(Milliseconds(20000));

    EXPECT_EQ(client.Boxes().size(), 1);
}

// ---- the end ----

TEST_F(Driven, QuitClosesTheMainFormAndReturnsTheExitCode) {
    auto& client = Started();
    client.Set("frmMain1", "chkAsk", true);
    client.Expect("Leave the program?", "Yes");

    EXPECT_EQ(client.Quit(), ExitCode);
    EXPECT_FALSE(client.IsRunning());
}

TEST_F(Driven, UnexpectedBoxAtTheEndIsAFailure) {
    auto& client = Started();
    client.Set("frmMain1", "chkAsk", true);

    EXPECT_SAYS(FailureOf([&] { client.Quit(); }), "Leave the program?");
}

TEST_F(Driven, ProgramThatEndsInTheMiddleIsAFailureWithItsLastWords) {
    auto& client = Started();

    const std::string said = FailureOf([&] { client.Click("frmMain1", "cmdExit"); });

    EXPECT_SAYS(said, "click frmMain1.cmdExit: the program has gone: it ended with exit code 7");
    EXPECT_SAYS(said, "these are my last words");
}

TEST_F(Driven, ProgramThatCrashesIsAFailure) {
    auto& client = Started();

    EXPECT_SAYS(FailureOf([&] { client.Click("frmMain1", "cmdCrash"); }), "it crashed");
    EXPECT_SAYS(FailureOf([&] { client.WaitForEnd(); }), "it crashed");
}

TEST_F(Driven, ProgramThatIsNotThereIsAFailure) {
    DriverClient client(
        {.Program = "/nowhere/nothing", .Arguments = {}, .Folder = {}, .Environment = {}, .Plugins = {}});

    EXPECT_SAYS(FailureOf([&] { client.Start(); }), "the program does not start");
}

TEST_F(Driven, ProgramThatIsNoWindowProgramIsAFailure) {
    DriverClient client(
        {.Program = "/bin/true", .Arguments = {}, .Folder = {}, .Environment = {}, .Plugins = {}});

    EXPECT_SAYS(FailureOf([&] { client.Start(); }), "the program ended before it could be driven");
}

TEST_F(Driven, NothingIsLeftBehind) {
    QString folder;
    {
        DriverClient client({.Program = QStringLiteral(DRIVEN_PROGRAM),
                             .Arguments = {},
                             .Folder = {},
                             .Environment = {},
                             .Plugins = {}});
        client.Start();
        folder = client.Folder();
        EXPECT_TRUE(QFileInfo::exists(folder));
    }
    EXPECT_FALSE(QFileInfo::exists(folder));
}

// ---- the line ----

TEST_F(Driven, UnknownRequestAndMissingArgumentsAreRefused) {
    auto& client = Started();

    EXPECT_SAYS(FailureOf([&] { client.Request("dance"); }), "there is no request \"dance\"");
    EXPECT_SAYS(FailureOf([&] { client.Request("click"); }), "lacks the text \"form\"");
    EXPECT_SAYS(FailureOf([&] {
                    client.Request("waitForm", {{"form", "frmMain1"}, {"timeout", -1}});
                }),
                "\"timeout\" must be a whole number");
    EXPECT_SAYS(FailureOf([&] { client.Request("expect", {{"text", "x"}}); }), "needs an \"answer\"");
}

TEST_F(Driven, ProgramThatTheDrivenOneStartsIsNotDriven) {
    auto& client = Started();

    client.Click("frmMain1", "cmdEnvironment");

    EXPECT_EQ(Log(), "nothing");
}

TEST_F(Driven, SecondClientIsTurnedAway) {
    auto& client = Started();
    QLocalSocket second;
    QEventLoop loop;
    QObject::connect(&second, &QLocalSocket::disconnected, &loop, &QEventLoop::quit);
    QTimer::singleShot(20000, &loop, [&loop] { loop.exit(1); });

    second.connectToServer(client.Folder() + "/s");

    EXPECT_EQ(loop.exec(), 0);
    client.Click("frmMain1", "cmdImport");
    EXPECT_EQ(Log(), "imported");
}

} // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}

#include "core/Messages.h"
#include "core/SafeFile.h"
#include "core/forms/frmEventLog.h"
#include "core/forms/frmMessage.h"
#include "core/forms/frmProgress.h"
#include "forms/FormTest.h"
#include "forms/TopicList.h"
#include "platform/QtOperator.h"
#include "tools/forms/frmAbout.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>

namespace {

class SharedScreens : public FormTest {
protected:
    /// Does something once a modal window stands.
    static void WhenShown(const QString& window, const std::function<void(QWidget&)>& deed) {
        auto* timer = new QTimer(qApp);
        QObject::connect(timer, &QTimer::timeout, [timer, window, deed] {
            for (QWidget* widget : QApplication::topLevelWidgets()) {
                if (widget->objectName() != window || !widget->isVisible()) continue;
                timer->deleteLater();
                deed(*widget);
                return;
            }
        });
        timer->start(1);
    }

    /// Handles events until the condition holds.
    static void SettleUntil(const std::function<bool()>& condition) {
        WaitInLoop([&] { return !condition(); });
    }

    static void Press(QWidget& window, const char* button) {
        auto* found = window.findChild<QAbstractButton*>(QString::fromLatin1(button));
        ASSERT_NE(found, nullptr) << button;
        found->click();
    }

    static void PressKey(QWidget& window, Qt::Key key) {
        QWidget* target = window.focusWidget() ? window.focusWidget() : &window;
        QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(target, &down);
    }

    QtOperator screen_;
};

// ---- frmMessage ----

TEST_F(SharedScreens, YesLeavesTheAnswerTrueAndNoLeavesItFalse) {
    for (const bool yes : {true, false}) {
        WhenShown(QStringLiteral("frmMessage"),
                  [&](QWidget& window) { Press(window, yes ? "cmdYes" : "cmdNo"); });

        EXPECT_EQ(screen_.Ask({msg::ResetQuestion, msg::Yes, msg::No, {}}), yes);
        EXPECT_EQ(Global.MessageAnswer, yes);
        EXPECT_EQ(Global.Events.Entry(0), yes ? "frmMessage:cmdYes_Click" : "frmMessage:cmdNo_Click");
    }
}

TEST_F(SharedScreens, TheNoButtonOfANoticeWithOkYieldsTrue) {
    for (const char* caption : {"Ok", "Gut"}) { // a translation changes what stands there and not what it is
        Global.Replacements[msg::Ok.Number] = {caption, 0};
        WhenShown(QStringLiteral("frmMessage"), [&](QWidget& window) {
            EXPECT_FALSE(window.findChild<QAbstractButton*>(QStringLiteral("cmdYes"))->isVisible());
            EXPECT_EQ(window.findChild<QAbstractButton*>(QStringLiteral("cmdNo"))->text(),
                      QLatin1String(caption));
            Press(window, "cmdNo");
        });

        EXPECT_TRUE(screen_.Ask({msg::TablesMissing, std::nullopt, msg::Ok, {}}));
        EXPECT_TRUE(Global.MessageAnswer);
        EXPECT_EQ(Global.Events.Entry(0), "frmMessage:cmdNo_Click");
    }
}

TEST_F(SharedScreens, TheNoButtonOfAQuestionWithAnotherCaptionYieldsFalse) {
    Global.MessageAnswer = true; // of the question before
    WhenShown(QStringLiteral("frmMessage"), [](QWidget& window) { Press(window, "cmdNo"); });

    EXPECT_FALSE(screen_.Ask({msg::UpdateUsersWhy, msg::Ok, msg::Cancel, {}}));
    EXPECT_FALSE(Global.MessageAnswer);
}

TEST_F(SharedScreens, EscapeIsNoAndEnterPressesTheDefaultButton) {
    for (const auto key : {Qt::Key_Escape, Qt::Key_Return}) {
        WhenShown(QStringLiteral("frmMessage"), [&](QWidget& window) { PressKey(window, key); });

        EXPECT_EQ(screen_.Ask({msg::ResetQuestion, msg::Yes, msg::No, {}}), key == Qt::Key_Return);
    }
}

TEST_F(SharedScreens, TheHelpButtonShowsOnlyWithATopic) {
    auto& form = The<frmMessage>();
    form.Fill({msg::ResetQuestion, msg::Yes, msg::No, {}});
    EXPECT_FALSE(Visible(form, "cmdHelp"));

    TopicList help;
    form.Fill({msg::ResetQuestion, msg::Yes, msg::No, "QuickButtons.htm"});
    EXPECT_TRUE(Visible(form, "cmdHelp"));
    Click(form, "cmdHelp");
    EXPECT_EQ(help.Opened(), std::vector<std::string>{"QuickButtons.htm"});
}

// ---- boxes ----

TEST_F(SharedScreens, ABoxBearsTheTitleAndNamesItsButtons) {
    WhenShown(QStringLiteral("MsgBox"), [](QWidget& window) {
        EXPECT_EQ(window.windowTitle(), QStringLiteral("ZUK Tramble PC"));
        EXPECT_EQ(dynamic_cast<QMessageBox&>(window).text(), QStringLiteral("File Error!"));
        Press(window, "No");
    });

    EXPECT_EQ(screen_.MsgBox(msg::FileError, Icon::Warning, Buttons::YesNo), Answer::No);
}

TEST_F(SharedScreens, EscapeAtAQuestionIsNo) {
    WhenShown(QStringLiteral("MsgBox"), [](QWidget& window) { PressKey(window, Qt::Key_Escape); });

    EXPECT_EQ(screen_.MsgBox(msg::FileError, Icon::Question, Buttons::YesNo), Answer::No);
}

// ---- frmProgress ----

class ProgressForm : public SharedScreens,
                     public ::testing::WithParamInterface<std::pair<ProgressFlag, const char*>> {};

TEST_P(ProgressForm, RecordsTheEventOfItsFlagAndClearsTheFlag) {
    GivenOffice();
    GivenRows("ZUKTOTALPC", {"TP_EVENT", "OLDER"});

    RecordTotals(GetParam().first);

    EXPECT_EQ(Cell("ZUKTOTALPC", 1, "TP_EVENT"), GetParam().second);
    EXPECT_EQ(IfLoaded<frmProgress>(), nullptr);
    for (const bool flag : Global.Progress) EXPECT_FALSE(flag);
}

INSTANTIATE_TEST_SUITE_P(Flags, ProgressForm,
                         ::testing::Values(std::pair{ProgressFlag::Export, "EXPORT"},
                                           std::pair{ProgressFlag::QualCheck, "QUALCHECK"},
                                           std::pair{ProgressFlag::UploadAdd, "UPLOAD-ADD"},
                                           std::pair{ProgressFlag::UploadReplace, "UPLOAD-REPLACE"},
                                           std::pair{ProgressFlag::Clear, "CLEAR"},
                                           std::pair{ProgressFlag::Clear2, "CLEAR"},
                                           std::pair{ProgressFlag::ImportReplace, "IMPORT-REPLACE"},
                                           std::pair{ProgressFlag::ImportAdd, "IMPORT-ADD"},
                                           std::pair{ProgressFlag::Import2Replace, "IMPORT-REPLACE"},
                                           std::pair{ProgressFlag::Import2Add, "IMPORT-ADD"},
                                           std::pair{ProgressFlag::Restore, "RESTORE"}),
                         [](const auto& each) {
                             return "Flag" + std::to_string(static_cast<int>(each.param.first));
                         });

TEST_F(SharedScreens, OfTwoFlagsTheFirstInOrderIsDoneAndTheOtherStays) {
    GivenOffice();
    Global.Progress[static_cast<std::size_t>(ProgressFlag::Restore)] = true;

    RecordTotals(ProgressFlag::Clear);

    EXPECT_EQ(Cell("ZUKTOTALPC", 1, "TP_EVENT"), "CLEAR");
    EXPECT_TRUE(Global.Progress[static_cast<std::size_t>(ProgressFlag::Restore)]);
}

TEST_F(SharedScreens, AMissingTotalsTableIsTheCallersFailure) {
    GivenOffice();
    Global.TheDisk->Remove(Global.DBFPath + "ZUKTOTALPC.dbf");

    EXPECT_THROW(RecordTotals(ProgressFlag::Clear), std::exception);

    EXPECT_EQ(IfLoaded<frmProgress>(), nullptr);
}

// ---- frmEventLog, frmAbout ----

TEST_F(SharedScreens, TheLogShowsTheTraceNewestFirst) {
    GivenAppDirectory();
    TraceEvent("first");
    TraceEvent("second");

    auto& form = Open<frmEventLog>();

    const QStringList lines =
        dynamic_cast<QPlainTextEdit&>(Control(form, "rtbEvents")).toPlainText().split(QLatin1Char('\n'));
    EXPECT_EQ(lines.mid(0, 3), (QStringList{QStringLiteral("frmEventLog:Form_Load"), QStringLiteral("second"),
                                            QStringLiteral("first")}));
    EXPECT_EQ(form.windowTitle(), QStringLiteral("View Log"));
    Click(form, "cmdOK");
    EXPECT_EQ(IfLoaded<frmEventLog>(), nullptr);
}

TEST_F(SharedScreens, AboutShowsTheVersionAndThePaths) {
    GivenAppDirectory();
    QApplication::setApplicationVersion(QStringLiteral("1.2.3"));

    auto& form = Open<frmAbout>();

    EXPECT_EQ(TextOf(form, "lblZUKVer1"), QStringLiteral("1.2.3"));
    EXPECT_EQ(TextOf(form, "lblDataInPath1").toStdString(), Global.DataInPath);
    EXPECT_EQ(TextOf(form, "lblPalmDTVer1"), QString());
    EXPECT_FALSE(TextOf(form, "lblOSName1").isEmpty());
    static const QRegularExpression version(QStringLiteral("^Version \\d+\\.\\d+, Build ."));
    EXPECT_TRUE(TextOf(form, "lblOSVer1").contains(version)) << TextOf(form, "lblOSVer1").toStdString();
    PressKey(form, Qt::Key_Escape);
    EXPECT_EQ(IfLoaded<frmAbout>(), nullptr);
}

// ---- the life of a form ----

class Sleeper final : public Form {
public:
    explicit Sleeper(std::vector<std::string>& told) : told_(told) {}
    ~Sleeper() override { told_.emplace_back("destroyed"); }

    bool WaitsForEver = false;
    bool LeavesAtOnce = false;
    std::string FailsIn;

protected:
    void Form_Load() override {
        Tell("load");
        if (LeavesAtOnce) Unload();
    }
    void Form_GotFocus() override {
        Tell("focus");
        if (!WaitsForEver) return;
        QTimer::singleShot(1, this, [this] { Unload(); });
        WaitWhile([] { return true; });
        told_.emplace_back(IsGone() ? "gone" : "there");
    }
    void Form_Unload() override { Tell("unload"); }

private:
    void Tell(const char* handler) {
        told_.emplace_back(handler);
        if (FailsIn == handler) throw std::runtime_error(handler);
    }

    std::vector<std::string>& told_;
};

TEST_F(SharedScreens, AFormIsLoadedShownFocusedAndUnloadedInThatOrder) {
    std::vector<std::string> told;
    FormBehaviour& form = FormRegistry::Instance().Adopt(std::make_unique<Sleeper>(told));
    QTimer::singleShot(400, &form.Window(), [&form] { form.Unload(); });

    form.Show(ShowMode::Modal);
    Settle();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    EXPECT_EQ(told, (std::vector<std::string>{"load", "focus", "unload", "destroyed"}));
}

TEST_F(SharedScreens, AHandlerThatWaitsCanLoseItsFormAndItsWaitEnds) {
    std::vector<std::string> told;
    auto& form = dynamic_cast<Sleeper&>(FormRegistry::Instance().Adopt(std::make_unique<Sleeper>(told)));
    form.WaitsForEver = true;

    form.Show(ShowMode::Modal);
    Settle();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    EXPECT_EQ(told, (std::vector<std::string>{"load", "focus", "unload", "gone", "destroyed"}));
}

TEST_F(SharedScreens, AFormThatUnloadsItselfWhileItLoadsIsNeverShown) {
    std::vector<std::string> told;
    auto form = std::make_unique<Sleeper>(told);
    form->LeavesAtOnce = true;

    FormRegistry::Instance().Adopt(std::move(form)).Show(ShowMode::Modal);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    EXPECT_EQ(told, (std::vector<std::string>{"load", "unload", "destroyed"}));
}

TEST_F(SharedScreens, TheFormBelowGetsTheFocusWhenTheOneAboveHasGoneAndNotBefore) {
    std::vector<std::string> below;
    std::vector<std::string> above;
    FormBehaviour& lower = FormRegistry::Instance().Adopt(std::make_unique<Sleeper>(below));
    lower.Show();
    SettleUntil([&] { return below.size() == 2; });
    auto& first = FormRegistry::Instance().Adopt(std::make_unique<Sleeper>(above));
    first.Show();
    auto& second = FormRegistry::Instance().Adopt(std::make_unique<Sleeper>(above));

    first.Unload();
    second.Show();
    Settle();
    EXPECT_EQ(below, (std::vector<std::string>{"load", "focus"}));
    second.Unload();
    Settle();

    EXPECT_EQ(below, (std::vector<std::string>{"load", "focus", "focus"}));
    FormRegistry::Instance().Clear();
}

TEST_F(SharedScreens, AModalFormThatAnotherUnloadsEndsItsWaitWhenTheOneAboveHasGone) {
    std::vector<std::string> told;
    FormBehaviour& lower = FormRegistry::Instance().Adopt(std::make_unique<Sleeper>(told));
    FormBehaviour& upper = FormRegistry::Instance().Adopt(std::make_unique<Sleeper>(told));
    QTimer::singleShot(1, &lower.Window(), [&] {
        QTimer::singleShot(1, qApp, [&] { lower.Unload(); });
        QTimer::singleShot(5, &upper.Window(), [&] { upper.Unload(); });
        upper.Show(ShowMode::Modal);
    });

    lower.Show(ShowMode::Modal);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    EXPECT_EQ(std::count(told.begin(), told.end(), "destroyed"), 2);
}

/// Whether the operator reaches a form: a window that a modal one blocks gets no click.
bool CanBeClicked(FormBehaviour& form) {
    bool clicked = false;
    QPushButton button(&form.Window());
    button.resize(form.Window().size());
    button.show();
    QObject::connect(&button, &QPushButton::clicked, [&] { clicked = true; });
    QTest::mouseClick(form.Window().windowHandle(), Qt::LeftButton, {}, {5, 5});
    return clicked;
}

TEST_F(SharedScreens, AFormShownWhileAModalOneStandsCanBeUsedAndOutlivesIt) {
    std::vector<std::string> told;
    FormBehaviour& modal = FormRegistry::Instance().Adopt(std::make_unique<Sleeper>(told));
    FormBehaviour& report = FormRegistry::Instance().Adopt(std::make_unique<Sleeper>(told));
    QTimer::singleShot(1, &modal.Window(), [&] {
        report.Show();
        EXPECT_TRUE(CanBeClicked(report));
        EXPECT_TRUE(CanBeClicked(modal));
        modal.Unload();
    });

    modal.Show(ShowMode::Modal);

    EXPECT_TRUE(report.Window().isVisible());
    EXPECT_TRUE(CanBeClicked(report));
    FormRegistry::Instance().Clear();
}

TEST_F(SharedScreens, AFormThatAModalOneCoversCanBeUsedOnceItIsShownAgain) {
    std::vector<std::string> told;
    FormBehaviour& modal = FormRegistry::Instance().Adopt(std::make_unique<Sleeper>(told));
    FormBehaviour& report = FormRegistry::Instance().Adopt(std::make_unique<Sleeper>(told));
    report.Show();
    QTimer::singleShot(1, &modal.Window(), [&] {
        EXPECT_FALSE(CanBeClicked(report));
        report.Show();
        EXPECT_TRUE(CanBeClicked(report));
        modal.Unload();
    });

    modal.Show(ShowMode::Modal);

    FormRegistry::Instance().Clear();
}

TEST_F(SharedScreens, AFormOfAModalOneThatHasGoneBelongsToTheModalOneBelow) {
    std::vector<std::string> told;
    FormBehaviour& lower = FormRegistry::Instance().Adopt(std::make_unique<Sleeper>(told));
    FormBehaviour& upper = FormRegistry::Instance().Adopt(std::make_unique<Sleeper>(told));
    FormBehaviour& report = FormRegistry::Instance().Adopt(std::make_unique<Sleeper>(told));
    QTimer::singleShot(1, &lower.Window(), [&] {
        QTimer::singleShot(1, &upper.Window(), [&] {
            report.Show();
            upper.Unload();
        });
        upper.Show(ShowMode::Modal);
        EXPECT_TRUE(CanBeClicked(report));
        lower.Unload();
    });

    lower.Show(ShowMode::Modal);

    FormRegistry::Instance().Clear();
}

TEST_F(SharedScreens, APauseEndsWithItsFormAndLeavesNothingBehind) {
    Global.InstantPauses = false;
    std::vector<std::string> told;
    FormBehaviour& form = FormRegistry::Instance().Adopt(std::make_unique<Sleeper>(told));
    QTimer::singleShot(1, qApp, [&] { form.Unload(); });

    // Longer than any test may take.
    form.PauseFor(3600);

    EXPECT_NE(std::find(told.begin(), told.end(), "unload"), told.end());
    FormRegistry::Instance().Clear();
}

TEST_F(SharedScreens, ABoxGoesWithTheFormThatItStandsAbove) {
    std::vector<std::string> told;
    FormBehaviour& form = FormRegistry::Instance().Adopt(std::make_unique<Sleeper>(told));
    form.Show();
    SettleUntil([&] { return QApplication::activeWindow() == &form.Window(); });
    WhenShown(QStringLiteral("MsgBox"), [&](QWidget&) {
        form.Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    });

    EXPECT_EQ(QtOperator().MsgBox(msg::ResetQuestion, Icon::Question, Buttons::YesNo), Answer::No);
}

TEST_F(SharedScreens, AFailureInEveryKindOfHandlerIsToldOnceAndEndsTheProgram) {
    for (const char* handler : {"focus", "unload"}) {
        Global.Ending = false;
        std::vector<std::string> told;
        auto form = std::make_unique<Sleeper>(told);
        form->FailsIn = handler;
        Operator_.ExpectBeginning(Text::Path(std::string(handler)));

        FormBehaviour& shown = FormRegistry::Instance().Adopt(std::move(form));
        shown.Show();
        while (!Global.Ending) {
            Settle();
            if (std::string(handler) == "unload") shown.Unload();
        }
        EXPECT_EQ(Global.ExitCode, 1);
        FormRegistry::Instance().Clear();
    }
}

TEST_F(SharedScreens, AFailureInALoadIsTheCallersAndLeavesNoForm) {
    std::vector<std::string> told;
    auto form = std::make_unique<Sleeper>(told);
    form->FailsIn = "load";

    EXPECT_THROW(FormRegistry::Instance().Adopt(std::move(form)), std::runtime_error);

    EXPECT_TRUE(FormRegistry::Instance().Names().empty());
    EXPECT_FALSE(Global.Ending);
    FormRegistry::Instance().Clear();
}

TEST_F(SharedScreens, AFailureThatNothingCatchesIsToldWithTheLastTraceLineAndEndsTheProgram) {
    TraceEvent("frmMain1:Nowhere");
    Operator_
        .Expect(::Lines(Text::Path(std::string_view("File not found: ZUKCUST.DBF")),
                        Text::Value(std::string_view("frmMain1:Nowhere"))))
        .With(Icon::Stop);

    FailUnexpectedly(std::runtime_error("File not found: ZUKCUST.DBF"));

    EXPECT_TRUE(Global.Ending);
    EXPECT_EQ(Global.ExitCode, 1);
}

} // namespace

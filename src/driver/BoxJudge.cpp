#include "driver/BoxJudge.h"

#include "driver/Desk.h"
#include "driver/Hands.h"
#include "driver/Reading.h"
#include "driver/Refused.h"
#include "driver/Request.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QCompleter>
#include <QLineEdit>
#include <QTimer>

#include <utility>

namespace {

/// A box that was answered and is still there after this long is stuck.
constexpr int AnswerMilliseconds = 5000;

/// A line is typed into a box as soon as the box is active, and after this long in any case.
constexpr int ActivationMilliseconds = 1000;

/// A box that its program keeps, hidden, counts as gone after this long; any other is destroyed.
constexpr int KeptBoxMilliseconds = 100;

const QStringList BoxNames = {QStringLiteral("MsgBox"), QStringLiteral("InputBox"),
                              QStringLiteral("FileDialog")};

QString ButtonNames(const QWidget& box) {
    QStringList names;
    for (const QAbstractButton* button : box.findChildren<QAbstractButton*>()) {
        if (!button->isHidden() && !button->objectName().isEmpty()) names << button->objectName();
    }
    return names.join(QLatin1String(", "));
}

} // namespace

bool IsBox(const QWidget& window) {
    return BoxNames.contains(window.objectName());
}

void BoxJudge::Expect(const Request& request) {
    const Wanted wanted = request.TextWanted();
    Expectation expected;
    expected.Text = wanted.Text;
    expected.Contains = wanted.Contains;
    if (request.Has("input")) expected.Input = request.Text("input");
    expected.Box = request.Has("box") ? request.Text("box")
                   : expected.Input   ? QStringLiteral("InputBox")
                                      : QStringLiteral("MsgBox");
    expected.Button = request.Has("answer") ? request.Text("answer")
                      : expected.Input      ? QStringLiteral("Ok")
                                            : QString();
    if (expected.Button.isEmpty()) throw Refused(QStringLiteral("an expected box needs an \"answer\""));
    if (!BoxNames.contains(expected.Box))
        throw Refused(QStringLiteral("\"box\" is %1").arg(BoxNames.join(QLatin1String(" or "))));
    expected_.push_back(expected);
}

QStringList BoxJudge::Expected() const {
    QStringList left;
    for (const Expectation& expected : expected_) left << Describe(expected);
    return left;
}

bool BoxJudge::Begin() {
    if (std::exchange(judging_, true) || unjudged_.isEmpty()) return false;
    Judge();
    return true;
}

void BoxJudge::BoxShown(QWidget& box) {
    // A box that its program keeps and shows again.
    answered_.removeIf([&](const AnsweredBox& answered) { return answered.Box == &box; });
    unjudged_.push_back(&box);
    // Behind the show: the box runs its loop by then and can be answered.
    QTimer::singleShot(1, this, [this] { Judge(); });
}

void BoxJudge::Judge() {
    if (!judging_ || unjudged_.isEmpty()) return;
    const QPointer<QWidget> box = unjudged_.takeFirst();
    if (!unjudged_.isEmpty()) QTimer::singleShot(1, this, [this] { Judge(); });
    if (!box || !box->isVisible()) return hearers_.Changed();
    const QString name = box->objectName();
    const QString text = BoxText(*box);
    const QString came = QStringLiteral("%1 \"%2\" (%3)").arg(name, text, ButtonNames(*box));
    if (expected_.isEmpty())
        return hearers_.Failed(QStringLiteral("a box that was not expected: %1").arg(came));
    const Expectation expected = expected_.front();
    if (expected.Box != name || !Wanted{expected.Text, expected.Contains}.Matches(text)) {
        return hearers_.Failed(
            QStringLiteral("another box than expected: %1; expected was %2").arg(came, Describe(expected)));
    }
    expected_.pop_front();
    Answer(*box, expected);
}

void BoxJudge::Answer(QWidget& box, const Expectation& expected) {
    hearers_.Answered({{QStringLiteral("event"), QStringLiteral("answered")},
                       {QStringLiteral("box"), box.objectName()},
                       {QStringLiteral("text"), BoxText(box)},
                       {QStringLiteral("answer"), expected.Input ? *expected.Input : expected.Button}});
    answered_.push_back({&box, QDeadlineTimer(AnswerMilliseconds), std::nullopt});
    // Behind the answered handler's own return, which follows the box's end without a turn of the loop.
    connect(&box, &QObject::destroyed, this,
            [this] { QTimer::singleShot(1, this, [this] { hearers_.Changed(); }); });
    Fill(&box, expected, QDeadlineTimer(ActivationMilliseconds));
}

void BoxJudge::Fill(const QPointer<QWidget>& guard, const Expectation& expected, QDeadlineTimer until) {
    if (!guard) return;
    QWidget& box = *guard;
    // The window system tells of the active window a while behind its show, and keys go by what it told.
    if (expected.Input && !box.isActiveWindow() && !until.hasExpired()) {
        box.activateWindow();
        QTimer::singleShot(1, this, [this, guard, expected, until] { Fill(guard, expected, until); });
        return;
    }
    try {
        if (expected.Input) {
            auto* edit = box.findChild<QLineEdit*>(QStringLiteral("txtAnswer"));
            if (!edit) edit = box.findChild<QLineEdit*>();
            if (!edit) throw Refused(QStringLiteral("the box has no line to type into"));
            SetControl(*edit, *expected.Input);
            // The list of names that match would take the click on the button.
            if (guard && edit->completer()) edit->completer()->popup()->hide();
        }
        if (!guard) return;
        QWidget* button = FindControl(box, expected.Button);
        if (!button) {
            throw Refused(
                QStringLiteral("the box has no button %1; it has %2").arg(expected.Button, ButtonNames(box)));
        }
        ClickControl(*button);
    } catch (const Refused& refused) {
        // It stands there like one that was not expected, for the client to see and to answer.
        answered_.removeIf([&](const AnsweredBox& answered) { return answered.Box == guard; });
        hearers_.Failed(QStringLiteral("%1 cannot be answered: %2").arg(Describe(expected), refused.Words()));
    }
}

void BoxJudge::CheckAnswered() {
    for (qsizetype i = 0; i < answered_.size();) {
        AnsweredBox& box = answered_[i];
        bool isOver = !box.Box;
        if (!isOver && !box.Box->isVisible()) {
            if (!box.HiddenUntil) box.HiddenUntil = QDeadlineTimer(KeptBoxMilliseconds);
            isOver = box.HiddenUntil->hasExpired();
        } else if (!isOver && box.Until.hasExpired() && !Desk::BlockedBy(*box.Box)) {
            const QString words = QStringLiteral("%1 \"%2\" was answered and is still there")
                                      .arg(box.Box->objectName(), BoxText(*box.Box));
            answered_.removeAt(i);
            return hearers_.Failed(words);
        }
        if (isOver)
            answered_.removeAt(i);
        else
            ++i;
    }
}

QString BoxJudge::Describe(const Expectation& expected) {
    return QStringLiteral("%1 %2\"%3\" (answer: %4)")
        .arg(expected.Box, expected.Contains ? QStringLiteral("with ") : QString(), expected.Text,
             expected.Input ? *expected.Input : expected.Button);
}

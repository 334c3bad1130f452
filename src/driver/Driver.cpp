#include "driver/Driver.h"

#include "driver/Hands.h"
#include "driver/Reading.h"
#include "driver/Refused.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCompleter>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLineEdit>
#include <QPixmap>
#include <QWindow>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace {

constexpr int PollMilliseconds = 20;
constexpr int MaximumWaitMilliseconds = 3600 * 1000;
constexpr qsizetype MaximumLine = 1 << 20;

/// A box that was answered and is still there after this long is stuck.
constexpr int AnswerMilliseconds = 5000;

/// A line is typed into a box as soon as the box is active, and after this long in any case.
constexpr int ActivationMilliseconds = 1000;

/// A box that its program keeps, hidden, counts as gone after this long; any other is destroyed.
constexpr int KeptBoxMilliseconds = 100;

/// A button that a mnemonic presses is shown down for a tenth of a second, and clicks then.
constexpr int PressedMilliseconds = 1000;

const QStringList BoxNames = {QStringLiteral("MsgBox"), QStringLiteral("InputBox"),
                              QStringLiteral("FileDialog")};

bool IsBox(const QWidget& window) {
    return BoxNames.contains(window.objectName());
}

bool Has(const QJsonObject& request, const char* key) {
    return request.contains(QLatin1String(key));
}

QString TextArgument(const QJsonObject& request, const char* key) {
    const QJsonValue value = request.value(QLatin1String(key));
    if (!value.isString())
        throw Refused(QStringLiteral("the request lacks the text \"%1\"").arg(QLatin1String(key)));
    return value.toString();
}

int NumberArgument(const QJsonObject& request, const char* key, int otherwise, int maximum) {
    if (!Has(request, key)) return otherwise;
    const QJsonValue value = request.value(QLatin1String(key));
    const double number = value.toDouble(-1);
    if (!value.isDouble() || number < 0 || number > maximum || std::floor(number) != number) {
        throw Refused(QStringLiteral("\"%1\" must be a whole number from 0 to %2")
                          .arg(QLatin1String(key))
                          .arg(maximum));
    }
    return static_cast<int>(number);
}

bool FlagArgument(const QJsonObject& request, const char* key, bool otherwise = false) {
    if (!Has(request, key)) return otherwise;
    const QJsonValue value = request.value(QLatin1String(key));
    if (!value.isBool())
        throw Refused(QStringLiteral("\"%1\" must be true or false").arg(QLatin1String(key)));
    return value.toBool();
}

/// The text that is looked for: the whole one under "text", a piece under "contains".
struct Wanted {
    QString Text;
    bool Contains = false;

    bool Matches(const QString& found) const { return Contains ? found.contains(Text) : found == Text; }
};

Wanted WantedArgument(const QJsonObject& request) {
    if (Has(request, "contains")) return {TextArgument(request, "contains"), true};
    return {TextArgument(request, "text"), false};
}

Choice ChoiceArgument(const QJsonObject& request) {
    constexpr int most = 1 << 30;
    Choice choice;
    if (Has(request, "text"))
        choice.Text = TextArgument(request, "text");
    else if (!Has(request, "row"))
        throw Refused(QStringLiteral("the request lacks \"text\" or \"row\""));
    choice.Row = NumberArgument(request, "row", -1, most);
    choice.Column = NumberArgument(request, "column", 0, most);
    choice.Twice = FlagArgument(request, "twice");
    choice.Add = FlagArgument(request, "add");
    return choice;
}

QString ButtonNames(const QWidget& box) {
    QStringList names;
    for (const QAbstractButton* button : box.findChildren<QAbstractButton*>()) {
        if (!button->isHidden() && !button->objectName().isEmpty()) names << button->objectName();
    }
    return names.join(QLatin1String(", "));
}

QString SetArgument(const QJsonObject& request) {
    const QJsonValue value = request.value(QLatin1String("value"));
    if (value.isString()) return value.toString();
    if (value.isBool()) return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    if (value.isDouble()) return QString::number(value.toDouble(), 'g', 15);
    throw Refused(QStringLiteral("the request lacks \"value\": a text, a number, true or false"));
}

} // namespace

Driver::Driver(QString socketPath) : path_(std::move(socketPath)) {
    poll_.setInterval(PollMilliseconds);
    connect(&poll_, &QTimer::timeout, this, [this] { CheckWaits(); });
    QMetaObject::invokeMethod(
        this, [this] { Start(); }, Qt::QueuedConnection);
}

Driver::~Driver() {
    // The socket reports its own end while the members it would touch are going.
    if (client_) client_->disconnect(this);
    server_.close();
}

// ---- the line ----

void Driver::Start() {
    if (!qobject_cast<QApplication*>(QCoreApplication::instance())) {
        qWarning("trambledriver: the program shows no windows");
        return;
    }
    desk_.WindowShown = [this](QWidget& window) {
        if (IsBox(window)) BoxShown(window);
    };
    desk_.Changed = [this] {
        if (waits_.isEmpty() || checkScheduled_) return;
        checkScheduled_ = true;
        QTimer::singleShot(1, this, [this] {
            checkScheduled_ = false;
            CheckWaits();
        });
    };
    desk_.Watch();
    server_.setMaxPendingConnections(1);
    connect(&server_, &QLocalServer::newConnection, this, [this] { Connected(); });
    if (!server_.listen(path_)) {
        qWarning("trambledriver: cannot listen at %s: %s", qPrintable(path_),
                 qPrintable(server_.errorString()));
    }
}

void Driver::Connected() {
    while (QLocalSocket* socket = server_.nextPendingConnection()) {
        if (client_) {
            socket->abort();
            socket->deleteLater();
            continue;
        }
        client_ = socket;
        unread_.clear();
        connect(socket, &QLocalSocket::readyRead, this, [this] { Read(); });
        connect(socket, &QLocalSocket::disconnected, this, [this, socket] {
            socket->deleteLater();
            if (client_ != socket) return;
            client_ = nullptr;
            requests_.clear();
            waits_.clear();
        });
        Read();
    }
}

void Driver::Read() {
    if (!client_) return;
    unread_ += client_->readAll();
    for (qsizetype end = unread_.indexOf('\n'); end >= 0; end = unread_.indexOf('\n')) {
        requests_.enqueue(unread_.left(end));
        unread_.remove(0, end + 1);
    }
    if (unread_.size() > MaximumLine) {
        client_->abort();
        return;
    }
    // Never from here: while this slot runs a socket reports nothing more, and a deed may stay in a
    // modal loop for long.
    if (!requests_.isEmpty()) ScheduleNext();
}

void Driver::Send(const QJsonObject& line) {
    if (!client_) return;
    client_->write(QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n');
    client_->flush();
}

void Driver::Answer(const QJsonValue& id, QJsonObject results) {
    results.insert(QStringLiteral("id"), id);
    results.insert(QStringLiteral("ok"), true);
    Send(results);
}

void Driver::Refuse(const QJsonValue& id, const QString& error) {
    Send({{QStringLiteral("id"), id}, {QStringLiteral("ok"), false}, {QStringLiteral("error"), error}});
}

// ---- requests ----

void Driver::ScheduleNext() {
    if (nextScheduled_ || requests_.isEmpty()) return;
    nextScheduled_ = true;
    // A timer and no posted event, so that a loop that was told to end ends first.
    QTimer::singleShot(1, this, [this] {
        nextScheduled_ = false;
        HandleNext();
    });
}

void Driver::HandleNext() {
    if (requests_.isEmpty() || IsUnderWay()) return;
    const QJsonDocument line = QJsonDocument::fromJson(requests_.head());
    const QJsonObject request = line.object();
    const QJsonValue id = request.value(QLatin1String("id"));
    const QString deed = request.value(QLatin1String("do")).toString();
    if (!judging_ && deed != QLatin1String("expect")) {
        judging_ = true;
        if (!unjudged_.isEmpty()) {
            Judge();
            return ScheduleNext();
        }
    }
    requests_.dequeue();
    ScheduleNext();
    if (!line.isObject() || deed.isEmpty()) {
        return Refuse(id, QStringLiteral("a request is a JSON object with \"id\" and \"do\""));
    }
    if (!failures_.isEmpty() && deed != QLatin1String("failures")) return Refuse(id, Failures());
    try {
        Dispatch(id, deed, request);
    } catch (const Refused& refused) {
        Refuse(id, refused.Words());
    }
}

void Driver::Dispatch(const QJsonValue& id, const QString& deed, const QJsonObject& request) {
    if (deed == QLatin1String("expect")) {
        Expect(request);
        return Answer(id);
    }
    if (deed == QLatin1String("expectations")) {
        QJsonArray left;
        for (const Expectation& expected : expected_) left << Describe(expected);
        return Answer(id, {{QStringLiteral("expectations"), left}});
    }
    if (deed == QLatin1String("failures")) {
        const QStringList failures = std::exchange(failures_, {});
        return Answer(id, {{QStringLiteral("failures"), QJsonArray::fromStringList(failures)}});
    }
    if (DispatchWait(id, deed, request) || DispatchDeed(id, deed, request)) return;
    Answer(id, Look(deed, request));
}

bool Driver::DispatchWait(const QJsonValue& id, const QString& deed, const QJsonObject& request) {
    const auto isDeed = [&](const char* name) { return deed == QLatin1String(name); };
    Wait wait;
    wait.Id = id;
    if (isDeed("done")) {
        wait.Holds = [this] { return expected_.isEmpty(); };
        wait.Lack = [this] { return QStringLiteral("expected boxes never came: ") + Expectations(); };
    } else if (isDeed("waitForm") || isDeed("waitGone")) {
        const QString name = TextArgument(request, "form");
        const bool gone = isDeed("waitGone");
        wait.Holds = [this, name, gone] {
            const QWidget* form = desk_.Find(name);
            return gone ? !form : form && desk_.IsSettled(*form);
        };
        wait.Lack = [this, name, gone] {
            return (gone ? QStringLiteral("form %1 is still on the screen; there is %2")
                         : QStringLiteral("form %1 did not come; there is %2"))
                .arg(name, desk_.Names().join(QLatin1String(", ")));
        };
    } else if (isDeed("waitEnabled")) {
        const bool enabled = FlagArgument(request, "enabled", true);
        TextArgument(request, "form");
        TextArgument(request, "control");
        const auto is = [this, request](const char* property) {
            return PropertyOf(Control(request, false), QLatin1String(property)).toBool();
        };
        wait.Holds = [enabled, is] { return is("visible") && is("enabled") == enabled; };
        wait.Lack = [request, enabled] {
            return QStringLiteral("%1.%2 is not %3")
                .arg(TextArgument(request, "form"), TextArgument(request, "control"),
                     enabled ? QStringLiteral("enabled") : QStringLiteral("disabled"));
        };
    } else if (isDeed("waitText")) {
        const Wanted wanted = WantedArgument(request);
        TextArgument(request, "form");
        const auto text = [this, request] { return ShownText(Control(request, false)); };
        wait.Holds = [wanted, text] { return wanted.Matches(text()); };
        wait.Lack = [request, wanted, text] {
            return QStringLiteral("%1.%2 shows \"%3\" and not %4\"%5\"")
                .arg(TextArgument(request, "form"), request.value(QLatin1String("control")).toString(),
                     text(), wanted.Contains ? QStringLiteral("a text with ") : QString(), wanted.Text);
        };
        wait.Result = [text] { return QJsonObject{{QStringLiteral("text"), text()}}; };
    } else {
        return false;
    }
    const int timeout =
        NumberArgument(request, "timeout", isDeed("done") ? 0 : 10000, MaximumWaitMilliseconds);
    wait.Until = QDeadlineTimer(timeout);
    AddWait(std::move(wait));
    return true;
}

bool Driver::DispatchDeed(const QJsonValue& id, const QString& deed, const QJsonObject& request) {
    const auto isDeed = [&](const char* name) { return deed == QLatin1String(name); };
    if (isDeed("click")) {
        QObject& control = Control(request, true);
        if (auto* entry = qobject_cast<QAction*>(&control))
            Perform(id, [entry] { ClickEntry(*entry); });
        else
            Perform(id, [&control] { ClickControl(static_cast<QWidget&>(control)); });
    } else if (isDeed("choose")) {
        QWidget& control = Widget(request, true);
        const Choice choice = ChoiceArgument(request);
        Perform(id, [&control, choice] { ChooseItem(control, choice); });
    } else if (isDeed("clickHeading")) {
        QWidget& control = Widget(request, true);
        const QString heading = TextArgument(request, "text");
        Perform(id, [&control, heading] { ClickHeading(control, heading); });
    } else if (isDeed("set")) {
        QWidget& control = Widget(request, true);
        const QString value = SetArgument(request);
        // Behind a list that has closed the window has no keyboard for a moment.
        PerformByKeys(
            id,
            [guard = QPointer<QWidget>(&control), value] {
                if (!guard) throw Refused(QStringLiteral("the control has gone"));
                SetControl(*guard, value);
            },
            QDeadlineTimer(AnswerMilliseconds));
    } else if (isDeed("focus")) {
        QWidget& control = Widget(request, true);
        Perform(id, [&control] { FocusControl(control); });
    } else if (isDeed("key") || isDeed("type")) {
        if (Has(request, "form")) {
            const QWidget& form = desk_.FreeForm(TextArgument(request, "form"));
            if (!form.isActiveWindow()) const_cast<QWidget&>(form).activateWindow();
        }
        const QString keys = TextArgument(request, isDeed("key") ? "key" : "text");
        PerformByKeys(
            id,
            [this, keys, single = isDeed("key")] {
                const QPointer<Driver> guard = this;
                single ? PressKey(keys) : TypeText(keys);
                if (guard) NotePressedButton();
            },
            QDeadlineTimer(AnswerMilliseconds));
    } else if (isDeed("close") || isDeed("quit")) {
        QWidget& form =
            desk_.FreeForm(isDeed("quit") ? QStringLiteral("frmMain1") : TextArgument(request, "form"));
        Perform(id, [&form] { form.close(); });
    } else {
        return false;
    }
    return true;
}

QJsonObject Driver::Look(const QString& deed, const QJsonObject& request) {
    const auto isDeed = [&](const char* name) { return deed == QLatin1String(name); };
    if (isDeed("forms")) {
        QJsonArray forms;
        for (const QWidget* window : desk_.Windows()) {
            forms << QJsonObject{
                {QStringLiteral("name"), Desk::NameOf(*window)},
                {QStringLiteral("class"), QString::fromLatin1(window->metaObject()->className())},
                {QStringLiteral("title"), window->windowTitle()},
                {QStringLiteral("modal"), window->isModal()},
                {QStringLiteral("active"), window->isActiveWindow()},
                {QStringLiteral("blocked"), Desk::BlockedBy(*window) != nullptr}};
        }
        return {{QStringLiteral("forms"), forms}};
    }
    if (isDeed("text")) return {{QStringLiteral("text"), ShownText(Control(request, false))}};
    if (isDeed("property")) {
        const QString name = TextArgument(request, "name");
        return {{QStringLiteral("value"), PropertyOf(Control(request, false), name)}};
    }
    if (isDeed("items")) {
        const QWidget& control = Widget(request, false);
        return {{QStringLiteral("items"), QJsonArray::fromStringList(ItemsOf(control))},
                {QStringLiteral("chosen"), ChosenRowsOf(control)}};
    }
    if (isDeed("controls")) return ControlsOf(desk_.Form(TextArgument(request, "form")));
    if (isDeed("rows")) return RowsOf(Widget(request, false));
    if (isDeed("boxText")) {
        return {{QStringLiteral("text"), BoxText(desk_.Form(TextArgument(request, "form")))}};
    }
    if (isDeed("grab")) {
        QWidget& form = desk_.Form(TextArgument(request, "form"));
        const QString file = TextArgument(request, "file");
        if (QFileInfo(file).isRelative()) throw Refused(QStringLiteral("\"file\" must be a full path"));
        if (!form.grab().save(file, "PNG"))
            throw Refused(QStringLiteral("the picture %1 cannot be written").arg(file));
        return {};
    }
    throw Refused(QStringLiteral("there is no request \"%1\"").arg(deed));
}

QObject& Driver::Control(const QJsonObject& request, bool mustBeFree) const {
    const QString name = TextArgument(request, "form");
    QWidget& form = mustBeFree ? desk_.FreeForm(name) : desk_.Form(name);
    const QString control = request.value(QLatin1String("control")).toString();
    if (control.isEmpty() && !mustBeFree) return form;
    if (QWidget* widget = FindControl(form, control)) return *widget;
    if (QAction* entry = FindEntry(form, control)) return *entry;
    throw Refused(QStringLiteral("form %1 has no control %2").arg(name, control));
}

QWidget& Driver::Widget(const QJsonObject& request, bool mustBeFree) const {
    QObject& control = Control(request, mustBeFree);
    if (control.isWidgetType()) return static_cast<QWidget&>(control);
    throw Refused(QStringLiteral("%1.%2 is a menu entry")
                      .arg(TextArgument(request, "form"), TextArgument(request, "control")));
}

void Driver::PerformByKeys(const QJsonValue& id, const std::function<void()>& deed, QDeadlineTimer until) {
    desk_.ActivateTop();
    // The window system tells of the active window a while behind the wish.
    const QWindow* focus = QGuiApplication::focusWindow();
    if ((focus && focus->isVisible()) || until.hasExpired()) return Perform(id, deed);
    QTimer::singleShot(1, this, [this, id, deed, until] { PerformByKeys(id, deed, until); });
}

void Driver::Perform(const QJsonValue& id, const std::function<void()>& deed) {
    // The answer goes when the deed is done, or as soon as the deed waits in a loop of its own:
    // that loop handles the posted event.
    const auto isAnswered = std::make_shared<bool>(false);
    const QPointer<Driver> guard = this;
    QMetaObject::invokeMethod(
        this,
        [this, id, isAnswered] {
            if (!std::exchange(*isAnswered, true)) Answer(id);
        },
        Qt::QueuedConnection);
    try {
        deed();
        if (guard && !std::exchange(*isAnswered, true)) Answer(id);
    } catch (const Refused& refused) {
        if (!guard) return;
        if (!std::exchange(*isAnswered, true))
            Refuse(id, refused.Words());
        else
            Fail(refused.Words());
    }
}

// ---- waits ----

void Driver::AddWait(Wait wait) {
    waits_.push_back(std::move(wait));
    poll_.start();
    CheckWaits();
}

void Driver::CheckWaits() {
    CheckAnsweredBoxes();
    const bool hold = IsUnderWay();
    for (qsizetype i = 0; i < waits_.size();) {
        const Wait& wait = waits_[i];
        bool holds = false;
        QString lack;
        QJsonObject result;
        try {
            holds = !hold && failures_.isEmpty() && wait.Holds();
            if (holds && wait.Result) result = wait.Result();
        } catch (const Refused& refused) {
            // A form or control that is not there yet.
            lack = refused.Words();
        }
        if (!holds && failures_.isEmpty() && !wait.Until.hasExpired()) {
            ++i;
            continue;
        }
        const Wait over = waits_.takeAt(i);
        if (holds) {
            Answer(over.Id, result);
            continue;
        }
        try {
            if (!failures_.isEmpty())
                lack = Failures();
            else if (lack.isEmpty())
                lack = over.Lack();
        } catch (const Refused& refused) {
            lack = refused.Words();
        }
        Refuse(over.Id, lack);
    }
    if (waits_.isEmpty() && answered_.isEmpty() && !IsUnderWay()) poll_.stop();
}

// ---- boxes ----

void Driver::Expect(const QJsonObject& request) {
    const Wanted wanted = WantedArgument(request);
    Expectation expected;
    expected.Text = wanted.Text;
    expected.Contains = wanted.Contains;
    if (Has(request, "input")) expected.Input = TextArgument(request, "input");
    expected.Box = Has(request, "box") ? TextArgument(request, "box")
                   : expected.Input    ? QStringLiteral("InputBox")
                                       : QStringLiteral("MsgBox");
    expected.Button = Has(request, "answer") ? TextArgument(request, "answer")
                      : expected.Input       ? QStringLiteral("Ok")
                                             : QString();
    if (expected.Button.isEmpty()) throw Refused(QStringLiteral("an expected box needs an \"answer\""));
    if (!BoxNames.contains(expected.Box))
        throw Refused(QStringLiteral("\"box\" is %1").arg(BoxNames.join(QLatin1String(" or "))));
    expected_.push_back(expected);
}

void Driver::BoxShown(QWidget& box) {
    // A box that its program keeps and shows again.
    answered_.removeIf([&](const AnsweredBox& answered) { return answered.Box == &box; });
    unjudged_.push_back(&box);
    // Behind the show: the box runs its loop by then and can be answered.
    QTimer::singleShot(1, this, [this] { Judge(); });
}

void Driver::Judge() {
    if (!judging_ || unjudged_.isEmpty()) return;
    const QPointer<QWidget> box = unjudged_.takeFirst();
    if (!unjudged_.isEmpty()) QTimer::singleShot(1, this, [this] { Judge(); });
    if (!box || !box->isVisible()) return ScheduleNext();
    const QString name = box->objectName();
    const QString text = BoxText(*box);
    const QString came = QStringLiteral("%1 \"%2\" (%3)").arg(name, text, ButtonNames(*box));
    if (expected_.isEmpty()) return Fail(QStringLiteral("a box that was not expected: %1").arg(came));
    const Expectation expected = expected_.front();
    if (expected.Box != name || !Wanted{expected.Text, expected.Contains}.Matches(text)) {
        return Fail(
            QStringLiteral("another box than expected: %1; expected was %2").arg(came, Describe(expected)));
    }
    expected_.pop_front();
    AnswerBox(*box, expected);
}

void Driver::AnswerBox(QWidget& box, const Expectation& expected) {
    Send({{QStringLiteral("event"), QStringLiteral("answered")},
          {QStringLiteral("box"), box.objectName()},
          {QStringLiteral("text"), BoxText(box)},
          {QStringLiteral("answer"), expected.Input ? *expected.Input : expected.Button}});
    answered_.push_back({&box, QDeadlineTimer(AnswerMilliseconds), std::nullopt});
    poll_.start();
    // Behind the answered handler's own return, which follows the box's end without a turn of the loop.
    connect(&box, &QObject::destroyed, this,
            [this] { QTimer::singleShot(1, this, [this] { CheckWaits(); }); });
    FillBox(&box, expected, QDeadlineTimer(ActivationMilliseconds));
}

void Driver::FillBox(const QPointer<QWidget>& guard, const Expectation& expected, QDeadlineTimer until) {
    if (!guard) return;
    QWidget& box = *guard;
    // The window system tells of the active window a while behind its show, and keys go by what it told.
    if (expected.Input && !box.isActiveWindow() && !until.hasExpired()) {
        box.activateWindow();
        QTimer::singleShot(1, this, [this, guard, expected, until] { FillBox(guard, expected, until); });
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
        Fail(QStringLiteral("%1 cannot be answered: %2").arg(Describe(expected), refused.Words()));
    }
}

bool Driver::IsUnderWay() const {
    if (!failures_.isEmpty()) return false;
    if (pressed_ && pressed_->isDown() && !pressedUntil_.hasExpired()) return true;
    return !answered_.isEmpty() || (judging_ && !unjudged_.isEmpty());
}

void Driver::NotePressedButton() {
    const QWidget* window = QApplication::activeWindow();
    if (!window) return;
    for (QAbstractButton* button : window->findChildren<QAbstractButton*>()) {
        if (!button->isDown() || button->window() != window) continue;
        pressed_ = button;
        pressedUntil_ = QDeadlineTimer(PressedMilliseconds);
        poll_.start();
    }
}

void Driver::CheckAnsweredBoxes() {
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
            return Fail(words);
        }
        if (isOver)
            answered_.removeAt(i);
        else
            ++i;
    }
    ScheduleNext();
}

void Driver::Fail(const QString& words) {
    failures_ << words;
    Send({{QStringLiteral("event"), QStringLiteral("failure")}, {QStringLiteral("error"), words}});
    QTimer::singleShot(1, this, [this] { CheckWaits(); });
    ScheduleNext();
}

QString Driver::Failures() const {
    return failures_.join(QLatin1Char('\n'));
}

QString Driver::Expectations() const {
    QStringList left;
    for (const Expectation& expected : expected_) left << Describe(expected);
    return left.join(QLatin1String("; "));
}

QString Driver::Describe(const Expectation& expected) {
    return QStringLiteral("%1 %2\"%3\" (answer: %4)")
        .arg(expected.Box, expected.Contains ? QStringLiteral("with ") : QString(), expected.Text,
             expected.Input ? *expected.Input : expected.Button);
}

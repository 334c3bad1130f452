#include "driver/Driver.h"

#include "driver/Hands.h"
#include "driver/Reading.h"
#include "driver/Refused.h"
#include "driver/Request.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPixmap>
#include <QWindow>

#include <algorithm>
#include <memory>
#include <utility>

namespace {

constexpr int PollMilliseconds = 20;
constexpr int MaximumWaitMilliseconds = 3600 * 1000;
constexpr qsizetype MaximumLine = 1 << 20;

/// Keys go to a window as soon as one has the keyboard, and after this long in any case.
constexpr int FocusMilliseconds = 5000;

/// A button that a mnemonic presses is shown down for a tenth of a second, and clicks then.
constexpr int PressedMilliseconds = 1000;

} // namespace

Driver::Driver(QString socketPath)
    : path_(std::move(socketPath)),
      boxes_({.Answered =
                  [this](const QJsonObject& event) {
                      Send(event);
                      poll_.start();
                  },
              .Failed = [this](const QString& words) { Fail(words); },
              .Changed = [this] { CheckWaits(); }}) {
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
        if (IsBox(window)) boxes_.BoxShown(window);
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
    const Request request(requests_.head());
    const QJsonValue id = request.Id();
    if (!request.Is("expect") && boxes_.Begin()) return ScheduleNext();
    requests_.dequeue();
    ScheduleNext();
    if (request.Deed().isEmpty()) {
        return Refuse(id, QStringLiteral("a request is a JSON object with \"id\" and \"do\""));
    }
    if (!failures_.isEmpty() && !request.Is("failures")) return Refuse(id, Failures());
    try {
        Dispatch(request);
    } catch (const Refused& refused) {
        Refuse(id, refused.Words());
    }
}

void Driver::Dispatch(const Request& request) {
    const QJsonValue id = request.Id();
    if (request.Is("expect")) {
        boxes_.Expect(request);
        return Answer(id);
    }
    if (request.Is("expectations")) {
        return Answer(id, {{QStringLiteral("expectations"), QJsonArray::fromStringList(boxes_.Expected())}});
    }
    if (request.Is("failures")) {
        const QStringList failures = std::exchange(failures_, {});
        return Answer(id, {{QStringLiteral("failures"), QJsonArray::fromStringList(failures)}});
    }
    if (DispatchWait(request) || DispatchDeed(request)) return;
    Answer(id, Look(request));
}

Driver::Wait Driver::WaitForBoxes() const {
    Wait wait;
    wait.Holds = [this] { return boxes_.Expected().isEmpty(); };
    wait.Lack = [this] {
        return QStringLiteral("expected boxes never came: ") + boxes_.Expected().join(QLatin1String("; "));
    };
    return wait;
}

Driver::Wait Driver::WaitForForm(const Request& request, bool gone) const {
    const QString name = request.Text("form");
    Wait wait;
    wait.Holds = [this, name, gone] {
        const QWidget* form = desk_.Find(name);
        return gone ? !form : form && desk_.IsSettled(*form);
    };
    wait.Lack = [this, name, gone] {
        return (gone ? QStringLiteral("form %1 is still on the screen; there is %2")
                     : QStringLiteral("form %1 did not come; there is %2"))
            .arg(name, desk_.Names().join(QLatin1String(", ")));
    };
    return wait;
}

Driver::Wait Driver::WaitForEnabled(const Request& request) const {
    const bool enabled = request.Flag("enabled", true);
    request.Text("form");
    request.Text("control");
    const auto is = [this, request](const char* property) {
        return PropertyOf(Control(request, false), QLatin1String(property)).toBool();
    };
    Wait wait;
    wait.Holds = [enabled, is] { return is("visible") && is("enabled") == enabled; };
    wait.Lack = [request, enabled] {
        return QStringLiteral("%1.%2 is not %3")
            .arg(request.Text("form"), request.Text("control"),
                 enabled ? QStringLiteral("enabled") : QStringLiteral("disabled"));
    };
    return wait;
}

Driver::Wait Driver::WaitForText(const Request& request) const {
    const Wanted wanted = request.TextWanted();
    request.Text("form");
    const auto text = [this, request] { return ShownText(Control(request, false)); };
    Wait wait;
    wait.Holds = [wanted, text] { return wanted.Matches(text()); };
    wait.Lack = [request, wanted, text] {
        return QStringLiteral("%1.%2 shows \"%3\" and not %4\"%5\"")
            .arg(request.Text("form"), request.TextOrNone("control"), text(),
                 wanted.Contains ? QStringLiteral("a text with ") : QString(), wanted.Text);
    };
    wait.Result = [text] { return QJsonObject{{QStringLiteral("text"), text()}}; };
    return wait;
}

bool Driver::DispatchWait(const Request& request) {
    Wait wait;
    if (request.Is("done"))
        wait = WaitForBoxes();
    else if (request.Is("waitForm") || request.Is("waitGone"))
        wait = WaitForForm(request, request.Is("waitGone"));
    else if (request.Is("waitEnabled"))
        wait = WaitForEnabled(request);
    else if (request.Is("waitText"))
        wait = WaitForText(request);
    else
        return false;
    wait.Id = request.Id();
    const int timeout = request.Number("timeout", request.Is("done") ? 0 : 10000, MaximumWaitMilliseconds);
    wait.Until = QDeadlineTimer(timeout);
    AddWait(std::move(wait));
    return true;
}

bool Driver::DispatchDeed(const Request& request) {
    const QJsonValue id = request.Id();
    if (request.Is("click")) {
        QObject& control = Control(request, true);
        if (auto* entry = qobject_cast<QAction*>(&control))
            Perform(id, [entry] { ClickEntry(*entry); });
        else
            Perform(id, [&control] { ClickControl(static_cast<QWidget&>(control)); });
    } else if (request.Is("choose")) {
        QWidget& control = Widget(request, true);
        const Choice choice = request.ItemChosen();
        Perform(id, [&control, choice] { ChooseItem(control, choice); });
    } else if (request.Is("clickHeading")) {
        QWidget& control = Widget(request, true);
        const QString heading = request.Text("text");
        Perform(id, [&control, heading] { ClickHeading(control, heading); });
    } else if (request.Is("set")) {
        QWidget& control = Widget(request, true);
        const QString value = request.Value();
        // Behind a list that has closed the window has no keyboard for a moment.
        PerformByKeys(
            id,
            [guard = QPointer<QWidget>(&control), value] {
                if (!guard) throw Refused(QStringLiteral("the control has gone"));
                SetControl(*guard, value);
            },
            QDeadlineTimer(FocusMilliseconds));
    } else if (request.Is("focus")) {
        QWidget& control = Widget(request, true);
        Perform(id, [&control] { FocusControl(control); });
    } else if (request.Is("key") || request.Is("type")) {
        if (request.Has("form")) {
            const QWidget& form = desk_.FreeForm(request.Text("form"));
            if (!form.isActiveWindow()) const_cast<QWidget&>(form).activateWindow();
        }
        const QString keys = request.Text(request.Is("key") ? "key" : "text");
        PerformByKeys(
            id,
            [this, keys, single = request.Is("key")] {
                const QPointer<Driver> guard = this;
                single ? PressKey(keys) : TypeText(keys);
                if (guard) NotePressedButton();
            },
            QDeadlineTimer(FocusMilliseconds));
    } else if (request.Is("close") || request.Is("quit")) {
        QWidget& form =
            desk_.FreeForm(request.Is("quit") ? QStringLiteral("frmMain1") : request.Text("form"));
        Perform(id, [&form] { form.close(); });
    } else {
        return false;
    }
    return true;
}

QJsonObject Driver::Look(const Request& request) {
    if (request.Is("forms")) {
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
    if (request.Is("text")) return {{QStringLiteral("text"), ShownText(Control(request, false))}};
    if (request.Is("property")) {
        const QString name = request.Text("name");
        return {{QStringLiteral("value"), PropertyOf(Control(request, false), name)}};
    }
    if (request.Is("items")) {
        const QWidget& control = Widget(request, false);
        return {{QStringLiteral("items"), QJsonArray::fromStringList(ItemsOf(control))},
                {QStringLiteral("chosen"), ChosenRowsOf(control)}};
    }
    if (request.Is("controls")) return ControlsOf(desk_.Form(request.Text("form")));
    if (request.Is("rows")) return RowsOf(Widget(request, false));
    if (request.Is("boxText")) {
        return {{QStringLiteral("text"), BoxText(desk_.Form(request.Text("form")))}};
    }
    if (request.Is("grab")) {
        QWidget& form = desk_.Form(request.Text("form"));
        const QString file = request.Text("file");
        if (QFileInfo(file).isRelative()) throw Refused(QStringLiteral("\"file\" must be a full path"));
        if (!form.grab().save(file, "PNG"))
            throw Refused(QStringLiteral("the picture %1 cannot be written").arg(file));
        return {};
    }
    throw Refused(QStringLiteral("there is no request \"%1\"").arg(request.Deed()));
}

QObject& Driver::Control(const Request& request, bool mustBeFree) const {
    const QString name = request.Text("form");
    QWidget& form = mustBeFree ? desk_.FreeForm(name) : desk_.Form(name);
    const QString control = request.TextOrNone("control");
    if (control.isEmpty() && !mustBeFree) return form;
    if (QWidget* widget = FindControl(form, control)) return *widget;
    if (QAction* entry = FindEntry(form, control)) return *entry;
    throw Refused(QStringLiteral("form %1 has no control %2").arg(name, control));
}

QWidget& Driver::Widget(const Request& request, bool mustBeFree) const {
    QObject& control = Control(request, mustBeFree);
    if (control.isWidgetType()) return static_cast<QWidget&>(control);
    throw Refused(QStringLiteral("%1.%2 is a menu entry").arg(request.Text("form"), request.Text("control")));
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
    boxes_.CheckAnswered();
    ScheduleNext();
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
    if (waits_.isEmpty() && !boxes_.HasAnswered() && !IsUnderWay()) poll_.stop();
}

// ---- what is under way, and what has failed ----

bool Driver::IsUnderWay() const {
    if (!failures_.isEmpty()) return false;
    if (pressed_ && pressed_->isDown() && !pressedUntil_.hasExpired()) return true;
    return boxes_.IsUnderWay();
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

void Driver::Fail(const QString& words) {
    failures_ << words;
    Send({{QStringLiteral("event"), QStringLiteral("failure")}, {QStringLiteral("error"), words}});
    QTimer::singleShot(1, this, [this] { CheckWaits(); });
    ScheduleNext();
}

QString Driver::Failures() const {
    return failures_.join(QLatin1Char('\n'));
}

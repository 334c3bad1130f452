#include "driver/DriverClient.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLocalSocket>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <functional>
#include <optional>
#include <utility>

#ifdef Q_OS_LINUX
#include <csignal>
#include <sys/prctl.h>
#endif

namespace {

using Milliseconds = DriverClient::Milliseconds;

/// The length of a local socket's path on Unix, with its final NUL.
constexpr qsizetype MaximumSocketPath = 108;
constexpr qsizetype TailBytes = 4000;
constexpr int ReconnectMilliseconds = 20;

QString TextOf(const QJsonObject& object, const char* key) {
    return object.value(QLatin1String(key)).toString();
}

QStringList TextsOf(const QJsonObject& object, const char* key) {
    QStringList texts;
    for (const QJsonValue value : object.value(QLatin1String(key)).toArray()) texts << value.toString();
    return texts;
}

QString Described(const QString& deed, const QJsonObject& arguments) {
    QString words = deed;
    for (const char* key : {"form", "control"}) {
        const QString name = TextOf(arguments, key);
        if (!name.isEmpty()) words += QLatin1Char(qstrcmp(key, "form") == 0 ? ' ' : '.') + name;
    }
    for (const char* key : {"text", "contains", "key", "value", "name", "file"}) {
        const QJsonValue value = arguments.value(QLatin1String(key));
        if (!value.isUndefined()) words += QStringLiteral(" \"%1\"").arg(value.toVariant().toString());
    }
    return words;
}

/// A folder with a short name: a socket lies in it.
QString FolderTemplate() {
    const QString own = QDir::tempPath() + QStringLiteral("/zukdrv-XXXXXX");
    constexpr qsizetype socketName = 8;
    // Qt's list of plugins is cut at commas.
    const bool isUsable =
        QFile::encodeName(own).size() + socketName < MaximumSocketPath && !own.contains(QLatin1Char(','));
    return isUsable ? own : QStringLiteral("/tmp/zukdrv-XXXXXX");
}

} // namespace

QString DrivenTable::Cell(qsizetype row, const QString& heading) const {
    const qsizetype column = Headings.indexOf(heading);
    if (column < 0) {
        throw DriverFailure(QStringLiteral("the table has no heading \"%1\"; it has: %2")
                                .arg(heading, Headings.join(QLatin1String(", ")))
                                .toStdString());
    }
    if (row < 0 || row >= Rows.size()) {
        throw DriverFailure(
            QStringLiteral("the table has no row %1; it has %2").arg(row).arg(Rows.size()).toStdString());
    }
    return Rows[row][column];
}

/// The process and the socket, and the loop that waits for either.
class DriverClient::Line {
public:
    explicit Line(DrivenProgram program) : program_(std::move(program)), folder_(FolderTemplate()) {
        if (!folder_.isValid())
            throw DriverFailure("no temporary folder: " + folder_.errorString().toStdString());
        QObject::connect(&process_, &QProcess::readyReadStandardError, &context_, [this] { ReadOutput(); });
        QObject::connect(&process_, &QProcess::readyReadStandardOutput, &context_, [this] { ReadOutput(); });
        QObject::connect(&process_, &QProcess::finished, &context_, [this] { Wake(); });
        QObject::connect(&process_, &QProcess::errorOccurred, &context_, [this] { Wake(); });
        QObject::connect(&socket_, &QLocalSocket::readyRead, &context_, [this] { ReadLines(); });
        QObject::connect(&socket_, &QLocalSocket::connected, &context_, [this] { Wake(); });
        QObject::connect(&socket_, &QLocalSocket::disconnected, &context_, [this] { Wake(); });
    }

    qint64 ProcessId() const { return process_.processId(); }

    ~Line() {
        Kill();
        socket_.abort();
    }

    void Start() {
        if (started_) throw DriverFailure("the program was started before");
        started_ = true;
        process_.setProgram(program_.Program);
        process_.setArguments(program_.Arguments);
        process_.setWorkingDirectory(program_.Folder.isEmpty() ? Folder() : program_.Folder);
        process_.setProcessEnvironment(Environment());
#ifdef Q_OS_LINUX
        process_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
#endif
        process_.start();
        // The socket's file is there a moment before anybody listens at it, so that a watch on the
        // folder would not spare the second try: a short timer is all it takes.
        QTimer retry;
        QObject::connect(&retry, &QTimer::timeout, &context_, [this] {
            if (socket_.state() == QLocalSocket::UnconnectedState) socket_.connectToServer(SocketPath());
        });
        retry.start(ReconnectMilliseconds);
        const bool isOver = Pump([this] { return IsConnected() || HasEnded(); }, patience_);
        if (process_.error() == QProcess::FailedToStart) {
            Fail(QStringLiteral("the program does not start: %1").arg(process_.errorString()));
        }
        if (HasEnded())
            Fail(QStringLiteral("the program ended before it could be driven: %1").arg(EndInWords()));
        if (!isOver) Fail(QStringLiteral("the program did not listen for its driver in time"));
    }

    bool HasStarted() const {
        return started_;
    }
    bool HasEnded() const {
        return started_ && process_.state() == QProcess::NotRunning;
    }
    bool IsConnected() const {
        return socket_.state() == QLocalSocket::ConnectedState;
    }
    QString Folder() const {
        return folder_.path();
    }

    /// One request and its answer. Nothing when the program went instead and `mayEnd` allows it.
    std::optional<QJsonObject> Ask(QJsonObject request, const QString& words, Milliseconds within,
                                   bool mayEnd) {
        if (!started_) Fail(words + QStringLiteral(": the program was not started"));
        const int id = ++lastId_;
        request.insert(QStringLiteral("id"), id);
        answer_ = {};
        socket_.write(QJsonDocument(request).toJson(QJsonDocument::Compact) + '\n');
        const auto isAnswered = [&] {
            return !answer_.isEmpty() && answer_.value(QLatin1String("id")).toInt() == id;
        };
        const bool isOver = Pump([&] { return isAnswered() || !IsConnected() || HasEnded(); }, within);
        if (!isAnswered() && isOver) {
            if (mayEnd) return std::nullopt;
            Pump([this] { return HasEnded(); }, Milliseconds(2000));
            Fail(words + QStringLiteral(": the program has gone: ") + EndInWords());
        }
        if (!isAnswered()) Fail(words + QStringLiteral(": the program did not answer in time"));
        if (!answer_.value(QLatin1String("ok")).toBool())
            Fail(words + QStringLiteral(": ") + TextOf(answer_, "error"));
        return answer_;
    }

    int WaitForEnd(Milliseconds within) {
        if (!started_) Fail(QStringLiteral("the program was not started"));
        const bool isOver = Pump([this] { return HasEnded() || !failure_.isEmpty(); }, within);
        ReadOutput();
        if (!failure_.isEmpty()) Fail(QStringLiteral("at the end: ") + failure_);
        if (!isOver) Fail(QStringLiteral("the program did not end in time"));
        if (process_.exitStatus() == QProcess::CrashExit) Fail(EndInWords());
        if (!expected_.isEmpty()) {
            Fail(QStringLiteral("the program ended, and expected boxes never came: ") +
                 std::exchange(expected_, {}).join(QLatin1String("; ")));
        }
        return process_.exitCode();
    }

    void Kill() {
        if (process_.state() == QProcess::NotRunning) return;
        process_.kill();
        process_.waitForFinished(-1);
        ReadOutput();
    }

    [[noreturn]] void Fail(const QString& words) {
        ReadOutput();
        QString all = words;
        if (!error_.isEmpty()) {
            all += QStringLiteral("\nThe end of the program's standard error:\n") +
                   QString::fromUtf8(error_.right(TailBytes));
        }
        throw DriverFailure(all.toStdString());
    }

    QStringList expected_;     ///< in words, as long as the program has not answered them
    QString failure_;          ///< the last failure that the program reported by itself
    QList<QJsonObject> early_; ///< expectations from before the start
    QList<DrivenBox> boxes_;
    QByteArray output_, error_;
    Milliseconds patience_{30000};

private:
    QString SocketPath() const {
        return Folder() + QStringLiteral("/s");
    }

    QProcessEnvironment Environment() const {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        const std::pair<const char*, const char*> folders[] = {{"HOME", "home"},
                                                               {"XDG_CONFIG_HOME", "config"},
                                                               {"XDG_DATA_HOME", "data"},
                                                               {"XDG_CACHE_HOME", "cache"},
                                                               {"XDG_RUNTIME_DIR", "run"}};
        for (const auto& [variable, name] : folders) {
            const QString path = Folder() + QLatin1Char('/') + QLatin1String(name);
            QDir().mkpath(path);
            QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
            environment.insert(QLatin1String(variable), path);
        }
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        for (auto given = program_.Environment.begin(); given != program_.Environment.end(); ++given) {
            environment.insert(given.key(), given.value());
        }
        QString plugins =
            program_.Plugins.isEmpty() ? QStringLiteral(TRAMBLE_DRIVER_PLUGINS) : program_.Plugins;
        const QString others = environment.value(QStringLiteral("QT_PLUGIN_PATH"));
        if (!others.isEmpty()) plugins += QDir::listSeparator() + others;
        environment.insert(QStringLiteral("QT_PLUGIN_PATH"), plugins);
        environment.insert(QStringLiteral("QT_QPA_GENERIC_PLUGINS"),
                           QStringLiteral("trambledriver:") + SocketPath());
        return environment;
    }

    QString EndInWords() const {
        if (!HasEnded()) return QStringLiteral("it closed the line and still runs");
        if (process_.exitStatus() == QProcess::CrashExit) {
            return QStringLiteral("it crashed (signal %1)").arg(process_.exitCode());
        }
        return QStringLiteral("it ended with exit code %1").arg(process_.exitCode());
    }

    template <class Condition>
    bool Pump(Condition condition, Milliseconds within) {
        const QDeadlineTimer until(within);
        QEventLoop loop;
        QTimer timer;
        timer.setSingleShot(true);
        QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
        QEventLoop* const outer = std::exchange(loop_, &loop);
        while (!condition() && !until.hasExpired()) {
            timer.start(static_cast<int>(until.remainingTime()) + 1);
            loop.exec();
        }
        loop_ = outer;
        return condition();
    }

    void Wake() {
        if (loop_) loop_->quit();
    }

    void ReadOutput() {
        output_ += process_.readAllStandardOutput();
        error_ += process_.readAllStandardError();
    }

    void ReadLines() {
        unread_ += socket_.readAll();
        for (qsizetype end = unread_.indexOf('\n'); end >= 0; end = unread_.indexOf('\n')) {
            const QJsonObject line = QJsonDocument::fromJson(unread_.left(end)).object();
            unread_.remove(0, end + 1);
            const QString event = TextOf(line, "event");
            if (event == QLatin1String("answered")) {
                boxes_ << DrivenBox{TextOf(line, "box"), TextOf(line, "text"), TextOf(line, "answer")};
                if (!expected_.isEmpty()) expected_.removeFirst();
            } else if (event == QLatin1String("failure")) {
                failure_ = TextOf(line, "error");
            } else {
                answer_ = line;
            }
        }
        Wake();
    }

    DrivenProgram program_;
    QTemporaryDir folder_;
    QProcess process_;
    QLocalSocket socket_;
    QObject context_; ///< goes first, so that no signal reaches what is going
    QByteArray unread_;
    QJsonObject answer_;
    QEventLoop* loop_ = nullptr;
    int lastId_ = 0;
    bool started_ = false;
};

DriverClient::DriverClient(DrivenProgram program) : line_(std::make_unique<Line>(std::move(program))) {}
DriverClient::~DriverClient() = default;

void DriverClient::SetPatience(Milliseconds patience) {
    line_->patience_ = patience;
}

void DriverClient::Start() {
    line_->Start();
    for (const QJsonObject& expectation : std::exchange(line_->early_, {})) {
        Request(QStringLiteral("expect"), expectation);
    }
    // The first request that is none: boxes are judged from here on. A program that has no more to say
    // than the expected boxes may end at it.
    const QString forms = QStringLiteral("forms");
    line_->Ask({{QStringLiteral("do"), forms}}, forms, line_->patience_, true);
}

bool DriverClient::IsRunning() const {
    return line_->HasStarted() && !line_->HasEnded();
}
qint64 DriverClient::ProcessId() const {
    return line_->ProcessId();
}
QString DriverClient::Folder() const {
    return line_->Folder();
}

QJsonObject DriverClient::Request(const QString& deed, QJsonObject arguments, Milliseconds within) {
    constexpr int aDeedTakesLonger = 10;
    const QString words = Described(deed, arguments);
    arguments.insert(QStringLiteral("do"), deed);
    if (within.count() < 0) within = line_->patience_ * aDeedTakesLonger;
    return *line_->Ask(std::move(arguments), words, within, false);
}

QJsonObject DriverClient::Wait(const QString& deed, QJsonObject arguments, Milliseconds within) {
    if (within.count() < 0) within = line_->patience_;
    arguments.insert(QStringLiteral("timeout"), static_cast<qint64>(within.count()));
    // The program tells the time; this side only notices that it does not answer at all.
    return Request(deed, std::move(arguments), within + line_->patience_);
}

QJsonObject DriverClient::To(const QString& form, const QString& control,
                             std::initializer_list<std::pair<const char*, QJsonValue>> more) const {
    QJsonObject arguments{{QStringLiteral("form"), form}, {QStringLiteral("control"), control}};
    for (const auto& [name, value] : more) arguments.insert(QLatin1String(name), value);
    return arguments;
}

// ---- boxes ----

void DriverClient::Register(const QJsonObject& expectation) {
    line_->expected_ << Described(QStringLiteral("box"), expectation);
    if (!line_->HasStarted())
        line_->early_ << expectation;
    else
        Request(QStringLiteral("expect"), expectation);
}

void DriverClient::Expect(const QString& text, const QString& button) {
    Register({{QStringLiteral("text"), text}, {QStringLiteral("answer"), button}});
}

void DriverClient::ExpectContaining(const QString& piece, const QString& button) {
    Register({{QStringLiteral("contains"), piece}, {QStringLiteral("answer"), button}});
}

void DriverClient::ExpectInput(const QString& text, const QString& input) {
    Register({{QStringLiteral("text"), text}, {QStringLiteral("input"), input}});
}

void DriverClient::ExpectInputContaining(const QString& piece, const QString& input) {
    Register({{QStringLiteral("contains"), piece}, {QStringLiteral("input"), input}});
}

void DriverClient::ExpectFile(const QString& title, const QString& path) {
    Register({{QStringLiteral("box"), QStringLiteral("FileDialog")},
              {QStringLiteral("text"), title},
              {QStringLiteral("input"), path}});
}

void DriverClient::ExpectInputCancelled(const QString& text) {
    Register({{QStringLiteral("box"), QStringLiteral("InputBox")},
              {QStringLiteral("text"), text},
              {QStringLiteral("answer"), QStringLiteral("Cancel")}});
}

QStringList DriverClient::Expectations() {
    return TextsOf(Request(QStringLiteral("expectations")), "expectations");
}

QStringList DriverClient::Failures() {
    QStringList failures = TextsOf(Request(QStringLiteral("failures")), "failures");
    line_->failure_.clear();
    return failures;
}

QList<DrivenBox> DriverClient::Boxes() const {
    return line_->boxes_;
}

void DriverClient::Done(Milliseconds within) {
    Wait(QStringLiteral("done"), {}, within);
}

// ---- deeds ----

void DriverClient::Click(const QString& form, const QString& control) {
    Request(QStringLiteral("click"), To(form, control));
}

void DriverClient::Choose(const QString& form, const QString& control, const QString& entry) {
    Request(QStringLiteral("choose"), To(form, control, {{"text", entry}}));
}

void DriverClient::ChooseTwice(const QString& form, const QString& control, const QString& entry) {
    Request(QStringLiteral("choose"), To(form, control, {{"text", entry}, {"twice", true}}));
}

void DriverClient::ChooseAlso(const QString& form, const QString& control, const QString& entry) {
    Request(QStringLiteral("choose"), To(form, control, {{"text", entry}, {"add", true}}));
}

void DriverClient::ChooseRow(const QString& form, const QString& control, int row, int column, bool twice) {
    Request(QStringLiteral("choose"),
            To(form, control, {{"row", row}, {"column", column}, {"twice", twice}}));
}

void DriverClient::ClickHeading(const QString& form, const QString& control, const QString& heading) {
    Request(QStringLiteral("clickHeading"), To(form, control, {{"text", heading}}));
}

void DriverClient::Set(const QString& form, const QString& control, const QString& text) {
    Request(QStringLiteral("set"), To(form, control, {{"value", text}}));
}

void DriverClient::Set(const QString& form, const QString& control, bool tick) {
    Request(QStringLiteral("set"), To(form, control, {{"value", tick}}));
}

void DriverClient::Focus(const QString& form, const QString& control) {
    Request(QStringLiteral("focus"), To(form, control));
}

void DriverClient::Key(const QString& key) {
    Request(QStringLiteral("key"), {{QStringLiteral("key"), key}});
}
void DriverClient::Type(const QString& text) {
    Request(QStringLiteral("type"), {{QStringLiteral("text"), text}});
}

void DriverClient::Close(const QString& form) {
    Request(QStringLiteral("close"), {{QStringLiteral("form"), form}});
}

// ---- looks ----

QList<DrivenForm> DriverClient::Forms() {
    QList<DrivenForm> forms;
    for (const QJsonValue value : Request(QStringLiteral("forms")).value(QLatin1String("forms")).toArray()) {
        const QJsonObject form = value.toObject();
        forms << DrivenForm{
            TextOf(form, "name"), TextOf(form, "title"), form.value(QLatin1String("modal")).toBool(),
            form.value(QLatin1String("active")).toBool(), form.value(QLatin1String("blocked")).toBool()};
    }
    return forms;
}

bool DriverClient::IsShown(const QString& form) {
    const QList<DrivenForm> forms = Forms();
    return std::any_of(forms.begin(), forms.end(),
                       [&](const DrivenForm& shown) { return shown.Name == form; });
}

QString DriverClient::Text(const QString& form, const QString& control) {
    return TextOf(Request(QStringLiteral("text"), To(form, control)), "text");
}

QString DriverClient::Title(const QString& form) {
    return Text(form, {});
}

QString DriverClient::BoxText(const QString& form) {
    return TextOf(Request(QStringLiteral("boxText"), {{QStringLiteral("form"), form}}), "text");
}

QJsonValue DriverClient::Property(const QString& form, const QString& control, const QString& name) {
    return Request(QStringLiteral("property"), To(form, control, {{"name", name}}))
        .value(QLatin1String("value"));
}

bool DriverClient::IsEnabled(const QString& form, const QString& control) {
    return Property(form, control, QStringLiteral("enabled")).toBool();
}

bool DriverClient::IsVisible(const QString& form, const QString& control) {
    return Property(form, control, QStringLiteral("visible")).toBool();
}

bool DriverClient::IsChecked(const QString& form, const QString& control) {
    return Property(form, control, QStringLiteral("checked")).toBool();
}

bool DriverClient::HasFocus(const QString& form, const QString& control) {
    return Property(form, control, QStringLiteral("focus")).toBool();
}

QStringList DriverClient::Items(const QString& form, const QString& control) {
    return TextsOf(Request(QStringLiteral("items"), To(form, control)), "items");
}

QStringList DriverClient::ChosenItems(const QString& form, const QString& control) {
    const QJsonObject answer = Request(QStringLiteral("items"), To(form, control));
    const QStringList items = TextsOf(answer, "items");
    QStringList chosen;
    for (const QJsonValue row : answer.value(QLatin1String("chosen")).toArray())
        chosen << items.value(row.toInt());
    return chosen;
}

QList<DrivenControl> DriverClient::Controls(const QString& form) {
    const QJsonObject answer = Request(QStringLiteral("controls"), {{QStringLiteral("form"), form}});
    QList<DrivenControl> controls;
    for (const QJsonValue control : answer.value(QLatin1String("controls")).toArray()) {
        controls << DrivenControl{
            control[QLatin1String("name")].toString(), control[QLatin1String("class")].toString(),
            control[QLatin1String("enabled")].toBool(), control[QLatin1String("visible")].toBool()};
    }
    return controls;
}

DrivenTable DriverClient::Rows(const QString& form, const QString& control) {
    const QJsonObject answer = Request(QStringLiteral("rows"), To(form, control));
    DrivenTable table{TextsOf(answer, "headings"), {}, {}};
    for (const QJsonValue row : answer.value(QLatin1String("rows")).toArray()) {
        QStringList cells;
        for (const QJsonValue cell : row.toArray()) cells << cell.toString();
        table.Rows << cells;
    }
    for (const QJsonValue ground : answer.value(QLatin1String("grounds")).toArray()) {
        table.Grounds.insert({ground[QLatin1String("row")].toInt(), ground[QLatin1String("column")].toInt()},
                             ground[QLatin1String("color")].toString());
    }
    return table;
}

void DriverClient::Grab(const QString& form, const QString& file) {
    Request(QStringLiteral("grab"), {{QStringLiteral("form"), form}, {QStringLiteral("file"), file}});
}

// ---- waits ----

void DriverClient::WaitForm(const QString& form, Milliseconds within) {
    Wait(QStringLiteral("waitForm"), {{QStringLiteral("form"), form}}, within);
}

void DriverClient::WaitGone(const QString& form, Milliseconds within) {
    Wait(QStringLiteral("waitGone"), {{QStringLiteral("form"), form}}, within);
}

void DriverClient::WaitEnabled(const QString& form, const QString& control, Milliseconds within) {
    Wait(QStringLiteral("waitEnabled"), To(form, control), within);
}

void DriverClient::WaitDisabled(const QString& form, const QString& control, Milliseconds within) {
    Wait(QStringLiteral("waitEnabled"), To(form, control, {{"enabled", false}}), within);
}

QString DriverClient::WaitText(const QString& form, const QString& control, const QString& text,
                               Milliseconds within) {
    return TextOf(Wait(QStringLiteral("waitText"), To(form, control, {{"text", text}}), within), "text");
}

QString DriverClient::WaitTextContaining(const QString& form, const QString& control, const QString& piece,
                                         Milliseconds within) {
    return TextOf(Wait(QStringLiteral("waitText"), To(form, control, {{"contains", piece}}), within), "text");
}

// ---- the end ----

int DriverClient::Quit(Milliseconds within) {
    if (within.count() < 0) within = line_->patience_;
    const QDeadlineTimer until(within);
    const QString quit = QStringLiteral("quit");
    line_->Ask({{QStringLiteral("do"), quit}}, quit, within, true);
    return line_->WaitForEnd(Milliseconds(until.remainingTime()));
}

int DriverClient::WaitForEnd(Milliseconds within) {
    return line_->WaitForEnd(within.count() < 0 ? line_->patience_ : within);
}

void DriverClient::Kill() {
    line_->Kill();
}
QString DriverClient::StandardOutput() const {
    return QString::fromUtf8(line_->output_);
}
QString DriverClient::StandardError() const {
    return QString::fromUtf8(line_->error_);
}

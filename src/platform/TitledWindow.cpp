#include "platform/TitledWindow.h"

#include "core/Failure.h"
#include "platform/Convert.h"
#include "platform/Form.h"
#include "platform/HotSyncManager.h"
#include "platform/LocalName.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QEvent>
#include <QLocalSocket>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <QWindow>

#include <cstdlib>
#include <cstring>
#include <utility>

namespace {

constexpr int AnswerWithin = 500; // milliseconds
constexpr int LookEvery = 50;
constexpr qint64 LongestLine = 100; // bytes of a request or an answer
constexpr int Farthest = 1 << 20;   // pixels from the screen's corner

constexpr const char* EnterKey = "{ENTER}";

QString NameFor(const QString& folder, const QString& title) {
    return LocalName(QStringLiteral("ZUKWindow-"), folder, QLatin1Char('\n') + title);
}

QString PlaceLine(const QRect& place) {
    return QStringLiteral("%1 %2 %3 %4").arg(place.x()).arg(place.y()).arg(place.width()).arg(place.height());
}

/// The place that four numbers of a line tell, from the word `first` on.
std::optional<QRect> ReadPlace(const QStringList& words, qsizetype first) {
    int numbers[4] = {};
    for (int k = 0; k < 4; ++k) {
        bool isNumber = false;
        numbers[k] = words.value(first + k).toInt(&isNumber);
        if (!isNumber || std::abs(numbers[k]) > Farthest) return std::nullopt;
    }
    if (numbers[2] < 1 || numbers[3] < 1) return std::nullopt;
    return QRect(numbers[0], numbers[1], numbers[2], numbers[3]);
}

void Raise(QWidget& window) {
    window.raise();
    window.activateWindow();
}

void Place(QWidget& window, const QRect& place, bool topmost) {
    window.setGeometry(place);
    // By the handle: the widget's own way would hide the window and show it again.
    if (QWindow* handle = window.windowHandle()) handle->setFlag(Qt::WindowStaysOnTopHint, topmost);
    window.raise();
}

void PressDefaultButton(QWidget& window) {
    const QWidget* modal = QApplication::activeModalWidget();
    if (modal && modal != &window) return; // what stands above the window has the keyboard
    for (auto* button : window.findChildren<QPushButton*>()) {
        if (button->isDefault() && button->isVisible()) return button->click();
    }
}

/// The next line of a socket without its end; nothing when there is none yet, and the socket is closed
/// when what comes is no line.
std::optional<QString> NextLine(QLocalSocket& socket) {
    if (!socket.canReadLine()) {
        if (socket.bytesAvailable() > LongestLine) socket.abort();
        return std::nullopt;
    }
    const QByteArray line = socket.readLine(LongestLine + 2);
    if (line.endsWith('\n')) return QString::fromUtf8(line.chopped(1));
    socket.abort();
    return std::nullopt;
}

} // namespace

// ---- the window that is to be found ----

TitledWindow::TitledWindow(QWidget& window, QString managerFolder)
    : QObject(&window),
      window_(window),
      folder_(std::move(managerFolder)) {
    window.installEventFilter(this);
    if (window.isVisible()) Announce();
}

TitledWindow::~TitledWindow() = default;

bool TitledWindow::eventFilter(QObject* object, QEvent* event) {
    if (object == &window_) {
        if (event->type() == QEvent::Show || (event->type() == QEvent::WindowTitleChange && server_))
            Announce();
        if (event->type() == QEvent::Hide) Withdraw();
    }
    return false;
}

void TitledWindow::Announce() {
    Withdraw();
    found_ = false;
    server_ = ListenUnder(NameFor(folder_, window_.windowTitle()));
    if (server_) connect(server_.get(), &QLocalServer::newConnection, this, [this] { Answer(); });
}

/// Whoever holds a connection sees it end: the window has gone.
void TitledWindow::Withdraw() {
    if (!server_) return;
    server_->disconnect(this);
    server_->close();
    for (auto* socket : server_->findChildren<QLocalSocket*>()) socket->abort();
    server_.release()->deleteLater(); // it may be the one that called
}

void TitledWindow::Answer() {
    while (QLocalSocket* socket = server_->nextPendingConnection()) {
        socket->setReadBufferSize(2 * LongestLine);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { Read(*socket); });
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        const bool first = !std::exchange(found_, true);
        if (first && Found) Found();
        Read(*socket);
    }
}

void TitledWindow::Read(QLocalSocket& socket) {
    while (const auto line = NextLine(socket)) {
        const QStringList words = line->split(QLatin1Char(' '));
        const auto place = ReadPlace(words, 1);
        if (words[0] == QLatin1String("FRONT")) {
            Raise(window_);
        } else if (words[0] == QLatin1String("KEYS") && words.value(1) == QLatin1String(EnterKey)) {
            // From the event loop: what the button does may take its time.
            QTimer::singleShot(0, &window_, [window = &window_] { PressDefaultButton(*window); });
        } else if (words[0] == QLatin1String("WHERE")) {
            // Not flushed: whoever asked may have gone, and what it has said behind this still counts.
            socket.write((PlaceLine(window_.geometry()) + QLatin1Char('\n')).toUtf8());
        } else if (words[0] == QLatin1String("PLACE") && place) {
            Place(window_, *place, words.value(5) == QLatin1String("TOPMOST"));
        } else {
            return socket.abort();
        }
    }
}

// ---- the window that was found ----

void FoundWindow::Gone::operator()(QLocalSocket* socket) const {
    delete socket;
}

FoundWindow::FoundWindow(std::unique_ptr<QLocalSocket> socket) : socket_(socket.release()) {}

bool FoundWindow::IsThere() {
    if (socket_->state() == QLocalSocket::ConnectedState) socket_->waitForReadyRead(0);
    return socket_->state() == QLocalSocket::ConnectedState;
}

void FoundWindow::Send(const QString& line) {
    if (!IsThere()) return;
    socket_->write((line + QLatin1Char('\n')).toUtf8());
    socket_->flush();
}

void FoundWindow::BringToFront() {
    Send(QStringLiteral("FRONT"));
}

void FoundWindow::SendKeys(const char* keys) {
    if (std::strcmp(keys, EnterKey) != 0) throw RunTimeFailure(5, keys);
    Send(QStringLiteral("KEYS ") + QLatin1String(EnterKey));
}

std::optional<QRect> FoundWindow::Placement() {
    Send(QStringLiteral("WHERE"));
    const QDeadlineTimer until(AnswerWithin);
    while (socket_->state() == QLocalSocket::ConnectedState && !until.hasExpired()) {
        if (const auto line = NextLine(*socket_)) return ReadPlace(line->split(QLatin1Char(' ')), 0);
        socket_->waitForReadyRead(static_cast<int>(until.remainingTime()));
    }
    return std::nullopt;
}

void FoundWindow::SetPlacement(const QRect& place, bool topmost) {
    Send(QStringLiteral("PLACE ") + PlaceLine(place) +
         (topmost ? QStringLiteral(" TOPMOST") : QStringLiteral(" NORMAL")));
}

std::optional<FoundWindow> FindWindow(const QString& title) {
    const std::string folder = HotSyncManagerFolder();
    if (folder.empty()) return std::nullopt;
    auto socket = std::make_unique<QLocalSocket>();
    socket->setReadBufferSize(2 * LongestLine);
    socket->connectToServer(NameFor(PathToQt(folder), title));
    if (!socket->waitForConnected(AnswerWithin)) return std::nullopt;
    return FoundWindow(std::move(socket));
}

void LookUntil(FormBehaviour& form, const std::function<bool()>& there) {
    bool seen = there();
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &look, [&] { seen = seen || there(); });
    look.start(LookEvery);
    form.WaitWhile([&] { return !seen; });
}

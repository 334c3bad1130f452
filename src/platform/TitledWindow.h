#pragma once

#include <QLocalServer>
#include <QObject>
#include <QRect>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class FormBehaviour;
class QLocalSocket;
class QWidget;

/// Windows that other programs of the system look for by their title, as they do for those of the HotSync
/// Manager. No window system tells one program of another's windows everywhere, so a window that is to be
/// found says so itself: on a local socket whose name is made from the manager's folder and the title.

/// The class of these windows.
inline constexpr const char* DialogClass = "#32770";

/// Lets a window be found while it is visible, under the title that it has then.
class TitledWindow final : public QObject {
public:
    /// `managerFolder` is the HotSync Manager's folder. The object belongs to the window.
    TitledWindow(QWidget& window, QString managerFolder);
    ~TitledWindow() override;

    /// Whether a program has found the window since it was shown last.
    bool WasFound() const { return found_; }

    /// Called when WasFound becomes true. It only takes notice.
    std::function<void()> Found;

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void Announce();
    void Withdraw();
    void Answer();
    void Read(QLocalSocket& socket);

    QWidget& window_;
    QString folder_;
    std::unique_ptr<QLocalServer> server_;
    bool found_ = false;
};

/// A window of another program of the system, or of this one. What is asked of a window that has gone does
/// nothing.
class FoundWindow {
public:
    /// Whether the window still stands; one of the same title that came later is another.
    bool IsThere();

    void BringToFront();

    /// Keys to the window: only "{ENTER}", which presses the window's default
    /// button. RunTimeFailure 5 for any other.
    void SendKeys(const char* keys);

    /// The place of the window on the screen, without its frame; nothing when it does not say it within
    /// half a second.
    std::optional<QRect> Placement();

    /// Places the window and lets it stay above all others, or no longer.
    void SetPlacement(const QRect& place, bool topmost);

private:
    friend std::optional<FoundWindow> FindWindow(const QString& title);
    explicit FoundWindow(std::unique_ptr<QLocalSocket> socket);

    struct Gone {
        void operator()(QLocalSocket* socket) const;
    };
    void Send(const QString& line);

    std::unique_ptr<QLocalSocket, Gone> socket_;
};

/// The window of that title which belongs to the registered HotSync Manager. Quick: it asks no window, only
/// whether one listens.
std::optional<FoundWindow> FindWindow(const QString& title);

/// Looks again and again until there is what is looked for: no event tells of another program's windows. Ends
/// when the form has gone or the process is ending.
void LookUntil(FormBehaviour& form, const std::function<bool()>& there);

#pragma once

#include <QObject>
#include <QSize>

class QScreen;
class QWidget;

/// Keeps a window within the screen on which it stands. One that needs more room, as with large letters, is
/// made to scroll: all of it stays within reach of mouse and keys. A window is made as high as its wrapped
/// texts need.
class ScreenFit final : public QObject {
public:
    /// The object belongs to the window.
    explicit ScreenFit(QWidget& window);

    /// What a screen has for a window without its frame, in pixels.
    static QSize RoomOn(const QScreen& screen);

    /// The name of the scroll area in a window that scrolls.
    static constexpr const char* AreaName = "scrWindow";

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    /// `opens`: the window is about to show.
    void Fit(bool opens);
    QSize Needed() const;
    void MakeScroll(const QSize& needed);

    QWidget& window_;
    bool scrolls_ = false;
};

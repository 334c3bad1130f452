#include "platform/ScreenFit.h"

#include <QEvent>
#include <QLayout>
#include <QMainWindow>
#include <QPointer>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>

namespace {

/// The frame around a window, which is not known before it shows: what title bars and borders usually take,
/// in pixels.
constexpr QSize UsualFrame{8, 32};

} // namespace

ScreenFit::ScreenFit(QWidget& window) : QObject(&window), window_(window) {
    window.installEventFilter(this);
}

bool ScreenFit::eventFilter(QObject*, QEvent* event) {
    // Before the first layout, and when a text or a control has come.
    if (event->type() == QEvent::Polish || event->type() == QEvent::Show) Fit(true);
    if (event->type() == QEvent::LayoutRequest) Fit(false);
    return false;
}

QSize ScreenFit::RoomOn(const QScreen& screen) {
    return screen.availableGeometry().size() - UsualFrame;
}

/// The least size at which nothing is cut, at the width that the window has.
QSize ScreenFit::Needed() const {
    const QLayout* layout = window_.layout();
    QSize needed = layout->totalMinimumSize();
    if (layout->hasHeightForWidth()) {
        const int width = std::max(window_.width(), needed.width());
        needed.setHeight(std::max(needed.height(), layout->totalMinimumHeightForWidth(width)));
    }
    return needed;
}

void ScreenFit::Fit(bool opens) {
    if (!window_.layout()) return;
    const QSize room = RoomOn(*window_.screen());
    const QSize needed = Needed();
    if (!scrolls_ && (needed.width() > room.width() || needed.height() > room.height())) MakeScroll(needed);
    QSize size = scrolls_ ? window_.size() : window_.size().expandedTo(needed.boundedTo(room));
    // One that does not scroll may later be drawn over two screens.
    if (opens || scrolls_) size = size.boundedTo(room);
    if (size != window_.size() && !window_.isMaximized()) window_.resize(size);
}

void ScreenFit::MakeScroll(const QSize& needed) {
    scrolls_ = true;
    const QPointer<QWidget> focus = window_.focusWidget(); // it loses that with its parent
    auto* area = new QScrollArea(&window_);
    area->setObjectName(QLatin1String(AreaName));
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus); // the tab key goes to the controls, and the area follows
    if (auto* main = qobject_cast<QMainWindow*>(&window_)) {
        area->setWidget(main->takeCentralWidget());
        main->setCentralWidget(area);
    } else {
        auto* content = new QWidget(area); // in this window: the tab order stays
        content->setLayout(window_.layout());
        area->setWidget(content);
        auto* around = new QVBoxLayout(&window_);
        around->setContentsMargins(0, 0, 0, 0);
        around->addWidget(area);
    }
    if (focus) focus->setFocus();
    if (window_.isMaximized()) return;
    const int bar = area->verticalScrollBar()->sizeHint().width();
    window_.resize(window_.size().expandedTo(needed + QSize(bar, bar)).boundedTo(RoomOn(*window_.screen())));
}

#include "platform/WindowPlace.h"

#include "platform/Registry.h"

#include <QGuiApplication>
#include <QScreen>
#include <QVariant>
#include <QWidget>

namespace {

enum Kept { Left, Top, Width, Height, Maximized, KeptNumbers };

bool Keeps(const QWidget& window) {
    return window.property("KeepsPlace").toBool();
}

} // namespace

std::optional<QRect> PlaceOnScreen(const QRect& place) {
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect room = screen->availableGeometry();
        if (place.isValid() && room.contains(place.center())) return place.intersected(room);
    }
    return std::nullopt;
}

void RestorePlace(QWidget& window) {
    if (!Keeps(window)) return;
    const QList<int> kept = Registry::WindowPlace(window.objectName());
    if (kept.size() != KeptNumbers) return;
    const auto place = PlaceOnScreen({kept[Left], kept[Top], kept[Width], kept[Height]});
    if (!place) return;
    window.setGeometry(*place);
    if (kept[Maximized] != 0) window.setWindowState(window.windowState() | Qt::WindowMaximized);
}

void KeepPlace(const QWidget& window) {
    if (!Keeps(window) || !window.isVisible()) return;
    const bool maximized = window.isMaximized();
    // Without its frame, of which a window that has not been shown yet knows nothing.
    const QRect place = maximized ? window.normalGeometry() : window.geometry();
    if (!place.isValid()) return;
    Registry::SetWindowPlace(window.objectName(),
                             {place.left(), place.top(), place.width(), place.height(), maximized ? 1 : 0});
}

#include "platform/HelpLine.h"

#include "platform/Convert.h"

#include <QFocusEvent>
#include <QLabel>
#include <QVariant>
#include <QWidget>

namespace {

constexpr const char* HelpText = "HelpText";

/// A dialog that opens says the same of its first control, before it is the active window: nobody has pressed
/// a key.
bool CameByAKey(const QEvent& event, const QWidget& window) {
    if (!window.isActiveWindow()) return false;
    const Qt::FocusReason reason = static_cast<const QFocusEvent&>(event).reason();
    return reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
           reason == Qt::ShortcutFocusReason;
}

} // namespace

HelpLine::HelpLine(QLabel& label, const Text& idle) : QObject(&label), label_(label), idle_(ToQt(idle)) {
    Rest();
}

void HelpLine::Add(QWidget& control, const Text& text) {
    control.setProperty(HelpText, ToQt(text));
    control.setAccessibleDescription(ToQt(text));
    control.installEventFilter(this);
}

void HelpLine::Rest() {
    held_ = false;
    label_.setText(idle_);
}

void HelpLine::Hold(const Text& text) {
    held_ = true;
    label_.setText(ToQt(text));
}

QString HelpLine::TextFor(const QObject& control) {
    return control.property(HelpText).toString();
}

void HelpLine::ShowFor(const QObject& control) {
    label_.setText(TextFor(control));
}

bool HelpLine::eventFilter(QObject* object, QEvent* event) {
    if (held_) return QObject::eventFilter(object, event);
    if (event->type() == QEvent::Enter) ShowFor(*object);
    if (event->type() == QEvent::Leave) Rest();
    if (event->type() == QEvent::FocusIn && CameByAKey(*event, *label_.window())) ShowFor(*object);
    return QObject::eventFilter(object, event);
}

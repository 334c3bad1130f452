#include "platform/HelpKeys.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "help/HTMLHelp.h"
#include "platform/HelpLine.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QTextDocumentFragment>
#include <QWhatsThis>
#include <QWidget>

namespace {

QString HintOf(const QWidget& control) {
    for (const QWidget* at = &control; at; at = at->isWindow() ? nullptr : at->parentWidget()) {
        for (const QString& hint : {HelpLine::TextFor(*at), at->accessibleDescription(), at->toolTip()}) {
            if (!hint.isEmpty()) return hint;
        }
    }
    return {};
}

} // namespace

void ShowHint(const QWidget& control) {
    if (!Global.TheHelp) return;
    const QString hint = HintOf(control);
    // A tool tip may be markup; the pop-up shows letters.
    const QString plain =
        Qt::mightBeRichText(hint) ? QTextDocumentFragment::fromHtml(hint).toPlainText() : hint;
    Global.TheHelp->HHPopupType = PopupType::Text;
    Global.TheHelp->HHPopupText =
        plain.isEmpty() ? Text(msg::HelpNoHint) : Text::Path(std::string_view(plain.toStdString()));
    const QPoint below = control.mapToGlobal(QPoint(0, control.height()));
    Global.TheHelp->HHDisplayPopup(ScreenPlace{below.x(), below.y()});
}

HelpKeys::HelpKeys(QWidget& window, std::function<void()> help)
    : QObject(&window),
      window_(window),
      help_(std::move(help)) {
    window.installEventFilter(this);
}

bool HelpKeys::eventFilter(QObject* object, QEvent* event) {
    switch (event->type()) {
    case QEvent::KeyPress: {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        if (key.key() != Qt::Key_F1) break;
        if (key.modifiers() == Qt::NoModifier) {
            help_();
            return true;
        }
        if (key.modifiers() == Qt::ShiftModifier) {
            if (window_.focusWidget()) ShowHint(*window_.focusWidget());
            return true;
        }
        break;
    }
    case QEvent::QueryWhatsThis:
        event->accept();
        return true;
    case QEvent::WhatsThis: {
        QWhatsThis::leaveWhatsThisMode();
        const QWidget* under = window_.childAt(static_cast<const QHelpEvent&>(*event).pos());
        if (under) ShowHint(*under);
        event->accept();
        return true;
    }
    default:
        break;
    }
    return QObject::eventFilter(object, event);
}

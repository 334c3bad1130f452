#include "help/forms/PopupBox.h"

#include "platform/Convert.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScreen>
#include <QToolTip>

#include <algorithm>

namespace {

constexpr int Widest = 380, Margin = 8; // pixels

QFont FontOf(const PopupFont& told) {
    QFont font(ToQt(told.Name), told.Points);
    font.setBold(told.Bold);
    font.setItalic(told.Italic);
    font.setUnderline(told.Underline);
    return font;
}

} // namespace

PopupBox::PopupBox(const QString& words, const PopupDefinition& look)
    : QLabel(QApplication::activeWindow(), Qt::Popup) {
    setObjectName(QStringLiteral("HelpPopup"));
    setAttribute(Qt::WA_DeleteOnClose);
    setTextFormat(Qt::PlainText);
    setText(words);
    setAccessibleName(words);
    setFont(FontOf(ReadPopupFont(look.Font)));
    QPalette colors = QToolTip::palette();
    if (look.TextColor) colors.setColor(QPalette::ToolTipText, QColor::fromRgb(*look.TextColor));
    if (look.BackColor) colors.setColor(QPalette::ToolTipBase, QColor::fromRgb(*look.BackColor));
    setPalette(colors);
    setForegroundRole(QPalette::ToolTipText);
    setBackgroundRole(QPalette::ToolTipBase);
    setAutoFillBackground(true);
    setFrameStyle(QFrame::Box | QFrame::Plain);
    setMargin(Margin);
    setWordWrap(fontMetrics().horizontalAdvance(words) > Widest);
    if (wordWrap()) setFixedWidth(Widest);
}

void PopupBox::Show(const QString& words, const PopupDefinition& look, std::optional<ScreenPlace> place) {
    auto* box = new PopupBox(words, look);
    box->adjustSize();
    QPoint corner = place ? QPoint(place->Left, place->Top) : QCursor::pos();
    const QScreen* screen = QApplication::screenAt(corner);
    const QRect room = (screen ? screen : QApplication::primaryScreen())->availableGeometry();
    corner.setX(std::max(room.left(), std::min(corner.x(), room.right() - box->width())));
    corner.setY(std::max(room.top(), std::min(corner.y(), room.bottom() - box->height())));
    box->move(corner);
    box->show();
}

void PopupBox::keyPressEvent(QKeyEvent* event) {
    event->accept();
    close();
}

void PopupBox::mousePressEvent(QMouseEvent* event) {
    event->accept();
    close();
}

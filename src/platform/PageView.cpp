#include "platform/PageView.h"

#include "platform/Printing.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int Around = 12; ///< a page, in pixels
constexpr double Smallest = 0.1, Largest = 4;
constexpr double PointsToTheInch = 72;
constexpr double TwipsToTheInch = 1440;

} // namespace

PageView::PageView(QWidget* parent) : QAbstractScrollArea(parent) {
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setBackgroundRole(QPalette::Dark);
    viewport()->setAutoFillBackground(true);
}

void PageView::SetPages(const QPageLayout& paper, std::int32_t count, Drawer draw) {
    paper_ = paper;
    draw_ = std::move(draw);
    count_ = count;
    drawnPage_ = 0;
    TurnTo(1);
}

void PageView::TurnTo(std::int32_t page) {
    page_ = std::clamp(page, 1, std::max(1, count_));
    LayOut();
    verticalScrollBar()->setValue(0);
    viewport()->update();
    emit Turned();
}

QSizeF PageView::PaperInPixels() const {
    return paper_.fullRect(QPageLayout::Point).size() * (logicalDpiX() / PointsToTheInch);
}

double PageView::Scale() const {
    const QSizeF paper = PaperInPixels();
    if (fit_ == Fit::Scale || paper.isEmpty()) return scale_;
    const QSize room = maximumViewportSize() - QSize(2 * Around, 2 * Around);
    const double toWidth = (room.width() - verticalScrollBar()->sizeHint().width()) / paper.width();
    const double toPage = std::min(room.width() / paper.width(), room.height() / paper.height());
    return std::clamp(fit_ == Fit::Width ? toWidth : toPage, Smallest, Largest);
}

void PageView::SetFit(Fit fit) {
    fit_ = fit;
    LayOut();
    viewport()->update();
    emit Turned();
}

void PageView::ZoomBy(double factor) {
    scale_ = std::clamp(Scale() * factor, Smallest, Largest);
    SetFit(Fit::Scale);
}

QSize PageView::sizeHint() const {
    return {760, 560};
}

void PageView::LayOut() {
    const QSize page = (PaperInPixels() * Scale()).toSize() + QSize(2 * Around, 2 * Around);
    const QSize room = viewport()->size();
    horizontalScrollBar()->setRange(0, std::max(0, page.width() - room.width()));
    horizontalScrollBar()->setPageStep(room.width());
    horizontalScrollBar()->setSingleStep(fontMetrics().height());
    verticalScrollBar()->setRange(0, std::max(0, page.height() - room.height()));
    verticalScrollBar()->setPageStep(room.height());
    verticalScrollBar()->setSingleStep(fontMetrics().height() * 3);
}

void PageView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    LayOut();
    if (fit_ != Fit::Scale) emit Turned();
}

QPixmap PageView::Draw(QSize pixels, double ratio) {
    QPixmap sheet(pixels * ratio);
    sheet.setDevicePixelRatio(ratio);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    const double toThePoint = pixels.width() / paper_.fullRect(QPageLayout::Point).width();
    const QRectF inside = paper_.paintRect(QPageLayout::Point);
    painter.translate(inside.left() * toThePoint, inside.top() * toThePoint);
    painter.scale(toThePoint * PointsToTheInch / TwipsToTheInch,
                  toThePoint * PointsToTheInch / TwipsToTheInch);
    ShownPage page(painter, paper_);
    draw_(page_, page);
    page.EndDoc();
    return sheet;
}

void PageView::paintEvent(QPaintEvent*) {
    if (count_ == 0) return;
    const QSize pixels = (PaperInPixels() * Scale()).toSize();
    const double ratio = devicePixelRatioF();
    if (drawnPage_ != page_ || drawn_.size() != pixels * ratio) {
        drawn_ = Draw(pixels, ratio);
        drawnPage_ = page_;
    }
    const int left = std::max(Around, (viewport()->width() - pixels.width()) / 2);
    const int top = std::max(Around, (viewport()->height() - pixels.height()) / 2);
    QPainter painter(viewport());
    const QPoint corner(left - horizontalScrollBar()->value(), top - verticalScrollBar()->value());
    painter.drawPixmap(corner, drawn_);
    painter.setPen(palette().color(QPalette::Shadow));
    painter.drawRect(QRect(corner, pixels).adjusted(-1, -1, 0, 0));
}

void PageView::Move(int direction, bool wholeScreen) {
    QScrollBar* bar = verticalScrollBar();
    const bool atEnd = direction > 0 ? bar->value() == bar->maximum() : bar->value() == bar->minimum();
    if (!atEnd) {
        bar->setValue(bar->value() + direction * (wholeScreen ? bar->pageStep() : bar->singleStep()));
    } else if (page_ + direction >= 1 && page_ + direction <= count_) {
        TurnTo(page_ + direction);
        if (direction < 0) bar->setValue(bar->maximum());
    }
}

void PageView::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_PageDown:
        return Move(1, true);
    case Qt::Key_PageUp:
        return Move(-1, true);
    case Qt::Key_Down:
        return Move(1, false);
    case Qt::Key_Up:
        return Move(-1, false);
    case Qt::Key_Home:
        return TurnTo(1);
    case Qt::Key_End:
        return TurnTo(count_);
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        return ZoomIn();
    case Qt::Key_Minus:
        return ZoomOut();
    default:
        QAbstractScrollArea::keyPressEvent(event);
    }
}

void PageView::wheelEvent(QWheelEvent* event) {
    const int turned = event->angleDelta().y();
    if (turned == 0) return QAbstractScrollArea::wheelEvent(event);
    if (event->modifiers() & Qt::ControlModifier) {
        turned > 0 ? ZoomIn() : ZoomOut();
    } else {
        Move(turned > 0 ? -1 : 1, false);
    }
    event->accept();
}

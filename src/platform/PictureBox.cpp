#include "platform/PictureBox.h"

#include "core/Failure.h"
#include "core/SafeFile.h"

#include <QBuffer>
#include <QImageReader>
#include <QPainter>

namespace {

constexpr std::uint64_t MostBytes = std::uint64_t{16} << 20;
constexpr int LongestSide = 4096;
constexpr int Margin = 12;

std::string BytesOf(std::string_view path) {
    try {
        return ReadWholeFile(path, MostBytes);
    } catch (const RunTimeFailure&) {
        return {};
    }
}

} // namespace

QImage ReadBitmap(std::string_view path) {
    const std::string bytes = BytesOf(path);
    QByteArray content = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
    QBuffer buffer(&content);
    QImageReader reader(&buffer, "bmp");
    // The size that the file claims is what would be allocated.
    const QSize size = reader.size();
    if (size.isEmpty() || size.width() > LongestSide || size.height() > LongestSide) return {};
    return reader.read();
}

PictureBox::PictureBox(QWidget* parent) : QFrame(parent) {
    setFrameShape(QFrame::StyledPanel);
    setMinimumSize(200, 120);
}

void PictureBox::Show(const QImage& picture) {
    // One bit a point cannot be scaled smoothly.
    picture_ = picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    words_.clear();
    update();
}

void PictureBox::Show(const QString& words) {
    picture_ = {};
    words_ = words;
    update();
}

void PictureBox::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    const QRect inside = frameRect().adjusted(1, 1, -1, -1);
    const QRect room = inside.adjusted(Margin, Margin, -Margin, -Margin);
    painter.fillRect(inside, picture_.isNull() ? palette().brush(QPalette::Base) : QBrush(Qt::white));
    if (picture_.isNull()) {
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(room, Qt::AlignCenter | Qt::TextWordWrap, words_);
    } else {
        QRect place({}, picture_.size().scaled(room.size(), Qt::KeepAspectRatio));
        place.moveCenter(room.center());
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(place, picture_);
    }
    painter.end();
    QFrame::paintEvent(event);
}

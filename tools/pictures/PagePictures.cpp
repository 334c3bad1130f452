#include "PagePictures.h"

#include "OfficeForDay.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QIcon>
#include <QImage>
#include <QMainWindow>
#include <QPainter>
#include <QRegularExpression>
#include <QWidget>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <vector>

namespace {

constexpr int Widest = 700;
constexpr int TitleHeight = 26;
constexpr std::size_t Colours = 256;

const QString HelpPages = QStringLiteral("resources/help/");
const QString Folders[] = {HelpPages + QStringLiteral("pictures/"), QStringLiteral("docs/pictures/")};

/// A window that is too wide is made narrower: letters that are made smaller read badly.
void MakeNarrow(QWidget& window) {
    if (!window.isWindow() || window.width() <= Widest) return;
    // The lists of the main screen need some room.
    const int narrow = qobject_cast<QMainWindow*>(&window) != nullptr ? Widest * 6 / 5 : Widest;
    const QSize least = window.minimumSizeHint();
    window.resize(std::max(narrow, least.width()), std::max(window.height() * 4 / 5, least.height()));
    Settle();
}

/// The picture with a title above it, where it is that of a window, and a line around it.
QImage Framed(const QImage& content, const QWidget& window) {
    const int title = window.isWindow() ? TitleHeight : 0;
    QImage framed(content.width() + 2, content.height() + title + 2, QImage::Format_RGB32);
    const QColor bar = window.palette().color(QPalette::Window).darker(115);
    framed.fill(bar.darker(125));
    QPainter painter(&framed);
    painter.drawImage(1, title + 1, content);
    if (title > 0) {
        const QRect place(1, 1, content.width(), title);
        painter.fillRect(place, bar);
        window.windowIcon().paint(&painter, place.adjusted(6, 4, 0, -4), Qt::AlignLeft | Qt::AlignVCenter);
        QFont font = window.font();
        font.setBold(true);
        painter.setFont(font);
        painter.setPen(window.palette().color(QPalette::WindowText));
        painter.drawText(place, Qt::AlignCenter, window.windowTitle());
    }
    return framed;
}

/// The colours that a picture has most of.
QList<QRgb> MainColours(const QImage& picture) {
    QHash<QRgb, int> counts;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) ++counts[picture.pixel(x, y) & 0xFFFCFCFCU];
    std::vector<std::pair<int, QRgb>> order;
    for (auto each = counts.cbegin(); each != counts.cend(); ++each)
        order.emplace_back(-each.value(), each.key());
    std::sort(order.begin(), order.end());
    QList<QRgb> colours;
    for (const auto& [count, colour] : order) {
        if (static_cast<std::size_t>(colours.size()) == Colours) break;
        colours << colour;
    }
    return colours;
}

/// What has become of a picture; nothing when it looks the same.
QString Difference(const QImage& was, const QImage& now) {
    if (was.isNull()) return QStringLiteral("new");
    const auto size = [](const QImage& of) {
        return QStringLiteral("%1x%2").arg(of.width()).arg(of.height());
    };
    if (was.size() != now.size()) return QStringLiteral("%1, was %2").arg(size(now), size(was));
    // A file may hold the same colours in another order.
    const auto plain = [](const QImage& of) { return of.convertToFormat(QImage::Format_RGB32); };
    return plain(was) == plain(now) ? QString() : QStringLiteral("changed");
}

void Say(const QString& path, const QString& what) {
    std::printf("%s: %s\n", path.toLocal8Bit().constData(), qPrintable(what));
}

} // namespace

PagePictures::PagePictures(const QString& sources) : sources_(sources + QLatin1Char('/')) {
    const QDir pages(sources_ + HelpPages, QStringLiteral("*.htm"));
    for (const QString& page : pages.entryList()) ReadNames(HelpPages + page, HelpPages);
    ReadNames(QStringLiteral("README.md"), {});
}

void PagePictures::ReadNames(const QString& page, const QString& folder) {
    QFile file(sources_ + page);
    if (!file.open(QIODevice::ReadOnly)) throw OfficeFailure("cannot read " + page.toStdString());
    const QString text = QString::fromUtf8(file.readAll());
    static const QRegularExpression picture(QStringLiteral("\"((?:docs/)?pictures/[^\"]+\\.png)\""));
    for (auto each = picture.globalMatch(text); each.hasNext();) wanted_ << folder + each.next().captured(1);
}

void PagePictures::TakeShown(QWidget& window, const QString& name) {
    QImage picture;
    for (const QString& folder : Folders) {
        const QString path = folder + name + QStringLiteral(".png");
        if (!wanted_.contains(path)) continue;
        if (picture.isNull()) {
            MakeNarrow(window);
            picture = Framed(window.grab().toImage(), window);
            if (picture.width() > Widest) picture = picture.scaledToWidth(Widest, Qt::SmoothTransformation);
        }
        Write(picture, path);
    }
}

void PagePictures::Write(const QImage& picture, const QString& path) {
    const QImage small =
        picture.convertToFormat(QImage::Format_Indexed8, MainColours(picture), Qt::ThresholdDither);
    constexpr int Smallest = 0; // the quality of a PNG file says how hard it is compressed
    const QString full = sources_ + path;
    taken_ << path;
    const QString difference = Difference(QImage(full), small);
    if (difference.isEmpty()) return;
    QDir().mkpath(QFileInfo(full).path());
    if (!small.save(full, "PNG", Smallest)) throw OfficeFailure("cannot write " + path.toStdString());
    Say(path, difference);
    ++changed_;
}

void PagePictures::Finish() {
    for (const QString& folder : Folders) {
        const QDir there(sources_ + folder, QStringLiteral("*.png"));
        for (const QString& name : there.entryList()) {
            if (wanted_.contains(folder + name) || !QFile::remove(sources_ + folder + name)) continue;
            Say(folder + name, QStringLiteral("removed"));
            ++changed_;
        }
    }
    std::printf("%d pictures, %d changed\n", static_cast<int>(taken_.size()), changed_);
    QStringList missing = (wanted_ - taken_).values();
    missing.sort();
    if (missing.isEmpty()) return;
    throw OfficeFailure("no screen is called so: " + missing.join(QStringLiteral(", ")).toStdString());
}

#include "ContactSheet.h"

#include "OfficeForDay.h"
#include "core/SafeFile.h"
#include "platform/Convert.h"

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QStringList>

#include <algorithm>

namespace {

constexpr int InRow = 6;
constexpr QSize Cell{300, 240}; // pixels, with the name above the picture
constexpr int NameHeight = 20;
constexpr int Gap = 8;

QStringList ScreensOf(const QDir& set, const QString& look) {
    QStringList screens;
    for (const QString& file :
         set.entryList({QLatin1Char('*') + look + QStringLiteral(".png")}, QDir::Files, QDir::Name))
        screens << file.chopped(look.size() + 4);
    screens.sort(); // the names without their look stand in another order
    return screens;
}

QImage Read(const QString& path) {
    QImage picture(path);
    if (picture.isNull()) throw OfficeFailure("cannot read " + path.toStdString());
    return picture;
}

void MakeSheet(const QDir& set, const QString& look, const QStringList& screens, const QString& path) {
    const int rows = (static_cast<int>(screens.size()) + InRow - 1) / InRow;
    QImage sheet((Cell.width() + Gap) * InRow + Gap, (Cell.height() + Gap) * rows + Gap,
                 QImage::Format_RGB32);
    sheet.fill(QColor(0x80, 0x80, 0x80));
    QPainter painter(&sheet);
    painter.setPen(Qt::white);
    for (int at = 0; at < screens.size(); ++at) {
        const QRect cell(
            QPoint(Gap + at % InRow * (Cell.width() + Gap), Gap + at / InRow * (Cell.height() + Gap)), Cell);
        QImage picture = Read(set.filePath(screens[at] + look + QStringLiteral(".png")));
        picture.setDevicePixelRatio(1);
        const QSize room = Cell - QSize(0, NameHeight);
        if (picture.width() > room.width() || picture.height() > room.height())
            picture = picture.scaled(room, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        painter.drawText(cell, Qt::AlignLeft | Qt::AlignTop, screens[at]);
        painter.drawImage(cell.topLeft() + QPoint(0, NameHeight), picture);
    }
    painter.end();
    if (!sheet.save(path)) throw OfficeFailure("cannot write " + path.toStdString());
}

void WriteIndex(const QDir& folder, const QStringList& sets, const QStringList& looks,
                const QStringList& screens) {
    QString page =
        QStringLiteral("<!DOCTYPE html>\n<meta charset=\"utf-8\">\n<title>Screens</title>\n"
                       "<style>body{font-family:sans-serif;background:#808080;color:#fff}"
                       "img{width:420px;height:auto}td{vertical-align:top}a{color:#fff}</style>\n<p>");
    for (const QString& set : sets) {
        for (const QString& look : looks)
            page += QStringLiteral("<a href=\"%1%2.png\">%1%2</a> ").arg(set, look);
    }
    page += QStringLiteral("</p>\n<table>\n");
    for (const QString& screen : screens) {
        page += QStringLiteral("<tr id=\"%1\">").arg(screen);
        for (const QString& set : sets) {
            for (const QString& look : looks) {
                if (!folder.exists(set + QLatin1Char('/') + screen + look + QStringLiteral(".png"))) {
                    page += QStringLiteral("<td></td>");
                    continue;
                }
                page +=
                    QStringLiteral("<td><a href=\"%1/%2%3.png\"><img loading=\"lazy\" src=\"%1/%2%3.png\" "
                                   "alt=\"\"></a><br>%2 %1%3</td>")
                        .arg(set, screen, look);
            }
        }
        page += QStringLiteral("</tr>\n");
    }
    page += QStringLiteral("</table>\n");
    WriteWholeFile(PathFromQt(folder.filePath(QStringLiteral("index.html"))), page.toStdString());
}

} // namespace

int MakeContactSheets(const QString& folder) {
    const QDir all(folder);
    const QStringList looks{QStringLiteral("-light"), QStringLiteral("-dark")};
    QStringList sets = all.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    sets.removeIf([&](const QString& set) {
        return std::all_of(looks.begin(), looks.end(), [&](const QString& look) {
            return ScreensOf(QDir(all.filePath(set)), look).isEmpty();
        });
    });
    QStringList screens;
    for (const QString& set : sets) {
        const QDir one(all.filePath(set));
        for (const QString& look : looks) {
            const QStringList there = ScreensOf(one, look);
            for (const QString& screen : there) {
                if (!screens.contains(screen)) screens << screen;
            }
            MakeSheet(one, look, there, all.filePath(set + look + QStringLiteral(".png")));
        }
    }
    screens.sort();
    WriteIndex(all, sets, looks, screens);
    return static_cast<int>(sets.size());
}

// Draws a picture in several sizes:
//
//   makeicons PICTURE.svg FOLDER SIZE...
//
// makes FOLDER/SIZE.png for each, so many pixels each way.

#include <QDir>
#include <QGuiApplication>
#include <QImageReader>

#include <cstdio>

namespace {

bool Draw(const QString& picture, const QString& folder, int size) {
    QImageReader reader(picture);
    reader.setScaledSize(QSize(size, size));
    const QImage image = reader.read();
    if (!image.isNull() && image.save(folder + QStringLiteral("/%1.png").arg(size))) return true;
    std::fprintf(stderr, "makeicons: %s at %d: %s\n", qPrintable(picture), size,
                 qPrintable(reader.errorString()));
    return false;
}

} // namespace

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() < 4) {
        std::fputs("makeicons PICTURE.svg FOLDER SIZE...\n", stderr);
        return 2;
    }
    QDir().mkpath(arguments[2]);
    for (const QString& size : arguments.mid(3)) {
        if (size.toInt() < 1 || !Draw(arguments[1], arguments[2], size.toInt())) return 1;
    }
    return 0;
}

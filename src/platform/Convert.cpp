#include "platform/Convert.h"

#include "core/CodePage.h"

#include <QTextDocument>

namespace {

QString FromUtf8(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

} // namespace

QString ToQt(const Text& text) {
    return FromUtf8(text.Utf8());
}
QString ToQt(std::string_view codePage) {
    return FromUtf8(CodePageToUtf8(codePage));
}
std::string FromQt(const QString& text) {
    return Utf8ToCodePage(text.toStdString());
}
QString PathToQt(std::string_view path) {
    return FromUtf8(path);
}
std::string PathFromQt(const QString& path) {
    return path.toStdString();
}

QString PlainTip(const QString& text) {
    return Qt::mightBeRichText(text) ? QStringLiteral("<p>%1</p>").arg(text.toHtmlEscaped()) : text;
}

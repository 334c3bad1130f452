#include "help/forms/HelpPage.h"

#include "help/forms/HelpFile.h"

#include <algorithm>

namespace {

constexpr int SmallestZoom = -4, LargestZoom = 12;
const QString WordsScheme = QStringLiteral("words");

} // namespace

HelpPage::HelpPage(QWidget* parent) : QTextBrowser(parent) {
    // Where a link leads is decided by who shows the page.
    setOpenLinks(false);
    connect(this, &QTextBrowser::anchorClicked, this, &HelpPage::Followed);
}

void HelpPage::ShowPage(const QUrl& address) {
    setSource(address, QTextDocument::HtmlResource);
}

void HelpPage::ShowWords(const QString& title, const QString& words) {
    const QString html =
        QStringLiteral("<html><head><title>%1</title></head><body><h2>%1</h2><p>%2</p></body></html>")
            .arg(title.toHtmlEscaped(),
                 words.toHtmlEscaped().replace(QLatin1Char('\n'), QLatin1String("<br>")));
    const QString address = WordsScheme + QLatin1Char(':') + QString::number(words_.size() + 1);
    words_.insert(address, html);
    setSource(QUrl(address), QTextDocument::HtmlResource);
}

void HelpPage::Zoom(int steps) {
    const int zoom = std::clamp(zoom_ + steps, SmallestZoom, LargestZoom);
    zoomIn(zoom - zoom_);
    zoom_ = zoom;
}

QVariant HelpPage::loadResource(int type, const QUrl& name) {
    if (name.scheme() == WordsScheme) return words_.value(name.toString());
    // Nothing is loaded but out of the file: no page reaches the disk or the network.
    if (!file_) return {};
    const QUrl address = file_->Find(source().resolved(name));
    if (address.isEmpty()) return type == QTextDocument::HtmlResource ? QVariant(QString()) : QVariant();
    return file_->Data(address);
}

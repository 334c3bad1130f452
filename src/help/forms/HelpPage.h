#pragma once

#include <QHash>
#include <QTextBrowser>

class HelpFile;

/// Where a page of the help is shown, with the way back and forward. A page can also be words of the
/// program, which has its place on that way like any other.
class HelpPage final : public QTextBrowser {
    Q_OBJECT

public:
    explicit HelpPage(QWidget* parent = nullptr);

    /// The file that pages and pictures come from; it lives as long as this does. nullptr for none.
    void SetFile(const HelpFile* file) { file_ = file; }

    /// An address of the file, in its spelling.
    void ShowPage(const QUrl& address);
    void ShowWords(const QString& title, const QString& words);

    /// Makes letters larger by so many steps, or smaller; they stay within what can be read.
    void Zoom(int steps);
    int ZoomSteps() const { return zoom_; }

    QVariant loadResource(int type, const QUrl& name) override;

signals:
    /// A link was followed; its full address.
    void Followed(const QUrl& address);

private:
    const HelpFile* file_ = nullptr;
    QHash<QString, QString> words_; ///< pages of the program by their addresses
    int zoom_ = 0;
};

#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QTemporaryDir>
#include <QUrl>

#include <memory>

class QHelpContentModel;
class QHelpEngine;
class QHelpIndexModel;
struct QHelpLink;

/// A help file that is read: a database of pages and pictures with contents and keywords, as the build makes
/// it of resources/help. What reading it needs to keep (a collection and the index of words) lies in a
/// temporary folder of its own, so that programs do not meet in it, and goes with it.
class HelpFile final : public QObject {
    Q_OBJECT

public:
    enum class State {
        Open,
        Missing,
        Broken,  ///< damaged, or no help file
        NoFolder ///< the temporary folder cannot be made
    };

    struct Hit {
        QUrl Topic;
        QString Title;
    };

    /// A full path.
    explicit HelpFile(const QString& path);
    ~HelpFile() override;

    State Condition() const { return state_; }
    const QString& Path() const { return path_; }
    /// Where the temporary folder was to be.
    QString TemporaryPath() const { return folder_.path(); }

    /// The address of a page or a picture of the file in its own spelling: by its name, or by an address,
    /// regardless of case. What stands behind "#" is kept. Empty when there is none.
    QUrl Find(const QString& name) const;
    QUrl Find(const QUrl& address) const;

    /// All pages, in the order of their names.
    QList<QUrl> Pages() const;

    QByteArray Data(const QUrl& address) const;
    QString TitleOf(const QUrl& page) const;

    QList<QHelpLink> TopicsOfKeyword(const QString& keyword);
    QList<QHelpLink> TopicsOfIdentifier(const QString& identifier) const;

    /// Filled a moment after the file was opened; nullptr when it could not be.
    QHelpContentModel* Contents() const;
    QHelpIndexModel* Keywords() const;

    /// Looks for the pages that have every word, or a word that begins with it: SearchFinished follows, from
    /// the event loop. False when there is no word in the text.
    bool Search(const QString& words);
    bool IsSearching() const { return !wanted_.isEmpty() || searching_; }
    QList<Hit> Hits() const;

signals:
    void SearchFinished();

private:
    void StartSearch();

    QString path_;
    QTemporaryDir folder_;
    State state_ = State::Missing;
    std::unique_ptr<QHelpEngine> engine_;
    QHash<QString, QUrl> files_; ///< by the path in small letters
    QString root_;               ///< of all addresses, with a slash at its end
    QString wanted_;             ///< a search that waits for the index of words
    bool keywordsRead_ = false;
    bool indexed_ = false;
    bool searching_ = false;
};

#include "help/forms/HelpFile.h"

#include "platform/QuietWait.h"

#include <QDir>
#include <QFileInfo>
#include <QHelpContentModel>
#include <QHelpEngine>
#include <QHelpIndexModel>
#include <QHelpLink>
#include <QHelpSearchEngine>
#include <QRegularExpression>

#include <algorithm>

namespace {

/// What the engine is asked for: every word, or a beginning of one, in any order. A word in quotes is no
/// operator of its language.
QString QueryFor(const QString& words) {
    static const QRegularExpression separators(QStringLiteral("[^\\w]+"),
                                               QRegularExpression::UseUnicodePropertiesOption);
    QStringList parts;
    for (const QString& word : words.split(separators, Qt::SkipEmptyParts))
        parts << QLatin1Char('"') + word + QStringLiteral("\"*");
    return parts.join(QLatin1Char(' '));
}

} // namespace

HelpFile::HelpFile(const QString& path)
    : path_(path),
      folder_(QDir::tempPath() + QStringLiteral("/ZUKHelp-XXXXXX")) {
    if (!QFileInfo::exists(path)) return;
    if (!folder_.isValid()) {
        state_ = State::NoFolder;
        return;
    }
    state_ = State::Broken;
    const QString name = QHelpEngineCore::namespaceName(path);
    if (name.isEmpty()) return;
    engine_ = std::make_unique<QHelpEngine>(folder_.filePath(QStringLiteral("help.qhc")));
    engine_->setReadOnly(false);
    if (engine_->setupData() && engine_->registerDocumentation(path)) {
        for (const QUrl& file : engine_->files(name, QString())) files_.insert(file.path().toLower(), file);
    }
    if (files_.isEmpty()) {
        engine_.reset();
        return;
    }
    // Every address begins with the name of the file's folder.
    const QUrl& any = *files_.cbegin();
    root_ = any.scheme() + QStringLiteral("://") + any.authority() +
            any.path().section(QLatin1Char('/'), 0, 1) + QLatin1Char('/');
    state_ = State::Open;
    connect(engine_->searchEngine(), &QHelpSearchEngine::indexingFinished, this, [this] {
        indexed_ = true;
        StartSearch();
    });
    connect(engine_->searchEngine(), &QHelpSearchEngine::searchingFinished, this, [this] {
        searching_ = false;
        if (!IsSearching()) emit SearchFinished();
    });
    connect(engine_->indexModel(), &QHelpIndexModel::indexCreated, this, [this] { keywordsRead_ = true; });
    engine_->contentModel()->createContents(QString());
    engine_->indexModel()->createIndex(QString());
}

HelpFile::~HelpFile() = default;

QUrl HelpFile::Find(const QString& name) const {
    QUrl address(root_);
    address.setPath(address.path() + name.section(QLatin1Char('#'), 0, 0));
    if (name.contains(QLatin1Char('#'))) address.setFragment(name.section(QLatin1Char('#'), 1));
    return Find(address);
}

QUrl HelpFile::Find(const QUrl& address) const {
    QUrl found = files_.value(address.path().toLower());
    if (!found.isEmpty() && address.hasFragment()) found.setFragment(address.fragment());
    return found;
}

QList<QUrl> HelpFile::Pages() const {
    QList<QUrl> pages;
    for (const QUrl& file : files_) {
        if (file.path().endsWith(QLatin1String(".htm"), Qt::CaseInsensitive)) pages << file;
    }
    std::sort(pages.begin(), pages.end());
    return pages;
}

QByteArray HelpFile::Data(const QUrl& address) const {
    return engine_ ? engine_->fileData(address.adjusted(QUrl::RemoveFragment)) : QByteArray();
}

QString HelpFile::TitleOf(const QUrl& page) const {
    static const QRegularExpression title(QStringLiteral("<title>(.*?)</title>"),
                                          QRegularExpression::CaseInsensitiveOption |
                                              QRegularExpression::DotMatchesEverythingOption);
    const QString words = title.match(QString::fromUtf8(Data(page))).captured(1).simplified();
    return words.isEmpty() ? page.fileName() : words;
}

QList<QHelpLink> HelpFile::TopicsOfKeyword(const QString& keyword) {
    if (!engine_) return {};
    QList<QHelpLink> exact = engine_->documentsForKeyword(keyword);
    if (!exact.isEmpty()) return exact;
    WaitWithoutInput([this] { return !keywordsRead_; });
    for (const QString& known : Keywords()->stringList()) {
        if (known.compare(keyword, Qt::CaseInsensitive) == 0) return engine_->documentsForKeyword(known);
    }
    return {};
}

QList<QHelpLink> HelpFile::TopicsOfIdentifier(const QString& identifier) const {
    return engine_ ? engine_->documentsForIdentifier(identifier) : QList<QHelpLink>();
}

QHelpContentModel* HelpFile::Contents() const {
    return engine_ ? engine_->contentModel() : nullptr;
}

QHelpIndexModel* HelpFile::Keywords() const {
    return engine_ ? engine_->indexModel() : nullptr;
}

// ---- search ----

bool HelpFile::Search(const QString& words) {
    const QString query = QueryFor(words);
    if (!engine_ || query.isEmpty()) return false;
    const bool waits = !wanted_.isEmpty();
    wanted_ = query;
    if (indexed_)
        StartSearch();
    else if (!waits)
        engine_->searchEngine()->reindexDocumentation();
    return true;
}

void HelpFile::StartSearch() {
    if (wanted_.isEmpty()) return;
    searching_ = true;
    engine_->searchEngine()->search(std::exchange(wanted_, QString()));
}

QList<HelpFile::Hit> HelpFile::Hits() const {
    QList<Hit> hits;
    if (!engine_) return hits;
    const auto* search = engine_->searchEngine();
    for (const QHelpSearchResult& result : search->searchResults(0, search->searchResultCount())) {
        const QUrl page = Find(result.url());
        if (!page.isEmpty()) hits << Hit{page, TitleOf(page)};
    }
    return hits;
}

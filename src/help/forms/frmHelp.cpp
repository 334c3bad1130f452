#include "help/forms/frmHelp.h"

#include "core/Catalogue.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "help/HelpReport.h"
#include "help/HelpTopics.h"
#include "help/forms/HelpFile.h"
#include "platform/Convert.h"
#include "platform/Look.h"
#include "platform/Registry.h"
#include "platform/WindowPlace.h"
#include "views/forms/PrintReport.h"

#include <QHelpContentModel>
#include <QHelpIndexModel>
#include <QHelpLink>
#include <QShortcut>
#include <QTabBar>
#include <QTextBlock>
#include <QTextList>
#include <QTextTable>

#include <utility>

namespace {

constexpr int AddressRole = Qt::UserRole;
constexpr int PaneWidth = 225; // pixels; a picture of a page has room beside it

/// What the registry keeps of the window: its place, the width of the pane, the steps of the letters.
enum Kept { Left, Top, Width, Height, Pane, Zoom, KeptNumbers };

QModelIndex PlaceIn(const QHelpContentModel& contents, const QUrl& page, const QModelIndex& below = {}) {
    for (int row = 0; row < contents.rowCount(below); ++row) {
        const QModelIndex at = contents.index(row, 0, below);
        if (contents.contentItemAt(at)->url().path().compare(page.path(), Qt::CaseInsensitive) == 0)
            return at;
        if (const QModelIndex found = PlaceIn(contents, page, at); found.isValid()) return found;
    }
    return {};
}

void Add(QListWidget& list, const QString& title, const QUrl& address) {
    auto* item = new QListWidgetItem(title, &list);
    item->setData(AddressRole, address);
    item->setToolTip(PlainTip(title));
}

Text TextOf(const QString& words) {
    return Text::Path(std::string_view(words.toStdString()));
}

/// The lines of a page that is printed: its words, without pictures; the cells of a table's row in one line.
std::vector<HelpParagraph> LinesOf(const QTextDocument& page) {
    std::vector<HelpParagraph> lines;
    QTextCursor cursor(const_cast<QTextDocument*>(&page));
    std::pair<const QTextTable*, int> lastRow{nullptr, -1};
    for (QTextBlock block = page.begin(); block.isValid(); block = block.next()) {
        QString words = block.text().remove(QChar::ObjectReplacementCharacter);
        words.replace(QChar::LineSeparator, QLatin1Char(' '));
        words = words.simplified();
        if (words.isEmpty()) continue;
        cursor.setPosition(block.position());
        const QTextTable* table = cursor.currentTable();
        const std::pair<const QTextTable*, int> row{table, table ? table->cellAt(cursor).row() : -1};
        if (const QTextList* list = block.textList()) {
            const bool isNumbered = list->format().style() == QTextListFormat::ListDecimal;
            words.prepend(isNumbered ? list->itemText(block) + QLatin1Char(' ') : QStringLiteral("- "));
        }
        if (table && row == lastRow)
            lines.back().Words += TextOf(QStringLiteral("   ") + words);
        else
            lines.push_back({TextOf(words), block.blockFormat().headingLevel() > 0});
        lastRow = row;
    }
    return lines;
}

} // namespace

frmHelp::frmHelp() {
    setupUi(this);
    const std::pair<QToolButton*, const char*> pictures[] = {
        {cmdBack, "help-back"},       {cmdForward, "help-forward"}, {cmdHome, "help-home"},
        {cmdSmaller, "help-smaller"}, {cmdLarger, "help-larger"},   {cmdFind, "help-find"},
        {cmdPrint, "help-print"},     {cmdOK, "find-close"},
    };
    for (const auto& [button, picture] : pictures) button->setIcon(Picture(picture));
    setWindowIcon(Picture("helpico16-256"));
    rtbTopic->setAccessibleName(ToQt(Text(msg::HelpPage)));
    tabHelp->setAccessibleName(ToQt(Text(msg::frmHelp)));
    barFind->SetColumn(ToQt(Text(msg::HelpThisPage)));
    lblFound->setText(ToQt(Text(msg::HelpTopicsFound)));
    lstFound->setAccessibleName(lblFound->text());
    for (QWidget* topics : {static_cast<QWidget*>(lblTopics), static_cast<QWidget*>(lstTopics)})
        topics->hide();
    for (QWidget* button : {cmdBack, cmdForward}) button->setEnabled(false);
    splHelp->setStretchFactor(1, 1);
    splHelp->setSizes({PaneWidth, width() - PaneWidth});
}

// ---- the window ----

void frmHelp::Form_Load() {
    TraceEvent("frmHelp:Form_Load");
    // The names of all panes stand side by side.
    tabHelp->setMinimumWidth(tabHelp->tabBar()->sizeHint().width());
    WireKeys();
    connect(rtbTopic, &QTextBrowser::backwardAvailable, cmdBack, &QWidget::setEnabled);
    connect(rtbTopic, &QTextBrowser::forwardAvailable, cmdForward, &QWidget::setEnabled);
    connect(rtbTopic, &QTextBrowser::sourceChanged, this, [this](const QUrl& page) {
        turnsToHit_ = false;
        MarkInContents(page);
    });
    connect(rtbTopic, &HelpPage::Followed, this,
            [this](const QUrl& address) { Run([&] { Follow(address); }); });
    connect(barFind, &FindBar::Find, this, [this](bool backwards) { FindInPage(backwards); });
    connect(barFind, &FindBar::Closed, this, [this] { CloseFindBar(); });
    connect(tvwContents, &QTreeView::activated, this, [this] { Run([this] { tvwContents_Click(); }); });
    connect(lstKeywords, &QListView::activated, this, [this] { Run([this] { cmdDisplay_Click(); }); });
    connect(txtKeyword, &QLineEdit::returnPressed, cmdDisplay, &QPushButton::click);
    connect(txtWords, &QLineEdit::returnPressed, cmdListTopics, &QPushButton::click);
    // Whoever goes along the tabs by the arrows stays there.
    connect(tabHelp, &QTabWidget::currentChanged, this, [this] {
        if (!tabHelp->tabBar()->hasFocus()) FocusPane();
    });
    RestorePlace();
}

void frmHelp::WireKeys() {
    const std::pair<QKeySequence, QAbstractButton*> keys[] = {
        {Qt::ALT | Qt::Key_Left, cmdBack},     {Qt::ALT | Qt::Key_Right, cmdForward},
        {Qt::ALT | Qt::Key_Home, cmdHome},     {QKeySequence::ZoomIn, cmdLarger},
        {Qt::CTRL | Qt::Key_Equal, cmdLarger}, {QKeySequence::ZoomOut, cmdSmaller},
        {QKeySequence::Find, cmdFind},         {QKeySequence::Print, cmdPrint},
    };
    for (const auto& [key, button] : keys)
        connect(new QShortcut(key, this), &QShortcut::activated, button, &QAbstractButton::click);
    connect(new QShortcut(Qt::Key_F3, this), &QShortcut::activated, this, [this] { FindInPage(false); });
    // From the panes to the page and back.
    connect(new QShortcut(Qt::Key_F6, this), &QShortcut::activated, this, [this] {
        if (rtbTopic->hasFocus())
            FocusPane();
        else
            rtbTopic->setFocus();
    });
}

void frmHelp::RestorePlace() {
    const QList<int> kept = Registry::WindowPlace(objectName());
    if (kept.size() != KeptNumbers) return;
    const QRect place(kept[Left], kept[Top], kept[Width], kept[Height]);
    if (const auto onScreen = PlaceOnScreen(place)) {
        setGeometry(*onScreen);
        splHelp->setSizes({kept[Pane], place.width() - kept[Pane]});
    }
    rtbTopic->Zoom(kept[Zoom]);
}

void frmHelp::KeepPlace() {
    const QRect place = normalGeometry().isValid() ? normalGeometry() : geometry();
    Registry::SetWindowPlace(objectName(), {place.left(), place.top(), place.width(), place.height(),
                                            splHelp->sizes().value(0), rtbTopic->ZoomSteps()});
}

void frmHelp::Form_Unload() {
    TraceEvent("frmHelp:Form_Unload");
    KeepPlace();
    SetFile(nullptr);
}

void frmHelp::cmdOK_Click() {
    TraceEvent("frmHelp:cmdOK_Click");
    Unload();
}

// ---- the file ----

void frmHelp::SetFile(HelpFile* file) {
    if (file == file_) return;
    if (file_) file_->disconnect(this);
    if (file_ && file_->Contents()) file_->Contents()->disconnect(this);
    file_ = file;
    rtbTopic->SetFile(file);
    const bool isOpen = file_ && file_->Condition() == HelpFile::State::Open;
    for (QWidget* pane : {tabContents, tabIndex, tabSearch}) pane->setEnabled(isOpen);
    cmdHome->setEnabled(isOpen);
    tvwContents->setModel(isOpen ? file_->Contents() : nullptr);
    lstKeywords->setModel(isOpen ? file_->Keywords() : nullptr);
    lstFound->clear();
    if (!isOpen) return;
    connect(file_, &HelpFile::SearchFinished, this, [this] { ShowHits(); });
    connect(file_->Contents(), &QHelpContentModel::contentsCreated, this,
            [this] { MarkInContents(rtbTopic->source()); });
}

/// Whether there is a file to be read. Otherwise it is told on the page why not.
bool frmHelp::CanRead() {
    if (!file_) return false;
    const auto tell = [this](MessageId why, const QString& path) {
        TraceEvent("frmHelp:" + KeyOf(why) + " " + FromQt(path));
        rtbTopic->ShowWords(windowTitle(), ToQt(Lines(Words(why, TextOf(path)), msg::HelpInstallAgain)));
        return false;
    };
    switch (file_->Condition()) {
    case HelpFile::State::Open:
        return true;
    case HelpFile::State::Missing:
        return tell(msg::HelpFileMissing, file_->Path());
    case HelpFile::State::Broken:
        return tell(msg::HelpFileBroken, file_->Path());
    case HelpFile::State::NoFolder:
        return tell(msg::HelpFolderFailed, file_->TemporaryPath());
    }
    return false;
}

// ---- topics ----

void frmHelp::ShowTopic(const QString& topic) {
    if (!CanRead()) return;
    const QUrl address = file_->Find(topic);
    if (!address.isEmpty()) return ShowPage(address);
    TraceEvent("frmHelp:NoTopic " + FromQt(topic));
    rtbTopic->ShowWords(windowTitle(), ToQt(Words(msg::HelpTopicMissing, TextOf(topic))));
}

void frmHelp::ShowPage(const QUrl& address) {
    turnsToHit_ = false;
    if (address != rtbTopic->source()) rtbTopic->ShowPage(address);
    rtbTopic->setFocus();
}

void frmHelp::ShowNotice(const Text& title, const Text& words) {
    rtbTopic->ShowWords(ToQt(title), ToQt(words));
}

void frmHelp::ShowPane(HelpPane pane) {
    if (!CanRead()) return;
    if (rtbTopic->source().isEmpty()) ShowTopic(ToQt(HomeTopic));
    QWidget* const tabs[] = {tabContents, tabIndex, tabSearch};
    tabHelp->setCurrentWidget(tabs[static_cast<std::size_t>(pane)]);
    FocusPane();
}

/// To where the keys begin in the pane that is shown.
void frmHelp::FocusPane() {
    const QWidget* tab = tabHelp->currentWidget();
    QWidget* const first = tab == tabContents ? static_cast<QWidget*>(tvwContents)
                           : tab == tabIndex  ? static_cast<QWidget*>(txtKeyword)
                                              : static_cast<QWidget*>(txtWords);
    first->setFocus();
}

void frmHelp::Follow(const QUrl& address) {
    TraceEvent("frmHelp:Follow");
    // A place on the same page.
    if (address.path().isEmpty() && address.hasFragment())
        return rtbTopic->scrollToAnchor(address.fragment());
    if (const QUrl page = file_ ? file_->Find(address) : QUrl();
        !page.isEmpty() && address.scheme() == page.scheme()) {
        return ShowPage(page);
    }
    const QString scheme = address.scheme();
    if (scheme != QLatin1String("http") && scheme != QLatin1String("https") &&
        scheme != QLatin1String("mailto"))
        return ShowTopic(address.fileName());
    const Text link = TextOf(address.toString(QUrl::FullyEncoded));
    if (!AskYesNo(Lines(msg::HelpOpenOutside, link))) return;
    if (!Global.TheOperator->OpenLink(link.CodePage())) Tell(Lines(msg::HelpNotOpened, link), Icon::Stop);
}

void frmHelp::cmdBack_Click() {
    rtbTopic->backward();
}

void frmHelp::cmdForward_Click() {
    rtbTopic->forward();
}

void frmHelp::cmdHome_Click() {
    TraceEvent("frmHelp:cmdHome_Click");
    ShowTopic(ToQt(HomeTopic));
}

void frmHelp::cmdSmaller_Click() {
    rtbTopic->Zoom(-1);
}

void frmHelp::cmdLarger_Click() {
    rtbTopic->Zoom(1);
}

void frmHelp::cmdPrint_Click() {
    TraceEvent("frmHelp:cmdPrint_Click");
    const QString title = rtbTopic->documentTitle();
    HelpReport report(TextOf(title.isEmpty() ? windowTitle() : title), LinesOf(*rtbTopic->document()));
    PrintReport(*this, report);
}

// ---- contents ----

void frmHelp::tvwContents_Click() {
    if (!file_ || !file_->Contents()) return;
    const QHelpContentItem* item = file_->Contents()->contentItemAt(tvwContents->currentIndex());
    if (item) rtbTopic->ShowPage(file_->Find(item->url()));
}

/// The page that is shown is the one that is marked among the contents.
void frmHelp::MarkInContents(const QUrl& page) {
    if (!file_ || !file_->Contents()) return;
    const QModelIndex at = PlaceIn(*file_->Contents(), page);
    for (QModelIndex above = at.parent(); above.isValid(); above = above.parent()) tvwContents->expand(above);
    tvwContents->setCurrentIndex(at);
    if (at.isValid()) tvwContents->scrollTo(at);
}

// ---- index ----

void frmHelp::txtKeyword_Change() {
    if (!file_ || !file_->Keywords()) return;
    lstKeywords->setCurrentIndex(file_->Keywords()->filter(txtKeyword->text()));
}

void frmHelp::lstKeywords_Click() {
    cmdDisplay_Click();
}

void frmHelp::cmdDisplay_Click() {
    TraceEvent("frmHelp:cmdDisplay_Click");
    if (!file_ || !file_->Keywords()) return;
    const QString keyword = lstKeywords->currentIndex().data().toString();
    if (!keyword.isEmpty()) ShowTopicsOf(file_->TopicsOfKeyword(keyword));
}

void frmHelp::ShowKeyword(const QString& keyword) {
    ShowPane(HelpPane::Index);
    if (!CanRead()) return;
    txtKeyword->setText(keyword);
    ShowTopicsOf(file_->TopicsOfKeyword(keyword));
}

/// The first of several topics is shown; the list of them stays there for the others.
void frmHelp::ShowTopicsOf(const QList<QHelpLink>& topics) {
    lstTopics->clear();
    for (const QHelpLink& topic : topics) Add(*lstTopics, topic.title, file_->Find(topic.url));
    for (QWidget* each : {static_cast<QWidget*>(lblTopics), static_cast<QWidget*>(lstTopics)})
        each->setVisible(topics.size() > 1);
    if (!topics.isEmpty()) lstTopics->setCurrentRow(0);
}

void frmHelp::lstTopics_Click() {
    if (const auto* item = lstTopics->currentItem()) rtbTopic->ShowPage(item->data(AddressRole).toUrl());
}

// ---- search ----

void frmHelp::cmdListTopics_Click() {
    TraceEvent("frmHelp:cmdListTopics_Click");
    lstFound->clear();
    if (!file_) return;
    searches_ = turnsToHit_ = file_->Search(txtWords->text());
    lblFound->setText(ToQt(Text(searches_ ? msg::HelpSearching : msg::HelpEnterWords)));
}

void frmHelp::ShowHits() {
    if (!std::exchange(searches_, false)) return; // the search of a window that was closed meanwhile
    lstFound->clear();
    const QList<HelpFile::Hit> hits = file_->Hits();
    for (const HelpFile::Hit& hit : hits) Add(*lstFound, hit.Title, hit.Topic);
    lblFound->setText(
        ToQt(hits.isEmpty() ? Text(msg::HelpNoHits) : Words(msg::HelpTopicsFound, Text::Value(hits.size()))));
    if (hits.isEmpty() || !turnsToHit_) return; // whoever has opened a page meanwhile reads it
    lstFound->setCurrentRow(0);                 // and so it is shown
    if (tabSearch->isAncestorOf(focusWidget())) lstFound->setFocus();
}

void frmHelp::lstFound_Click() {
    if (const auto* item = lstFound->currentItem()) rtbTopic->ShowPage(item->data(AddressRole).toUrl());
}

// ---- find in the page ----

void frmHelp::cmdFind_Click() {
    barFind->show();
    barFind->SayNotFound(false);
    barFind->TakeFocus();
}

void frmHelp::FindInPage(bool backwards) {
    if (!barFind->isVisible()) return cmdFind_Click();
    const QString words = barFind->Text();
    if (words.isEmpty()) return;
    const auto flags = backwards ? QTextDocument::FindBackward : QTextDocument::FindFlags();
    bool found = rtbTopic->find(words, flags);
    if (!found) {
        // Once round.
        const QTextCursor before = rtbTopic->textCursor();
        rtbTopic->moveCursor(backwards ? QTextCursor::End : QTextCursor::Start);
        found = rtbTopic->find(words, flags);
        if (!found) rtbTopic->setTextCursor(before);
    }
    barFind->SayNotFound(!found);
}

void frmHelp::CloseFindBar() {
    barFind->hide();
    rtbTopic->setFocus();
}

#pragma once

#include "core/Text.h"
#include "help/HTMLHelp.h"
#include "platform/Form.h"
#include "ui_frmHelp.h"

#include <QUrl>

class HelpFile;
struct QHelpLink;

/// The window of the help: contents, index and search beside the page. It is used beside all other screens,
/// and keeps its place, its size and the size of its letters.
class frmHelp final : public Form, private Ui::frmHelp {
    Q_OBJECT

public:
    frmHelp();

    /// It stays when the main screen turns to something else, and closes with the program.
    bool IsSecondary() const override { return false; }
    bool IsBeside() const override { return true; }

    /// The file that is shown, open or not; it lives until another one is given. nullptr for none.
    void SetFile(HelpFile* file);

    /// A topic by its name; one that is not there is told on a page.
    void ShowTopic(const QString& topic);
    void ShowPane(HelpPane pane);
    void ShowNotice(const Text& title, const Text& words);
    void ShowKeyword(const QString& keyword);

private slots:
    void cmdBack_Click();
    void cmdForward_Click();
    void cmdHome_Click();
    void cmdSmaller_Click();
    void cmdLarger_Click();
    void cmdFind_Click();
    void cmdPrint_Click();
    void cmdOK_Click();
    void tvwContents_Click();
    void txtKeyword_Change();
    void lstKeywords_Click();
    void lstTopics_Click();
    void cmdDisplay_Click();
    void cmdListTopics_Click();
    void lstFound_Click();

protected:
    void Form_Load() override;
    void Form_Unload() override;

private:
    void WireKeys();
    void RestorePlace();
    void KeepPlace();
    bool CanRead();
    void ShowPage(const QUrl& address);
    void Follow(const QUrl& address);
    void ShowTopicsOf(const QList<QHelpLink>& topics);
    void MarkInContents(const QUrl& page);
    void FocusPane();
    void ShowHits();
    void FindInPage(bool backwards);
    void CloseFindBar();

    HelpFile* file_ = nullptr;
    bool searches_ = false;   ///< this window has begun the search that runs
    bool turnsToHit_ = false; ///< and no page was asked for since
};

#pragma once

#include "core/Text.h"
#include "platform/Form.h"

#include <functional>
#include <string_view>
#include <utility>
#include <vector>

class QAbstractButton;
class QGridLayout;
class QHBoxLayout;
class QLabel;
class QScrollArea;
class QToolButton;

/// A page of the tour: a stage of the work in words, with the buttons that open its screens. All pages have
/// the same frame: the title, the labels that jump to the others, and the ways on and out. Left and right
/// with Alt turn the pages.
class QuickStartPage : public Form {
    Q_OBJECT

private slots:
    void lblOverview1_Click();
    void lblSetup1_Click();
    void lblAdd1_Click();
    void lblDownload1_Click();
    void lblUpload1_Click();
    void lblExport1_Click();
    void lblEnter1_Click();
    void cmdPrevious_Click();
    void cmdNext_Click();
    void cmdOK_Click();

protected:
    /// The pages, in the order in which they are turned.
    enum Page { QuickStart, Overview, SetupTables, AddMasters, Download, Upload, Export, Advanced, Pages };

    QuickStartPage(Page page, MessageId title);

    // What the page holds, from top to bottom. In the constructor.

    /// A paragraph.
    QLabel& AddText(MessageId text);

    /// A label that is clicked, alone in its row.
    QAbstractButton& AddLabel(const char* name, MessageId caption);

    /// A button, a label's name making it a label; what it is for; and an image that opens a topic of the
    /// help and bears the button's name as in `imgItemsHelp`. Without a topic there is none.
    QAbstractButton& AddStep(const char* name, MessageId caption, const char* picture, MessageId text,
                             const char* topic = nullptr);

    /// The image alone, beside the paragraph that was added last.
    void AddHelp(const char* name, const char* topic, MessageId about);

    void Form_Load() override;

    void Trace(std::string_view routine) const;

    /// Closes the page and opens another, or the same anew, in its place.
    void GoTo(std::string_view handler, Page page);

    /// Opens a screen, and is back at the page behind it.
    void Lead(std::string_view handler, const std::function<void()>& open);

    QLabel* lblQ1;
    QGridLayout* grdPage;
    QHBoxLayout* buttons_; ///< at the foot, in front of `cmdOK`

private:
    void MakeTitle(QLayout& frame);
    QWidget* MakeLabels();
    QScrollArea* MakePage();
    void MakeButtons(QLayout& frame);

    const Page page_;
    const MessageId title_;
    std::vector<std::pair<QAbstractButton*, const char*>> pictures_;
};

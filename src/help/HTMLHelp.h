#pragma once

#include "core/Text.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Whether a pop-up shows a text, or a section of a file in the help file.
enum class PopupType { Text, File };

/// A colour as red, green and blue, a byte each from the highest; nothing for that of the desktop's tool
/// tips.
using PopupColor = std::optional<std::uint32_t>;

/// A place on the screen, in pixels.
struct ScreenPlace {
    int Left = 0, Top = 0;
};

/// What a pop-up shows, and how.
struct PopupDefinition {
    std::string File;     ///< the help file and a file in it, joined by "::/"; empty: `Words` are shown
    std::uint32_t ID = 0; ///< of the section of that file
    Text Words;
    std::string Font; ///< name, size, character set and attributes, as "Arial, 10, ascii, Bold "
    PopupColor TextColor, BackColor;
};

/// A font as a definition's font field tells it.
struct PopupFont {
    std::string Name;
    int Points = 0;
    bool Bold = false, Italic = false, Underline = false;
    bool operator==(const PopupFont&) const = default;
};

/// Reads a font field; what is missing or makes no sense is the default, "Arial" and 10. Sizes are from 4 to
/// 72 points.
PopupFont ReadPopupFont(std::string_view field);

/// A section of a pop-up file: the lines behind a line ".topic" with its number, up to the next such line,
/// without blank lines at the end. Nothing when there is none.
std::optional<std::string> PopupSection(std::string_view file, std::uint32_t id);

/// The panes beside the page.
enum class HelpPane { Contents, Index, Search };

/// What shows the help. Topics are matched regardless of case. A topic or a file that is not there is told
/// to the operator in the window; nothing fails.
class HelpViewer {
public:
    virtual ~HelpViewer() = default;

    /// The help file from now on, a full path.
    virtual void SetFile(const std::string& path) = 0;
    /// Opens the window, or brings it to the front, with a topic.
    virtual void ShowTopic(const std::string& topic) = 0;
    /// The same with a pane, and the home topic when none was shown yet.
    virtual void ShowPane(HelpPane pane) = 0;
    /// The same with words of the caller in the place of a page.
    virtual void ShowNotice(const Text& title, const Text& words) = 0;
    /// The index with a keyword and its topics; the first of them is shown.
    virtual void ShowKeyword(const std::string& keyword) = 0;

    /// Topics with a keyword, regardless of its case, or with an identifier. Empty when there is none.
    virtual std::vector<std::string> TopicsOfKeyword(const std::string& keyword) = 0;
    virtual std::vector<std::string> TopicsOfIdentifier(const std::string& identifier) = 0;

    /// Whether the window stays above all others.
    virtual void SetOnTop(bool onTop) = 0;
    virtual void Close() = 0;
    /// The desktop's number of the window; 0 when it is not open.
    virtual std::uintptr_t Handle() const = 0;

    /// Shows a pop-up at a place, or at the mouse.
    virtual void ShowPopup(const PopupDefinition& popup, std::optional<ScreenPlace> place) = 0;
    /// The next click tells the hint of what it comes to, and does nothing else.
    virtual void BeginWhatsThis() = 0;
};

/// The help, addressed by topic: set what is to be shown, then call the operation that shows it.
class HTMLHelp {
public:
    explicit HTMLHelp(HelpViewer& viewer) : viewer_(viewer) {}

    std::string CHMFile;    ///< full path of the help file, in the file system's encoding
    std::string HHTopicURL; ///< file name of the topic that HHDisplayTopicURL opens; empty: the home topic
    std::uint32_t HHTopicID = 0;
    std::string HHKeyword, HHALink; ///< several names are parted by ";"
    std::string HHDefaultURL;       ///< topic that is shown where a keyword or a link leads nowhere
    Text HHMsgTitle, HHMsgText;     ///< what is said there when there is no such topic
    std::string HHWindow;           ///< name of the window; there is one, whatever its name
    bool HHShowOnTop = false;       ///< the window stays above all others

    PopupType HHPopupType = PopupType::Text;
    std::string HHPopupFile; ///< a text file in the help file
    std::uint32_t HHPopupID = 0;
    Text HHPopupText;
    std::string HHPopupTextFont, HHPopupTextSize; ///< empty: "Arial" and "10"
    bool HHPopupTextBold = false, HHPopupTextItalic = false, HHPopupTextUnderline = false;
    PopupColor HHPopupTextColor, HHPopupBackColor;
    bool HHPopupCustomColors = false; ///< the two below count, and not the two above
    PopupColor HHPopupCustomTextColor, HHPopupCustomBackColor;

    /// Takes a help file, a full path. False when it cannot be read; the help says so when it is opened.
    bool HHSetHelpFile(const std::string& path);
    /// Whether it is there now.
    bool EnsureFileExists() const;

    // Each opens the window where it is not open. Behind a keyword or a link without a topic stands
    // HHDefaultURL, else HHMsgTitle and HHMsgText.
    void HHDisplayTopicURL(); ///< HHTopicURL
    void HHDisplayTopicID();  ///< HHTopicID
    void HHDisplayContents();
    void HHDisplayIndex();
    void HHDisplaySearch();
    void HHDisplayKeyword(); ///< HHKeyword
    void HHDisplayALink();   ///< HHALink
    void HHClose();          ///< a window that is not open is no failure

    /// What HHDisplayPopup shows.
    PopupDefinition Popup() const;
    void HHDisplayPopup(std::optional<ScreenPlace> place = std::nullopt);
    /// See HelpViewer::BeginWhatsThis.
    void HHInvokeWhatsThisHelp();

    /// The desktop's number of the help's window; 0 when it is not open.
    std::uintptr_t HHWndHandle() const { return viewer_.Handle(); }

private:
    void Prepare();
    void ShowElsewhere(const std::string& names);

    HelpViewer& viewer_;
};

/// Where the help file of a program lies: beside the program, or in the application directory; beside the
/// program when it is in neither. Folders with or without a trailing separator.
std::string HelpFilePath(std::string_view programFolder, std::string_view appPath);

/// Opens a topic in the help of the session.
void ShowHelpTopic(const std::string& topic);

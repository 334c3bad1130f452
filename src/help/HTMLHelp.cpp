#include "help/HTMLHelp.h"

#include "core/Disk.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "core/Trace.h"
#include "help/HelpTopics.h"

#include <charconv>

namespace {

constexpr std::string_view DefaultFont = "Arial", DefaultSize = "10", CharacterSet = ", ascii, ";
constexpr int DefaultPoints = 10, LeastPoints = 4, MostPoints = 72;
constexpr std::string_view HelpFileName = "Tramble_Help.qch";
constexpr std::string_view SectionMark = ".topic";

std::string_view Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\r");
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

/// The next piece of a text up to a separator, which is taken off with it.
std::string_view NextPiece(std::string_view& rest, char separator) {
    const std::size_t end = rest.find(separator);
    const std::string_view piece = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    return piece;
}

template <class Number>
std::optional<Number> WholeNumber(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

} // namespace

// ---- pop-ups ----

PopupFont ReadPopupFont(std::string_view field) {
    PopupFont font;
    const std::string_view name = Trimmed(NextPiece(field, ','));
    const int points = WholeNumber<int>(Trimmed(NextPiece(field, ','))).value_or(DefaultPoints);
    NextPiece(field, ',');
    font.Name = name.empty() ? DefaultFont : name;
    font.Points = points < LeastPoints || points > MostPoints ? DefaultPoints : points;
    while (!field.empty()) {
        const std::string_view attribute = NextPiece(field, ' ');
        font.Bold |= attribute == "Bold";
        font.Italic |= attribute == "Italic";
        font.Underline |= attribute == "Underline";
    }
    return font;
}

std::optional<std::string> PopupSection(std::string_view file, std::uint32_t id) {
    std::optional<std::string> section;
    while (!file.empty()) {
        const std::string_view line = NextPiece(file, '\n');
        if (line.starts_with(SectionMark)) {
            if (section) break;
            if (WholeNumber<std::uint32_t>(Trimmed(line.substr(SectionMark.size()))) == id) section = "";
        } else if (section) {
            *section += line.substr(0, line.find_last_not_of('\r') + 1);
            *section += '\n';
        }
    }
    while (section && section->ends_with('\n')) section->pop_back();
    return section;
}

PopupDefinition HTMLHelp::Popup() const {
    PopupDefinition popup;
    if (HHPopupType == PopupType::File) {
        popup.File = CHMFile + "::/" + HHPopupFile;
        popup.ID = HHPopupID;
    } else {
        popup.Words = HHPopupText;
    }
    popup.Font = HHPopupTextFont.empty() ? DefaultFont : HHPopupTextFont;
    popup.Font += ", ";
    popup.Font += HHPopupTextSize.empty() ? DefaultSize : HHPopupTextSize;
    popup.Font += CharacterSet;
    if (HHPopupTextBold) popup.Font += "Bold ";
    if (HHPopupTextItalic) popup.Font += "Italic ";
    if (HHPopupTextUnderline) popup.Font += "Underline";
    popup.TextColor = HHPopupCustomColors ? HHPopupCustomTextColor : HHPopupTextColor;
    popup.BackColor = HHPopupCustomColors ? HHPopupCustomBackColor : HHPopupBackColor;
    return popup;
}

void HTMLHelp::HHDisplayPopup(std::optional<ScreenPlace> place) {
    TraceEvent("HTMLHelp:HHDisplayPopup");
    Prepare();
    viewer_.ShowPopup(Popup(), place);
}

void HTMLHelp::HHInvokeWhatsThisHelp() {
    TraceEvent("HTMLHelp:HHInvokeWhatsThisHelp");
    viewer_.BeginWhatsThis();
}

// ---- topics ----

bool HTMLHelp::HHSetHelpFile(const std::string& path) {
    CHMFile = path;
    return EnsureFileExists();
}

bool HTMLHelp::EnsureFileExists() const {
    return !CHMFile.empty() && FileExists(CHMFile);
}

void HTMLHelp::Prepare() {
    viewer_.SetFile(CHMFile);
    viewer_.SetOnTop(HHShowOnTop);
}

void HTMLHelp::HHDisplayTopicURL() {
    TraceEvent("HTMLHelp:HHDisplayTopicURL");
    Prepare();
    viewer_.ShowTopic(HHTopicURL.empty() ? std::string(HomeTopic) : HHTopicURL);
}

void HTMLHelp::HHDisplayTopicID() {
    TraceEvent("HTMLHelp:HHDisplayTopicID");
    Prepare();
    const std::string id = std::to_string(HHTopicID);
    const std::vector<std::string> topics = viewer_.TopicsOfIdentifier(id);
    // A number that no topic has is told as a topic of that name.
    viewer_.ShowTopic(topics.empty() ? id : topics.front());
}

void HTMLHelp::HHDisplayContents() {
    TraceEvent("HTMLHelp:HHDisplayContents");
    Prepare();
    viewer_.ShowPane(HelpPane::Contents);
}

void HTMLHelp::HHDisplayIndex() {
    TraceEvent("HTMLHelp:HHDisplayIndex");
    Prepare();
    viewer_.ShowPane(HelpPane::Index);
}

void HTMLHelp::HHDisplaySearch() {
    TraceEvent("HTMLHelp:HHDisplaySearch");
    Prepare();
    viewer_.ShowPane(HelpPane::Search);
}

void HTMLHelp::HHDisplayKeyword() {
    TraceEvent("HTMLHelp:HHDisplayKeyword");
    Prepare();
    std::string_view rest = HHKeyword;
    while (!rest.empty()) {
        const std::string keyword(Trimmed(NextPiece(rest, ';')));
        if (!viewer_.TopicsOfKeyword(keyword).empty()) return viewer_.ShowKeyword(keyword);
    }
    ShowElsewhere(HHKeyword);
}

void HTMLHelp::HHDisplayALink() {
    TraceEvent("HTMLHelp:HHDisplayALink");
    Prepare();
    std::string_view rest = HHALink;
    while (!rest.empty()) {
        const auto topics = viewer_.TopicsOfIdentifier(std::string(Trimmed(NextPiece(rest, ';'))));
        if (!topics.empty()) return viewer_.ShowTopic(topics.front());
    }
    ShowElsewhere(HHALink);
}

/// What stands in for a keyword or a link that leads nowhere.
void HTMLHelp::ShowElsewhere(const std::string& names) {
    if (!HHDefaultURL.empty()) return viewer_.ShowTopic(HHDefaultURL);
    const Text words = HHMsgText.IsEmpty() ? Words(msg::HelpKeywordMissing, Text::Value(names)) : HHMsgText;
    viewer_.ShowNotice(HHMsgTitle.IsEmpty() ? Text(msg::frmHelp) : HHMsgTitle, words);
}

void HTMLHelp::HHClose() {
    TraceEvent("HTMLHelp:HHClose");
    viewer_.Close();
}

std::string HelpFilePath(std::string_view programFolder, std::string_view appPath) {
    const std::string program = AddBackslash(programFolder);
    const std::string office = AddBackslash(appPath) + std::string(HelpFileName);
    const std::string beside = program + std::string(HelpFileName);
    return !FileExists(beside) && FileExists(office) ? office : beside;
}

void ShowHelpTopic(const std::string& topic) {
    if (!Global.TheHelp) return;
    Global.TheHelp->HHTopicURL = topic;
    Global.TheHelp->HHDisplayTopicURL();
}

#include "core/Catalogue.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/SafeFile.h"
#include "core/Trace.h"
#include "help/HelpTopics.h"
#include "hotsync/HotSyncUsers.h"
#include "hotsync/ManagerSettings.h"
#include "maintenance/Totals.h"
#include "support/EngineTest.h"
#include "sync/Receipt.h"
#include "tools/Notes.h"
#include "views/BoxReport.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

const std::string HelpFolder = TRAMBLE_SOURCE "/resources/help/";
const std::string ReadMePictures = TRAMBLE_SOURCE "/docs/pictures/";

void ReplaceAll(std::string& text, std::string_view what, std::string_view by) {
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size())
        text.replace(at, what.size(), by);
}

/// Text as a reader sees it: entities as characters, runs of white space as one blank.
std::string Shown(std::string text) {
    for (const auto& [entity, character] :
         {std::pair{"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&amp;", "&"}})
        ReplaceAll(text, entity, character);
    std::string shown;
    for (const char c : text) {
        const bool blank = c == ' ' || c == '\n' || c == '\r' || c == '\t';
        if (blank && (shown.empty() || shown.back() == ' ')) continue;
        shown += blank ? ' ' : c;
    }
    while (!shown.empty() && shown.back() == ' ') shown.pop_back();
    return shown;
}

/// The value of an attribute in the text of a tag; empty when it has none.
std::string Attribute(const std::string& tag, const std::string& name) {
    const std::size_t at = tag.find(' ' + name + "=\"");
    if (at == std::string::npos) return {};
    const std::size_t begin = at + name.size() + 3;
    return Shown(tag.substr(begin, tag.find('"', begin) - begin));
}

/// A page as far as it can be wrong.
struct Page {
    std::vector<std::string> Titles, Headings, Captions; ///< texts of title, h1 and b
    std::vector<std::string> Quotes;                     ///< what stands between quotes
    std::vector<std::string> Links, Pictures;            ///< targets of a and img
    std::vector<std::string> Faults;
    std::string Words; ///< all of its text
    bool SaysItsCharset = false;
};

Page ReadPage(const std::string& html) {
    static const std::set<std::string> Empty{"meta", "link", "img", "br", "hr", "!DOCTYPE"};
    static const std::set<std::string> Known{"html", "head",  "title", "body", "h1", "h2", "p", "ol", "ul",
                                             "li",   "table", "tr",    "th",   "td", "b",  "i", "a"};
    Page page;
    std::vector<std::pair<std::string, std::size_t>> open; // name, and where its content begins
    const auto textOf = [&](std::size_t begin, std::size_t end) {
        std::string text;
        bool inTag = false;
        for (const char c : html.substr(begin, end - begin)) {
            if (c == '<') inTag = true;
            if (!inTag) text += c;
            if (c == '>') inTag = false;
        }
        return Shown(text);
    };
    for (std::size_t at = html.find('<'); at != std::string::npos; at = html.find('<', at + 1)) {
        const std::size_t end = html.find('>', at);
        if (end == std::string::npos) {
            page.Faults.push_back("a tag without an end");
            break;
        }
        const std::string tag = html.substr(at + 1, end - at - 1);
        const std::string name = tag.substr(0, tag.find_first_of(" \n"));
        if (name == "img") page.Pictures.push_back(Attribute(tag, "src"));
        if (name == "img" && Attribute(tag, "alt").empty()) page.Faults.push_back("a picture without alt");
        if (name == "a") page.Links.push_back(Attribute(tag, "href"));
        if (name == "meta") page.SaysItsCharset = Attribute(tag, "charset") == "utf-8";
        if (Empty.contains(name)) continue;
        if (!name.starts_with('/')) {
            if (!Known.contains(name)) page.Faults.push_back("the tag " + name);
            open.emplace_back(name, end + 1);
            continue;
        }
        if (open.empty() || open.back().first != name.substr(1)) {
            page.Faults.push_back(name + " where " + (open.empty() ? "nothing" : open.back().first) +
                                  " is open");
            break;
        }
        const std::string text = textOf(open.back().second, at);
        if (name == "/title") page.Titles.push_back(text);
        if (name == "/h1") page.Headings.push_back(text);
        if (name == "/b") page.Captions.push_back(text);
        open.pop_back();
    }
    static const std::string Quote = "&quot;";
    for (std::size_t at = 0; (at = html.find(Quote, at)) != std::string::npos;) {
        const std::size_t begin = at + Quote.size();
        const std::size_t end = html.find(Quote, begin);
        if (end == std::string::npos) page.Faults.push_back("a quote that is not closed");
        page.Quotes.push_back(textOf(begin, end));
        at = end == std::string::npos ? end : end + Quote.size();
    }
    if (page.Faults.empty() && !open.empty()) page.Faults.push_back(open.back().first + " is not closed");
    page.Words = textOf(0, html.size());
    return page;
}

/// The pages as they are shipped, by their names.
const std::map<std::string, Page>& Pages() {
    static const std::map<std::string, Page> pages = [] {
        std::map<std::string, Page> read;
        for (const auto& file : fs::directory_iterator(HelpFolder)) {
            const std::string name = file.path().filename().string();
            if (file.path().extension() == ".htm") read[name] = ReadPage(ReadWholeFile(HelpFolder + name));
        }
        return read;
    }();
    return pages;
}

/// A caption as a page writes it: without what only a control needs.
std::string Plain(std::string caption) {
    if (caption.starts_with("---- ")) caption.erase(0, 5);
    while (caption.size() > 1 && std::string(":. ").find(caption.back()) != std::string::npos)
        caption.pop_back();
    return caption;
}

/// Captions of the catalogue with numbers in a range.
std::set<std::string> Captions(int first, int last) {
    std::set<std::string> captions;
    for (std::size_t k = 0; k < CatalogueRowCount; ++k) {
        const CatalogueRow& row = CatalogueRows[k];
        if (row.Number >= first && row.Number <= last) captions.insert(Plain(row.Words));
    }
    return captions;
}

/// Whether something on the screen is called so: one caption, or the way through a menu of the main screen.
bool IsOnTheScreen(const std::string& words) {
    static const std::set<std::string> all = Captions(0, 65535);
    static const std::set<std::string> menus = [] {
        std::set<std::string> entries = Captions(17000, 17399);
        for (const MessageId entry : {msg::mnuWhatsThis, msg::cmdManager})
            entries.merge(Captions(entry.Number, entry.Number));
        return entries;
    }();
    if (all.contains(Plain(words))) return true;
    std::size_t entries = 0;
    for (std::size_t at = 0; at != std::string::npos; ++entries) {
        const std::size_t end = words.find(" > ", at);
        if (!menus.contains(words.substr(at, end == std::string::npos ? end : end - at))) return false;
        at = end == std::string::npos ? end : end + 3;
    }
    return entries > 1;
}

/// Whether the program says so somewhere. Three dots stand for whatever it says there.
bool IsSaid(const std::string& quote) {
    static const std::string all = [] {
        std::string words;
        for (std::size_t k = 0; k < CatalogueRowCount; ++k) words += Shown(CatalogueRows[k].Words) + '\n';
        return words;
    }();
    for (std::size_t at = 0; at != std::string::npos;) {
        const std::size_t dots = quote.find("...", at);
        const std::string piece = Shown(quote.substr(at, dots == std::string::npos ? dots : dots - at));
        if (all.find(piece) == std::string::npos) return false;
        at = dots == std::string::npos ? dots : dots + 3;
    }
    return true;
}

/// Attributes of the elements of a name in the help's project file, in its order.
std::vector<std::pair<std::string, std::string>> Entries(const std::string& element,
                                                         const std::string& attribute) {
    static const std::string project = ReadWholeFile(HelpFolder + "Tramble_Help.qhp");
    std::vector<std::pair<std::string, std::string>> entries;
    for (std::size_t at = 0; (at = project.find('<' + element + ' ', at)) != std::string::npos; ++at) {
        const std::string tag = project.substr(at, project.find('>', at) - at);
        entries.emplace_back(Attribute(tag, "ref"), Attribute(tag, attribute));
    }
    return entries;
}

/// Width and colour type of a picture file; both 0 when it is none.
std::pair<int, int> HeadOfPng(const std::string& path) {
    const std::string bytes = fs::exists(path) ? ReadWholeFile(path) : std::string();
    if (bytes.size() < 33 || bytes.substr(1, 3) != "PNG") return {0, 0};
    const auto byte = [&](std::size_t at) { return static_cast<int>(static_cast<unsigned char>(bytes[at])); };
    return {byte(18) * 256 + byte(19), byte(25)};
}

constexpr int Indexed = 3;

std::set<std::string> PicturesIn(const std::string& folder) {
    std::set<std::string> names;
    if (!fs::exists(folder)) return names;
    for (const auto& file : fs::directory_iterator(folder)) names.insert(file.path().filename().string());
    return names;
}

class HelpPagesTest : public EngineTest {};

TEST_F(HelpPagesTest, APageThatIsWrittenWronglyIsFoundOut) {
    EXPECT_EQ(ReadPage("<p>one<b>two</p>").Faults, std::vector<std::string>{"/p where b is open"});
    EXPECT_EQ(ReadPage("<p>one</p><ol>").Faults, std::vector<std::string>{"ol is not closed"});
    EXPECT_EQ(ReadPage("<blink>x</blink>").Faults, std::vector<std::string>{"the tag blink"});
    EXPECT_EQ(ReadPage("<p>x<img src=\"a.png\"></p>").Faults,
              std::vector<std::string>{"a picture without alt"});
    EXPECT_EQ(ReadPage("<p>a <b>Save\n Settings</b> &amp; <b>Add &gt;</b></p>").Captions,
              (std::vector<std::string>{"Save Settings", "Add >"}));
}

TEST_F(HelpPagesTest, ACaptionThatNoScreenHasIsFoundOut) {
    EXPECT_TRUE(IsOnTheScreen("Save Settings"));
    EXPECT_TRUE(IsOnTheScreen("Saved Settings"));
    EXPECT_TRUE(IsOnTheScreen("Add >"));
    EXPECT_TRUE(IsOnTheScreen("File > Download > Clear Tables on Handheld"));
    EXPECT_FALSE(IsOnTheScreen("Store Settings"));
    EXPECT_FALSE(IsOnTheScreen("File > Rate"));
    EXPECT_FALSE(IsOnTheScreen("File > "));
    EXPECT_FALSE(IsOnTheScreen(""));
}

TEST_F(HelpPagesTest, AMessageThatTheProgramDoesNotGiveIsFoundOut) {
    EXPECT_EQ(ReadPage("<p>&quot;File\nError!&quot; and &quot;Yes&quot;</p>").Quotes,
              (std::vector<std::string>{"File Error!", "Yes"}));
    EXPECT_TRUE(IsSaid("File Error!"));
    EXPECT_TRUE(IsSaid("The HotSync Manager ... has refused. ..."));
    EXPECT_FALSE(IsSaid("File Mistake!"));
    EXPECT_FALSE(IsSaid("The HotSync Manager ... has declined. ..."));
}

TEST_F(HelpPagesTest, EachPageIsWellFormedAndHasItsTitleItsHeadingAndAPicture) {
    ASSERT_GT(Pages().size(), 40U);
    for (const auto& [name, page] : Pages()) {
        SCOPED_TRACE(name);
        EXPECT_EQ(page.Faults, std::vector<std::string>());
        EXPECT_TRUE(page.SaysItsCharset);
        EXPECT_EQ(page.Headings.size(), 1U);
        EXPECT_EQ(page.Titles, page.Headings);
        EXPECT_GE(page.Pictures.size(), 1U);
    }
}

TEST_F(HelpPagesTest, EachViewOfATableOpensAPageThatIsThere) {
    for (std::size_t flag = 0; flag < ViewFlags; ++flag) {
        for (const char* otherwise : {"INTRODUCTION.htm", "Viewing_Tables.htm"}) {
            const std::string topic = HelpTopicOfView(static_cast<ViewFlag>(flag), otherwise);
            EXPECT_TRUE(Pages().contains(topic)) << flag << ": " << topic;
        }
    }
}

TEST_F(HelpPagesTest, EachLinkLeadsToAPage) {
    for (const auto& [name, page] : Pages())
        for (const std::string& link : page.Links)
            EXPECT_TRUE(Pages().contains(link)) << name << " leads to " << link;
}

TEST_F(HelpPagesTest, EachPageCanBeReachedFromTheFirstOne) {
    std::set<std::string> reached{"INTRODUCTION.htm"};
    for (std::vector<std::string> next{"INTRODUCTION.htm"}; !next.empty();) {
        const Page page = Pages().at(next.back());
        next.pop_back();
        for (const std::string& link : page.Links)
            if (Pages().contains(link) && reached.insert(link).second) next.push_back(link);
    }
    for (const auto& [name, page] : Pages()) EXPECT_TRUE(reached.contains(name)) << name;
}

TEST_F(HelpPagesTest, EachPageStandsInTheContentsUnderItsTitle) {
    std::set<std::pair<std::string, std::string>> contents;
    for (const auto& [page, title] : Entries("section", "title")) {
        EXPECT_TRUE(Pages().contains(page)) << page;
        contents.emplace(page, title);
    }
    for (const auto& [name, page] : Pages())
        for (const std::string& title : page.Titles)
            EXPECT_TRUE(contents.contains({name, title})) << name << ": " << title;
}

TEST_F(HelpPagesTest, EachPageHasKeywordsAndANameOfItsOwn) {
    std::map<std::string, int> keywords;
    for (const auto& [page, keyword] : Entries("keyword", "name")) {
        EXPECT_TRUE(Pages().contains(page)) << page;
        EXPECT_FALSE(keyword.empty()) << page;
        ++keywords[page];
    }
    std::map<std::string, std::string> names;
    for (const auto& [page, id] : Entries("keyword", "id"))
        if (!id.empty()) {
            EXPECT_TRUE(names.emplace(page, id).second) << page;
        }
    for (const auto& [name, page] : Pages()) {
        EXPECT_GE(keywords[name], 2) << name;
        EXPECT_EQ(names[name] + ".htm", name);
    }
}

TEST_F(HelpPagesTest, WhatAPageWritesAsACaptionStandsOnAScreen) {
    for (const auto& [name, page] : Pages())
        for (const std::string& caption : page.Captions)
            EXPECT_TRUE(IsOnTheScreen(caption)) << name << ": " << caption;
}

TEST_F(HelpPagesTest, WhatAPageQuotesIsAMessageOfTheProgram) {
    for (const auto& [name, page] : Pages())
        for (const std::string& quote : page.Quotes) EXPECT_TRUE(IsSaid(quote)) << name << ": " << quote;
}

/// Records of a table of the demo company: the lines behind that of its fields.
std::string DemoRecords(const std::string& table) {
    const std::string lines = ReadWholeFile(TRAMBLE_SOURCE "/resources/demo/" + table + ".tsv");
    return std::to_string(std::ranges::count(lines, '\n') - 1);
}

TEST_F(HelpPagesTest, TheNumbersThatAPageTellsAreThoseOfTheProgram) {
    const auto says = [](const std::string& page, const std::string& words) {
        EXPECT_NE(Pages().at(page + ".htm").Words.find(words), std::string::npos) << page << ": " << words;
    };
    const ManagerSettings manager;
    says("Hotsync_Manager", manager.Address + ", as installed");
    says("Hotsync_Manager", "The Port is " + std::to_string(manager.Port));
    says("Hotsync_Manager", std::to_string(HotSyncUsers::LongestName) + " characters at most");
    says("Handheld_Status", "the last " + std::to_string(ReceiptsKept) + " of each handheld");
    says("Reports_and_Printing", std::to_string(UsualPageLength) + " where less than");
    says("Notes", "An issue has at most " + std::to_string(IssueLength) + " characters");
    says("Notes", "a resolution " + std::to_string(ResolutionLength));
    says("System_Information", "some " + std::to_string(TraceEntries / 100 * 100) + " are kept");
    says("Recent_Uploaded_Orders", std::to_string(MaxUploadRows) + " at most");
    says("Purging_Backup_PC_Tables", std::to_string(Globals().PurgeDays) + " days after they were made");
    for (const auto& [table, what] : {std::pair{"ZUKCust", "customers"},
                                      {"ZUKItem", "items"},
                                      {"ZUKSTAX", "sales tax codes"},
                                      {"ZUKPAY", "payments"},
                                      {"ZUKOrHdr", "orders"}})
        says("Demo_Company", DemoRecords(table) + ' ' + what);
}

TEST_F(HelpPagesTest, EachPictureIsThereIsNotTooLargeAndIsWanted) {
    std::set<std::string> wanted;
    for (const auto& [name, page] : Pages())
        for (const std::string& picture : page.Pictures) {
            ASSERT_TRUE(picture.starts_with("pictures/")) << name << ": " << picture;
            wanted.insert(picture.substr(9));
        }
    EXPECT_EQ(PicturesIn(HelpFolder + "pictures"), wanted);
    std::uintmax_t bytes = 0;
    for (const std::string& picture : wanted) {
        const std::string path = HelpFolder + "pictures/" + picture;
        const auto [width, colours] = HeadOfPng(path);
        EXPECT_TRUE(width > 0 && width <= 700) << picture << ": " << width;
        EXPECT_EQ(colours, Indexed) << picture;
        if (fs::exists(path)) bytes += fs::file_size(path);
    }
    EXPECT_LT(bytes, 1'500'000U);
}

TEST_F(HelpPagesTest, TheReadMeShowsTenScreensInSmallFiles) {
    const std::string readMe = ReadWholeFile(TRAMBLE_SOURCE "/README.md");
    std::set<std::string> shown;
    const std::string folder = "docs/pictures/";
    for (std::size_t at = 0; (at = readMe.find(folder, at)) != std::string::npos; ++at) {
        const std::size_t name = at + folder.size();
        shown.insert(readMe.substr(name, readMe.find(".png", name) + 4 - name));
    }
    EXPECT_EQ(shown.size(), 10U);
    EXPECT_EQ(PicturesIn(ReadMePictures), shown);
    for (const std::string& picture : shown) {
        EXPECT_EQ(HeadOfPng(ReadMePictures + picture).second, Indexed) << picture;
        if (fs::exists(ReadMePictures + picture)) {
            EXPECT_LT(fs::file_size(ReadMePictures + picture), 60'000U) << picture;
        }
    }
}

} // namespace

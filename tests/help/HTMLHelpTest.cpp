#include "help/HTMLHelp.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "help/HelpReport.h"
#include "help/HelpTopics.h"
#include "support/EngineTest.h"
#include "support/PaperInMemory.h"

#include <filesystem>
#include <map>

namespace {

/// A viewer that writes down what it is to show.
class WrittenViewer final : public HelpViewer {
public:
    std::vector<std::string> Shown;
    std::map<std::string, std::vector<std::string>> Keywords, Identifiers;
    std::optional<PopupDefinition> Popup;
    std::optional<ScreenPlace> Place;
    std::string File;
    bool OnTop = false;

    void SetFile(const std::string& path) override { File = path; }
    void ShowTopic(const std::string& topic) override { Shown.push_back("topic " + topic); }
    void ShowPane(HelpPane pane) override {
        Shown.push_back("pane " + std::to_string(static_cast<int>(pane)));
    }
    void ShowNotice(const Text& title, const Text& words) override {
        Shown.push_back("notice " + title.Utf8() + ": " + words.Utf8());
    }
    void ShowKeyword(const std::string& keyword) override { Shown.push_back("keyword " + keyword); }
    std::vector<std::string> TopicsOfKeyword(const std::string& keyword) override {
        return Keywords[keyword];
    }
    std::vector<std::string> TopicsOfIdentifier(const std::string& id) override { return Identifiers[id]; }
    void SetOnTop(bool onTop) override { OnTop = onTop; }
    void Close() override { Shown.push_back("closed"); }
    std::uintptr_t Handle() const override { return 7; }
    void ShowPopup(const PopupDefinition& popup, std::optional<ScreenPlace> place) override {
        Popup = popup;
        Place = place;
    }
    void BeginWhatsThis() override { Shown.push_back("what's this"); }
};

class HTMLHelpTest : public EngineTest {
protected:
    using Lines = std::vector<std::string>;

    WrittenViewer viewer_;
    HTMLHelp help_{viewer_};
};

// ---- topics ----

TEST_F(HTMLHelpTest, ATopicIsShownByItsNameOutOfTheHelpFile) {
    help_.HHSetHelpFile(Folder() + "Tramble_Help.qch");
    help_.HHTopicURL = "Notes.htm";
    help_.HHShowOnTop = true;

    help_.HHDisplayTopicURL();

    EXPECT_EQ(viewer_.Shown, Lines{"topic Notes.htm"});
    EXPECT_EQ(viewer_.File, Folder() + "Tramble_Help.qch");
    EXPECT_TRUE(viewer_.OnTop);
}

TEST_F(HTMLHelpTest, WithoutATopicTheHelpBeginsAtItsIntroduction) {
    help_.HHDisplayTopicURL();
    EXPECT_EQ(viewer_.Shown, Lines{"topic INTRODUCTION.htm"});
}

TEST_F(HTMLHelpTest, ATopicIsShownByItsNumberAndANumberThatNoneHasIsTold) {
    viewer_.Identifiers["12"] = {"Sales_Tax.htm"};
    help_.HHTopicID = 12;
    help_.HHDisplayTopicID();
    help_.HHTopicID = 13;
    help_.HHDisplayTopicID();
    EXPECT_EQ(viewer_.Shown, (Lines{"topic Sales_Tax.htm", "topic 13"}));
}

TEST_F(HTMLHelpTest, ContentsIndexAndSearchArePanesBesideThePage) {
    help_.HHDisplayContents();
    help_.HHDisplayIndex();
    help_.HHDisplaySearch();
    help_.HHClose();
    EXPECT_EQ(viewer_.Shown, (Lines{"pane 0", "pane 1", "pane 2", "closed"}));
    EXPECT_EQ(help_.HHWndHandle(), 7U);
}

TEST_F(HTMLHelpTest, TheFirstOfSeveralKeywordsThatLeadsSomewhereIsShown) {
    viewer_.Keywords["Barcode"] = {"Master_Tables.htm"};
    help_.HHKeyword = "Bar code; Barcode ;Scanner";
    help_.HHDisplayKeyword();
    EXPECT_EQ(viewer_.Shown, Lines{"keyword Barcode"});
}

TEST_F(HTMLHelpTest, ALinkByIdentifierIsShownAsATopic) {
    viewer_.Identifiers["taxes"] = {"Sales_Tax.htm", "Payments.htm"};
    help_.HHALink = "duty;taxes";
    help_.HHDisplayALink();
    EXPECT_EQ(viewer_.Shown, Lines{"topic Sales_Tax.htm"});
}

TEST_F(HTMLHelpTest, AKeywordThatLeadsNowhereShowsTheDefaultTopicOrTheMessageOrSaysSo) {
    help_.HHKeyword = help_.HHALink = "Unicorn";
    help_.HHDisplayKeyword();
    help_.HHMsgTitle = Text::Value(std::string_view("Sorry"));
    help_.HHMsgText = Text::Value(std::string_view("No such beast."));
    help_.HHDisplayALink();
    help_.HHDefaultURL = "QuickStart.htm";
    help_.HHDisplayKeyword();
    EXPECT_EQ(viewer_.Shown,
              (Lines{"notice ZUK Tramble PC Help: The help has no topic with this keyword: Unicorn",
                     "notice Sorry: No such beast.", "topic QuickStart.htm"}));
}

TEST_F(HTMLHelpTest, AHelpFileIsThereOrNotWhateverItsCase) {
    EXPECT_FALSE(help_.EnsureFileExists());
    EXPECT_FALSE(help_.HHSetHelpFile(Folder() + "Tramble_Help.qch"));
    GivenFile("TRAMBLE_help.QCH", "x");
    EXPECT_TRUE(help_.EnsureFileExists());
}

TEST_F(HTMLHelpTest, TheHelpFileBesideTheProgramGoesBeforeTheOfficesOwn) {
    const std::string office = GivenFile("office/Tramble_Help.qch", "old");
    EXPECT_EQ(HelpFilePath(Folder() + "bin", Folder() + "office"), office);
    EXPECT_EQ(HelpFilePath(Folder() + "bin", Folder() + "elsewhere/"), Folder() + "bin/Tramble_Help.qch");
    GivenFile("bin/Tramble_Help.qch", "new");
    EXPECT_EQ(HelpFilePath(Folder() + "bin/", Folder() + "office/"), Folder() + "bin/Tramble_Help.qch");
}

TEST_F(HTMLHelpTest, AProgramWithoutAHelpShowsNothing) {
    Global.TheHelp = nullptr;
    ShowHelpTopic("Notes.htm");
    Global.TheHelp = &help_;
    ShowHelpTopic("Notes.htm");
    EXPECT_EQ(viewer_.Shown, Lines{"topic Notes.htm"});
}

// ---- pop-ups ----

TEST_F(HTMLHelpTest, APopUpsFontIsNameSizeCharacterSetAndAttributesToTheLetter) {
    EXPECT_EQ(help_.Popup().Font, "Arial, 10, ascii, ");
    help_.HHPopupTextBold = true;
    EXPECT_EQ(help_.Popup().Font, "Arial, 10, ascii, Bold ");
    help_.HHPopupTextItalic = help_.HHPopupTextUnderline = true;
    help_.HHPopupTextFont = "Courier New";
    help_.HHPopupTextSize = "8";
    EXPECT_EQ(help_.Popup().Font, "Courier New, 8, ascii, Bold Italic Underline");
    help_.HHPopupTextBold = help_.HHPopupTextItalic = false;
    EXPECT_EQ(help_.Popup().Font, "Courier New, 8, ascii, Underline");
}

TEST_F(HTMLHelpTest, APopUpShowsItsTextOrASectionOfAFileInTheHelpFile) {
    help_.CHMFile = "/office/Tramble_Help.qch";
    help_.HHPopupText = Text::Value(std::string_view("Press this."));
    help_.HHPopupFile = "hints.txt";
    help_.HHPopupID = 5;
    EXPECT_EQ(help_.Popup().File, "");
    EXPECT_EQ(help_.Popup().Words.Utf8(), "Press this.");

    help_.HHPopupType = PopupType::File;
    EXPECT_EQ(help_.Popup().File, "/office/Tramble_Help.qch::/hints.txt");
    EXPECT_EQ(help_.Popup().ID, 5U);
    EXPECT_TRUE(help_.Popup().Words.IsEmpty());
}

TEST_F(HTMLHelpTest, CustomColoursCountOnlyWhenTheyAreChosen) {
    help_.HHPopupTextColor = 0x112233;
    help_.HHPopupCustomTextColor = 0x445566;
    help_.HHPopupCustomBackColor = 0xFFFFE0;
    EXPECT_EQ(help_.Popup().TextColor, PopupColor(0x112233));
    EXPECT_EQ(help_.Popup().BackColor, PopupColor());
    help_.HHPopupCustomColors = true;
    EXPECT_EQ(help_.Popup().TextColor, PopupColor(0x445566));
    EXPECT_EQ(help_.Popup().BackColor, PopupColor(0xFFFFE0));
}

TEST_F(HTMLHelpTest, APopUpStandsWhereItIsTold) {
    help_.HHDisplayPopup(ScreenPlace{40, 60});
    ASSERT_TRUE(viewer_.Popup && viewer_.Place);
    EXPECT_EQ(viewer_.Place->Top, 60);
    help_.HHDisplayPopup();
    EXPECT_FALSE(viewer_.Place);
    help_.HHInvokeWhatsThisHelp();
    EXPECT_EQ(viewer_.Shown, Lines{"what's this"});
}

TEST_F(HTMLHelpTest, AFontFieldIsReadBackAndWhatMakesNoSenseIsTheDefault) {
    EXPECT_EQ(ReadPopupFont("Courier New, 8, ascii, Bold Italic Underline"),
              (PopupFont{"Courier New", 8, true, true, true}));
    EXPECT_EQ(ReadPopupFont("Arial, 10, ascii, Italic "), (PopupFont{"Arial", 10, false, true, false}));
    for (const char* field : {"", ",", "Arial", " , x, ascii, bold", "Arial, 0, ascii, ", "Arial, 73",
                              "Arial, 99999999999, ascii, ", "Arial, -10, , , ,"}) {
        EXPECT_EQ(ReadPopupFont(field), (PopupFont{"Arial", 10})) << field;
    }
}

TEST_F(HTMLHelpTest, ASectionOfAPopUpFileIsFoundByItsNumber) {
    const std::string file = ".topic 1\r\nOne.\r\n\r\n.topic 12\r\nTwelve,\r\nin two lines.\r\n";
    EXPECT_EQ(PopupSection(file, 1), "One.");
    EXPECT_EQ(PopupSection(file, 12), "Twelve,\nin two lines.");
    EXPECT_EQ(PopupSection(file, 2), std::nullopt);
    EXPECT_EQ(PopupSection("", 0), std::nullopt);
    EXPECT_EQ(PopupSection(".topic\n.topic x\n.topic 3", 3), "");
}

// ---- the table ----

TEST_F(HTMLHelpTest, EachScreenOpensItsTopic) {
    const std::map<std::string, std::vector<const char*>> table{
        {"Configurator_.htm", {"frmConfig", "frmConfigMsg"}},
        {"Master_Tables.htm", {"frmEditCust", "frmEditItem", "frmConfigCust", "frmConfigItem"}},
        {"Sales_Tax.htm", {"frmEditSTax", "frmConfigSTax"}},
        {"Change_the_Setup_Tables_to_Match_Your_Company._.htm", {"frmChSetup", "frmCompany", "frmChgLink"}},
        {"Printers.htm", {"frmPrinter", "frmConfigPrint"}},
        {"Payments.htm", {"frmPay"}},
        {"Notes.htm", {"frmNotes", "frmFindNotes"}},
        {"IMPORTING_DATA_FILES_TO_PC.htm", {"frmConvert"}},
        {"Setup_Import.htm", {"frmImport1"}},
        {"Setup_Export.htm", {"frmExport1"}},
        {"Setup_Download.htm", {"frmTableSelectDL"}},
        {"Options_Download.htm", {"frmTableSelectCL"}},
        {"Setup_Upload.htm", {"frmUploadSelect"}},
        {"Clearing_PC_Tables_.htm", {"frmTableSelectPC"}},
        {"QuickButtons.htm", {"frmQBImport", "frmQBExport", "frmQBDownload", "frmQBUpload", "frmQBClearPC"}},
        {"Unattended_Hotsync_.htm", {"frmQBRemote"}},
        {"Initial_Installation_ZUK_Tramble_on_Handheld_Unit_.htm", {"frmHHInstall"}},
        {"SOFTWARE_UPDATES.htm", {"frmUpdateMsg"}},
        {"INTRODUCTION.htm", {"frmMain1", "frmOfTomorrow"}},
    };
    for (const auto& [topic, forms] : table) {
        for (const char* form : forms) EXPECT_EQ(HelpTopicOfForm(form), topic) << form;
    }
    EXPECT_EQ(HelpTopicOfForm("frmQuickStart"), "Introduction.htm");
    EXPECT_EQ(HelpTopicOfForm("frmQuickStart7"), "EXPORTING_SALES_ORDERS_TO_ACCOUNTING_SYSTEM.htm");
}

TEST_F(HTMLHelpTest, ATableThatIsLookedAtHasItsTopic) {
    EXPECT_EQ(HelpTopicOfView(ViewOrLinAudt), "Auditing_Sales_Orders.htm");
    EXPECT_EQ(HelpTopicOfView(ViewLink), "Change_the_Setup_Tables_to_Match_Your_Company._.htm");
    EXPECT_EQ(HelpTopicOfView(ViewCust), "INTRODUCTION.htm");
    EXPECT_EQ(HelpTopicOfView(ViewCust, "Viewing_Tables.htm"), "Viewing_Tables.htm");
}

// ---- on paper ----

Text Words(const char* utf8) {
    return Text::Path(std::string_view(utf8));
}

TEST_F(HTMLHelpTest, ATopicIsPrintedInLinesAsWideAsThePaper) {
    PaperInMemory paper;
    paper.Width = 12 * PaperInMemory::CharacterWidth;
    HelpReport report(Words("Notes"), {{Words("Notes"), true}, {Words("Take a pen and write it down.")}});

    report.Begin(paper);
    ASSERT_EQ(report.PageCount(), 1);
    report.PrintPage(1, paper);

    std::vector<std::string> lines;
    for (const auto& piece : paper.Printed.front().Pieces) lines.push_back(piece.Words);
    EXPECT_EQ(lines, (Lines{"Notes", "Take a pen", "and write it", "down."}));
    EXPECT_TRUE(paper.Printed.front().Pieces.front().Font.Bold);
    EXPECT_FALSE(paper.Printed.front().Pieces.back().Font.Bold);
}

TEST_F(HTMLHelpTest, ALongTopicGoesOnOnTheNextPageAndAnEmptyOneHasOne) {
    PaperInMemory paper;
    paper.Height = 3 * PaperInMemory::LineHeight;
    std::vector<HelpParagraph> paragraphs(7, HelpParagraph{Words("Line")});
    HelpReport report(Words("Long"), paragraphs);
    report.Begin(paper);
    EXPECT_EQ(report.PageCount(), 4); // two lines to the page, with the space between them

    HelpReport empty(Words("Empty"), {});
    empty.Begin(paper);
    EXPECT_EQ(empty.PageCount(), 1);
    empty.PrintPage(1, paper);
}

TEST_F(HTMLHelpTest, AWordThatIsWiderThanThePaperStandsAlone) {
    PaperInMemory paper;
    paper.Width = 3 * PaperInMemory::CharacterWidth;
    HelpReport report(Words("Wide"), {{Words("a unbreakable b")}});
    report.Begin(paper);
    report.PrintPage(1, paper);
    ASSERT_EQ(paper.Printed.front().Pieces.size(), 3U);
    EXPECT_EQ(paper.Printed.front().Pieces[1].Words, "unbreakable");
}

} // namespace

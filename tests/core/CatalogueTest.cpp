#include "core/Catalogue.h"
#include "core/Failure.h"
#include "core/Messages.h"
#include "support/EngineTest.h"

namespace {

class CatalogueTest : public EngineTest {};

TEST_F(CatalogueTest, ATextIsFetchedByItsNumber) {
    EXPECT_EQ(Text(msg::Title).Utf8(), "ZUK Tramble PC");
    EXPECT_EQ(msg::Title.Number, 101);
    EXPECT_EQ(Text(msg::Yes).Utf8(), "Yes");
}

TEST_F(CatalogueTest, ANumberThatIsFreeIsAFailureAndNeverAText) {
    EXPECT_THROW(CatalogueText({2}), RunTimeFailure);
}

TEST_F(CatalogueTest, TheRowsStandInTheOrderOfTheirNumbersAndNoneIsAFreeRowOrABanner) {
    for (std::size_t i = 0; i < CatalogueRowCount; ++i) {
        if (i > 0) {
            EXPECT_LT(CatalogueRows[i - 1].Number, CatalogueRows[i].Number);
        }
        const std::string_view words = CatalogueRows[i].Words;
        EXPECT_NE(words, "x") << CatalogueRows[i].Number;
        for (const char* banner : {"<<<", ">>>", ">*>"})
            EXPECT_FALSE(words.starts_with(banner)) << CatalogueRows[i].Number;
    }
}

TEST_F(CatalogueTest, ACaptionMarksItsMnemonicAndDoublesASignOfItsOwn) {
    EXPECT_EQ(CatalogueCaption(msg::Yes), "&Yes");
}

TEST_F(CatalogueTest, WordsThatTheSupportDeskKnowsStayAsTheyAre) {
    const struct {
        MessageId Message;
        const char* Words;
    } known[] = {
        {msg::SelectProcess, "Please select a Process from the droplist!"},
        {msg::NoteMailQuestion, "Would you like the software to automatically generate an email message "
                                "containing the necessary Notes information?"},
        {msg::SysInfoMailQuestion, "Would you like the software to automatically generate an email message "
                                   "containing the System information?"},
        {msg::EventLogMailQuestion,
         "Would you like the software to automatically generate an email message?"},
        {msg::MailFailed, "Error. Message could not be created."},
        {msg::frmAbout, "About ZUK Tramble PC"},
        {msg::LogFileCreated, "Log file successfully created under:"},
        {msg::LogFileFailed, "File Error! Can't create or write to Log file."},
        // Two blanks.
        {msg::ActivityError, "Error opening  selected Activity Template file! Please select another file."},
        {msg::ImportingCustomers, "Importing Customers from"},
        {msg::ImportingItems, "Importing Items from"},
        {msg::QCWillRun, "The system will now perform a Quality Check to ensure data integrity for handheld "
                         "processing."},
        {msg::FatalHotsync, "A hotsync cannot occur because a fatal error was discovered during Quality "
                            "Check. This fatal error must be corrected before tables can be downloaded to a "
                            "handheld."},
        {msg::TipViewRecords, "Select a row in the table, then click the 'View Records' button to view and "
                              "edit the records defined in the selected section."},
        {msg::TipPrintReport, "Print a report of the problems found."},
        {msg::TipClose, "Close this window."},
        {msg::HintDemo, "Install the ZUK Tramble program files and predefined Demo Company data onto the "
                        "handheld. Any changes made to data in ZUK Tramble PC will not be reflected in the "
                        "data transferred to the handheld."},
        {msg::HintLive, "Install the ZUK Tramble program files and the current live data onto the handheld. "
                        "Changes made to data in ZUK Tramble PC will be downloaded and can be used on the "
                        "handheld."},
        {msg::HintProgram, "Install only the ZUK Tramble program files onto the handheld. This is used "
                           "primarily for performing 'minor' version upgrades of the software."},
        {msg::HintCancelInstall, "Cancel the installation process."},
        {msg::SelectHSUser, "Please select the hotsync user, then press the 'Install Demo Company' button."},
        {msg::TwoHotsyncs,
         "NOTE: This process requires two HotSync actions: the first to install ZUK Tramble program files on "
         "the Handheld unit, and the second to transfer the data to the Handheld. It may sometimes occur "
         "that the second HotSync action doesn't run automatically when the first HotSync completes. If this "
         "is the case, and the 'Synchronizing ZUK Tramble data' screen is displayed, press the HotSync "
         "button again to complete the second step."},
        {msg::ReadyToInstall, "Ready to install files on Handheld "},
        {msg::ReadyPressHotsync, ". Press the hotsync button on the handheld cradle to continue."},
        {msg::lblInstallHH, "Install Handheld"},
        {msg::InstallSteps, "The process will perform the following steps:"},
        {msg::InstallStep1, "1. Close Hotsync Manager"},
        {msg::InstallStep2, "2. Update the Windows Registry with all current Hotsync users"},
        {msg::InstallStep3, "3. Restart Hotsync Manager"},
        {msg::InstallStep5, "5. When the Hotsync button on the cradle is pressed, files will be installed on "
                            "the selected handheld."},
        {msg::pageQuickStart, "QuickStart"},
        {msg::PageOverview, "Overview"},
        {msg::TitleSetupTables, "Change the Setup Tables to Match Your Company"},
        {msg::cmdQuickCompany, "Company Details"},
        {msg::cmdQuickSTax, "Sales Tax"},
        {msg::cmdQuickPrinters, "Printers"},
        {msg::cmdQuickPayments, "Payments"},
        {msg::cmdQuickLinks, "Links"},
        {msg::cmdQuickCust, "Customers"},
        {msg::cmdQuickItems, "Items"},
        {msg::cmdQuickQC, "Quality Check"},
        {msg::TitleDownloadData, "Download Company Data to Handhelds"},
        {msg::cmdQuickDownload, "Download"},
        {msg::TitleUploadOrders, "Upload Sales Orders to PC"},
        {msg::cmdQuickUpload, "Upload"},
        {msg::TitleExportOrders, "Export Orders"},
        {msg::cmdQuickExport, "Export"},
        {msg::cmdQuickClear, "Clear Orders"},
        {msg::TitleAdvancedTools, "Advanced Tools"},
        {msg::cmdQuickQB, "QuickButtons"},
        {msg::cmdQuickUA, "Unattended Hotsync"},
        {msg::cmdQuickRestore, "Restore PC Tables"},
    };
    for (const auto& [message, words] : known) EXPECT_EQ(Text(message).Utf8(), words);
    EXPECT_EQ(CatalogueCaption(msg::PageAddMasters), "Add Customers && Items");
    EXPECT_TRUE(
        Text(msg::InstallStep4).Utf8().starts_with("4. Display a 'Ready to install files ...' message."));
}

TEST_F(CatalogueTest, AFileBesideTheProgramReplacesTextsByNumber) {
    const std::string file =
        GivenFile("Messages.tsv", "# deutsch\n137\tYes\tJ\t\"Ja\"\n138\t\"Nein\\nnie\"\n");

    EXPECT_EQ(LoadMessages(file), "");

    EXPECT_EQ(Text(msg::Yes).Utf8(), "Ja");
    EXPECT_EQ(CatalogueCaption(msg::Yes), "&Ja");
    EXPECT_EQ(Text(msg::No).Utf8(), "Nein\nnie");
    EXPECT_EQ(Text(msg::Ok).Utf8(), "Ok");
}

TEST_F(CatalogueTest, ARowThatCannotBeReadIsNamedAndTheOthersCount) {
    const std::string file =
        GivenFile("Messages.tsv", "137\t\"Ja\"\nabc\t\"x\"\n64999\t\"y\"\n138\tNein\n139\t\"\xFF\"\n");

    const std::string problems = LoadMessages(file);

    EXPECT_EQ(problems, "Messages.tsv, line 2: the first column is no number\n"
                        "Messages.tsv, line 3: there is no text of this number\n"
                        "Messages.tsv, line 4: the text is not in quotes\n"
                        "Messages.tsv, line 5: the text is not in UTF-8\n");
    EXPECT_EQ(Text(msg::Yes).Utf8(), "Ja");
    EXPECT_EQ(Text(msg::No).Utf8(), "No");
}

TEST_F(CatalogueTest, ARowXOrABannerInThatFileIsNoTextAndReplacesNone) {
    const std::string file = GivenFile("Messages.tsv", "137\t\"x\"\n2\t\"x\"\n138\t\"x-ray\"\n"
                                                       "139\t\"<<<<<<<<<frmMain1>>>>>>>>>>\"\n"
                                                       "60000\t\">*>*>*>*TABLES*<*<*<*<\"\n"
                                                       "60001\t\">>>>>>>>ZUKCUST.DBF<<<<<<<<\"\n");

    EXPECT_EQ(LoadMessages(file), "");

    EXPECT_EQ(Text(msg::Yes).Utf8(), "Yes");
    EXPECT_EQ(Text(msg::No).Utf8(), "x-ray");
    EXPECT_EQ(Text(msg::Ok).Utf8(), "Ok");
}

TEST_F(CatalogueTest, AMissingFileReplacesNothing) {
    EXPECT_EQ(LoadMessages(Folder() + "Messages.tsv"), "");
    EXPECT_EQ(Text(msg::Ok).Utf8(), "Ok");
}

TEST_F(CatalogueTest, ATextIsBuiltOfEntriesAndValues) {
    const std::string name = "Caf\xE9";

    EXPECT_EQ(Words(Text::Value(3), msg::Yes, Text::Value(name)).Utf8(), "3 Yes Caf\xC3\xA9");
    EXPECT_EQ(Text::Value(name).CodePage(), name);
}

} // namespace

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

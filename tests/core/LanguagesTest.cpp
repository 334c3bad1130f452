#include "core/Languages.h"

#include "core/Catalogue.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "support/EngineTest.h"
#include "support/ForeignTexts.h"

namespace {

using Strings = std::vector<std::string>;

class LanguagesTest : public EngineTest {
protected:
    LanguagesTest() { GivenAppDirectory(); }

    Strings Folders() const { return LanguageFolders(Folder() + "programs/HotSync", Global.AppPath); }

    std::string Load(std::string_view language) { return LoadTexts(language, Folders(), Global.AppPath); }
};

TEST_F(LanguagesTest, TheyLieInTheOfficeBesideTheProgramAndInTheFolderAroundIt) {
    GivenFile("app/Languages/Suomi.tsv", "");
    GivenFile("programs/Languages/Deutsch.tsv", "");
    GivenFile("programs/Languages/README.md", "");
    GivenFile("programs/HotSync/Languages/Dansk.TSV", "");
    GivenFile("programs/HotSync/Languages/Deutsch.tsv", "");

    EXPECT_EQ(Languages(Folders()), (Strings{"Dansk", "Deutsch", "Suomi"}));
}

TEST_F(LanguagesTest, WithoutAnyFolderThereIsEnglishAlone) {
    EXPECT_EQ(Languages(Folders()), Strings());
}

TEST_F(LanguagesTest, AFileThatCallsItselfEnglishIsNotOffered) {
    GivenFile("app/Languages/English.tsv", "137\t\"Aye\"\n");

    EXPECT_EQ(Languages(Folders()), Strings());
    EXPECT_EQ(Load("English"), "");
    EXPECT_EQ(Text(msg::Yes).Utf8(), "Yes");
}

TEST_F(LanguagesTest, TheChosenLanguageIsShownAndWhatItLacksInEnglish) {
    GivenFile("programs/Languages/Deutsch.tsv", "137\tYes\tJ\t\"Ja\"\n");

    EXPECT_EQ(Load("Deutsch"), "");

    EXPECT_EQ(CatalogueCaption(msg::Yes), "&Ja");
    EXPECT_EQ(CatalogueCaption(msg::No), "&No");
}

TEST_F(LanguagesTest, TheOfficesOwnFileGoesBeforeThatOfTheProgram) {
    GivenFile("programs/Languages/Deutsch.tsv", "137\t\"Ja\"\n");
    GivenFile("app/Languages/Deutsch.tsv", "137\t\"Jawohl\"\n");

    Load("Deutsch");

    EXPECT_EQ(Text(msg::Yes).Utf8(), "Jawohl");
}

TEST_F(LanguagesTest, TheReplacementsOfTheOfficeGoOverTheLanguageRowByRow) {
    GivenFile("programs/Languages/Deutsch.tsv", "137\tYes\tJ\t\"Ja\"\n138\tNo\tN\t\"Nein\"\n");
    GivenFile("app/Messages.tsv", "138\tNo\tL\t\"Lieber nicht\"\n137\tYes\n");

    EXPECT_EQ(Load("Deutsch"), "Messages.tsv, line 2: the text is not in quotes\n");

    EXPECT_EQ(CatalogueCaption(msg::Yes), "&Ja");
    EXPECT_EQ(CatalogueCaption(msg::No), "&Lieber nicht");
}

TEST_F(LanguagesTest, ReturningToEnglishForgetsTheLanguage) {
    GivenFile("programs/Languages/Deutsch.tsv", "137\t\"Ja\"\n");
    Load("Deutsch");

    EXPECT_EQ(Load(""), "");

    EXPECT_EQ(Text(msg::Yes).Utf8(), "Yes");
}

TEST_F(LanguagesTest, ALanguageWhoseFileHasGoneIsToldAndEnglishShows) {
    EXPECT_EQ(Load("Deutsch"), "File not found: Deutsch.tsv\n");
    EXPECT_EQ(Text(msg::Yes).Utf8(), "Yes");
}

TEST_F(LanguagesTest, ALanguageThatIsAPathIsRefused) {
    GivenFile("app/Secret.tsv", "137\t\"Ja\"\n");

    EXPECT_NE(Load("../Secret"), "");

    EXPECT_EQ(Text(msg::Yes).Utf8(), "Yes");
}

TEST_F(LanguagesTest, ABrokenFileIsToldByFileLineAndReasonAndItsGoodRowsCount) {
    GivenFile("programs/Languages/Deutsch.tsv",
              "137\tYes\tJ\t\"Ja\"\n138\tNo\tN\t\"\"\n139\tOk\t\t\" \\n \"\n140\t\tx\n");

    EXPECT_EQ(Load("Deutsch"), "Deutsch.tsv, line 2: the text is empty\n"
                               "Deutsch.tsv, line 3: the text is empty\n"
                               "Deutsch.tsv, line 4: a row has two or four columns\n");

    EXPECT_EQ(Text(msg::Yes).Utf8(), "Ja");
    EXPECT_EQ(Text(msg::No).Utf8(), "No");
}

TEST_F(LanguagesTest, AMnemonicThatItsTextDoesNotHoldIsDropped) {
    GivenFile("programs/Languages/Deutsch.tsv", "137\tYes\tY\t\"Ja\"\n138\tNo\tn\t\"Nein\"\n");

    EXPECT_EQ(Load("Deutsch"), "");

    EXPECT_EQ(CatalogueCaption(msg::Yes), "Ja");
    EXPECT_EQ(CatalogueCaption(msg::No), "Nei&n");
}

TEST_F(LanguagesTest, ALabelThatWouldReachIntoTheColumnOfItsValueIsRefused) {
    GivenFile("programs/Languages/Deutsch.tsv",
              "1003\t\"" + std::string(29, 'x') + "\"\n1008\t\"" + std::string(30, 'x') + "\"\n");

    EXPECT_EQ(Load("Deutsch"), "Deutsch.tsv, line 2: the text is longer than 29 characters\n");

    EXPECT_EQ(Text(msg::lblOSName).Utf8(), std::string(29, 'x'));
    EXPECT_EQ(Text(msg::lblDBFPath).Utf8(), "Application Data Path:");
}

TEST_F(LanguagesTest, TheHeadOfAReportKeepsItsColumns) {
    const std::string number = std::to_string(msg::PrintDataOrLinAudtHead.Number);
    std::string head = KeyOf(msg::PrintDataOrLinAudtHead);
    head.replace(head.find("KEY"), 3, "LY\xC3\x96"); // a character of two bytes is one column
    GivenFile("programs/Languages/Deutsch.tsv", number + "\t\"" + head + "\"\n" + number + "\t\"" + head +
                                                    " \"\n" + number +
                                                    "\t\"| SCHL\xC3\x9CSSEL | ARTIKEL |\"\n");

    EXPECT_EQ(Load("Deutsch"),
              "Deutsch.tsv, line 2: the bars do not stand where the columns of the report end\n"
              "Deutsch.tsv, line 3: the bars do not stand where the columns of the report end\n");

    EXPECT_EQ(Text(msg::PrintDataOrLinAudtHead).Utf8(), head);
}

TEST_F(LanguagesTest, TheLabelsOfTablesAndFieldsAreTextsToo) {
    const std::uint16_t number = 60001;
    ASSERT_TRUE(CatalogueHas({number}));
    GivenFile("programs/Languages/Deutsch.tsv", std::to_string(number) + "\t\"Kennung\"\n");

    EXPECT_EQ(Load("Deutsch"), "");

    EXPECT_EQ(Text(MessageId{number}).Utf8(), "Kennung");
}

// ---- texts that are keys ----

TEST_F(LanguagesTest, AKeyIsEnglishWhateverTheLanguage) {
    UseForeignTexts();

    EXPECT_EQ(KeyOf(msg::UploadOrders), "Orders");
    EXPECT_NE(Text(msg::UploadOrders).CodePage(), "Orders");
}

TEST_F(LanguagesTest, AKeyIsReadInEnglishAndInTheLanguageInForce) {
    EXPECT_FALSE(IsKey(ForeignText(msg::None), msg::None));

    UseForeignTexts();

    EXPECT_TRUE(IsKey("NONE", msg::None));
    EXPECT_TRUE(IsKey(ForeignText(msg::None), msg::None));
    EXPECT_FALSE(IsKey("None of them", msg::None));
    EXPECT_FALSE(IsKey("", msg::None));
}

TEST_F(LanguagesTest, WhatIsAnotherEntryInEnglishIsThatOneWhateverTheLanguageCallsThis) {
    Global.Replacements[msg::TablesItems.Number] = {"Orders", 0};

    EXPECT_TRUE(IsKey("Items", msg::TablesItems));
    EXPECT_FALSE(IsKey("Orders", msg::TablesItems));
    EXPECT_TRUE(IsKey("Orders", msg::UploadOrders));
}

TEST_F(LanguagesTest, AKeyIsShownInTheLanguageAndAnyOtherTextAsItStands) {
    constexpr MessageId entries[] = {msg::Yes, msg::None};
    UseForeignTexts();

    EXPECT_EQ(ShownKey("none", entries).CodePage(), ForeignText(msg::None));
    EXPECT_EQ(ShownKey(ForeignText(msg::Yes), entries).CodePage(), ForeignText(msg::Yes));
    EXPECT_EQ(ShownKey("No", entries).CodePage(), "No");
}

} // namespace

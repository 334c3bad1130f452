#include "maintenance/RtfText.h"

#include "support/EngineTest.h"
#include "support/Rubbish.h"

namespace {

using Runs = std::vector<RtfRun>;

std::string WordsOf(std::string_view rtf) {
    std::string words;
    for (const RtfRun& run : ReadRtf(rtf)) words += run.Utf8;
    return words;
}

class RtfTextTest : public EngineTest {};

} // namespace

TEST_F(RtfTextTest, ParagraphsLinesAndTabsAreTheTextsOwn) {
    EXPECT_EQ(WordsOf("{\\rtf1\\ansi\r\nOne\\par\r\nTwo\\tab three\\line four\\\nfive}"),
              "One\nTwo\tthree\nfour\nfive");
}

TEST_F(RtfTextTest, BoldAndItalicReachToTheEndOfTheirGroup) {
    EXPECT_EQ(ReadRtf("{\\rtf1 a{\\b b{\\i c}}\\i d\\i0 e\\b f\\plain g}"), (Runs{{"a", false, false},
                                                                                  {"b", true, false},
                                                                                  {"c", true, true},
                                                                                  {"d", false, true},
                                                                                  {"e", false, false},
                                                                                  {"f", true, false},
                                                                                  {"g", false, false}}));
}

TEST_F(RtfTextTest, FontsColoursPicturesAndUnknownDestinationsAreLeftOut) {
    EXPECT_EQ(WordsOf("{\\rtf1{\\fonttbl{\\f0 Arial;}}{\\colortbl;\\red0;}{\\*\\generator Word;}"
                      "{\\info{\\title No}}Yes{\\pict 89504e47}{\\*\\unknown no} and\\fs24\\cf1  more}"),
              "Yes and more");
}

TEST_F(RtfTextTest, CharactersComeByCodePageByUnicodeAndByName) {
    EXPECT_EQ(WordsOf("{\\rtf1 M\\'fcller\\~\\{x\\}\\\\ \\u8364?5 \\uc2\\u8364\\'80\\'81! \\endash\\bullet"
                      "\\u-10179?\\'3f\\u-8704??}"),
              "M\u00FCller\u00A0{x}\\ \u20AC5 \u20AC! \u2013\u2022\U0001F600");
}

TEST_F(RtfTextTest, BinaryBytesArePassedByAndWhatFollowsTheEndIsNotRead) {
    EXPECT_EQ(WordsOf("{\\rtf1 a\\bin4 }}}}b}behind"), "ab");
    EXPECT_EQ(WordsOf("{\\rtf1 a\\bin999999999 b"), "a");
}

TEST_F(RtfTextTest, AFileThatIsNoRichTextIsShownAsItStands) {
    EXPECT_EQ(ReadRtf("Plain \\b text\r\nM\xFCller\x01"),
              (Runs{{"Plain \\b text\nM\u00FCller", false, false}}));
    EXPECT_EQ(ReadRtf(""), Runs{});
}

TEST_F(RtfTextTest, GroupsNestedTooDeepAreLeftOutAndWhatFollowsThemIsRead) {
    const std::string deep(100'000, '{');
    const std::string out(100'000, '}');
    EXPECT_EQ(WordsOf("{\\rtf1 a" + deep + "lost" + out + "b}"), "ab");
    EXPECT_EQ(WordsOf("{\\rtf1 a" + deep), "a");
}

TEST_F(RtfTextTest, RubbishNeitherFailsNorGrows) {
    for (const std::string& bytes : Rubbish("{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}\\b Bold\\b0\\par\\u8364?"
                                            "\\'e9{\\i x\\bin2 ab}\\*\\tab }")) {
        ASSERT_LE(WordsOf(bytes).size(), bytes.size() * 3) << bytes;
    }
}

#include "tools/Mail.h"

#include "core/Globals.h"
#include "core/Operator.h"
#include "support/EngineTest.h"

#include <gtest/gtest.h>

namespace {

using namespace std::string_literals;

/// A desktop that keeps the links, and opens them or does not.
class Desktop final : public Operator {
public:
    explicit Desktop(bool opens) : opens_(opens) {}

    Answer MsgBox(const Text&, Icon, Buttons) override { return Answer::No; }
    std::optional<std::string> InputBox(const Text&, const std::string&) override { return std::nullopt; }
    std::optional<std::string> OpenFile(const FileQuestion&) override { return std::nullopt; }
    bool Ask(const Question&) override { return false; }
    std::unique_ptr<Printer> PrinterDialog(const Text&) override { return nullptr; }
    void Beep() override {}
    bool OpenLink(std::string_view link) override {
        Links.emplace_back(link);
        return opens_;
    }

    std::vector<std::string> Links;

private:
    bool opens_;
};

class MailTest : public EngineTest {};

TEST_F(MailTest, AnAmpersandComesOutAsAPercentSignAnd26) {
    EXPECT_EQ(ReplaceSpecialCharacters("Salt & Pepper"), "Salt %26 Pepper");
    EXPECT_EQ(MailLink("a@b.c", "", "", "", "Salt & Pepper"), "mailto:a@b.c?Body=Salt %26 Pepper");
}

TEST_F(MailTest, LineBreaksBecome0DAnd0AAndABlankStaysABlank) {
    EXPECT_EQ(ReplaceSpecialCharacters("one two\r\nthree"), "one two%0D%0Athree");
}

TEST_F(MailTest, OnlyCharactersBelowTheBlankAndAboveTheTildeAreReplaced) {
    EXPECT_EQ(ReplaceSpecialCharacters(" !%+#?=~"), " !%+#?=~") << "a percent sign too: that is meant";
    EXPECT_EQ(ReplaceSpecialCharacters("\0\x01\t\x1F"s), "%00%01%09%1F");
    EXPECT_EQ(ReplaceSpecialCharacters("\x7F\x80\xE9\xFF"), "%7F%80%E9%FF")
        << "by the byte, also of a letter";
}

TEST_F(MailTest, EveryCharacterKeepsItsPlaceOrBecomesThreeAndNoneIsLost) {
    for (int byte = 0; byte < 256; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        const std::string replaced = ReplaceSpecialCharacters(text);
        const bool stays = byte >= ' ' && byte <= '~' && byte != '&';
        EXPECT_EQ(replaced.size(), stays ? 1U : 3U) << byte;
        if (stays) continue;
        EXPECT_EQ(std::stoi(replaced.substr(1), nullptr, 16), byte);
    }
}

TEST_F(MailTest, ATextWithOnlyASubjectGetsItsFirstAmpersandReplacedByTheQuestionMark) {
    EXPECT_EQ(MailLink("a@b.c", "", "", "Hello", ""), "mailto:a@b.c?Subject=Hello");
}

TEST_F(MailTest, AnAddressAloneYieldsNoQuestionMark) {
    EXPECT_EQ(MailLink("a@b.c", "", "", "", ""), "mailto:a@b.c");
}

TEST_F(MailTest, AllPartsStandInTheirOrder) {
    EXPECT_EQ(MailLink("a@b.c", "cc@b.c", "bcc@b.c", "S", "B"),
              "mailto:a@b.c?CC=cc@b.c&BCC=bcc@b.c&Subject=S&Body=B");
}

TEST_F(MailTest, WithoutAnAddressTheMessageStillBegins) {
    EXPECT_EQ(MailLink("", "", "", "S", "B"), "mailto:?Subject=S&Body=B");
}

TEST_F(MailTest, TheDesktopGetsTheLinkAndSaysWhetherItOpensIt) {
    for (const bool opens : {true, false}) {
        Desktop desktop(opens);
        Global.TheOperator = &desktop;

        EXPECT_EQ(SendMail("a@b.c", "", "", "S", "B"), opens);

        EXPECT_EQ(desktop.Links, std::vector<std::string>{"mailto:a@b.c?Subject=S&Body=B"});
        Global.TheOperator = nullptr;
    }
}

TEST_F(MailTest, MailProgramsGetALinkOfUtf8WithoutBlanks) {
    EXPECT_EQ(ToUri(MailLink("a@b.c", "", "", "Note # 7", "Caf\xE9 & Co\r\n50% off")),
              "mailto:a@b.c?Subject=Note%20%23%207&Body=Caf%C3%A9%20%26%20Co%0D%0A50%25%20off");
}

TEST_F(MailTest, AnAmpersandReachesTheMailProgramAs26) {
    EXPECT_NE(ToUri(MailLink("", "", "", "", "R&D")).find("R%26D"), std::string::npos);
}

TEST_F(MailTest, ACodeThatTheOperatorHasTypedIsNotTakenForOne) {
    EXPECT_EQ(ToUri(MailLink("", "", "", "100%20", "%41 %e9 %")),
              "mailto:?Subject=100%2520&Body=%2541%20%25e9%20%25");
    EXPECT_EQ(ToUri(MailLink("", "", "", "", "%E9")), "mailto:?Body=%C3%A9")
        << "but for one that is also written for a character";
}

TEST_F(MailTest, SignsOfALinkInATextDoNotDivideIt) {
    EXPECT_EQ(ToUri(MailLink("", "", "", "a=b?c", "d;e/f+g")),
              "mailto:?Subject=a%3Db%3Fc&Body=d%3Be%2Ff%2Bg");
}

TEST_F(MailTest, OtherLinksAreHandedOnAsTheyAre) {
    EXPECT_EQ(ToUri("https://example.com/a?b=c#d"), "https://example.com/a?b=c#d");
}

TEST_F(MailTest, AnyBytesBecomeALinkOfPlainCharacters) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
    for (const std::string& text : {all, all + all, "%"s, "%2"s, "%%%"s, "&&&"s}) {
        for (const char c : ToUri(MailLink(text, text, text, text, text)))
            EXPECT_TRUE(c > ' ' && c <= '~') << int{c};
    }
}

} // namespace

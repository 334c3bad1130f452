#include "core/TextCompare.h"

#include "core/CodePage.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace {

char Char(unsigned byte) {
    return static_cast<char>(static_cast<unsigned char>(byte));
}

int Sign(int value) {
    return (value > 0) - (value < 0);
}

/// The comparison of two texts that are written here in UTF-8.
int Compare(std::string_view a, std::string_view b) {
    return Sign(TextCompare(Utf8ToCodePage(a), Utf8ToCodePage(b)));
}

/// Short texts of the characters that are hard to order, so that many begin alike.
std::string RandomText(std::mt19937& random) {
    static const std::string hard = Utf8ToCodePage("aAáÁäæÆeéoœŒøsSßšŠtTþhHdðyÿŸýzŽ1¹2 -'\u00A0");
    std::string text(random() % 5, '\0');
    for (char& c : text) c = random() % 8 == 0 ? Char(random()) : hard[random() % hard.size()];
    return text;
}

} // namespace

TEST(TextCompare, TakesCapitalsAndSmallLettersForTheSame) {
    EXPECT_EQ(Compare("zukcust", "ZUKCust"), 0);
    EXPECT_EQ(Compare("šœžÿé", "ŠŒŽŸÉ"), 0);
    EXPECT_EQ(Compare("", ""), 0);
}

TEST(TextCompare, OrdersTheKindsOfCharacters) {
    const std::vector<std::string> ascending = {
        "",  "\x01", "\x1F", "\x7F", "\u009D", " ", "\u00A0", "!", "-", "@", "[", "_", "~",
        "€", "™",    "µ",    "÷",    "0",      "1", "¹",      "2", "²", "3", "³", "4", "9",
        "a", "ª",    "á",    "b",    "d",      "ð", "e",      "é", "f", "ƒ", "o", "º", "ö",
        "ø", "p",    "s",    "š",    "t",      "y", "ý",      "ÿ", "z", "ž"};
    for (std::size_t i = 0; i < ascending.size(); ++i) {
        for (std::size_t j = 0; j < ascending.size(); ++j)
            EXPECT_EQ(Compare(ascending[i], ascending[j]), (i > j) - (i < j))
                << ascending[i] << " and " << ascending[j];
    }
}

TEST(TextCompare, AccentsDecideOnlyWhenTheBasesAreEqualThroughout) {
    EXPECT_LT(Compare("éa", "ez"), 0);
    EXPECT_LT(Compare("ea", "éa"), 0);
    EXPECT_LT(Compare("resume", "résumé"), 0);
    EXPECT_LT(Compare("résumé", "resumes"), 0);
    EXPECT_LT(Compare("Müller", "Mullerx"), 0);
}

TEST(TextCompare, TheFirstDifferingAccentDecides) {
    EXPECT_LT(Compare("cote", "coté"), 0);
    EXPECT_LT(Compare("coté", "côte"), 0);
    EXPECT_LT(Compare("côte", "côté"), 0);
    EXPECT_LT(Compare("àé", "áe"), 0);
}

TEST(TextCompare, DoubleLettersCountAsTheTwoThatTheyStandFor) {
    struct Row {
        const char* Two;
        const char* One;
    };
    for (const Row& row : {Row{"ae", "æ"}, {"oe", "Œ"}, {"ss", "ß"}, {"TH", "þ"}}) {
        const std::string two = row.Two;
        const std::string one = row.One;
        EXPECT_LT(Compare(two, one), 0) << one;
        EXPECT_LT(Compare(one, two + "a"), 0) << one;
        EXPECT_GT(Compare(one + "a", two), 0) << one;
        EXPECT_LT(Compare(one, two.substr(0, 1) + "z"), 0) << one;
        EXPECT_GT(Compare(one, two.substr(0, 1)), 0) << one;
    }
    EXPECT_LT(Compare("Straße", "Strassen"), 0);
    EXPECT_LT(Compare("sßa", "ßsb"), 0);
    EXPECT_LT(Compare("sß", "ßs"), 0);
}

TEST(TextCompare, AccentedLettersLieInsideTheRangeOfLetters) {
    for (const char* letter : {"é", "Å", "Ç", "ñ", "Ø", "ß", "þ", "š", "Ð", "ÿ"}) {
        EXPECT_GE(Compare(letter, "A"), 0) << letter;
        EXPECT_LE(Compare(letter, "Z"), 0) << letter;
    }
    for (const char* other : {"-", " ", "_", "~", "×", "½", "5", "¹"})
        EXPECT_LT(Compare(other, "A"), 0) << other;
}

TEST(TextCompare, HyphensAndApostrophesCountLikeAnySymbol) {
    EXPECT_LT(Compare("co-op", "coop"), 0);
    EXPECT_LT(Compare("co-z", "coa"), 0);
    EXPECT_LT(Compare("'z", "a"), 0);
}

TEST(TextCompare, IsoDatesComeInTheOrderOfTime) {
    EXPECT_LT(Compare("2026-09-30 23:59:59", "2026-10-01 00:00:00"), 0);
    EXPECT_LT(Compare("2026-10-01", "2026-10-01 00:00:00"), 0);
}

TEST(TextCompare, EveryPairOfCharactersIsAntisymmetricAndAgreesWithTheFold) {
    for (unsigned first = 0; first < 256; ++first) {
        for (unsigned second = 0; second < 256; ++second) {
            const std::string a(1, Char(first));
            const std::string b(1, Char(second));
            const int order = Sign(TextCompare(a, b));
            ASSERT_EQ(order, -Sign(TextCompare(b, a))) << first << " " << second;
            ASSERT_EQ(order == 0, FoldCase(a) == FoldCase(b)) << first << " " << second;
            ASSERT_EQ(order == 0, SameText(a, b)) << first << " " << second;
            ASSERT_EQ(order == 0, LowerCase(a) == LowerCase(b)) << first << " " << second;
            ASSERT_EQ(order, Sign(SortKey(a).compare(SortKey(b)))) << first << " " << second;
        }
    }
}

TEST(TextCompare, EveryTextOfTwoBytesAgreesWithItsOtherForms) {
    for (unsigned first = 0; first < 256; ++first) {
        for (unsigned second = 0; second < 256; ++second) {
            const std::string text{Char(first), Char(second)};
            const std::string turned{Char(second), Char(first)};
            ASSERT_EQ(TextCompare(text, UpperCase(text)), 0) << first << " " << second;
            ASSERT_EQ(TextCompare(LowerCase(text), text), 0) << first << " " << second;
            ASSERT_GT(TextCompare(text, text.substr(0, 1)), 0) << first << " " << second;
            ASSERT_EQ(Sign(TextCompare(text, turned)), -Sign(TextCompare(turned, text)));
            ASSERT_EQ(TextCompare(text, turned) == 0, FoldCase(text) == FoldCase(turned));
        }
    }
}

TEST(TextCompare, CharactersHaveOneOrder) {
    std::vector<std::string> all;
    for (unsigned byte = 0; byte < 256; ++byte) all.emplace_back(1, Char(byte));
    std::stable_sort(all.begin(), all.end(),
                     [](const auto& a, const auto& b) { return TextCompare(a, b) < 0; });

    for (std::size_t i = 0; i < all.size(); ++i) {
        for (std::size_t j = i; j < all.size(); ++j) ASSERT_LE(TextCompare(all[i], all[j]), 0);
    }
}

TEST(TextCompare, RandomTextsHaveOneOrder) {
    std::mt19937 random(19991231);
    int equal = 0;
    for (int round = 0; round < 200000; ++round) {
        std::array<std::string, 3> texts{RandomText(random), RandomText(random), RandomText(random)};
        std::sort(texts.begin(), texts.end(),
                  [](const auto& a, const auto& b) { return TextCompare(a, b) < 0; });
        const auto& [a, b, c] = texts;
        const int ab = TextCompare(a, b);
        const int bc = TextCompare(b, c);
        const int ac = TextCompare(a, c);
        ASSERT_LE(ab, 0);
        ASSERT_LE(bc, 0);
        ASSERT_LE(ac, 0);
        ASSERT_EQ(ac == 0, ab == 0 && bc == 0);
        ASSERT_EQ(ab == 0, FoldCase(a) == FoldCase(b));
        ASSERT_EQ(ab == 0, SameText(a, b));
        ASSERT_EQ(Sign(ab), -Sign(TextCompare(b, a)));
        ASSERT_EQ(Sign(ab), Sign(SortKey(a).compare(SortKey(b))));
        ASSERT_EQ(Sign(ac), Sign(SortKey(a).compare(SortKey(c))));
        if (ab == 0) ++equal;
    }
    EXPECT_GT(equal, 100);
}

TEST(TextCompare, WhatStandsBeforeBothChangesNothing) {
    std::mt19937 random(42);
    for (int round = 0; round < 50000; ++round) {
        const std::string before = RandomText(random);
        const std::string a = RandomText(random);
        const std::string b = RandomText(random);
        ASSERT_EQ(Sign(TextCompare(before + a, before + b)), Sign(TextCompare(a, b)));
    }
}

TEST(SortKey, LongerTextComesBehindOneThatEndsInAccents) {
    const auto key = [](std::string_view utf8) { return SortKey(Utf8ToCodePage(utf8)); };
    EXPECT_LT(key("re"), key("ré"));
    EXPECT_LT(key("ré"), key("rea"));
    EXPECT_LT(key("rea"), key("réa"));
    EXPECT_LT(key("réa"), key("reá\u0081"));
    EXPECT_LT(key("ss"), key("ß"));
    EXPECT_LT(key("ß"), key("ssa"));
    EXPECT_EQ(key("Ærø"), key("æRØ"));
    EXPECT_EQ(key(""), "");
}

TEST(SameText, NeedsTheSameLength) {
    EXPECT_TRUE(SameText("Tab", "TAB"));
    EXPECT_TRUE(SameText("", ""));
    EXPECT_FALSE(SameText("TAB", "TAB "));
    EXPECT_FALSE(SameText("", " "));
    EXPECT_FALSE(SameText("ss", "\xDF"));
}

TEST(BeginsWith, LooksAtTheStartWithoutRegardToCase) {
    EXPECT_TRUE(BeginsWith("FileName=x", "filename="));
    EXPECT_TRUE(BeginsWith("x", ""));
    EXPECT_TRUE(BeginsWith("", ""));
    EXPECT_TRUE(BeginsWith("\xC9t\xE9", "\xE9"));
    EXPECT_FALSE(BeginsWith("File", "FileName"));
    EXPECT_FALSE(BeginsWith(" File", "File"));
    EXPECT_FALSE(BeginsWith("\xE9t\xE9", "e"));
}

TEST(FindText, FindsTheFirstPlaceFromAPosition) {
    const std::string_view text = "H_ORDDATE format:Format:";

    EXPECT_EQ(FindText(text, "Format:"), 10u);
    EXPECT_EQ(FindText(text, "FORMAT:", 10), 10u);
    EXPECT_EQ(FindText(text, "format:", 11), 17u);
    EXPECT_EQ(FindText(text, "format:", 18), std::string_view::npos);
    EXPECT_EQ(FindText(text, "nothing"), std::string_view::npos);
    EXPECT_EQ(FindText("\xC9T\xC9", "\xE9", 1), 2u);
    EXPECT_EQ(FindText("aab", "ab"), 1u);
}

TEST(FindText, FindsAnEmptyPartWhereItStarts) {
    EXPECT_EQ(FindText("abc", ""), 0u);
    EXPECT_EQ(FindText("abc", "", 2), 2u);
    EXPECT_EQ(FindText("abc", "", 3), 3u);
    EXPECT_EQ(FindText("abc", "", 4), std::string_view::npos);
    EXPECT_EQ(FindText("", ""), 0u);
    EXPECT_EQ(FindText("", "a"), std::string_view::npos);
    EXPECT_EQ(FindText("abc", "a", std::string_view::npos), std::string_view::npos);
}

TEST(Trim, CutsBlanksAndNothingElse) {
    EXPECT_EQ(Trim("  a b  "), "a b");
    EXPECT_EQ(TrimLeft("  a b  "), "a b  ");
    EXPECT_EQ(TrimRight("  a b  "), "  a b");
    EXPECT_EQ(Trim("\t a \r\n"), "\t a \r\n");
    EXPECT_EQ(Trim("\xA0 a"), "\xA0 a");
    EXPECT_EQ(Trim("    "), "");
    EXPECT_EQ(TrimLeft("    "), "");
    EXPECT_EQ(TrimRight("    "), "");
    EXPECT_EQ(Trim(""), "");
}

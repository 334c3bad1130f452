#include "core/CodePage.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <string>

namespace {

char Char(unsigned byte) {
    return static_cast<char>(static_cast<unsigned char>(byte));
}

/// UTF-8 as its definition writes it, for any code up to 0x1FFFFF and in any length that holds it.
std::string Encoded(std::uint32_t code, int length) {
    if (length == 1) return {Char(code)};
    std::string bytes;
    for (int i = 0; i < length - 1; ++i) {
        bytes.insert(bytes.begin(), Char(0x80 | (code & 0x3F)));
        code >>= 6;
    }
    const unsigned marks[] = {0xC0, 0xE0, 0xF0};
    bytes.insert(bytes.begin(), Char(marks[length - 2] | code));
    return bytes;
}

int ShortestLength(std::uint32_t code) {
    return code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
}

} // namespace

TEST(CodePage, EveryByteComesBackFromUtf8) {
    std::string all;
    for (unsigned byte = 0; byte < 256; ++byte) {
        const std::string one(1, Char(byte));
        EXPECT_EQ(Utf8ToCodePage(CodePageToUtf8(one)), one) << byte;
        all += one;
    }

    EXPECT_EQ(Utf8ToCodePage(CodePageToUtf8(all)), all);
    EXPECT_TRUE(IsValidUtf8(CodePageToUtf8(all)));
}

TEST(CodePage, HoldsTheCharactersThatThePageIsKnownFor) {
    EXPECT_EQ(CodePageToUtf8("\x80\x82\x83\x84\x85\x86\x87\x88\x89\x8A\x8B\x8C\x8E"), "€‚ƒ„…†‡ˆ‰Š‹ŒŽ");
    EXPECT_EQ(CodePageToUtf8("\x91\x92\x93\x94\x95\x96\x97\x98\x99\x9A\x9B\x9C\x9E\x9F"), "‘’“”•–—˜™š›œžŸ");
    EXPECT_EQ(CodePageToUtf8("\xA0\xBF\xC0\xE9\xDF\xFF"), "\u00A0¿Àéßÿ");
    EXPECT_EQ(Utf8ToCodePage("€ 5 – Žižka’s Œuvre™"), "\x80 5 \x96 \x8Ei\x9Eka\x92s \x8Cuvre\x99");
}

TEST(CodePage, BytesWithoutCharacterAreControlCharactersOfTheSameCode) {
    EXPECT_EQ(CodePageToUtf8("\x81\x8D\x8F\x90\x9D"), "\u0081\u008D\u008F\u0090\u009D");
}

TEST(CodePage, OnlyTheCharactersOfThePageAreKept) {
    int kept = 0;
    for (std::uint32_t code = 0; code <= 0x10FFFF; ++code) {
        if (code >= 0xD800 && code <= 0xDFFF) continue;
        const std::string utf8 = Encoded(code, ShortestLength(code));
        const std::string text = Utf8ToCodePage(utf8);
        ASSERT_EQ(text.size(), 1u) << code;
        if (text != "?" || code == '?') {
            ++kept;
            ASSERT_EQ(CodePageToUtf8(text), utf8) << code;
        }
    }
    EXPECT_EQ(kept, 256);
}

TEST(CodePage, WhatThePageLacksBecomesAQuestionMark) {
    EXPECT_EQ(Utf8ToCodePage("Ω 東京 😀 \uFEFF"), "? ?? ? ?");
    EXPECT_EQ(Utf8ToCodePage("\u0080"), "?");
}

TEST(CodePage, MalformedPiecesBecomeOneQuestionMarkEach) {
    EXPECT_EQ(Utf8ToCodePage("a\x80z"), "a?z");
    EXPECT_EQ(Utf8ToCodePage("a\xC3"), "a?");
    EXPECT_EQ(Utf8ToCodePage("a\xE2\x82z"), "a?z");
    EXPECT_EQ(Utf8ToCodePage("\xF0\x9F\x98"), "?");
    EXPECT_EQ(Utf8ToCodePage("\xC0\xAF"), "??");
    EXPECT_EQ(Utf8ToCodePage("\xC3\xC3\xA9"), "?\xE9");
}

TEST(CodePage, EveryCharacterIsValidUtf8InItsShortestFormOnly) {
    for (std::uint32_t code = 0; code <= 0x10FFFF; ++code) {
        const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
        const int shortest = ShortestLength(code);
        for (int length = shortest; length <= 4; ++length) {
            const bool valid = length == shortest && !surrogate;
            ASSERT_EQ(IsValidUtf8(Encoded(code, length)), valid) << code << " in " << length;
        }
    }
    for (std::uint32_t code = 0x110000; code <= 0x1FFFFF; ++code) ASSERT_FALSE(IsValidUtf8(Encoded(code, 4)));
}

TEST(CodePage, CutOffOrStrayBytesAreNoValidUtf8) {
    EXPECT_TRUE(IsValidUtf8(""));
    EXPECT_TRUE(IsValidUtf8("Grüße, 東京 😀"));
    for (const std::string_view text : {"\x80", "\xBF", "\xFE", "\xFF", "\xC3", "\xE2\x82", "\xF0\x9F\x98",
                                        "\xC3(", "\xE2(\x82", "\xF8\x88\x80\x80\x80", "M\xFCller"})
        EXPECT_FALSE(IsValidUtf8(text)) << ::testing::PrintToString(text);
}

TEST(CodePage, AnyBytesAtAllGiveAText) {
    std::mt19937 random(20261115);
    for (int round = 0; round < 20000; ++round) {
        std::string bytes(random() % 12, '\0');
        for (char& c : bytes) c = Char(random() % 3 == 0 ? random() : 0x80 + random() % 0x80);
        const std::string text = Utf8ToCodePage(bytes);
        ASSERT_LE(text.size(), bytes.size());
        ASSERT_EQ(text.empty(), bytes.empty());
    }
}

TEST(CodePage, HighBytesAreThoseAbove127) {
    EXPECT_FALSE(HasHighBytes(""));
    EXPECT_FALSE(HasHighBytes("plain ~\x7F\x01"));
    EXPECT_TRUE(HasHighBytes("caf\xE9"));
    EXPECT_TRUE(HasHighBytes("\x80"));
}

TEST(CodePage, OneHighByteIsFoundAndConvertedAtAnyPlace) {
    for (std::size_t before = 0; before < 100; ++before) {
        const std::string first(before, 'a');
        const std::string last(100 - before, 'z');
        ASSERT_TRUE(HasHighBytes(first + "\x80" + last)) << before;
        ASSERT_EQ(Utf8ToCodePage(first + "\xC3\xA9" + last), first + "\xE9" + last) << before;
        ASSERT_TRUE(IsValidUtf8(first + "\xC3\xA9" + last)) << before;
        ASSERT_FALSE(IsValidUtf8(first + "\xE9" + last)) << before;
    }
}

TEST(CodePage, CaseChangesForEveryLetterThatHasBothForms) {
    const std::string small = Utf8ToCodePage("abcxyzàáâãäåæçèéêëìíîïðñòóôõöøùúûüýþšœžÿ");
    const std::string large = Utf8ToCodePage("ABCXYZÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖØÙÚÛÜÝÞŠŒŽŸ");

    EXPECT_EQ(UpperCase(small), large);
    EXPECT_EQ(LowerCase(large), small);
    EXPECT_EQ(UpperCase(large), large);
    EXPECT_EQ(LowerCase(small), small);
}

TEST(CodePage, CharactersWithoutASecondFormStay) {
    const std::string text = Utf8ToCodePage("09 @[`{_ßƒµªº×÷€¿¡\u00A0\u0081");

    EXPECT_EQ(UpperCase(text), text);
    EXPECT_EQ(LowerCase(text), text);
}

TEST(CodePage, CaseGoesThereAndBackForEveryByte) {
    int pairs = 0;
    for (unsigned byte = 0; byte < 256; ++byte) {
        const char c = Char(byte);
        EXPECT_EQ(ToUpper(ToLower(c)), ToUpper(c)) << byte;
        EXPECT_EQ(ToLower(ToUpper(c)), ToLower(c)) << byte;
        if (ToUpper(c) != c) ++pairs;
    }
    EXPECT_EQ(pairs, 26 + 30 + 4);
}

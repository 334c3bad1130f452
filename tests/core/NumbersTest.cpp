#include "core/Numbers.h"
#include "support/Fails.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

/// A double of any size: its exponent is as random as its digits.
double RandomDouble(std::mt19937_64& random) {
    for (;;) {
        const std::uint64_t bits = random();
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        if (std::isfinite(value)) return value;
    }
}

} // namespace

TEST(Numbers, NumericTextsAreConvertedWhole) {
    struct Row {
        const char* Text;
        double Value;
    };
    const std::vector<Row> rows = {
        {"0", 0},
        {"5", 5},
        {"  5  ", 5},
        {"+5", 5},
        {"-5", -5},
        {"- 5", -5},
        {"5-", -5},
        {"5 -", -5},
        {"5+", 5},
        {"1,2", 12},
        {"1,250.00", 1250},
        {"1,234,567.5", 1234567.5},
        {".5", 0.5},
        {"5.", 5},
        {"-.5", -0.5},
        {"1E5", 100000},
        {"1e+5", 100000},
        {"1D5", 100000},
        {"1d-2", 0.01},
        {"25.E-1", 2.5},
        {"1,000E2", 100000},
        {"1E5-", -100000},
        {"$5", 5},
        {"$ 5", 5},
        {"$-5", -5},
        {"-$5", -5},
        {"- $ 5", -5},
        {"$5-", -5},
        {"\x80"
         "5",
         5},
        {"\xA3"
         "5.20",
         5.2},
        {"(5)", -5},
        {"( 5 )", -5},
        {"($1,250.50)", -1250.5},
        {"$(5)", -5},
        {"000000000000000000000000000007", 7},
        {"0.1", 0.1},
        {"123456789.123456789", 123456789.123456789},
        {"1.7976931348623157E308", std::numeric_limits<double>::max()},
        {"4.9E-324", std::numeric_limits<double>::denorm_min()},
        {"0E999", 0},
        {"1E-999", 0},
        {"-1E-99999999999999999999999", 0},
        {"1E0000000000000000000000000000002", 100},
    };
    for (const Row& row : rows) {
        EXPECT_TRUE(IsNumeric(row.Text)) << row.Text;
        EXPECT_EQ(ToNumber(row.Text), row.Value) << row.Text;
    }
}

TEST(Numbers, OtherTextsAreNotNumericAndGiveTheirLeadingNumber) {
    struct Row {
        const char* Text;
        double Leading;
    };
    const std::vector<Row> rows = {
        {"", 0},       {"   ", 0},     {"abc", 0},     {"&H1F", 0},   {"0x1F", 0},     {"1.2.3", 1.2},
        {"nan", 0},    {"NAN", 0},     {"inf", 0},     {"-inf", 0},   {"infinity", 0}, {"1E999", 0},
        {"-1E999", 0}, {"1E99999", 0}, {".", 0},       {"-", 0},      {"+", 0},        {"$", 0},
        {"()", 0},     {"(", 0},       {"E5", 0},      {".E5", 0},    {"1E", 1},       {"1E+", 1},
        {"1E 5", 1},   {"1 E5", 1},    {"1E5.5", 1E5}, {"--5", 0},    {"-5-", -5},     {"5--", 5},
        {"+-5", 0},    {",5", 0},      {"5,", 5},      {"1,,2", 1},   {"1,.5", 1},     {"1.5,0", 1.5},
        {"1 2", 1},    {"12 pcs", 12}, {"5$", 5},      {"$$5", 0},    {"(5", 0},       {"5)", 5},
        {"(-5)", 0},   {"-(5)", 0},    {"((5))", 0},   {"(5)-", 0},   {"5%", 5},       {"1,250 pcs", 1},
        {"\t5", 0},    {"5\r\n", 5},   {"- 5 kg", -5}, {"1F", 1},     {"1_000", 1},    {"\xB2", 0},
        {"\xA0 5", 0}, {"5/2", 5},     {"1e5e5", 1E5}, {"1E1,0", 10}, {"1.E", 1},      {"12D", 12},
    };
    for (const Row& row : rows) {
        EXPECT_FALSE(IsNumeric(row.Text)) << row.Text;
        EXPECT_EQ(ToNumber(row.Text), row.Leading) << row.Text;
    }
    EXPECT_FALSE(IsNumeric(std::string_view("5\0", 2)));
}

TEST(Numbers, ValIsTheLeadingNumberAlone) {
    EXPECT_EQ(Val("1,250.00"), 1);
    EXPECT_EQ(Val("  -12.5E1abc"), -125);
    EXPECT_EQ(Val("(5)"), 0);
    EXPECT_EQ(Val("$5"), 0);
    EXPECT_EQ(Val("5-"), 5);
    EXPECT_EQ(Val(".5.5"), 0.5);
    EXPECT_EQ(Val(""), 0);
}

TEST(Numbers, LongTextsAreMeasuredByTheirValue) {
    EXPECT_FALSE(IsNumeric(std::string(400, '9')));
    EXPECT_TRUE(IsNumeric("0." + std::string(400, '0') + "1"));
    EXPECT_EQ(ToNumber("0." + std::string(400, '0') + "1"), 0);
    EXPECT_EQ(ToNumber("0." + std::string(400, '0') + "1E401"), 1);
    EXPECT_EQ(ToNumber("1" + std::string(400, '0') + "E-400"), 1);
    EXPECT_EQ(ToNumber("1" + std::string(400, '0') + "E-999"), 0);
    EXPECT_EQ(ToNumber(std::string(5000, '0') + "1"), 1);
}

TEST(Numbers, ZeroHasNoSign) {
    EXPECT_FALSE(std::signbit(ToNumber("-0")));
    EXPECT_FALSE(std::signbit(ToNumber("(0.00)")));
    EXPECT_FALSE(std::signbit(Val("-0 x")));
    EXPECT_FALSE(std::signbit(RoundToEven(-0.4)));
}

TEST(Numbers, ConversionIsExactForEveryDouble) {
    std::mt19937_64 random(7);
    for (int round = 0; round < 50000; ++round) {
        const double value = RandomDouble(random);
        char buffer[40];
        const auto written = std::to_chars(buffer, buffer + sizeof buffer, value);
        const std::string text(buffer, written.ptr);
        ASSERT_TRUE(IsNumeric(text)) << text;
        ASSERT_EQ(ToNumber(text), value) << text;
        ASSERT_EQ(Val(text), value) << text;
    }
}

TEST(Numbers, AnyTextIsReadAndGivesAFiniteNumber) {
    const std::string_view characters = "0123456789.,+-EeDd$() \x80x";
    std::mt19937 random(11);
    int numeric = 0;
    for (int round = 0; round < 300000; ++round) {
        std::string text(random() % 9, ' ');
        for (char& c : text) c = characters[random() % characters.size()];
        const double value = ToNumber(text);
        ASSERT_TRUE(std::isfinite(value)) << text;
        ASSERT_EQ(NumericValue(text), IsNumeric(text) ? std::optional(value) : std::nullopt) << text;
        if (!IsNumeric(text)) {
            ASSERT_EQ(value, Val(text)) << text;
            continue;
        }
        ++numeric;
        ASSERT_TRUE(IsNumeric(" " + text + "  ")) << text;
        ASSERT_FALSE(IsNumeric(text + "x")) << text;
    }
    EXPECT_GT(numeric, 1000);
}

TEST(Numbers, NumbersAreWrittenPlainlyUpToFifteenDigits) {
    struct Row {
        double Value;
        const char* Text;
    };
    const std::vector<Row> rows = {
        {0, "0"},
        {-0.0, "0"},
        {12, "12"},
        {-12.5, "-12.5"},
        {0.5, "0.5"},
        {-0.05, "-0.05"},
        {100, "100"},
        {1250.00, "1250"},
        {0.1 + 0.2, "0.3"},
        {1.0 / 3, "0.333333333333333"},
        {2.0 / 3, "0.666666666666667"},
        {123456789.123456789, "123456789.123457"},
        {999999999999999, "999999999999999"},
        {999999999999999.4, "999999999999999"},
        {999999999999999.9, "1E+15"},
        {1E15, "1E+15"},
        {-1.5E15, "-1.5E+15"},
        {1234567890123456789.0, "1.23456789012346E+18"},
        {1E300, "1E+300"},
        {0.00001, "0.00001"},
        {1.5E-20, "0.000000000000000000015"},
    };
    for (const Row& row : rows) EXPECT_EQ(NumberToText(row.Value), row.Text) << row.Value;
}

TEST(Numbers, FifteenDigitsAreThoseOfTheExactValueRounded) {
    std::mt19937_64 random(17);
    for (int round = 0; round < 100000; ++round) {
        double value = RandomDouble(random);
        if (round % 2 == 0) value = std::floor(value * 1E-290) / 10000; // few digits, as money has them
        if (round % 3 == 0) value = static_cast<double>(random() % 1'000'000'000) / 10000;
        if (round % 5 == 0) value = std::ldexp(value, -1060); // below what a double holds in full
        if (std::fabs(value) > 1.797E308) continue;           // rounding to 15 digits could leave the range
        char buffer[40];
        const auto exact =
            std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific, 14);
        double rounded = 0;
        std::from_chars(buffer, exact.ptr, rounded);
        ASSERT_EQ(ToNumber(NumberToText(value)), rounded) << buffer;
    }
    EXPECT_EQ(NumberToText(5E-324).substr(325), "494065645841247");
}

TEST(Numbers, WhatIsNoFiniteNumberCannotBeWritten) {
    for (const double value : {kInfinity, -kInfinity, kNotANumber}) {
        EXPECT_EQ(FailureNumber([&] { NumberToText(value); }), 6);
        EXPECT_EQ(FailureNumber([&] { Money(value); }), 6);
        EXPECT_EQ(FailureNumber([&] { ToFixed4(value); }), 6);
    }
}

TEST(Numbers, AWrittenNumberIsReadBackTheSame) {
    std::mt19937_64 random(13);
    for (int round = 0; round < 50000; ++round) {
        const double value = RandomDouble(random);
        if (std::fabs(value) > 1.797E308) continue; // rounding to 15 digits could leave the range
        const std::string text = NumberToText(value);
        const double read = ToNumber(text);
        ASSERT_TRUE(IsNumeric(text)) << text;
        ASSERT_EQ(NumberToText(read), text);
        if (std::fabs(value) > 1E-290) {
            ASSERT_LE(std::fabs(read - value), std::fabs(value) * 5.1E-15) << text;
        }
    }
    for (int round = 0; round < 50000; ++round) {
        const auto whole = static_cast<double>(static_cast<std::int64_t>(random() % 2'000'000'000'000'000) -
                                               1'000'000'000'000'000);
        if (std::fabs(whole) >= 1E15) continue;
        ASSERT_EQ(ToNumber(NumberToText(whole)), whole);
        ASSERT_EQ(ToNumber(NumberToText(whole / 100)), whole / 100);
    }
}

TEST(Numbers, MoneyForTablesHasFourDecimalsRoundedToEven) {
    struct Row {
        double Value;
        std::int64_t Fixed;
        const char* Text;
    };
    const std::vector<Row> rows = {
        {0, 0, "0"},
        {12.5, 125000, "12.5"},
        {-12.5, -125000, "-12.5"},
        {3, 30000, "3"},
        {100, 1000000, "100"},
        {0.0001, 1, "0.0001"},
        {-0.0001, -1, "-0.0001"},
        {0.00005, 0, "0"},
        {-0.00005, 0, "0"},
        {0.000050001, 1, "0.0001"},
        {0.00015, 2, "0.0002"},
        {1.00005, 10000, "1"},
        {1.00015, 10002, "1.0002"},
        {1.00025, 10002, "1.0002"},
        {-1.00035, -10004, "-1.0004"},
        {9.99995, 100000, "10"},
        {0.1 + 0.2, 3000, "0.3"},
        {1E-300, 0, "0"},
        {123456789012.3456, 1234567890123456, "123456789012.3456"},
        {922337203685000, 9223372036850000000, "922337203685000"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(ToFixed4(row.Value), row.Fixed) << row.Value;
        EXPECT_EQ(Fixed4ToText(row.Fixed), row.Text) << row.Value;
    }
    EXPECT_EQ(Fixed4ToText(std::numeric_limits<std::int64_t>::min()), "-922337203685477.5808");
    EXPECT_EQ(Fixed4ToText(std::numeric_limits<std::int64_t>::max()), "922337203685477.5807");
    EXPECT_EQ(FailureNumber([] { ToFixed4(1E15); }), 6);
    EXPECT_EQ(FailureNumber([] { ToFixed4(-1E300); }), 6);
}

TEST(Numbers, FixedMoneyComesBackFromItsText) {
    std::mt19937_64 random(17);
    for (int round = 0; round < 100000; ++round) {
        const auto fixed =
            static_cast<std::int64_t>(random() % 2'000'000'000'000'000) - 1'000'000'000'000'000;
        const std::string text = Fixed4ToText(fixed);
        ASSERT_TRUE(IsNumeric(text)) << text;
        ASSERT_EQ(ToFixed4(ToNumber(text)), fixed) << text;
    }
}

TEST(Numbers, FixedDecimalsAreRoundedAwayFromZeroAndFilledUp) {
    struct Case {
        double Value;
        int Decimals;
        const char* Text;
    };
    const Case cases[] = {{6.5, 5, "6.50000"},          {0, 5, "0.00000"},
                          {-0.000004, 5, "0.00000"},    {1.000005, 5, "1.00001"},
                          {-12.345678, 5, "-12.34568"}, {1.25, 1, "1.3"},
                          {-0.004, 2, "0.00"},          {123456789.5, 3, "123456789.500"}};
    for (const Case& each : cases)
        EXPECT_EQ(FixedDecimals(each.Value, each.Decimals), each.Text) << each.Value;
    EXPECT_EQ(FailureNumber([] { FixedDecimals(std::numeric_limits<double>::infinity(), 5); }), 6);
}

TEST(Numbers, MoneyOnScreenHasTwoDecimals) {
    struct Row {
        double Value;
        const char* Text;
    };
    const std::vector<Row> rows = {
        {0, "0.00"},
        {-1.5, "-1.50"},
        {1234.5, "1234.50"},
        {0.05, "0.05"},
        {0.005, "0.01"},
        {-0.005, "-0.01"},
        {0.0049, "0.00"},
        {-0.0049, "0.00"},
        {0.05 * 0.1, "0.01"},
        {1.005, "1.01"},
        {2.675, "2.68"},
        {0.335 * 3, "1.01"},
        {99.995, "100.00"},
        {-9.995, "-10.00"},
        {12345678901234.56, "12345678901234.56"},
        {1E20, "100000000000000000000.00"},
        {1E-300, "0.00"},
    };
    for (const Row& row : rows) EXPECT_EQ(Money(row.Value), row.Text) << row.Value;
}

TEST(Numbers, HalvesGoToTheEvenNumber) {
    struct Row {
        double Value;
        double Rounded;
    };
    for (const Row& row : {Row{0.5, 0},
                           {1.5, 2},
                           {2.5, 2},
                           {3.5, 4},
                           {-0.5, 0},
                           {-1.5, -2},
                           {-2.5, -2},
                           {2.4999999999999996, 2},
                           {2.5000000000000004, 3},
                           {0.49999999999999994, 0},
                           {7, 7},
                           {4503599627370497.5, 4503599627370498},
                           {9007199254740992, 9007199254740992},
                           {1E300, 1E300}})
        EXPECT_EQ(RoundToEven(row.Value), row.Rounded) << row.Value;

    EXPECT_EQ(RoundToEven(kInfinity), kInfinity);
    EXPECT_TRUE(std::isnan(RoundToEven(kNotANumber)));
}

TEST(Numbers, WholeNumbersAreRoundedAndStayInTheirRange) {
    EXPECT_EQ(ToLong("2.5"), 2);
    EXPECT_EQ(ToLong("(1,234)"), -1234);
    EXPECT_EQ(ToLong("2147483647.4"), 2147483647);
    EXPECT_EQ(ToLong("-2147483648.5"), -2147483648);
    EXPECT_EQ(FailureNumber([] { ToLong("2147483647.5"); }), 6);
    EXPECT_EQ(FailureNumber([] { ToLong("-2147483648.6"); }), 6);
    EXPECT_EQ(FailureNumber([] { ToLong("1E300"); }), 6);

    EXPECT_EQ(ToInteger("32767.4"), 32767);
    EXPECT_EQ(ToInteger("-32768.5"), -32768);
    EXPECT_EQ(FailureNumber([] { ToInteger("32767.5"); }), 6);
    EXPECT_EQ(FailureNumber([] { ToInteger("-32769"); }), 6);
}

TEST(Numbers, ListGivesItsWholeNumbersInItsOrderAndLeavesOutTheRest) {
    using List = std::vector<std::int32_t>;
    EXPECT_EQ(WholeNumbers("3, 1, 1, 2147483647", ", "), (List{3, 1, 1, 2147483647}));
    EXPECT_EQ(WholeNumbers("2147483648, 99999999999999999999, -1, -0, +1, 1.5, 1x,  7, x, , 4, ", ", "),
              (List{4}));
    EXPECT_EQ(WholeNumbers("", ", "), List{});
}

TEST(Numbers, WholeNumbersWantANumericText) {
    for (const char* text : {"", "  ", "abc", "12 pcs", "1E999", "0x10"}) {
        EXPECT_EQ(FailureNumber([&] { ToLong(text); }), 13) << text;
        EXPECT_EQ(FailureNumber([&] { ToInteger(text); }), 13) << text;
    }
}

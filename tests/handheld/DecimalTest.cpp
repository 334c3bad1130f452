#include "handheld/Decimal.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <random>

namespace {

constexpr std::int64_t Most = std::numeric_limits<std::int64_t>::max();

TEST(Decimal, ATextIsReadInItsLastPlace) {
    EXPECT_EQ(ReadDecimal("12.5", 4), 125000);
    EXPECT_EQ(ReadDecimal(" 1,250.00 ", 2), 125000);
    EXPECT_EQ(ReadDecimal("-.05", 2), -5);
    EXPECT_EQ(ReadDecimal("7", 0), 7);
    EXPECT_EQ(ReadDecimal("+3.", 1), 30);
}

TEST(Decimal, FurtherDecimalsAreRoundedHalfAwayFromZero) {
    EXPECT_EQ(ReadDecimal("0.12345", 4), 1235);
    EXPECT_EQ(ReadDecimal("0.12344999", 4), 1234);
    EXPECT_EQ(ReadDecimal("-1.005", 2), -101);
}

TEST(Decimal, WhatIsNoNumberIsNone) {
    for (const char* text : {"", " ", ".", "-", "12.5A", "1.2.3", "1,2,", ",5", "1,,2", "1E5", "$5", "- 5"}) {
        EXPECT_EQ(ReadDecimal(text, 2), std::nullopt) << text;
    }
    EXPECT_EQ(ReadDecimal("92233720368547759", 2), std::nullopt);
}

TEST(Decimal, ATextHasNoZerosAtItsEnd) {
    EXPECT_EQ(DecimalText(125000, 4), "12.5");
    EXPECT_EQ(DecimalText(-5, 2), "-0.05");
    EXPECT_EQ(DecimalText(300, 2), "3");
    EXPECT_EQ(DecimalText(0, 4), "0");
    EXPECT_EQ(DecimalText(std::numeric_limits<std::int64_t>::min(), 0), "-9223372036854775808");
}

TEST(Decimal, AProductIsExactAndRoundedHalfAwayFromZero) {
    EXPECT_EQ(ProductOver(5, 1, 10), 1);
    EXPECT_EQ(ProductOver(-5, 1, 10), -1);
    EXPECT_EQ(ProductOver(49, 1, 100), 0);
    EXPECT_EQ(ProductOver(99'999'999'999, 99'999'999'999, 1'000'000'000), 9'999'999'999'800);
    EXPECT_EQ(ProductOver(Most, 1, 2), Most / 2 + 1);
    EXPECT_EQ(ProductOver(Most, 2, 1), std::nullopt);
}

TEST(Decimal, ProductsOfSmallNumbersAreThoseOfWholeNumbers) {
    std::mt19937 random(7);
    for (int turn = 0; turn < 20000; ++turn) {
        const auto a = static_cast<std::int64_t>(random()) - 0x7FFFFFFF;
        const auto b = static_cast<std::int64_t>(random() % 0x3FFFFFFF);
        const std::uint32_t divisor = 1 + random() % 10'000'000;
        const std::int64_t exact = a * b;
        const std::int64_t half =
            exact < 0 ? -static_cast<std::int64_t>(divisor) : static_cast<std::int64_t>(divisor);
        EXPECT_EQ(ProductOver(a, b, divisor), (2 * exact + half) / (2 * static_cast<std::int64_t>(divisor)));
    }
}

TEST(Decimal, ASumThatDoesNotFitIsNone) {
    EXPECT_EQ(Sum(Most - 1, 1), Most);
    EXPECT_EQ(Sum(Most, 1), std::nullopt);
    EXPECT_EQ(Sum(-Most, -2), std::nullopt);
}

} // namespace

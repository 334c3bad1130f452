#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Decimal numbers as whole numbers of their last place, so that money is never a binary fraction.

/// The number that a text tells, times 10 to the power of `decimals` (0 to 9); further decimals are rounded
/// half away from zero. Read are digits with commas between them before the point, one point, a sign in
/// front, blanks around. Nothing for any other text and for what does not fit 64 bits.
std::optional<std::int64_t> ReadDecimal(std::string_view text, int decimals);

/// The text of such a number, without zeros at the end: "12.5", "-0.05", "3".
std::string DecimalText(std::int64_t value, int decimals);

/// a * b / divisor, exactly, rounded half away from zero. The divisor is 1 to 2^31. Nothing when the
/// result does not fit 64 bits.
std::optional<std::int64_t> ProductOver(std::int64_t a, std::int64_t b, std::uint32_t divisor);

/// a + b; nothing when it does not fit 64 bits.
std::optional<std::int64_t> Sum(std::int64_t a, std::int64_t b);

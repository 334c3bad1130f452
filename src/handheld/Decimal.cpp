#include "handheld/Decimal.h"

#include "core/TextCompare.h"

#include <algorithm>
#include <array>
#include <limits>

namespace {

constexpr std::int64_t Most = std::numeric_limits<std::int64_t>::max();

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

std::uint64_t Size(std::int64_t value) {
    return value < 0 ? std::uint64_t{0} - static_cast<std::uint64_t>(value)
                     : static_cast<std::uint64_t>(value);
}

/// The digits before the point without their commas; nothing when a comma stands elsewhere.
std::optional<std::string> WholeDigits(std::string_view whole) {
    std::string digits;
    for (std::size_t at = 0; at < whole.size(); ++at) {
        if (IsDigit(whole[at])) {
            digits += whole[at];
        } else if (whole[at] != ',' || at == 0 || at + 1 == whole.size() || !IsDigit(whole[at + 1])) {
            return std::nullopt;
        }
    }
    return digits;
}

/// Four 32-bit limbs, the lowest first.
using Wide = std::array<std::uint32_t, 4>;

Wide Product(std::uint64_t a, std::uint64_t b) {
    const std::array<std::uint64_t, 2> x{a & 0xFFFFFFFF, a >> 32}, y{b & 0xFFFFFFFF, b >> 32};
    Wide product{};
    for (std::size_t i = 0; i < 2; ++i) {
        std::uint64_t carry = 0;
        for (std::size_t j = 0; j < 2; ++j) {
            const std::uint64_t cell = x.at(i) * y.at(j) + product.at(i + j) + carry;
            product.at(i + j) = static_cast<std::uint32_t>(cell);
            carry = cell >> 32;
        }
        product.at(i + 2) = static_cast<std::uint32_t>(carry);
    }
    return product;
}

/// Divides in place; the remainder.
std::uint32_t Divide(Wide& number, std::uint32_t divisor) {
    std::uint64_t rest = 0;
    for (std::size_t at = number.size(); at-- > 0;) {
        rest = rest << 32 | number.at(at);
        number.at(at) = static_cast<std::uint32_t>(rest / divisor);
        rest %= divisor;
    }
    return static_cast<std::uint32_t>(rest);
}

} // namespace

std::optional<std::int64_t> ReadDecimal(std::string_view text, int decimals) {
    text = Trim(text);
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    const std::size_t point = std::min(text.find('.'), text.size());
    const std::optional<std::string> whole = WholeDigits(text.substr(0, point));
    const std::string_view fraction = point < text.size() ? text.substr(point + 1) : std::string_view();
    if (!whole || whole->size() + fraction.size() == 0) return std::nullopt;
    if (!std::all_of(fraction.begin(), fraction.end(), IsDigit)) return std::nullopt;

    const auto kept = static_cast<std::size_t>(decimals);
    std::string digits = *whole + std::string(fraction.substr(0, kept));
    if (fraction.size() < kept) digits.append(kept - fraction.size(), '0');
    std::int64_t value = 0;
    for (const char c : digits) {
        if (value > (Most - 9) / 10) return std::nullopt;
        value = value * 10 + (c - '0');
    }
    if (fraction.size() > kept && fraction[kept] >= '5') ++value;
    return negative ? -value : value;
}

std::string DecimalText(std::int64_t value, int decimals) {
    std::string digits = std::to_string(Size(value));
    const auto places = static_cast<std::size_t>(decimals);
    if (digits.size() <= places) digits.insert(0, places + 1 - digits.size(), '0');
    std::string text = digits.substr(0, digits.size() - places);
    std::string fraction = digits.substr(digits.size() - places);
    fraction.erase(fraction.find_last_not_of('0') + 1);
    if (!fraction.empty()) text += '.' + fraction;
    return value < 0 ? '-' + text : text;
}

std::optional<std::int64_t> ProductOver(std::int64_t a, std::int64_t b, std::uint32_t divisor) {
    Wide number = Product(Size(a), Size(b));
    const std::uint32_t rest = Divide(number, divisor);
    std::uint64_t size = std::uint64_t{number[1]} << 32 | number[0];
    if (number[2] != 0 || number[3] != 0 || size >= static_cast<std::uint64_t>(Most)) return std::nullopt;
    if (rest >= divisor - rest) ++size;
    const auto value = static_cast<std::int64_t>(size);
    return (a < 0) != (b < 0) ? -value : value;
}

std::optional<std::int64_t> Sum(std::int64_t a, std::int64_t b) {
    if (b > 0 ? a > Most - b : a < std::numeric_limits<std::int64_t>::min() - b) return std::nullopt;
    return a + b;
}

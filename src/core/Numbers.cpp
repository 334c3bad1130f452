#include "core/Numbers.h"

#include "core/Failure.h"
#include "core/TextCompare.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <system_error>

namespace {

constexpr int kTypeMismatch = 13;
constexpr int kOverflow = 6;

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsSign(char c) {
    return c == '+' || c == '-';
}

bool IsCurrency(char c) {
    return c == '$' || c == '\x80' || c == '\xA3' || c == '\xA5';
}

bool IsExponentLetter(char c) {
    return c == 'E' || c == 'e' || c == 'D' || c == 'd';
}

/// Length of the longest number without sign at the start of the text, 0 for none.
std::size_t UnsignedLength(std::string_view text, bool withCommas) {
    const auto digitAt = [text](std::size_t i) { return i < text.size() && IsDigit(text[i]); };

    std::size_t end = 0;
    bool hasDigits = false;
    while (end < text.size()) {
        const bool comma = withCommas && text[end] == ',' && hasDigits && digitAt(end + 1);
        if (!comma && !IsDigit(text[end])) break;
        hasDigits = true;
        ++end;
    }
    if (end < text.size() && text[end] == '.' && (hasDigits || digitAt(end + 1))) {
        hasDigits = true;
        ++end;
        while (digitAt(end)) ++end;
    }
    if (!hasDigits) return 0;

    if (end < text.size() && IsExponentLetter(text[end])) {
        std::size_t digits = end + 1;
        if (digits < text.size() && IsSign(text[digits])) ++digits;
        if (digitAt(digits)) {
            end = digits;
            while (digitAt(end)) ++end;
        }
    }
    return end;
}

/// True if a number that no double can hold is too great for it and not too small.
/// `number` has digits, a point and an exponent behind 'e' or 'E' only.
bool IsTooGreat(std::string_view number) {
    const std::size_t exponentAt = std::min(number.find_first_of("eE"), number.size());
    const std::string_view mantissa = number.substr(0, exponentAt);
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    const std::size_t first = mantissa.find_first_of("123456789");
    if (first == std::string_view::npos) return false;

    std::string_view exponentText = number.substr(std::min(exponentAt + 1, number.size()));
    const bool negative = !exponentText.empty() && exponentText[0] == '-';
    if (!exponentText.empty() && IsSign(exponentText[0])) exponentText.remove_prefix(1);
    std::int64_t exponent = 0;
    constexpr std::int64_t kFarAway = 100'000'000'000'000'000; // further than a mantissa is long
    for (const char c : exponentText) exponent = std::min(exponent * 10 + (c - '0'), kFarAway);

    const std::int64_t magnitude = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first);
    return magnitude + (negative ? -exponent : exponent) > 0;
}

/// The value of what UnsignedLength found; nothing if it is too great for a double.
std::optional<double> Convert(std::string_view number) {
    std::string plain;
    if (number.find_first_of(",dD") != std::string_view::npos) {
        plain.reserve(number.size());
        for (const char c : number) {
            if (c != ',') plain += IsExponentLetter(c) ? 'e' : c;
        }
        number = plain;
    }

    double value = 0;
    const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
    if (result.ec == std::errc() && std::isfinite(value)) return value;
    if (IsTooGreat(number)) return std::nullopt;
    return 0.0;
}

/// Adding zero turns a negative zero into a plain one.
double Signed(double value, bool negative) {
    return (negative ? -value : value) + 0.0;
}

/// A text that is written as a number as a whole, whatever its size.
struct WrittenNumber {
    std::string_view Digits; ///< what UnsignedLength found
    bool Negative = false;
};

std::optional<WrittenNumber> TakeApart(std::string_view text) {
    text = Trim(text);
    bool hasSign = false;
    bool hasCurrency = false;
    bool inBrackets = false;
    bool negative = false;
    for (; !text.empty(); text = TrimLeft(text.substr(1))) {
        const char c = text[0];
        if (IsSign(c)) {
            if (hasSign || inBrackets) return std::nullopt;
            hasSign = true;
            negative = c == '-';
        } else if (IsCurrency(c)) {
            if (hasCurrency) return std::nullopt;
            hasCurrency = true;
        } else if (c == '(') {
            if (hasSign || inBrackets) return std::nullopt;
            inBrackets = true;
            negative = true;
        } else {
            break;
        }
    }

    const std::size_t length = UnsignedLength(text, true);
    if (length == 0) return std::nullopt;
    const std::string_view number = text.substr(0, length);
    const std::string_view behind = TrimLeft(text.substr(length));

    if (inBrackets) {
        if (behind != ")") return std::nullopt;
    } else if (!behind.empty()) {
        if (hasSign || behind.size() != 1 || !IsSign(behind[0])) return std::nullopt;
        negative = behind[0] == '-';
    }

    return WrittenNumber{number, negative};
}

/// True if a double holds any number of so many digits without an exponent.
bool IsSurelyFinite(std::string_view number) {
    return number.size() <= std::numeric_limits<double>::max_exponent10 &&
           std::none_of(number.begin(), number.end(), IsExponentLetter);
}

constexpr int kSignificant = 15;     // what NumberToText writes; any decimal of so many digits survives
constexpr int kMostSignificant = 17; // what a double can hold apart

/// A finite double as decimal digits: 0.d1d2d3... times ten to the power `Exponent`.
struct Decimal {
    std::string Digits; ///< no zeros at the end; empty for zero
    int Exponent = 0;
    bool Negative = false;
};

/// `significant` is 1 to 17. Infinity and not-a-number are RunTimeFailure 6.
Decimal ToDecimal(double value, int significant) {
    if (!std::isfinite(value)) throw RunTimeFailure(kOverflow);

    if (value == 0) return {};

    char buffer[40];
    char* const end = buffer + sizeof buffer;
    const double magnitude = std::fabs(value);
    auto written = std::to_chars(buffer, end, magnitude, std::chars_format::scientific);
    std::size_t exponentAt = std::string_view(buffer, written.ptr).find('e');
    const std::size_t digits = exponentAt > 1 ? exponentAt - 1 : exponentAt; // without the point
    // The shortest form costs less. Up to as many digits as a double always keeps, rounding to that
    // many gives the same ones.
    if (digits > kSignificant || significant != kSignificant || !std::isnormal(value)) {
        written = std::to_chars(buffer, end, magnitude, std::chars_format::scientific, significant - 1);
        exponentAt = std::string_view(buffer, written.ptr).find('e');
    }
    const std::string_view text(buffer, written.ptr);

    Decimal decimal;
    for (const char c : text.substr(0, exponentAt)) {
        if (IsDigit(c)) decimal.Digits += c;
    }
    while (!decimal.Digits.empty() && decimal.Digits.back() == '0') decimal.Digits.pop_back();
    if (decimal.Digits.empty()) return decimal;

    std::string_view exponent = text.substr(exponentAt + 1);
    if (exponent[0] == '+') exponent.remove_prefix(1);
    std::from_chars(exponent.data(), exponent.data() + exponent.size(), decimal.Exponent);
    ++decimal.Exponent;
    decimal.Negative = value < 0;
    return decimal;
}

/// At 15 significant digits, or at more where that many do not reach the last of `decimals`.
Decimal ToDecimalFor(double value, int decimals) {
    const Decimal decimal = ToDecimal(value, kSignificant);
    const int needed = std::min(decimal.Exponent + decimals, kMostSignificant);
    return needed > kSignificant ? ToDecimal(value, needed) : decimal;
}

enum class Half { ToEven, AwayFromZero };

/// The digits of the absolute value times ten to the power `decimals`, rounded to a whole number:
/// "0" or a text that does not begin with a zero.
std::string ScaledDigits(const Decimal& decimal, int decimals, Half half) {
    const int places = decimal.Exponent + decimals;
    if (decimal.Digits.empty() || places < 0) return "0";

    const auto kept = static_cast<std::size_t>(places);
    std::string digits = decimal.Digits.substr(0, kept);
    digits.resize(kept, '0');
    const std::string_view rest =
        std::string_view(decimal.Digits).substr(std::min(kept, decimal.Digits.size()));

    bool up = !rest.empty() && rest[0] >= '5';
    const bool isHalf = rest == "5";
    const bool isEven = digits.empty() || (digits.back() - '0') % 2 == 0;
    if (isHalf && half == Half::ToEven && isEven) up = false;

    if (up) {
        std::size_t i = digits.size();
        while (i > 0 && digits[i - 1] == '9') digits[--i] = '0';
        if (i == 0) {
            digits.insert(digits.begin(), '1');
        } else {
            ++digits[i - 1];
        }
    }
    return digits.empty() ? "0" : digits;
}

/// Sets a point before the last `decimals` digits, with a zero before it where none stands.
std::string WithPoint(std::string digits, std::size_t decimals) {
    if (digits.size() <= decimals) digits.insert(0, decimals + 1 - digits.size(), '0');
    digits.insert(digits.size() - decimals, 1, '.');
    return digits;
}

/// Rounded to even and inside the type, or a failure.
template <class Whole>
Whole ToWhole(std::string_view text) {
    const std::optional<double> number = NumericValue(text);
    if (!number) throw RunTimeFailure(kTypeMismatch);
    const double value = RoundToEven(*number);
    if (value < std::numeric_limits<Whole>::min() || value > std::numeric_limits<Whole>::max())
        throw RunTimeFailure(kOverflow);
    return static_cast<Whole>(value);
}

} // namespace

bool IsNumeric(std::string_view text) {
    const std::optional<WrittenNumber> number = TakeApart(text);
    return number && (IsSurelyFinite(number->Digits) || Convert(number->Digits));
}

std::optional<double> NumericValue(std::string_view text) {
    const std::optional<WrittenNumber> number = TakeApart(text);
    if (!number) return std::nullopt;
    const std::optional<double> value = Convert(number->Digits);
    if (!value) return std::nullopt;
    return Signed(*value, number->Negative);
}

double ToNumber(std::string_view text) {
    const std::optional<double> value = NumericValue(text);
    return value ? *value : Val(text);
}

double Val(std::string_view text) {
    text = TrimLeft(text);
    bool negative = false;
    if (!text.empty() && IsSign(text[0])) {
        negative = text[0] == '-';
        text = TrimLeft(text.substr(1));
    }
    const std::size_t length = UnsignedLength(text, false);
    if (length == 0) return 0;
    return Signed(Convert(text.substr(0, length)).value_or(0), negative);
}

std::string NumberToText(double value) {
    const Decimal decimal = ToDecimal(value, kSignificant);
    if (decimal.Digits.empty()) return "0";

    std::string text = decimal.Negative ? "-" : "";
    const std::string& digits = decimal.Digits;
    if (decimal.Exponent > kSignificant) {
        text += digits[0];
        if (digits.size() > 1) text.append(".").append(digits, 1);
        return text + "E+" + std::to_string(decimal.Exponent - 1);
    }
    if (decimal.Exponent <= 0)
        return text.append("0.").append(static_cast<std::size_t>(-decimal.Exponent), '0').append(digits);

    const auto whole = static_cast<std::size_t>(decimal.Exponent);
    if (whole >= digits.size()) return text.append(digits).append(whole - digits.size(), '0');
    return text.append(digits, 0, whole).append(".").append(digits, whole);
}

std::int64_t ToFixed4(double value) {
    const Decimal decimal = ToDecimalFor(value, 4);
    std::string digits = ScaledDigits(decimal, 4, Half::ToEven);
    if (decimal.Negative) digits.insert(digits.begin(), '-');
    std::int64_t result = 0;
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), result);
    if (read.ec != std::errc()) throw RunTimeFailure(kOverflow);
    return result;
}

std::string Fixed4ToText(std::int64_t tenThousandths) {
    // The magnitude of the least number does not fit into a signed one.
    const auto bits = static_cast<std::uint64_t>(tenThousandths);
    std::string text = WithPoint(std::to_string(tenThousandths < 0 ? 0 - bits : bits), 4);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
    if (tenThousandths < 0) text.insert(text.begin(), '-');
    return text;
}

std::string FixedDecimals(double value, int decimals) {
    const Decimal decimal = ToDecimalFor(value, decimals);
    const std::string digits = ScaledDigits(decimal, decimals, Half::AwayFromZero);
    const std::string text = WithPoint(digits, static_cast<std::size_t>(decimals));
    const bool isZero = digits.find_first_not_of('0') == std::string::npos;
    return decimal.Negative && !isZero ? "-" + text : text;
}

std::string Money(double value) {
    return FixedDecimals(value, 2);
}

double RoundToEven(double value) {
    if (!std::isfinite(value)) return value;
    // The remainder is exact and goes to the even number whatever the rounding mode.
    return value - std::remainder(value, 1.0) + 0.0;
}

std::int32_t ToLong(std::string_view text) {
    return ToWhole<std::int32_t>(text);
}

std::int16_t ToInteger(std::string_view text) {
    return ToWhole<std::int16_t>(text);
}

std::vector<std::int32_t> WholeNumbers(std::string_view list, std::string_view separator) {
    std::vector<std::int32_t> numbers;
    for (const std::string_view entry : SplitText(list, separator)) {
        std::int32_t number = 0;
        const char* const end = entry.data() + entry.size();
        const auto [read, error] = std::from_chars(entry.data(), end, number);
        if (error == std::errc() && read == end && !entry.starts_with('-')) numbers.push_back(number);
    }
    return numbers;
}

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Numbers from text and to text. The decimal sign is the point in every locale. Where the
/// decimals of a double are rounded, it counts as the decimal number that NumberToText writes, so
/// that 1.005 lies halfway between 1.00 and 1.01 although its binary value does not.

/// True if the whole text is a number: digits with commas between them, one point, an exponent
/// behind E or D; one sign before it or behind it, or brackets for a negative; one currency sign
/// ($ € £ ¥) before it. Blanks may stand around all of these, not inside the number itself. A
/// number too great for a double is none; one too small for it is 0.
bool IsNumeric(std::string_view text);

/// The value of a numeric text, nothing for any other.
std::optional<double> NumericValue(std::string_view text);

/// The value of a numeric text ("1,250.00" is 1250); of any other text its Val. Always finite,
/// never a negative zero.
double ToNumber(std::string_view text);

/// The number at the start, behind blanks and a sign: digits, a point, an exponent. It ends at
/// the first character that does not belong to it, a comma included. 0 if there is none or if it
/// is too great for a double.
double Val(std::string_view text);

/// Up to 15 significant digits, no zeros at the end, "0.5" with its zero, "-" for negatives. An
/// exponent only where the number as written is 1E+15 or more: "1E+15", "1.5E+300". Infinity and
/// not-a-number are RunTimeFailure 6.
std::string NumberToText(double value);

/// Money in ten-thousandths, rounded half to even. RunTimeFailure 6 beyond 64 bits.
std::int64_t ToFixed4(double value);

/// "12.5", "-0.0001", "3": up to four decimals, without zeros at the end.
std::string Fixed4ToText(std::int64_t tenThousandths);

/// With exactly so many decimals (1 to 15), rounded half away from zero: 1.5 with 5 is "1.50000". What
/// rounds to zero has no sign. Infinity and not-a-number are RunTimeFailure 6.
std::string FixedDecimals(double value, int decimals);

/// Money as the operator sees it: two decimals, rounded half away from zero, "1234.50", "-1.50".
/// What rounds to zero is "0.00" without a sign. Infinity and not-a-number are RunTimeFailure 6.
std::string Money(double value);

/// The nearest whole number, of two equally near the even one. Exact: 2.4999999999999996 is 2.
/// Infinity and not-a-number come back as they are.
double RoundToEven(double value);

/// A numeric text rounded to even. RunTimeFailure 13 if it is not numeric, 6 if the result does
/// not fit into 32 or 16 bits.
std::int32_t ToLong(std::string_view text);
std::int16_t ToInteger(std::string_view text);

/// The whole numbers of a list, in its order. An entry that is not all digits, or does not fit into 32
/// bits, is left out.
std::vector<std::int32_t> WholeNumbers(std::string_view list, std::string_view separator);

#include "core/Dates.h"

#include "core/CodePage.h"
#include "core/DateNames.h"
#include "core/Failure.h"
#include "core/TextCompare.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace {

constexpr int kInvalidCall = 5;
constexpr int kOverflow = 6;

constexpr int kFirstYear = 100;
constexpr int kLastYear = 9999;
constexpr int kSecondsADay = 24 * 60 * 60;

bool IsLeapYear(int year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int DaysInMonth(int year, int month) {
    if (month == 2) return IsLeapYear(year) ? 29 : 28;
    return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

/// Days from the first of March of year 0 to the first of March of `year`, which is not negative.
/// Years that begin in March have their leap day at the end.
constexpr int DaysToMarch(int year) {
    return 365 * year + year / 4 - year / 100 + year / 400;
}

/// Days from the first of March to the first of a month, months counted from March as 0.
constexpr int DaysToMonth(int monthFromMarch) {
    return (153 * monthFromMarch + 2) / 5;
}

constexpr int DayNumber(int year, int month, int day) {
    const int marchYear = month > 2 ? year : year - 1;
    const int monthFromMarch = (month + 9) % 12;
    return DaysToMarch(marchYear) + DaysToMonth(monthFromMarch) + day - 1;
}

constexpr int kSerialZero = DayNumber(1899, 12, 30);
constexpr int kFirstDay = DayNumber(kFirstYear, 1, 1) - kSerialZero;
constexpr int kLastDay = DayNumber(kLastYear, 12, 31) - kSerialZero;

/// Whole days since 1899-12-30 of a valid date.
int SerialDay(const DateTime& date) {
    return DayNumber(date.Year, date.Month, date.Day) - kSerialZero;
}

/// The date of a day from kFirstDay to kLastDay, at midnight.
DateTime FromSerialDay(int serialDay) {
    const int day = serialDay + kSerialZero;
    int year = day / 366;
    while (DaysToMarch(year + 1) <= day) ++year;
    const int dayOfYear = day - DaysToMarch(year);
    const int monthFromMarch = (5 * dayOfYear + 2) / 153;

    DateTime date;
    date.Month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
    date.Year = date.Month > 2 ? year : year + 1;
    date.Day = dayOfYear - DaysToMonth(monthFromMarch) + 1;
    return date;
}

void RequireValid(const DateTime& date) {
    if (!IsValid(date)) throw RunTimeFailure(kInvalidCall);
}

// ---- Reading

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsLetter(char c) {
    return ToLower(c) >= 'a' && ToLower(c) <= 'z';
}

/// Takes the characters at the start for which `belongs` is true.
template <class Test>
std::string_view Take(std::string_view& text, Test belongs) {
    const auto end = std::find_if_not(text.begin(), text.end(), belongs);
    const std::string_view taken = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(taken.size());
    return taken;
}

/// The value of one to four digits, or nothing.
std::optional<int> SmallNumber(std::string_view digits) {
    if (digits.empty() || digits.size() > 4 || !std::all_of(digits.begin(), digits.end(), IsDigit))
        return std::nullopt;
    int value = 0;
    for (const char c : digits) value = value * 10 + (c - '0');
    return value;
}

/// One or two digits.
std::optional<int> DayOrMonth(std::string_view part) {
    return part.size() <= 2 ? SmallNumber(part) : std::nullopt;
}

/// Two digits or four.
std::optional<int> YearBehind(std::string_view part) {
    const std::optional<int> year = SmallNumber(part);
    if (!year) return std::nullopt;
    if (part.size() == 4) return year;
    if (part.size() != 2) return std::nullopt;
    return *year < 30 ? 2000 + *year : 1900 + *year;
}

std::optional<int> MonthByName(std::string_view part) {
    for (std::size_t i = 0; i < kMonths.size(); ++i) {
        if (SameText(part, kMonths[i]) || SameText(part, kMonths[i].substr(0, kShortName)))
            return static_cast<int>(i) + 1;
    }
    return std::nullopt;
}

/// A date at midnight, if all three parts were read and the day exists.
std::optional<DateTime> DateOf(std::optional<int> year, std::optional<int> month, std::optional<int> day) {
    if (!year || !month || !day) return std::nullopt;
    const DateTime date{*year, *month, *day};
    if (!IsValid(date)) return std::nullopt;
    return date;
}

/// A number or a word: whatever stands first in the text, empty if neither does.
std::string_view TakePart(std::string_view& text) {
    if (!text.empty() && IsDigit(text[0])) return Take(text, IsDigit);
    return Take(text, IsLetter);
}

/// Takes what stands between two parts; a blank if it is blanks alone, nothing if there is none.
std::optional<char> TakeSeparator(std::string_view& text) {
    const std::size_t before = text.size();
    text = TrimLeft(text);
    if (!text.empty() && std::string_view("/-.,").find(text[0]) != std::string_view::npos) {
        const char separator = text[0];
        text = TrimLeft(text.substr(1));
        return separator;
    }
    if (text.size() == before) return std::nullopt;
    return ' ';
}

/// Takes the date at the start; the time, if there is one, is left.
std::optional<DateTime> TakeDate(std::string_view& text) {
    const std::string_view first = TakePart(text);
    if (first.size() == 8 && IsDigit(first[0]))
        return DateOf(SmallNumber(first.substr(0, 4)), SmallNumber(first.substr(4, 2)),
                      SmallNumber(first.substr(6)));

    const std::optional<char> separator1 = TakeSeparator(text);
    const std::string_view second = TakePart(text);
    const std::optional<char> separator2 = TakeSeparator(text);
    const std::string_view third = TakePart(text);
    if (!separator1 || !separator2) return std::nullopt;

    if (const std::optional<int> month = MonthByName(first))
        return DateOf(YearBehind(third), month, DayOrMonth(second));
    if (const std::optional<int> month = MonthByName(second))
        return DateOf(YearBehind(third), month, DayOrMonth(first));

    if (separator1 != separator2) return std::nullopt;
    if (first.size() == 4) return DateOf(SmallNumber(first), DayOrMonth(second), DayOrMonth(third));

    std::optional<int> month = DayOrMonth(first);
    std::optional<int> day = DayOrMonth(second);
    if (month > 12) std::swap(month, day);
    return DateOf(YearBehind(third), month, day);
}

/// Takes a colon and two digits.
std::optional<int> TakeSixtieth(std::string_view& text) {
    if (text.empty() || text[0] != ':') return std::nullopt;
    text.remove_prefix(1);
    const std::string_view digits = Take(text, IsDigit);
    return digits.size() == 2 ? SmallNumber(digits) : std::nullopt;
}

/// Reads a time that is the whole text into the date; false if it is none.
bool ReadTime(std::string_view text, DateTime& date) {
    std::optional<int> hour = DayOrMonth(Take(text, IsDigit));
    const std::optional<int> minute = TakeSixtieth(text);
    if (!hour || !minute) return false;
    std::optional<int> second = 0;
    if (!text.empty() && text[0] == ':') second = TakeSixtieth(text);
    if (!second) return false;

    const std::string_view half = TrimLeft(text);
    if (!half.empty()) {
        const bool afternoon = SameText(half, "PM");
        if (!afternoon && !SameText(half, "AM")) return false;
        if (*hour < 1 || *hour > 12) return false;
        hour = *hour % 12 + (afternoon ? 12 : 0);
    }
    date.Hour = *hour;
    date.Minute = *minute;
    date.Second = *second;
    return IsValid(date);
}

} // namespace

bool DateTime::IsZero() const {
    return *this == DateTime{};
}

bool IsValid(const DateTime& date) {
    return date.Year >= kFirstYear && date.Year <= kLastYear && date.Month >= 1 && date.Month <= 12 &&
           date.Day >= 1 && date.Day <= DaysInMonth(date.Year, date.Month) && date.Hour >= 0 &&
           date.Hour < 24 && date.Minute >= 0 && date.Minute < 60 && date.Second >= 0 && date.Second < 60;
}

std::optional<DateTime> CDate(std::string_view text) {
    text = Trim(text);
    std::optional<DateTime> date = TakeDate(text);
    if (!date || text.empty()) return date;
    if (text[0] != ' ' || !ReadTime(TrimLeft(text), *date)) return std::nullopt;
    return date;
}

bool IsDate(std::string_view text) {
    return CDate(text).has_value();
}

DateTime AddDays(const DateTime& date, int days) {
    RequireValid(date);
    const std::int64_t day = std::int64_t{SerialDay(date)} + days;
    if (day < kFirstDay || day > kLastDay) throw RunTimeFailure(kOverflow);

    DateTime moved = FromSerialDay(static_cast<int>(day));
    moved.Hour = date.Hour;
    moved.Minute = date.Minute;
    moved.Second = date.Second;
    return moved;
}

int DayOfWeek(const DateTime& date) {
    RequireValid(date);
    constexpr int kSaturday = 6; // of 1899-12-30, from Sunday as 0
    constexpr int kToSunday = kSaturday + 7 - kSerialZero % 7;
    return (DayNumber(date.Year, date.Month, date.Day) + kToSunday) % 7 + 1;
}

double ToSerial(const DateTime& date) {
    RequireValid(date);
    const int seconds = (date.Hour * 60 + date.Minute) * 60 + date.Second;
    return SerialDay(date) + static_cast<double>(seconds) / kSecondsADay;
}

DateTime FromSerial(double serial) {
    // Not-a-number passes no comparison.
    if (!(serial >= kFirstDay - 1.0 && serial <= kLastDay + 2.0)) throw RunTimeFailure(kOverflow);

    double day = std::floor(serial);
    double seconds = std::round((serial - day) * kSecondsADay);
    if (seconds >= kSecondsADay) {
        seconds = 0;
        day += 1;
    }
    if (day < kFirstDay || day > kLastDay) throw RunTimeFailure(kOverflow);

    DateTime date = FromSerialDay(static_cast<int>(day));
    const int second = static_cast<int>(seconds);
    date.Hour = second / 3600;
    date.Minute = second / 60 % 60;
    date.Second = second % 60;
    return date;
}

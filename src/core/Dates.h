#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>

/// Dates of the Gregorian calendar with a time of day, in whole seconds of local time. Months
/// and weekdays are written and read in English.

/// A moment, or no date at all when every part is 0. The order is that of time.
struct DateTime {
    int Year = 0;   ///< 100 to 9999
    int Month = 0;  ///< 1 to 12
    int Day = 0;    ///< 1 to the month's last
    int Hour = 0;   ///< 0 to 23
    int Minute = 0; ///< 0 to 59
    int Second = 0; ///< 0 to 59

    auto operator<=>(const DateTime&) const = default;

    /// True for no date.
    bool IsZero() const;
};

/// True if every part is in its range and the day exists, leap years considered. No date is not
/// valid.
bool IsValid(const DateTime& date);

/// The date that a text tells, with its time or midnight; nothing if it tells none. Read are:
///
///   - year, month, day, the year with four digits: "2026-11-15", "2026/1/5";
///   - eight digits, year, month, day: "20261115";
///   - month, day, year: "11/15/2026"; when the first number is above 12 it is the day;
///   - day and month in either order, the month by its English name, whole or the first three
///     letters, then the year: "15-Nov-2026", "November 15, 2026".
///
/// A year behind has two digits (00 to 29 are 2000 to 2029, 30 to 99 are 1930 to 1999) or four.
/// Between the parts stands one of `/ - . ,`, blanks around it or not, or blanks alone; between
/// numbers the same both times, so that an amount such as "1,2.30" is no date. A time may follow
/// behind blanks: "14:05", "14:05:09", "2:05 PM"; minutes and seconds have two digits. A time
/// alone is no date, nor is a weekday's name read.
std::optional<DateTime> CDate(std::string_view text);

/// True if CDate reads the text.
bool IsDate(std::string_view text);

/// "2026-11-15". This and the writers below give the empty text for no date, and RunTimeFailure 5
/// for any other date that is not valid.
std::string ShortDate(const DateTime& date);

/// "2026-11-15 14:05:09", the time always with it.
std::string DateAndTime(const DateTime& date);

/// "Sunday, November 15, 2026".
std::string LongDate(const DateTime& date);

/// "20261115", as tables hold it.
std::string YyyyMmDd(const DateTime& date);

/// The date by a format of the operator's. In either case of letters: d, dd (day), ddd, dddd
/// (weekday: Sun, Sunday), m, mm, mmm, mmmm (month: Nov, November), yy, yyyy, h, hh, n, nn
/// (minutes), s, ss, AM/PM and A/P. The latter two are written as the format's first letter is,
/// large or small, and turn the hours to 12. m and mm are minutes when the date or time letters
/// before them are h or hh. A text in double quotes and a character behind a backslash stand for
/// themselves, and so does everything else. A longer run of a letter is read from the left in the
/// longest pieces.
std::string Format(const DateTime& date, std::string_view format);

/// The same time, days later or earlier. RunTimeFailure 5 for a date that is not valid, 6 if the
/// years 100 to 9999 are left.
DateTime AddDays(const DateTime& date, int days);

/// 1 for Sunday to 7 for Saturday. RunTimeFailure 5 for a date that is not valid.
int DayOfWeek(const DateTime& date);

/// Days since 1899-12-30, the time as the fraction of a day. Earlier days are negative and count
/// on evenly: 1899-12-29 06:00 is -0.75. RunTimeFailure 5 for a date that is not valid.
double ToSerial(const DateTime& date);

/// The moment of a serial, rounded to the nearest second. RunTimeFailure 6 for what lies outside
/// the years 100 to 9999 and for not-a-number.
DateTime FromSerial(double serial);

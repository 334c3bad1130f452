#include "core/Dates.h"
#include "support/Fails.h"

#include "core/CodePage.h"
#include "core/TextCompare.h"

#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

/// What CDate reads, written out; "none" for no date.
std::string Read(std::string_view text) {
    const std::optional<DateTime> date = CDate(text);
    return date ? DateAndTime(*date) : "none";
}

constexpr DateTime kAfternoon{2026, 11, 5, 14, 5, 9};
constexpr DateTime kMorning{2026, 3, 15, 0, 30, 0};

} // namespace

TEST(Dates, DatesAreReadInTheirWrittenForms) {
    const std::vector<std::string_view> sameDay = {
        "2026-11-05",  "2026-11-5",        "2026/11/05",      "2026.11.05",      "2026 11 05",
        "2026,11,05",  "20261105",         "11/05/2026",      "11/5/2026",       "11/5/26",
        "11-05-2026",  "11.05.2026",       "11 05 2026",      "11, 5, 2026",     "11 / 5 / 2026",
        "5-Nov-2026",  "05-NOV-26",        "5 November 2026", "5. nov 2026",     "5 November, 2026",
        "Nov 5, 2026", "November 5, 2026", "november 5 2026", "NOV-05-2026",     "Nov. 5, 2026",
        "Nov/5/26",    "Nov,5,2026",       "  2026-11-05  ",  "November 5,2026",
    };
    for (const std::string_view text : sameDay) {
        EXPECT_EQ(Read(text), "2026-11-05 00:00:00") << text;
        EXPECT_TRUE(IsDate(text)) << text;
    }
}

TEST(Dates, ATimeMayFollow) {
    EXPECT_EQ(Read("2026-11-15 14:05"), "2026-11-15 14:05:00");
    EXPECT_EQ(Read("2026-11-15   14:05:09"), "2026-11-15 14:05:09");
    EXPECT_EQ(Read("20261115 0:00"), "2026-11-15 00:00:00");
    EXPECT_EQ(Read("11/15/2026 2:05 PM"), "2026-11-15 14:05:00");
    EXPECT_EQ(Read("Nov 15, 2026 2:05:09pm"), "2026-11-15 14:05:09");
    EXPECT_EQ(Read("15 Nov 26 12:00 am"), "2026-11-15 00:00:00");
    EXPECT_EQ(Read("11 15 26 12:30 PM"), "2026-11-15 12:30:00");
    EXPECT_EQ(Read("2026-11-15 23:59:59 "), "2026-11-15 23:59:59");
}

TEST(Dates, TwoDigitYearsBelow30AreOfThisCentury) {
    EXPECT_EQ(Read("1/2/00"), "2000-01-02 00:00:00");
    EXPECT_EQ(Read("1/2/29"), "2029-01-02 00:00:00");
    EXPECT_EQ(Read("1/2/30"), "1930-01-02 00:00:00");
    EXPECT_EQ(Read("2-Jan-99"), "1999-01-02 00:00:00");
}

TEST(Dates, AFirstNumberAbove12IsTheDay) {
    EXPECT_EQ(Read("12/11/2026"), "2026-12-11 00:00:00");
    EXPECT_EQ(Read("13/11/2026"), "2026-11-13 00:00:00");
    EXPECT_EQ(Read("11/13/2026"), "2026-11-13 00:00:00");
    EXPECT_EQ(Read("31.12.26"), "2026-12-31 00:00:00");
    EXPECT_EQ(Read("13/13/2026"), "none");
}

TEST(Dates, EveryMonthIsReadByBothItsNames) {
    for (int month = 1; month <= 12; ++month) {
        const DateTime date{2026, month, 9};
        EXPECT_EQ(CDate(Format(date, "d mmm yyyy")), date);
        EXPECT_EQ(CDate(Format(date, "mmmm d, yyyy")), date);
        EXPECT_EQ(CDate(UpperCase(Format(date, "mmmm-dd-yy"))), date);
        EXPECT_EQ(CDate(LowerCase(Format(date, "dd/mmm/yy"))), date);
    }
}

TEST(Dates, AnythingElseIsNoDate) {
    const std::vector<std::string_view> others = {"",
                                                  "   ",
                                                  "abc",
                                                  "12",
                                                  "1.5",
                                                  "2026",
                                                  "1234567",
                                                  "123456789",
                                                  "00000000",
                                                  "20261315",
                                                  "20260229",
                                                  "20261100",
                                                  "13/45/2026",
                                                  "0/5/2026",
                                                  "5/0/2026",
                                                  "2/29/2025",
                                                  "2/29/1900",
                                                  "4/31/2026",
                                                  "2026-13-01",
                                                  "2026-00-10",
                                                  "2026-02-30",
                                                  "0099-01-01",
                                                  "0000-01-01",
                                                  "11/15",
                                                  "Nov 2026",
                                                  "15 Nov",
                                                  "Nov 15",
                                                  "November",
                                                  "11/15/2",
                                                  "11/15/202",
                                                  "11/15/20260",
                                                  "111/5/2026",
                                                  "11/115/2026",
                                                  "1,250.00",
                                                  "1,2.30",
                                                  "1.2,03",
                                                  "11/15-2026",
                                                  "-11/15/2026",
                                                  "11//15/2026",
                                                  "11/15/",
                                                  "/11/15/2026",
                                                  "14:05",
                                                  "2:05 PM",
                                                  "15Nov2026",
                                                  "Novem 15, 2026",
                                                  "Sept 15, 2026",
                                                  "Nov Nov 2026",
                                                  "15 Nov Nov",
                                                  "Sunday, November 15, 2026",
                                                  "2026-Nov-15",
                                                  "2026 November 15",
                                                  "2026-11-15T14:05",
                                                  "2026-11-15 24:00",
                                                  "2026-11-15 14:60",
                                                  "2026-11-15 14:05:60",
                                                  "2026-11-15 14",
                                                  "2026-11-15 14:5",
                                                  "2026-11-15 14:05:9",
                                                  "2026-11-15 14:05:",
                                                  "2026-11-15 :05",
                                                  "2026-11-15 13:05 PM",
                                                  "2026-11-15 0:05 AM",
                                                  "2026-11-15 2:05 XM",
                                                  "2026-11-15 2:05 P",
                                                  "2026-11-15 2:05 PM x",
                                                  "2026-11-15 PM",
                                                  "2026-11-15x",
                                                  "20261115x",
                                                  "2026111514:05",
                                                  "2026-11-15,14:05",
                                                  "2026-11-15 -14:05",
                                                  "2026-11-15 114:05",
                                                  "\t2026-11-15",
                                                  "2026-11-15\n",
                                                  "+2026-11-15",
                                                  "2026-+1-15",
                                                  "N\xF6v 15, 2026",
                                                  "99999999999999999999-11-15",
                                                  "1E5/1/2026"};
    for (const std::string_view text : others) {
        EXPECT_EQ(Read(text), "none") << text;
        EXPECT_FALSE(IsDate(text)) << text;
    }
    EXPECT_FALSE(IsDate(std::string_view("2026-11-15\0", 11)));
}

TEST(Dates, EightDigitsAreADateExactlyWhenTheDayExists) {
    const auto digits = [](int number, int width) {
        std::string text = std::to_string(number);
        while (static_cast<int>(text.size()) < width) text.insert(text.begin(), '0');
        return text;
    };
    for (const int year : {0, 99, 100, 1600, 1700, 1900, 2000, 2023, 2024, 9999}) {
        for (int month = 0; month <= 13; ++month) {
            for (int day = 0; day <= 32; ++day) {
                const std::string text = digits(year, 4) + digits(month, 2) + digits(day, 2);
                const DateTime date{year, month, day};
                ASSERT_EQ(IsDate(text), IsValid(date)) << text;
                if (IsValid(date)) {
                    ASSERT_EQ(YyyyMmDd(date), text);
                }
            }
        }
    }
}

TEST(Dates, AnyTextIsEitherAValidDateOrNone) {
    const std::vector<std::string> parts = {"1",   "12",  "13", "31", "02",   "29", "2026", "20261115",
                                            "Nov", "may", "/",  "-",  ".",    " ",  ",",    ":",
                                            "05",  "PM",  "am", "T",  "\xFF", "99", "  ",   "0"};
    std::mt19937 random(5);
    int dates = 0;
    for (int round = 0; round < 300000; ++round) {
        std::string text;
        for (std::size_t count = random() % 11; count > 0; --count) text += parts[random() % parts.size()];
        const std::optional<DateTime> date = CDate(text);
        ASSERT_EQ(IsDate(text), date.has_value()) << text;
        if (!date) continue;
        ++dates;
        ASSERT_TRUE(IsValid(*date)) << text;
        ASSERT_EQ(CDate(DateAndTime(*date)), date) << text;
    }
    EXPECT_GT(dates, 100);
}

TEST(Dates, OnlyDaysThatExistAreValid) {
    EXPECT_TRUE(IsValid({2024, 2, 29}));
    EXPECT_TRUE(IsValid({2000, 2, 29}));
    EXPECT_TRUE(IsValid({100, 1, 1}));
    EXPECT_TRUE(IsValid({9999, 12, 31, 23, 59, 59}));
    EXPECT_FALSE(IsValid({1900, 2, 29}));
    EXPECT_FALSE(IsValid({2026, 2, 29}));
    EXPECT_FALSE(IsValid({99, 1, 1}));
    EXPECT_FALSE(IsValid({10000, 1, 1}));
    EXPECT_FALSE(IsValid({2026, 0, 1}));
    EXPECT_FALSE(IsValid({2026, 13, 1}));
    EXPECT_FALSE(IsValid({2026, 6, 31}));
    EXPECT_FALSE(IsValid({2026, 6, 0}));
    EXPECT_FALSE(IsValid({2026, 6, 1, 24}));
    EXPECT_FALSE(IsValid({2026, 6, 1, -1}));
    EXPECT_FALSE(IsValid({2026, 6, 1, 0, 60}));
    EXPECT_FALSE(IsValid({2026, 6, 1, 0, 0, 60}));
    EXPECT_FALSE(IsValid({}));
}

TEST(Dates, TheOperatorSeesIsoDates) {
    EXPECT_EQ(ShortDate(kAfternoon), "2026-11-05");
    EXPECT_EQ(DateAndTime(kAfternoon), "2026-11-05 14:05:09");
    EXPECT_EQ(DateAndTime({2026, 1, 2}), "2026-01-02 00:00:00");
    EXPECT_EQ(LongDate({2026, 11, 15}), "Sunday, November 15, 2026");
    EXPECT_EQ(LongDate(kAfternoon), "Thursday, November 5, 2026");
    EXPECT_EQ(YyyyMmDd(kAfternoon), "20261105");
    EXPECT_EQ(ShortDate({987, 6, 5}), "0987-06-05");
}

TEST(Dates, DatesAsTheOperatorSeesThemSortByTime) {
    std::mt19937 random(3);
    const auto moment = [&random] { return FromSerial(random() % 73000 + random() % 86400 / 86400.0); };
    for (int round = 0; round < 20000; ++round) {
        const DateTime a = moment();
        const DateTime b = moment();
        ASSERT_EQ(TextCompare(DateAndTime(a), DateAndTime(b)) < 0, a < b);
    }
}

TEST(Dates, NoDateIsWrittenAsNothing) {
    const DateTime none;

    EXPECT_TRUE(none.IsZero());
    EXPECT_FALSE(kMorning.IsZero());
    EXPECT_FALSE((DateTime{0, 0, 0, 0, 0, 1}).IsZero());
    EXPECT_EQ(ShortDate(none), "");
    EXPECT_EQ(DateAndTime(none), "");
    EXPECT_EQ(LongDate(none), "");
    EXPECT_EQ(YyyyMmDd(none), "");
    EXPECT_EQ(Format(none, "\"x\"yyyy"), "");
}

TEST(Dates, FormatsOfExports) {
    struct Row {
        const char* Format;
        const char* Afternoon;
        const char* Morning;
    };
    const std::vector<Row> rows = {
        {"mmddyyyy", "11052026", "03152026"},
        {"m/d/yy", "11/5/26", "3/15/26"},
        {"MM-DD-YYYY", "11-05-2026", "03-15-2026"},
        {"ddd d mmm", "Thu 5 Nov", "Sun 15 Mar"},
        {"dddd, mmmm dd", "Thursday, November 05", "Sunday, March 15"},
        {"h:n:s", "14:5:9", "0:30:0"},
        {"hh:nn:ss", "14:05:09", "00:30:00"},
        {"hh:mm", "14:05", "00:30"},
        {"h \"o'clock\" m", "14 o'clock 5", "0 o'clock 30"},
        {"hhmmss mm", "140509 11", "003000 03"},
        {"h:mm m", "14:05 11", "0:30 3"},
        {"mm:ss", "11:09", "03:00"},
        {"h mmm", "14 Nov", "0 Mar"},
        {"h:mm AM/PM", "2:05 PM", "12:30 AM"},
        {"hh:mm am/pm", "02:05 pm", "12:30 am"},
        {"h:mmA/P", "2:05P", "12:30A"},
        {"h:mma/p", "2:05p", "12:30a"},
        {"AM/PM h", "PM 2", "AM 12"},
        {"h \"AM/PM\"", "14 AM/PM", "0 AM/PM"},
        {"yyyy\\dmm", "2026d11", "2026d03"},
        {"\"day \"d\" of\"", "day 5 of", "day 15 of"},
        {"\"\"d", "5", "15"},
        {"d\"open", "5open", "15open"},
        {"d\\", "5\\", "15\\"},
        {"d\\\\", "5\\", "15\\"},
        {"yyyy-mm-ddThh:nnZ", "2026-11-05T14:05Z", "2026-03-15T00:30Z"},
        {"QwX 1.5 c", "QwX 1.5 c", "QwX 1.5 c"},
        {"y", "y", "y"},
        {"yyyyyy", "202626", "202626"},
        {"dddddd", "Thursday05", "Sunday15"},
        {"hhh", "1414", "000"},
        {"yyyy\xE9", "2026\xE9", "2026\xE9"},
        {"", "", ""},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Format(kAfternoon, row.Format), row.Afternoon) << row.Format;
        EXPECT_EQ(Format(kMorning, row.Format), row.Morning) << row.Format;
    }
}

TEST(Dates, TwelveHoursGoRoundTwiceADay) {
    EXPECT_EQ(Format({2026, 1, 1, 0, 0, 0}, "h AM/PM"), "12 AM");
    EXPECT_EQ(Format({2026, 1, 1, 11, 0, 0}, "h AM/PM"), "11 AM");
    EXPECT_EQ(Format({2026, 1, 1, 12, 0, 0}, "h AM/PM"), "12 PM");
    EXPECT_EQ(Format({2026, 1, 1, 23, 0, 0}, "h AM/PM"), "11 PM");
}

TEST(Dates, AnyFormatIsWritten) {
    const std::string_view letters = "dmyhnsDMYHNS\"\\AP/pma:- x";
    std::mt19937 random(23);
    for (int round = 0; round < 100000; ++round) {
        std::string format(random() % 12, ' ');
        for (char& c : format) c = letters[random() % letters.size()];
        ASSERT_LT(Format(kAfternoon, format).size(), 121u) << format;
    }
}

TEST(Dates, DatesThatDoNotExistAreRefused) {
    const DateTime wrong{2026, 2, 30};

    EXPECT_EQ(FailureNumber([&] { ShortDate(wrong); }), 5);
    EXPECT_EQ(FailureNumber([&] { DateAndTime(wrong); }), 5);
    EXPECT_EQ(FailureNumber([&] { LongDate(wrong); }), 5);
    EXPECT_EQ(FailureNumber([&] { YyyyMmDd(wrong); }), 5);
    EXPECT_EQ(FailureNumber([&] { Format(wrong, "d"); }), 5);
    EXPECT_EQ(FailureNumber([&] { AddDays(wrong, 1); }), 5);
    EXPECT_EQ(FailureNumber([&] { DayOfWeek(wrong); }), 5);
    EXPECT_EQ(FailureNumber([&] { ToSerial(wrong); }), 5);
    EXPECT_EQ(FailureNumber([] { ToSerial({}); }), 5);
    EXPECT_EQ(FailureNumber([] { AddDays({}, 1); }), 5);
}

TEST(Dates, DaysAreAddedAcrossMonthsAndLeapDays) {
    EXPECT_EQ(AddDays(kAfternoon, 0), kAfternoon);
    EXPECT_EQ(AddDays(kAfternoon, 30), (DateTime{2026, 12, 5, 14, 5, 9}));
    EXPECT_EQ(AddDays({2024, 2, 28}, 1), (DateTime{2024, 2, 29}));
    EXPECT_EQ(AddDays({2025, 2, 28}, 1), (DateTime{2025, 3, 1}));
    EXPECT_EQ(AddDays({2026, 1, 1}, -1), (DateTime{2025, 12, 31}));
    EXPECT_EQ(AddDays({2000, 1, 1}, 146097), (DateTime{2400, 1, 1}));
    EXPECT_EQ(AddDays({100, 1, 1}, 3615900 - 1), (DateTime{9999, 12, 31}));
    EXPECT_EQ(FailureNumber([] { AddDays({9999, 12, 31}, 1); }), 6);
    EXPECT_EQ(FailureNumber([] { AddDays({100, 1, 1}, -1); }), 6);
    EXPECT_EQ(FailureNumber([] { AddDays(kMorning, std::numeric_limits<int>::max()); }), 6);
    EXPECT_EQ(FailureNumber([] { AddDays(kMorning, std::numeric_limits<int>::min()); }), 6);
}

TEST(Dates, SerialsCountFromTheEndOf1899) {
    EXPECT_EQ(ToSerial({1899, 12, 30}), 0);
    EXPECT_EQ(ToSerial({1900, 1, 1}), 2);
    EXPECT_EQ(ToSerial({1970, 1, 1}), 25569);
    EXPECT_EQ(ToSerial({2000, 1, 1, 12}), 36526.5);
    EXPECT_EQ(ToSerial({2026, 11, 15, 18}), 46341.75);
    EXPECT_EQ(ToSerial({1899, 12, 29, 6}), -0.75);
    EXPECT_EQ(FromSerial(-0.75), (DateTime{1899, 12, 29, 6}));
    EXPECT_EQ(ToSerial({100, 1, 1}), -657434);
    EXPECT_EQ(ToSerial({9999, 12, 31}), 2958465);
}

TEST(Dates, SerialsAreRoundedToTheSecond) {
    constexpr double kSecond = 1.0 / 86400;

    EXPECT_EQ(FromSerial(36526 + 0.4 * kSecond), (DateTime{2000, 1, 1}));
    EXPECT_EQ(FromSerial(36526 + 0.6 * kSecond), (DateTime{2000, 1, 1, 0, 0, 1}));
    EXPECT_EQ(FromSerial(36526 - 0.4 * kSecond), (DateTime{2000, 1, 1}));
    EXPECT_EQ(FromSerial(36526 - 0.6 * kSecond), (DateTime{1999, 12, 31, 23, 59, 59}));
}

TEST(Dates, SerialsOutsideTheCalendarAreRefused) {
    EXPECT_EQ(FromSerial(-657434), (DateTime{100, 1, 1}));
    EXPECT_EQ(FromSerial(2958465.99999), (DateTime{9999, 12, 31, 23, 59, 59}));
    for (const double serial :
         {-657434.1, 2958466.0, 2958465.9999999, 1E300, -1E300, std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(FailureNumber([&] { FromSerial(serial); }), 6) << serial;
}

TEST(Dates, EveryDayOfTwoCenturiesFollowsTheOneBefore) {
    DateTime day{1900, 1, 1};
    int weekday = 2; // a Monday
    for (int serial = 2; day.Year <= 2100; ++serial) {
        ASSERT_TRUE(IsValid(day));
        ASSERT_EQ(ToSerial(day), serial);
        ASSERT_EQ(FromSerial(serial), day);
        ASSERT_EQ(DayOfWeek(day), weekday);
        ASSERT_EQ(CDate(ShortDate(day)), day);
        ASSERT_EQ(CDate(YyyyMmDd(day)), day);
        ASSERT_EQ(CDate(Format(day, "m/d/yyyy")), day);

        DateTime next = day;
        ++next.Day;
        if (!IsValid(next)) next = {day.Year, day.Month + 1, 1};
        if (!IsValid(next)) next = {day.Year + 1, 1, 1};
        ASSERT_EQ(AddDays(day, 1), next);
        ASSERT_EQ(AddDays(next, -1), day);
        day = next;
        weekday = weekday % 7 + 1;
    }
}

TEST(Dates, EverySecondOfADayComesBackFromItsSerial) {
    for (const int year : {101, 1899, 2026, 9999}) {
        for (int second = 0; second < 86400; second += 7) {
            const DateTime date{year, 12, 29, second / 3600, second / 60 % 60, second % 60};
            ASSERT_EQ(FromSerial(ToSerial(date)), date) << year << " " << second;
        }
    }
}

#pragma once

#include <array>
#include <cstddef>
#include <string_view>

/// The English names that dates are read and written with, whatever the locale.

inline constexpr std::array<std::string_view, 12> kMonths = {"January",   "February", "March",    "April",
                                                             "May",       "June",     "July",     "August",
                                                             "September", "October",  "November", "December"};
inline constexpr std::array<std::string_view, 7> kWeekdays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                              "Thursday", "Friday", "Saturday"};
inline constexpr std::size_t kShortName = 3;

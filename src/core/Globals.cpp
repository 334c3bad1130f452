#include "core/Globals.h"

#include <ctime>

Globals Global;

DateTime Now() {
    if (Global.Clock) return Global.Clock();
    const std::time_t seconds = std::time(nullptr);
    std::tm local{};
#ifdef _WIN32
    localtime_s(&local, &seconds);
#else
    localtime_r(&seconds, &local);
#endif
    // A leap second is told as the last one of its minute.
    return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
            local.tm_hour,        local.tm_min,     local.tm_sec > 59 ? 59 : local.tm_sec};
}

DateTime Today() {
    DateTime today = Now();
    today.Hour = today.Minute = today.Second = 0;
    return today;
}

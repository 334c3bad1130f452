#pragma once

#include <cstdio>
#include <string>
#include <vector>

/// What an unattended day of the office at its limits took.
struct DayFigures {
    /// The most resident memory of one program, of all its processes.
    struct ProgramMemory {
        const char* Program;
        double MB;
    };

    double Seconds = 0; ///< of the day
    std::vector<ProgramMemory> Memory;
};

/// The limits of a day: less than so long, less in each program, and no more than so often its tenth.
inline constexpr double MostSeconds = 600, MostMB = 500, MostTimesTheTenth = 11;

/// The limits that a day is beyond, a line each; empty when it keeps them all. A figure that is no number
/// keeps none.
inline std::vector<std::string> BrokenLimits(const DayFigures& tenth, const DayFigures& whole) {
    std::vector<std::string> broken;
    const auto tell = [&broken](const std::string& what, double figure, double limit) {
        char words[64];
        std::snprintf(words, sizeof words, ": %.1f, the limit is %.0f", figure, limit);
        broken.push_back(what + words);
    };
    if (!(whole.Seconds < MostSeconds)) tell("seconds", whole.Seconds, MostSeconds);
    for (const DayFigures::ProgramMemory& each : whole.Memory) {
        if (!(each.MB < MostMB)) tell(std::string("MB of ") + each.Program, each.MB, MostMB);
    }
    const double times = whole.Seconds / tenth.Seconds;
    if (!(times <= MostTimesTheTenth)) tell("times the tenth", times, MostTimesTheTenth);
    return broken;
}

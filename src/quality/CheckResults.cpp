#include "quality/CheckResults.h"

#include "core/Globals.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"

#include <charconv>
#include <exception>
#include <string>
#include <utility>

namespace {

/// Splits a text at the first `separator`; all of it comes before one that is not there.
std::pair<std::string_view, std::string_view> Cut(std::string_view text, char separator) {
    const std::size_t at = text.find(separator);
    if (at == std::string_view::npos) return {text, {}};
    return {text.substr(0, at), text.substr(at + 1)};
}

std::optional<std::int32_t> Count(std::string_view text) {
    std::int32_t count = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
    if (error != std::errc() || end != text.data() + text.size() || count < 0) return std::nullopt;
    return count;
}

/// "2026-11-15 14:05:09;2;0".
std::optional<CheckResult> ResultOf(std::string_view text) {
    const auto [when, counts] = Cut(text, ';');
    const auto [fatal, warn] = Cut(counts, ';');
    const auto date = CDate(when);
    const auto fatals = Count(fatal), warns = Count(warn);
    if (!date || !fatals || !warns) return std::nullopt;
    return CheckResult{*date, *fatals, *warns};
}

} // namespace

std::string CheckResultsFile() {
    return Global.AppPath + "QCResults.dat";
}

CheckResults CheckResults::Read(std::string_view path) noexcept {
    CheckResults results;
    try {
        TextReader file(path, TextReader::OwnFile);
        for (std::string line; file.ReadLine(line);) {
            const auto [name, text] = Cut(line, '=');
            const auto result = ResultOf(text);
            if (!result) continue;
            for (std::size_t check = 0; check < Checks; ++check) {
                if (SameText(Trim(name), CheckName(static_cast<Check>(check))))
                    results.results_[check] = result;
            }
        }
    } catch (const std::exception&) {
        // The first check writes a new one.
    }
    return results;
}

void CheckResults::Write(std::string_view path) const {
    SafeFile file(path);
    for (std::size_t check = 0; check < Checks; ++check) {
        const auto& result = results_[check];
        if (!result) continue;
        file.WriteLine(std::string(CheckName(static_cast<Check>(check))) + "=" + DateAndTime(result->When) +
                       ";" + std::to_string(result->Fatal) + ";" + std::to_string(result->Warn));
    }
    file.Commit();
}

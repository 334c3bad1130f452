#pragma once

#include "core/Dates.h"
#include "quality/Checks.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// How a check ended when it was run last.
struct CheckResult {
    DateTime When;
    std::int32_t Fatal = 0, Warn = 0; ///< rows of the report

    bool operator==(const CheckResult&) const = default;
};

/// Where the results are kept: "QCResults.dat" in the application directory.
std::string CheckResultsFile();

/// The last result of every check, as a file of the office keeps it (docs/files.md).
class CheckResults {
public:
    /// Nothing for a check that has never run.
    const std::optional<CheckResult>& Of(Check check) const {
        return results_[static_cast<std::size_t>(check)];
    }
    void Set(Check check, const CheckResult& result) { results_[static_cast<std::size_t>(check)] = result; }

    /// A file that is not there has no results, and a line that says none is passed over. Never fails.
    static CheckResults Read(std::string_view path) noexcept;

    /// RunTimeFailure as SafeFile.
    void Write(std::string_view path) const;

private:
    std::array<std::optional<CheckResult>, Checks> results_;
};

#pragma once

#include "core/Progress.h"
#include "quality/Problems.h"

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The processes that can be checked, in the order in which the Configurator lists them.
enum class Check {
    Links,
    Customers,
    Items,
    BarCodes,
    SalesTax,
    Payments,
    Printing,
    Download,
    Upload,
    Import,
    Export,
    QuickButtons,
    Unattended,
    Backup
};
inline constexpr std::size_t Checks = 14;

/// What a check is known by in files: "Links" to "Backup".
std::string_view CheckName(Check check);

/// The checks of a full run, in its order. The links are not among them, on purpose: they are
/// checked by their own button alone, and never block a download.
std::span<const Check> AllChecks();

/// What the checks need from outside.
struct CheckTools {
    Progress& Bar;
    std::function<std::vector<std::string>()> HotSyncUsers; ///< names that the HotSync Manager knows
};

/// Runs a check and adds what it finds. Backup and Printing have no tests. RunTimeFailure as the
/// checks of tables.
void RunCheck(Check check, const CheckTools& tools, ProblemList& problems);

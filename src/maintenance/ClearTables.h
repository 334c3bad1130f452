#pragma once

#include "core/Text.h"
#include "maintenance/UnfinishedJobs.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Clearing tables on the PC: each is replaced by its empty twin of `DBFEmpty`.

/// What is cleared together, in the order of the screen, of the template and of the clearing.
enum class ClearGroup : std::uint8_t {
    OrHdr, ///< order headers and lines, and the images of the signatures
    AudtH, ///< header and line audit
    AudHH,
    BarIn,
    Comp,
    Cust,
    Help,
    Item,
    Print,
    Setup,
    STax,
    Pay,
    Links,
    TotalPC
};
inline constexpr std::size_t ClearGroups = 14;

/// The tables of a group, by file name without extension, in the order in which they are cleared.
std::span<const std::string_view> TablesOf(ClearGroup group);

/// Which groups are to be cleared; none at first.
struct ClearPlan {
    std::array<bool, ClearGroups> Chosen{};

    bool Has(ClearGroup group) const { return Chosen[static_cast<std::size_t>(group)]; }
    void Choose(ClearGroup group, bool chosen = true) { Chosen[static_cast<std::size_t>(group)] = chosen; }

    /// Orders, audits or handheld totals go: the totals events of the clearing are recorded.
    bool ChangesOrders() const;
    /// These, or customers, items or sales tax: a backup is made first.
    bool NeedsBackup() const;

    bool operator==(const ClearPlan&) const = default;
};

/// The paths of the chosen tables in the tables directory, in the order of their groups.
std::vector<std::string> TablesOf(const ClearPlan& plan);

/// What a clearing has emptied so far.
struct ClearedTables {
    struct Table {
        std::string_view Name; ///< file name without extension
        std::int32_t Records;  ///< that it held, those marked as deleted included; -1 when nobody could say

        bool operator==(const Table&) const = default;
    };

    std::vector<Table> Tables;
    int Images = 0; ///< that were deleted
};

/// The mark around a clearing, to be set when its backup has been made, before the first table is cleared,
/// and to be finished behind the last. RunTimeFailure as TableJob.
TableJob MarkClearing(const ClearPlan& plan);

/// The first step of a clearing, before its totals event: clears the PC totals if the plan has them, so that
/// they begin with that event. RunTimeFailure as ClearTables.
void ClearPCTotals(const ClearPlan& plan, ClearedTables& cleared);

/// Clears all other tables of the plan. Behind the order headers every file of the images directory is
/// deleted; one that cannot go is passed over. RunTimeFailure as CopyOver, 53 for a twin that is not there:
/// what was cleared before stays cleared, and is in `cleared`.
void ClearTables(const ClearPlan& plan, ClearedTables& cleared);

/// What was cleared, for the operator: the tables with the records that they held, and the images. Empty when
/// nothing was.
Text TellCleared(const ClearedTables& cleared);

/// How many files the images directory has.
int CountImages();

/// A name with a number behind it, in brackets.
Text Counted(const Text& name, std::int64_t count);

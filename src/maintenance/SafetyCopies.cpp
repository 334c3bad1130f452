#include "maintenance/SafetyCopies.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "store/TableScan.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>

namespace {

constexpr std::string_view OfSessionNames[] = {"ZUKOrHdr", "ZUKOrLin", "ZUKAudtH",
                                               "ZUKAudtL", "ZUKAudHH", "ZUKBarIn"};
constexpr std::string_view OfUploadScreenNames[] = {"ZUKOrHdr", "ZUKOrLin", "ZUKAudtH", "ZUKAudtL",
                                                    "ZUKAudHH", "ZUKPRN",   "ZUKCUST",  "ZUKITEM"};

/// What a recovery puts back.
constexpr MergedTable SentByHandhelds[] = {MergedOrderHeaders, MergedOrderLines, MergedAuditHeaders,
                                           MergedAuditLines, MergedHHTotals};

std::span<const std::string_view> NamesOf(SafetyCopies which) {
    if (which == SafetyCopies::OfSession) return OfSessionNames;
    return OfUploadScreenNames;
}

std::string InTables(std::string_view name) {
    return Global.DBFPath + std::string(name);
}

std::string CopyOf(std::string_view table) {
    return std::string(table) + ".dap";
}

std::string Mark() {
    return InTables("SafetyCopies.txt");
}

void SetMark() {
    WriteWholeFile(Mark(), "A HotSync is replacing tables. The files with the extension .dap hold what the "
                           "PC had before it. The next start puts that back where the HotSync does not.\r\n");
}

bool IsNeededStill(std::string_view copy) {
    const auto& needed = Global.FailedMerges;
    return std::any_of(needed.begin(), needed.end(),
                       [&](const std::string& each) { return SameText(each, copy); });
}

/// Takes a step, and keeps the first failure for the end.
template <typename Step>
void NoteFailure(std::optional<RunTimeFailure>& first, const Step& step) {
    try {
        step();
    } catch (const RunTimeFailure& failure) {
        if (!first) first.emplace(failure);
    }
}

} // namespace

bool HaveKeptCopy(std::span<const std::string> tables) {
    if (!FileExists(Mark())) return false;
    return std::any_of(tables.begin(), tables.end(), [](const std::string& table) {
        return std::any_of(std::begin(SentByHandhelds), std::end(SentByHandhelds), [&](const auto& each) {
            return SameText(FileNameOf(table), each.Target) && FileExists(InTables(each.Source));
        });
    });
}

void MakeSafetyCopies(SafetyCopies which) {
    RecoverSafetyCopies();
    for (const std::string_view table : NamesOf(which))
        CopyOver(InTables(table) + ".dbf", InTables(CopyOf(table)));
    if (which == SafetyCopies::OfUploadScreen || Global.UploadSelect) SetMark();
}

void DeleteSafetyCopies(SafetyCopies which) {
    std::optional<RunTimeFailure> failure;
    // First of all: without it a copy that stays lying about is not taken for one that is needed.
    if (Global.FailedMerges.empty())
        NoteFailure(failure, [] { Global.TheDisk->Remove(ResolvePath(Mark())); });
    // And where it stays, nothing is to lie beside it.
    for (const std::string_view table : NamesOf(which)) {
        if (!IsNeededStill(CopyOf(table))) RemoveQuietly(InTables(CopyOf(table)));
    }
    Global.FailedMerges.clear();
    if (failure) throw RunTimeFailure(*failure);
}

template <typename Step>
void TableMerge::Attempt(const Step& step) {
    if (failed_) return;
    try {
        step();
    } catch (const RunTimeFailure& failure) {
        TraceEvent("TableMerge: " + std::string(table_.Target) + " " + failure.what());
        failed_ = true;
        Global.FailedMerges.emplace_back(table_.Source);
    }
}

void TableMerge::WriteText() {
    Attempt([this] { DBFtoText(InTables(table_.Source), fields_, InTables(table_.Text)); });
}

void TableMerge::ReadText(Progress& progress) {
    Attempt([&] { TextToDBF(InTables(table_.Target), fields_, InTables(table_.Text), progress); });
}

std::vector<RecoveredTable> RecoverSafetyCopies() {
    std::vector<RecoveredTable> recovered;
    if (!FileExists(Mark())) return recovered;
    TraceEvent("SafetyCopies:RecoverSafetyCopies");
    std::optional<RunTimeFailure> failure;
    for (const MergedTable& table : SentByHandhelds) {
        const std::string copy = InTables(table.Source);
        if (!FileExists(copy)) continue;
        NoteFailure(failure, [&] {
            const std::string target = InTables(table.Target);
            const std::int32_t records = HoldTheSame(target, copy) ? 0 : AppendMissing(target, copy);
            if (records > 0) recovered.push_back({table.Target, records});
            RemoveQuietly(InTables(table.Text));
            // At once: when another table fails, the operator goes on with this one, and what it holds by the
            // next call says nothing of this session any more.
            RemoveQuietly(copy);
        });
    }
    if (!failure) {
        Global.FailedMerges.clear();
        NoteFailure(failure, [] { DeleteSafetyCopies(SafetyCopies::OfSession); });
    }
    if (failure) throw RecoveryFailure(*failure, std::move(recovered));
    return recovered;
}

std::vector<RecoveredTable> RecoverBeforeReplacing(std::span<const std::string> tables) {
    if (!HaveKeptCopy(tables)) return {};
    try {
        return RecoverSafetyCopies();
    } catch (const RecoveryFailure& failure) {
        if (HaveKeptCopy(tables)) throw;
        return failure.Recovered;
    }
}

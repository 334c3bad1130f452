#include "maintenance/ClearTables.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "maintenance/Backup.h"
#include "store/TableCatalogue.h"
#include "store/TableScan.h"

namespace {

constexpr std::string_view Orders[] = {"ZUKORHDR", "ZUKORLIN"};
constexpr std::string_view Audits[] = {"ZUKAUDTH", "ZUKAUDTL"};
constexpr std::string_view SingleTables[] = {"ZUKAUDHH", "ZUKBARIN", "ZUKCOMP",  "ZUKCUST",
                                             "ZUKHELP",  "ZUKITEM",  "ZUKPRINT", "ZUKSETUP",
                                             "ZUKSTAX",  "ZUKPAY",   "ZUKLINK",  "ZUKTOTALPC"};

std::string FileOf(std::string_view table) {
    return std::string(table) + ".DBF";
}

std::int32_t RecordsOf(const std::string& path) {
    try {
        return TableScan(path).RecordCount();
    } catch (const RunTimeFailure&) {
        return -1; // a broken table can be cleared too
    }
}

void Clear(std::string_view table, ClearedTables& cleared) {
    const std::string path = Global.DBFPath + FileOf(table);
    const std::int32_t records = RecordsOf(path);
    CopyOver(Global.DBFEmptyPath + FileOf(table), path);
    cleared.Tables.push_back({table, records});
}

std::vector<std::string> Images() {
    if (Global.ImagesPath.empty()) return {};
    return Global.TheDisk->FilesIn(ResolvePath(Global.ImagesPath));
}

int DeleteImages() {
    int deleted = 0;
    for (const std::string& name : Images()) {
        try {
            deleted += Global.TheDisk->Remove(ResolvePath(Global.ImagesPath + name)) ? 1 : 0;
        } catch (const RunTimeFailure&) { // the others go all the same
        }
    }
    return deleted;
}

template <typename Deed>
void ForEachTable(const ClearPlan& plan, const Deed& deed) {
    for (std::size_t group = 0; group < ClearGroups; ++group) {
        if (!plan.Chosen[group]) continue;
        for (const std::string_view table : TablesOf(static_cast<ClearGroup>(group))) deed(table);
    }
}

} // namespace

std::span<const std::string_view> TablesOf(ClearGroup group) {
    if (group == ClearGroup::OrHdr) return Orders;
    if (group == ClearGroup::AudtH) return Audits;
    const auto single = static_cast<std::size_t>(group) - static_cast<std::size_t>(ClearGroup::AudHH);
    return std::span(SingleTables).subspan(single, 1);
}

bool ClearPlan::ChangesOrders() const {
    return Has(ClearGroup::OrHdr) || Has(ClearGroup::AudtH) || Has(ClearGroup::AudHH);
}

bool ClearPlan::NeedsBackup() const {
    return ChangesOrders() || Has(ClearGroup::Cust) || Has(ClearGroup::Item) || Has(ClearGroup::STax);
}

std::vector<std::string> TablesOf(const ClearPlan& plan) {
    std::vector<std::string> paths;
    ForEachTable(plan, [&](std::string_view table) { paths.push_back(Global.DBFPath + FileOf(table)); });
    return paths;
}

TableJob MarkClearing(const ClearPlan& plan) {
    std::vector<std::string> tables;
    ForEachTable(plan, [&](std::string_view table) { tables.push_back(FileOf(table)); });
    return {JobKind::Clear, plan.NeedsBackup() ? BackupName(Global.BackupTime) : std::string(), tables};
}

void ClearPCTotals(const ClearPlan& plan, ClearedTables& cleared) {
    if (plan.Has(ClearGroup::TotalPC)) Clear("ZUKTOTALPC", cleared);
}

void ClearTables(const ClearPlan& plan, ClearedTables& cleared) {
    TraceEvent("ClearTables:ClearTables");
    ClearPlan rest = plan;
    rest.Choose(ClearGroup::TotalPC, false);
    ForEachTable(rest, [&](std::string_view table) {
        Clear(table, cleared);
        if (table == Orders[0]) cleared.Images += DeleteImages();
    });
}

Text TellCleared(const ClearedTables& cleared) {
    Text told;
    const auto add = [&told](const Text& each) {
        if (!told.IsEmpty()) told += Text::Path(std::string_view(", "));
        told += each;
    };
    for (const auto& [table, records] : cleared.Tables) {
        const Text name = MessageId{FindTable(table)->FirstLabel};
        add(records < 0 ? name : Counted(name, records));
    }
    if (cleared.Images > 0) add(Counted(msg::SignatureImages, cleared.Images));
    return told;
}

int CountImages() {
    return static_cast<int>(Images().size());
}

Text Counted(const Text& name, std::int64_t count) {
    return Words(name, Text::Path("(" + std::to_string(count) + ")"));
}

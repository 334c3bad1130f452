// Tables over the real wire:
//
//   wire BUILD             each of the 26 tables goes down to a stand-in handheld and comes up again, and
//                          what came is compared with what went
//   wire BUILD cut [K N]   the same with small tables, and the line cut after each packet in turn, down and
//                          up; says of each case which targets are old and which new. With K and N only
//                          every Nth case from the Kth on.
//
// The HotSync Manager and the handheld are the real programs; one manager lives through all cases. Ends in
// 0 only if every target was whole, and the next session brought everything over.

#include "WireRig.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "palm/Converter.h"
#include "platform/Convert.h"
#include "store/TableCatalogue.h"
#include "store/TableRewrite.h"
#include "store/TableScan.h"
#include "sync/SessionStatus.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>

namespace {

using Rows = std::vector<std::string>;
using Transfers = std::vector<WireRig::Transfer>;

void Say(const std::string& line) {
    std::fputs((line + "\n").c_str(), stdout);
    std::fflush(stdout);
}

void Require(bool holds, const std::string& what) {
    if (!holds) throw WireFailure(what);
}

std::string Capitals(std::string_view name) {
    return TableOfDatabase(HandheldDatabaseName(name));
}

/// A table of the office with so many records of random bytes, as other programs might have left them.
void MakeTable(const std::string& path, const TableEntry& entry, int records, unsigned seed) {
    std::vector<FieldDef> fields;
    for (const TableField& field : entry.Fields) {
        fields.push_back({field.Name, field.Type, field.Length, field.Decimals});
    }
    TableRewrite table(path, fields);
    std::mt19937 random(seed);
    for (int k = 0; k < records; ++k) {
        std::string bytes(static_cast<std::size_t>(table.Layout().RecordLength()) - 1, ' ');
        for (char& c : bytes) c = static_cast<char>(random() % 256);
        table.AppendRaw(TableLayout::Live, bytes);
    }
    table.Commit();
}

Rows RowsOf(const std::string& path) {
    Rows rows;
    TableScan scan(path);
    rows.emplace_back(scan.Layout().Header().substr(8)); // the fields, without the moment and the count
    while (scan.Next()) rows.emplace_back(scan.Record());
    return rows;
}

/// The rig's folders and what moves between them.
class Wire {
public:
    explicit Wire(const QString& build)
        : rig_(build, QStringLiteral("ANNA")),
          folder_(PathFromQt(rig_.Folder()) + "/") {
        for (const char* name : {"old/", "new/", "pc/"}) MakePath(folder_ + name);
    }

    WireRig& Rig() { return rig_; }

    std::string Path(const std::string& folder, const TableEntry& entry) const {
        return folder_ + folder + "/" + Capitals(entry.Name + std::string(".DBF")) + ".DBF";
    }

    void MakeTables(const std::string& folder, int records, unsigned seed) {
        for (const TableEntry& entry : AllTables()) MakeTable(Path(folder, entry), entry, records, ++seed);
    }

    Transfers All(bool upload, const std::string& folder) const {
        Transfers transfers;
        for (const TableEntry& entry : AllTables()) transfers.push_back({upload, Path(folder, entry)});
        return transfers;
    }

    WireRig::Outcome HotSync(const Transfers& transfers, const QStringList& options = {}) {
        return rig_.HotSync(transfers, options);
    }

    /// A session over a line that holds.
    void WholeSession(const Transfers& transfers) {
        const auto outcome = HotSync(transfers);
        // What stands before is of a session whose handheld had gone before it was told.
        const auto begun = std::find(outcome.Statuses.rbegin(), outcome.Statuses.rend(), SessionBegun);
        const std::size_t statuses = static_cast<std::size_t>(begun - outcome.Statuses.rbegin()) + 1;
        Require(outcome.IsWhole() && outcome.Begun() && statuses == transfers.size() + 2,
                "a session failed:\n" + outcome.HandheldSaid.toStdString() + rig_.Log().toStdString());
    }

    // The handheld's databases, file by file.
    using Files = std::map<std::string, std::string>;

    Files HandheldFiles() const {
        Files files;
        for (const std::string& file : Global.TheDisk->FilesIn(Databases())) {
            files[file] = ReadWholeFile(Databases() + file);
        }
        return files;
    }

    void SetHandheldFiles(const Files& files) const {
        for (const std::string& file : Global.TheDisk->FilesIn(Databases())) {
            if (!files.contains(file)) Global.TheDisk->Remove(Databases() + file);
        }
        for (const auto& [file, bytes] : files) WriteWholeFile(Databases() + file, bytes, false);
    }

    /// A table as the handheld has it: the records of a whole one, nothing when it has none. WireFailure
    /// for one that is not whole under its name.
    std::map<std::string, Rows> HandheldTables() const {
        std::map<std::string, Rows> tables;
        for (const auto& [file, bytes] : HandheldFiles()) {
            const Database database = ReadDatabase(bytes);
            const std::string table = TableOfDatabase(database.Name);
            if (table.empty()) continue;
            Require(database.Version == WholeTable, file + " is not whole");
            const HandheldLayout layout = ReadLayout(database.AppInfo);
            for (const DatabaseRecord& record : database.Records) {
                tables[table].push_back(ReadRecord(layout, record.Data).Fields);
            }
        }
        return tables;
    }

private:
    std::string Databases() const { return PathFromQt(rig_.HandheldFolder()) + "/databases/"; }

    WireRig rig_;
    std::string folder_;
};

void RoundTrip(const QString& build) {
    Wire wire(build);
    constexpr int records = 200;
    wire.MakeTables("new", records, 1);
    // In one session: the handheld makes its totals anew whenever HotSync is pressed.
    Transfers both = wire.All(false, "new");
    for (const WireRig::Transfer& transfer : wire.All(true, "pc")) both.push_back(transfer);
    wire.WholeSession(both);
    int same = 0;
    for (const TableEntry& entry : AllTables()) {
        const bool holds = RowsOf(wire.Path("pc", entry)) == RowsOf(wire.Path("new", entry));
        Say(std::string(entry.Name) + ": " + std::to_string(records) + " records down and up again, " +
            (holds ? "the same" : "NOT THE SAME"));
        same += holds ? 1 : 0;
    }
    Require(same == static_cast<int>(AllTables().size()), "tables have changed on their way");
    Say(std::to_string(same) + " tables came back as they went");
}

/// What stands at the targets after a session that broke: how many are new, counted from the first one,
/// since they travel in order. WireFailure for anything that is neither old nor new.
template <class IsOld, class IsNew, class IsPassedBy>
std::string Sorted(IsOld isOld, IsNew isNew, IsPassedBy isPassedBy) {
    std::size_t news = 0, olds = 0;
    std::string lastNew;
    for (const TableEntry& entry : AllTables()) {
        if (isPassedBy(entry)) continue;
        if (isNew(entry)) {
            Require(olds == 0, std::string(entry.Name) + " is new before one that travels earlier");
            ++news;
            lastNew = entry.Name;
        } else {
            Require(isOld(entry), std::string(entry.Name) + " is neither the old nor the new one");
            ++olds;
        }
    }
    if (news == 0) return "all old";
    return olds == 0 ? "all new" : "new up to " + lastNew + " (" + std::to_string(news) + "), the rest old";
}

/// The table that a handheld makes anew by itself whenever HotSync is pressed on it.
bool IsTotals(const TableEntry& entry) {
    return Capitals(entry.Name) == "ZUKAUDHH";
}

struct Share {
    int First = 0, Step = 1;
};

QStringList CutAfter(int packets) {
    return {QStringLiteral("--cut-after"), QString::number(packets)};
}

void CutDown(Wire& wire, const Share& share) {
    wire.WholeSession(wire.All(false, "old"));
    const auto files = wire.HandheldFiles();
    const auto olds = wire.HandheldTables();
    wire.WholeSession(wire.All(false, "new"));
    const auto news = wire.HandheldTables();
    for (int cut = share.First;; cut += share.Step) {
        wire.SetHandheldFiles(files);
        const bool whole = wire.HotSync(wire.All(false, "new"), CutAfter(cut)).IsWhole();
        // What is between two names is put in order by the next session.
        wire.WholeSession({{true, wire.Path("pc", *FindTable("ZUKVER"))}});
        const auto now = wire.HandheldTables();
        const auto at = [](const auto& tables, const TableEntry& entry) {
            const auto found = tables.find(Capitals(entry.Name));
            return found == tables.end() ? Rows{} : found->second;
        };
        const auto isOld = [&](const TableEntry& entry) { return at(now, entry) == at(olds, entry); };
        const auto isNew = [&](const TableEntry& entry) { return at(now, entry) == at(news, entry); };
        Require(at(now, *FindTable("ZUKAudHH")).size() == 1, "the handheld has lost its totals");
        Say("down, cut after " + std::to_string(cut) + ": " + Sorted(isOld, isNew, IsTotals));
        if (whole) return;
    }
}

void CutUp(Wire& wire, const Share& share) {
    wire.WholeSession(wire.All(false, "new"));
    for (int cut = share.First;; cut += share.Step) {
        for (const TableEntry& entry : AllTables()) {
            CopyOver(wire.Path("old", entry), wire.Path("pc", entry), false);
        }
        const bool whole = wire.HotSync(wire.All(true, "pc"), CutAfter(cut)).IsWhole();
        const Rows totals = wire.HandheldTables().at("ZUKAUDHH");
        const auto isOld = [&](const TableEntry& entry) {
            return RowsOf(wire.Path("pc", entry)) == RowsOf(wire.Path("old", entry));
        };
        const auto isNew = [&](const TableEntry& entry) {
            Rows rows = RowsOf(wire.Path("pc", entry));
            if (!IsTotals(entry)) return rows == RowsOf(wire.Path("new", entry));
            rows.erase(rows.begin());
            return rows == totals;
        };
        Say("up, cut after " + std::to_string(cut) + ": " +
            Sorted(isOld, isNew, [](const TableEntry&) { return false; }));
        if (whole) return;
    }
}

void Cut(const QString& build, const Share& share) {
    Wire wire(build);
    wire.MakeTables("old", 1, 1);
    wire.MakeTables("new", 2, 100);
    CutDown(wire, share);
    CutUp(wire, share);
    wire.WholeSession(wire.All(false, "old"));
    Require(wire.Rig().ManagerRuns(), "the manager has gone");
}

int Usage() {
    std::fputs("wire BUILD [cut [K N]]\n", stderr);
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.isEmpty()) return Usage();
    try {
        if (arguments.size() == 1) {
            RoundTrip(arguments.first());
            return 0;
        }
        if (arguments.at(1) != QLatin1String("cut") || (arguments.size() != 2 && arguments.size() != 4))
            return Usage();
        Share share;
        if (arguments.size() == 4) share = {arguments.at(2).toInt(), std::max(arguments.at(3).toInt(), 1)};
        Cut(arguments.first(), share);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "FAILED: %s\n", failure.what());
        return 1;
    }
}

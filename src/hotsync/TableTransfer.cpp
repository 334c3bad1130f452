#include "hotsync/TableTransfer.h"

#include "core/Failure.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "hotsync/FetchedTable.h"
#include "store/TableCatalogue.h"
#include "store/TableRewrite.h"
#include "store/TableScan.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::string_view WorkMark = "~";
constexpr std::string_view InstallWork = "ZUK_install~";
/// Some handhelds lock up when a record near the limit is asked for in one piece.
constexpr std::uint16_t LongestPiece = LongestRecord - 100;

/// A list tells each by an index of 16 bits.
constexpr std::size_t MostDatabases = std::size_t{1} << 16;

/// Tables that the office keeps and handhelds only carry: one that a handheld lacks was never sent to it.
constexpr std::array<std::string_view, 9> OfficeKeeps{"ZUKCUST",  "ZUKITEM",  "ZUKSTAX", "ZUKPAY",  "ZUKCOMP",
                                                      "ZUKSETUP", "ZUKPRINT", "ZUKHELP", "ZUKBARIN"};

bool IsKeptByOffice(const std::string& table) {
    return std::find(OfficeKeeps.begin(), OfficeKeeps.end(), table) != OfficeKeeps.end();
}

std::string WorkName(const std::string& name) {
    return name + std::string(WorkMark);
}

HandheldLayout LayoutOf(const TableLayout& table) {
    HandheldLayout layout;
    for (int k = 1; k <= table.FieldCount(); ++k) {
        const std::string& type = table.FieldType(k);
        layout.Fields.push_back({std::string(table.PlainName(k)), type.empty() ? 'C' : type.front(),
                                 static_cast<std::uint8_t>(table.FieldLength(k)),
                                 static_cast<std::uint8_t>(table.FieldDecimals(k))});
    }
    return layout;
}

std::vector<FieldDef> FieldsOf(const TableEntry& table) {
    std::vector<FieldDef> fields;
    for (const TableField& field : table.Fields) {
        fields.push_back({field.Name, field.Type, field.Length, field.Decimals});
    }
    return fields;
}

} // namespace

TableTransfer::TableTransfer(HandheldLine& line, const Limits& limits, Step step, Awaited awaited)
    : line_(line),
      limits_(limits),
      step_(std::move(step)),
      awaited_(std::move(awaited)) {}

/// Runs a deed that may leave a database open, and one of the name `work` behind: after a failure that the
/// line survives neither is left.
template <class Deed>
auto TableTransfer::Guarded(const std::string& work, Deed deed) {
    const auto tidyUp = [&] {
        DlpRequest closeAll(DlpFunction::CloseDB);
        closeAll.Arguments.push_back({0x21, {}});
        line_.Ask(closeAll);
        if (!work.empty()) line_.Ask(PackDeleteDB(work));
    };
    try {
        return deed();
    } catch (const HandheldRefusal& failure) {
        tidyUp();
        throw TransferFailure(failure.what());
    } catch (const PalmFailure& failure) {
        tidyUp();
        throw TransferFailure(failure.what());
    } catch (const RunTimeFailure& failure) {
        tidyUp();
        throw TransferFailure(failure.what());
    } catch (const TransferFailure&) {
        tidyUp();
        throw;
    } catch (const SessionCancelled&) {
        tidyUp();
        throw;
    }
}

// ---- from the handheld ----

TableTransfer::Result TableTransfer::Upload(std::string_view path) {
    const std::string name = Guarded({}, [&] { return HandheldDatabaseName(path); });
    notFetched_.insert(name);
    Result result = Guarded({}, [&] {
        line_.KeepAlive();
        return Fetch(path, name);
    });
    notFetched_.erase(name);
    return result;
}

void TableTransfer::CheckAwaited() const {
    if (!awaited_()) throw TransferFailure("the program that asked for it has gone");
}

TableTransfer::Result TableTransfer::Fetch(std::string_view path, const std::string& name) {
    const std::string deed = "open " + name;
    const DlpResponse opened = line_.Ask(PackOpenDB(name, false));
    if (opened.Error == DlpError::NotFound) return FetchNone(path, name);
    if (opened.Error != DlpError::None) throw HandheldRefusal(deed, opened.Error);
    const std::uint8_t handle = ReadHandle(opened);
    const HandheldLayout layout =
        ReadLayout(ReadBlock(line_.Need(PackReadAppBlock(handle), "read the fields of " + name)));
    const std::uint16_t count = CountRecords(handle, name);
    FetchedTable table(path, {name, layout, count, limits_.LargestTable});
    for (std::uint16_t index = 0; index < count; ++index) {
        step_(index, count);
        table.Take(ReadWhole(handle, index));
    }
    step_(count, count);
    if (CountRecords(handle, name) != count) throw TransferFailure(name + " changed while it was read");
    Close(handle);
    CheckAwaited();
    return table.Put();
}

TableTransfer::Result TableTransfer::FetchNone(std::string_view path, const std::string& name) {
    const std::string table = TableOfDatabase(name);
    if (IsKeptByOffice(table)) throw TransferFailure("the handheld has no " + name);
    CheckAwaited();
    Result result;
    result.WasMissing = true;
    if (FileExists(path)) {
        TableRewrite(path).Commit();
        return result;
    }
    const TableEntry* const entry = FindTable(table);
    if (!entry) throw TransferFailure("the handheld has no " + name + ", and nobody knows its fields");
    TableRewrite(path, FieldsOf(*entry)).Commit();
    return result;
}

DatabaseRecord TableTransfer::ReadWhole(std::uint8_t handle, std::uint16_t index) {
    const std::string deed = "read record " + std::to_string(index + 1);
    RecordAnswer answer = ReadRecordAnswer(line_.Need(PackReadRecord(handle, index, 0, LongestPiece), deed));
    // An answer that comes twice would shift all records behind it.
    if (answer.Index != index) throw PalmFailure(deed + ": another record came");
    std::string& data = answer.Record.Data;
    while (data.size() < answer.Size) {
        const auto offset = static_cast<std::uint16_t>(data.size());
        const RecordAnswer more =
            ReadRecordAnswer(line_.Need(PackReadRecord(handle, index, offset, LongestPiece), deed));
        if (more.Index != index) throw PalmFailure(deed + ": another record came");
        if (more.Size != answer.Size || more.Record.Data.empty())
            throw PalmFailure(deed + ": it changed meanwhile");
        data += more.Record.Data;
    }
    if (data.size() != answer.Size) throw PalmFailure(deed + ": more bytes than the record has");
    return std::move(answer.Record);
}

std::uint16_t TableTransfer::CountRecords(std::uint8_t handle, const std::string& name) {
    return ReadRecordCount(line_.Need(PackReadOpenDBInfo(handle), "count the records of " + name));
}

// ---- to the handheld ----

TableTransfer::Result TableTransfer::Download(std::string_view path) {
    const std::string name = Guarded({}, [&] { return HandheldDatabaseName(path); });
    const std::string work = WorkName(name);
    Result result = Guarded(work, [&] {
        if (notFetched_.contains(name) && !IsKeptByOffice(TableOfDatabase(name)))
            throw TransferFailure("it could not be fetched in this session");
        line_.KeepAlive();
        return Send(path, work);
    });
    // From here on the new table is whole: it is never deleted again.
    Guarded({}, [&] { MoveToName(work, name); });
    return result;
}

TableTransfer::Result TableTransfer::Send(std::string_view path, const std::string& work) {
    TableScan scan(path);
    HandheldLayout layout = LayoutOf(scan.Layout());
    layout.RowsInRecord = RowsInRecordFor(layout, static_cast<std::size_t>(scan.RecordCount()));
    const std::string fields = PackLayout(layout);
    DatabaseHeader header = HandheldHeader(path);
    const std::string name = header.Name;
    header.Version = 0;
    const std::uint8_t handle = Begin(header, work);
    line_.Need(PackWriteAppBlock(handle, fields), "write the fields of " + name);
    Result result;
    DatabaseRecord record;
    std::size_t rows = 0, records = 0;
    const auto write = [&] {
        line_.Need(PackWriteRecord(handle, record), "write record " + std::to_string(scan.RecordNumber()));
        record.Data.clear();
        rows = 0;
        ++records;
    };
    while (scan.Next()) {
        step_(scan.RecordNumber() - 1, scan.RecordCount());
        if (scan.Deleted()) {
            ++result.LeftBehind;
            continue;
        }
        record.Data += PackRecord(layout, {std::string(scan.Fields()), {}});
        ++result.Records;
        if (++rows == layout.RowsInRecord) write();
    }
    if (rows > 0) write();
    step_(scan.RecordCount(), scan.RecordCount());
    if (CountRecords(handle, name) != records) throw TransferFailure(name + ": the handheld lost records");
    line_.Need(PackSetDBInfo(handle, WholeTable, {}), "finish " + name);
    Close(handle);
    return result;
}

std::uint8_t TableTransfer::Begin(const DatabaseHeader& header, const std::string& work) {
    DeleteIfThere(work);
    DatabaseHeader begun = header;
    begun.Name = work;
    begun.Flags = static_cast<std::uint16_t>(begun.Flags & ~ReadOnlyDatabase);
    return ReadHandle(line_.Need(PackCreateDB(begun), "make " + work));
}

void TableTransfer::MoveToName(const std::string& work, const std::string& name) {
    // Opened first: one that cannot be does not cost the old table.
    const std::uint8_t handle = ReadHandle(line_.Need(PackOpenDB(work, true), "open " + work));
    DeleteIfThere(name);
    line_.Need(PackSetDBInfo(handle, KeepVersion, name), "name " + name);
    Close(handle);
}

void TableTransfer::Close(std::uint8_t handle) {
    line_.Need(PackCloseDB(handle), "close a database");
}

void TableTransfer::DeleteIfThere(const std::string& name) {
    const DlpResponse response = line_.Ask(PackDeleteDB(name));
    if (response.Error != DlpError::None && response.Error != DlpError::NotFound) {
        throw HandheldRefusal("delete " + name, response.Error);
    }
}

std::int32_t TableTransfer::Install(std::string_view path) {
    const std::string work(InstallWork);
    const Database database = Guarded(work, [&] {
        line_.KeepAlive();
        Database read = ReadDatabase(ReadWholeFile(path, limits_.LargestFile));
        if (read.Name == work)
            throw PalmFailure("the name " + work + " is needed while something is installed");
        Put(read, work);
        return read;
    });
    Guarded({}, [&] { MoveToName(work, database.Name); });
    if ((database.Flags & ResetAfterInstall) != 0) needsReset_ = true;
    return static_cast<std::int32_t>(database.Records.size() + database.Resources.size());
}

void TableTransfer::Put(const Database& database, const std::string& work) {
    const auto of = static_cast<std::int32_t>(database.Records.size() + database.Resources.size());
    const std::uint8_t handle = Begin(database, work);
    const std::string& name = database.Name;
    if (!database.AppInfo.empty()) {
        line_.Need(PackWriteAppBlock(handle, database.AppInfo), "write the block of " + name);
    }
    if (!database.SortInfo.empty()) {
        line_.Need(PackWriteSortBlock(handle, database.SortInfo), "write the sort block of " + name);
    }
    std::int32_t done = 0;
    for (const DatabaseResource& resource : database.Resources) {
        step_(done++, of);
        if (resource.Data.empty()) continue; // cannot be installed
        if (resource.Type == FourCharacters("boot")) needsReset_ = true;
        line_.Need(PackWriteResource(handle, resource), "write resource " + std::to_string(done));
    }
    for (const DatabaseRecord& record : database.Records) {
        step_(done++, of);
        if ((record.Flags & DeletedRecord) != 0) continue;
        line_.Need(PackWriteRecord(handle, record), "write record " + std::to_string(done));
    }
    step_(of, of);
    Close(handle);
}

// ---- what an earlier session left ----

std::vector<std::string> TableTransfer::Recover() {
    return Guarded({}, [&] {
        std::vector<DatabaseInfo> all;
        std::uint32_t next = 0;
        while (next <= 0xFFFF) {
            const DlpResponse response = line_.Ask(PackListRequest(static_cast<std::uint16_t>(next)));
            if (response.Error == DlpError::NotFound) break;
            if (response.Error != DlpError::None) throw HandheldRefusal("list the databases", response.Error);
            const DatabaseList list = ReadDatabaseList(response);
            if (list.Databases.empty() || list.LastIndex < next) break;
            all.insert(all.end(), list.Databases.begin(), list.Databases.end());
            if (all.size() > MostDatabases) throw PalmFailure("more databases than a handheld can have");
            next = list.LastIndex + 1U;
            if (!list.More) break;
        }
        const auto isThere = [&](const std::string& name) {
            return std::any_of(all.begin(), all.end(), [&](const auto& info) { return info.Name == name; });
        };
        std::vector<std::string> concerned;
        for (const DatabaseInfo& info : all) {
            const std::string name =
                info.Name.substr(0, info.Name.size() - std::min<std::size_t>(info.Name.size(), 1));
            const bool isTable = info.Creator == HandheldCreator && !TableOfDatabase(name).empty();
            if (info.Name != InstallWork && (!isTable || info.Name != WorkName(name))) continue;
            concerned.push_back(info.Name);
            if (isTable && info.Version == WholeTable && !isThere(name))
                MoveToName(info.Name, name);
            else
                DeleteIfThere(info.Name);
        }
        return concerned;
    });
}

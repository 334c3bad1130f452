#include "handheld/CommandTable.h"

#include "core/CodePage.h"
#include "core/TextCompare.h"
#include "handheld/HandheldTable.h"
#include "handheld/Refusal.h"
#include "handheld/TableSearch.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::size_t NameWidth = 12;

/// A table by its name, with or without the letters that all tables begin with.
std::string TableName(const DatabaseStore& store, const std::string& operand) {
    std::string name = Utf8ToCodePage(operand);
    if (HandheldTable::Has(store, name) || !HandheldTable::Has(store, "ZUK" + name)) return name;
    return "ZUK" + name;
}

void TellRow(std::ostream& out, const HandheldTable& table, std::size_t row) {
    out << table.Name() << ", record " << row + 1 << (table.IsSigned(row) ? ", signed" : "") << '\n';
    for (std::size_t field = 0; field < table.Layout().Fields.size(); ++field) {
        const std::string_view value = table.Get(row, field);
        if (value.empty()) continue;
        std::string name = table.Layout().Fields[field].Name;
        name.resize(std::max(NameWidth, name.size()), ' ');
        out << "  " << CodePageToUtf8(name) << CodePageToUtf8(value) << '\n';
    }
}

std::string CsvCell(std::string_view value) {
    if (value.find_first_of(",\"\r\n") == std::string_view::npos) return CodePageToUtf8(value);
    std::string cell = "\"";
    for (const char c : CodePageToUtf8(value)) cell += c == '"' ? "\"\"" : std::string(1, c);
    return cell + '"';
}

void TellCsv(std::ostream& out, const HandheldTable& table) {
    const std::vector<HandheldField>& fields = table.Layout().Fields;
    for (std::size_t field = 0; field < fields.size(); ++field) {
        out << (field == 0 ? "" : ",") << CsvCell(fields[field].Name);
    }
    out << '\n';
    for (std::size_t row = 0; row < table.Count(); ++row) {
        for (std::size_t field = 0; field < fields.size(); ++field) {
            out << (field == 0 ? "" : ",") << CsvCell(table.Get(row, field));
        }
        out << '\n';
    }
}

/// Also of a table that is damaged, which has its records then.
std::size_t RowsOf(const Database& database) {
    try {
        const HandheldLayout layout = ReadLayout(database.AppInfo);
        if (!layout.IsPacked()) return database.Records.size();
        std::size_t bytes = 0;
        for (const DatabaseRecord& record : database.Records) bytes += record.Data.size();
        return bytes / layout.RecordBytes();
    } catch (const PalmFailure&) {
        return database.Records.size();
    }
}

Outcome Tables(const CommandRun& run) {
    const Handheld handheld(run.Folder);
    std::size_t count = 0;
    for (const DatabaseStore::Entry& entry : handheld.Store.Entries()) {
        const bool isPart = entry.Header.Name.ends_with('~');
        const std::string table =
            TableOfDatabase(entry.Header.Name.substr(0, entry.Header.Name.size() - (isPart ? 1 : 0)));
        if (table.empty()) continue;
        run.Out() << table << ": " << RowsOf(handheld.Store.Load(entry.Header.Name)) << " records, "
                  << entry.Bytes << " bytes" << (isPart ? ", left from a HotSync that did not end" : "")
                  << '\n';
        ++count;
    }
    run.Out() << count << " tables\n";
    return Outcome::Done;
}

Outcome Show(const CommandRun& run) {
    const Handheld handheld(run.Folder);
    const HandheldTable table(handheld.Store, TableName(handheld.Store, run.Line.Operands().front()));
    if (run.Line.Has("--csv")) {
        TellCsv(run.Out(), table);
        return Outcome::Done;
    }
    for (std::size_t row = 0; row < table.Count(); ++row) TellRow(run.Out(), table, row);
    run.Out() << table.Name() << ": " << table.Count() << " records\n";
    return Outcome::Done;
}

Outcome Version(const CommandRun& run) {
    const Handheld handheld(run.Folder);
    const HandheldTable table(handheld.Store, "ZUKVER");
    if (table.Count() == 0) throw Refusal("the version table ZUKVER has no record");
    run.Out() << CodePageToUtf8(table.Get(0, table.Field("V_MAJOR"))) << '\n';
    return Outcome::Done;
}

/// Every row that has a key, as a lookup on the handheld comes to them.
Outcome LookUp(const CommandRun& run, std::string_view tableName) {
    const Handheld handheld(run.Folder);
    const HandheldTable table(handheld.Store, tableName);
    const std::string key = Utf8ToCodePage(run.Line.Operands().front());
    const RowRange range = FindKey(table, key);
    if (range.IsEmpty()) {
        const std::string next = range.First < table.Count()
                                     ? "; next is " + CodePageToUtf8(table.Get(range.First, std::size_t{0}))
                                     : "";
        throw Refusal("not found: " + CodePageToUtf8(key) + next + OrderHint(table));
    }
    for (std::size_t row = range.First; row < range.End; ++row) TellRow(run.Out(), table, row);
    return Outcome::Done;
}

Outcome Customer(const CommandRun& run) {
    return LookUp(run, "ZUKCUST");
}

Outcome Item(const CommandRun& run) {
    return LookUp(run, "ZUKITEM");
}

Outcome Barcode(const CommandRun& run) {
    const Handheld handheld(run.Folder);
    const HandheldTable index(handheld.Store, "ZUKBARIN"), items(handheld.Store, "ZUKITEM");
    TellRow(run.Out(), items, FindBarcode(index, items, Utf8ToCodePage(run.Line.Operands().front())));
    return Outcome::Done;
}

constexpr std::array<OptionDef, 1> ShowOptions{{{"--csv", false}}};

constexpr std::array<CommandDef, 6> Commands{{
    {"tables", "", "Lists the tables that it has.\n", {}, 0, 0, Tables},
    {"show", "TABLE [--csv]",
     "Shows a table, as ZUKORHDR or ORHDR: each record with its fields that are not blank, or all of it as\n"
     "comma-separated text in UTF-8.\n",
     ShowOptions, 1, 1, Show},
    {"version", "", "Tells the version of its table set: V_MAJOR of ZUKVER.\n", {}, 0, 0, Version},
    {"customer",
     "KEY",
     "Looks a customer up by the search value, by binary search as handhelds do: a table that is out of\n"
     "order is told of when nothing is found.\n",
     {},
     1,
     1,
     Customer},
    {"item", "KEY", "The same for an item.\n", {}, 1, 1, Item},
    {"barcode",
     "CODE",
     "Looks an item up by its barcode: by binary search in the index ZUKBARIN, then by the place that the\n"
     "index tells, counted from 0. An index that points at another item is out of date.\n",
     {},
     1,
     1,
     Barcode},
}};

} // namespace

std::span<const CommandDef> TableCommands() {
    return Commands;
}

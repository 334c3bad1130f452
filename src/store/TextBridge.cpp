#include "store/TextBridge.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"
#include "store/TableRewrite.h"
#include "store/TableScan.h"

#include <algorithm>
#include <numeric>
#include <unordered_map>

namespace {

constexpr char Delimiter = '\xA5';

BridgeFields FieldsOf(const TableLayout& layout) {
    BridgeFields fields;
    for (int k = 1; k <= layout.FieldCount(); ++k) fields.emplace_back(layout.PlainName(k));
    return fields;
}

/// The current record as a line. At most a record and 255 delimiters: TextReader takes any such line.
void MakeLine(const TableScan& scan, std::string& line) {
    line.clear();
    for (int k = 1; k <= scan.Layout().FieldCount(); ++k) {
        line += scan.Trimmed(k);
        line += Delimiter;
    }
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
}

/// Hands on the first `count` values of a line, each with its place from 0. False when there are fewer.
template <typename Take>
bool EachValue(std::string_view line, std::size_t count, const Take& take) {
    for (std::size_t k = 0; k < count; ++k) {
        const std::size_t end = line.find(Delimiter);
        if (end == std::string_view::npos) return false;
        take(k, Trim(line.substr(0, end)));
        line.remove_prefix(end + 1);
    }
    return true;
}

/// Where each value of a line goes; 0 for a field that the table does not have.
std::vector<int> PlacesIn(const TableLayout& layout, const BridgeFields& fields) {
    std::vector<int> places;
    for (const std::string& field : fields) places.push_back(layout.Find(FieldKey(field)));
    return places;
}

/// Which value of a line goes where.
struct Match {
    std::size_t Value;
    int Place;
};

/// The matches in the order in which they are written: the shorter list of names is gone through outside.
std::vector<Match> MatchesOf(const BridgeFields& old, const TableLayout& structure) {
    const BridgeFields now = FieldsOf(structure);
    std::vector<Match> matches;
    const auto look = [&](std::size_t from, std::size_t to) {
        if (!old[from].empty() && SameText(old[from], now[to]))
            matches.push_back({from, structure.Find(FieldKey(now[to]))});
    };
    const bool oldIsOuter = old.size() <= now.size();
    for (std::size_t i = 0; i < std::min(old.size(), now.size()); ++i) {
        for (std::size_t j = 0; j < std::max(old.size(), now.size()); ++j)
            oldIsOuter ? look(i, j) : look(j, i);
    }
    return matches;
}

/// The fields of the current record as the bridge appends them to a table of this layout.
std::string Bridged(const TableScan& scan, const TableLayout& layout, const std::vector<int>& places) {
    std::string fields(static_cast<std::size_t>(layout.FieldBytes()), ' ');
    std::string line;
    MakeLine(scan, line);
    EachValue(line, places.size(),
              [&](std::size_t k, std::string_view value) { layout.Fit(places[k], value, fields); });
    return fields;
}

/// How often each record, by its fields.
using RecordCounts = std::unordered_map<std::string, std::int32_t>;

bool TakeOne(RecordCounts& records, const std::string& fields) {
    const auto record = records.find(fields);
    if (record == records.end()) return false;
    if (--record->second == 0) records.erase(record);
    return true;
}

/// The records of a table, as the bridge appends them to another, that this one does not hold.
RecordCounts MissingIn(std::string_view target, std::string_view source) {
    TableScan old(source);
    TableScan table(target);
    const TableLayout& layout = table.Layout();
    RecordCounts missing;
    if (old.RecordCount() == 0) return missing; // whatever its fields are
    const std::vector<int> places = PlacesIn(layout, FieldsOf(old.Layout()));
    while (old.Next()) ++missing[Bridged(old, layout, places)];
    std::vector<int> own(static_cast<std::size_t>(layout.FieldCount()));
    std::iota(own.begin(), own.end(), 1);
    while (!missing.empty() && table.Next()) {
        // One that was never replaced still has its values as they were, with blanks before them.
        if (!TakeOne(missing, std::string(table.Fields()))) TakeOne(missing, Bridged(table, layout, own));
    }
    return missing;
}

std::int64_t CountLines(std::string_view text) {
    TextReader reader(text);
    std::string line;
    while (reader.ReadLine(line)) {
    }
    return reader.LineNumber();
}

void AppendLines(TableRewrite& table, const BridgeFields& fields, std::string_view text, Progress& progress) {
    const std::vector<int> places = PlacesIn(table.Layout(), fields);
    const auto write = [&](std::size_t k, std::string_view value) { table.Write(places[k], value); };
    TextReader reader(text);
    for (std::string line; reader.ReadLine(line);) {
        table.Append();
        if (!EachValue(line, fields.size(), write)) {
            throw FailureInLine(321, text, reader.LineNumber(), line);
        }
        progress.Show(reader.LineNumber());
    }
}

} // namespace

void DBFtoText(std::string_view source, BridgeFields& fields, std::string_view text) {
    NoProgress silent;
    OldDBFtoText(source, fields, text, silent);
}

void TextToDBF(std::string_view target, const BridgeFields& fields, std::string_view text,
               Progress& progress) {
    TableScan scan(target);
    TableRewrite table(target);
    while (scan.Next()) table.AppendRaw(scan.Flag(), scan.Record());
    const std::int64_t lines = CountLines(text);
    if (lines > 0) {
        progress.Begin(msg::ProcessingData, lines);
        AppendLines(table, fields, text, progress);
    }
    scan.Close();
    table.Commit();
    if (lines > 0) RemoveQuietly(text);
}

void OldDBFtoText(std::string_view source, BridgeFields& fields, std::string_view text, Progress& progress) {
    SafeFile file(text);
    TableScan scan(source);
    fields = FieldsOf(scan.Layout());
    progress.Begin(Lines(msg::CopyDBFWait, Text::Path(FileNameOf(source))),
                   std::int64_t{2} * scan.RecordCount() + 1);
    for (std::string line; scan.Next();) {
        MakeLine(scan, line);
        file.WriteLine(line);
        progress.Show(scan.RecordNumber());
    }
    scan.Close();
    file.Commit(false); // read back at once; after a power cut it is made again
}

void TextToNewDBF(std::string_view target, const TableLayout& structure, const BridgeFields& fields,
                  std::string_view text, Progress& progress) {
    const std::vector<Match> matches = MatchesOf(fields, structure);
    TableRewrite table(target, structure);
    const std::int64_t lines = CountLines(text);
    std::vector<std::string_view> values(fields.size());
    {
        TextReader reader(text);
        for (std::string line; reader.ReadLine(line);) {
            table.Append();
            if (!EachValue(line, values.size(), [&](std::size_t k, std::string_view v) { values[k] = v; }))
                throw FailureInLine(321, text, reader.LineNumber(), line);
            for (const Match& match : matches) table.Write(match.Place, values[match.Value]);
            progress.Show(lines + reader.LineNumber());
        }
    }
    // First the text: what lies about behind a kill belongs to no table that is whole.
    Global.TheDisk->Remove(ResolvePath(text));
    table.Commit();
}

bool HaveSameFields(const TableLayout& a, const TableLayout& b) {
    if (a.RecordLength() != b.RecordLength() || a.FieldCount() != b.FieldCount()) return false;
    for (int k = 1; k <= a.FieldCount(); ++k) {
        if (a.FieldName(k) != b.FieldName(k) || a.FieldType(k) != b.FieldType(k) ||
            a.FieldLength(k) != b.FieldLength(k) || a.FieldDecimals(k) != b.FieldDecimals(k))
            return false;
    }
    return true;
}

std::int32_t AppendMissing(std::string_view target, std::string_view source) {
    RecordCounts missing = MissingIn(target, source);
    if (missing.empty()) return 0;
    TableScan scan(target);
    TableRewrite table(target);
    while (scan.Next()) table.AppendRaw(scan.Flag(), scan.Record());
    const std::int32_t before = table.RecordCount();
    TableScan old(source);
    const std::vector<int> places = PlacesIn(table.Layout(), FieldsOf(old.Layout()));
    while (old.Next()) {
        std::string fields = Bridged(old, table.Layout(), places);
        if (!TakeOne(missing, fields)) continue;
        fields.resize(static_cast<std::size_t>(table.Layout().RecordLength()) - 1, ' ');
        table.AppendRaw(TableLayout::Live, fields);
    }
    const std::int32_t appended = table.RecordCount() - before;
    scan.Close();
    old.Close();
    table.Commit();
    return appended;
}

bool HoldTheSame(std::string_view table, std::string_view other) {
    TableScan a(table);
    TableScan b(other);
    if (a.RecordCount() != b.RecordCount() || !HaveSameFields(a.Layout(), b.Layout())) return false;
    while (a.Next() && b.Next()) {
        if (a.Flag() != b.Flag() || a.Record() != b.Record()) return false;
    }
    return true;
}

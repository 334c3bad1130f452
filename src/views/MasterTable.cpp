#include "views/MasterTable.h"

#include "core/Failure.h"
#include "core/Messages.h"
#include "core/Numbers.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "store/TableLock.h"
#include "store/TableScan.h"

#include <algorithm>
#include <stdexcept>

const MasterKind CustomerMaster{
    ViewCust, "ZUKCUST.DBF", "C_CODE", msg::CustCodeEmpty, {"C_SEARCH", "C_NAME"}};
const MasterKind ItemMaster{
    ViewItem, "ZUKITEM.DBF", "I_ITEMCODE", msg::ItemCodeEmpty, {"I_SEARCH", "I_DESC1"}};
const MasterKind SalesTaxMaster{
    ViewSTax, "ZUKSTAX.DBF", "ST_CODE", msg::TaxCodeEmpty, {"ST_CODE", "ST_DESC"}};

namespace {

/// What a table makes of a number in one of its fields.
Text NumberWarning(const TableField& field, std::string_view text) {
    if (field.Type != 'N' || text.empty()) return {};
    if (!IsNumeric(text)) return msg::RateNoNumber;
    const std::size_t point = text.find('.');
    if (point == std::string_view::npos) return {};
    const std::string_view decimals = text.substr(point + 1);
    const auto digits =
        std::count_if(decimals.begin(), decimals.end(), [](char c) { return c >= '0' && c <= '9'; });
    return digits > field.Decimals ? Text(msg::RateDecimals) : Text();
}

} // namespace

MasterTable::MasterTable(const MasterKind& kind, const RecordRules& rules)
    : kind_(kind),
      rules_(rules),
      entry_(*FindTable(kind.File)) {
    for (const int place : rules_.FieldsWithoutRepeats(kind.File)) folded_[place];
}

void MasterTable::Open(std::int32_t record) {
    const std::string path = Global.DBFPath + kind_.File;
    records_.Open(path, kind_.Key, record);
    try {
        RefuseLocked();
        file_ = std::make_unique<TableReader>(path);
        ReadLists();
    } catch (...) {
        Close();
        throw;
    }
}

void MasterTable::ReadLists() {
    TableScan table(records_.Path());
    const auto find = [&](const char* name) { return table.Layout().Find(FieldKey(name)); };
    const int first = find(kind_.Lookup[0]);
    const int second = find(kind_.Lookup[1]);
    const auto count = static_cast<std::size_t>(table.RecordCount());
    lookup_.clear();
    lookup_.reserve(count);
    std::vector<std::pair<int, std::vector<std::string>*>> columns;
    for (auto& [place, texts] : folded_) {
        texts.clear();
        texts.reserve(count);
        columns.emplace_back(find(FieldName(place)), &texts);
    }
    while (table.Next()) {
        lookup_.push_back(Entry(table.Trimmed(first), table.Trimmed(second)));
        for (const auto& [field, texts] : columns) texts->push_back(FoldCase(table.Trimmed(field)));
    }
}

std::string MasterTable::Entry(std::string_view first, std::string_view second) const {
    std::string entry;
    entry.reserve(first.size() + second.size() + 3);
    return entry.append(first).append(" : ").append(second);
}

const char* MasterTable::FieldName(int place) const {
    if (place < 1 || place > static_cast<int>(entry_.Fields.size()))
        throw std::out_of_range("no field " + std::to_string(place));
    return entry_.Fields[static_cast<std::size_t>(place) - 1].Name;
}

int MasterTable::FieldLength(int place) const {
    return static_cast<int>(records_.Padded(FieldName(place)).size());
}

std::string MasterTable::Trimmed(int place) const {
    return records_.Trimmed(FieldName(place));
}

bool MasterTable::IsKey(int place) const {
    return SameText(FieldName(place), kind_.Key);
}

// ---- somebody else's changes ----

bool MasterTable::IsChanged() const {
    return !sought_.empty() || file_->CheckChanged();
}

bool MasterTable::Renew() {
    if (!IsChanged()) return false;
    Find();
    return true;
}

/// Opens the table again and looks for the record that was current, by all that it held.
bool MasterTable::Find() {
    // Behind a failure half way another record may be current: what was sought first is sought still.
    if (sought_.empty()) {
        for (const TableField& field : entry_.Fields) sought_.push_back(records_.Padded(field.Name));
    }
    const std::int32_t before = RecordNumber();
    Open(before);
    const bool found = before == 0 || GoToSought(before);
    sought_.clear();
    return found;
}

/// The one of that number where there are several.
bool MasterTable::GoToSought(std::int32_t before) {
    TableScan table(records_.Path());
    std::vector<int> fields;
    for (const TableField& field : entry_.Fields) fields.push_back(table.Layout().Find(FieldKey(field.Name)));
    const auto isIt = [&] {
        return std::equal(fields.begin(), fields.end(), sought_.begin(),
                          [&](int field, const std::string& text) { return table.Field(field) == text; });
    };
    std::int32_t found = 0;
    while (found != before && table.Next()) {
        if ((found == 0 || table.RecordNumber() == before) && isIt()) found = table.RecordNumber();
    }
    if (found > 0) Go(found);
    return found > 0;
}

/// Before a change: whether the current record is still in the table.
bool MasterTable::Attend() {
    RefuseLocked();
    return !IsChanged() || Find();
}

/// A file that is not there is somebody else's failure, and has a better name.
void MasterTable::RefuseLocked() const {
    if (FileExists(records_.Path()) && TableIsLocked(records_.Path()))
        throw RunTimeFailure(70, records_.Path());
}

/// Behind a change of our own.
void MasterTable::NoteChange() {
    file_->Reopen();
}

bool MasterTable::Write(const Cells& cells) {
    if (!Attend()) return false;
    TableRecords::Values values;
    for (const auto& [place, text] : cells) values.emplace_back(FieldName(place), text);
    records_.Write(values);
    NoteChange();
    const auto at = static_cast<std::size_t>(RecordNumber()) - 1;
    lookup_.at(at) = Entry(records_.Trimmed(kind_.Lookup[0]), records_.Trimmed(kind_.Lookup[1]));
    for (auto& [place, texts] : folded_) texts.at(at) = FoldCase(Trimmed(place));
    return true;
}

bool MasterTable::Append() {
    if (!Attend()) return false;
    records_.Append();
    NoteChange();
    lookup_.push_back(Entry({}, {}));
    for (auto& [place, texts] : folded_) texts.emplace_back();
    return true;
}

bool MasterTable::Delete() {
    if (!Attend()) return false;
    records_.Delete(TableRecords::Then::Previous);
    NoteChange();
    ReadLists();
    return true;
}

// ---- what there is to object to ----

std::int32_t MasterTable::OtherWith(int place, std::string_view text) const {
    const std::string key = FoldCase(text);
    const std::vector<std::string>& texts = folded_.at(place);
    const auto current = static_cast<std::ptrdiff_t>(RecordNumber()) - 1;
    auto found = std::find(texts.begin(), texts.end(), key);
    if (found - texts.begin() == current) found = std::find(found + 1, texts.end(), key);
    return found == texts.end() ? 0 : static_cast<std::int32_t>(found - texts.begin()) + 1;
}

Text MasterTable::Warning(const Cells& cells) const {
    const auto cell = [&](int place) {
        const auto found = cells.find(place);
        return found == cells.end() ? Trimmed(place) : std::string(Trim(found->second));
    };
    const int key = PlaceOf(entry_.Fields, kind_.Key);
    if (RecordNumber() == 0 || cell(key).empty()) return {};
    for (const auto& [place, text] : cells) {
        Text warning = NumberWarning(entry_.Fields[static_cast<std::size_t>(place) - 1], Trim(text));
        if (!warning.IsEmpty()) return warning;
    }
    return rules_.FirstObjection(kind_.File, cell,
                                 [this](int place, std::string_view text) { return OtherWith(place, text); });
}

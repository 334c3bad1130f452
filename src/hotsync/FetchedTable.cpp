#include "hotsync/FetchedTable.h"

#include "core/CodePage.h"
#include "core/Failure.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"

#include <optional>
#include <utility>

namespace {

constexpr std::string_view SignedTable = "ZUKORHDR";

std::vector<FieldDef> FieldsOf(const HandheldLayout& layout) {
    std::vector<FieldDef> fields;
    fields.reserve(layout.Fields.size());
    for (const HandheldField& field : layout.Fields) {
        fields.push_back({field.Name, field.Type, field.Length, field.Decimals});
    }
    return fields;
}

/// Where each of the handheld's fields goes in a table that has all of them, none shorter and none of
/// another type; nothing when it has not.
std::optional<std::vector<int>> PlacesIn(const TableLayout& table, const HandheldLayout& from) {
    std::vector<int> places;
    for (const HandheldField& field : from.Fields) {
        int place = table.FieldCount();
        while (place > 0 && !SameText(table.PlainName(place), field.Name)) --place;
        if (place == 0 || table.FieldLength(place) < field.Length ||
            table.FieldType(place) != std::string(1, field.Type)) {
            return std::nullopt;
        }
        places.push_back(place);
    }
    return places;
}

} // namespace

FetchedTable::FetchedTable(std::string_view path, Origin origin)
    : path_(path),
      origin_(std::move(origin)),
      reader_(origin_.Layout),
      bytes_(CheckedSize(LeastRows() * origin_.Layout.RecordBytes())),
      columns_(ColumnsFor(path_, origin_.Layout)) {}

FetchedTable::Columns FetchedTable::ColumnsFor(std::string_view path, const HandheldLayout& from) {
    if (FileExists(path)) {
        try {
            TableRewrite table(path);
            if (auto places = PlacesIn(table.Layout(), from)) return {TableRewrite(path), *std::move(places)};
        } catch (const RunTimeFailure& failure) {
            // A file that is no table is replaced by one; one that may not be touched is not.
            constexpr int notATable = 321;
            if (failure.Number() != notATable) throw;
        }
    }
    return {TableRewrite(path, FieldsOf(from)), {}};
}

/// The last record of a packed table may have but one row.
std::uint64_t FetchedTable::LeastRows() const {
    const bool isPacked = origin_.Layout.IsPacked() && origin_.Records > 0;
    return isPacked ? (origin_.Records - std::uint64_t{1}) * origin_.Layout.RowsInRecord + 1
                    : origin_.Records;
}

std::uint64_t FetchedTable::CheckedSize(std::uint64_t bytes) const {
    if (bytes <= origin_.Largest) return bytes;
    throw TransferFailure(origin_.Database + ": " + std::to_string(LeastRows()) + " records are more than " +
                          std::to_string(origin_.Largest >> 20) + " MB");
}

void FetchedTable::Take(const DatabaseRecord& whole) {
    if ((whole.Flags & DeletedRecord) != 0) { // its bytes may be gone already
        ++result_.LeftBehind;
        return;
    }
    for (HandheldRecord& record : reader_.Read(whole.Data)) {
        Append(record.Fields);
        ++result_.Records;
        if (record.IsSigned()) TakeSignature(record);
    }
}

void FetchedTable::Append(std::string_view fields) {
    const TableLayout& layout = columns_.Table.Layout();
    std::string record(static_cast<std::size_t>(layout.RecordLength()) - 1, ' ');
    std::size_t at = 0;
    for (std::size_t k = 0; k < origin_.Layout.Fields.size(); ++k) {
        const std::size_t length = origin_.Layout.Fields[k].Length;
        const int to = columns_.Places.empty() ? static_cast<int>(k) + 1 : columns_.Places[k];
        record.replace(static_cast<std::size_t>(layout.FieldStart(to)) - 1, length,
                       fields.substr(at, length));
        at += length;
    }
    columns_.Table.AppendRaw(TableLayout::Live, record);
}

void FetchedTable::TakeSignature(HandheldRecord& record) {
    const HandheldLayout& layout = origin_.Layout;
    const std::size_t orderCode = layout.Find("H_ORDCODE");
    std::string code;
    if (TableOfDatabase(origin_.Database) == SignedTable && orderCode < layout.Fields.size())
        code = layout.Get(orderCode, record.Fields);
    code.erase(code.find_last_not_of(' ') + 1);
    if (!IsNameForNewFile(NameToPath(code))) {
        if (homeless_++ == 0) firstHomeless_ = CodePageToUtf8(code);
        return;
    }
    bytes_ = CheckedSize(bytes_ + record.Signature.Rows.size());
    const std::string images = AddBackslash(std::string(FolderOf(path_)) + "Images");
    signatures_.push_back({images + NameToPath(code), std::move(record.Signature)});
}

TableTransfer::Result FetchedTable::Put() {
    // A drawing whose order is not there yet harms nobody; an order without its drawing would.
    for (const Signature& signature : signatures_) {
        MakePath(FolderOf(signature.Path));
        WriteWholeFile(signature.Path, InkBitmap(signature.Drawing));
    }
    columns_.Table.Commit();
    result_.Signatures = static_cast<std::int32_t>(signatures_.size());
    if (homeless_ != 0) {
        result_.Odd = "a signature of order \"" + firstHomeless_ + "\" has no place to lie";
        if (homeless_ > 1) result_.Odd += ", and " + std::to_string(homeless_ - 1) + " more";
    }
    return result_;
}

#include "store/TableRewrite.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/Trace.h"
#include "store/TableBytes.h"
#include "store/TableScan.h"

#include <limits>

namespace {

TableLayout LayoutOf(std::string_view path) {
    const std::string resolved = ResolvePath(path);
    const auto file = Global.TheDisk->Open(resolved, Access::Read);
    return TableLayout::Read(*file, resolved);
}

} // namespace

TableRewrite::TableRewrite(std::string_view path) : TableRewrite(path, LayoutOf(path)) {}

TableRewrite::TableRewrite(std::string_view path, std::span<const FieldDef> fields)
    : TableRewrite(path, TableLayout::ReadBytes(EmptyTableBytes(fields), path)) {}

TableRewrite::TableRewrite(std::string_view path, TableLayout like)
    : layout_(std::move(like)),
      file_(path, SafeFile::WhenSame::Keep) {
    file_.Write(layout_.Header());
}

void TableRewrite::BeginRecord() {
    Drain();
    if (count_ == std::numeric_limits<std::int32_t>::max()) throw RunTimeFailure(6);
    ++count_;
}

void TableRewrite::Append() {
    BeginRecord();
    Blank();
    flag_ = TableLayout::Live;
}

void TableRewrite::Append(std::string_view fields) {
    if (fields.size() != static_cast<std::size_t>(layout_.FieldBytes()))
        throw RunTimeFailure(5, "fields of " + std::to_string(fields.size()) + " bytes");
    Append();
    fields.copy(fields_.data(), fields.size());
    layout_.FitAll(fields_);
}

void TableRewrite::AppendRaw(char flag, std::string_view bytes) {
    if (bytes.size() + 1 != static_cast<std::size_t>(layout_.RecordLength())) {
        throw RunTimeFailure(5, "record of " + std::to_string(bytes.size() + 1) + " bytes");
    }
    BeginRecord();
    fields_ = bytes;
    flag_ = flag;
}

void TableRewrite::Write(const FieldKey& key, std::string_view value) {
    if (count_ == 0) throw RunTimeFailure(63);
    Write(layout_.Find(key), value);
}

void TableRewrite::Write(int field, std::string_view value) {
    if (count_ == 0) throw RunTimeFailure(63);
    layout_.Fit(field, value, fields_);
}

void TableRewrite::Blank() {
    fields_.assign(static_cast<std::size_t>(layout_.RecordLength()) - 1, ' ');
}

void TableRewrite::Drain() {
    if (count_ == 0) return;
    file_.Write(std::string_view(&flag_, 1));
    file_.Write(fields_);
}

void TableRewrite::Commit(bool flush) {
    Drain();
    file_.Write(std::string_view(&trailing_, 1));
    file_.Overwrite(4, BytesOfInt32(count_));
    file_.Commit(flush);
}

void CompactTable(std::string_view path) {
    RemoveRecord(path, 0);
}

void RemoveRecord(std::string_view path, std::int32_t record) {
    TableScan scan(path);
    TraceEvent("DBFEdit:ReIndex " + std::string(path));
    TableRewrite rewrite(path);
    std::int32_t lastKept = 0;
    while (scan.Next()) {
        if (scan.Deleted() || scan.RecordNumber() == record) continue;
        rewrite.AppendRaw(TableLayout::Live, scan.Record());
        lastKept = scan.RecordNumber();
    }
    // The byte behind the last record is what stood behind it before. Only when every record up to
    // it was kept is that place its own, and the next record, a deleted one, leaves a blank there.
    if (lastKept == scan.RecordCount())
        rewrite.SetTrailing(lastKept > 0 ? scan.Trailing() : ' ');
    else if (lastKept != rewrite.RecordCount())
        rewrite.SetTrailing(TableLayout::Deleted);
    scan.Close();
    rewrite.Commit();
}

void EmptyTable(std::string_view path, bool flush) {
    TraceEvent("DBFEdit:FileOpen " + std::string(path));
    TableRewrite rewrite(path);
    TraceEvent("DBFEdit:ReIndex " + std::string(path));
    TraceEvent("DBFEdit:FileClose");
    rewrite.Commit(flush);
}

void ShiftDown(std::string_view path, std::span<const std::string> first) {
    TableScan scan(path);
    TableRewrite rewrite(path);
    const TableLayout& layout = scan.Layout();
    const auto fieldBytes = static_cast<std::size_t>(layout.FieldBytes());
    std::string above(fieldBytes, ' ');
    const auto writeFields = [&] {
        const bool top = rewrite.RecordCount() == 1;
        for (int k = 1; k <= layout.FieldCount(); ++k) {
            rewrite.Write(k, top ? std::string_view() : layout.Get(k, above));
        }
        if (!top) return;
        for (std::size_t k = 0; k < first.size(); ++k) rewrite.Write(static_cast<int>(k) + 1, first[k]);
    };
    while (scan.Next()) {
        rewrite.AppendRaw(scan.Flag(), scan.Record());
        writeFields();
        above = scan.Fields();
    }
    rewrite.Append();
    writeFields();
    scan.Close();
    rewrite.Commit();
}

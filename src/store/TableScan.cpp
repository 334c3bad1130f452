#include "store/TableScan.h"

#include "core/Globals.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "core/Trace.h"

#include <algorithm>
#include <exception>

namespace {

constexpr std::int32_t BlockSize = 256 * 1024;

} // namespace

TableScan::TableScan(std::string_view path) : unwinding_(std::uncaught_exceptions()) {
    TraceEvent("DBFEdit:FileOpen " + std::string(path));
    const std::string resolved = ResolvePath(path);
    file_ = Global.Files.Open(*Global.TheDisk, resolved, Access::Read);
    try {
        layout_ = TableLayout::Read(Global.Files.Use(file_), resolved);
    } catch (...) {
        Global.Files.Close(file_);
        throw;
    }
    blank_.assign(static_cast<std::size_t>(layout_.RecordLength()) - 1, ' ');
    fields_ = blank_;
}

TableScan::~TableScan() {
    if (std::uncaught_exceptions() == unwinding_)
        Close();
    else
        Global.Files.Close(file_);
}

void TableScan::Close() {
    if (!open_) return;
    open_ = false;
    TraceEvent("DBFEdit:FileClose");
    Global.Files.Close(file_);
}

void TableScan::Restart() {
    record_ = 0;
    flag_ = TableLayout::Live;
    fields_ = blank_;
}

bool TableScan::Next() {
    Global.Files.Use(file_);
    if (record_ >= RecordCount()) return false;
    ++record_;
    if (blockFirst_ == 0 || record_ < blockFirst_ || record_ - blockFirst_ >= blockCount_) Fill();
    const auto length = static_cast<std::size_t>(layout_.RecordLength());
    const std::size_t at = static_cast<std::size_t>(record_ - blockFirst_) * length;
    flag_ = block_[at];
    fields_ = std::string_view(block_).substr(at + 1, length - 1);
    return true;
}

void TableScan::Fill() {
    const std::int32_t length = layout_.RecordLength();
    const std::int32_t count = std::min(std::max(BlockSize / length, 1), RecordCount() - record_ + 1);
    const std::uint64_t offset =
        layout_.RecordsAt() + static_cast<std::uint64_t>(record_ - 1) * static_cast<std::uint64_t>(length);
    blockFirst_ = 0;
    block_.resize(static_cast<std::size_t>(count) * static_cast<std::size_t>(length));
    const std::size_t got = Global.Files.Use(file_).ReadAt(offset, block_.data(), block_.size());
    std::fill(block_.begin() + static_cast<std::ptrdiff_t>(got), block_.end(), ' ');
    blockFirst_ = record_;
    blockCount_ = count;
}

std::string_view TableScan::Trimmed(int field) const {
    return Trim(Field(field));
}

char TableScan::Trailing() {
    char byte = ' ';
    const std::uint64_t offset = layout_.RecordsAt() + static_cast<std::uint64_t>(RecordCount()) *
                                                           static_cast<std::uint64_t>(layout_.RecordLength());
    Global.Files.Use(file_).ReadAt(offset, &byte, 1);
    return byte;
}

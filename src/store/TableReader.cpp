#include "store/TableReader.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "core/Trace.h"

#include <algorithm>

namespace {

constexpr std::int32_t BlockSize = 32 * 1024;
constexpr std::size_t Blocks = 64;

} // namespace

TableReader::TableReader(std::string_view path) : path_(path) {
    TraceEvent("DBFEdit:FileOpen " + path_);
    Open();
}

TableReader::~TableReader() {
    TraceEvent("DBFEdit:FileClose");
}

void TableReader::Open() {
    resolved_ = ResolvePath(path_);
    const auto file = Global.TheDisk->Open(resolved_, Access::Read);
    // Before the header: what is written meanwhile shows as a change at the next read.
    const std::uint64_t version = file->Version();
    layout_ = TableLayout::Read(*file, resolved_);
    version_ = version;
    blank_.assign(static_cast<std::size_t>(layout_.RecordLength()) - 1, ' ');
    perBlock_ = std::max(BlockSize / layout_.RecordLength(), 1);
    blocks_.clear();
    last_ = 0;
    changed_ = false;
}

void TableReader::Reopen() {
    changed_ = true;
    Open();
}

std::unique_ptr<DiskFile> TableReader::SameFile() {
    if (changed_) return nullptr;
    try {
        auto file = Global.TheDisk->Open(resolved_, Access::Read);
        if (file->Version() == version_) return file;
    } catch (const RunTimeFailure&) {
        // A table that cannot be opened any more is not the one that was.
    }
    changed_ = true;
    return nullptr;
}

bool TableReader::CheckChanged() {
    SameFile();
    return changed_;
}

void TableReader::Read(Block& block, std::int32_t first) {
    const auto length = static_cast<std::size_t>(layout_.RecordLength());
    const auto count = static_cast<std::size_t>(std::min(perBlock_, RecordCount() - first + 1));
    const std::uint64_t offset =
        layout_.RecordsAt() + static_cast<std::uint64_t>(first - 1) * static_cast<std::uint64_t>(length);
    block.First = 0;
    const auto file = SameFile();
    if (!file) return;
    try {
        block.Bytes.assign(count * length, ' ');
        file->ReadAt(offset, block.Bytes.data(), block.Bytes.size());
        block.First = first;
    } catch (const RunTimeFailure&) {
        changed_ = true;
    }
}

const TableReader::Block* TableReader::BlockOf(std::int32_t number) {
    const std::int32_t first = (number - 1) / perBlock_ * perBlock_ + 1;
    if (last_ >= blocks_.size() || blocks_[last_].First != first) {
        const auto found = std::find_if(blocks_.begin(), blocks_.end(),
                                        [&](const Block& block) { return block.First == first; });
        last_ = static_cast<std::size_t>(found - blocks_.begin());
        if (found == blocks_.end()) {
            if (blocks_.size() < Blocks) {
                blocks_.emplace_back();
            } else {
                const auto oldest =
                    std::min_element(blocks_.begin(), blocks_.end(),
                                     [](const Block& a, const Block& b) { return a.Used < b.Used; });
                last_ = static_cast<std::size_t>(oldest - blocks_.begin());
            }
            Read(blocks_[last_], first);
        }
    }
    Block& block = blocks_[last_];
    block.Used = ++uses_;
    return block.First == first ? &block : nullptr;
}

std::string_view TableReader::Record(std::int32_t number) {
    if (changed_ || number < 1 || number > RecordCount()) return blank_;
    const Block* block = BlockOf(number);
    if (block == nullptr) return blank_;
    const auto length = static_cast<std::size_t>(layout_.RecordLength());
    const std::size_t at = static_cast<std::size_t>(number - block->First) * length;
    return std::string_view(block->Bytes).substr(at + 1, length - 1);
}

std::string_view TableReader::Trimmed(std::int32_t number, int field) {
    return Trim(layout_.Get(field, Record(number)));
}

#include "store/DBFEdit.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "core/Trace.h"
#include "store/TableBytes.h"

#include <algorithm>
#include <limits>

namespace {

/// Bytes of a file; a blank for each one that is not there.
std::string ReadPadded(DiskFile& file, std::uint64_t offset, std::size_t size) {
    std::string bytes(size, ' ');
    file.ReadAt(offset, bytes.data(), size);
    return bytes;
}

} // namespace

DiskFile& DBFEdit::File() const {
    return Global.Files.Use(file_);
}

std::size_t DBFEdit::BufferSize() const {
    if (RecordLength < 1 || RecordLength <= layout_.FieldBytes()) throw RunTimeFailure(5, path_);
    return static_cast<std::size_t>(RecordLength);
}

std::uint64_t DBFEdit::FlagAt(std::int64_t record) const {
    if (record < 1) throw RunTimeFailure(63, path_);
    return layout_.RecordsAt() + static_cast<std::uint64_t>(record - 1) * BufferSize();
}

void DBFEdit::FileOpen(std::string_view path) {
    TraceEvent("DBFEdit:FileOpen " + std::string(path));
    const std::string resolved = ResolvePath(path);
    const FileNumbers::Claim file = Global.Files.Open(*Global.TheDisk, resolved, Access::ReadWrite);
    try {
        layout_ = TableLayout::Read(Global.Files.Use(file), resolved);
    } catch (...) {
        Global.Files.Close(file);
        throw;
    }
    file_ = file;
    fileNumber_ = file.Number;
    path_ = resolved;
    RecordCount = layout_.RecordCount();
    RecordLength = layout_.RecordLength();
    recordBuffer_.assign(BufferSize(), ' ');
}

void DBFEdit::FileClose() {
    TraceEvent("DBFEdit:FileClose");
    if (fileNumber_ > 0) Global.Files.Close(fileNumber_--);
}

void DBFEdit::CloseAllFiles() {
    while (fileNumber_ >= 1) Global.Files.Close(fileNumber_--);
}

std::string DBFEdit::GetData(FieldKey& key) const {
    return std::string(layout_.Get(layout_.Find(key), recordBuffer_));
}

std::string DBFEdit::GetData(const FieldKey& key) const {
    return std::string(layout_.Get(layout_.Find(key), recordBuffer_));
}

void DBFEdit::WriteData(FieldKey& key, std::string& value) {
    layout_.Put(layout_.Find(key), value, recordBuffer_);
}

void DBFEdit::WriteData(const FieldKey& key, std::string value) {
    layout_.Put(layout_.Find(key), value, recordBuffer_);
}

void DBFEdit::Go(std::int32_t target) {
    switch (target) {
    case First:
        currentRecord_ = 1;
        ReadRecord();
        return;
    case Last:
        currentRecord_ = RecordCount;
        ReadRecord();
        return;
    case Previous:
        Skip(-1);
        return;
    case Next:
        Skip(1);
        return;
    case Append:
        AppendBlank();
        return;
    default:
        if (target < 1 || target > RecordCount) return;
        currentRecord_ = target;
        ReadRecord();
    }
}

void DBFEdit::AppendBlank() {
    if (RecordCount == std::numeric_limits<std::int32_t>::max()) throw RunTimeFailure(6, path_);
    recordBuffer_.assign(BufferSize(), ' ');
    currentRecord_ = RecordCount + 1;
    UpDate();
    RecordCount = currentRecord_;
    WriteRecordCount();
}

void DBFEdit::ReadRecord() {
    DiskFile& file = File();
    // What lies before record 1 is the header, never a record.
    if (currentRecord_ < 1)
        recordBuffer_.assign(BufferSize(), ' ');
    else
        recordBuffer_ = ReadPadded(file, FlagAt(currentRecord_) + 1, BufferSize());
}

std::int32_t DBFEdit::Skip(std::int32_t offset) {
    const std::int64_t to = std::int64_t{currentRecord_} + offset;
    const bool stays = offset >= 0 ? to > RecordCount : to <= 0;
    if (!stays) currentRecord_ = static_cast<std::int32_t>(to);
    ReadRecord();
    return stays ? 0 : offset;
}

void DBFEdit::UpDate() {
    File().WriteAt(FlagAt(currentRecord_) + 1, recordBuffer_);
}

void DBFEdit::WriteRecordCount() {
    File().WriteAt(4, BytesOfInt32(RecordCount));
}

void DBFEdit::DeleteRecord() {
    File().WriteAt(FlagAt(currentRecord_), std::string_view(&TableLayout::Deleted, 1));
}

void DBFEdit::KillEOFFlag() {
    File().WriteAt(FlagAt(std::int64_t{currentRecord_} + 1), std::string_view(&TableLayout::Live, 1));
}

void DBFEdit::ReIndex(std::string_view path) {
    TraceEvent("DBFEdit:ReIndex " + std::string(path));
    FileNumbers::Claim work;
    std::string workPath;
    const auto closeBoth = [&] {
        Global.Files.Close(work);
        FileClose();
    };
    try {
        const std::string table = ResolvePath(Trim(path));
        if (table.size() < 3) throw RunTimeFailure(5, table);
        File();
        const std::string name = ResolvePath(table.substr(0, table.size() - 3) + "idx");
        work = Global.Files.Open(*Global.TheDisk, name, Access::Create);
        workPath = name;
        WriteCompacted(Global.Files.Use(work));
        Global.Files.Use(work).Flush();
        closeBoth();
        Global.TheDisk->Rename(workPath, table);
        Global.TheDisk->FlushFolder(std::string(FolderOf(table)));
    } catch (...) {
        // By claim: after a failure the number may be another's.
        Global.Files.Close(work);
        if (Global.Files.IsOpen(file_)) Global.Files.Close(fileNumber_--);
        if (!workPath.empty()) RemoveQuietly(workPath);
        throw;
    }
}

void DBFEdit::WriteCompacted(DiskFile& work) {
    work.WriteAt(0, ReadPadded(File(), 0, static_cast<std::size_t>(layout_.RecordsAt())));
    const std::string_view live(&TableLayout::Live, 1);
    std::int32_t kept = RecordCount;
    std::int32_t slot = 0;
    for (std::int32_t k = 1; k <= RecordCount; ++k) {
        currentRecord_ = k;
        const char flag = ReadPadded(File(), FlagAt(k), 1).front();
        if (flag != TableLayout::Deleted) {
            ++slot;
            work.WriteAt(FlagAt(slot), live);
            ReadRecord();
            work.WriteAt(FlagAt(slot) + 1, recordBuffer_);
        } else {
            // At the deleted record's own place, not at the next free slot: it decides which byte
            // stands behind the last record that is kept.
            work.WriteAt(FlagAt(k), live);
            --kept;
        }
    }
    work.WriteAt(4, BytesOfInt32(kept));
}

void DBFEdit::SortFile(FieldKey& key, std::int16_t descending) {
    const bool downwards = descending == -1;
    const std::int32_t count = RecordCount;
    for (std::int64_t i = 1; i <= count; ++i) {
        currentRecord_ = static_cast<std::int32_t>(i);
        ReadRecord();
        const std::string first = recordBuffer_;
        const std::string firstKey = GetData(key);
        if (i >= std::int64_t{RecordCount} - 1) continue;

        ++currentRecord_;
        ReadRecord();
        const int order = TextCompare(GetData(key), firstKey);
        if (downwards ? order <= 0 : order >= 0) continue;
        File().WriteAt(FlagAt(i + 1) + 1, first);
        File().WriteAt(FlagAt(i) + 1, recordBuffer_);
        i = downwards ? 1 : 0;
    }
}

void DBFEdit::SortFile(const FieldKey& key, std::int16_t descending) {
    FieldKey own = key;
    SortFile(own, descending);
}

void DBFEdit::GetDBTImage(std::string_view path, std::int32_t block) {
    constexpr std::uint64_t BlockSize = 512;
    if (block < 0) throw RunTimeFailure(63, std::string(path));
    const std::uint64_t at = BlockSize * static_cast<std::uint64_t>(block);

    struct Memo {
        FileNumbers::Claim Number;
        ~Memo() { Global.Files.Close(Number); }
    };
    const Memo memo{Global.Files.Open(*Global.TheDisk, ResolvePath(path), Access::Read)};
    const auto read = [&](std::uint64_t offset, std::size_t size) {
        return ReadPadded(Global.Files.Use(memo.Number), at + offset, size);
    };
    if (!SameText(read(8, 3), "INK")) return;

    // The number of blocks comes from the decimal digits of the byte: 9 is 9, 10 is 1, 25 is 3.
    const auto value = static_cast<unsigned char>(read(5, 1).front());
    const int blocks = std::to_string(value).front() - '0' + (value > 10 ? 1 : 0);
    if (blocks == 0) throw RunTimeFailure(5, std::string(path));
    const std::int32_t bytes = blocks * 512; // at most 10 blocks

    SafeFile bitmap(Global.AppPath + "temp.bmp");
    bitmap.Write("BM");
    bitmap.Write(BytesOfInt32(bytes - 44));
    bitmap.Write(read(55, 2));
    bitmap.Write(read(55, 2));
    bitmap.Write(BytesOfInt32(62));
    bitmap.Write(read(65, 20)); // to 84: the header's size, width, height, planes, depth, compression
    bitmap.Write(BytesOfInt32(bytes - 106));
    bitmap.Write(read(89, 16));
    bitmap.Write(read(105, static_cast<std::size_t>(bytes - 106)));
    bitmap.Commit(false);
}

#include "store/TableRecords.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "store/TableRewrite.h"

#include <algorithm>

namespace {

std::uint64_t VersionOf(std::string_view path) {
    return Global.TheDisk->Open(ResolvePath(path), Access::Read)->Version();
}

void RefuseLocked(std::string_view path) {
    const std::string resolved = ResolvePath(path);
    if (Global.TheDisk->LockedByAnother(resolved)) throw RunTimeFailure(70, resolved);
}

} // namespace

void TableRecords::Open(std::string_view path, const char* key, std::int32_t record) {
    path_ = path;
    key_ = key;
    Reopen(record);
}

void TableRecords::Reopen(std::int32_t record) {
    Close();
    RefuseLocked(path_);
    table_.FileOpen(path_);
    open_ = true;
    try {
        if (table_.GetData(key_).empty()) throw RunTimeFailure(321, path_ + ": there is no field " + key_);
        const std::int32_t nearest = std::clamp(record, std::min(1, table_.RecordCount), table_.RecordCount);
        table_.Go(nearest > 0 ? nearest : DBFEdit::Last);
        record_ = nearest;
        new_ = false;
        Remember();
    } catch (...) {
        Close();
        throw;
    }
}

void TableRecords::Close() {
    if (!open_) return;
    open_ = false;
    table_.FileClose();
}

/// Opens the table again at the same record, which is to be the same by its key.
void TableRecords::TakeUp() {
    const std::int32_t record = record_;
    const std::string key = shown_;
    const bool added = new_;
    try {
        Reopen(record);
        if (record_ != record || shown_ != key) throw RunTimeFailure(63, path_);
        new_ = added;
    } catch (...) {
        // No step may hit another record than the one that its caller has seen.
        Close();
        record_ = record;
        shown_ = key;
        new_ = added;
        throw;
    }
}

/// Reads the current record before it is changed: what another has written within the same tick of the
/// clock does not show in the version.
void TableRecords::ReadAgain() {
    RefuseLocked(path_);
    table_.Go(record_);
    if (Trimmed(key_) != shown_) throw RunTimeFailure(63, path_);
}

void TableRecords::Remember() {
    shown_ = Trimmed(key_);
    version_ = VersionOf(path_);
}

/// Takes a step of the open table. One that failed half way has left an object that no longer goes with
/// the file, and a write from that would hit another record.
void TableRecords::Attempt(const std::function<void()>& step) {
    if (!open_ || VersionOf(path_) != version_) TakeUp();
    const std::int32_t record = record_;
    const std::string key = shown_;
    try {
        step();
        Remember();
    } catch (...) {
        record_ = record;
        shown_ = key;
        try {
            TakeUp();
        } catch (const RunTimeFailure&) { // the failure of the step is the one to be told
        }
        throw;
    }
}

std::string TableRecords::Trimmed(const char* field) const {
    return std::string(Trim(Padded(field)));
}

void TableRecords::Go(std::int32_t target) {
    Attempt([&] {
        table_.Go(target);
        record_ = table_.RecordNumber();
    });
}

void TableRecords::Write(const Values& values) {
    if (record_ == 0) Append();
    Attempt([&] {
        ReadAgain();
        for (const auto& [field, value] : values) table_.WriteData(field, std::string(Trim(value)));
        table_.UpDate();
        new_ = false;
    });
}

void TableRecords::Append() {
    Attempt([&] {
        RefuseLocked(path_);
        table_.Go(DBFEdit::Last);
        table_.KillEOFFlag();
        table_.Go(DBFEdit::Append);
        record_ = table_.RecordNumber();
        new_ = true;
    });
}

void TableRecords::Delete(Then then) {
    Attempt([&] {
        ReadAgain();
        const std::int32_t record = record_;
        Close();
        RemoveRecord(path_, record);
        Reopen(then == Then::Next ? record : record - 1);
    });
}

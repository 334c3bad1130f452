#include "store/TableRecords.h"

#include "core/Failure.h"
#include "core/TextCompare.h"
#include "store/TableRewrite.h"

#include <algorithm>

void TableRecords::Open(std::string_view path, const char* key, std::int32_t record) {
    path_ = path;
    key_ = key;
    Reopen(record);
}

void TableRecords::Reopen(std::int32_t record) {
    Close();
    table_.FileOpen(path_);
    open_ = true;
    try {
        if (table_.GetData(key_).empty())
            throw RunTimeFailure(321, path_ + ": there is no field " + key_);
        const std::int32_t nearest = std::clamp(record, std::min(1, table_.RecordCount), table_.RecordCount);
        table_.Go(nearest > 0 ? nearest : DBFEdit::Last);
        record_ = nearest;
        new_ = false;
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

/// Takes a step of the open table. One that failed half way has left an object that no longer goes with
/// the file, and a write from that would hit another record.
void TableRecords::Attempt(const std::function<void()>& step) {
    const std::int32_t record = record_;
    if (!open_) {
        Reopen(record);
        if (record_ != record) throw RunTimeFailure(63, path_);
    }
    try {
        step();
    } catch (...) {
        const bool added = new_;
        try {
            Reopen(record);
        } catch (const RunTimeFailure&) { // the failure of the step is the one to be told
            record_ = record;
        }
        new_ = added;
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
        for (const auto& [field, value] : values) table_.WriteData(field, std::string(Trim(value)));
        table_.UpDate();
        new_ = false;
    });
}

void TableRecords::Append() {
    Attempt([&] {
        table_.Go(DBFEdit::Last);
        table_.KillEOFFlag();
        table_.Go(DBFEdit::Append);
        record_ = table_.RecordNumber();
        new_ = true;
    });
}

void TableRecords::Delete(Then then) {
    Attempt([&] {
        const std::int32_t record = record_;
        Close();
        RemoveRecord(path_, record);
        Reopen(then == Then::Next ? record : record - 1);
    });
}

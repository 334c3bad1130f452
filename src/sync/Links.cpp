#include "sync/Links.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/TextCompare.h"
#include "store/TableRewrite.h"

#include <algorithm>
#include <utility>

namespace {

std::string LinksPath() {
    return Global.DBFPath + "ZUKLINK.DBF";
}

constexpr const char* HotSync = "LK_HOTSYNC";
constexpr const char* Serial = "LK_SERIAL";
constexpr const char* SFUser = "LK_SFUSER";

} // namespace

void LinkTable::Open(std::int32_t record) {
    Close();
    links_.FileOpen(LinksPath());
    open_ = true;
    try {
        if (links_.GetData(HotSync).empty())
            throw RunTimeFailure(321, LinksPath() + ": there is no field LK_HOTSYNC");
        std::vector<std::string> ids = ReadIDs();
        const std::int32_t nearest = std::clamp(record, std::min(1, links_.RecordCount), links_.RecordCount);
        links_.Go(nearest > 0 ? nearest : DBFEdit::Last);
        ids_ = std::move(ids);
        record_ = nearest;
        new_ = false;
    } catch (...) {
        Close();
        throw;
    }
}

void LinkTable::Close() {
    if (!open_) return;
    open_ = false;
    links_.FileClose();
}

std::vector<std::string> LinkTable::ReadIDs() {
    std::vector<std::string> ids;
    for (std::int32_t k = 1; k <= links_.RecordCount; ++k) {
        links_.Go(k);
        ids.emplace_back(Trim(links_.GetData(HotSync)));
    }
    return ids;
}

/// Takes a step of the open table. One that failed half way has left an object that no longer goes with
/// the file, and a write from that would hit another record.
void LinkTable::Attempt(const std::function<void()>& step) {
    const std::int32_t record = record_;
    if (!open_) {
        Open(record);
        if (record_ != record) throw RunTimeFailure(63, LinksPath());
    }
    try {
        step();
    } catch (...) {
        const bool added = new_;
        try {
            Open(record);
            new_ = added;
        } catch (const RunTimeFailure&) { // the failure of the step is the one to be told
            record_ = record;
            new_ = added;
        }
        throw;
    }
}

LinkFields LinkTable::Padded() const {
    return {links_.GetData(HotSync), links_.GetData(Serial), links_.GetData(SFUser)};
}

LinkFields LinkTable::Trimmed() const {
    LinkFields fields = Padded();
    for (std::string* field : {&fields.HotSync, &fields.Serial, &fields.SFUser})
        *field = std::string(Trim(*field));
    return fields;
}

void LinkTable::Go(std::int32_t target) {
    Attempt([&] {
        links_.Go(target);
        record_ = links_.RecordNumber();
    });
}

void LinkTable::Write(const LinkFields& fields) {
    Attempt([&] {
        links_.WriteData(HotSync, std::string(Trim(fields.HotSync)));
        links_.WriteData(Serial, std::string(Trim(fields.Serial)));
        links_.WriteData(SFUser, std::string(Trim(fields.SFUser)));
        links_.UpDate();
        ids_.at(static_cast<std::size_t>(record_) - 1) = Trimmed().HotSync;
        new_ = false;
    });
}

void LinkTable::Append() {
    Attempt([&] {
        links_.Go(DBFEdit::Last);
        links_.KillEOFFlag();
        links_.Go(DBFEdit::Append);
        record_ = links_.RecordNumber();
        ids_.emplace_back();
        new_ = true;
    });
}

void LinkTable::Delete() {
    Attempt([&] {
        const std::int32_t record = record_;
        Close();
        RemoveRecord(LinksPath(), record);
        Open(record);
    });
}

std::int32_t LinkTable::OtherWith(std::string_view id) const {
    for (std::size_t k = 0; k < ids_.size(); ++k) {
        const auto number = static_cast<std::int32_t>(k + 1);
        if (number != record_ && SameText(ids_[k], id)) return number;
    }
    return 0;
}

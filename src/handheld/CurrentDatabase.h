#pragma once

#include "palm/Database.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>

/// The one database that a HotSync has open, in memory. Its size is kept up to date with each change, and
/// its records are found by their ids without a walk.
class CurrentDatabase {
public:
    static constexpr std::size_t None = static_cast<std::size_t>(-1);

    explicit CurrentDatabase(Database database);

    const Database& Get() const { return data_; }
    std::uint64_t Bytes() const { return bytes_; }
    std::size_t Count() const { return data_.IsResource() ? data_.Resources.size() : data_.Records.size(); }
    /// Whether it has been changed since MarkSaved.
    bool IsChanged() const { return changed_; }
    void MarkSaved() { changed_ = false; }

    /// The first record of an id; None when there is none.
    std::size_t FindRecord(std::uint32_t id);
    std::size_t FindResource(std::uint32_t type, std::uint16_t id) const;

    /// Replaces the record of its id or adds it at the end; id 0 gets one. The record's id.
    std::uint32_t PutRecord(DatabaseRecord record);
    /// `index` is below Count(), as FindRecord tells it; of a resource likewise.
    void RemoveRecord(std::size_t index);
    /// Removes the records that `condition` holds for.
    template <typename Condition>
    void RemoveRecordsIf(Condition&& condition) {
        std::erase_if(data_.Records, condition);
        Recount();
    }
    /// For each record, to change its flags or category: ids and data stay as they are.
    template <typename Change>
    void ForEachRecord(Change&& change) {
        for (DatabaseRecord& record : data_.Records) change(record);
        Touch();
    }

    /// Replaces the resource of its type and id or adds it at the end.
    void PutResource(DatabaseResource resource);
    void RemoveResource(std::size_t index);
    void RemoveAllResources();

    /// At most LongestRecord bytes each; an empty block is none.
    void SetAppInfo(std::string block);
    void SetSortInfo(std::string block);
    /// What it is called and marked with.
    template <typename Change>
    void ChangeHeader(Change&& change) {
        change(static_cast<DatabaseHeader&>(data_));
        changed_ = true;
    }

private:
    void Touch();
    void Recount();
    void Resize(std::size_t before, std::size_t now) { bytes_ = bytes_ - before + now; }

    Database data_;
    std::uint64_t bytes_ = 0;
    bool changed_ = false;
    std::unordered_map<std::uint32_t, std::size_t> byId_;
    bool byIdIsUpToDate_ = false;
};

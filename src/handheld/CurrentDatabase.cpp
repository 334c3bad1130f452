#include "handheld/CurrentDatabase.h"

#include "handheld/DatabaseStore.h"

#include <algorithm>
#include <utility>

CurrentDatabase::CurrentDatabase(Database database)
    : data_(std::move(database)),
      bytes_(DatabaseStore::BytesOf(data_)) {}

void CurrentDatabase::Touch() {
    changed_ = true;
    ++data_.ModificationNumber;
}

void CurrentDatabase::Recount() {
    bytes_ = DatabaseStore::BytesOf(data_);
    byIdIsUpToDate_ = false;
    Touch();
}

std::size_t CurrentDatabase::FindRecord(std::uint32_t id) {
    if (!byIdIsUpToDate_) {
        byId_.clear();
        for (std::size_t at = 0; at < data_.Records.size(); ++at) byId_.try_emplace(data_.Records[at].Id, at);
        byIdIsUpToDate_ = true;
    }
    const auto found = byId_.find(id);
    return found == byId_.end() ? None : found->second;
}

std::size_t CurrentDatabase::FindResource(std::uint32_t type, std::uint16_t id) const {
    const auto found =
        std::find_if(data_.Resources.begin(), data_.Resources.end(),
                     [&](const DatabaseResource& one) { return one.Type == type && one.Id == id; });
    return found == data_.Resources.end() ? None : static_cast<std::size_t>(found - data_.Resources.begin());
}

std::uint32_t CurrentDatabase::PutRecord(DatabaseRecord record) {
    if (record.Id == 0) {
        record.Id = NewRecordId(data_, [this](std::uint32_t id) { return FindRecord(id) != None; });
    }
    const std::uint32_t id = record.Id;
    const std::size_t index = FindRecord(id);
    if (index == None) {
        Resize(0, RecordEntryBytes + record.Data.size());
        byId_.emplace(id, data_.Records.size());
        data_.Records.push_back(std::move(record));
    } else {
        Resize(data_.Records[index].Data.size(), record.Data.size());
        data_.Records[index] = std::move(record);
    }
    Touch();
    return id;
}

void CurrentDatabase::RemoveRecord(std::size_t index) {
    data_.Records.erase(data_.Records.begin() + static_cast<std::ptrdiff_t>(index));
    Recount();
}

void CurrentDatabase::PutResource(DatabaseResource resource) {
    const std::size_t index = FindResource(resource.Type, resource.Id);
    if (index == None) {
        Resize(0, ResourceEntryBytes + resource.Data.size());
        data_.Resources.push_back(std::move(resource));
    } else {
        Resize(data_.Resources[index].Data.size(), resource.Data.size());
        data_.Resources[index] = std::move(resource);
    }
    Touch();
}

void CurrentDatabase::RemoveResource(std::size_t index) {
    data_.Resources.erase(data_.Resources.begin() + static_cast<std::ptrdiff_t>(index));
    Recount();
}

void CurrentDatabase::RemoveAllResources() {
    data_.Resources.clear();
    Recount();
}

void CurrentDatabase::SetAppInfo(std::string block) {
    Resize(data_.AppInfo.size(), block.size());
    data_.AppInfo = std::move(block);
    Touch();
}

void CurrentDatabase::SetSortInfo(std::string block) {
    Resize(data_.SortInfo.size(), block.size());
    data_.SortInfo = std::move(block);
    Touch();
}

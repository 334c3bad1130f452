#include "core/FileNumbers.h"

#include "core/Failure.h"

#include <algorithm>
#include <limits>

FileNumbers::Claim FileNumbers::Open(Disk& disk, const std::string& path, Access access) {
    const auto free =
        std::find_if(entries_.begin() + lowest_, entries_.end(), [](const Entry& e) { return !e.File; });
    const auto index = static_cast<std::size_t>(free - entries_.begin());
    if (index >= static_cast<std::size_t>(std::numeric_limits<std::int16_t>::max()))
        throw RunTimeFailure(52, path);
    auto file = disk.Open(path, access);
    if (free == entries_.end()) entries_.emplace_back();
    entries_[index] = {std::move(file), ++tickets_};
    lowest_ = static_cast<std::ptrdiff_t>(index) + 1;
    return {static_cast<std::int16_t>(index + 1), tickets_};
}

bool FileNumbers::IsOpen(const Claim& claim) const {
    if (claim.Number < 1 || static_cast<std::size_t>(claim.Number) > entries_.size()) return false;
    const Entry& entry = entries_[static_cast<std::size_t>(claim.Number) - 1];
    return entry.File && entry.Ticket == claim.Ticket;
}

DiskFile& FileNumbers::Use(const Claim& claim) {
    if (!IsOpen(claim)) throw RunTimeFailure(52);
    return *entries_[static_cast<std::size_t>(claim.Number) - 1].File;
}

void FileNumbers::Close(std::int16_t number) {
    if (number < 1 || static_cast<std::size_t>(number) > entries_.size()) return;
    entries_[static_cast<std::size_t>(number) - 1].File.reset();
    lowest_ = std::min<std::ptrdiff_t>(lowest_, number - 1);
}

int FileNumbers::Count() const {
    return static_cast<int>(
        std::count_if(entries_.begin(), entries_.end(), [](const Entry& e) { return e.File != nullptr; }));
}

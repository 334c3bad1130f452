#include "fuzz/MemoryDisk.h"

#include "core/Failure.h"

#include <algorithm>
#include <set>

namespace {

/// A file may be longer than what it was made from only by so much: one that is written far behind
/// its end would take the machine's memory.
constexpr std::uint64_t LongestFile = std::uint64_t{1} << 28;

class MemoryFile final : public DiskFile {
public:
    explicit MemoryFile(std::shared_ptr<std::string> bytes) : bytes_(std::move(bytes)) {}

    std::size_t ReadAt(std::uint64_t offset, void* to, std::size_t size) override {
        if (offset >= bytes_->size()) return 0;
        return bytes_->copy(static_cast<char*>(to), size, static_cast<std::size_t>(offset));
    }

    void WriteAt(std::uint64_t offset, std::string_view bytes) override {
        const std::uint64_t end = offset + bytes.size();
        if (end > LongestFile) throw RunTimeFailure(61);
        if (end > bytes_->size()) bytes_->resize(static_cast<std::size_t>(end));
        bytes_->replace(static_cast<std::size_t>(offset), bytes.size(), bytes);
    }

    std::uint64_t Size() override { return bytes_->size(); }
    void Flush() override {}

private:
    std::shared_ptr<std::string> bytes_;
};

} // namespace

std::string MemoryDisk::Key(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

void MemoryDisk::Put(const std::string& path, std::string content) {
    files_[Key(path)] = std::make_shared<std::string>(std::move(content));
}

std::string MemoryDisk::Content(const std::string& path) const {
    const auto file = files_.find(Key(path));
    return file == files_.end() ? std::string() : *file->second;
}

std::unique_ptr<DiskFile> MemoryDisk::Open(const std::string& path, Access access) {
    if (access == Access::Create) Put(path, {});
    const auto file = files_.find(Key(path));
    if (file == files_.end()) throw RunTimeFailure(53, path);
    return std::make_unique<MemoryFile>(file->second);
}

std::string MemoryDisk::PrefixOf(const std::string& folder) {
    std::string prefix = Key(folder);
    return prefix.ends_with('/') ? prefix : prefix + '/';
}

std::vector<std::string> MemoryDisk::FoldersIn(const std::string& folder) {
    const std::string prefix = PrefixOf(folder);
    std::set<std::string> names;
    for (const auto& [path, content] : files_) {
        const std::size_t end = path.find('/', prefix.size());
        if (path.starts_with(prefix) && end != std::string::npos)
            names.insert(path.substr(prefix.size(), end - prefix.size()));
    }
    return {names.begin(), names.end()};
}

std::vector<std::string> MemoryDisk::FilesIn(const std::string& folder) {
    const std::string prefix = PrefixOf(folder);
    std::vector<std::string> names;
    for (const auto& [path, content] : files_) {
        if (path.starts_with(prefix) && path.find('/', prefix.size()) == std::string::npos)
            names.push_back(path.substr(prefix.size()));
    }
    return names;
}

void MemoryDisk::Rename(const std::string& from, const std::string& to) {
    const auto file = files_.find(Key(from));
    if (file == files_.end()) throw RunTimeFailure(75, to);
    files_[Key(to)] = std::move(file->second);
    files_.erase(file);
}

#pragma once

#include "core/Disk.h"

#include <map>
#include <memory>
#include <string>

/// A disk in memory: as fast as a fuzzer likes it, and gone with its object. Every folder is there,
/// nothing is ever locked, and no call fails but for a file that is not there.
class MemoryDisk final : public Disk {
public:
    /// Puts a file in place.
    void Put(const std::string& path, std::string content);

    /// A file's bytes; empty when it is not there.
    std::string Content(const std::string& path) const;

    std::unique_ptr<DiskFile> Open(const std::string& path, Access access) override;
    void Rename(const std::string& from, const std::string& to) override;
    void FlushFolder(const std::string&) override {}
    bool Remove(const std::string& path) override { return files_.erase(Key(path)) != 0; }
    void MakeFolder(const std::string&) override {}
    bool RemoveFolder(const std::string&) override { return false; }
    bool IsFile(const std::string& path) override { return files_.contains(Key(path)); }
    bool IsFolder(const std::string& path) override { return Key(path).ends_with('/'); }
    std::vector<std::string> FilesIn(const std::string& folder) override;
    std::vector<std::string> FoldersIn(const std::string& folder) override;
    bool LockedByAnother(const std::string&) override { return false; }

    std::size_t FileCount() const { return files_.size(); }

private:
    /// A path with one kind of separator, whatever the platform's own is.
    static std::string Key(std::string path);
    static std::string PrefixOf(const std::string& folder);

    std::map<std::string, std::shared_ptr<std::string>> files_;
};

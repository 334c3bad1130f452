#pragma once

#include "core/Disk.h"
#include "core/Failure.h"

#include <new>
#include <string>
#include <utility>

/// The real disk, to be changed in one way or another.
class PassingDisk : public Disk {
public:
    std::unique_ptr<DiskFile> Open(const std::string& path, Access access) override {
        return under_.Open(path, access);
    }
    void Rename(const std::string& from, const std::string& to) override { under_.Rename(from, to); }
    void FlushFolder(const std::string& folder) override { under_.FlushFolder(folder); }
    bool Remove(const std::string& path) override { return under_.Remove(path); }
    void MakeFolder(const std::string& path) override { under_.MakeFolder(path); }
    bool RemoveFolder(const std::string& path) override { return under_.RemoveFolder(path); }
    bool IsFile(const std::string& path) override { return under_.IsFile(path); }
    bool IsFolder(const std::string& path) override { return under_.IsFolder(path); }
    std::vector<std::string> FilesIn(const std::string& folder) override { return under_.FilesIn(folder); }
    std::vector<std::string> FoldersIn(const std::string& folder) override {
        return under_.FoldersIn(folder);
    }
    bool LockedByAnother(const std::string& path) override { return under_.LockedByAnother(path); }

private:
    Disk& under_ = NativeDisk();
};

/// A file of a disk, to be changed in one way or another.
class PassingFile : public DiskFile {
public:
    explicit PassingFile(std::unique_ptr<DiskFile> under) : under_(std::move(under)) {}

    std::size_t ReadAt(std::uint64_t offset, void* to, std::size_t size) override {
        return under_->ReadAt(offset, to, size);
    }
    void WriteAt(std::uint64_t offset, std::string_view bytes) override { under_->WriteAt(offset, bytes); }
    std::uint64_t Size() override { return under_->Size(); }
    std::uint64_t Version() override { return under_->Version(); }
    void Flush() override { under_->Flush(); }

private:
    std::unique_ptr<DiskFile> under_;
};

/// A disk where paths that begin in a certain way may not be opened for one kind of access, as
/// permissions have it for whoever is not the superuser: RunTimeFailure 70.
class RefusingDisk final : public PassingDisk {
public:
    RefusingDisk(std::string prefix, Access refused) : prefix_(std::move(prefix)), refused_(refused) {}

    std::unique_ptr<DiskFile> Open(const std::string& path, Access access) override {
        if (access == refused_ && path.starts_with(prefix_)) throw RunTimeFailure(70, path);
        return PassingDisk::Open(path, access);
    }

private:
    std::string prefix_;
    Access refused_;
};

/// A disk where files of one name cannot be removed: RunTimeFailure 75.
class KeepingDisk final : public PassingDisk {
public:
    explicit KeepingDisk(std::string name) : name_(std::move(name)) {}

    bool Remove(const std::string& path) override {
        if (path.ends_with("/" + name_)) throw RunTimeFailure(75, path);
        return PassingDisk::Remove(path);
    }

private:
    std::string name_;
};

/// A disk on which nothing can be opened for want of memory.
class PoorDisk final : public PassingDisk {
public:
    std::unique_ptr<DiskFile> Open(const std::string&, Access) override { throw std::bad_alloc(); }
};

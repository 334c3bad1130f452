#pragma once

#include "support/RefusingDisk.h"

#include <memory>

/// The real disk, but nothing waits for the medium: for tests that do thousands of jobs and end no process.
class UnflushedDisk final : public PassingDisk {
public:
    std::unique_ptr<DiskFile> Open(const std::string& path, Access access) override {
        return std::make_unique<File>(PassingDisk::Open(path, access));
    }
    void FlushFolder(const std::string&) override {}

private:
    class File final : public DiskFile {
    public:
        explicit File(std::unique_ptr<DiskFile> under) : under_(std::move(under)) {}

        std::size_t ReadAt(std::uint64_t offset, void* to, std::size_t size) override {
            return under_->ReadAt(offset, to, size);
        }
        void WriteAt(std::uint64_t offset, std::string_view bytes) override {
            under_->WriteAt(offset, bytes);
        }
        std::uint64_t Size() override { return under_->Size(); }
        std::uint64_t Version() override { return under_->Version(); }
        void Flush() override {}

    private:
        std::unique_ptr<DiskFile> under_;
    };
};

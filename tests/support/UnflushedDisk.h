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
    class File final : public PassingFile {
    public:
        using PassingFile::PassingFile;
        void Flush() override {}
    };
};

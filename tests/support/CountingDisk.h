#pragma once

#include "support/RefusingDisk.h"

#include <cstdint>
#include <memory>

/// The real disk, counting how often files are opened and how many bytes are read from them.
class CountingDisk final : public PassingDisk {
public:
    std::unique_ptr<DiskFile> Open(const std::string& path, Access access) override {
        ++Opened;
        return std::make_unique<File>(PassingDisk::Open(path, access), *this);
    }

    std::uint64_t Opened = 0;
    std::uint64_t BytesRead = 0;

private:
    class File final : public PassingFile {
    public:
        File(std::unique_ptr<DiskFile> under, CountingDisk& disk)
            : PassingFile(std::move(under)),
              disk_(disk) {}
        std::size_t ReadAt(std::uint64_t offset, void* to, std::size_t size) override {
            const std::size_t read = PassingFile::ReadAt(offset, to, size);
            disk_.BytesRead += read;
            return read;
        }

    private:
        CountingDisk& disk_;
    };
};

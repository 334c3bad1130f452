#include "support/FaultyDisk.h"

#include "core/Failure.h"

namespace {

class FaultyFile final : public PassingFile {
public:
    FaultyFile(std::unique_ptr<DiskFile> under, FaultyDisk& disk, std::string path)
        : PassingFile(std::move(under)),
          disk_(disk),
          path_(std::move(path)) {}

    void WriteAt(std::uint64_t offset, std::string_view bytes) override {
        disk_.Step(path_);
        PassingFile::WriteAt(offset, bytes);
    }
    void Flush() override { disk_.Step(path_); } // what a test writes need not outlive the power

private:
    FaultyDisk& disk_;
    std::string path_;
};

} // namespace

void FaultyDisk::Step(const std::string& path) {
    ++calls_;
    if (failAt_ != 0 && calls_ >= failAt_) throw RunTimeFailure(number_, path);
}

std::unique_ptr<DiskFile> FaultyDisk::Open(const std::string& path, Access access) {
    if (access == Access::Create) Step(path);
    return std::make_unique<FaultyFile>(PassingDisk::Open(path, access), *this, path);
}

void FaultyDisk::Rename(const std::string& from, const std::string& to) {
    Step(to);
    PassingDisk::Rename(from, to);
}

void FaultyDisk::MakeFolder(const std::string& path) {
    Step(path);
    PassingDisk::MakeFolder(path);
}

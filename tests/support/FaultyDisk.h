#pragma once

#include "support/RefusingDisk.h"

#include <cstdint>

/// The real disk with a fault in it: each call that changes something is counted, and from the
/// n-th on it fails with the number of a full or broken disk. A flush is counted and not made.
class FaultyDisk : public PassingDisk {
public:
    /// `failAt` counts from 1; 0 never fails. `number` is the failure, 61 or 57.
    explicit FaultyDisk(int failAt = 0, int number = 61) : failAt_(failAt), number_(number) {}

    int Calls() const { return calls_; }

    /// Counts one changing call and fails when its turn has come.
    void Step(const std::string& path);

    std::unique_ptr<DiskFile> Open(const std::string& path, Access access) override;
    void Rename(const std::string& from, const std::string& to) override;
    void FlushFolder(const std::string&) override {}
    void MakeFolder(const std::string& path) override;

private:
    int failAt_;
    int number_;
    int calls_ = 0;
};

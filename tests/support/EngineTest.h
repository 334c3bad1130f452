#pragma once

#include "core/Globals.h"
#include "support/UnflushedDisk.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

/// A test with a folder of its own, a fresh shared block before it and nothing left behind.
class EngineTest : public ::testing::Test {
protected:
    EngineTest();
    ~EngineTest() override;

    /// The test's folder, with a trailing separator.
    const std::string& Folder() const { return folder_; }

    /// Sets the global paths to an application directory in the test's folder and makes them.
    void GivenAppDirectory();

    /// Writes a file below the test's folder (folders are made) and returns its full path.
    std::string GivenFile(const std::string& name, std::string_view content);

    /// A file's bytes; fails the test when it is not there.
    static std::string Bytes(const std::string& path);

    /// Lines of a text file without their ends.
    static std::vector<std::string> Lines(const std::string& path);

    static bool Exists(const std::string& path);

private:
    std::string folder_;
    UnflushedDisk disk_; ///< a test's files need not outlive the power
};

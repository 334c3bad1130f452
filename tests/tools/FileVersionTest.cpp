#include "tools/FileVersion.h"

#include "support/EngineTest.h"

#include <gtest/gtest.h>

namespace {

using namespace std::string_literals;

/// The beginning of a version resource, from its key on.
std::string Resource(const std::string& mark = "\xBD\x04\xEF\xFE"s) {
    std::string key;
    for (const char c : "VS_VERSION_INFO"s) (key += c) += '\0';
    return key + "\0\0\0\0"s + mark + "\0\0\x01\0"s + "\x02\0\x06\0"s + "\x2C\x01\x01\0"s;
}

class FileVersionTest : public EngineTest {};

TEST_F(FileVersionTest, IsThatOfTheVersionResource) {
    const std::string path = GivenFile("Palm.exe", "MZ some code "s + Resource() + " and more");

    EXPECT_EQ(FileVersion(path), "6.2.1.300");
}

TEST_F(FileVersionTest, AMissingFileGivesAnEmptyVersion) {
    EXPECT_EQ(FileVersion(Folder() + "Palm.exe"), "");
    EXPECT_EQ(FileVersion(""), "");
    EXPECT_EQ(FileVersion(Folder()), "");
}

TEST_F(FileVersionTest, WhatIsNoWindowsProgramHasNone) {
    EXPECT_EQ(FileVersion(GivenFile("a", "\x7F"s + "ELF" + Resource())), "");
    EXPECT_EQ(FileVersion(GivenFile("b", "")), "");
    EXPECT_EQ(FileVersion(GivenFile("c", "MZ")), "");
}

TEST_F(FileVersionTest, AResourceThatEndsEarlyOrBearsAnotherMarkHasNone) {
    const std::string whole = "MZ" + Resource();
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_EQ(FileVersion(GivenFile("cut.exe", whole.substr(0, size))), "") << size;
    EXPECT_EQ(FileVersion(GivenFile("cut.exe", whole)), "6.2.1.300");
    EXPECT_EQ(FileVersion(GivenFile("other.exe", "MZ" + Resource("\xBD\x04\xEF\xFF"s))), "");
}

TEST_F(FileVersionTest, AKeyThatIsOnlyATextOfTheProgramIsPassedOver) {
    EXPECT_EQ(FileVersion(GivenFile("Palm.exe", "MZ" + Resource("text"s) + Resource())), "6.2.1.300");
}

} // namespace

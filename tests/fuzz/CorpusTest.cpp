#include "fuzz/Targets.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

namespace fs = std::filesystem;

namespace {

const fs::path Corpus = fs::path(TRAMBLE_SOURCE) / "tests/fuzz/corpus";

std::string BytesOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

TEST(FuzzCorpus, EachInputKeepsTheRulesOfItsTarget) {
    for (const FuzzTarget& target : FuzzTargets()) {
        int inputs = 0;
        for (const fs::directory_entry& input : fs::directory_iterator(Corpus / target.Name)) {
            EXPECT_NO_THROW(target.Run(BytesOf(input.path()))) << input.path();
            ++inputs;
        }
        EXPECT_GT(inputs, 0) << target.Name;
    }
}

TEST(FuzzCorpus, NoInputAtAllKeepsThemToo) {
    for (const FuzzTarget& target : FuzzTargets()) EXPECT_NO_THROW(target.Run("")) << target.Name;
}

TEST(FuzzCorpus, EachFolderOfInputsHasATarget) {
    std::set<std::string> names;
    for (const FuzzTarget& target : FuzzTargets()) names.emplace(target.Name);
    for (const fs::directory_entry& folder : fs::directory_iterator(Corpus)) {
        EXPECT_TRUE(names.contains(folder.path().filename().string())) << folder.path();
    }
}

} // namespace

#include "handheld/HandheldTest.h"

#include "core/Paths.h"
#include "support/Fails.h"

#include <algorithm>
#include <filesystem>

namespace {

Database Memo(const std::string& name, std::size_t bytes = 10) {
    Database database;
    database.Name = name;
    database.Type = FourCharacters("DATA");
    database.Creator = FourCharacters("memo");
    database.Records.push_back({0, 0, 1, std::string(bytes, 'x')});
    return database;
}

class StoreTest : public HandheldTest {
protected:
    std::string Databases() const { return Place() + "databases/"; }
    std::vector<std::string> Files() const {
        std::vector<std::string> files;
        for (const auto& file : std::filesystem::directory_iterator(Databases()))
            files.push_back(file.path().filename().string());
        std::sort(files.begin(), files.end());
        return files;
    }
};

TEST_F(StoreTest, ADatabaseThatIsSavedIsThereForTheNextCommand) {
    GivenHandheld();
    const Database saved = Memo("MemoDB");

    Its().Store.Save(saved);

    EXPECT_EQ(Again().Store.Load("MemoDB"), saved);
    EXPECT_EQ(Files(), std::vector<std::string>{"MemoDB.pdb"});
    EXPECT_EQ(Its().Store.Used(), std::filesystem::file_size(Databases() + "MemoDB.pdb"));
}

TEST_F(StoreTest, NamesAreKeptByteExactlyWhateverTheFileSystemTakes) {
    const std::vector<std::string> names{"a/b:c*?", "Memo ", ".hidden",  "con", "Memo",
                                         "MEMO",    "50%",   "\xC4pfel", "..",  "T$1#2~"};
    GivenHandheld();
    for (const std::string& name : names) Its().Store.Save(Memo(name));

    for (const std::string& name : names) EXPECT_EQ(Again().Store.Load(name).Name, name);
    for (const std::string& file : Files())
        EXPECT_TRUE(IsNameForNewFile(file.substr(0, file.size() - 4))) << file;
}

TEST_F(StoreTest, NamesThatDifferInCaseAloneAreTwoFilesOnEverySystem) {
    GivenHandheld();

    Its().Store.Save(Memo("memo", 1));
    Its().Store.Save(Memo("MEMO", 2));
    Its().Store.Save(Memo("memo", 3));

    EXPECT_EQ(Files(), (std::vector<std::string>{"MEMO%_2.pdb", "memo.pdb"}));
    EXPECT_EQ(Again().Store.Load("memo").Records[0].Data.size(), 3U);
    EXPECT_EQ(Its().Store.Load("MEMO").Records[0].Data.size(), 2U);
}

TEST_F(StoreTest, AFullMemoryTakesNothingMoreAndKeepsWhatItHas) {
    HandheldSettings settings = Anna();
    settings.Memory = 2000;
    GivenHandheld(settings);
    Its().Store.Save(Memo("One", 1000));
    const Database two = Memo("Two", 500), three = Memo("Three", 500);

    const std::string words = RefusalOf([&] {
        Its().Store.SaveAll(std::vector<const Database*>{&two, &three});
    });

    EXPECT_NE(words.find("memory is full"), std::string::npos) << words;
    EXPECT_EQ(Files(), std::vector<std::string>{"One.pdb"});
    Its().Store.Save(two);
    Its().Store.Remove("One");
    Its().Store.Save(three);
    EXPECT_EQ(Files(), (std::vector<std::string>{"Three.pdb", "Two.pdb"}));
}

TEST_F(StoreTest, ADamagedFileIsNamed) {
    GivenHandheld();
    Its().Store.Save(Memo("Good"));
    GivenFile("handheld/databases/bad.pdb", "rubbish");

    const std::string words = RefusalOf([&] { Again(); });

    EXPECT_NE(words.find("bad.pdb: "), std::string::npos) << words;
    EXPECT_TRUE(Exists(Databases() + "Good.pdb"));
}

TEST_F(StoreTest, AFileThatIsDamagedBehindItsHeaderIsNamedWhenItIsOpened) {
    GivenHandheld();
    std::string bytes = WriteDatabase(Memo("Half"));
    bytes.resize(80);
    GivenFile("handheld/databases/half.pdb", bytes);

    Again();

    EXPECT_NE(RefusalOf([&] { Its().Store.Load("Half"); }).find("half.pdb: "), std::string::npos);
}

TEST_F(StoreTest, TwoFilesOfOneNameAreRefused) {
    GivenHandheld();
    Its().Store.Save(Memo("MemoDB"));
    GivenFile("handheld/databases/copy.pdb", WriteDatabase(Memo("MemoDB")));

    const std::string words = RefusalOf([&] { Again(); });

    EXPECT_NE(words.find("copy.pdb"), std::string::npos) << words;
    EXPECT_NE(words.find("MemoDB.pdb"), std::string::npos) << words;
}

TEST_F(StoreTest, WhatAKilledRunLeftIsRemoved) {
    GivenHandheld();
    GivenFile("handheld/databases/MemoDB.pdb.zuk~", "half");
    GivenFile("handheld/Handheld.txt.zuk~", "half");

    Again();

    EXPECT_TRUE(Files().empty());
    EXPECT_FALSE(Exists(Place() + "Handheld.txt.zuk~"));
}

class SettingsTest : public HandheldTest {};

TEST_F(SettingsTest, AreReadAsTheyWereWritten) {
    HandheldSettings settings = Anna();
    settings.User = {0xFFFFFFFF,           7, 99, {2026, 3, 4, 17, 30, 1}, {2026, 3, 5, 0, 0, 0},
                     "J\xF6rg 100%\n=\x81"};
    settings.LastOrder = "000123";
    settings.Memory = 123456;
    settings.ClockOffset = -7200;
    settings.LanSync = true;
    settings.PCName = "desk";
    settings.PCAddress = "192.168.2.4";
    settings.LastEnd = "done";

    EXPECT_EQ(ReadSettings(WriteSettings(settings), "Handheld.txt"), settings);
}

TEST_F(SettingsTest, ABadLineIsToldWithFileLineAndReason) {
    const auto wordsOf = [](const std::string& text) {
        return RefusalOf([&] { ReadSettings("# first\n\n" + text, "x/Handheld.txt"); });
    };
    EXPECT_EQ(wordsOf("Memory=lots\n"), "x/Handheld.txt, line 3: not a whole number from 1 to 1073741824");
    EXPECT_EQ(wordsOf("Name=A\nName=B\n"), "x/Handheld.txt, line 4: the key Name for the second time");
    EXPECT_EQ(wordsOf("Color=red\n"), "x/Handheld.txt, line 3: a key that is not known: Color");
    EXPECT_EQ(wordsOf("rubbish"), "x/Handheld.txt, line 3: no = in it");
    EXPECT_EQ(wordsOf("UserId=4294967296"),
              "x/Handheld.txt, line 3: not a whole number from 0 to 4294967295");
    EXPECT_EQ(wordsOf("Machine=TOOLONG"), "x/Handheld.txt, line 3: more than 4 characters");
    EXPECT_EQ(wordsOf("LastSync=yesterday"), "x/Handheld.txt, line 3: not a date and time");
    EXPECT_EQ(wordsOf("PCName=a%0"),
              "x/Handheld.txt, line 3: a % without the two digits of a character behind it");
    EXPECT_EQ(wordsOf("LanSync=maybe"), "x/Handheld.txt, line 3: neither yes nor no");
    EXPECT_EQ(wordsOf(std::string("PCName=a\0b", 10)), "x/Handheld.txt, line 3: a NUL byte");
}

TEST_F(SettingsTest, AFolderWithoutAHandheldIsToldOf) {
    EXPECT_NE(RefusalOf([&] { Again(); }).find("Handheld.txt is missing"), std::string::npos);
}

TEST_F(SettingsTest, TheClockGoesByItsOwnTime) {
    GivenHandheld();

    Its().SetClock({2026, 3, 5, 9, 30, 1});
    Its().SaveSettings();

    EXPECT_EQ(Again().Clock(), (DateTime{2026, 3, 5, 9, 30, 1}));
    EXPECT_EQ(Its().Settings.ClockOffset, 5401);
}

TEST_F(SettingsTest, AResetLeavesTheDeviceAndNothingOnIt) {
    GivenHandheld();
    Its().Store.Save(Memo("MemoDB"));
    Its().WriteLog("done");

    EXPECT_EQ(Run({"reset"}).How, Outcome::Done);

    EXPECT_EQ(Again().Settings.User.UserId, 0U);
    EXPECT_EQ(Its().Settings.User.Name, "");
    EXPECT_EQ(Its().Settings.Machine, "M1");
    EXPECT_TRUE(Its().Store.Entries().empty());
    EXPECT_FALSE(Exists(Place() + "log.txt"));
}

} // namespace

#include "hotsync/ManagerSettings.h"

#include "core/Paths.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"

namespace {

using Strings = std::vector<std::string>;

class ManagerSettingsTest : public EngineTest {
protected:
    void GivenIni(const std::string& content) { GivenFile("HotSync.ini", content); }
    std::string Ini() const { return Bytes(Folder() + "HotSync.ini"); }
    ManagerSettings Read() const { return ReadManagerSettings(Folder()); }

    /// The words of the refusal of a file with this third line.
    std::string Refused(const std::string& line) {
        GivenIni("; mine\n[HotSync]\n" + line + "\nPCId=7\n");
        const FailureSeen seen = FailureOf([&] { Read(); });
        EXPECT_EQ(seen.Number, 13) << line;
        EXPECT_NE(seen.Words.find("HotSync.ini, line 3: "), std::string::npos) << seen.Words;
        return seen.Words.substr(seen.Words.find("line 3: ") + 8);
    }
};

TEST_F(ManagerSettingsTest, AMissingFileIsMadeWithTheDefaultsAndAnIdOfThisOffice) {
    const ManagerSettings settings = Read();

    ManagerSettings defaults;
    EXPECT_NE(settings.PCId, 0u);
    defaults.PCId = settings.PCId;
    EXPECT_EQ(settings, defaults);
    EXPECT_EQ(Ini(), "[HotSync]\r\nAddress=127.0.0.1\r\nPort=14238\r\nLookup=True\r\nLookupPort=14237\r\n"
                     "HandshakeSeconds=20\r\nAnswerSeconds=60\r\nSessionMinutes=30\r\nKeepAliveSeconds=8\r\n"
                     "WaitingCallers=4\r\nLargestTableMB=64\r\nLargestFileMB=16\r\nPCId=" +
                         std::to_string(settings.PCId) + "\r\n");
    EXPECT_EQ(Read(), settings);
}

TEST_F(ManagerSettingsTest, TwoOfficesHaveTwoIds) {
    MakePath(Folder() + "a/");
    MakePath(Folder() + "b/");

    EXPECT_NE(ReadManagerSettings(Folder() + "a").PCId, ReadManagerSettings(Folder() + "b/").PCId);
}

TEST_F(ManagerSettingsTest, WhatIsWrittenIsReadBack) {
    const ManagerSettings settings{"fe80::1", 0, 65535, false, 600, 600, 1440, 25, 0, 1024, 1, 4294967295U};

    WriteManagerSettings(Folder(), settings);

    EXPECT_EQ(Read(), settings);
}

TEST_F(ManagerSettingsTest, KeysTakeAnyCaseAndBlanksAndAMissingOneHasItsDefault) {
    GivenIni("\xEF\xBB\xBF[hotsync]\r\n port = 99 \r\nLOOKUP=false\r\nAddress= * \r\nPCId=7\r\n");

    const ManagerSettings settings = Read();

    EXPECT_EQ(settings.Port, 99);
    EXPECT_FALSE(settings.Lookup);
    EXPECT_EQ(settings.Address, "*");
    EXPECT_EQ(settings.AnswerSeconds, 60);
    EXPECT_EQ(settings.PCId, 7u);
}

TEST_F(ManagerSettingsTest, WhateverElseStandsInTheFileStaysInItsPlace) {
    GivenIni(
        "# of the office\n[Other]\nPort=1\n\n[HotSync]\nPort=2\n; by hand\nColour=Gr\xC3\xBCn\nPCId=7\n\n"
        "[Last]\nPCId=3\n");
    ManagerSettings settings = Read();
    EXPECT_EQ(settings.Port, 2);
    settings.Port = 5;

    WriteManagerSettings(Folder(), settings);

    EXPECT_EQ(Lines(Folder() + "HotSync.ini"), (Strings{"# of the office",
                                                        "[Other]",
                                                        "Port=1",
                                                        "",
                                                        "[HotSync]",
                                                        "Port=5",
                                                        "; by hand",
                                                        "Colour=Gr\xC3\xBCn",
                                                        "PCId=7",
                                                        "Address=127.0.0.1",
                                                        "Lookup=True",
                                                        "LookupPort=14237",
                                                        "HandshakeSeconds=20",
                                                        "AnswerSeconds=60",
                                                        "SessionMinutes=30",
                                                        "KeepAliveSeconds=8",
                                                        "WaitingCallers=4",
                                                        "LargestTableMB=64",
                                                        "LargestFileMB=16",
                                                        "",
                                                        "[Last]",
                                                        "PCId=3"}));
    EXPECT_EQ(Read(), settings);
}

TEST_F(ManagerSettingsTest, AFileWithoutTheSectionGetsIt) {
    GivenIni("[Other]\nPort=1");

    const ManagerSettings settings = Read();

    EXPECT_EQ(settings.Port, 14238);
    EXPECT_EQ(Ini().substr(0, 32), "[Other]\r\nPort=1\r\n\r\n[HotSync]\r\nAd");
}

TEST_F(ManagerSettingsTest, AValueThatCannotBeIsRefusedWithFileLineAndReason) {
    EXPECT_EQ(Refused("Port=many"), "Port is a whole number from 0 to 65535, not many");
    EXPECT_NE(Refused("Port=65536").find("from 0 to 65535"), std::string::npos);
    EXPECT_NE(Refused("Port=-1").find("from 0"), std::string::npos);
    EXPECT_NE(Refused("LookupPort=").find("LookupPort is"), std::string::npos);
    EXPECT_NE(Refused("HandshakeSeconds=0").find("from 1 to 600"), std::string::npos);
    EXPECT_NE(Refused("AnswerSeconds=1.5").find("AnswerSeconds"), std::string::npos);
    EXPECT_NE(Refused("SessionMinutes=1441").find("from 1 to 1440"), std::string::npos);
    EXPECT_NE(Refused("KeepAliveSeconds=26").find("from 1 to 25"), std::string::npos);
    EXPECT_NE(Refused("WaitingCallers=101").find("from 0 to 100"), std::string::npos);
    EXPECT_NE(Refused("LargestTableMB=1025").find("from 1 to 1024"), std::string::npos);
    EXPECT_NE(Refused("LargestFileMB=99999999999999999999").find("from 1 to 1024"), std::string::npos);
    EXPECT_NE(Refused("PCId=0").find("from 1 to 4294967295"), std::string::npos);
    EXPECT_EQ(Refused("Lookup=maybe"), "Lookup is True or False, not maybe");
    EXPECT_EQ(Refused("Address=localhost"), "Address is an address in numbers or *, not localhost");
    EXPECT_EQ(Refused("Port 14238"), "not Key=value: Port 14238");
}

TEST_F(ManagerSettingsTest, AKeyThatStandsTwiceIsRefused) {
    GivenIni("[HotSync]\nPort=1\nport=2\n");

    EXPECT_NE(FailureOf([&] { Read(); }).Words.find("HotSync.ini, line 3: Port stands here again"),
              std::string::npos);
}

TEST_F(ManagerSettingsTest, ALineBeforeTheSectionIsRefusedRatherThanPassedOver) {
    GivenIni("Port=1\n[HotSync]\n");

    EXPECT_NE(FailureOf([&] { Read(); }).Words.find("line 1: a line before the section [HotSync]: Port=1"),
              std::string::npos);
    EXPECT_EQ(Ini(), "Port=1\n[HotSync]\n");
}

TEST_F(ManagerSettingsTest, SettingsThatCannotBeAreNotWritten) {
    WriteManagerSettings(Folder(), Read());
    const std::string before = Ini();
    ManagerSettings settings = Read();
    settings.KeepAliveSeconds = 0;
    EXPECT_EQ(FailureOf([&] { WriteManagerSettings(Folder(), settings); }).Number, 13);
    settings = Read();
    settings.Address = "all\r\nPort=1";
    EXPECT_EQ(FailureOf([&] { WriteManagerSettings(Folder(), settings); }).Number, 13);

    EXPECT_EQ(Ini(), before);
}

TEST_F(ManagerSettingsTest, AFileThatCannotBeWrittenIsAFailureAndTheOldOneStands) {
    GivenIni("[HotSync]\nPort=1\nPCId=7\n");
    for (int call = 1; call <= 4; ++call) {
        FaultyDisk disk(call);
        Global.TheDisk = &disk;
        ManagerSettings changed = Read();
        changed.Port = 2;

        EXPECT_EQ(FailureOf([&] { WriteManagerSettings(Folder(), changed); }).Number, 61) << call;

        EXPECT_EQ(Ini(), "[HotSync]\nPort=1\nPCId=7\n");
    }
}

TEST_F(ManagerSettingsTest, AnIdThatCannotBeKeptIsNoId) {
    FaultyDisk disk(1, 57);
    Global.TheDisk = &disk;

    EXPECT_EQ(FailureOf([&] { Read(); }).Number, 57);
}

TEST_F(ManagerSettingsTest, WhatAKilledRunHasLeftIsPutAway) {
    GivenIni("[HotSync]\nPCId=7\n");
    GivenFile("HotSync.ini.zuk~", "half");

    Read();

    EXPECT_FALSE(Exists(Folder() + "HotSync.ini.zuk~"));
}

TEST_F(ManagerSettingsTest, SingleSettingsGoByTheirKeys) {
    ManagerSettings settings;

    SetManagerSetting(settings, "answerseconds", " 90 ");
    SetManagerSetting(settings, "Lookup", "0");

    EXPECT_EQ(settings.AnswerSeconds, 90);
    EXPECT_EQ(ManagerSettingText(settings, "AnswerSeconds"), "90");
    EXPECT_EQ(ManagerSettingText(settings, "lookup"), "False");
    EXPECT_EQ(ManagerSettingText(settings, "Address"), "127.0.0.1");
    EXPECT_EQ(RangeOfManagerSetting("KeepAliveSeconds")->Most, 25);
    EXPECT_FALSE(RangeOfManagerSetting("Address"));
    EXPECT_FALSE(RangeOfManagerSetting("Lookup"));
    EXPECT_EQ(FailureOf([&] { SetManagerSetting(settings, "Colour", "1"); }).Number, 5);
    EXPECT_EQ(FailureOf([&] { SetManagerSetting(settings, "AnswerSeconds", "soon"); }).Number, 13);
    EXPECT_EQ(settings.AnswerSeconds, 90);
}

} // namespace

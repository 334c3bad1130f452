#include "core/Settings.h"

#include "core/TextFile.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"

namespace {

using Strings = std::vector<std::string>;

DateTime TestNow() {
    return {2026, 11, 15, 14, 5, 9};
}

class SettingsTest : public EngineTest {
protected:
    SettingsTest() {
        GivenAppDirectory();
        Global.Clock = TestNow;
    }

    void GivenIni(const std::string& content) { GivenFile("app/ZUKTramble.ini", content); }

    /// The value of a key as the file has it.
    static std::string InFile(const std::string& key) {
        for (const std::string& line : Lines(Global.IniFile)) {
            if (line.substr(0, key.size() + 1) == key + "=") return line.substr(key.size() + 1);
        }
        ADD_FAILURE() << "no key " << key;
        return {};
    }
};

TEST_F(SettingsTest, AMissingFileIsMadeFromTheDefaults) {
    Global.WindowState = 0;
    Global.MainTop = 100;
    Global.MainLeft = 200;
    Global.MainHeight = 9000;
    Global.MainWidth = 12000;

    GetIniFile();

    EXPECT_EQ(Bytes(Global.IniFile),
              "[Backup]\r\nPurgeBackup=True\r\nPurgeDays=7\r\n\r\n"
              "[Remote HotSync]\r\nRemoteSyncSettings=\r\nRemoteSelect=False\r\n"
              "RemoteSelSettings=\r\nRemoteClearSelect=False\r\nRemoteClearSettings=\r\n"
              "UploadSelect=False\r\nUploadSelSettings=\r\n\r\n"
              "[Updates]\r\nUpdateDemoTemplates=True\r\n\r\n"
              "[Form Position]\r\nWindowState=0\r\nMainTop=100\r\nMainLeft=200\r\n"
              "MainHeight=9000\r\nMainWidth=12000\r\n\r\n"
              "[Main Screen]\r\nLastReset=2026-11-15 00:00:00\r\n");
    EXPECT_TRUE(Global.PurgeBackup);
    EXPECT_EQ(Global.PurgeDays, 7);
    EXPECT_TRUE(Global.UpdateDemoTemplates);
    EXPECT_EQ(Global.LastReset, (DateTime{2026, 11, 15, 0, 0, 0}));
}

TEST_F(SettingsTest, WhatIsWrittenIsReadBack) {
    Global.PurgeBackup = false;
    Global.PurgeDays = 30;
    Global.RemoteSyncSettings = "Night run";
    Global.RemoteSelect = true;
    Global.RemoteSelSettings = "Caf\xE9 = all";
    Global.RemoteClearSelect = true;
    Global.RemoteClearSettings = "Orders";
    Global.UploadSelect = true;
    Global.UploadSelSettings = " two blanks ";
    Global.UpdateDemoTemplates = false;
    Global.WindowState = 2;
    Global.MainTop = 8500;
    Global.MainLeft = 11550;
    Global.MainHeight = 70000;
    Global.MainWidth = 80000;
    Global.LastReset = {2026, 11, 14, 9, 30, 1};
    UpdateIniFile();
    const std::string written = Bytes(Global.IniFile);
    const std::string app = Global.AppPath, ini = Global.IniFile;
    Global = Globals{};
    Global.Clock = TestNow;
    Global.AppPath = app;
    Global.IniFile = ini;

    GetIniFile();

    EXPECT_FALSE(Global.PurgeBackup);
    EXPECT_EQ(Global.PurgeDays, 30);
    EXPECT_EQ(Global.RemoteSyncSettings, "Night run");
    EXPECT_TRUE(Global.RemoteSelect);
    EXPECT_EQ(Global.RemoteSelSettings, "Caf\xE9 = all");
    EXPECT_TRUE(Global.RemoteClearSelect);
    EXPECT_EQ(Global.RemoteClearSettings, "Orders");
    EXPECT_TRUE(Global.UploadSelect);
    EXPECT_EQ(Global.UploadSelSettings, " two blanks ");
    EXPECT_FALSE(Global.UpdateDemoTemplates);
    EXPECT_EQ(Global.WindowState, 2);
    EXPECT_EQ(Global.MainTop, 8500);
    EXPECT_EQ(Global.MainLeft, 11550);
    EXPECT_EQ(Global.MainHeight, 70000);
    EXPECT_EQ(Global.MainWidth, 80000);
    EXPECT_EQ(Global.LastReset, (DateTime{2026, 11, 14, 9, 30, 1}));
    UpdateIniFile();
    EXPECT_EQ(Bytes(ini), written);
}

TEST_F(SettingsTest, AFileOfPurgeDaysAloneLeavesTheRestAtItsStartAndLastResetAtToday) {
    Global.MainTop = 300;
    Global.RemoteSelSettings = "of a test before";
    GivenIni("PurgeDays=12\r\n");

    GetIniFile();

    EXPECT_EQ(Global.PurgeDays, 12);
    EXPECT_TRUE(Global.PurgeBackup);
    EXPECT_FALSE(Global.RemoteSelect);
    EXPECT_EQ(Global.RemoteSelSettings, "");
    EXPECT_TRUE(Global.UpdateDemoTemplates);
    EXPECT_EQ(Global.MainTop, 300);
    EXPECT_EQ(Global.LastReset, (DateTime{2026, 11, 15, 0, 0, 0}));
}

TEST_F(SettingsTest, AnEmptyFileMeansTheDefaults) {
    GivenIni("");

    GetIniFile();

    EXPECT_EQ(Global.PurgeDays, 7);
    EXPECT_EQ(Global.LastReset, (DateTime{2026, 11, 15, 0, 0, 0}));
    EXPECT_EQ(Bytes(Global.IniFile), "");
}

TEST_F(SettingsTest, KeysAreMatchedWithoutRegardToCaseWhereverTheyStand) {
    GivenIni("purgedays=3\nUPDATEDEMOTEMPLATES=false\n[Nothing]\nremoteselsettings=Mine\nMainwidth=400\n");

    GetIniFile();

    EXPECT_EQ(Global.PurgeDays, 3);
    EXPECT_FALSE(Global.UpdateDemoTemplates);
    EXPECT_EQ(Global.RemoteSelSettings, "Mine");
    EXPECT_EQ(Global.MainWidth, 400);
}

TEST_F(SettingsTest, SectionsUnknownLinesAndKeysNotAtTheLinesStartArePassedOver) {
    GivenIni("[PurgeDays=1]\n PurgeDays=2\nOther=3\nPurgeDays\n=\n");

    GetIniFile();

    EXPECT_EQ(Global.PurgeDays, 7);
}

TEST_F(SettingsTest, OfAKeyThatComesTwiceTheLastCounts) {
    GivenIni("PurgeDays=1\nPurgeDays=2\n");

    GetIniFile();

    EXPECT_EQ(Global.PurgeDays, 2);
}

TEST_F(SettingsTest, YesNoKeysTakeWordsInAnyCaseAndNumbers) {
    GivenIni("PurgeBackup= FALSE \nRemoteSelect=true\nRemoteClearSelect=-1\nUpdateDemoTemplates=0\n");

    GetIniFile();

    EXPECT_FALSE(Global.PurgeBackup);
    EXPECT_TRUE(Global.RemoteSelect);
    EXPECT_TRUE(Global.RemoteClearSelect);
    EXPECT_FALSE(Global.UpdateDemoTemplates);
}

TEST_F(SettingsTest, AYesNoKeyWithOtherTextIsAFailureThatNamesFileAndLine) {
    for (const std::string& key :
         Strings{"PurgeBackup", "RemoteSelect", "RemoteClearSelect", "UploadSelect", "UpdateDemoTemplates"}) {
        for (const std::string& value : Strings{"maybe", "", "Truely"}) {
            GivenIni("PurgeDays=1\r\n\r\n" + key + "=" + value + "\r\n");

            const FailureSeen seen = FailureOf([] { GetIniFile(); });

            EXPECT_EQ(seen.Number, 13);
            EXPECT_NE(seen.Words.find("ZUKTramble.ini, line 3: " + key + "=" + value), std::string::npos)
                << seen.Words;
        }
    }
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(SettingsTest, AFileThatCannotBeReadToItsEndLeavesTheSettingsAsTheyWere) {
    Global.PurgeDays = 31;
    Global.RemoteSyncSettings = "Every evening";
    GivenIni("PurgeDays=1\r\n" + std::string(TextReader::MaxLine + 1, 'x') + "\r\n");

    EXPECT_EQ(FailureOf([] { GetIniFile(); }).Number, 6);

    EXPECT_EQ(Global.PurgeDays, 31);
    EXPECT_EQ(Global.RemoteSyncSettings, "Every evening");
}

TEST_F(SettingsTest, AFailureShowsTheLineInUnicodeAndNotAllOfALongOne) {
    GivenIni("PurgeBackup=\xE9" + std::string(5000, 'x'));

    const FailureSeen seen = FailureOf([] { GetIniFile(); });

    EXPECT_NE(seen.Words.find("PurgeBackup=\xC3\xA9xxx"), std::string::npos) << seen.Words;
    EXPECT_LT(seen.Words.size(), 200u);
}

TEST_F(SettingsTest, ACountOfDaysThatIsNoneOrTooLargeIsAFailure) {
    GivenIni("PurgeDays=seven\n");
    EXPECT_EQ(FailureOf([] { GetIniFile(); }).Number, 13);

    GivenIni("PurgeDays=32768\n");
    EXPECT_EQ(FailureOf([] { GetIniFile(); }).Number, 6);
}

TEST_F(SettingsTest, APositionThatDoesNotConvertCountsAsNoValue) {
    GivenIni("WindowState=big\nMainTop=top\nMainLeft=\nMainHeight=99999999999\nMainWidth=1.2.3\n");

    GetIniFile();

    EXPECT_EQ(Global.WindowState, 0);
    EXPECT_EQ(Global.MainTop, 0);
    EXPECT_EQ(Global.MainLeft, 0);
    EXPECT_EQ(Global.MainHeight, 0);
    EXPECT_EQ(Global.MainWidth, 0);
}

TEST_F(SettingsTest, AWindowStateThatIsNoneIsNormal) {
    for (const auto& [value, state] : std::vector<std::pair<std::string, int>>{
             {"0", 0}, {"1", 1}, {"2", 2}, {"3", 0}, {"-1", 0}, {"70000", 0}}) {
        GivenIni("WindowState=" + value + "\n");
        GetIniFile();
        EXPECT_EQ(Global.WindowState, state) << value;
    }
}

TEST_F(SettingsTest, AWindowOffTheScreenIsWrittenBackAsZero) {
    struct Place {
        std::int32_t Top, Left, WrittenTop, WrittenLeft;
    };
    for (const Place& place :
         {Place{9000, 0, 0, 0}, Place{8500, 11550, 8500, 11550}, Place{8501, 11551, 0, 0},
          Place{-1, -1, 0, 0}, Place{0, 0, 0, 0}, Place{100, 12000, 100, 0}}) {
        GivenIni("MainTop=" + std::to_string(place.Top) + "\nMainLeft=" + std::to_string(place.Left) + "\n");
        GetIniFile();

        UpdateIniFile();

        EXPECT_EQ(InFile("MainTop"), std::to_string(place.WrittenTop)) << place.Top;
        EXPECT_EQ(InFile("MainLeft"), std::to_string(place.WrittenLeft)) << place.Left;
    }
}

TEST_F(SettingsTest, ALastResetThatIsNoDateMeansToday) {
    for (const std::string& value : Strings{"", "yesterday", "2026-02-30"}) {
        GivenIni("LastReset=" + value + "\n");
        GetIniFile();
        EXPECT_EQ(Global.LastReset, (DateTime{2026, 11, 15, 0, 0, 0})) << value;
    }
    GivenIni("LastReset=11/14/2026\n");
    GetIniFile();
    EXPECT_EQ(Global.LastReset, (DateTime{2026, 11, 14, 0, 0, 0}));
}

TEST_F(SettingsTest, AZeroLastResetIsWrittenAsToday) {
    Global.LastReset = {};

    UpdateIniFile();

    EXPECT_EQ(InFile("LastReset"), "2026-11-15 00:00:00");
}

TEST_F(SettingsTest, AValueCannotMakeALineOfItsOwn) {
    Global.RemoteSelSettings = "Mine\r\nPurgeBackup=False";

    UpdateIniFile();
    GetIniFile();

    EXPECT_TRUE(Global.PurgeBackup);
    EXPECT_EQ(Global.RemoteSelSettings, "Mine  PurgeBackup=False");
}

TEST_F(SettingsTest, DeselectRemoteSelectTurnsTheSelectionsOffAndKeepsTheRest) {
    Global.PurgeDays = 30;
    Global.RemoteSyncSettings = "Night run";
    Global.RemoteSelect = true;
    Global.RemoteSelSettings = "Gone";
    Global.RemoteClearSelect = true;
    Global.RemoteClearSettings = "Orders";
    Global.UploadSelect = true;
    Global.UploadSelSettings = "Up";

    DeselectRemoteSelect();

    EXPECT_EQ(InFile("PurgeDays"), "30");
    EXPECT_EQ(InFile("RemoteSyncSettings"), "Night run");
    EXPECT_EQ(InFile("RemoteSelect"), "False");
    EXPECT_EQ(InFile("RemoteSelSettings"), "");
    EXPECT_EQ(InFile("RemoteClearSelect"), "True");
    EXPECT_EQ(InFile("RemoteClearSettings"), "");
    EXPECT_EQ(InFile("UploadSelect"), "False");
    EXPECT_EQ(InFile("UploadSelSettings"), "");
    EXPECT_TRUE(Global.RemoteSelect);
    GetIniFile();
    EXPECT_FALSE(Global.RemoteSelect);
}

TEST_F(SettingsTest, AFileThatCannotBeWrittenIsAFailureAndTheOldOneStands) {
    GivenIni("PurgeDays=12\r\n");
    Global.AppPath.clear(); // no trace: only the settings meet the fault
    for (int n = 1; n <= 4; ++n) {
        FaultyDisk disk(n);
        Global.TheDisk = &disk;
        EXPECT_EQ(FailureOf([] { UpdateIniFile(); }).Number, 61) << n;
        Global.TheDisk = &NativeDisk();
        EXPECT_EQ(Bytes(Global.IniFile), "PurgeDays=12\r\n") << n;
        EXPECT_FALSE(Exists(Global.IniFile + ".zuk~")) << n;
    }
}

TEST_F(SettingsTest, AMissingFileThatCannotBeMadeIsAFailure) {
    FaultyDisk disk(1, 57);
    Global.TheDisk = &disk;

    EXPECT_EQ(FailureOf([] { GetIniFile(); }).Number, 57);
}

TEST_F(SettingsTest, ReadingTracesAndSoDoesMaking) {
    GetIniFile();

    EXPECT_EQ(Global.Events.Entry(1), "basCommon:GetIniFile");
    EXPECT_EQ(Global.Events.Entry(0), "basCommon:MakeIniFile");
}

} // namespace

#include "sync/UnattendedSettings.h"

#include "core/Globals.h"
#include "core/TextFile.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/RefusingDisk.h"
#include "support/Rubbish.h"

#include <filesystem>

namespace {

class UnattendedSettingsTest : public EngineTest {
protected:
    const std::string file_ = Folder() + "Every evening.uhs";
    const UnattendedSettings all_{true, "Prices", true, "Orders", true, "Orders of the day"};

    UnattendedSettings Read(std::string_view content, const UnattendedSettings& before = {}) {
        return ReadUnattendedSettings(GivenFile("read.uhs", content), before);
    }
};

TEST_F(UnattendedSettingsTest, SixLinesAreWrittenInTheirOrder) {
    SaveUA(file_, {true, "Prices", true, "Orders", false, ""});

    EXPECT_EQ(Bytes(file_), "Download=True\r\nDownloadTemplate=Prices\r\nUpload=True\r\n"
                            "UploadTemplate=Orders\r\nClear=False\r\nClearTemplate=\r\n");
}

TEST_F(UnattendedSettingsTest, WhatIsWrittenIsReadBackWithTheTemplatesOfActivitiesThatAreOff) {
    for (const UnattendedSettings& settings :
         {all_, UnattendedSettings{},
          UnattendedSettings{false, "Caf\xE9 = 2; 3", false, "Orders", false, "x"}}) {
        SaveUA(file_, settings);

        EXPECT_EQ(ReadUnattendedSettings(file_), settings);
    }
}

TEST_F(UnattendedSettingsTest, KeysAndYesNoAreReadInAnyCase) {
    EXPECT_EQ(Read("DOWNLOAD=TRUE\nuploadtemplate=Orders\nclear= false \n"),
              (UnattendedSettings{true, "", false, "Orders", false, ""}));
}

TEST_F(UnattendedSettingsTest, AMissingLineLeavesTheValueAsItWas) {
    UnattendedSettings expected = all_;
    expected.Upload = false;

    EXPECT_EQ(Read("Upload=False\r\n", all_), expected);
    EXPECT_EQ(Read("", all_), all_);
}

TEST_F(UnattendedSettingsTest, AnEmptyTemplateLineEmptiesTheTemplate) {
    UnattendedSettings expected = all_;
    expected.ClearTemplate.clear();

    EXPECT_EQ(Read("ClearTemplate=\r\n", all_), expected);
}

TEST_F(UnattendedSettingsTest, OtherLinesAreSkipped) {
    EXPECT_EQ(Read("*** Unattended Hotsync Template ***\nAutorun=True\nStartTime=18:00\n\n Upload=False\n"
                   "xDownload=False\nDownload\n",
                   all_),
              all_);
}

TEST_F(UnattendedSettingsTest, AnActivityThatIsNeitherTrueNorFalseIsAFailureThatNamesFileAndLine) {
    const FailureSeen seen = FailureOf([&] { Read("Upload=True\r\nClear=perhaps\r\n"); });

    EXPECT_EQ(seen.Number, 13);
    EXPECT_NE(seen.Words.find("read.uhs, line 2: Clear=perhaps"), std::string::npos) << seen.Words;
}

TEST_F(UnattendedSettingsTest, ATemplateThatLeadsElsewhereIsRefusedWhenReadAndWhenWritten) {
    for (const char* name : {"..\\Prices", "/etc/passwd", "C:Prices", ".."}) {
        EXPECT_EQ(FailureOf([&] { Read("DownloadTemplate=" + std::string(name)); }).Number, 52) << name;

        EXPECT_EQ(FailureOf([&] { SaveUA(file_, {true, name, false, "", false, ""}); }).Number, 52) << name;
        EXPECT_FALSE(Exists(file_));
    }
}

TEST_F(UnattendedSettingsTest, ANameCannotMakeALineOfItsOwn) {
    EXPECT_EQ(FailureOf([&] {
                  SaveUA(file_, {true, "Prices\r\nClear=True", false, "", false, ""});
              }).Number,
              52);
}

TEST_F(UnattendedSettingsTest, AFileThatIsGoneOrTooLargeIsAFailure) {
    EXPECT_EQ(FailureOf([&] { ReadUnattendedSettings(file_); }).Number, 53);

    std::filesystem::resize_file(GivenFile("Every evening.uhs", ""), TextReader::OwnFile + 1);
    EXPECT_EQ(FailureOf([&] { ReadUnattendedSettings(file_); }).Number, 6);
}

TEST_F(UnattendedSettingsTest, AGlanceSeesWhatStandsThereAndFailsForNothing) {
    const std::string path =
        GivenFile("read.uhs", "Download= true \r\nDownloadTemplate=..\\x\r\nClear=perhaps\r\nUpload=1\r\n");

    EXPECT_EQ(GlanceAtUnattendedSettings(path), (UnattendedSettings{true, "..\\x", false, "", false, ""}));
    EXPECT_EQ(GlanceAtUnattendedSettings(Folder() + "gone.uhs"), UnattendedSettings{});
    PoorDisk disk;
    Global.TheDisk = &disk;
    EXPECT_EQ(GlanceAtUnattendedSettings(path), UnattendedSettings{});
}

TEST_F(UnattendedSettingsTest, AFullDiskLeavesTheFileThatWasThereAndNoOther) {
    SaveUA(file_, all_);
    const std::string before = Bytes(file_);
    for (int call = 1; call <= 3; ++call) {
        FaultyDisk disk(call);
        Global.TheDisk = &disk;
        EXPECT_NE(FailureNumber([&] { SaveUA(file_, {}); }), 0) << call;
        Global.TheDisk = &NativeDisk();

        EXPECT_EQ(Bytes(file_), before) << call;
        EXPECT_EQ(NativeDisk().FilesIn(Folder()).size(), 1u) << call;
    }
}

TEST_F(UnattendedSettingsTest, RubbishIsReadOrRefusedAndWhatIsReadCanBeWritten) {
    SaveUA(file_, all_);
    for (const std::string& content : Rubbish(Bytes(file_))) {
        OnlyRunTimeFailures([&] {
            const UnattendedSettings read = Read(content);
            SaveUA(file_, read);
            EXPECT_EQ(ReadUnattendedSettings(file_), read);
        });
    }
}

} // namespace

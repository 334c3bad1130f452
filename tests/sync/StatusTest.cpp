#include "sync/Status.h"

#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/MemoryStore.h"
#include "support/Tables.h"

#include <map>

namespace {

using Strings = std::vector<std::string>;

class StatusTest : public EngineTest {
protected:
    StatusTest() { GivenAppDirectory(); }

    void GivenHandhelds(const Strings& ids) {
        std::vector<Strings> rows;
        for (const std::string& id : ids) rows.push_back({id, "serial", "01"});
        GivenTable(Global.DBFPath, "ZUKLINK", rows);
    }
    static std::string File() { return Global.InstallPath + "HSStatus.dat"; }
    void GivenStatusFile(const std::string& content) { GivenFile("app/Install/HSStatus.dat", content); }

    /// A list without its entry 0, which is not used.
    static Strings Entries(const Strings& list) { return {list.begin() + 1, list.end()}; }
};

TEST_F(StatusTest, SixHandheldsAreSixEntriesInTheOrderOfTheLinksTable) {
    GivenHandhelds({"Frank", "Anna", "Bea", "Carl", "Dora", "Emil"});

    GetHHStatus();

    EXPECT_EQ(Global.HHCount, 6);
    EXPECT_EQ(Entries(Global.HHSyncID), (Strings{"Frank", "Anna", "Bea", "Carl", "Dora", "Emil"}));
    EXPECT_EQ(LinkIDs(), Entries(Global.HHSyncID));
}

TEST_F(StatusTest, AMissingFileIsRebuiltFromTheLinksTableWithNobodySynced) {
    GivenHandhelds({" Anna ", "Bea"});

    GetHHStatus();

    EXPECT_EQ(Bytes(File()), "Anna\r\nBea\r\n");
    EXPECT_EQ(Entries(Global.HHStatus), (Strings{"", ""}));
    EXPECT_EQ(Entries(Global.HHStatusStd), (Strings{"", ""}));
}

TEST_F(StatusTest, ColumnsAreReadTrimmed) {
    GivenStatusFile("Anna                          G                             S\r\n"
                    "  Bea                           B  \r\n"
                    "Carl                                                          S extra\r\n");

    GetHHStatus();

    EXPECT_EQ(Entries(Global.HHSyncID), (Strings{"Anna", "Bea", "Carl"}));
    EXPECT_EQ(Entries(Global.HHStatus), (Strings{"G", "B", ""}));
    EXPECT_EQ(Entries(Global.HHStatusStd), (Strings{"S", "", "S extra"}));
}

TEST_F(StatusTest, AShortLineHasEmptyStatusesAndAnEmptyLineIsAHandheldToo) {
    GivenStatusFile("Anna\r\n\r\n" + std::string(30, 'x') + "\r\n" + std::string(30, 'y') + "G\r\n");

    GetHHStatus();

    EXPECT_EQ(Global.HHCount, 4);
    EXPECT_EQ(Entries(Global.HHSyncID), (Strings{"Anna", "", std::string(30, 'x'), std::string(30, 'y')}));
    EXPECT_EQ(Entries(Global.HHStatus), (Strings{"", "", "", "G"}));
}

TEST_F(StatusTest, StatusesAreWrittenInFixedColumns) {
    GivenHandhelds({"Anna", "Bea"});
    GetHHStatus();
    Global.HHStatus[1] = "G";
    Global.HHStatusStd[1] = "S";
    Global.HHStatus[2] = "B";

    UpdateHHStatus();

    EXPECT_EQ(Bytes(File()), "Anna" + std::string(26, ' ') + "G" + std::string(29, ' ') + "S\r\n" + "Bea" +
                                 std::string(27, ' ') + "B" + std::string(29, ' ') + "\r\n");
}

TEST_F(StatusTest, WhatIsWrittenIsReadBack) {
    GivenHandhelds({"Anna", "", "Bea"});
    GetHHStatus();
    Global.HHStatus = {"", "G", "", "B"};
    Global.HHStatusStd = {"", "", "S", "S"};
    UpdateHHStatus();

    GetHHStatus();

    EXPECT_EQ(Entries(Global.HHSyncID), (Strings{"Anna", "", "Bea"}));
    EXPECT_EQ(Entries(Global.HHStatus), (Strings{"G", "", "B"}));
    EXPECT_EQ(Entries(Global.HHStatusStd), (Strings{"", "S", "S"}));
}

TEST_F(StatusTest, AnIdOf31CharactersRunsIntoTheStatusColumn) {
    GivenStatusFile(std::string(31, 'x') + "\r\n");

    GetHHStatus();

    EXPECT_EQ(Global.HHSyncID[1], std::string(30, 'x'));
    EXPECT_EQ(Global.HHStatus[1], "x");
}

TEST_F(StatusTest, AnIdOf31CharactersIsWrittenWithItsStatusBehindIt) {
    Global.HHCount = 1;
    Global.HHSyncID = {"", std::string(31, 'x')};
    Global.HHStatus = {"", "G"};
    Global.HHStatusStd = {"", "S"};

    UpdateHHStatus();

    EXPECT_EQ(Bytes(File()), std::string(31, 'x') + "G" + std::string(28, ' ') + "S\r\n");
}

TEST_F(StatusTest, AFileMadeAnewResetsAllLetters) {
    GivenHandhelds({"Anna"});
    GivenStatusFile("Anna                          G                             S\r\n");
    GivenHandhelds({"Anna", "Bea"});

    MakeHHStatusFile();
    GetHHStatus();

    EXPECT_EQ(Entries(Global.HHStatus), (Strings{"", ""}));
    EXPECT_EQ(Entries(Global.HHSyncID), (Strings{"Anna", "Bea"}));
}

TEST_F(StatusTest, ReadingAgainReplacesTheList) {
    GivenStatusFile("Anna\r\nBea\r\n");
    GetHHStatus();
    GivenStatusFile("Carl\r\n");

    GetHHStatus();

    EXPECT_EQ(Global.HHCount, 1);
    EXPECT_EQ(Entries(Global.HHSyncID), Strings{"Carl"});
}

TEST_F(StatusTest, LettersGoByRowNotByIdSoAReorderedTableMovesThem) {
    GivenStatusFile("Anna                          G\r\nBea\r\n");
    GivenHandhelds({"Bea", "Anna"});

    GetHHStatus();

    EXPECT_EQ(LinkIDs()[0], "Bea");
    EXPECT_EQ(Global.HHStatus[1], "G");
}

TEST_F(StatusTest, ClearingEmptiesStatusAndMarkOfEachHandheld) {
    GivenStatusFile("Anna                          G                             S\r\n");
    GetHHStatus();

    ClearHHStatus();

    EXPECT_EQ(Entries(Global.HHStatus), Strings{""});
    EXPECT_EQ(Entries(Global.HHStatusStd), Strings{""});
    EXPECT_EQ(Entries(Global.HHSyncID), Strings{"Anna"});
}

TEST_F(StatusTest, ABreakInAnIdDoesNotMakeAHandheld) {
    GivenHandhelds({"An\r\nna", "Bea"});

    GetHHStatus();
    UpdateHHStatus();
    GetHHStatus();

    EXPECT_EQ(Entries(Global.HHSyncID), (Strings{"An  na", "Bea"}));
}

TEST_F(StatusTest, AnOfficeWithoutALinksTableHasNoHandhelds) {
    EXPECT_EQ(LinkIDs(), Strings{});

    GetHHStatus();

    EXPECT_EQ(Global.HHCount, 0);
}

TEST_F(StatusTest, ALinksTableThatIsNoneIsAFailure) {
    GivenFile("app/DBFFiles/ZUKLINK.dbf", "not a table");

    EXPECT_EQ(FailureOf([] { GetHHStatus(); }).Number, 321);
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(StatusTest, AFileThatCannotBeWrittenIsAFailureAndTheOldOneStands) {
    GivenHandhelds({"Bea"});
    GivenStatusFile("Anna                          G\r\n");
    const std::string before = Bytes(File());
    GetHHStatus();
    Global.AppPath.clear(); // no trace: only the status file meets the fault
    for (int n = 1; n <= 4; ++n) {
        FaultyDisk disk(n);
        Global.TheDisk = &disk;
        EXPECT_EQ(FailureOf([] { UpdateHHStatus(); }).Number, 61) << n;
        EXPECT_EQ(FailureOf([] { MakeHHStatusFile(); }).Number, 61) << n;
        Global.TheDisk = &NativeDisk();
        EXPECT_EQ(Bytes(File()), before) << n;
        EXPECT_EQ(Global.Files.Count(), 0) << n;
    }
}

// ---- the installation family ----

class InstallationStatusTest : public StatusTest {
protected:
    MemoryStore store_;
};

TEST_F(InstallationStatusTest, RowsAreMadeFromTheLinksTableWithTheirOtherKeysEmpty) {
    GivenHandhelds({"Anna", "Bea"});
    store_.Set("HH7", "HHSyncID", "old");

    MakeHHStatus(store_);

    const std::map<std::pair<std::string, std::string>, std::string> expected = {
        {{"HH1", "HHSyncID"}, "Anna"}, {{"HH1", "HHStatusInst"}, ""}, {{"HH1", "HHStatusDT"}, ""},
        {{"HH1", "HHStatusType"}, ""}, {{"HH2", "HHSyncID"}, "Bea"},  {{"HH2", "HHStatusInst"}, ""},
        {{"HH2", "HHStatusDT"}, ""},   {{"HH2", "HHStatusType"}, ""}};
    EXPECT_EQ(store_.Values, expected);
}

TEST_F(InstallationStatusTest, ReadingMakesTheRowsWhenThereIsNone) {
    GivenHandhelds({"Anna", "Bea"});

    GetHHStatusInst(store_);

    EXPECT_EQ(Global.HHCount, 2);
    EXPECT_EQ(Entries(Global.HHSyncID), (Strings{"Anna", "Bea"}));
    EXPECT_EQ(Entries(Global.HHStatusInst), (Strings{"", ""}));
}

TEST_F(InstallationStatusTest, WhatIsWrittenBackIsReadAgain) {
    GivenHandhelds({"Anna", "Bea"});
    GetHHStatusInst(store_);
    Global.HHStatusInst[2] = "S";
    Global.HHStatusDT[2] = "2026-11-15 02:36:07";
    Global.HHStatusType[2] = "Live";
    UpdateHHStatusInst(store_);
    Global.HHStatusInst = Global.HHStatusDT = Global.HHStatusType = {""};

    GetHHStatusInst(store_);

    EXPECT_EQ(Entries(Global.HHStatusInst), (Strings{"", "S"}));
    EXPECT_EQ(Entries(Global.HHStatusDT), (Strings{"", "2026-11-15 02:36:07"}));
    EXPECT_EQ(Entries(Global.HHStatusType), (Strings{"", "Live"}));
}

TEST_F(InstallationStatusTest, ReadingStopsAtTheFirstRowWithoutAnId) {
    store_.Set("HH1", "HHSyncID", "Anna");
    store_.Set("HH2", "HHStatusInst", "S");
    store_.Set("HH3", "HHSyncID", "Carl");

    GetHHStatusInst(store_);

    EXPECT_EQ(Entries(Global.HHSyncID), Strings{"Anna"});
    EXPECT_EQ(Entries(Global.HHStatusInst), Strings{""});
}

TEST_F(InstallationStatusTest, EveryListHasAnEntryForEachHandheldWhicheverFamilyWasReadLast) {
    GivenStatusFile("Anna                          G\r\n");
    for (const char* section : {"HH1", "HH2", "HH3"}) store_.Set(section, "HHSyncID", section);
    GetHHStatus();

    GetHHStatusInst(store_);
    UpdateHHStatus();

    EXPECT_EQ(Lines(File()).size(), 3u);
    for (const Strings* list : {&Global.HHSyncID, &Global.HHStatus, &Global.HHStatusStd, &Global.HHStatusInst,
                                &Global.HHStatusDT, &Global.HHStatusType}) {
        EXPECT_EQ(list->size(), 4u);
    }
    GivenStatusFile("Anna\r\nBea\r\nCarl\r\nDora\r\n");
    GetHHStatus();
    UpdateHHStatusInst(store_);
    EXPECT_EQ(store_.Read("HH4", "HHSyncID"), "Dora");
}

} // namespace

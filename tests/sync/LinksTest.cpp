#include "sync/Links.h"

#include "core/SafeFile.h"
#include "store/DBFEdit.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/IdleControl.h"
#include "support/RefusingDisk.h"
#include "support/Tables.h"

#include <optional>

namespace {

class Links : public EngineTest {
protected:
    Links() { GivenAppDirectory(); }
    ~Links() override {
        Global.TheDisk = &NativeDisk();
        table.Close();
    }

    void GivenLinks(const std::vector<std::string>& ids) {
        std::vector<std::vector<std::string>> rows;
        for (const std::string& id : ids) {
            rows.push_back(RowOf("ZUKLINK", {{"LK_HOTSYNC", id},
                                             {"LK_SERIAL", "S-" + id},
                                             {"LK_MACH_ID", "M1"},
                                             {"LK_LSTONUM", "000123"},
                                             {"LK_SFUSER", "opaque"}}));
        }
        path = GivenTable(Global.DBFPath, "ZUKLINK", rows);
    }

    std::vector<std::string> IDsOnDisk() const {
        const TableContent content = TableAt(path);
        std::vector<std::string> ids;
        for (int k = 1; k <= content.Count; ++k) ids.push_back(content.Trimmed(k)[0]);
        return ids;
    }

    /// Runs a routine on a disk where one call after the other fails, until none does.
    void OnEveryFault(const std::function<void()>& routine, const std::function<void()>& look) {
        int failures = 0;
        bool failed = true;
        for (int failAt = 1; failed && failAt < 50; ++failAt) {
            GivenLinks({"Anna", "Ben", "Cleo"});
            table.Open(2);
            FaultyDisk disk(failAt);
            Global.TheDisk = &disk;
            // A file keeps the disk that it was opened on.
            table.Open(2);
            try {
                routine();
                failed = false;
            } catch (const RunTimeFailure& failure) {
                EXPECT_EQ(failure.Number(), 61);
                ++failures;
                look();
            }
            Global.TheDisk = &NativeDisk();
            table.Close();
        }
        EXPECT_FALSE(failed);
        EXPECT_GE(failures, 1);
    }

    std::string path;
    LinkTable table;
};

using Names = std::vector<std::string>;

TEST_F(Links, OpenAtARecordAndAtTheNearestThatThereIs) {
    GivenLinks({"Anna", "Ben", "Cleo"});
    for (const auto& [asked, expected] : {std::pair{0, 1}, {-3, 1}, {2, 2}, {3, 3}, {9, 3}}) {
        table.Open(asked);

        EXPECT_EQ(table.RecordNumber(), expected);
        EXPECT_EQ(table.Trimmed().HotSync, IDsOnDisk()[static_cast<std::size_t>(expected) - 1]);
    }
    EXPECT_EQ(table.IDs(), (Names{"Anna", "Ben", "Cleo"}));
    table.Close();
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(Links, AnEmptyTableHasNoCurrentRecordAndBlankFields) {
    GivenLinks({});

    table.Open(1);

    EXPECT_EQ(table.RecordNumber(), 0);
    EXPECT_EQ(table.Trimmed().HotSync, "");
    EXPECT_EQ(table.Padded().HotSync.size(), 30U);
    EXPECT_EQ(table.Padded().Serial.size(), 24U);
    EXPECT_EQ(table.Padded().SFUser.size(), 40U);
}

TEST_F(Links, ATableWithoutTheIdIsRefusedAndNotHeldOpen) {
    path = GivenFile("app/DBFFiles/ZUKLINK.dbf", TableMaker({{"OTHER", 'C', 5}}).Row({"x"}).Bytes());

    EXPECT_EQ(FailureNumber([&] { table.Open(1); }), 321);

    EXPECT_FALSE(table.IsOpen());
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(Links, AMissingTableIsToldAndNothingIsOpen) {
    EXPECT_EQ(FailureNumber([&] { table.Open(1); }), 53);

    EXPECT_FALSE(table.IsOpen());
    EXPECT_TRUE(table.IDs().empty());
}

TEST_F(Links, AChangeKeepsTheFieldsThatTheEditorDoesNotShow) {
    GivenLinks({"Anna", "Ben"});
    table.Open(2);

    table.Write({"  Benjamin ", " 77 ", ""});

    EXPECT_EQ(TableAt(path).Trimmed(2), RowOf("ZUKLINK", {{"LK_HOTSYNC", "Benjamin"},
                                                          {"LK_SERIAL", "77"},
                                                          {"LK_MACH_ID", "M1"},
                                                          {"LK_LSTONUM", "000123"}}));
    EXPECT_EQ(TableAt(path).Rows[1][0], "Benjamin" + std::string(22, ' '));
    EXPECT_EQ(TableAt(path).Trimmed(1)[0], "Anna");
    EXPECT_EQ(table.IDs(), (Names{"Anna", "Benjamin"}));
}

TEST_F(Links, ALongValueIsCutToItsField) {
    GivenLinks({"Anna"});
    table.Open(1);

    table.Write({std::string(31, 'x'), "", ""});

    EXPECT_EQ(TableAt(path).Trimmed(1)[0], std::string(30, 'x'));
    EXPECT_EQ(table.IDs(), Names{std::string(30, 'x')});
}

TEST_F(Links, AnAddedRecordIsBlankLiveAndLastAndNewUntilItIsWritten) {
    for (const Names& ids : {Names{}, Names{"Anna", "Ben"}}) {
        GivenLinks(ids);
        table.Open(1);

        table.Append();

        const TableContent content = TableAt(path);
        EXPECT_EQ(content.Count, static_cast<std::int32_t>(ids.size()) + 1);
        EXPECT_EQ(content.Flags, std::string(ids.size() + 1, ' '));
        EXPECT_EQ(content.Behind, " ");
        EXPECT_EQ(table.RecordNumber(), content.Count);
        EXPECT_EQ(table.Trimmed().HotSync, "");
        EXPECT_TRUE(table.IsNew());
        table.Write({"Zoe", "", ""});
        EXPECT_FALSE(table.IsNew());
        EXPECT_EQ(IDsOnDisk().back(), "Zoe");
    }
}

TEST_F(Links, ADeletionLeavesTheNextRecordCurrentOrElseTheLast) {
    struct Case {
        std::int32_t Deleted, Current;
        Names Left;
    };
    for (const Case& each :
         {Case{1, 1, {"Ben", "Cleo"}}, Case{2, 2, {"Anna", "Cleo"}}, Case{3, 2, {"Anna", "Ben"}}}) {
        GivenLinks({"Anna", "Ben", "Cleo"});
        table.Open(each.Deleted);

        table.Delete();

        EXPECT_EQ(IDsOnDisk(), each.Left);
        EXPECT_EQ(table.IDs(), each.Left);
        EXPECT_EQ(table.RecordNumber(), each.Current);
        EXPECT_EQ(table.Trimmed().HotSync, each.Left[static_cast<std::size_t>(each.Current) - 1]);
    }
}

TEST_F(Links, DeletingTheOnlyRecordLeavesAnEmptyTableThatCanBeAddedTo) {
    GivenLinks({"Anna"});
    table.Open(1);

    table.Delete();

    EXPECT_EQ(TableAt(path).Count, 0);
    EXPECT_EQ(table.RecordNumber(), 0);
    table.Append();
    table.Write({"Ben", "", ""});
    EXPECT_EQ(IDsOnDisk(), Names{"Ben"});
}

TEST_F(Links, ARecordThatAnotherProgramHasMarkedGoesWithTheDeletionOfAnother) {
    GivenLinks({"Anna", "Ben", "Cleo"});
    DBFEdit marked;
    marked.FileOpen(path);
    marked.Go(3);
    marked.DeleteRecord();
    marked.FileClose();
    table.Open(1);
    EXPECT_EQ(table.IDs(), (Names{"Anna", "Ben", "Cleo"}));

    table.Delete();

    EXPECT_EQ(IDsOnDisk(), Names{"Ben"});
}

TEST_F(Links, AnotherRecordOfTheSameIdIsFoundWithoutRegardToCase) {
    GivenLinks({"Anna", "ben", "BEN", ""});
    table.Open(2);

    EXPECT_EQ(table.OtherWith("Ben"), 3);
    EXPECT_EQ(table.OtherWith("ANNA"), 1);
    EXPECT_EQ(table.OtherWith("Cleo"), 0);
    table.Go(3);
    EXPECT_EQ(table.OtherWith("Ben"), 2);
}

// ---- a disk that fails ----

TEST_F(Links, AFailedWriteLeavesTheSameRecordCurrentAndTheTableUsable) {
    OnEveryFault(
        [&] {
            table.Write({"Zoe", "", ""});
        },
        [&] {
            EXPECT_EQ(IDsOnDisk(), (Names{"Anna", "Ben", "Cleo"}));
            EXPECT_EQ(table.IDs(), IDsOnDisk());
            EXPECT_EQ(table.RecordNumber(), 2);
            EXPECT_EQ(table.Trimmed().HotSync, "Ben");
            Global.TheDisk = &NativeDisk();
            table.Open(2);
            table.Write({"Bo", "", ""});
            EXPECT_EQ(IDsOnDisk(), (Names{"Anna", "Bo", "Cleo"}));
        });
}

TEST_F(Links, AFailedAdditionAddsNothing) {
    OnEveryFault([&] { table.Append(); },
                 [&] {
                     EXPECT_EQ(IDsOnDisk(), (Names{"Anna", "Ben", "Cleo"}));
                     EXPECT_EQ(table.IDs(), IDsOnDisk());
                     EXPECT_EQ(table.RecordCount(), 3);
                     EXPECT_EQ(table.RecordNumber(), 2);
                     EXPECT_FALSE(table.IsNew());
                 });
}

TEST_F(Links, AFailedDeletionDeletesNothingAndMarksNothing) {
    OnEveryFault([&] { table.Delete(); },
                 [&] {
                     EXPECT_EQ(IDsOnDisk(), (Names{"Anna", "Ben", "Cleo"}));
                     EXPECT_EQ(TableAt(path).Flags, "   ");
                     EXPECT_EQ(table.RecordNumber(), 2);
                     EXPECT_EQ(NativeDisk().FilesIn(Global.DBFPath).size(), 1U);
                 });
}

TEST_F(Links, ANewRecordWhoseDeletionFailsIsStillNew) {
    GivenLinks({"Anna"});
    table.Open(1);
    table.Append();
    FaultyDisk disk(1);
    Global.TheDisk = &disk;

    EXPECT_EQ(FailureNumber([&] { table.Delete(); }), 61);

    EXPECT_TRUE(table.IsNew());
    EXPECT_EQ(table.RecordNumber(), 2);
}

TEST_F(Links, ATableThatCannotBeHadForAWhileIsOpenedByTheNextStep) {
    GivenLinks({"Anna", "Ben"});
    table.Open(2);
    table.Close();
    RefusingDisk refusing(Global.DBFPath, Access::ReadWrite);
    Global.TheDisk = &refusing;
    EXPECT_EQ(FailureNumber([&] { table.Write({"Bo", "", ""}); }), 70);
    EXPECT_EQ(table.RecordNumber(), 2);
    Global.TheDisk = &NativeDisk();

    table.Write({"Bo", "", ""});

    EXPECT_EQ(IDsOnDisk(), (Names{"Anna", "Bo"}));
}

TEST_F(Links, ARecordThatIsNoLongerThereIsNotWrittenOverAnother) {
    GivenLinks({"Anna", "Ben"});
    table.Open(2);
    table.Close();
    GivenLinks({"Anna"});

    EXPECT_EQ(FailureNumber([&] { table.Write({"Bo", "", ""}); }), 63);

    EXPECT_EQ(IDsOnDisk(), Names{"Anna"});
}

// ---- the users of the HotSync Manager ----

TEST(HotSyncUsersOf, AManagerAreReadInItsOrderUntilAnEmptyName) {
    EXPECT_EQ(KnownUsers(IdleControl({"Zoe", "Anna"})), (Names{"Zoe", "Anna"}));
    EXPECT_EQ(KnownUsers(IdleControl({"Zoe", "", "Anna"})), Names{"Zoe"});
    EXPECT_EQ(KnownUsers(IdleControl(Names{})), Names{});
}

// ---- a handheld that is entered ----

TEST_F(Links, AHandheldIsEnteredInItsOrderAndTheOthersKeepTheirFields) {
    GivenLinks({"Anna", "Cleo"});

    EXPECT_TRUE(AddLink(" Ben "));

    EXPECT_EQ(IDsOnDisk(), (std::vector<std::string>{"Anna", "Ben", "Cleo"}));
    const TableContent content = TableAt(path);
    const std::vector<std::string> entered = content.Trimmed(2);
    EXPECT_EQ(std::count(entered.begin(), entered.end(), ""), static_cast<long>(entered.size()) - 1);
    EXPECT_EQ(content.Trimmed(3), RowOf("ZUKLINK", {{"LK_HOTSYNC", "Cleo"},
                                                    {"LK_SERIAL", "S-Cleo"},
                                                    {"LK_MACH_ID", "M1"},
                                                    {"LK_LSTONUM", "000123"},
                                                    {"LK_SFUSER", "opaque"}}));
}

TEST_F(Links, TheFirstHandheldIsEnteredInAnEmptyTable) {
    GivenLinks({});

    EXPECT_TRUE(AddLink("Ben"));

    EXPECT_EQ(IDsOnDisk(), std::vector<std::string>{"Ben"});
}

TEST_F(Links, AHandheldThatStandsThereIsNotEnteredAgainWhateverItsCase) {
    GivenLinks({"Anna", "Ben"});
    const std::string before = ReadWholeFile(path);

    EXPECT_FALSE(AddLink("BEN"));

    EXPECT_EQ(ReadWholeFile(path), before);
}

TEST_F(Links, AnIdThatDoesNotFitOrIsBlankIsRefused) {
    GivenLinks({"Anna"});

    EXPECT_EQ(FailureNumber([] { AddLink(std::string(31, 'x')); }), 6);
    EXPECT_EQ(FailureNumber([] { AddLink("  "); }), 5);
    EXPECT_TRUE(AddLink(std::string(30, 'x')));

    EXPECT_EQ(IDsOnDisk(), (std::vector<std::string>{"Anna", std::string(30, 'x')}));
}

TEST_F(Links, ADiskThatFailsLeavesTheTableAsItWas) {
    GivenLinks({"Anna", "Cleo"});
    const std::string before = ReadWholeFile(path);
    int failures = 0;
    for (bool failed = true; failed && failures < 50;) {
        FaultyDisk disk(failures + 1);
        Global.TheDisk = &disk;
        failed = FailureNumber([] { AddLink("Ben"); }) != 0;
        Global.TheDisk = &NativeDisk();
        if (!failed) break;
        ++failures;
        EXPECT_EQ(ReadWholeFile(path), before) << failures;
    }
    EXPECT_GT(failures, 1);
    EXPECT_EQ(IDsOnDisk(), (std::vector<std::string>{"Anna", "Ben", "Cleo"}));
}

TEST_F(Links, NoHandheldIsEnteredWhileAnotherProgramHasTheTableOrItHasNoIds) {
    GivenLinks({"Anna"});
    const std::string lock = GivenFile("app/DBFFiles/.~lock.ZUKLINK.dbf#", "office");
    EXPECT_EQ(FailureNumber([] { AddLink("Ben"); }), 70);
    std::filesystem::remove(lock);
    EXPECT_EQ(IDsOnDisk(), std::vector<std::string>{"Anna"});

    GivenFile("app/DBFFiles/ZUKLINK.dbf", TableMaker({{"OTHER", 'C', 5}}).Row({"x"}).Bytes());
    EXPECT_EQ(FailureNumber([] { AddLink("Ben"); }), 321);
}

} // namespace

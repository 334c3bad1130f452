#include "installation/HandheldInstall.h"

#include "core/Messages.h"
#include "installation/InstallTest.h"
#include "support/Fails.h"
#include "support/RefusingDisk.h"

#include <filesystem>

namespace {

class DemoInstall : public InstallTest {};
class LiveInstall : public InstallTest {};
class ProgramOnlyInstall : public InstallTest {};
class InstallVersions : public InstallTest {};

Text T(std::string_view words) {
    return Text::Path(words);
}

Strings Downloads() {
    Strings names;
    for (const std::string& table : LiveTables())
        names.push_back("DOWNLOAD " + std::string(FileNameOf(table)));
    return names;
}

// ---- versions ----

TEST_F(InstallVersions, TheCaptionIsTheWordADigitAPointAndTwoDigits) {
    EXPECT_EQ(VersionCaption("1.0.0"), "Version 1.00");
    EXPECT_EQ(VersionCaption("4.1.2"), "Version 4.01") << "a correction is no other version";
    EXPECT_EQ(VersionCaption("4.12"), "Version 4.12");
    EXPECT_EQ(VersionCaption("2"), "Version 2.00");
    EXPECT_EQ(VersionCaption(""), "Version 0.00");
    EXPECT_EQ(FailureNumber([] { VersionCaption("10.0.0"); }), 6);
    EXPECT_EQ(FailureNumber([] { VersionCaption("1.100.0"); }), 6);
}

TEST_F(InstallVersions, TheTableHoldsTheThreeDigitsAndTheOperatorReadsAPointBehindTheFirst) {
    EXPECT_EQ(MajorVersion("Version 4.12"), "412");
    EXPECT_EQ(ShownVersion("412"), "4.12");
    EXPECT_EQ(ShownVersion("41234"), "4.34") << "the first character and the last two";
    EXPECT_EQ(ShownVersion("4"), "4.4");
}

// ---- the demo company ----

TEST_F(DemoInstall, QueuesAllFilesInTheirOrderForTheUser) {
    Install.Begin(InstallKind::Demo);

    EXPECT_EQ(Control.Added, FilesOf(InstallKind::Demo));
    EXPECT_EQ(Waiting().size(), 47U);
    EXPECT_EQ(Bytes(FolderOfAnna() + "TZUK20000_ZUKCUST.pdb"), "TZUK20000_ZUKCUST.pdb");
    EXPECT_FALSE(Install.IsComplete());
}

TEST_F(DemoInstall, IsCompleteWhenNoFileWaitsAnyMoreAndHeedsNoStatus) {
    Install.Begin(InstallKind::Demo);

    Control.HotSync("Anna");

    EXPECT_TRUE(Install.IsComplete());
    EXPECT_TRUE(Control.Queued.empty());
    EXPECT_FALSE(Install.InstallDone);
    EXPECT_FALSE(Global.InstallSession);
}

TEST_F(DemoInstall, ASessionThatBreaksOffLeavesTheRestForTheNextOne) {
    Install.Begin(InstallKind::Demo);
    Control.HotSync("Anna", 0, 40);
    EXPECT_FALSE(Install.IsComplete());
    EXPECT_EQ(Install.Missing(),
              ::Lines(Words(msg::FilesWaiting, Text::Value(std::int64_t{7})), msg::PressAgain));

    Control.HotSync("Anna");

    EXPECT_TRUE(Install.IsComplete());
    EXPECT_EQ(Sorted(Control.Installed), Sorted(FilesOf(InstallKind::Demo)));
}

TEST_F(DemoInstall, NothingCountsAsInstalledOnAUserWhoWasDeletedMeanwhileAlsoWhenAnotherOfTheNameIsMade) {
    Install.Begin(InstallKind::Demo);
    std::filesystem::rename(Folder() + "HotSync/Anna", Folder() + "HotSync/Anna.deleted");
    EXPECT_FALSE(Install.IsComplete());
    EXPECT_EQ(Install.Missing(), Text(msg::UserHasGone));

    MakePath(FolderOfAnna());
    Control.HotSync("Anna");

    EXPECT_FALSE(Install.IsComplete());
    EXPECT_EQ(Install.Missing(), Text(msg::UserHasGone));
}

TEST_F(DemoInstall, AMissingFileIsNamedAndNothingIsQueued) {
    RemoveQuietly(Global.InstallPath + "ZUK2_Screenlock.prc");

    const FailureSeen seen = FailureOf([&] { Install.Begin(InstallKind::Demo); });

    EXPECT_EQ(seen.Number, 53);
    EXPECT_NE(seen.Words.find("ZUK2_Screenlock.prc"), std::string::npos);
    EXPECT_TRUE(Control.Added.empty());
}

TEST_F(DemoInstall, ADiskThatFillsUpLeavesNoHalfOfTheFilesQueued) {
    Control.RoomFor = 20;

    EXPECT_EQ(FailureNumber([&] { Install.Begin(InstallKind::Demo); }), 61);

    EXPECT_TRUE(Waiting().empty());
}

TEST_F(DemoInstall, WhatAnEarlierInstallLeftQueuedDoesNotComeAlong) {
    GivenFile("HotSync/Anna/Install/TZUK20000_ZUKOLD.pdb", "old");
    GivenFile("HotSync/Bea/Install/Tramble.prc", "hers");

    Install.Begin(InstallKind::Demo);

    EXPECT_FALSE(Exists(FolderOfAnna() + "TZUK20000_ZUKOLD.pdb"));
    EXPECT_EQ(Bytes(Folder() + "HotSync/Bea/Install/Tramble.prc"), "hers");
}

TEST_F(DemoInstall, WhatAKilledProgramHadQueuedIsTakenBackByTheNextStartAndItsUserTold) {
    Install.Begin(InstallKind::Demo);
    ASSERT_FALSE(Waiting().empty());

    EXPECT_EQ(TakeBackInstall(Control.ManagerFolder), "Anna");

    EXPECT_EQ(Waiting(), Strings());
    EXPECT_EQ(TakeBackInstall(Control.ManagerFolder), std::nullopt) << "once";
}

TEST_F(DemoInstall, WhatCannotBeTakenBackKeepsItsMarksUntilAStartHasRemovedIt) {
    struct KeepingDisk final : PassingDisk {
        bool Remove(const std::string& path) override {
            if (path.ends_with("Tramble.prc")) throw RunTimeFailure(75, path);
            return PassingDisk::Remove(path);
        }
    } disk;
    Install.Begin(InstallKind::Demo);
    Global.TheDisk = &disk;

    EXPECT_EQ(FailureNumber([&] { TakeBackInstall(Control.ManagerFolder); }), 75);
    EXPECT_EQ(Waiting(), Strings{"Tramble.prc"});
    EXPECT_TRUE(Exists(InstallMark(FolderOfAnna())));

    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(TakeBackInstall(Control.ManagerFolder), "Anna");
    EXPECT_EQ(Waiting(), Strings());
    EXPECT_FALSE(Exists(InstallMark(FolderOfAnna())));
}

TEST_F(DemoInstall, AManagersMarkThatCannotBeRemovedIsRemovedByTheNextStart) {
    const std::string mark = InstallMark(FolderOfAnna());
    struct KeepingDisk final : PassingDisk {
        bool Remove(const std::string& path) override {
            if (path == Kept) throw RunTimeFailure(75, path);
            return PassingDisk::Remove(path);
        }
        std::string Kept;
    } disk;
    disk.Kept = mark;
    Global.TheDisk = &disk;
    { HandheldInstall(Control, Control.ManagerFolder, "Anna", "1.0.0").Begin(InstallKind::Demo); }
    EXPECT_EQ(FailureNumber([&] { TakeBackInstall(Control.ManagerFolder); }), 75);
    ASSERT_TRUE(Exists(mark));

    Global.TheDisk = &NativeDisk();
    TakeBackInstall(Control.ManagerFolder);

    EXPECT_FALSE(Exists(mark));
    EXPECT_FALSE(FileExists(Global.InstallPath + "InstallBegun.txt"));
}

TEST_F(DemoInstall, AStartTakesBackNothingOfWhatNoInstallHasQueued) {
    GivenFile("HotSync/Anna/Install/Memo.pdb", "by hand");
    EXPECT_EQ(TakeBackInstall(Control.ManagerFolder), std::nullopt);
    EXPECT_EQ(Waiting(), Strings{"Memo.pdb"});

    { HandheldInstall(Control, Control.ManagerFolder, "Bea", "1.0.0").Begin(InstallKind::Demo); }
    EXPECT_EQ(TakeBackInstall(Control.ManagerFolder), std::nullopt) << "one that came to its end";
    EXPECT_EQ(Waiting(), Strings{"Memo.pdb"});
}

TEST_F(DemoInstall, AMarkThatNamesNoUserTakesBackNothingAndGoes) {
    GivenFile("HotSync/Anna/Install/Memo.pdb", "by hand");
    GivenFile("app/Install/InstallBegun.txt", "../HotSync/Anna\r\n");

    EXPECT_EQ(TakeBackInstall(Control.ManagerFolder), std::nullopt);

    EXPECT_EQ(Waiting(), Strings{"Memo.pdb"});
    EXPECT_FALSE(FileExists(Global.InstallPath + "InstallBegun.txt"));
}

TEST_F(DemoInstall, TheManagersMarkStandsAsLongAsTheInstallIsAttendedTo) {
    const std::string mark = InstallMark(FolderOfAnna());
    EXPECT_EQ(mark, Folder() + "HotSync/Anna/InstallBegun.txt");
    {
        HandheldInstall install(Control, Control.ManagerFolder, "Anna", "1.0.0");
        install.Begin(InstallKind::Program);
        EXPECT_TRUE(Exists(mark)) << "before anything is queued";
        EXPECT_EQ(Waiting(), Strings());
    }
    EXPECT_FALSE(Exists(mark));

    Install.Begin(InstallKind::Demo);
    ASSERT_TRUE(Exists(mark));
    TakeBackInstall(Control.ManagerFolder);
    EXPECT_FALSE(Exists(mark)) << "behind a kill it goes at the next start";
}

TEST_F(DemoInstall, AnInstallThatIsTakenBackLeavesNothingQueued) {
    Install.Begin(InstallKind::Demo);

    Install.ClearHSInstallDir();

    EXPECT_TRUE(Waiting().empty());
}

// ---- the live install ----

TEST_F(LiveInstall, TheFirstSessionBringsTheProgramAndTheSecondTheTablesInTheirOrder) {
    Install.Begin(InstallKind::Live);
    EXPECT_EQ(Control.Added, FilesOf(InstallKind::Live));

    Control.HotSync("Anna");
    EXPECT_TRUE(Control.Queued.empty()) << "no table while its program waits";
    EXPECT_FALSE(Install.IsComplete());
    EXPECT_TRUE(Install.AwaitsTables());

    Control.HotSync("anna");
    EXPECT_EQ(Queue(), Downloads());
    EXPECT_EQ(Control.Queued.front(), "DOWNLOAD " + Global.DBFPath + "ZUKAUDBH.DBF");
    EXPECT_TRUE(Install.IsComplete());
    EXPECT_TRUE(Install.InstallDone);
}

TEST_F(LiveInstall, NoTableIsSentToAUserWhoWasMadeAnewBetweenTheTwoSessions) {
    Install.Begin(InstallKind::Live);
    Control.HotSync("Anna");
    ASSERT_TRUE(Install.AwaitsTables());
    std::filesystem::rename(Folder() + "HotSync/Anna", Folder() + "HotSync/Anna.deleted");
    MakePath(FolderOfAnna());

    Control.HotSync("Anna");

    EXPECT_TRUE(Queue().empty());
    EXPECT_FALSE(Install.IsComplete());
    EXPECT_FALSE(Install.AwaitsTables());
}

TEST_F(LiveInstall, AKillBetweenTheTwoSessionsIsToldByTheNextStart) {
    Install.Begin(InstallKind::Live);
    Control.HotSync("Anna");
    ASSERT_TRUE(Install.AwaitsTables());

    EXPECT_EQ(TakeBackInstall(Control.ManagerFolder), "Anna");
}

TEST_F(LiveInstall, AFirstSessionThatBreaksOffIsRepeatedBeforeTheTables) {
    Install.Begin(InstallKind::Live);
    Control.HotSync("Anna", 0, 3);
    EXPECT_FALSE(Install.AwaitsTables());

    Control.HotSync("Anna");
    EXPECT_TRUE(Control.Queued.empty());
    EXPECT_TRUE(Install.AwaitsTables());
}

TEST_F(LiveInstall, TablesThatDidNotArriveAreSentOnceMore) {
    Install.Begin(InstallKind::Live);
    Control.HotSync("Anna");

    Control.HotSync("Anna", 20);
    EXPECT_FALSE(Install.IsComplete());
    EXPECT_EQ(Install.Missing(),
              ::Lines(Words(msg::TablesWaiting, Text::Value(std::int64_t{3})), msg::PressAgain));

    Control.HotSync("Anna");
    EXPECT_TRUE(Install.IsComplete());
}

TEST_F(LiveInstall, AnotherHandheldGetsNoTableAndIsNotCounted) {
    Install.Begin(InstallKind::Live);
    Control.HotSync("Anna");

    Control.HotSync("Bea");

    EXPECT_TRUE(Control.Queued.empty());
    EXPECT_EQ(Install.Missing(), ::Lines(Words(msg::OtherHandheld, T("Bea")), msg::PressAgain));
    Control.HotSync("Anna");
    EXPECT_TRUE(Install.IsComplete());
}

TEST_F(LiveInstall, NoStatusIsHeededWithoutAnInstallOrForAnotherApplication) {
    Install.Begin(InstallKind::Live);
    Control.HotSync("Anna");

    Global.InstallSession = false;
    Control.HotSync("Anna");
    Global.InstallSession = true;
    Control.Creator = 0x5A554B33;
    Control.HotSync("Anna");

    EXPECT_TRUE(Control.Queued.empty());
}

TEST_F(LiveInstall, UnknownStatusesChangeNothing) {
    Install.Begin(InstallKind::Live);
    for (const std::int32_t status : {0, 3, 4, -1, 77}) Control.Raise(status);
    Control.HotSync("Anna");
    for (const std::int32_t status : {3, 0, 99}) Control.Raise(status);

    EXPECT_TRUE(Control.Queued.empty());
    EXPECT_TRUE(Install.AwaitsTables());
}

// ---- program only ----

TEST_F(ProgramOnlyInstall, WithTheSameVersionProgramAndRuntimeGoOverInTheSameSessionAndNoTable) {
    Install.Begin(InstallKind::Program);
    EXPECT_TRUE(Control.Added.empty()) << "nothing yet";

    Control.HotSync("Anna");

    ASSERT_EQ(Control.Queued.size(), 1U);
    EXPECT_EQ(Queue(), Strings{"UPLOAD ZUKVER.DBF"});
    EXPECT_TRUE(Control.Queued.front().starts_with("UPLOAD " + Global.InstallPath));
    EXPECT_EQ(Control.Added, FilesOf(InstallKind::Program));
    EXPECT_EQ(Sorted(Control.Installed), Sorted(FilesOf(InstallKind::Program)));
    EXPECT_TRUE(Install.IsComplete());
    EXPECT_FALSE(Install.Stopped());
}

TEST_F(ProgramOnlyInstall, TheVersionIsFetchedBeforeAnythingElseAndCountedByItsOneStatus) {
    Install.Begin(InstallKind::Program);
    Control.User = "Anna";

    Control.Raise(SessionBegun);
    EXPECT_EQ(Install.InstallStage, "A>B");
    EXPECT_EQ(Install.PendingOps, 1);
    Control.Raise(7); // nobody has queued that
    EXPECT_EQ(Install.InstallStage, "A>B");
    EXPECT_TRUE(Control.Added.empty());

    Control.RunNext();
    EXPECT_EQ(Install.PendingOps, 0);
    EXPECT_EQ(Waiting().size(), 25U);
    Control.Raise(SessionEnded);
    EXPECT_TRUE(Install.InstallDone);
}

TEST_F(ProgramOnlyInstall, AnotherVersionIsRefusedAndNothingIsQueued) {
    OnHandheld = {{"112"}};
    Install.Begin(InstallKind::Program);

    Control.HotSync("Anna");

    ASSERT_TRUE(Install.Stopped());
    EXPECT_EQ(Install.Stopped()->Utf8(),
              "Version 1.12 on the handheld can not be upgraded to version 1.00. Please install the new "
              "version using the 'Demo Company' or 'Live Install' options.");
    EXPECT_TRUE(Control.Added.empty());
    EXPECT_TRUE(Control.Installed.empty());
    EXPECT_FALSE(Install.IsComplete());
}

TEST_F(ProgramOnlyInstall, AHandheldWithoutAVersionIsRefusedInAShorterBox) {
    for (const std::vector<Strings>& rows : {std::vector<Strings>{}, std::vector<Strings>{{""}}}) {
        OnHandheld = rows;
        Install.Begin(InstallKind::Program);

        Control.HotSync("Anna");

        ASSERT_TRUE(Install.Stopped());
        EXPECT_EQ(Install.Stopped()->Utf8(),
                  "Version on the handheld can not be upgraded to version 1.00. Please install the new "
                  "version using the 'Demo Company' or 'Live Install' options.");
        EXPECT_TRUE(Control.Added.empty());
    }
}

TEST_F(ProgramOnlyInstall, ARefusalIsForGoodAlsoWhenTheHandheldComesAgain) {
    OnHandheld = {{"112"}};
    Install.Begin(InstallKind::Program);
    Control.HotSync("Anna");

    OnHandheld = {{"100"}};
    Control.HotSync("Anna");

    EXPECT_TRUE(Control.Added.empty());
}

TEST_F(ProgramOnlyInstall, AVersionThatDidNotArriveIsNoneThatIsRead) {
    Install.Begin(InstallKind::Program);
    FailsToSend = true;
    // What an earlier install left behind is not this handheld's.
    GivenTable(Global.InstallPath + "HHVersion/", "ZUKVER", {{"100"}});

    Control.HotSync("Anna");

    EXPECT_TRUE(Control.Added.empty());
    EXPECT_FALSE(Install.Stopped());
    EXPECT_EQ(Install.Missing(), ::Lines(msg::VersionNotRead, msg::PressAgain));
    FailsToSend = false;
    Control.HotSync("Anna");
    EXPECT_TRUE(Install.IsComplete());
}

TEST_F(ProgramOnlyInstall, ASessionCutBetweenVersionAndFilesIsFinishedByTheNext) {
    Install.Begin(InstallKind::Program);
    Control.HotSync("Anna", 1000, 10);
    EXPECT_FALSE(Install.IsComplete());

    Control.HotSync("Anna");

    EXPECT_TRUE(Control.Queued.empty()) << "the version was good already";
    EXPECT_TRUE(Install.IsComplete());
}

TEST_F(ProgramOnlyInstall, LeavesTheOfficesOwnVersionFilesInTheInstallDirectory) {
    const std::string table = Bytes(Global.InstallPath + "ZUKVER.dbf");
    Install.Begin(InstallKind::Program);

    Control.HotSync("Anna");

    EXPECT_EQ(Bytes(Global.InstallPath + "ZUKVER.dbf"), table);
    EXPECT_TRUE(Exists(Global.InstallPath + "TZUK20000_ZUKVER.pdb"));
    EXPECT_TRUE(FilesWithExtension(Global.InstallPath + "HHVersion/", "").empty())
        << "the handheld's are gone";
}

TEST_F(ProgramOnlyInstall, FilesThatCannotBeQueuedStopItWithNoneQueued) {
    Control.RoomFor = 5;
    Install.Begin(InstallKind::Program);

    Control.HotSync("Anna");

    ASSERT_TRUE(Install.Stopped());
    EXPECT_TRUE(Install.Stopped()->Utf8().starts_with(Text(msg::NothingQueued).Utf8()));
    EXPECT_TRUE(Control.Installed.empty());
    EXPECT_TRUE(Waiting().empty());
}

TEST_F(ProgramOnlyInstall, AMissingFileIsToldBeforeTheHandheldIsAskedFor) {
    RemoveQuietly(Global.InstallPath + "Tramble.prc");

    EXPECT_EQ(FailureNumber([&] { Install.Begin(InstallKind::Program); }), 53);
}

TEST_F(ProgramOnlyInstall, AnotherHandheldIsNotAskedForItsVersion) {
    Install.Begin(InstallKind::Program);

    Control.HotSync("Bea");

    EXPECT_TRUE(Control.Queued.empty());
    EXPECT_EQ(Install.Missing(), ::Lines(Words(msg::OtherHandheld, T("Bea")), msg::PressAgain));
}

} // namespace

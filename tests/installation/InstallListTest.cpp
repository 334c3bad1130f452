#include "installation/InstallList.h"

#include "core/Dates.h"
#include "core/Messages.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/ForeignTexts.h"
#include "support/MemoryStore.h"
#include "support/Tables.h"
#include "sync/Status.h"

#include <set>

namespace {

using Strings = std::vector<std::string>;

class InstallList : public EngineTest {
protected:
    InstallList() {
        GivenAppDirectory();
        Global.Clock = [] { return DateTime{2026, 11, 22, 18, 3, 11}; };
        GivenHandhelds({"Anna", "Bea"});
    }

    static void GivenHandhelds(const Strings& ids) {
        std::vector<Strings> rows;
        for (const std::string& id : ids) rows.push_back({id});
        GivenTable(Global.DBFPath, "ZUKLINK", rows);
    }

    using Rows = std::vector<InstallRow>;
    MemoryStore Store;
};

TEST_F(InstallList, AnInstallIsNotedWithItsMomentForEachEntryOfTheUser) {
    GivenHandhelds({"Anna", "Bea", "ANNA"});

    RecordInstall(Store, "anna", msg::TypeDemo);

    EXPECT_EQ(GetList(Store), (Rows{{"Anna", "2026-11-22 18:03:11", "Demo Company"},
                                    {"Bea", "", ""},
                                    {"ANNA", "2026-11-22 18:03:11", "Demo Company"}}));
    EXPECT_EQ(Global.HHStatusInst, (Strings{"", "S", "", "S"}));
    EXPECT_EQ(Store.Read("HH3", "HHStatusInst"), "S");
}

TEST_F(InstallList, TheThreeTypesAreToldByTheirNames) {
    RecordInstall(Store, "Anna", msg::TypeLive);
    RecordInstall(Store, "Bea", msg::cmdProgram);

    EXPECT_EQ(GetList(Store).at(0).HHStatusType, "Live Data");
    EXPECT_EQ(GetList(Store).at(1).HHStatusType, "Program Only");
}

TEST_F(InstallList, TheTypeIsKeptInEnglishAndShownInTheLanguage) {
    UseForeignTexts();

    RecordInstall(Store, "Anna", msg::TypeLive);

    const InstallRow row = GetList(Store).at(0);
    EXPECT_EQ(row.HHStatusType, "Live Data");
    EXPECT_EQ(ShownType(row).CodePage(), ForeignText(msg::TypeLive));
    EXPECT_EQ(ShownType({"", "", ForeignText(msg::cmdProgram)}).CodePage(), ForeignText(msg::cmdProgram));
    EXPECT_EQ(ShownType({"", "", "of old"}).CodePage(), "of old");
}

TEST_F(InstallList, WhatStandsInTheStoreIsShownTrimmed) {
    Store.Set("HH1", "HHSyncID", " Anna ");
    Store.Set("HH1", "HHStatusDT", " once  ");
    Store.Set("HH1", "HHStatusType", "Live Data ");

    EXPECT_EQ(GetList(Store), (Rows{{"Anna", "once", "Live Data"}}));
}

TEST_F(InstallList, AHandheldThatIsAddedToTheLinksComesInAndTheOthersKeepTheirInstalls) {
    RecordInstall(Store, "Bea", msg::TypeDemo);
    GivenHandhelds({"Aaron", "Anna", "Bea"});

    TakeInLinks(Store);

    EXPECT_EQ(GetList(Store),
              (Rows{{"Aaron", "", ""}, {"Anna", "", ""}, {"Bea", "2026-11-22 18:03:11", "Demo Company"}}));
    EXPECT_EQ(Global.HHStatusInst, (Strings{"", "", "", "S"})) << "the bricks go by rows";
}

TEST_F(InstallList, AHandheldThatIsRemovedFromTheLinksLeavesTheList) {
    RecordInstall(Store, "Bea", msg::TypeDemo);
    GivenHandhelds({"Anna"});

    TakeInLinks(Store);

    EXPECT_EQ(GetList(Store), (Rows{{"Anna", "", ""}}));
}

TEST_F(InstallList, AHandheldAddedSinceTheListWasMadeIsNotedToo) {
    GetHHStatusInst(Store);
    GivenHandhelds({"Anna", "Bea", "Carl"});

    RecordInstall(Store, "Carl", msg::TypeDemo);

    EXPECT_EQ(GetList(Store).at(2).HHStatusType, "Demo Company");
}

TEST_F(InstallList, AResetForgetsTheInstallsOfAllHandhelds) {
    RecordInstall(Store, "Anna", msg::TypeDemo);
    RecordInstall(Store, "Bea", msg::TypeLive);

    ResetInstalls(Store);

    EXPECT_EQ(GetList(Store), (Rows{{"Anna", "", ""}, {"Bea", "", ""}}));
    EXPECT_EQ(Global.HHStatusInst, (Strings{"", "", ""}));
}

TEST_F(InstallList, AResetWithNoHandheldsOnRecordLeavesAnEmptyList) {
    GivenHandhelds({});

    ResetInstalls(Store);

    EXPECT_TRUE(GetList(Store).empty());
    EXPECT_EQ(Global.HHCount, 0);
}

/// Each content that a kill could leave in the store, by its handhelds with an install.
using Left = std::set<Strings>;

Strings Installed(const StatusStore& store) {
    Strings ids;
    for (const InstallRow& row : GetList(store)) {
        if (!row.HHStatusDT.empty()) ids.push_back(row.HHSyncID);
    }
    return ids;
}

TEST_F(InstallList, AKillBetweenAnyTwoChangesOfTheStoreForgetsNoInstall) {
    RecordInstall(Store, "Anna", msg::TypeDemo);
    RecordInstall(Store, "Bea", msg::TypeLive);
    Left left;
    Store.Replaced = [&] { left.insert(Installed(Store)); };
    GivenHandhelds({"Aaron", "Anna", "Bea"});

    TakeInLinks(Store);
    EXPECT_EQ(left, (Left{{"Anna", "Bea"}}));

    left.clear();
    GivenHandhelds({"Aaron", "Abel", "Anna", "Bea"});
    RecordInstall(Store, "Abel", msg::TypeDemo);
    EXPECT_EQ(left, (Left{{"Anna", "Bea"}, {"Abel", "Anna", "Bea"}}));

    left.clear();
    ResetInstalls(Store);
    EXPECT_EQ(left, Left{{}});
}

TEST_F(InstallList, AStoreThatCannotBeWrittenKeepsWhatItHeld) {
    RecordInstall(Store, "Bea", msg::TypeDemo);
    GivenHandhelds({"Anna", "Bea", "Carl"});
    const auto before = Store.Values;
    Store.Refuses = true;

    EXPECT_EQ(FailureNumber([&] { TakeInLinks(Store); }), 75);
    EXPECT_EQ(FailureNumber([&] { ResetInstalls(Store); }), 75);
    EXPECT_EQ(FailureNumber([&] { RecordInstall(Store, "Anna", msg::TypeLive); }), 75);

    EXPECT_EQ(Store.Values, before);
}

TEST_F(InstallList, ALinksTableThatCannotBeReadLosesNoInstall) {
    RecordInstall(Store, "Anna", msg::TypeDemo);
    GivenFile("app/DBFFiles/ZUKLINK.dbf", "no table");

    EXPECT_NE(FailureNumber([&] { TakeInLinks(Store); }), 0);
    EXPECT_NE(FailureNumber([&] { ResetInstalls(Store); }), 0);

    EXPECT_EQ(GetList(Store).at(0).HHStatusType, "Demo Company");
}

} // namespace

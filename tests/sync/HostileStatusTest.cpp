#include "core/Globals.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/Rubbish.h"
#include "sync/Status.h"

namespace {

class HostileStatusTest : public EngineTest {
protected:
    HostileStatusTest() { GivenAppDirectory(); }

    static void ExpectListsOfOneLength() {
        const auto size = static_cast<std::size_t>(Global.HHCount) + 1;
        for (const auto* list : {&Global.HHSyncID, &Global.HHStatus, &Global.HHStatusStd,
                                 &Global.HHStatusInst, &Global.HHStatusDT, &Global.HHStatusType}) {
            ASSERT_EQ(list->size(), size);
        }
    }
};

TEST_F(HostileStatusTest, RubbishIsAListWithAnEntryInEveryColumnForEachLine) {
    Global.HHCount = 2;
    Global.HHSyncID = {"", "Anna", "Bea"};
    UpdateHHStatus();
    for (const std::string& content : Rubbish(Bytes(Global.InstallPath + "HSStatus.dat"))) {
        GivenFile("app/Install/HSStatus.dat", content);

        OnlyRunTimeFailures([] {
            GetHHStatus();
            UpdateHHStatus();
        });

        ExpectListsOfOneLength();
        ASSERT_EQ(Lines(Global.InstallPath + "HSStatus.dat").size(),
                  static_cast<std::size_t>(Global.HHCount));
    }
}

TEST_F(HostileStatusTest, AFileThatCannotBeReadWholeLeavesTheListAsItWas) {
    GivenFile("app/Install/HSStatus.dat", "Anna\r\nBea\r\n");
    GetHHStatus();
    GivenFile("app/Install/HSStatus.dat", "Carl\r\n" + std::string(std::size_t{2} << 20, 'x'));

    EXPECT_EQ(FailureOf(GetHHStatus).Number, 6);

    EXPECT_EQ(Global.HHCount, 2);
    EXPECT_EQ(Global.HHSyncID[2], "Bea");
    ExpectListsOfOneLength();
}

} // namespace

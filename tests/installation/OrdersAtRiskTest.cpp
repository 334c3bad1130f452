#include "installation/OrdersAtRisk.h"

#include "core/Messages.h"
#include "installation/InstallList.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/MemoryStore.h"
#include "support/Tables.h"

namespace {

using Strings = std::vector<std::string>;

/// An office without orders; Anna's handheld is new, Bea's has been in use.
class OrdersAtRisk : public EngineTest {
protected:
    OrdersAtRisk() {
        GivenAppDirectory();
        GivenTable(Global.DBFPath, "ZUKORHDR");
        GivenTable(
            Global.DBFPath, "ZUKLINK",
            {RowOf("ZUKLINK", {{"LK_HOTSYNC", "Anna"}, {"LK_SERIAL", "typed in"}}),
             RowOf("ZUKLINK", {{"LK_HOTSYNC", "Bea"}, {"LK_MACH_ID", "B"}, {"LK_LSTONUM", "001234"}})});
    }

    static void GivenOrders(const Strings& codes) {
        std::vector<Strings> rows;
        for (const std::string& code : codes) rows.push_back({code});
        GivenTable(Global.DBFPath, "ZUKORHDR", rows);
    }

    std::string Asked(InstallKind kind, std::string_view user) const {
        const std::optional<Text> question = AskBeforeInstall(kind, user, Store);
        return question ? question->Utf8() : "nothing";
    }

    static std::string Words(MessageId text) { return Text(text).Utf8(); }
    static std::string Anyway() { return "\n\n" + Words(msg::InstallAnyway); }

    const std::string InUse_ = Words(msg::HandheldMayHoldOrders);
    const std::string BeasOrders_ = InUse_ + " " + Words(msg::LastOrderKnown) + " B001234";
    MemoryStore Store;
};

TEST_F(OrdersAtRisk, ANewHandheldAndAnOfficeWithoutOrdersAreNotAskedAbout) {
    for (const InstallKind kind : {InstallKind::Demo, InstallKind::Live, InstallKind::Program})
        EXPECT_EQ(Asked(kind, "Anna"), "nothing");
    EXPECT_EQ(Asked(InstallKind::Demo, "Carl"), "nothing") << "one that the Links table lacks";
}

TEST_F(OrdersAtRisk, ALiveInstallOverOrdersOfThePCAsksWithTheirNumber) {
    GivenOrders({"A000001", "A000002", "A000003"});

    EXPECT_EQ(Asked(InstallKind::Live, "Anna"), Words(msg::OrdersGoAlong) + " 3" + Anyway());
    EXPECT_EQ(Asked(InstallKind::Demo, "Anna"), "nothing") << "its data are its own";
    EXPECT_EQ(Asked(InstallKind::Program, "Anna"), "nothing");
}

TEST_F(OrdersAtRisk, AnOrderThatIsMarkedAsDeletedDoesNotTravelAndIsNotCounted) {
    GivenFile("app/DBFFiles/ZUKOrHdr.dbf",
              EmptyTableOf("ZUKORHDR").Row({"A000001"}, '*').Row({"A000002"}).Bytes());

    EXPECT_EQ(Asked(InstallKind::Live, "Anna"), Words(msg::OrdersGoAlong) + " 1" + Anyway());
}

TEST_F(OrdersAtRisk, AHandheldThatHasBeenInUseIsAskedAboutWithTheLastNumberThatThePCKnows) {
    EXPECT_EQ(Asked(InstallKind::Live, "Bea"), BeasOrders_ + Anyway());
    EXPECT_EQ(Asked(InstallKind::Live, "BEA"), BeasOrders_ + Anyway()) << "whatever the case";
    EXPECT_EQ(Asked(InstallKind::Program, "Bea"), "nothing") << "its tables stay";
}

TEST_F(OrdersAtRisk, OfADemoOnAHandheldThatHasUploadedItIsToldThatItsNumbersMayBeginAnew) {
    EXPECT_EQ(Asked(InstallKind::Demo, "Bea"), BeasOrders_ + "\n\n" + Words(msg::DemoBeginsAgain) + Anyway());
}

TEST_F(OrdersAtRisk, AHandheldThatWasInstalledButHasNeverUploadedMayHoldItsFirstOrders) {
    RecordInstall(Store, "Anna", msg::TypeDemo);

    EXPECT_EQ(Asked(InstallKind::Live, "Anna"), InUse_ + Anyway());
    EXPECT_EQ(Asked(InstallKind::Demo, "anna"), InUse_ + Anyway());
}

TEST_F(OrdersAtRisk, OrdersOnBothSidesAreOneQuestion) {
    GivenOrders({"A000001"});

    EXPECT_EQ(Asked(InstallKind::Live, "Bea"), Words(msg::OrdersGoAlong) + " 1\n\n" + BeasOrders_ + Anyway());
}

TEST_F(OrdersAtRisk, ATableThatCannotBeReadIsAFailureAndNoSilence) {
    GivenFile("app/DBFFiles/ZUKOrHdr.dbf", "no table");
    EXPECT_NE(FailureNumber([&] { Asked(InstallKind::Live, "Anna"); }), 0);
    EXPECT_EQ(Asked(InstallKind::Demo, "Anna"), "nothing");

    GivenFile("app/DBFFiles/ZUKLINK.dbf", "no table");
    EXPECT_NE(FailureNumber([&] { Asked(InstallKind::Demo, "Anna"); }), 0);
}

} // namespace

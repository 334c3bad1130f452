#include "sync/TableTemplates.h"

#include "core/Messages.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/Rubbish.h"
#include "sync/TableSelection.h"

#include <tuple>

namespace {

class TableTemplatesTest : public EngineTest {
protected:
    std::string Template(const std::string& content) { return GivenFile("x.ust", content); }
};

TEST_F(TableTemplatesTest, EachKindHasItsLinesInItsOrder) {
    const std::string path = Folder() + "x";
    WriteTemplate(path, UploadChoice{true, false, true, false, true, false});
    EXPECT_EQ(Bytes(path),
              "Orders=1\r\nAudits=0\r\nHandheld Totals=1\r\nPrint Spooler=0\r\nCustomers=1\r\nItems=0\r\n");
    WriteTemplate(path, DownloadChoice{false, true, false});
    EXPECT_EQ(Bytes(path), "Customers=0\r\nItems=1\r\nSetup Tables=0\r\n");
    WriteTemplate(path, ClearChoice{true, false, true});
    EXPECT_EQ(Bytes(path), "Order Tables=1\r\nAudit Tables=0\r\nHandheld Totals=1\r\n");
}

TEST_F(TableTemplatesTest, WhatIsWrittenIsReadBack) {
    const std::string path = Folder() + "x";
    for (int bits = 0; bits < 64; ++bits) {
        const auto bit = [bits](int place) { return (bits >> place & 1) != 0; };
        const UploadChoice choice{bit(0), bit(1), bit(2), bit(3), bit(4), bit(5)};
        WriteTemplate(path, choice);
        UploadChoice read{!bit(0), !bit(1), !bit(2), !bit(3), !bit(4), !bit(5)};
        ReadTemplate(path, read);
        EXPECT_EQ(read, choice);
    }
}

TEST_F(TableTemplatesTest, AMissingLineLeavesItsBoxAsItStood) {
    UploadChoice choice{true, true, false, false, true, false};
    ReadTemplate(Template("Audits=0\r\nItems=1\r\n"), choice);
    EXPECT_EQ(choice, (UploadChoice{true, false, false, false, true, true}));
}

TEST_F(TableTemplatesTest, LinesOfAnotherKindAreSkipped) {
    DownloadChoice choice;
    ReadTemplate(Template("\r\n=1\r\nOrders=1\r\nCustomers and more=1\r\nItems1\r\nSetup Tables=1"), choice);
    EXPECT_EQ(choice, (DownloadChoice{.Setup = true}));
}

TEST_F(TableTemplatesTest, ALineGoesByItsNameWithoutRegardToCaseAndByItsLastCharacter) {
    const std::tuple<const char*, std::optional<bool>> lines[] = {
        {"Orders=1", true},          {"ORDERS=1", true},         {"Orders =1  ", true},
        {"Orders=0", false},         {"Orders=2", false},        {"Orders=", false},
        {"Orders=x1", true},         {"Orders=1x", false},       {"Orders=\xB9", false},
        {"Order=1", std::nullopt},   {"Orders", std::nullopt},   {"", std::nullopt},
        {" Orders=1", std::nullopt}, {"Orders 1", std::nullopt}, {"=Orders=1", std::nullopt}};
    for (const auto& [line, on] : lines) EXPECT_EQ(TurnsOn(line, msg::UploadOrders), on) << line;
}

TEST_F(TableTemplatesTest, AGroupOfAnotherLanguageIsItsWholeNameAndTakesNoLineOfAnother) {
    Global.Replacements[msg::TablesItems.Number] = {"Order", 0};
    EXPECT_EQ(TurnsOnByBeginning("Order Tables1", msg::TablesItems), std::nullopt);
    EXPECT_EQ(TurnsOnByBeginning("Order1", msg::TablesItems), true);
    EXPECT_EQ(TurnsOnByBeginning("Order=0 ", msg::TablesItems), false);
    EXPECT_EQ(TurnsOnByBeginning("Items1", msg::TablesItems), true);
    EXPECT_EQ(SelectionValue("Orders=1", msg::TablesItems), 0);
    EXPECT_EQ(SelectionValue("order = 1", msg::TablesItems), 1);

    Global.Replacements[msg::TablesItems.Number] = {"Order Tables", 0};
    EXPECT_EQ(TurnsOnByBeginning("Order Tables1", msg::TablesItems), std::nullopt);
    EXPECT_EQ(TurnsOn("Order Tables=1", msg::TablesItems), std::nullopt);
    EXPECT_EQ(TurnsOnByBeginning("1", msg::TablesItems), std::nullopt);
}

// ---- clearing tables of the PC ----

ClearPlan PlanOf(std::initializer_list<ClearGroup> groups) {
    ClearPlan plan;
    for (const ClearGroup group : groups) plan.Choose(group);
    return plan;
}

TEST_F(TableTemplatesTest, AClearTemplateHasALineAGroupWithTheDigitDirectlyBehindTheName) {
    const std::string path = Folder() + "x.pct";

    WriteTemplate(path, PlanOf({ClearGroup::OrHdr, ClearGroup::AudHH, ClearGroup::TotalPC}));

    EXPECT_EQ(Bytes(path), "Order Tables1\r\nAudit Tables0\r\nHandheld Totals1\r\nBarcode Index0\r\n"
                           "Company Info0\r\nCustomers0\r\nHelp0\r\nItems0\r\nPrint Settings0\r\n"
                           "Setup Tables0\r\nSales Tax0\r\nPayments0\r\nLinks0\r\nPC Totals1\r\n");
}

TEST_F(TableTemplatesTest, EachGroupOfAClearTemplateIsReadBackAlone) {
    const std::string path = Folder() + "x.pct";
    for (std::size_t group = 0; group < ClearGroups; ++group) {
        const ClearPlan plan = PlanOf({static_cast<ClearGroup>(group)});
        WriteTemplate(path, plan);
        ClearPlan read;
        for (std::size_t other = 0; other < ClearGroups; ++other) read.Chosen[other] = other != group;
        ReadTemplate(path, read);
        EXPECT_EQ(read, plan) << group;
    }
}

TEST_F(TableTemplatesTest, ALineOfAClearTemplateGoesByItsBeginningAndItsLastCharacter) {
    const std::tuple<const char*, std::optional<bool>> lines[] = {
        {"Order Tables1", true},        {"ORDER TABLES1", true},
        {"Order Tables=1  ", true},     {"Order Tables and more1", true},
        {"Order Tables0", false},       {"Order Tables", false},
        {"Order Tables2", false},       {"Order Tables10", false},
        {"Order Tables1x", false},      {" Order Tables1", std::nullopt},
        {"Order Table1", std::nullopt}, {"1", std::nullopt},
        {"   ", std::nullopt},          {"", std::nullopt}};
    for (const auto& [line, on] : lines) EXPECT_EQ(TurnsOnByBeginning(line, msg::TablesOrders), on) << line;
}

TEST_F(TableTemplatesTest, OtherLinesOfAClearTemplateAreIgnoredAndMissingOnesLeaveTheirBox) {
    ClearPlan plan = PlanOf({ClearGroup::Help, ClearGroup::Pay});
    ReadTemplate(Template("\r\nOrders1\r\nwhatever1\r\nPAYMENTS0\r\nLinks1"), plan);
    EXPECT_EQ(plan, PlanOf({ClearGroup::Help, ClearGroup::Links}));
}

TEST_F(TableTemplatesTest, AClearTemplateThatCannotBeReadChangesNoBox) {
    ClearPlan plan = PlanOf({ClearGroup::Help});
    EXPECT_EQ(FailureOf([&] { ReadTemplate(Folder() + "none.pct", plan); }).Number, 53);
    const std::string tooLong = Template("Order Tables1\r\n" + std::string(5 << 20, 'x'));
    EXPECT_NE(FailureNumber([&] { ReadTemplate(tooLong, plan); }), 0);
    EXPECT_EQ(plan, PlanOf({ClearGroup::Help}));
}

// ---- all of them ----

TEST_F(TableTemplatesTest, ATemplateThatIsNotThereChangesNoBox) {
    ClearChoice choice{true, true, false};
    EXPECT_EQ(FailureOf([&] { ReadTemplate(Folder() + "none.dct", choice); }).Number, 53);
    EXPECT_EQ(choice, (ClearChoice{true, true, false}));
}

TEST_F(TableTemplatesTest, AFailedWriteLeavesTheOldTemplate) {
    const std::string path = Template("Orders=1\r\n");
    for (int call = 1; call <= 3; ++call) {
        FaultyDisk disk(call);
        Global.TheDisk = &disk;
        EXPECT_NE(FailureNumber([&] { WriteTemplate(path, UploadChoice{}); }), 0) << call;
        Global.TheDisk = &NativeDisk();
    }
    EXPECT_EQ(Bytes(path), "Orders=1\r\n");
}

TEST_F(TableTemplatesTest, RubbishDoesNoHarm) {
    for (const std::string& content : Rubbish("Orders=1\r\nAudits=1\r\n")) {
        UploadChoice choice;
        ClearPlan plan;
        const std::string path = Template(content);
        OnlyRunTimeFailures([&] { ReadTemplate(path, choice); });
        OnlyRunTimeFailures([&] { ReadTemplate(path, plan); });
    }
}

} // namespace

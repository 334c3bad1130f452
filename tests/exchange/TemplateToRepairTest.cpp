#include "exchange/TemplateToRepair.h"

#include "support/EngineTest.h"

namespace {

class TemplateToRepairTest : public EngineTest {
protected:
    TemplateToRepairTest() { Global.QCViewMode = true; }

    static std::string Of(const std::string& reported) {
        Global.QCViewRecords = reported;
        return TemplateToRepair({".cst", ".itm"});
    }
};

TEST_F(TemplateToRepairTest, IsTheReportedNameAsTheDiskWritesIt) {
    EXPECT_EQ(Of("Firms.cst"), "Firms.cst");
    EXPECT_EQ(Of("STOCK.ITM"), "STOCK.ITM");
    EXPECT_EQ(Of("Gro\xDF.cst"), "Gro\xC3\x9F.cst");
}

TEST_F(TemplateToRepairTest, IsNoneOfAnotherKindNorOneThatLeadsElsewhere) {
    for (const char* reported :
         {"Web.xor", "Firms", "", "1, 2, 3", "../Firms.cst", "..\\Firms.cst", "C:x.cst"})
        EXPECT_EQ(Of(reported), "") << reported;
}

TEST_F(TemplateToRepairTest, IsNoneWithoutTheReportAndWhereTemplatesAreKept) {
    Global.TemplateEditMode = true;
    EXPECT_EQ(Of("Firms.cst"), "");
    Global.TemplateEditMode = false;
    Global.QCViewMode = false;
    EXPECT_EQ(Of("Firms.cst"), "");
}

TEST_F(TemplateToRepairTest, EndsWithItsScreen) {
    ASSERT_EQ(Of("Firms.cst"), "Firms.cst");

    EndRepair();

    EXPECT_EQ(TemplateToRepair({".cst"}), "");
}

} // namespace

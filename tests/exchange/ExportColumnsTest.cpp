#include "exchange/ExportColumns.h"

#include <gtest/gtest.h>

namespace {

using Rows = std::vector<std::string>;

TEST(ExportColumns, AFieldCanBeAddedAnyNumberOfTimes) {
    ExportColumns columns;
    columns.Add("L_QTY", "", std::nullopt);
    columns.Add("L_QTY", "", std::nullopt);

    columns.Add("H_CUSTCODE", "", 0);
    columns.Add("H_ORDCODE", "", 2);

    EXPECT_EQ(columns.Rows(), (Rows{"H_CUSTCODE", "L_QTY", "L_QTY", "H_ORDCODE"}));
}

TEST(ExportColumns, TheTwoDatesGetAFormatAndNoOtherFieldDoes) {
    ExportColumns columns;

    columns.Add("H_ORDDATE", "dd.mm.yyyy", std::nullopt);
    columns.Add("H_SHIPDATE", "", std::nullopt);
    columns.Add("H_DATE1", "dd.mm.yyyy", std::nullopt);

    EXPECT_EQ(columns.Rows(),
              (Rows{"H_ORDDATE Format: dd.mm.yyyy", "H_SHIPDATE Format: mmddyyyy", "H_DATE1"}));
}

TEST(ExportColumns, AnOperatorAwaitsItsOperand) {
    ExportColumns columns({"L_QTY", "L_PRICE"});

    EXPECT_EQ(columns.Operate(" * ", 0), 0U);
    EXPECT_TRUE(columns.CalcPending());
    EXPECT_EQ(columns.Operate(" + ", 1), std::nullopt) << "one is awaited already";
    columns.Add("L_PRICE", "", 0);

    EXPECT_FALSE(columns.CalcPending());
    EXPECT_EQ(columns.Rows(), (Rows{"L_QTY * L_PRICE", "L_PRICE"}));
}

TEST(ExportColumns, ARowHasOneOperatorAtMost) {
    ExportColumns columns({"L_QTY * L_PRICE"});

    EXPECT_EQ(columns.Operate(" + ", std::nullopt), std::nullopt);
    EXPECT_FALSE(columns.CalcPending());
}

TEST(ExportColumns, AnOperatorOnADateStandsBehindItsFormat) {
    ExportColumns columns({"H_ORDDATE Format: mmddyyyy"});

    columns.Operate(" + ", std::nullopt);
    columns.AddNumber("1", std::nullopt);

    EXPECT_EQ(columns.Rows(), Rows{"H_ORDDATE Format: mmddyyyy + [1]"});
}

TEST(ExportColumns, ANumberIsAnOperandOrARowOfItsOwn) {
    ExportColumns columns({"L_QTY"});

    EXPECT_TRUE(columns.AddNumber(" 1.5 ", std::nullopt));
    EXPECT_FALSE(columns.AddNumber("a lot", std::nullopt));
    EXPECT_FALSE(columns.AddNumber("", std::nullopt));
    columns.Operate(" / ", 0);
    EXPECT_TRUE(columns.AddNumber("12", 0));

    EXPECT_EQ(columns.Rows(), (Rows{"L_QTY / [12]", "[1.5]"}));
}

TEST(ExportColumns, ADateThatIsAnOperandHasNoFormat) {
    ExportColumns columns({"L_QTY"});
    columns.Operate(" + ", std::nullopt);

    columns.Add("H_ORDDATE", "dd", std::nullopt);

    EXPECT_EQ(columns.Rows(), Rows{"L_QTY + H_ORDDATE"});
}

TEST(ExportColumns, ALiteralIsNotAddedWhileAnOperandIsAwaited) {
    ExportColumns columns;
    columns.AddLiteral("WEB");
    columns.AddLiteral("");
    columns.Operate(" + ", std::nullopt);

    columns.AddLiteral("X");

    EXPECT_EQ(columns.Rows(), Rows{"Literal = WEB + "});
}

TEST(ExportColumns, AnOperatorGoesWithItsRow) {
    ExportColumns columns({"L_QTY", "L_PRICE"});
    columns.Operate(" * ", 1);

    columns.Remove(1);

    EXPECT_FALSE(columns.CalcPending());
    EXPECT_EQ(columns.Rows(), Rows{"L_QTY"});
}

} // namespace

#include "exchange/ImportMapping.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using Rows = std::vector<std::string>;

TEST(ImportMapping, FieldsAreAddedAtTheEndOrBeforeTheRowThatIsSelected) {
    ImportMapping mapping;
    for (const char* field : {"C_CODE", "C_NAME", "C_CITY"}) mapping.Add(field, std::nullopt);

    mapping.Add("C_PHONE", 1);
    mapping.Add("C_ZIP", 3);

    EXPECT_EQ(mapping.Selected(), (Rows{"C_CODE", "C_PHONE", "C_NAME", "C_CITY", "C_ZIP"}));
}

TEST(ImportMapping, AFieldInUseIsRefusedQuietly) {
    ImportMapping mapping({"C_CODE; C_SEARCH"}, {"C_SHIPVIA = Ground"});

    EXPECT_FALSE(mapping.Add("C_SEARCH", std::nullopt));
    EXPECT_FALSE(mapping.Add("C_SHIPVIA", std::nullopt));
    EXPECT_FALSE(mapping.AddLiteral("C_CODE", "X"));

    EXPECT_EQ(mapping.Selected(), Rows{"C_CODE; C_SEARCH"});
    EXPECT_EQ(mapping.Literals(), Rows{"C_SHIPVIA = Ground"});
}

TEST(ImportMapping, AFieldWhoseNameBeginsAnotherInUseCountsAsInUse) {
    const ImportMapping mapping({"C_CODE2"}, {});

    EXPECT_TRUE(mapping.IsInUse("C_CODE"));
    EXPECT_FALSE(mapping.IsInUse("C_CODE22"));
}

TEST(ImportMapping, IgnoreIsSelectedAgainAndAgainUnlessALiteralHoldsTheWord) {
    ImportMapping mapping;

    EXPECT_TRUE(mapping.Add("Ignore", std::nullopt));
    EXPECT_TRUE(mapping.Add("Ignore", std::nullopt));
    mapping.AddLiteral("C_NAME", "Ignore this");

    EXPECT_FALSE(mapping.Add("Ignore", std::nullopt));
    EXPECT_EQ(mapping.Selected().size(), 2U);
}

TEST(ImportMapping, AndWithNothingSelectedJoinsToTheLastRow) {
    ImportMapping mapping({"C_CODE", "C_NAME"}, {});

    EXPECT_EQ(mapping.And(std::nullopt), 1U);
    mapping.Add("C_ALTSRCH", std::nullopt);

    EXPECT_EQ(mapping.Selected(), (Rows{"C_CODE", "C_NAME; C_ALTSRCH"}));
    EXPECT_FALSE(mapping.AndPending());
}

TEST(ImportMapping, AndOnASelectedRowJoinsThere) {
    ImportMapping mapping({"C_CODE", "C_NAME"}, {});

    EXPECT_EQ(mapping.And(0), 0U);
    mapping.Add("C_SEARCH", 0);
    mapping.Add("C_CITY", std::nullopt);

    EXPECT_EQ(mapping.Selected(), (Rows{"C_CODE; C_SEARCH", "C_NAME", "C_CITY"}));
}

TEST(ImportMapping, AndNeedsARowAndIsNotGivenTwice) {
    ImportMapping mapping;
    EXPECT_EQ(mapping.And(std::nullopt), std::nullopt);

    mapping.Add("C_CODE", std::nullopt);
    EXPECT_EQ(mapping.And(std::nullopt), 0U);

    EXPECT_EQ(mapping.And(std::nullopt), std::nullopt);
    EXPECT_EQ(mapping.Selected(), Rows{"C_CODE; "});
}

TEST(ImportMapping, AnAndGoesWithTheRowAtWhoseEndItStands) {
    ImportMapping mapping({"C_CODE", "C_NAME"}, {});
    mapping.And(1);

    mapping.RemoveSelected(1);
    mapping.Add("C_CITY", std::nullopt);

    EXPECT_EQ(mapping.Selected(), (Rows{"C_CODE", "C_CITY"}));
}

TEST(ImportMapping, AnEmptyLiteralIsNone) {
    ImportMapping mapping;

    EXPECT_FALSE(mapping.AddLiteral("C_NAME", ""));
    EXPECT_TRUE(mapping.AddLiteral("C_NAME", "a = b"));

    EXPECT_EQ(mapping.Literals(), Rows{"C_NAME = a = b"});
}

TEST(ImportMapping, ARowThatIsNotThereIsRefusedInBothLists) {
    ImportMapping mapping({"C_CODE"}, {"C_NAME = a"});

    EXPECT_THROW(mapping.RemoveSelected(1), std::out_of_range);
    EXPECT_THROW(mapping.RemoveLiteral(1), std::out_of_range);
    EXPECT_EQ(mapping.Selected().size(), 1U);
    mapping.RemoveLiteral(0);

    EXPECT_EQ(mapping.Literals(), Rows{});
}

TEST(ImportMapping, ARowNamesOneFieldOrSeveral) {
    EXPECT_EQ(ImportMapping::FieldsOfRow("C_CODE"), Rows{"C_CODE"});
    EXPECT_EQ(ImportMapping::FieldsOfRow("C_CODE; C_SEARCH"), (Rows{"C_CODE", "C_SEARCH"}));
    EXPECT_EQ(ImportMapping::FieldsOfRow("C_CODE; "), Rows{"C_CODE"});
    EXPECT_EQ(ImportMapping::FieldsOfRow(""), Rows{});
}

} // namespace

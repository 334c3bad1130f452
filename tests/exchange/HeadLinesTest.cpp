#include "exchange/HeadLines.h"

#include "core/Paths.h"
#include "core/SafeFile.h"
#include "support/EngineTest.h"
#include "support/RefusingDisk.h"

namespace {

class HeadLinesTest : public EngineTest {
protected:
    HeadLines Of(const std::string& content, std::int32_t startLine) {
        return ReadHeadLines(GivenFile("cust.csv", content), startLine);
    }

    std::string Template() const { return Folder() + "Cust.cst"; }
};

TEST_F(HeadLinesTest, AreTheLinesAboveTheData) {
    EXPECT_EQ(Of("List\nCode,Name\nA1,Acme\n", 3).Lines, (std::vector<std::string>{"List", "Code,Name"}));
    EXPECT_TRUE(Of("A1,Acme\n", 1).Lines.empty());
    EXPECT_EQ(Of("only\n", 9).Lines, std::vector<std::string>{"only"});
}

TEST_F(HeadLinesTest, AreRememberedBesideTheTemplate) {
    const HeadLines head = Of("Code,Name\nA1,Acme\n", 2);

    RememberHeadLines(Template(), head);

    EXPECT_EQ(RememberedHeadLines(Template()), head);
    EXPECT_EQ(FirstChange(RememberedHeadLines(Template()), head), std::nullopt);
    EXPECT_EQ(ReadWholeFile(Template() + ".head"), "StartLine=2\r\nCode,Name\r\n");
}

TEST_F(HeadLinesTest, AColumnThatWasAddedIsAChange) {
    RememberHeadLines(Template(), Of("List\nCode,Name\nA1,Acme\n", 3));

    const auto change =
        FirstChange(RememberedHeadLines(Template()), Of("List\nCode,Group,Name\nA1,G,Acme\n", 3));

    ASSERT_TRUE(change);
    EXPECT_EQ(change->Before, "Code,Name");
    EXPECT_EQ(change->Now, "Code,Group,Name");
}

TEST_F(HeadLinesTest, AMovedStartLineIsTheOperatorsOwnDoing) {
    RememberHeadLines(Template(), Of("Code,Name\nA1,Acme\n", 2));

    EXPECT_FALSE(FirstChange(RememberedHeadLines(Template()), Of("List\nCode,Name\nA1,Acme\n", 3)));
}

TEST_F(HeadLinesTest, AFileThatHasBecomeShorterIsAChange) {
    RememberHeadLines(Template(), Of("List\nCode,Name\nA1,Acme\n", 3));

    const auto change = FirstChange(RememberedHeadLines(Template()), Of("List\n", 3));

    ASSERT_TRUE(change);
    EXPECT_EQ(change->Before, "Code,Name");
    EXPECT_EQ(change->Now, "");
}

TEST_F(HeadLinesTest, WithoutLinesAboveNothingIsKept) {
    RememberHeadLines(Template(), Of("Code,Name\nA1,Acme\n", 2));

    RememberHeadLines(Template(), Of("A1,Acme\n", 1));

    EXPECT_FALSE(FileExists(Template() + ".head"));
    EXPECT_EQ(RememberedHeadLines(Template()), std::nullopt);
}

TEST_F(HeadLinesTest, RubbishInTheirFileCountsAsNothingRemembered) {
    GivenFile("Cust.cst.head", "whatever\r\nCode,Name\r\n");

    EXPECT_EQ(RememberedHeadLines(Template()), std::nullopt);
}

TEST_F(HeadLinesTest, GoWithTheirTemplate) {
    RememberHeadLines(Template(), Of("Code,Name\nA1,Acme\n", 2));

    ForgetHeadLines(Template());

    EXPECT_FALSE(FileExists(Template() + ".head"));
}

} // namespace

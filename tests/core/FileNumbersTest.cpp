#include "core/FileNumbers.h"

#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/RefusingDisk.h"

namespace {

class FileNumbersTest : public EngineTest {
protected:
    FileNumbers::Claim Open(const std::string& name) {
        return numbers_.Open(NativeDisk(), GivenFile(name, name), Access::Read);
    }
    std::string Content(const FileNumbers::Claim& claim) {
        DiskFile& file = numbers_.Use(claim);
        std::string bytes(file.Size(), '\0');
        file.ReadAt(0, bytes.data(), bytes.size());
        return bytes;
    }
    FileNumbers numbers_;
};

/// A disk whose files cost the system nothing.
class LightDisk final : public PassingDisk {
public:
    std::unique_ptr<DiskFile> Open(const std::string&, Access) override {
        ++Opened;
        return std::make_unique<PassingFile>(nullptr);
    }

    int Opened = 0;
};

TEST_F(FileNumbersTest, NumbersCountFromOneUpward) {
    EXPECT_EQ(Open("a").Number, 1);
    EXPECT_EQ(Open("b").Number, 2);
    EXPECT_EQ(Open("c").Number, 3);
    EXPECT_EQ(numbers_.Count(), 3);
}

TEST_F(FileNumbersTest, TheLowestFreeNumberIsGivenOutFirst) {
    Open("a");
    const auto b = Open("b");
    const auto c = Open("c");
    numbers_.Close(b);

    const auto d = Open("d");

    EXPECT_EQ(d.Number, 2);
    EXPECT_EQ(Content(d), "d");
    EXPECT_EQ(Content(c), "c");
}

TEST_F(FileNumbersTest, AClosedNumberIsABadFileNumberAlsoWhenItWasGivenOutAgain) {
    const auto a = Open("a");
    numbers_.Close(a.Number);
    EXPECT_EQ(FailureOf([&] { numbers_.Use(a); }).Number, 52);

    const auto b = Open("b");

    EXPECT_EQ(b.Number, a.Number);
    EXPECT_EQ(FailureOf([&] { numbers_.Use(a); }).Number, 52);
    EXPECT_FALSE(numbers_.IsOpen(a));
}

TEST_F(FileNumbersTest, ClosingByAnOldClaimLeavesTheNumbersNewOwnerAlone) {
    const auto a = Open("a");
    numbers_.Close(a.Number);
    const auto b = Open("b");

    numbers_.Close(a);

    EXPECT_EQ(Content(b), "b");
}

TEST_F(FileNumbersTest, ClosingANumberThatIsNotOpenIsNoFailure) {
    Open("a");

    for (const int number : {-1, 0, 2, 99}) numbers_.Close(static_cast<std::int16_t>(number));

    EXPECT_EQ(numbers_.Count(), 1);
}

TEST_F(FileNumbersTest, AnOpeningThatFailsTakesNoNumber) {
    const FailureSeen seen =
        FailureOf([&] { numbers_.Open(NativeDisk(), Folder() + "missing", Access::Read); });

    EXPECT_EQ(seen.Number, 53);
    EXPECT_EQ(numbers_.Count(), 0);
    EXPECT_EQ(Open("a").Number, 1);
}

TEST_F(FileNumbersTest, NoClaimIsNeverOpen) {
    EXPECT_FALSE(numbers_.IsOpen({}));
    EXPECT_EQ(FailureOf([&] { numbers_.Use({}); }).Number, 52);
}

TEST_F(FileNumbersTest, WhenNumbersRunOutTheDiskIsNotAskedAndTheNextFreeOneServesAgain) {
    constexpr int Most = 32767;
    LightDisk disk;
    FileNumbers::Claim last;
    for (int k = 0; k < Most; ++k) last = numbers_.Open(disk, "a", Access::Read);
    EXPECT_EQ(last.Number, Most);

    EXPECT_EQ(FailureOf([&] { numbers_.Open(disk, "kept.txt", Access::Create); }).Number, 52);

    EXPECT_EQ(disk.Opened, Most);
    numbers_.Close(std::int16_t{7});
    EXPECT_EQ(numbers_.Open(disk, "a", Access::Read).Number, 7);
}

} // namespace

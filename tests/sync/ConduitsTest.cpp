#include "sync/Conduits.h"

#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/Rubbish.h"

namespace {

const Conduit Ours{"ZUK2", "SFrmCn40.dll", "Tramble"};
const Conduit Others{"Memo", "memo.dll", "Memo Pad"};

class Conduits : public EngineTest {
protected:
    ~Conduits() override { Global.TheDisk = &NativeDisk(); }

    std::string File() const { return Folder() + "Conduits.txt"; }
};

TEST_F(Conduits, OfAFolderWithoutTheFileAreNone) {
    EXPECT_TRUE(ReadConduits(Folder()).empty());
}

TEST_F(Conduits, ThatAreRegisteredAreReadInTheirOrder) {
    RegisterConduit(Folder(), Others);
    RegisterConduit(Folder(), Ours);

    EXPECT_EQ(ReadConduits(Folder()), (std::vector<Conduit>{Others, Ours}));
    EXPECT_EQ(Bytes(File()), "Memo\tmemo.dll\tMemo Pad\r\nZUK2\tSFrmCn40.dll\tTramble\r\n");
}

TEST_F(Conduits, AnotherConduitOfTheSameCreatorTakesThePlaceOfTheFirst) {
    RegisterConduit(Folder(), Ours);
    RegisterConduit(Folder(), Others);

    RegisterConduit(Folder(), {"ZUK2", "other.dll", ""});

    EXPECT_EQ(Bytes(File()), "ZUK2\tother.dll\t\r\nMemo\tmemo.dll\tMemo Pad\r\n");
}

TEST_F(Conduits, CreatorsThatDifferInCaseAreTwo) {
    RegisterConduit(Folder(), Ours);
    RegisterConduit(Folder(), {"zuk2", "other.dll", "Other"});

    EXPECT_EQ(ReadConduits(Folder()).size(), 2U);
}

TEST_F(Conduits, EmptyLinesAndPlainLineFeedsAreRead) {
    GivenFile("Conduits.txt", "\nZUK2\tSFrmCn40.dll\tTramble\n\n");

    EXPECT_EQ(ReadConduits(Folder()), std::vector<Conduit>{Ours});
}

TEST_F(Conduits, ALineThatIsNoneIsNamedWithItsReasonAndTheFileIsLeftAlone) {
    const std::pair<const char*, const char*> faults[] = {
        {"no conduit", "it does not hold creator, path and name"},
        {"ZUK2\tSFrmCn40.dll", "it does not hold creator, path and name"},
        {"ZUK\ta.dll\tb", "the creator is not four plain characters"},
        {"ZUK\xE9\ta.dll\tb", "the creator is not four plain characters"},
        {"ZUK2\t\tb", "the path is empty"},
        {"ZUK2\ta\x01.dll\tb", "the path holds a control character"},
        {"ZUK2\ta.dll\tb\tc", "the name holds a control character"},
        {"Memo\ta.dll\tb", "the creator stands there twice"},
    };
    for (const auto& [line, reason] : faults) {
        const std::string content = std::string("Memo\tmemo.dll\tMemo Pad\r\n") + line + "\r\n";
        GivenFile("Conduits.txt", content);

        const FailureSeen failure = FailureOf([&] { RegisterConduit(Folder(), Ours); });

        EXPECT_EQ(failure.Number, 321);
        EXPECT_NE(failure.Words.find(File() + ", line 2: " + reason), std::string::npos) << failure.Words;
        EXPECT_EQ(Bytes(File()), content);
    }
}

TEST_F(Conduits, WhatALineCannotHoldIsNotRegistered) {
    const Conduit faults[] = {{"ZUK", "a.dll", "b"},
                              {"ZUK22", "a.dll", "b"},
                              {"ZUK2", "", "b"},
                              {"ZUK2", "a\tb.dll", "c"},
                              {"ZUK2", "a.dll", "b\r\nEvil\tc.dll\td"}};
    for (const Conduit& fault : faults)
        EXPECT_EQ(FailureNumber([&] { RegisterConduit(Folder(), fault); }), 5);
    EXPECT_FALSE(Exists(File()));
}

TEST_F(Conduits, WithoutAFolderAreAFailure) {
    EXPECT_EQ(FailureNumber([] { ReadConduits(""); }), 76);
    EXPECT_EQ(FailureNumber([] { RegisterConduit("", Ours); }), 76);
}

TEST_F(Conduits, AFolderInTheFilesPlaceIsAFailureAndNotAnEmptyFile) {
    GivenFile("Conduits.txt/in the way", "");

    EXPECT_EQ(FailureNumber([&] { ReadConduits(Folder()); }), 75);
}

TEST_F(Conduits, ARegistrationThatFailsLeavesTheFileAsItWas) {
    RegisterConduit(Folder(), Others);
    const std::string before = Bytes(File());
    bool failed = true;
    for (int failAt = 1; failed && failAt < 20; ++failAt) {
        FaultyDisk disk(failAt);
        Global.TheDisk = &disk;
        failed = FailureNumber([&] { RegisterConduit(Folder(), Ours); }) != 0;
        Global.TheDisk = &NativeDisk();
        if (failed) {
            EXPECT_EQ(Bytes(File()), before) << failAt;
        }
    }
    EXPECT_FALSE(failed);
    EXPECT_EQ(ReadConduits(Folder()), (std::vector<Conduit>{Others, Ours}));
}

TEST_F(Conduits, OfRubbishAreReadOrRefusedAndWhatIsReadCanBeWritten) {
    for (const std::string& content :
         Rubbish("ZUK2\tSFrmCn40.dll\tTramble\r\nMemo\tmemo.dll\tMemo Pad\r\n")) {
        GivenFile("Conduits.txt", content);
        OnlyRunTimeFailures([&] {
            const std::vector<Conduit> conduits = ReadConduits(Folder());
            for (const Conduit& conduit : conduits) RegisterConduit(Folder(), conduit);
            EXPECT_EQ(ReadConduits(Folder()), conduits);
        });
    }
}

} // namespace

#include "core/TextFile.h"

#include "support/EngineTest.h"
#include "support/Fails.h"

#include <random>

namespace {

using Strings = std::vector<std::string>;

class TextFileTest : public EngineTest {
protected:
    Strings Read(const std::string& content) {
        TextReader file(GivenFile("text.txt", content));
        Strings lines;
        for (std::string line; file.ReadLine(line);) lines.push_back(line);
        EXPECT_EQ(file.LineNumber(), static_cast<std::int64_t>(lines.size()));
        return lines;
    }
};

TEST_F(TextFileTest, LinesEndInEitherOrBothCharacters) {
    EXPECT_EQ(Read("a\r\nb\nc\rd"), (Strings{"a", "b", "c", "d"}));
}

TEST_F(TextFileTest, AnEndBehindTheLastLineMakesNoFurtherLine) {
    EXPECT_EQ(Read("a\r\n"), (Strings{"a"}));
    EXPECT_EQ(Read("a\n"), (Strings{"a"}));
    EXPECT_EQ(Read("a\r"), (Strings{"a"}));
}

TEST_F(TextFileTest, EmptyLinesAreLines) {
    EXPECT_EQ(Read("\r\n\r\nx\r\n\r\n"), (Strings{"", "", "x", ""}));
    EXPECT_EQ(Read("\n\r"), (Strings{"", ""}));
    EXPECT_EQ(Read(""), Strings{});
}

TEST_F(TextFileTest, BytesAreHandedOnAsTheyStand) {
    const std::string odd("\xE9 \0\x1A\t\xFF", 6);

    EXPECT_EQ(Read(odd + "\r\nb"), (Strings{odd, "b"}));
}

TEST_F(TextFileTest, WhatIsToStandOnOneLineLosesItsEndsAndKeepsItsOtherControlCharacters) {
    EXPECT_EQ(OneLine("a\r\nb\tc\n"), "a  b\tc ");
}

TEST_F(TextFileTest, WhatIsPrintedHoldsNoControlCharacterAndEveryLetterOfTheCodePage) {
    const std::string odd("\0a\t\r\n\x1F\x7F \x80\xE9\xFF", 11);

    EXPECT_EQ(WithoutControls(odd, '?'), "?a????? \x80\xE9\xFF");
    EXPECT_EQ(WithoutControls("", '?'), "");
}

TEST_F(TextFileTest, ALineEndAcrossABlocksBorderIsOneEnd) {
    for (const std::size_t length : {131070u, 131071u, 131072u}) {
        const std::string line(length, 'x');
        EXPECT_EQ(Read(line + "\r\nb\r\n"), (Strings{line, "b"})) << length;
    }
}

TEST_F(TextFileTest, AnyMixtureOfLineEndsIsReadAsOneCharacterAfterTheOther) {
    std::mt19937 random(4);
    for (int round = 0; round < 60; ++round) {
        // Some files have one kind of end only.
        const std::string_view ends = round % 3 == 0 ? "\r" : round % 3 == 1 ? "\n" : "\r\n";
        std::string content;
        while (content.size() < 200'000) {
            content.append(random() % 30 * (random() % 20), 'x');
            content += ends[random() % ends.size()];
        }
        Strings expected;
        std::string line;
        for (std::size_t k = 0; k < content.size(); ++k) {
            if (content[k] == 'x') {
                line += 'x';
                continue;
            }
            if (content[k] == '\r' && k + 1 < content.size() && content[k + 1] == '\n') ++k;
            expected.push_back(std::move(line));
            line.clear();
        }
        ASSERT_EQ(Read(content), expected);
    }
}

TEST_F(TextFileTest, ALineOfAMegabyteIsReadAndALongerOneRefused) {
    const std::string longest(TextReader::MaxLine, 'x');
    EXPECT_EQ(Read(longest + "\n"), (Strings{longest}));

    TextReader file(GivenFile("text.txt", "short\n" + longest + "x\n"));
    std::string line;
    file.ReadLine(line);
    const FailureSeen seen = FailureOf([&] { file.ReadLine(line); });

    EXPECT_EQ(seen.Number, 6);
    EXPECT_NE(seen.Words.find("text.txt, line 2"), std::string::npos) << seen.Words;
}

TEST_F(TextFileTest, BehindTheEndOfALineThatIsRefusedReadingGoesOn) {
    TextReader file(GivenFile("text.txt", std::string(TextReader::MaxLine + TextReader::MaxLine / 2, 'x') +
                                              "\nbehind\n"));
    std::string line;
    EXPECT_EQ(FailureOf([&] { file.ReadLine(line); }).Number, 6);
    EXPECT_TRUE(line.starts_with("xxx"));

    EXPECT_TRUE(file.ReadLine(line));
    EXPECT_EQ(line.find_first_not_of('x'), std::string::npos);
    EXPECT_TRUE(file.ReadLine(line));
    EXPECT_EQ(line, "behind");
}

TEST_F(TextFileTest, ReadingPastTheEndIsFailure62WhenALineIsRequired) {
    TextReader file(GivenFile("text.txt", "a\n"));
    EXPECT_FALSE(file.AtEnd());
    EXPECT_EQ(file.RequireLine(), "a");

    EXPECT_TRUE(file.AtEnd());
    EXPECT_EQ(FailureOf([&] { file.RequireLine(); }).Number, 62);
    std::string line = "old";
    EXPECT_FALSE(file.ReadLine(line));
    EXPECT_EQ(line, "");
}

TEST_F(TextFileTest, AFileThatIsNotThereIsFailure53AndAFolderFailure75) {
    EXPECT_EQ(FailureOf([&] { TextReader(Folder() + "missing.txt"); }).Number, 53);
    EXPECT_EQ(FailureOf([&] { TextReader(Folder() + "."); }).Number, 75);
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(TextFileTest, AReaderHoldsAFileNumberAsLongAsItLives) {
    {
        TextReader file(GivenFile("text.txt", "a\nb\n"));
        EXPECT_EQ(Global.Files.Count(), 1);

        Global.Files.Close(std::int16_t{1});

        std::string line;
        EXPECT_EQ(FailureOf([&] { file.ReadLine(line); }).Number, 52);
    }
    EXPECT_EQ(Global.Files.Count(), 0);
}

} // namespace

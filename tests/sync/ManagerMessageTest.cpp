#include "sync/ManagerMessage.h"

#include "core/Failure.h"
#include "core/SafeFile.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/Rubbish.h"

#include <random>

namespace {

using Messages = std::vector<ManagerMessage>;

Messages AllIn(ManagerMessageReader& reader) {
    Messages messages;
    ManagerMessage message;
    while (reader.Next(message)) messages.push_back(message);
    return messages;
}

Messages Read(std::string_view bytes) {
    ManagerMessageReader reader;
    reader.Feed(bytes);
    return AllIn(reader);
}

std::string AnyText(std::mt19937& dice) {
    std::string text(dice() % 40, '\0');
    for (char& c : text) c = static_cast<char>(dice() % 4 == 0 ? "\\\t\n\rtnr"[dice() % 7] : dice());
    return text;
}

TEST(ManagerMessages, AreALineOfAVerbAndTexts) {
    EXPECT_EQ(PackMessage({"HANDLED", {}}), "HANDLED\n");
    EXPECT_EQ(PackMessage({"FLUSHED", {"DONE"}}), "FLUSHED\tDONE\n");
    EXPECT_EQ(PackMessage({"USERS", {"7", "A\tB", "", "\\\r\n"}}), "USERS\t7\tA\\tB\t\t\\\\\\r\\n\n");
}

TEST(ManagerMessages, WithAnyTextsSurviveTheWayInWhateverPiecesTheyCome) {
    std::mt19937 dice(1);
    for (int turn = 0; turn < 300; ++turn) {
        Messages sent(1 + dice() % 5);
        std::string bytes;
        for (ManagerMessage& message : sent) {
            message.Verb = "VERB";
            for (std::size_t texts = dice() % 5; texts > 0; --texts) message.Texts.push_back(AnyText(dice));
            bytes += PackMessage(message);
        }
        ManagerMessageReader reader;
        Messages came;
        while (!bytes.empty()) {
            const std::size_t piece = std::min<std::size_t>(1 + dice() % 30, bytes.size());
            reader.Feed(std::string_view(bytes).substr(0, piece));
            bytes.erase(0, piece);
            for (ManagerMessage& message : AllIn(reader)) came.push_back(std::move(message));
        }
        EXPECT_EQ(came, sent);
    }
}

TEST(ManagerMessages, ThatAreNoneAreRefused) {
    for (const char* line : {"\n", "\tHELLO\n", "hello\n", "HELLO 1\n", "HELLO\r\n", "H\xC3\x89LLO\n", "1\n"})
        EXPECT_EQ(FailureNumber([&] { Read(line); }), 5) << line;
    for (const char* line : {"HELLO\t\\\n", "HELLO\t\\x\n", "HELLO\t\\\\\\\n", "HELLO\ta\t\\0\n"})
        EXPECT_EQ(FailureNumber([&] { Read(line); }), 5) << line;
    EXPECT_EQ(FailureNumber([&] { Read(std::string_view("HEL\0LO\n", 7)); }), 5);
}

TEST(ManagerMessages, BeforeABadLineAreRead) {
    ManagerMessageReader reader;
    reader.Feed("HANDLED\nbad\n");
    ManagerMessage message;

    ASSERT_TRUE(reader.Next(message));
    EXPECT_EQ(message.Verb, "HANDLED");
    EXPECT_EQ(FailureNumber([&] { reader.Next(message); }), 5);
}

TEST(ManagerMessages, OfAMegabyteAreReadAndLongerOnesRefusedBeforeTheirEnd) {
    const std::string longest = "A\t" + std::string(ManagerMessageReader::LongestLine - 2, 'x');
    EXPECT_EQ(Read(longest + "\n").at(0).Texts[0].size(), longest.size() - 2);

    ManagerMessageReader reader;
    reader.Feed(longest);
    EXPECT_TRUE(AllIn(reader).empty());
    reader.Feed("x");
    EXPECT_EQ(FailureNumber([&] { AllIn(reader); }), 5);
}

TEST(ManagerMessages, OfHalfALineAreNoneYet) {
    ManagerMessageReader reader;
    reader.Feed("HAND");
    EXPECT_TRUE(AllIn(reader).empty());
    reader.Feed("LED\nX");
    EXPECT_EQ(AllIn(reader), Messages({{"HANDLED", {}}}));
}

TEST(ManagerMessages, GiveAnEmptyTextWhereThereIsNone) {
    const ManagerMessage message{"WELCOME", {"1"}};

    EXPECT_EQ(message.TextAt(0), "1");
    EXPECT_EQ(message.TextAt(1), "");
}

TEST(ManagerMessages, OfRubbishAreRefusedOrPackedAsTheyCame) {
    for (const std::string& bytes : Rubbish("HELLO\t1\nUSERS\t7\tA\\tB\t8\tC\\\\\nHANDLED\n")) {
        OnlyRunTimeFailures([&] {
            for (const ManagerMessage& message : Read(bytes))
                EXPECT_EQ(Read(PackMessage(message)), Messages{message});
        });
    }
}

// ---- the example of docs/hotsync-socket.md ----

/// The lines of the example as they go over the socket, each behind the mark of its direction.
std::vector<std::string> ExampleLines() {
    const std::string page = ReadWholeFile(std::string(TRAMBLE_SOURCE) + "/docs/hotsync-socket.md");
    std::vector<std::string> lines;
    std::size_t at = page.find("\n## Example\n");
    while ((at = page.find("\n    ", at)) != std::string::npos) {
        const std::size_t end = page.find('\n', at + 1);
        std::string line = page.substr(at + 5, end - at - 5);
        for (std::size_t arrow = 0; (arrow = line.find("\u2192")) != std::string::npos;)
            line.replace(arrow, 3, "\t");
        lines.push_back(line);
        at = end;
    }
    return lines;
}

TEST(ManagerMessages, OfTheDocumentedExampleAreReadAndPackedAgain) {
    const std::vector<std::string> lines = ExampleLines();
    ASSERT_EQ(lines.size(), 12U);
    for (const std::string& line : lines) {
        ASSERT_TRUE(line.starts_with("> ") || line.starts_with("< ")) << line;
        const std::string onTheWire = line.substr(2) + "\n";
        const Messages messages = Read(onTheWire);
        ASSERT_EQ(messages.size(), 1U) << line;
        EXPECT_EQ(PackMessage(messages[0]), onTheWire);
    }
    const Messages users = Read(lines.at(2).substr(2) + "\n");
    EXPECT_EQ(users.at(0), (ManagerMessage{"USERS", {"7", "ANNA", "8", "José Núñez"}}));
}

} // namespace

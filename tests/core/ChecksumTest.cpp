#include "core/Checksum.h"

#include "support/EngineTest.h"
#include "support/Fails.h"

namespace {

std::uint64_t SumOf(std::string_view bytes) {
    Checksum sum;
    sum.Add(bytes);
    return sum.Value();
}

/// Bit by bit, as the polynomial is divided.
std::uint64_t SlowSum(std::string_view bytes) {
    std::uint64_t state = ~std::uint64_t{0};
    for (const char c : bytes) {
        state ^= static_cast<unsigned char>(c);
        for (int bit = 0; bit < 8; ++bit) state = state & 1 ? state >> 1 ^ 0xC96C5795D7870F42 : state >> 1;
    }
    return ~state;
}

class ChecksumTest : public EngineTest {};

} // namespace

TEST_F(ChecksumTest, IsTheOneThatOtherProgramsKnow) {
    EXPECT_EQ(SumText(SumOf("123456789")), "995dc9bbdf1939fa"); // the catalogued check value
    EXPECT_EQ(SumOf(""), 0u);
}

TEST_F(ChecksumTest, IsTheSameInWhateverPiecesTheBytesCome) {
    std::string bytes;
    for (int k = 0; k < 1000; ++k) bytes += static_cast<char>(k * k % 251);
    for (std::size_t at = 0; at < 40; ++at) {
        Checksum sum;
        sum.Add(std::string_view(bytes).substr(0, at));
        sum.Add(std::string_view(bytes).substr(at));
        ASSERT_EQ(sum.Value(), SlowSum(bytes)) << at;
    }
}

TEST_F(ChecksumTest, OfAFileIsThatOfItsBytesAndTellsTheirNumber) {
    const std::string bytes = std::string(300'000, 'x') + "end";
    const FileSum sum = SumOfFile(GivenFile("big", bytes));

    EXPECT_EQ(sum, (FileSum{bytes.size(), SlowSum(bytes)}));
    EXPECT_EQ(SumOfFile(GivenFile("empty", "")), (FileSum{0, 0}));
    EXPECT_EQ(FailureNumber([&] { SumOfFile(Folder() + "none"); }), 53);
}

TEST_F(ChecksumTest, AsTextIsSixteenDigitsAndNothingElseIsRead) {
    EXPECT_EQ(SumText(0xAB), "00000000000000ab");
    EXPECT_EQ(SumFromText("00000000000000ab"), 0xABu);
    for (const char* text : {"", "ab", "00000000000000ag", "-0000000000000ab", "00000000000000ab0"})
        EXPECT_FALSE(SumFromText(text)) << text;
}

#include "palm/Converter.h"
#include "store/DBFEdit.h"
#include "support/EngineTest.h"
#include "support/Fails.h"

namespace {

/// A memo file of 20 blocks in which every byte tells its place, with a bitmap in block 2.
class MemoImage : public EngineTest {
protected:
    static constexpr std::size_t B = 2 * 512;

    MemoImage() {
        GivenAppDirectory();
        for (std::size_t k = 0; k < 20 * 512; ++k) memo += static_cast<char>((k * 7 + k / 256) & 0xFF);
        memo.replace(B + 8, 3, "iNk");
    }

    void Extract(int size, int block = 2) {
        memo[B + 5] = static_cast<char>(size);
        DBFEdit().GetDBTImage(GivenFile("ZUKNOTE.DBT", memo), block);
    }

    static std::string LittleEndian(int value) {
        std::string bytes;
        for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(value >> shift & 0xFF);
        return bytes;
    }

    std::string Bitmap() { return Global.AppPath + "temp.bmp"; }

    std::string memo;
};

} // namespace

TEST_F(MemoImage, IsWrittenWithItsHeaderFieldByField) {
    Extract(25);

    std::string expected = "BM" + LittleEndian(3 * 512 - 44);
    expected += memo.substr(B + 55, 2) + memo.substr(B + 55, 2) + LittleEndian(62);
    expected += memo.substr(B + 65, 4) + memo.substr(B + 69, 4) + memo.substr(B + 73, 4);
    expected += memo.substr(B + 77, 2) + memo.substr(B + 79, 2) + memo.substr(B + 81, 4);
    expected += LittleEndian(3 * 512 - 106);
    expected +=
        memo.substr(B + 89, 4) + memo.substr(B + 93, 4) + memo.substr(B + 97, 4) + memo.substr(B + 101, 4);
    expected += memo.substr(B + 105, 3 * 512 - 106);
    EXPECT_EQ(Bytes(Bitmap()), expected);
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(MemoImage, ABitmapComesOutWithItsSizeItsTwoColoursAndItsPoints) {
    Ink ink;
    ink.Width = 24;
    ink.Height = 40;
    for (int k = 0; k < 3 * 40; ++k) ink.Rows += static_cast<char>(k * 37);
    const std::string bitmap = InkBitmap(ink);
    memo.replace(B + 51, bitmap.size(), bitmap);

    Extract(10);

    const std::string out = Bytes(Bitmap());
    EXPECT_EQ(out.substr(0, 2) + out.substr(10, 24), bitmap.substr(0, 2) + bitmap.substr(10, 24));
    EXPECT_EQ(out.substr(38, bitmap.size() - 38), bitmap.substr(38));
}

TEST_F(MemoImage, TakesItsBlocksFromTheFirstDigitOfTheSize) {
    const std::vector<std::pair<int, std::size_t>> sizes = {{1, 1},  {9, 9},   {10, 1},  {11, 2}, {19, 2},
                                                            {25, 3}, {99, 10}, {100, 2}, {255, 3}};
    for (const auto& [size, blocks] : sizes) {
        Extract(size);

        EXPECT_EQ(Bytes(Bitmap()).size(), 54 + blocks * 512 - 106) << size;
    }
}

TEST_F(MemoImage, BlockWithoutABitmapWritesNothing) {
    GivenFile("app/temp.bmp", "old");

    Extract(3, 1);
    Extract(3, 0x7FFFFFFF);

    EXPECT_EQ(Bytes(Bitmap()), "old");
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(MemoImage, ReplacesTheOneBefore) {
    GivenFile("app/TEMP.bmp", std::string(100000, 'x'));

    Extract(1);

    EXPECT_EQ(Bytes(Global.AppPath + "TEMP.bmp").size(), 54u + 512 - 106);
}

TEST_F(MemoImage, OfNoBlocksIsAFailureAndWritesNothing) {
    EXPECT_EQ(FailureOf([&] { Extract(0); }).Number, 5);

    EXPECT_FALSE(Exists(Bitmap()));
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(MemoImage, BlockBelowZeroIsABadRecordNumber) {
    EXPECT_EQ(FailureOf([&] { Extract(1, -1); }).Number, 63);
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(MemoImage, CutOffMemoReadsAsBlanks) {
    memo.resize(B + 300);

    Extract(1);

    EXPECT_EQ(Bytes(Bitmap()).substr(54 + 300 - 105), std::string(406 - (300 - 105), ' '));
}

TEST_F(MemoImage, MissingMemoIsFileNotFound) {
    EXPECT_EQ(FailureOf([&] { DBFEdit().GetDBTImage(Folder() + "NONE.DBT", 0); }).Number, 53);
}

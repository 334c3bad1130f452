#include "palm/Converter.h"

#include "palm/PalmTest.h"

#include <algorithm>
#include <array>
#include <vector>

namespace {

HandheldLayout AnyLayout(Lots& lots) {
    HandheldLayout layout;
    const int most = lots.Below(6) == 0 ? 255 : 12;
    for (int k = 1 + lots.Below(most); k > 0; --k) {
        const std::string number = std::to_string(k);
        HandheldField field;
        field.Name = number + AnyText(lots, 0, static_cast<int>(10 - number.size()));
        // Digits in front tell the names apart, but only when none follow.
        if (field.Name.size() > number.size()) field.Name[number.size()] = '_';
        field.Type = static_cast<char>(lots.Below(256));
        field.Length = static_cast<std::uint8_t>(1 + lots.Below(most == 255 ? 128 : 255));
        field.Decimals = AnyU8(lots);
        layout.Fields.push_back(std::move(field));
    }
    return layout;
}

Ink AnyInk(Lots& lots) {
    Ink ink;
    const int most = lots.Below(4) == 0 ? 320 : 20;
    ink.Width = static_cast<std::uint16_t>(1 + lots.Below(most));
    ink.Height = static_cast<std::uint16_t>(1 + lots.Below(most));
    ink.Rows = lots.Bytes((ink.Width + 7) / 8 * ink.Height);
    return ink;
}

bool DotOf(const Ink& ink, int x, int y) {
    const auto byte =
        static_cast<unsigned char>(ink.Rows[static_cast<std::size_t>(y * ((ink.Width + 7) / 8) + x / 8)]);
    return (byte >> (7 - x % 8) & 1) != 0;
}

/// A bitmap file as any viewer reads it: little-endian headers, a palette, rows from below, each filled
/// up to four bytes.
class Bitmap {
public:
    explicit Bitmap(std::string file) : file_(std::move(file)) {
        EXPECT_EQ(file_.substr(0, 2), "BM");
        EXPECT_EQ(Number(2, 4), file_.size());
        EXPECT_EQ(Number(14, 4), 40u);
        EXPECT_EQ(Number(26, 2), 1u) << "planes";
        EXPECT_EQ(Number(28, 2), 1u) << "bits a dot";
        EXPECT_EQ(Number(30, 4), 0u) << "compression";
        EXPECT_EQ(Number(34, 4), file_.size() - Number(10, 4)) << "bytes of the rows";
        EXPECT_EQ(Number(10, 4) + RowBytes() * Height(), file_.size());
    }

    std::size_t Width() const { return Number(18, 4); }
    std::size_t Height() const { return Number(22, 4); }

    /// The colour of a dot, as red, green and blue in one number.
    std::uint32_t ColourAt(std::size_t x, std::size_t y) const {
        const std::size_t row = Number(10, 4) + (Height() - 1 - y) * RowBytes();
        const std::size_t index = Number(row + x / 8, 1) >> (7 - x % 8) & 1;
        const std::size_t palette = 14 + Number(14, 4) + 4 * index;
        return Number(palette, 3);
    }

private:
    std::size_t RowBytes() const { return (Width() + 31) / 32 * 4; }

    std::uint32_t Number(std::size_t at, std::size_t bytes) const {
        std::uint32_t value = 0;
        for (std::size_t k = bytes; k-- > 0;)
            value = value << 8 | static_cast<unsigned char>(file_.at(at + k));
        return value;
    }

    std::string file_;
};

const HandheldLayout Small{{{"CODE", 'C', 4, 0}, {"PRICE", 'N', 6, 2}}};

HandheldLayout Fields(std::size_t count, std::uint8_t length) {
    HandheldLayout layout;
    for (std::size_t k = 0; k < count; ++k)
        layout.Fields.push_back({"F" + std::to_string(k), 'C', length, 0});
    return layout;
}

/// Ten bytes a row.
HandheldLayout Packed(std::uint16_t rows) {
    HandheldLayout layout = Small;
    layout.RowsInRecord = rows;
    return layout;
}

} // namespace

TEST(HandheldLayout, IsAMarkAVersionACountAndFourteenBytesAField) {
    const std::string block = Hex("5A554B54 0001 0002") + std::string("CODE\0\0\0\0\0\0", 10) +
                              Hex("43 04 00 00") + std::string("PRICE\0\0\0\0\0", 10) + Hex("4E 06 02 00");

    EXPECT_EQ(PackLayout(Small), block);
    EXPECT_EQ(ReadLayout(block), Small);
}

TEST(HandheldLayout, WhatIsPackedReadsTheSame) {
    Lots lots(61);
    for (int k = 0; k < 300; ++k) {
        const HandheldLayout layout = AnyLayout(lots);

        EXPECT_EQ(ReadLayout(PackLayout(layout)), layout);
    }
}

TEST(HandheldLayout, ANameOfTenCharactersFillsItsPlace) {
    const HandheldLayout layout{{{"TENLETTERS", 'C', 1, 0}}};

    EXPECT_EQ(ReadLayout(PackLayout(layout)), layout);
}

TEST(HandheldLayout, TheMostFieldsAndTheMostBytesAreTaken) {
    EXPECT_EQ(ReadLayout(PackLayout(Fields(255, 128))).Fields.size(), 255u);
    HandheldLayout longest = Fields(128, 255);
    longest.Fields.push_back({"LAST", 'C', 127, 0});
    EXPECT_EQ(longest.RecordBytes(), 32767u);

    EXPECT_EQ(ReadLayout(PackLayout(longest)), longest);

    longest.Fields.back().Length = 128;
    EXPECT_EQ(Refusal([&] { PackLayout(longest); }), "fields of a table: 32768 bytes in a record");
}

TEST(HandheldLayout, BeyondItsLimitsIsNotPacked) {
    const auto refusal = [](HandheldLayout layout) { return Refusal([&] { PackLayout(layout); }); };
    EXPECT_EQ(refusal({}), "fields of a table: 0 of them");
    EXPECT_EQ(refusal(Fields(256, 1)), "fields of a table: 256 of them");
    EXPECT_EQ(refusal({{{"", 'C', 1, 0}}}), "fields of a table: the name \"\" has not 1 to 10 characters");
    EXPECT_EQ(refusal({{{"ELEVENCHARS", 'C', 1, 0}}}),
              "fields of a table: the name \"ELEVENCHARS\" has not 1 to 10 characters");
    EXPECT_NE(refusal({{{std::string("A\0B", 3), 'C', 1, 0}}}), "");
    EXPECT_EQ(refusal({{{"A", 'C', 0, 0}}}), "fields of a table: A has no length");
    EXPECT_EQ(refusal({{{"Code", 'C', 1, 0}, {"B", 'C', 1, 0}, {"CODE", 'C', 1, 0}}}),
              "fields of a table: CODE comes twice");
}

TEST(HandheldLayout, AnotherMarkVersionOrLengthIsRefused) {
    const std::string good = PackLayout(Small);
    const auto refusal = [](const std::string& block) { return Refusal([&] { ReadLayout(block); }); };
    EXPECT_EQ(refusal("zukt" + good.substr(4)), "fields of a table: not the database of a table");
    EXPECT_EQ(refusal(good.substr(0, 4) + Hex("0003") + good.substr(6)),
              "fields of a table: version 3 of the layout");
    EXPECT_EQ(refusal(good.substr(0, 4) + Hex("0000") + good.substr(6)),
              "fields of a table: version 0 of the layout");
    EXPECT_EQ(refusal(good + "x"), "fields of a table: 1 bytes behind the last one");
    EXPECT_EQ(refusal(good.substr(0, 6) + Hex("0100") + good.substr(8)), "fields of a table: 256 of them");
    for (std::size_t size = 0; size < good.size(); ++size)
        EXPECT_FALSE(GoesWell([&] { ReadLayout(good.substr(0, size)); })) << size;
}

TEST(HandheldLayout, AnyByteChangedIsRefusedOrReadWithoutHarm) {
    for (const std::string& good : {PackLayout(Small), PackLayout(Packed(3))}) {
        for (std::size_t at = 0; at < good.size(); ++at) {
            for (int change = 1; change < 256; ++change) {
                std::string block = good;
                block[at] = static_cast<char>(block[at] ^ change);
                GoesWell([&] {
                    const HandheldLayout read = ReadLayout(block);
                    EXPECT_EQ(ReadLayout(PackLayout(read)), read);
                });
            }
        }
    }
}

TEST(HandheldLayout, OfAPackedTableIsVersionTwoWithTheRowsOfARecordBehindTheLastField) {
    std::string block = PackLayout(Small);
    block.replace(4, 2, Hex("0002"));
    block += Hex("0102");

    EXPECT_EQ(PackLayout(Packed(0x102)), block);
    EXPECT_EQ(ReadLayout(block), Packed(0x102));
    EXPECT_EQ(ReadLayout(block).RecordBytes(), 10u) << "a row's, not a record's";
}

TEST(HandheldLayout, OfAPackedTableIsRefusedWithAWrongNumberOfRows) {
    const std::string good = PackLayout(Packed(3));
    const auto withRows = [&](const char* rows) {
        return Refusal([&] { ReadLayout(good.substr(0, good.size() - 2) + Hex(rows)); });
    };
    EXPECT_EQ(withRows("0000"), "fields of a table: packed with 0 rows in a record");
    EXPECT_EQ(withRows("0001"), "fields of a table: packed with 1 rows in a record");
    EXPECT_EQ(withRows("1997"), "fields of a table: 6551 rows of 10 bytes in a record");
    EXPECT_EQ(withRows("0003 00"), "fields of a table: 1 bytes behind the last one");
    for (std::size_t size = 0; size < good.size(); ++size)
        EXPECT_FALSE(GoesWell([&] { ReadLayout(good.substr(0, size)); })) << size;

    EXPECT_EQ(Refusal([] { PackLayout(Packed(0)); }), "fields of a table: 0 rows of 10 bytes in a record");
    EXPECT_EQ(Refusal([] { PackLayout(Packed(6551)); }),
              "fields of a table: 6551 rows of 10 bytes in a record");
    EXPECT_EQ(ReadLayout(PackLayout(Packed(6550))), Packed(6550));
}

TEST(HandheldLayout, ATableIsPackedOnlyWhenADatabaseHasTooFewRecordsForIt) {
    EXPECT_EQ(RowsInRecordFor(Small, 0), 1);
    EXPECT_EQ(RowsInRecordFor(Small, 65535), 1);
    EXPECT_EQ(RowsInRecordFor(Small, 65536), 409) << "4090 of 4096 bytes";
    EXPECT_EQ(RowsInRecordFor(Fields(1, 1), 65536), 4096);
}

TEST(HandheldLayout, LongRowsArePackedAsFarAsNeededAndRefusedWhereTheRecordsDoNotHoldThem) {
    const HandheldLayout longRows = Fields(100, 200); // 20000 bytes
    EXPECT_EQ(RowsInRecordFor(longRows, 65536), 2);
    EXPECT_EQ(RowsInRecordFor(longRows, 131071), 3);
    EXPECT_EQ(RowsInRecordFor(longRows, 196605), 3);
    EXPECT_EQ(Refusal([&] { RowsInRecordFor(longRows, 196606); }),
              "196606 rows of 20000 bytes are more than a handheld database holds");
    EXPECT_EQ(RowsInRecordFor(Fields(128, 255), 65535), 1);
    EXPECT_NE(Refusal([&] { RowsInRecordFor(Fields(129, 254), 65536); }), "");
}

TEST(HandheldLayout, FindsAFieldByItsWholeNameInAnyCase) {
    EXPECT_EQ(Small.Find("CODE"), 0u);
    EXPECT_EQ(Small.Find("price"), 1u);
    EXPECT_EQ(Small.Find("PRIC"), 2u);
    EXPECT_EQ(Small.Find(""), 2u);
}

TEST(HandheldLayout, GetsAndPutsAFieldAtItsWidth) {
    std::string record = "A1  12.50 ";
    EXPECT_EQ(Small.Get(0, record), "A1  ");
    EXPECT_EQ(Small.Get(1, record), "12.50 ");

    Small.Put(0, "B", record);
    EXPECT_EQ(record, "B   12.50 ");
    Small.Put(1, "1234567.5", record);
    EXPECT_EQ(record, "B   123456");
    Small.Put(1, "", record);
    EXPECT_EQ(record, "B         ");
}

TEST(HandheldLayout, GetsNothingOutOfARecordThatIsTooShort) {
    std::string record = "A1  12";
    EXPECT_EQ(Small.Get(0, record), "A1  ");
    EXPECT_EQ(Refusal([&] { Small.Get(1, record); }), "record of 6 bytes");
    EXPECT_EQ(Refusal([&] { Small.Put(1, "1", record); }), "record of 6 bytes");
}

TEST(HandheldName, IsThePrefixAndTheTableInCapitals) {
    for (const char* file : {"ZUKCUST.DBF", "zukcust.dbf", "/office/DBFFiles/ZukCust.dbf",
                             "C:\\office\\zukcust.DBF", "ZUKCUST", "/a.b/zukcust"}) {
        EXPECT_EQ(HandheldDatabaseName(file), "TZUK20000_ZUKCUST") << file;
    }
}

TEST(HandheldName, LeavesRoomForTheMarkOfATableThatIsBeingWritten) {
    const std::string longest(20, 'Z');
    EXPECT_EQ(HandheldDatabaseName(longest + ".DBF").size(), LongestDatabaseName - 1);

    EXPECT_EQ(Refusal([&] { HandheldDatabaseName(longest + "Z.DBF"); }),
              "\"ZZZZZZZZZZZZZZZZZZZZZ.DBF\" cannot be the name of a handheld database");
    EXPECT_EQ(Refusal([&] { HandheldDatabaseName("/office/.DBF"); }),
              "\".DBF\" cannot be the name of a handheld database");
    EXPECT_NE(Refusal([&] { HandheldDatabaseName(""); }), "");
    EXPECT_NE(Refusal([&] { HandheldDatabaseName("/office/"); }), "");
}

TEST(HandheldName, TellsTheTableAgain) {
    EXPECT_EQ(TableOfDatabase(HandheldDatabaseName("zukorhdr.dbf")), "ZUKORHDR");
    EXPECT_EQ(TableOfDatabase("TZUK20000_ZUKVER2"), "ZUKVER2");
}

TEST(HandheldName, OfNoTableTellsNone) {
    for (const char* name :
         {"MemoDB", "TZUK20000_", "TZUK20000_ZUKCUST~", "TZUK20000_zukcust", "tzuk20000_ZUKCUST",
          "TZUK20000_../../etc", "TZUK20000_A/B", "TZUK20000_A.B", "TZUK20000_A B", ""}) {
        EXPECT_EQ(TableOfDatabase(name), "") << name;
    }
}

TEST(HandheldName, StandsInTheHeaderWithTypeAndCreator) {
    const DatabaseHeader header = HandheldHeader("/office/zukitem.dbf");

    EXPECT_EQ(header.Name, "TZUK20000_ZUKITEM");
    EXPECT_EQ(header.Version, 1);
    EXPECT_EQ(header.Flags, 0);
    EXPECT_EQ(header.Type, 0x44415441u);
    EXPECT_EQ(header.Creator, 0x5A554B32u);
}

TEST(HandheldRecord, IsItsFieldsAndTheInkOfASignedOrder) {
    const HandheldRecord plain{"A1  12.50 ", {}};
    const HandheldRecord isSigned{"A1  12.50 ", {9, 2, Hex("FF80 0180")}};

    EXPECT_EQ(PackRecord(Small, plain), "A1  12.50 ");
    EXPECT_EQ(PackRecord(Small, isSigned), "A1  12.50 INK1" + Hex("0009 0002 FF80 0180"));
    EXPECT_EQ(ReadRecord(Small, PackRecord(Small, plain)), plain);
    EXPECT_EQ(ReadRecord(Small, PackRecord(Small, isSigned)), isSigned);
}

TEST(HandheldRecord, LosesNothingWhateverItsLayout) {
    Lots lots(73);
    for (int k = 0; k < 300; ++k) {
        const HandheldLayout layout = AnyLayout(lots);
        HandheldRecord record{lots.Bytes(static_cast<int>(layout.RecordBytes())), {}};
        if (lots.Below(2) == 0) record.Signature = AnyInk(lots);

        const std::string data = PackRecord(layout, record);

        EXPECT_LE(data.size(), LongestRecord);
        EXPECT_EQ(ReadRecord(layout, data), record);
        std::string joined;
        for (std::size_t field = 0; field < layout.Fields.size(); ++field)
            joined += layout.Get(field, record.Fields);
        EXPECT_EQ(joined, record.Fields);
    }
}

TEST(HandheldRecord, TheLongestOneWithTheMostInkFitsAHandheld) {
    HandheldLayout layout = Fields(128, 255);
    layout.Fields.push_back({"LAST", 'C', 127, 0});
    const HandheldRecord record{std::string(32767, 'x'), {320, 320, std::string(320 * 40, '\xAA')}};

    const std::string data = PackRecord(layout, record);

    EXPECT_LE(data.size(), LongestRecord);
    EXPECT_EQ(ReadRecord(layout, data), record);
}

TEST(HandheldRecord, OfAPackedTableIsSoManyRowsAndTheLastOneHasTheRest) {
    const HandheldLayout layout = Packed(2);
    RowReader reader(layout);

    EXPECT_EQ(reader.Read("A1  12.50 A2  13.50 "),
              (std::vector<HandheldRecord>{{"A1  12.50 ", {}}, {"A2  13.50 ", {}}}));
    EXPECT_EQ(reader.Read("A3  14.50 "), (std::vector<HandheldRecord>{{"A3  14.50 ", {}}}));
    EXPECT_EQ(Refusal([&] { reader.Read("A4  15.50 A5  15.50 "); }),
              "record of a table: it comes behind one that is not full");
}

TEST(HandheldRecord, OfATableThatIsNotPackedIsOneRowWithItsInk) {
    RowReader reader(Small);
    const HandheldRecord isSigned{"A1  12.50 ", {9, 2, Hex("FF80 0180")}};

    EXPECT_EQ(reader.Read(PackRecord(Small, isSigned)), std::vector<HandheldRecord>{isSigned});
    EXPECT_EQ(reader.Read("A2  12.50 "), (std::vector<HandheldRecord>{{"A2  12.50 ", {}}}));
    EXPECT_NE(Refusal([&] { reader.Read("A2  12.50 A3  13.50 "); }), "");
}

TEST(HandheldRecord, OfAPackedTableIsRefusedWhenItIsEmptyCutOffOrTooLong) {
    const HandheldLayout layout = Packed(2);
    const auto refusal = [&](const std::string& data) {
        RowReader reader(layout);
        return Refusal([&] { reader.Read(data); });
    };
    EXPECT_EQ(refusal(""), "record of a table: 0 bytes are not 1 to 2 rows of 10");
    EXPECT_EQ(refusal("A1  12.50 A2"), "record of a table: 12 bytes are not 1 to 2 rows of 10");
    EXPECT_EQ(refusal(std::string(30, 'x')), "record of a table: 30 bytes are not 1 to 2 rows of 10");
}

TEST(HandheldRecord, OfAPackedTableHasNoInk) {
    const HandheldRecord isSigned{"A1  12.50 ", {9, 2, Hex("FF80 0180")}};

    EXPECT_EQ(Refusal([&] { PackRecord(Packed(2), isSigned); }), "ink in a table that is packed");
    const HandheldLayout layout = Packed(2);
    RowReader reader(layout);
    EXPECT_NE(Refusal([&] { reader.Read(PackRecord(Small, isSigned)); }), "");
}

TEST(HandheldRecord, OfAnotherLengthIsNotPacked) {
    EXPECT_EQ(Refusal([] { PackRecord(Small, {"short", {}}); }), "record of 5 bytes");
    EXPECT_EQ(Refusal([] { PackRecord(Small, {"longer than it", {}}); }), "record of 14 bytes");
}

TEST(HandheldRecord, WithInkBeyondItsLimitsIsNeitherPackedNorRead) {
    const std::array<Ink, 5> wrong{{{321, 1, std::string(41, 'x')},
                                    {1, 321, std::string(321, 'x')},
                                    {8, 0, ""},
                                    {8, 2, "x"},
                                    {8, 2, "xxx"}}};
    for (const Ink& ink : wrong) {
        EXPECT_FALSE(GoesWell([&] { PackRecord(Small, {"A1  12.50 ", ink}); }));
        EXPECT_FALSE(GoesWell([&] { InkBitmap(ink); }));
        ByteWriter data;
        data.Put("A1  12.50 INK1").U16(ink.Width).U16(ink.Height).Put(ink.Rows);
        EXPECT_FALSE(GoesWell([&] { ReadRecord(Small, data.Bytes()); }));
    }
    EXPECT_EQ(Refusal([] { ReadRecord(Small, "A1  12.50 INK1" + Hex("0000 0001")); }), "ink of 0 by 1 dots");
}

TEST(HandheldRecord, WithSomethingElseBehindItsFieldsIsRefused) {
    EXPECT_EQ(Refusal([] { ReadRecord(Small, "A1  12.50 INK2" + Hex("0008 0001 FF")); }),
              "record of a table: something else than ink behind the fields");
    EXPECT_EQ(Refusal([] { ReadRecord(Small, "A1  12.50 x"); }),
              "record of a table: cut off: 4 bytes wanted, 1 there");
}

TEST(HandheldRecord, CutOffAnywhereButBehindTheFieldsIsRefused) {
    const std::string data = PackRecord(Small, {"A1  12.50 ", {9, 2, Hex("FF80 0180")}});
    for (std::size_t size = 0; size < data.size(); ++size)
        EXPECT_EQ(GoesWell([&] { ReadRecord(Small, data.substr(0, size)); }), size == 10) << size;
}

TEST(InkBitmap, ShowsEachDotOfTheInkBlackOnWhite) {
    Lots lots(80);
    for (int k = 0; k < 60; ++k) {
        const Ink ink = AnyInk(lots);

        const Bitmap bitmap(InkBitmap(ink));

        ASSERT_EQ(bitmap.Width(), ink.Width);
        ASSERT_EQ(bitmap.Height(), ink.Height);
        for (int y = 0; y < ink.Height; ++y) {
            for (int x = 0; x < ink.Width; ++x) {
                ASSERT_EQ(bitmap.ColourAt(static_cast<std::size_t>(x), static_cast<std::size_t>(y)),
                          DotOf(ink, x, y) ? 0x000000u : 0xFFFFFFu)
                    << x << ", " << y;
            }
        }
    }
}

TEST(InkBitmap, OfEveryWidthHasRowsOfFourBytes) {
    for (std::uint16_t width = 1; width <= 320; ++width) {
        const Ink ink{width, 3, std::string((width + 7U) / 8 * 3, '\x5A')};

        EXPECT_EQ(InkBitmap(ink).size(), 62 + (width + 31U) / 32 * 4 * 3);
    }
}

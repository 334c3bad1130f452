#include "store/TableLayout.h"

#include "core/Paths.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/TableMaker.h"

namespace {

class TableLayoutTest : public EngineTest {
protected:
    TableLayout Read(const std::string& bytes, const std::string& name = "ZUKCUST.DBF") {
        const std::string path = GivenFile(name, bytes);
        return TableLayout::Read(*Global.TheDisk->Open(path, Access::Read), path);
    }

    std::string FaultOf(const std::string& bytes) {
        const FailureSeen failure = FailureOf([&] { Read(bytes); });
        EXPECT_EQ(failure.Number, 321);
        const std::string start = std::string(RunTimeFailure::Words(321)) + ": ";
        EXPECT_EQ(failure.Words.substr(0, start.size()), start);
        return failure.Words.substr(start.size());
    }

    static TableMaker Customers() {
        return TableMaker(
            {{"C_CODE", 'C', 6}, {"C_NAME", 'C', 10}, {"C_BAL", 'N', 8, 2}, {"C_SINCE", 'D', 8}});
    }
};

std::vector<TableMaker::Column> Many(int count, int length) {
    std::vector<TableMaker::Column> columns;
    for (int k = 1; k <= count; ++k) columns.push_back({"F" + std::to_string(k), 'C', length});
    return columns;
}

} // namespace

TEST_F(TableLayoutTest, FieldsFollowEachOtherFromPositionOne) {
    const TableLayout layout = Read(Customers().Row({"A1"}).Bytes());

    EXPECT_EQ(layout.FieldCount(), 4);
    EXPECT_EQ(layout.FieldStart(1), 1);
    EXPECT_EQ(layout.FieldStart(2), 7);
    EXPECT_EQ(layout.FieldStart(3), 17);
    EXPECT_EQ(layout.FieldStart(4), 25);
    EXPECT_EQ(layout.FieldLength(2), 10);
    EXPECT_EQ(layout.FieldType(4), "D");
    EXPECT_EQ(layout.FieldDecimals(3), 2);
    EXPECT_EQ(layout.RecordCount(), 1);
    EXPECT_EQ(layout.RecordLength(), 33);
    EXPECT_EQ(layout.DataStart(), 32 * 4 + 35);
}

TEST_F(TableLayoutTest, EntryZeroIsNoFieldOfLengthTwo) {
    const TableLayout layout = Read(Customers().Bytes());

    EXPECT_EQ(layout.FieldName(0), "");
    EXPECT_EQ(layout.FieldType(0), "");
    EXPECT_EQ(layout.FieldLength(0), 2);
    EXPECT_EQ(layout.FieldStart(0), 0);
    EXPECT_EQ(FailureOf([&] { layout.FieldName(5); }).Number, 9);
    EXPECT_EQ(FailureOf([&] { layout.FieldName(-1); }).Number, 9);
}

TEST_F(TableLayoutTest, TableOfNoFieldsHasItsDataAtThirtyFive) {
    const TableLayout layout = Read(TableMaker(std::vector<TableMaker::Column>{}).Row({}).Row({}).Bytes());

    EXPECT_EQ(layout.FieldCount(), 0);
    EXPECT_EQ(layout.DataStart(), 35);
    EXPECT_EQ(layout.RecordCount(), 2);
    EXPECT_EQ(layout.Find("ANY"), 0);
}

TEST_F(TableLayoutTest, AnyByteBelowThirtyTwoEndsTheFields) {
    EXPECT_EQ(Read(Customers().Terminator('\0').Bytes()).FieldCount(), 4);
    EXPECT_EQ(Read(Customers().Terminator('\x1F').Bytes()).FieldCount(), 4);
}

TEST_F(TableLayoutTest, FieldNameAboveAsciiIsAField) {
    EXPECT_EQ(Read(TableMaker({{"\xC4NDERUNG", 'C', 3}}).Bytes()).FieldCount(), 1);
}

TEST_F(TableLayoutTest, HeaderLengthWordIsNotUsed) {
    const TableLayout layout = Read(Customers().ClaimHeaderLength(-7).Row({"A1"}).Bytes());

    EXPECT_EQ(layout.HeaderLength(), -7);
    EXPECT_EQ(layout.RecordsAt(), 33u + 32 * 4);
}

TEST_F(TableLayoutTest, NamesKeepTheirNulsAndPlainNamesEndBeforeThem) {
    const TableLayout layout = Read(TableMaker({{" AB ", 'C', 1}, {"CD         ", 'C', 1}}).Bytes());

    EXPECT_EQ(layout.FieldName(1), std::string("AB \0\0\0\0\0\0\0", 10));
    EXPECT_EQ(layout.PlainName(1), "AB");
    EXPECT_EQ(layout.FieldName(2), "CD");
    EXPECT_EQ(layout.PlainName(2), "CD");
}

TEST_F(TableLayoutTest, KeyFindsTheFirstFieldThatBeginsWithIt) {
    const TableLayout layout = Read(Customers().Bytes());

    EXPECT_EQ(layout.Find("C_"), 1);
    EXPECT_EQ(layout.Find("c_n"), 2);
    EXPECT_EQ(layout.Find(" C_BAL "), 3);
    EXPECT_EQ(layout.Find("C_NAMES"), 0);
    EXPECT_EQ(layout.Find(""), 1);
}

TEST_F(TableLayoutTest, NumberOrNumericTextIsTheFieldsIndex) {
    const TableLayout layout = Read(Customers().Bytes());

    EXPECT_EQ(layout.Find(3), 3);
    EXPECT_EQ(layout.Find(" 3 "), 3);
    EXPECT_EQ(layout.Find("1.5"), 2);
    EXPECT_EQ(layout.Find(0), 0);
    EXPECT_EQ(layout.Find("0"), 0);
    EXPECT_EQ(FailureOf([&] { layout.Find(5); }).Number, 9);
    EXPECT_EQ(FailureOf([&] { layout.Find(-1); }).Number, 9);
    EXPECT_EQ(FailureOf([&] { layout.Find("1E300"); }).Number, 9);
}

TEST_F(TableLayoutTest, TextKeyComesBackInCapitalsAndNumericOneAsItWas) {
    const TableLayout layout = Read(Customers().Bytes());
    FieldKey text(" c_n ");
    FieldKey missing("nowhere\xE9");
    FieldKey number(" 2");

    layout.Find(text);
    layout.Find(missing);
    layout.Find(number);

    EXPECT_EQ(text.Text(), "C_N");
    EXPECT_EQ(missing.Text(), "NOWHERE\xC9");
    EXPECT_EQ(number.Text(), " 2");
}

TEST_F(TableLayoutTest, FailedLookupAmong255FieldsIsAnOverflow) {
    const TableLayout full = Read(TableMaker(Many(255, 1)).Bytes());
    const TableLayout almost = Read(TableMaker(Many(254, 1)).Bytes());

    EXPECT_EQ(FailureOf([&] { full.Find("X"); }).Number, 6);
    EXPECT_EQ(full.Find("F255"), 255);
    EXPECT_EQ(almost.Find("X"), 0);
}

TEST_F(TableLayoutTest, ValuesAreConvertedByTheFieldsType) {
    const TableLayout layout = Read(TableMaker({{"T", 'C', 5}, {"N", 'n', 5}, {"D", 'd', 8}}).Bytes());
    const auto converted = [&](int field, std::string value) {
        layout.Convert(field, value);
        return value;
    };

    EXPECT_EQ(converted(1, "too long a text"), "too long a text");
    EXPECT_EQ(converted(2, "many"), "0");
    EXPECT_EQ(converted(2, ""), "0");
    EXPECT_EQ(converted(2, "   "), "0");
    EXPECT_EQ(converted(2, " 1,250.00"), " 1,250.00");
    EXPECT_EQ(converted(3, "2026-11-15"), "20261115");
    EXPECT_EQ(converted(3, "20261115"), "20261115");
    EXPECT_EQ(converted(3, "soon"), "soon");
    EXPECT_EQ(converted(3, "        "), "        ");
    EXPECT_EQ(converted(3, ""), "");
    EXPECT_EQ(converted(0, "any"), "any");
}

TEST_F(TableLayoutTest, ValueIsFittedWithoutBeingChangedAsItIsPut) {
    const TableLayout layout = Read(Customers().Bytes());
    for (const std::string value :
         {"", " ", "A1", " A1", "longer than any of the fields", "12.5", " 7 ", "1,250.00", "x", "11/15/2026",
          "20261115", "20260230", "00010101", "1231", "2026-02-30", "1E999"}) {
        for (int field = 0; field <= layout.FieldCount(); ++field) {
            std::string put(static_cast<std::size_t>(layout.FieldBytes()), '?');
            std::string fitted = put;
            std::string own = value;
            layout.Put(field, own, put);

            layout.Fit(field, value, fitted);

            EXPECT_EQ(fitted, put) << value << " in field " << field;
        }
    }
    std::string tooShort(5, ' ');
    EXPECT_EQ(FailureNumber([&] { layout.Fit(1, "A1", tooShort); }), 5);
    EXPECT_EQ(FailureNumber([&] { layout.Fit(5, "A1", tooShort); }), 9);
}

TEST_F(TableLayoutTest, ShortFileIsNoTable) {
    EXPECT_EQ(FaultOf(""), "ZUKCUST.DBF: the file is 0 bytes long, too short for a table");
    EXPECT_EQ(FaultOf(Customers().Bytes().substr(0, 32)),
              "ZUKCUST.DBF: the file is 32 bytes long, too short for a table");
}

TEST_F(TableLayoutTest, RecordLengthOfZeroOrLessIsRefused) {
    EXPECT_EQ(FaultOf(Customers().ClaimRecordLength(0).Bytes()), "ZUKCUST.DBF: the record length is 0");
    EXPECT_EQ(FaultOf(Customers().ClaimRecordLength(-1).Bytes()), "ZUKCUST.DBF: the record length is -1");
}

TEST_F(TableLayoutTest, FieldsBeyondTheRecordAreRefused) {
    EXPECT_EQ(FaultOf(Customers().ClaimRecordLength(32).Bytes()),
              "ZUKCUST.DBF: the fields need 33 bytes and the record length is 32");
}

TEST_F(TableLayoutTest, CountThatTheFileCannotHoldIsRefused) {
    const TableMaker made = Customers().Row({"A1"}).Row({"B2"});

    EXPECT_EQ(FaultOf(TableMaker(made).ClaimCount(-1).Bytes()), "ZUKCUST.DBF: the number of records is -1");
    EXPECT_EQ(FaultOf(TableMaker(made).ClaimCount(3).Bytes()),
              "ZUKCUST.DBF: 3 records need 260 bytes and the file has 228");
    EXPECT_EQ(FaultOf(TableMaker(made).ClaimCount(0x7FFFFFFF).Bytes()),
              "ZUKCUST.DBF: 2147483647 records need 70866960512 bytes and the file has 228");
}

TEST_F(TableLayoutTest, NothingNeedsToStandBehindTheLastRecord) {
    EXPECT_EQ(Read(Customers().Row({"A1"}).End("").Bytes()).RecordCount(), 1);
    EXPECT_EQ(Read(Customers().End("").Bytes()).RecordCount(), 0);
}

TEST_F(TableLayoutTest, ListOfFieldsThatDoesNotEndIsRefused) {
    const std::string whole = Customers().Bytes();

    EXPECT_EQ(FaultOf(whole.substr(0, 32 + 128)), "ZUKCUST.DBF: the list of fields does not end");
    EXPECT_EQ(FaultOf(whole.substr(0, 32 + 100)), "ZUKCUST.DBF: the list of fields does not end");
    EXPECT_EQ(FaultOf(std::string(600, '!')), "ZUKCUST.DBF: the list of fields does not end");
}

TEST_F(TableLayoutTest, A256thFieldIsAnOverflow) {
    EXPECT_EQ(Read(TableMaker(Many(255, 2)).Bytes()).FieldCount(), 255);
    EXPECT_EQ(FailureOf([&] { Read(TableMaker(Many(256, 2)).Bytes()); }).Number, 6);
}

TEST_F(TableLayoutTest, FieldThatStartsBeyond32767IsAnOverflow) {
    const int fields = 32767 / 255 + 2;

    const auto deed = [&] { Read(TableMaker(Many(fields, 255)).ClaimRecordLength(32767).Bytes()); };

    EXPECT_EQ(FailureOf(deed).Number, 6);
}

#include "core/CodePage.h"
#include "store/CreateTable.h"
#include "store/DBFEdit.h"
#include "store/TableRewrite.h"
#include "store/TableScan.h"
#include "support/EngineTest.h"
#include "support/TableSteps.h"

#include <cstdlib>

namespace {

using Values = std::vector<std::string>;

/// Our tables in other programs and theirs in ours. A program that is missing fails the test.
class OtherPrograms : public EngineTest {
protected:
    /// Runs a command in the test's folder and returns the lines that it wrote.
    std::vector<std::string> Run(const std::string& command) {
        const std::string line = "cd '" + Folder() + "' && LC_ALL=C " + command + " > out.txt 2> err.txt";
        EXPECT_EQ(std::system(line.c_str()), 0) << command << "\n" << Bytes(Folder() + "err.txt");
        return Lines(Folder() + "out.txt");
    }

    /// A table of ours: accents, numbers and dates, an empty row, a deleted one, blank fields.
    void GivenOurTable() {
        const std::vector<FieldDef> fields = {
            {"CODE", 'C', 6}, {"NAME", 'C', 20}, {"PRICE", 'N', 10, 2}, {"COUNT", 'N', 5}, {"DAY", 'D', 8}};
        const std::vector<Values> rows = {{"A1", "Caf\xE9 Ol\xE9", "12.5", "7", "2026-01-15"},
                                          {"B2", "Gone", "1", "1", "2026-01-16"},
                                          {"C3", "M\xFCller, S\xF6hne \x80 5", "-3.25", "", ""},
                                          {},
                                          {"E5", "\xDF\xF8\xC5 \"q\"", "0", "99999", "2029-12-31"}};
        CreateTable(Path(), fields);
        DBFEdit table;
        table.FileOpen(Path());
        BeginAppending(table);
        for (const Values& row : rows) AppendStepByStep(table, row);
        table.Go(2);
        table.DeleteRecord();
        table.FileClose();
    }

    std::string Path() const { return Folder() + "ZUKOURS.DBF"; }

    std::vector<std::string> Dbview() {
        return Run("dbview --browse --trim --reserve --deleted ZUKOURS.DBF");
    }

    std::vector<std::string> Ogr() {
        Run("ogr2ogr -f CSV ours.csv ZUKOURS.DBF -oo ENCODING=CP1252 -lco STRING_QUOTING=IF_NEEDED");
        return Lines(Folder() + "ours.csv");
    }

    /// One line a record, the deleted ones last. The reader goes on to the end of the file where the
    /// header's count ends the table, so the records are counted by the header here too.
    std::vector<std::string> Dbfread() {
        GivenFile("read.py", "import dbfread, sys\n"
                             "table = dbfread.DBF('ZUKOURS.DBF', encoding='cp1252')\n"
                             "gone = list(table.deleted)\n"
                             "live = list(table)[:table.header.numrecords - len(gone)]\n"
                             "for row in live + gone:\n"
                             "    text = '|'.join(str(value) for value in row.values())\n"
                             "    sys.stdout.buffer.write((text + '\\n').encode('utf-8'))\n");
        return Run("/usr/bin/python3 -B read.py");
    }

    /// A table that another program writes: numbers to the right, its own marks for what is not known.
    std::string GivenTheirTable() {
        GivenFile("theirs.csv", CodePageToUtf8("CODE,NAME,PRICE,DAY,COUNT\n"
                                               "A1,Caf\xE9 Ol\xE9,12.50,2026/01/15,7\n"
                                               "B2,M\xFCller \x80,-3.00,2026/12/31,0\n"
                                               "C3,\"x, y \"\"q\"\"\",,,\n"));
        GivenFile("theirs.csvt", "\"String(6)\",\"String(12)\",\"Real(10.2)\",\"Date\",\"Integer(5)\"\n");
        Run("ogr2ogr -f 'ESRI Shapefile' theirs.dbf theirs.csv -lco ENCODING=CP1252 -lco SHPT=NONE");
        return Folder() + "theirs.dbf";
    }

    const std::vector<Values> theirRows = {
        {"A1    ", "Caf\xE9 Ol\xE9    ", "     12.50", "20260115", "    7"},
        {"B2    ", "M\xFCller \x80    ", "     -3.00", "20261231", "    0"},
        {"C3    ", "x, y \"q\"    ", "**********", "00000000", "*****"}};
};

} // namespace

TEST_F(OtherPrograms, DbviewReadsOurTable) {
    GivenOurTable();

    EXPECT_EQ(Dbview(), (Values{" :A1:Caf\xE9 Ol\xE9:12.5:7:20260115:", "*:B2:Gone:1:1:20260116:",
                                " :C3:M\xFCller, S\xF6hne \x80 5:-3.25:::", " ::::::",
                                " :E5:\xDF\xF8\xC5 \"q\":0:99999:20291231:"}));
}

TEST_F(OtherPrograms, GdalReadsOurTable) {
    GivenOurTable();

    EXPECT_EQ(Ogr(),
              (Values{"CODE,NAME,PRICE,COUNT,DAY", CodePageToUtf8("A1,Caf\xE9 Ol\xE9,12.50,7,2026/01/15"),
                      CodePageToUtf8("C3,\"M\xFCller, S\xF6hne \x80 5\",-3.25,,"), ",,,,",
                      CodePageToUtf8("E5,\"\xDF\xF8\xC5 \"\"q\"\"\",0.00,99999,2029/12/31")}));
}

TEST_F(OtherPrograms, DbfreadReadsOurTable) {
    GivenOurTable();

    EXPECT_EQ(Dbfread(),
              (Values{CodePageToUtf8("A1|Caf\xE9 Ol\xE9|12.5|7|2026-01-15"),
                      CodePageToUtf8("C3|M\xFCller, S\xF6hne \x80 5|-3.25|None|None"), "||None|None|None",
                      CodePageToUtf8("E5|\xDF\xF8\xC5 \"q\"|0|99999|2029-12-31"), "B2|Gone|1|1|2026-01-16"}));
}

TEST_F(OtherPrograms, AllReadOurTableAlikeOnceItIsCompactedAndRewritten) {
    GivenOurTable();
    CompactTable(Path());
    ShiftDown(Path());

    EXPECT_EQ(Dbview(), (Values{" :::0:0::", " :A1:Caf\xE9 Ol\xE9:12.5:7:20260115:",
                                " :C3:M\xFCller, S\xF6hne \x80 5:-3.25:0::", " :::0:0::",
                                " :E5:\xDF\xF8\xC5 \"q\":0:99999:20291231:"}));
    EXPECT_EQ(Ogr()[1], ",,0.00,0,");
    EXPECT_EQ(Ogr().size(), 6u);
    EXPECT_EQ(Dbfread()[1], CodePageToUtf8("A1|Caf\xE9 Ol\xE9|12.5|7|2026-01-15"));
    EXPECT_EQ(Dbfread().size(), 5u);
}

TEST_F(OtherPrograms, DBFEditReadsTheirTable) {
    DBFEdit table;
    table.FileOpen(GivenTheirTable());

    ASSERT_EQ(table.RecordCount, 3);
    EXPECT_EQ(table.NoFields(), 5);
    EXPECT_EQ(table.GetFieldType(4), "D");
    for (int k = 1; k <= 3; ++k) {
        table.Go(k);
        Values row;
        for (const char* key : {"code", "name", "price", "day", "count"}) row.push_back(table.GetData(key));
        EXPECT_EQ(row, theirRows[static_cast<std::size_t>(k) - 1]);
    }
}

TEST_F(OtherPrograms, TableScanReadsTheirTable) {
    TableScan scan(GivenTheirTable());
    std::vector<Values> rows;
    while (scan.Next()) {
        Values row;
        for (int field = 1; field <= scan.Layout().FieldCount(); ++field) row.emplace_back(scan.Field(field));
        rows.push_back(row);
        EXPECT_FALSE(scan.Deleted());
    }

    EXPECT_EQ(rows, theirRows);
    EXPECT_EQ(scan.Layout().PlainName(3), "PRICE");
}

TEST_F(OtherPrograms, TheirTableTakesOurRecordsAndTheyReadThem) {
    DBFEdit table;
    table.FileOpen(GivenTheirTable());

    table.Go(DBFEdit::Last);
    table.KillEOFFlag();
    table.Go(DBFEdit::Append);
    table.WriteData("CODE", "D4");
    table.WriteData("NAME", "\xC9t\xE9");
    table.WriteData("PRICE", "8.75");
    table.WriteData("DAY", "2027-02-28");
    table.UpDate();
    table.FileClose();

    Run("ogr2ogr -f CSV back.csv theirs.dbf -lco STRING_QUOTING=IF_NEEDED");
    const Values lines = Lines(Folder() + "back.csv");
    ASSERT_EQ(lines.size(), 5u);
    EXPECT_EQ(lines[1], CodePageToUtf8("A1,Caf\xE9 Ol\xE9,12.50,2026/01/15,7"));
    EXPECT_EQ(lines[4], CodePageToUtf8("D4,\xC9t\xE9,8.75,2027/02/28,"));
}

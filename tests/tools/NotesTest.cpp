#include "tools/Notes.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "support/EngineTest.h"
#include "support/Fails.h"
#include "support/FaultyDisk.h"
#include "support/ForeignTexts.h"
#include "support/RefusingDisk.h"
#include "support/Rubbish.h"
#include "tools/SystemInformation.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <sstream>

namespace {

using namespace std::string_literals;

class NotesTest : public EngineTest {
protected:
    NotesTest() {
        GivenAppDirectory();
        Global.Clock = [] { return DateTime{2026, 11, 22, 9, 30, 0}; };
    }

    static std::string Path() { return Global.DBFPath + "Notes.dat"; }

    void GivenNotes(const std::string& bytes) { GivenFile("app/DBFFiles/Notes.dat", bytes); }

    static Note Example(std::int32_t number = 2) {
        Note note;
        note.Number = number;
        note.Date = 46348.5;
        note.Issue = "A price list from Caf\xE9 L\xE9"s + "a stops at line 84.";
        note.Person = "Anna Berg";
        note.Resolved = "2026-11-23";
        note.Version = "1.0.0";
        note.Process = "Import";
        note.Resolution = "A comma in a name.\r\nTheir export now writes quotes.";
        return note;
    }

    static bool Same(const Note& a, const Note& b) {
        return a.Number == b.Number &&
               std::bit_cast<std::uint64_t>(a.Date) == std::bit_cast<std::uint64_t>(b.Date) &&
               a.Issue == b.Issue && a.Person == b.Person && a.Resolved == b.Resolved &&
               a.Version == b.Version && a.Process == b.Process && a.Resolution == b.Resolution;
    }

    /// The example of docs/files.md: an address, then bytes in hex or a text in quotes; blanks between.
    static std::string DocumentedRecord() {
        std::string record;
        bool inNotes = false;
        for (const std::string& line : Lines(std::string(TRAMBLE_SOURCE) + "/docs/files.md")) {
            if (line.starts_with("## ")) inNotes = line.find("Notes.dat") != std::string::npos;
            if (!inNotes || !line.starts_with("    ")) continue;
            record.resize(std::stoul(line.substr(4, 3), nullptr, 16), ' ');
            if (const std::size_t quote = line.find('"'); quote != std::string::npos) {
                record += line.substr(quote + 1, line.rfind('"') - quote - 1);
                continue;
            }
            std::istringstream words(line.substr(9, 35));
            for (std::string word; words >> word;) record += static_cast<char>(std::stoi(word, nullptr, 16));
        }
        record.resize(NoteLength, ' ');
        return record;
    }

    static std::string LinesOf(const std::vector<Text>& lines) {
        std::string all;
        for (const Text& line : lines) all += line.Utf8() + '\n';
        return all;
    }
};

// ---- the record ----

TEST_F(NotesTest, ARecordIsThatOfTheDocumentationByteForByte) {
    const std::string record = NoteRecord(Example());

    EXPECT_EQ(record.size(), NoteLength);
    EXPECT_EQ(record, DocumentedRecord());
    EXPECT_TRUE(Same(ReadNoteRecord(record, 2), Example()));
}

TEST_F(NotesTest, EachFieldStandsAtItsOffset) {
    Note note;
    note.Number = 0x01020304;
    note.Date = 1;
    note.Issue = "I";
    note.Person = "P";
    note.Resolved = "D";
    note.Version = "V";
    note.Process = "C";
    note.Resolution = "R";

    const std::string record = NoteRecord(note);

    EXPECT_EQ(record.substr(0, 12), "\x04\x03\x02\x01\0\0\0\0\0\0\xF0\x3F"s);
    const std::pair<std::size_t, char> places[] = {{12, 'I'},  {262, 'P'}, {292, 'D'},
                                                   {302, 'V'}, {332, 'C'}, {362, 'R'}};
    std::string blank = record.substr(12);
    for (const auto& [place, letter] : places) {
        EXPECT_EQ(record[place], letter);
        blank[place - 12] = ' ';
    }
    EXPECT_EQ(blank, std::string(1100, ' '));
}

TEST_F(NotesTest, AnIssueLongerThan250CharactersIsCutTo250OnSaving) {
    Note note = Example(1);
    note.Issue = std::string(251, 'i');
    note.Person = std::string(31, 'p');
    note.Resolved = std::string(11, 'd');
    note.Version = std::string(31, 'v');
    note.Process = std::string(31, 'c');
    note.Resolution = std::string(751, 'r');

    WriteNote(note);

    const Note read = ReadNote(1);
    EXPECT_EQ(read.Issue, std::string(250, 'i'));
    EXPECT_EQ(read.Person, std::string(30, 'p'));
    EXPECT_EQ(read.Resolved, std::string(10, 'd'));
    EXPECT_EQ(read.Version, std::string(30, 'v'));
    EXPECT_EQ(read.Process, std::string(30, 'c'));
    EXPECT_EQ(read.Resolution, std::string(750, 'r'));
    EXPECT_EQ(Bytes(Path()).size(), NoteLength);
}

TEST_F(NotesTest, NulsInTextsAreBlanks) {
    const Note note = ReadNoteRecord(std::string(NoteLength, '\0'), 3);

    EXPECT_EQ(note.Issue, "");
    EXPECT_EQ(note.Resolution, "");
    EXPECT_EQ(NoteMoment(note), Text()) << "a date of 0 is none";
}

TEST_F(NotesTest, ADateIsTheSerialWithItsTimeAndOneThatCannotBeIsNone) {
    const auto moment = [](double serial) {
        Note note;
        note.Date = serial;
        return NoteMoment(note).Utf8();
    };
    EXPECT_EQ(moment(46348), "2026-11-22");
    EXPECT_EQ(moment(46348.5), "2026-11-22 12:00:00");
    for (const double wrong : {std::nan(""), std::numeric_limits<double>::infinity(), 1e300, -1e300, 3e6})
        EXPECT_EQ(moment(wrong), "") << wrong;
}

TEST_F(NotesTest, ADateThatCannotBeSurvivesTheSavingOfItsNote) {
    Note note = Example(1);
    note.Date = 1e300;
    WriteNote(note);

    EXPECT_EQ(ReadNote(1).Date, 1e300);
}

TEST_F(NotesTest, ANewNoteHasThisMomentAndTheVersion) {
    const Note note = NewNote(4, "1.2.3");

    EXPECT_EQ(note.Number, 4);
    EXPECT_EQ(NoteMoment(note).Utf8(), "2026-11-22 09:30:00");
    EXPECT_EQ(note.Version, "1.2.3");
    EXPECT_EQ(note.Issue + note.Person + note.Resolved + note.Process + note.Resolution, "");
}

TEST_F(NotesTest, TheListOfProcessesIsInItsOrder) {
    std::string all;
    for (const MessageId process : NoteProcesses()) all += Text(process).Utf8() + ",";
    EXPECT_EQ(all,
              "Import,Download,Upload,Export,Customers,Items,Pricing,Printing,Barcodes,Signatures,Payments,"
              "Sales Tax,Backup,Unattended Hotsync,QuickButtons,Other,");
}

// ---- the file ----

TEST_F(NotesTest, AMissingFileIsMadeByTheFirstOpenAndTheListIsThenEmpty) {
    const NotesFile file = ReadNotes();

    EXPECT_TRUE(file.Notes.empty());
    EXPECT_FALSE(file.CutOff);
    EXPECT_EQ(Bytes(Path()), "");
}

TEST_F(NotesTest, ANewNoteGoesBehindTheLastOneAndTheOthersStayByteForByte) {
    const std::string before = NoteRecord(Example(1)) + std::string(NoteLength, '\xA7');
    GivenNotes(before);

    WriteNote(Example(3));

    EXPECT_EQ(Bytes(Path()), before + NoteRecord(Example(3)));
}

TEST_F(NotesTest, AChangedNoteIsWrittenAtItsNumber) {
    GivenNotes(NoteRecord(Example(1)) + NoteRecord(Example(2)) + NoteRecord(Example(3)));
    Note changed = Example(2);
    changed.Issue = "Another";

    WriteNote(changed);

    EXPECT_EQ(Bytes(Path()), NoteRecord(Example(1)) + NoteRecord(changed) + NoteRecord(Example(3)));
}

TEST_F(NotesTest, ANoteIsKnownByItsPlaceWhateverNumberItsRecordHolds) {
    GivenNotes(NoteRecord(Example(77)) + NoteRecord(Example(-5)));

    const NotesFile file = ReadNotes();

    EXPECT_EQ(file.Notes.at(0).Number, 1);
    EXPECT_EQ(file.Notes.at(1).Number, 2);
    EXPECT_EQ(ReadNote(2).Number, 2);
}

TEST_F(NotesTest, AFileThatEndsInsideItsLastNoteHasWhatIsThereOfIt) {
    GivenNotes(NoteRecord(Example(1)) + NoteRecord(Example(2)).substr(0, 270));

    const NotesFile file = ReadNotes();

    EXPECT_TRUE(file.CutOff);
    ASSERT_EQ(file.Notes.size(), 2U);
    EXPECT_EQ(file.Notes[1].Issue, Example().Issue);
    EXPECT_EQ(file.Notes[1].Person, "Anna Ber");
    EXPECT_EQ(file.Notes[1].Resolution, "");
}

TEST_F(NotesTest, WhatIsThereOfACutOffNoteStaysWhenAnotherIsWritten) {
    const std::string cutOff = NoteRecord(Example(2)).substr(0, 270);
    for (const std::int32_t written : {1, 3}) {
        GivenNotes(NoteRecord(Example(1)) + cutOff);

        WriteNote(Example(written));

        const std::string bytes = Bytes(Path());
        EXPECT_EQ(bytes.substr(NoteLength, NoteLength), cutOff + std::string(NoteLength - 270, ' '));
        EXPECT_EQ(bytes.size(), (written == 1 ? 2 : 3) * NoteLength);
        EXPECT_FALSE(ReadNotes().CutOff);
    }
}

TEST_F(NotesTest, SavingACutOffNoteRepairsTheFile) {
    GivenNotes("\x01");
    EXPECT_EQ(ReadNotes().Notes.size(), 1U);

    WriteNote(Example(1));

    EXPECT_EQ(Bytes(Path()), NoteRecord(Example(1)));
}

TEST_F(NotesTest, ThereIsNoNoteOutsideTheFile) {
    GivenNotes(NoteRecord(Example(1)));

    for (const std::int32_t number : {-1, 0, 2, 2147483647})
        EXPECT_EQ(FailureNumber([&] { ReadNote(number); }), 63);
    for (const std::int32_t number : {-1, 0, 3, 2147483647})
        EXPECT_EQ(FailureNumber([&] { WriteNote(Example(number)); }), 63);
    EXPECT_EQ(Bytes(Path()), NoteRecord(Example(1)));
}

TEST_F(NotesTest, ADiskThatTakesNothingLeavesTheFileAsItWas) {
    const std::string before = NoteRecord(Example(1));
    GivenNotes(before);
    RefusingDisk disk(Global.DBFPath, Access::Create);
    Global.TheDisk = &disk;

    EXPECT_EQ(FailureNumber([] { WriteNote(Example(1)); }), 70);

    EXPECT_EQ(Bytes(Path()), before);
}

TEST_F(NotesTest, AFileThatCannotBeReadIsAFailureAndNotAnEmptyList) {
    GivenNotes(NoteRecord(Example(1)));
    RefusingDisk disk(Global.DBFPath, Access::Read);
    Global.TheDisk = &disk;

    EXPECT_EQ(FailureNumber(ReadNotes), 70);
    EXPECT_EQ(FailureNumber([] { WriteNote(Example(1)); }), 70);

    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(Bytes(Path()), NoteRecord(Example(1)));
}

TEST_F(NotesTest, AFolderOfThatNameIsAFailure) {
    MakePath(Path() + "/");

    EXPECT_NE(FailureNumber(ReadNotes), 0);
}

TEST_F(NotesTest, RubbishIsListedAndCanBeRepaired) {
    for (const std::string& content : Rubbish(NoteRecord(Example(1)) + NoteRecord(Example(2)))) {
        GivenNotes(content);
        OnlyRunTimeFailures([&] {
            const NotesFile file = ReadNotes();
            EXPECT_EQ(file.Notes.size(), (content.size() + NoteLength - 1) / NoteLength);
            EXPECT_EQ(NotesGrid(file.Notes)->RowCount(), static_cast<std::int32_t>(file.Notes.size()));
            if (file.Notes.empty()) return;
            WriteNote(file.Notes.back());
            EXPECT_EQ(
                Bytes(Path()).substr(0, content.size() / NoteLength * NoteLength -
                                            (file.CutOff ? 0 : NoteLength)),
                content.substr(0, content.size() / NoteLength * NoteLength - (file.CutOff ? 0 : NoteLength)))
                << "the notes before it";
        });
    }
}

// ---- the list ----

class NotesGridTest : public NotesTest {
protected:
    static std::unique_ptr<GridData> Given() {
        std::vector<Note> notes;
        const struct {
            double Date;
            const char *Process, *Issue, *Resolved;
        } rows[] = {{46348.5, "Import", "b", "2026-11-23"},
                    {46340, "Items", "B", ""},
                    {0, "export", "a", "11/1/2026"}};
        for (const auto& row : rows) {
            Note note;
            note.Number = static_cast<std::int32_t>(notes.size()) + 1;
            note.Date = row.Date;
            note.Process = row.Process;
            note.Issue = row.Issue;
            note.Resolved = row.Resolved;
            notes.push_back(note);
        }
        while (notes.size() < 10) {
            notes.push_back(Example(static_cast<std::int32_t>(notes.size()) + 1));
        }
        return NotesGrid(notes);
    }

    static std::string Order(GridData& grid) {
        std::string order;
        for (std::int32_t row = 0; row < grid.RowCount(); ++row) order += grid.Cell(row, 0).Utf8() + " ";
        return order;
    }
};

TEST_F(NotesGridTest, HasTheSevenColumns) {
    const auto grid = Given();
    std::string headings;
    for (int column = 0; column < grid->ColumnCount(); ++column) {
        headings +=
            grid->Heading(column).Title.Utf8() + "=" + static_cast<char>(grid->Heading(column).Kind) + " ";
    }
    EXPECT_EQ(headings, "Record #=N Date=D Process=T Issue=T Person=T Date Resolved=D Resolution=T ");
    EXPECT_EQ(grid->Cell(9, 6).Utf8(), "A comma in a name. Their export now writes quotes.");
}

TEST_F(NotesGridTest, AProcessIsShownInTheLanguageWhateverTheOneThatItWasSavedIn) {
    UseForeignTexts();
    const std::string import = ForeignText(msg::lblImport);

    const auto grid = NotesGrid({Example(), [&] {
                                     Note note = Example();
                                     note.Process = import;
                                     return note;
                                 }()});

    EXPECT_EQ(grid->Cell(0, 2).CodePage(), import);
    EXPECT_EQ(grid->Cell(1, 2).CodePage(), import);
}

TEST_F(NotesGridTest, NumbersDatesAndTextsAreSortedByTheirKind) {
    const auto grid = Given();

    grid->Sort(0, true);
    EXPECT_EQ(Order(*grid), "10 9 8 7 6 5 4 3 2 1 ") << "10 is more than 9";
    grid->Sort(1, false);
    EXPECT_EQ(Order(*grid).substr(0, 6), "3 2 1 ") << "no date comes first";
    grid->Sort(5, false);
    EXPECT_EQ(Order(*grid).substr(0, 6), "2 3 1 ") << "whatever the form of a date";
    grid->Sort(2, false);
    EXPECT_EQ(Order(*grid).substr(0, 2), "3 ") << "without regard to case";
}

// ---- paper and message ----

TEST_F(NotesTest, IsPrintedFieldByFieldWithTheSystemInformationFourBlanksIn) {
    MachineFacts facts;
    facts.OSName = Text::Path(std::string_view("Debian"));

    const std::string printed = LinesOf(PrintedNote(Example(), facts));

    EXPECT_EQ(printed.substr(0, printed.find("    ZUK Version:")),
              "Record #:       2\n"
              "Date:           2026-11-22 12:00:00\n"
              "ZUK Version:    1.0.0\n"
              "Process:        Import\n"
              "Person:         Anna Berg\n"
              "Issue:          A price list from Café Léa stops at line 84.\n"
              "Date Resolved:  2026-11-23\n"
              "Resolution:     A comma in a name.\n"
              "                Their export now writes quotes.\n"
              "\n"
              "System Information:\n");
    EXPECT_NE(printed.find("\n    Operating System Name:        Debian\n"), std::string::npos) << printed;
    EXPECT_NE(printed.find("\n    DataOut (Export) Path:        " + Global.DataOutPath + "\n"),
              std::string::npos);
}

TEST_F(NotesTest, TheMessageHasTheSameLines) {
    const std::string mail = NoteMail(Example(), {});

    EXPECT_TRUE(mail.starts_with("Record #:       2\r\nDate:           2026-11-22 12:00:00\r\n")) << mail;
    EXPECT_NE(mail.find("Caf\xE9 L\xE9"s + "a"), std::string::npos);
    EXPECT_NE(mail.find("\r\n\r\nSystem Information:\r\n    ZUK Version:"), std::string::npos);
    EXPECT_TRUE(mail.ends_with(Global.DataOutPath + "\r\n"));
}

} // namespace

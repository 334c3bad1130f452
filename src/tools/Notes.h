#pragma once

#include "core/Dates.h"
#include "core/Text.h"
#include "views/GridData.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct MachineFacts;

/// Bytes of a note in `Notes.dat`; the file has nothing but notes.
inline constexpr std::size_t NoteLength = 1112;

/// How many bytes of these a note holds; the others of its texts are short.
inline constexpr std::size_t IssueLength = 250, ResolutionLength = 750;

/// One problem that was met, and what became of it. Texts are code page 1252 without blanks around them.
struct Note {
    std::int32_t Number = 0; ///< its place in the file, from 1
    double Date = 0;         ///< days since 1899-12-30, the fraction is the time; any double in a broken file
    std::string Issue, Person;
    std::string Resolved; ///< a date as it was written; empty while the problem is open
    std::string Version;  ///< of the program when the note was made
    std::string Process;
    std::string Resolution;
};

/// All processes that a note can be about, in the order of their list.
const std::vector<MessageId>& NoteProcesses();

/// A new note: of this moment, and of a version of the program.
Note NewNote(std::int32_t number, std::string_view version);

/// The record of a note: what is longer than its field is cut.
std::string NoteRecord(const Note& note);

/// The note of a record. Bytes that a shorter record lacks read as blanks, those of numbers as 0; a NUL in a
/// text is a blank.
Note ReadNoteRecord(std::string_view record, std::int32_t number);

/// The notes of the tables directory, by their places. A missing file is made, and has none.
struct NotesFile {
    std::vector<Note> Notes;
    bool CutOff = false; ///< the file ends inside the last one
};
/// RunTimeFailure as ReadWholeFile, and as SafeFile where there is no file.
NotesFile ReadNotes();

/// One of them. RunTimeFailure 63 when there is none of this number; as ReadNotes.
Note ReadNote(std::int32_t number);

/// Writes a note at its place, or behind the last one; all others stay byte for byte. One that the file cut
/// off before it is filled up with blanks. RunTimeFailure 63 for a place further behind; as ReadNotes and
/// SafeFile.
void WriteNote(const Note& note);

/// When a note was made: the date, with the time where there is one; empty for what is no date.
Text NoteMoment(const Note& note);

/// The notes as `frmFindNotes` lists them.
std::unique_ptr<GridData> NotesGrid(const std::vector<Note>& notes);

/// A note as it is printed, below its title, and as it goes into a message: its fields with their labels,
/// then the system information. RunTimeFailure as SystemInformation.
std::vector<Text> PrintedNote(const Note& note, const MachineFacts& facts);
/// The message's body, ready for SendMail.
std::string NoteMail(const Note& note, const MachineFacts& facts);

#include "tools/Notes.h"

#include "core/Catalogue.h"
#include "core/CodePage.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"
#include "tools/SystemInformation.h"

#include <algorithm>
#include <bit>

namespace {

struct TextField {
    std::string Note::*Value;
    std::size_t Width;
};

/// Behind the number and the date, in the record's order.
constexpr TextField TextFields[] = {
    {&Note::Issue, IssueLength}, {&Note::Person, 30},  {&Note::Resolved, 10},
    {&Note::Version, 30},        {&Note::Process, 30}, {&Note::Resolution, ResolutionLength},
};
constexpr std::size_t NumberBytes = 4, DateBytes = 8;

/// The text's beginning, at most so many bytes.
std::string Cut(std::string_view text, std::size_t width) {
    return std::string(text.substr(0, width));
}

void AppendLittleEndian(std::string& to, std::uint64_t value, std::size_t bytes) {
    for (std::size_t k = 0; k < bytes; ++k) to += static_cast<char>(value >> 8 * k & 0xFF);
}

std::uint64_t LittleEndianAt(std::string_view bytes, std::size_t at, std::size_t count) {
    std::uint64_t value = 0;
    for (std::size_t k = 0; k < count; ++k) {
        const std::size_t from = at + k;
        const auto byte = from < bytes.size() ? static_cast<unsigned char>(bytes[from]) : 0U;
        value |= std::uint64_t{byte} << 8 * k;
    }
    return value;
}

std::string NotesPath() {
    return Global.DBFPath + "Notes.dat";
}

std::string NotesBytes() {
    const std::string path = NotesPath();
    if (!FileExists(path) && !Global.TheDisk->IsFile(ResolvePath(path))) WriteWholeFile(path, {});
    return ReadWholeFile(path);
}

std::int32_t CountNotes(std::string_view bytes) {
    return static_cast<std::int32_t>((bytes.size() + NoteLength - 1) / NoteLength);
}

/// `number` counts from 1 and is not above CountNotes.
Note NoteAt(std::string_view bytes, std::int32_t number) {
    return ReadNoteRecord(bytes.substr(static_cast<std::size_t>(number - 1) * NoteLength, NoteLength),
                          number);
}

Text NumberOf(const Note& note) {
    return Text::Value(std::int64_t{note.Number});
}

Text OnOneLine(const std::string& text) {
    std::string line;
    for (const char c : OneLine(text)) {
        // A line end of two characters is one blank.
        if (c != ' ' || !line.ends_with(' ')) line += c;
    }
    return Text::Value(std::string_view(line));
}

struct LabelledText {
    MessageId Label;
    Text Value;
};

std::vector<LabelledText> Labelled(const Note& note) {
    const auto value = [](const std::string& text) { return Text::Value(std::string_view(text)); };
    return {
        {msg::lblNoteNumber, NumberOf(note)},     {msg::lblNoteDate, NoteMoment(note)},
        {msg::lblZUKVer, value(note.Version)},    {msg::lblProcess, ShownKey(note.Process, NoteProcesses())},
        {msg::lblPerson, value(note.Person)},     {msg::lblIssue, value(note.Issue)},
        {msg::lblResolved, value(note.Resolved)}, {msg::lblResolution, value(note.Resolution)}};
}

/// The text's lines, whichever characters end them.
std::vector<std::string> LinesOf(std::string_view text) {
    std::vector<std::string> lines{{}};
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '\r' && text[at] != '\n') {
            lines.back() += text[at];
            continue;
        }
        if (text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n') ++at;
        lines.emplace_back();
    }
    return lines;
}

/// The note's fields, a text's further lines below its first one.
std::vector<Text> FieldLines(const Note& note) {
    constexpr std::size_t valueColumn = 16;
    std::vector<Text> lines;
    for (const LabelledText& field : Labelled(note)) {
        std::string begin = Text(field.Label).CodePage();
        begin.resize(std::max(valueColumn, begin.size() + 1), ' ');
        for (const std::string& line : LinesOf(field.Value.CodePage())) {
            const std::string whole = begin + line;
            lines.push_back(Text::Value(TrimRight(whole)));
            begin.assign(valueColumn, ' ');
        }
    }
    return lines;
}

} // namespace

const std::vector<MessageId>& NoteProcesses() {
    static const std::vector<MessageId> processes{
        msg::lblImport,       msg::lblDownload,     msg::lblUpload,        msg::lblExport,
        msg::lblBCustomers,   msg::lblBItems,       msg::ProcessPricing,   msg::lblPrinter,
        msg::ProcessBarcodes, msg::SignatureImages, msg::lblPayments,      msg::lblSTax,
        msg::frBackup,        msg::lblConfigUA,     msg::pageQuickButtons, msg::frOther};
    return processes;
}

Note NewNote(std::int32_t number, std::string_view version) {
    Note note;
    note.Number = number;
    note.Date = ToSerial(Now());
    note.Version = version;
    return note;
}

std::string NoteRecord(const Note& note) {
    std::string record;
    AppendLittleEndian(record, static_cast<std::uint32_t>(note.Number), NumberBytes);
    AppendLittleEndian(record, std::bit_cast<std::uint64_t>(note.Date), DateBytes);
    for (const TextField& field : TextFields) {
        const std::size_t end = record.size() + field.Width;
        record += Cut(note.*field.Value, field.Width);
        record.resize(end, ' ');
    }
    return record;
}

Note ReadNoteRecord(std::string_view record, std::int32_t number) {
    Note note;
    note.Number = number; // the one in the record may be anything in a broken file
    note.Date = std::bit_cast<double>(LittleEndianAt(record, NumberBytes, DateBytes));
    std::size_t at = NumberBytes + DateBytes;
    for (const TextField& field : TextFields) {
        std::string text = at < record.size() ? Cut(record.substr(at), field.Width) : std::string();
        std::replace(text.begin(), text.end(), '\0', ' ');
        note.*field.Value = Trim(text);
        at += field.Width;
    }
    return note;
}

NotesFile ReadNotes() {
    const std::string bytes = NotesBytes();
    NotesFile file;
    for (std::int32_t number = 1; number <= CountNotes(bytes); ++number)
        file.Notes.push_back(NoteAt(bytes, number));
    file.CutOff = bytes.size() % NoteLength != 0;
    return file;
}

Note ReadNote(std::int32_t number) {
    const std::string bytes = NotesBytes();
    if (number < 1 || number > CountNotes(bytes)) throw RunTimeFailure(63, NotesPath());
    return NoteAt(bytes, number);
}

void WriteNote(const Note& note) {
    std::string bytes = NotesBytes();
    const std::int32_t count = CountNotes(bytes);
    if (note.Number < 1 || note.Number > count + 1) throw RunTimeFailure(63, NotesPath());
    if (const std::size_t last = bytes.size() % NoteLength; last != 0) {
        const std::string blank = NoteRecord(ReadNoteRecord({}, count));
        bytes += blank.substr(last);
    }
    const std::size_t place = static_cast<std::size_t>(note.Number - 1) * NoteLength;
    bytes.resize(std::max(bytes.size(), place + NoteLength));
    bytes.replace(place, NoteLength, NoteRecord(note));
    WriteWholeFile(NotesPath(), bytes);
}

Text NoteMoment(const Note& note) {
    try {
        if (note.Date == 0) return {};
        const DateTime date = FromSerial(note.Date);
        const bool isMidnight = date.Hour == 0 && date.Minute == 0 && date.Second == 0;
        const std::string text = isMidnight ? ShortDate(date) : DateAndTime(date);
        return Text::Value(std::string_view(text));
    } catch (const RunTimeFailure&) {
        return {};
    }
}

std::unique_ptr<GridData> NotesGrid(const std::vector<Note>& notes) {
    std::vector<GridHeading> headings{{msg::ColumnRecord, SortKind::Number},
                                      {msg::ColumnDate, SortKind::Date},
                                      {msg::ColumnProcess},
                                      {msg::ColumnIssue, SortKind::Text, 200},
                                      {msg::ColumnPerson},
                                      {msg::ColumnDateResolved, SortKind::Date},
                                      {msg::ColumnResolution, SortKind::Text, 180}};
    std::vector<std::vector<Text>> rows;
    rows.reserve(notes.size());
    for (const Note& note : notes) {
        rows.push_back({NumberOf(note), NoteMoment(note),
                        ShownKey(OnOneLine(note.Process).CodePage(), NoteProcesses()), OnOneLine(note.Issue),
                        OnOneLine(note.Person), OnOneLine(note.Resolved), OnOneLine(note.Resolution)});
    }
    return std::make_unique<ListGrid>(std::move(headings), std::move(rows));
}

std::vector<Text> PrintedNote(const Note& note, const MachineFacts& facts) {
    constexpr std::string_view indent = "    ";
    std::vector<Text> lines = FieldLines(note);
    lines.emplace_back();
    lines.emplace_back(msg::lblSysInfo);
    for (const Text& line : SystemInformation(facts)) lines.push_back(Text::Value(indent) + line);
    return lines;
}

std::string NoteMail(const Note& note, const MachineFacts& facts) {
    return MailBody(PrintedNote(note, facts));
}

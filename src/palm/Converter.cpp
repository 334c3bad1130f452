#include "palm/Converter.h"

#include <algorithm>

namespace {

constexpr const char* What = "fields of a table";
constexpr std::uint32_t LayoutMark = FourCharacters("ZUKT");
constexpr std::uint16_t PlainVersion = 1, PackedVersion = 2;
/// Of a packed record: so few that each handheld moves it in one piece, so many that a table takes few turns.
constexpr std::size_t PackedBytes = 4096;
constexpr std::size_t NameSize = 10;
constexpr std::size_t MostFields = 255;
constexpr std::size_t LongestFields = 32767;

constexpr std::string_view InkMark = "INK1";
constexpr std::uint16_t MostDots = 320;

char Capital(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

std::string Capitals(std::string_view text) {
    std::string capitals(text);
    std::transform(capitals.begin(), capitals.end(), capitals.begin(), Capital);
    return capitals;
}

[[noreturn]] void Refuse(const std::string& problem) {
    throw PalmFailure(std::string(What) + ": " + problem);
}

void Check(const HandheldLayout& layout) {
    if (layout.Fields.empty() || layout.Fields.size() > MostFields) {
        Refuse(std::to_string(layout.Fields.size()) + " of them");
    }
    std::vector<std::string> names;
    for (const HandheldField& field : layout.Fields) {
        if (field.Name.empty() || field.Name.size() > NameSize ||
            field.Name.find('\0') != std::string::npos) {
            Refuse("the name \"" + field.Name + "\" has not 1 to 10 characters");
        }
        if (field.Length == 0) Refuse(field.Name + " has no length");
        names.push_back(Capitals(field.Name));
    }
    std::sort(names.begin(), names.end());
    const auto twice = std::adjacent_find(names.begin(), names.end());
    if (twice != names.end()) Refuse(*twice + " comes twice");
    if (layout.RecordBytes() > LongestFields) {
        Refuse(std::to_string(layout.RecordBytes()) + " bytes in a record");
    }
    if (layout.RowsInRecord == 0 || layout.RowsInRecord * layout.RecordBytes() > LongestRecord) {
        Refuse(std::to_string(layout.RowsInRecord) + " rows of " + std::to_string(layout.RecordBytes()) +
               " bytes in a record");
    }
}

std::size_t RowBytes(const Ink& ink) {
    return (ink.Width + std::size_t{7}) / 8;
}

void Check(const Ink& ink) {
    const auto inRange = [](std::uint16_t dots) { return dots >= 1 && dots <= MostDots; };
    if (!inRange(ink.Width) || !inRange(ink.Height)) {
        throw PalmFailure("ink of " + std::to_string(ink.Width) + " by " + std::to_string(ink.Height) +
                          " dots");
    }
    if (ink.Rows.size() != RowBytes(ink) * ink.Height) {
        throw PalmFailure("ink with " + std::to_string(ink.Rows.size()) + " bytes of rows");
    }
}

/// A little-endian number, as bitmap files hold them.
void PutLittle(std::string& to, std::uint32_t value, int bytes) {
    for (int k = 0; k < bytes; ++k) to += static_cast<char>(value >> 8 * k & 0xFF);
}

} // namespace

std::size_t HandheldLayout::RecordBytes() const {
    std::size_t bytes = 0;
    for (const HandheldField& field : Fields) bytes += field.Length;
    return bytes;
}

std::size_t HandheldLayout::Find(std::string_view name) const {
    const std::string wanted = Capitals(name);
    const auto found = std::find_if(Fields.begin(), Fields.end(), [&](const HandheldField& field) {
        return Capitals(field.Name) == wanted;
    });
    return static_cast<std::size_t>(found - Fields.begin());
}

std::string_view HandheldLayout::Get(std::size_t field, std::string_view record) const {
    std::size_t at = 0;
    for (std::size_t k = 0; k < field; ++k) at += Fields.at(k).Length;
    const std::size_t length = Fields.at(field).Length;
    if (record.size() < at + length)
        throw PalmFailure("record of " + std::to_string(record.size()) + " bytes");
    return record.substr(at, length);
}

void HandheldLayout::Put(std::size_t field, std::string_view value, std::string& record) const {
    const std::size_t at = static_cast<std::size_t>(Get(field, record).data() - record.data());
    const std::size_t length = Fields[field].Length;
    std::string fitted(value.substr(0, length));
    fitted.resize(length, ' ');
    record.replace(at, length, fitted);
}

std::string PackLayout(const HandheldLayout& layout) {
    Check(layout);
    ByteWriter block;
    block.U32(LayoutMark).U16(layout.IsPacked() ? PackedVersion : PlainVersion);
    block.U16(static_cast<unsigned>(layout.Fields.size()));
    for (const HandheldField& field : layout.Fields) {
        block.Put(field.Name).Put(std::string(NameSize - field.Name.size(), '\0'));
        block.U8(static_cast<unsigned char>(field.Type)).U8(field.Length).U8(field.Decimals).U8(0);
    }
    if (layout.IsPacked()) block.U16(layout.RowsInRecord);
    return std::move(block).Bytes();
}

HandheldLayout ReadLayout(std::string_view block) {
    ByteReader from(block, What);
    if (from.U32() != LayoutMark) from.Fail("not the database of a table");
    const unsigned version = from.U16();
    if (version != PlainVersion && version != PackedVersion) {
        from.Fail("version " + std::to_string(version) + " of the layout");
    }
    HandheldLayout layout;
    const std::size_t count = from.U16();
    if (count > MostFields) Refuse(std::to_string(count) + " of them");
    for (std::size_t k = 0; k < count; ++k) {
        HandheldField field;
        const std::string_view name = from.Take(NameSize);
        field.Name = name.substr(0, name.find('\0'));
        field.Type = static_cast<char>(from.U8());
        field.Length = from.U8();
        field.Decimals = from.U8();
        from.Skip(1);
        layout.Fields.push_back(std::move(field));
    }
    if (version == PackedVersion) {
        layout.RowsInRecord = from.U16();
        if (!layout.IsPacked())
            Refuse("packed with " + std::to_string(layout.RowsInRecord) + " rows in a record");
    }
    if (from.Left() != 0) from.Fail(std::to_string(from.Left()) + " bytes behind the last one");
    Check(layout);
    return layout;
}

std::uint16_t RowsInRecordFor(const HandheldLayout& layout, std::size_t rows) {
    if (rows <= MostRecords) return 1;
    const std::size_t bytes = layout.RecordBytes();
    const std::size_t needed = (rows + MostRecords - 1) / MostRecords;
    if (needed * bytes > LongestRecord) {
        throw PalmFailure(std::to_string(rows) + " rows of " + std::to_string(bytes) +
                          " bytes are more than a handheld database holds");
    }
    return static_cast<std::uint16_t>(std::max(needed, PackedBytes / bytes));
}

std::string HandheldDatabaseName(std::string_view tableFile) {
    tableFile.remove_prefix(tableFile.find_last_of("/\\") + 1);
    const std::string table = Capitals(tableFile.substr(0, tableFile.rfind('.')));
    std::string name = std::string(HandheldPrefix) + table;
    // Room is left for the mark of one that is being written.
    if (TableOfDatabase(name).empty() || name.size() >= LongestDatabaseName) {
        throw PalmFailure("\"" + std::string(tableFile) + "\" cannot be the name of a handheld database");
    }
    return name;
}

std::string TableOfDatabase(std::string_view databaseName) {
    if (!databaseName.starts_with(HandheldPrefix)) return {};
    const std::string_view table = databaseName.substr(HandheldPrefix.size());
    const bool isTable = !table.empty() && std::all_of(table.begin(), table.end(), [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
    });
    return isTable ? std::string(table) : std::string();
}

std::string PackRecord(const HandheldLayout& layout, const HandheldRecord& record) {
    if (record.Fields.size() != layout.RecordBytes()) {
        throw PalmFailure("record of " + std::to_string(record.Fields.size()) + " bytes");
    }
    if (!record.IsSigned()) return record.Fields;
    if (layout.IsPacked()) throw PalmFailure("ink in a table that is packed");
    Check(record.Signature);
    ByteWriter data;
    data.Put(record.Fields).Put(InkMark).U16(record.Signature.Width).U16(record.Signature.Height);
    return std::move(data.Put(record.Signature.Rows)).Bytes();
}

HandheldRecord ReadRecord(const HandheldLayout& layout, std::string_view data) {
    ByteReader from(data, "record of a table");
    HandheldRecord record;
    record.Fields = from.Take(layout.RecordBytes());
    if (from.Left() == 0) return record;
    if (from.Take(InkMark.size()) != InkMark) from.Fail("something else than ink behind the fields");
    record.Signature.Width = from.U16();
    record.Signature.Height = from.U16();
    record.Signature.Rows = from.Rest();
    Check(record.Signature);
    return record;
}

RowReader::RowReader(const HandheldLayout& layout) : layout_(layout), rowBytes_(layout.RecordBytes()) {}

std::vector<HandheldRecord> RowReader::Read(std::string_view data) {
    if (!layout_.IsPacked()) return {ReadRecord(layout_, data)};
    if (ended_) throw PalmFailure("record of a table: it comes behind one that is not full");
    if (data.empty() || data.size() % rowBytes_ != 0 || data.size() / rowBytes_ > layout_.RowsInRecord) {
        throw PalmFailure("record of a table: " + std::to_string(data.size()) + " bytes are not 1 to " +
                          std::to_string(layout_.RowsInRecord) + " rows of " + std::to_string(rowBytes_));
    }
    std::vector<HandheldRecord> rows;
    rows.reserve(data.size() / rowBytes_);
    for (; !data.empty(); data.remove_prefix(rowBytes_))
        rows.push_back({std::string(data.substr(0, rowBytes_)), {}});
    ended_ = rows.size() < layout_.RowsInRecord;
    return rows;
}

std::string InkBitmap(const Ink& ink) {
    Check(ink);
    constexpr std::uint32_t headers = 62;
    const std::size_t from = RowBytes(ink);
    const std::size_t row = (from + 3) / 4 * 4;
    const auto size = static_cast<std::uint32_t>(row * ink.Height);
    std::string file = "BM";
    for (const std::uint32_t value : {headers + size, 0U, headers, 40U}) PutLittle(file, value, 4);
    PutLittle(file, ink.Width, 4);
    PutLittle(file, ink.Height, 4);
    PutLittle(file, 1, 2); // planes
    PutLittle(file, 1, 2); // bits a dot
    for (const std::uint32_t value : {0U, size, 2835U, 2835U, 2U, 0U}) PutLittle(file, value, 4);
    PutLittle(file, 0xFFFFFF, 4); // a dot that is not set is paper
    PutLittle(file, 0, 4);
    for (std::size_t line = ink.Height; line-- > 0;) {
        file += ink.Rows.substr(line * from, from);
        file.append(row - from, '\0');
    }
    return file;
}

DatabaseHeader HandheldHeader(std::string_view tableFile) {
    DatabaseHeader header;
    header.Name = HandheldDatabaseName(tableFile);
    header.Version = WholeTable;
    header.Type = HandheldType;
    header.Creator = HandheldCreator;
    return header;
}

#pragma once

#include "core/Disk.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Names a field of a table: by its index from 1, by a text that reads as a number, or by the
/// first letters of its name. A lookup turns the letters into capitals, without blanks around.
class FieldKey {
public:
    FieldKey(int index) : index_(index), isIndex_(true) {}
    FieldKey(std::string text) : text_(std::move(text)) {}
    FieldKey(std::string_view text) : text_(text) {}
    FieldKey(const char* text) : text_(text) {}

    bool IsIndex() const { return isIndex_; }
    int Index() const { return index_; }
    const std::string& Text() const { return text_; } ///< empty for an index
    void SetText(std::string text) { text_ = std::move(text); }

private:
    std::string text_;
    int index_ = 0;
    bool isIndex_ = false;
};

/// The layout of one table, as its header and descriptors tell it, and what follows from it: where
/// a field lies, which field a key means, how a value is fitted to a field.
///
/// Fields count from 1; entry 0 stands for "no field". Every routine that takes a field's index
/// fails with RunTimeFailure 9 outside 0 to FieldCount(). Offsets in the file count from 0.
/// Record k is its flag byte followed by RecordLength() - 1 bytes of fields; the records lie behind
/// the descriptors' end byte, wherever the header's length word points.
class TableLayout {
public:
    static constexpr int MaxFields = 255;

    static constexpr char Live = ' ';
    static constexpr char Deleted = '*';

    /// No fields and no records.
    TableLayout();

    /// Reads and checks the beginning of a table. `path` is for messages only.
    /// RunTimeFailure 321 for a header that cannot be true: it says which file and what is wrong.
    /// RunTimeFailure 6 for a 256th field, or a field that would start beyond position 32767.
    static TableLayout Read(DiskFile& file, std::string_view path);

    /// The same of a whole file's bytes.
    static TableLayout ReadBytes(std::string bytes, std::string_view path);

    std::int32_t RecordCount() const { return recordCount_; } ///< 0 or more
    std::int16_t HeaderLength() const { return headerLength_; }
    std::int16_t RecordLength() const { return recordLength_; } ///< with the flag byte; 1 or more
    int FieldCount() const { return static_cast<int>(fields_.size()) - 1; }

    /// As it stands in the descriptor, blanks cut at both ends; NUL bytes are part of it.
    const std::string& FieldName(int field) const { return At(field).Name; }
    /// Up to its first NUL byte, blanks cut: what lists of names show and whole names compare by.
    std::string_view PlainName(int field) const;
    /// One letter, or empty.
    const std::string& FieldType(int field) const { return At(field).Type; }
    int FieldLength(int field) const { return At(field).Length; } ///< 0 to 255; 2 for entry 0
    int FieldDecimals(int field) const { return At(field).Decimals; }
    /// Position in a record's fields, from 1; 0 for entry 0.
    int FieldStart(int field) const { return At(field).Start; }
    /// Bytes of all fields together: at most RecordLength() - 1.
    int FieldBytes() const { return fieldBytes_; }

    /// Position in the file, from 1, of the first field byte of record 1.
    std::int16_t DataStart() const { return static_cast<std::int16_t>(32 * FieldCount() + 35); }
    /// Offset of record 1's flag byte, which is the number of bytes before the records.
    std::uint64_t RecordsAt() const { return static_cast<std::uint64_t>(DataStart() - 2); }

    /// All bytes before the records, as they stand in the file.
    const std::string& Header() const { return header_; }

    /// The field that a key means, 0 for none. A text key comes back in capitals without blanks
    /// around; the first field whose name begins with it is meant, without regard to case.
    /// RunTimeFailure 9 for an index outside 0 to FieldCount(); 6 when the last of 255 fields was
    /// looked at in vain.
    int Find(FieldKey& key) const;
    int Find(const FieldKey& key) const;

    /// What a value becomes in a field: eight digits in a `D` field when it reads as a date, "0" in
    /// an `N` field when it is no number. Anything else stays as it is. Never fails for a value.
    void Convert(int field, std::string& value) const;

    /// Converts a value and puts it into a record's fields: left-aligned, blanks behind it, cut at
    /// the field's length. Field 0 writes nothing. RunTimeFailure 5 when `fields` is shorter than
    /// FieldBytes().
    void Put(int field, std::string& value, std::string& fields) const;

    /// The same, but the value stays as it is. Costs less where there is nothing to convert.
    void Fit(int field, std::string_view value, std::string& fields) const;

    /// Fits every field of a record anew: what Fit does with its trimmed text. RunTimeFailure as Fit.
    void FitAll(std::string& fields) const;

    /// A field's characters out of a record's fields, padding kept; empty for field 0.
    /// RunTimeFailure 5 when `fields` is shorter than FieldBytes().
    std::string_view Get(int field, std::string_view fields) const;

private:
    enum class Kind : std::uint8_t { Text, Number, Date };
    struct Field {
        std::string Name;
        std::string Type;
        std::uint8_t Length = 0;
        std::uint8_t Decimals = 0;
        std::int16_t Start = 0;
        Kind Conversion = Kind::Text;
    };

    static TableLayout ReadStart(std::string bytes, std::uint64_t size, std::string_view path);
    const Field& At(int field) const;
    void PutText(const Field& to, std::string_view text, std::string& fields) const;
    void AddField(std::string_view descriptor, std::string_view path);

    std::string header_;
    std::int32_t recordCount_ = 0;
    std::int16_t headerLength_ = 0;
    std::int16_t recordLength_ = 0;
    std::vector<Field> fields_;
    int fieldBytes_ = 0;
};

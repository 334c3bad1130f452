#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A dBASE file made byte by byte, as other programs make it. Nothing of the engine is used, so
/// that what the engine reads and writes has something to be held against.
class TableMaker {
public:
    struct Column {
        std::string Name;
        char Type = 'C';
        int Length = 0;
        int Decimals = 0;
    };

    explicit TableMaker(std::vector<Column> columns) : columns_(std::move(columns)) {}

    /// A record; each value is padded on the right or cut. Missing ones are blank.
    TableMaker& Row(const std::vector<std::string>& values, char flag = ' ');
    /// A record's bytes behind its flag, as they are.
    TableMaker& RawRow(std::string fields, char flag);

    /// Bytes of each record behind its last field. Given before the rows.
    TableMaker& Slack(int bytes);
    /// What stands behind the last record: 0x1A unless told otherwise.
    TableMaker& End(std::string bytes);
    /// The byte that ends the descriptors: 0x0D unless told otherwise.
    TableMaker& Terminator(char byte);
    /// Version, date and the reserved bytes: 4 and 20 of them.
    TableMaker& Preamble(std::string start, std::string reserved);

    // A header that lies.
    TableMaker& ClaimCount(std::int32_t count);
    TableMaker& ClaimRecordLength(std::int16_t length);
    TableMaker& ClaimHeaderLength(std::int16_t length);

    int RecordLength() const;
    int Columns() const { return static_cast<int>(columns_.size()); }
    std::string Bytes() const;

private:
    std::vector<Column> columns_;
    int slack_ = 0;
    std::string start_ = "\x03\x7A\x06\x1F";
    std::string reserved_ = std::string(20, '\0');
    std::string end_ = "\x1A";
    char terminator_ = '\x0D';
    std::optional<std::int32_t> count_;
    std::optional<std::int16_t> recordLength_, headerLength_;
    std::int32_t rows_ = 0;
    std::string records_;
};

/// A dBASE file read back byte by byte, by its header's count.
struct TableContent {
    /// An unreadable file has a Count of -1 and nothing else.
    explicit TableContent(std::string_view bytes);

    std::int32_t Count = -1;
    int RecordLength = 0;
    std::vector<std::string> Names;             ///< up to the first NUL
    std::vector<std::vector<std::string>> Rows; ///< values with their padding
    std::string Flags;                          ///< one character a record
    std::string Behind;                         ///< all that follows the last counted record

    /// A record's values, from 1, blanks at their ends cut.
    std::vector<std::string> Trimmed(int record) const;
};

#include "support/TableMaker.h"

namespace {

void Put(std::string& bytes, std::uint32_t value, int size) {
    for (int k = 0; k < size; ++k) bytes += static_cast<char>(value >> (8 * k) & 0xFF);
}

std::uint32_t Number(std::string_view bytes, std::size_t at, std::size_t size) {
    std::uint32_t value = 0;
    for (std::size_t k = 0; k < size; ++k) {
        value |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[at + k])) << (8 * k);
    }
    return value;
}

std::string Padded(std::string text, int length) {
    text.resize(static_cast<std::size_t>(length), ' ');
    return text;
}

} // namespace

TableMaker& TableMaker::Row(const std::vector<std::string>& values, char flag) {
    std::string fields;
    for (std::size_t k = 0; k < columns_.size(); ++k) {
        fields += Padded(k < values.size() ? values[k] : std::string(), columns_[k].Length);
    }
    return RawRow(fields + std::string(static_cast<std::size_t>(slack_), ' '), flag);
}

TableMaker& TableMaker::RawRow(std::string fields, char flag) {
    records_ += flag + fields;
    ++rows_;
    return *this;
}

TableMaker& TableMaker::Slack(int bytes) {
    slack_ = bytes;
    return *this;
}

TableMaker& TableMaker::End(std::string bytes) {
    end_ = std::move(bytes);
    return *this;
}

TableMaker& TableMaker::Terminator(char byte) {
    terminator_ = byte;
    return *this;
}

TableMaker& TableMaker::Preamble(std::string start, std::string reserved) {
    start_ = Padded(std::move(start), 4);
    reserved_ = Padded(std::move(reserved), 20);
    return *this;
}

TableMaker& TableMaker::ClaimCount(std::int32_t count) {
    count_ = count;
    return *this;
}

TableMaker& TableMaker::ClaimRecordLength(std::int16_t length) {
    recordLength_ = length;
    return *this;
}

TableMaker& TableMaker::ClaimHeaderLength(std::int16_t length) {
    headerLength_ = length;
    return *this;
}

int TableMaker::RecordLength() const {
    int length = 1 + slack_;
    for (const Column& column : columns_) length += column.Length;
    return length;
}

std::string TableMaker::Bytes() const {
    std::string bytes = start_;
    Put(bytes, static_cast<std::uint32_t>(count_.value_or(rows_)), 4);
    Put(bytes,
        static_cast<std::uint32_t>(headerLength_.value_or(static_cast<std::int16_t>(33 + 32 * Columns()))),
        2);
    Put(bytes, static_cast<std::uint32_t>(recordLength_.value_or(static_cast<std::int16_t>(RecordLength()))),
        2);
    bytes += reserved_;
    for (const Column& column : columns_) {
        std::string name = column.Name;
        name.resize(11, '\0');
        bytes += name + column.Type + std::string("\0\0\0\0", 4) + static_cast<char>(column.Length) +
                 static_cast<char>(column.Decimals) + std::string(14, '\0');
    }
    return bytes + terminator_ + records_ + end_;
}

TableContent::TableContent(std::string_view bytes) {
    if (bytes.size() < 33) return;
    std::vector<std::size_t> lengths;
    std::size_t at = 32;
    for (; at + 32 <= bytes.size() && static_cast<unsigned char>(bytes[at]) >= 32; at += 32) {
        const std::string name(bytes.substr(at, 11));
        Names.push_back(name.substr(0, name.find('\0')));
        lengths.push_back(static_cast<unsigned char>(bytes[at + 16]));
    }
    ++at;
    const auto count = static_cast<std::int32_t>(Number(bytes, 4, 4));
    RecordLength = static_cast<int>(Number(bytes, 10, 2));
    const std::size_t end = at + static_cast<std::size_t>(count) * static_cast<std::size_t>(RecordLength);
    if (count < 0 || end > bytes.size()) return;
    Count = count;
    for (std::int32_t k = 0; k < count; ++k, at += static_cast<std::size_t>(RecordLength)) {
        Flags += bytes[at];
        std::vector<std::string> row;
        std::size_t field = at + 1;
        for (const std::size_t length : lengths) {
            row.emplace_back(bytes.substr(field, length));
            field += length;
        }
        Rows.push_back(std::move(row));
    }
    Behind = bytes.substr(end);
}

std::vector<std::string> TableContent::Trimmed(int record) const {
    std::vector<std::string> row = Rows.at(static_cast<std::size_t>(record) - 1);
    for (std::string& value : row) {
        value.erase(value.find_last_not_of(' ') + 1);
        value.erase(0, value.find_first_not_of(' '));
    }
    return row;
}

#include "support/Lots.h"

#include <gtest/gtest.h>

using Values = std::vector<std::string>;

std::string Lots::Bytes(int length, int lowest) {
    std::string text;
    for (int k = 0; k < length; ++k) text += static_cast<char>(lowest + Below(256 - lowest));
    return text;
}

std::string Lots::Value(char type, int length) {
    static const Values Dates = {"20260115", "2026-12-31", "1/2/26", "15-Nov-2026", "19991301", "soon"};
    static const Values Numbers = {"12.5", "  7", "-3.25  ", "1,250.00", "(4)", "$5", "many", "1D2", "."};
    switch (Below(5)) {
    case 0:
        return "";
    case 1:
        return std::string(static_cast<std::size_t>(Below(12)), ' ');
    case 2:
        return Bytes(Below(length + 4), 32);
    default:
        break;
    }
    if (type == 'D') return Dates[static_cast<std::size_t>(Below(static_cast<int>(Dates.size())))];
    if (type == 'N') return Numbers[static_cast<std::size_t>(Below(static_cast<int>(Numbers.size())))];
    return Bytes(length, 32);
}

std::vector<TableMaker::Column> Lots::Columns() {
    std::vector<TableMaker::Column> columns;
    const int count = 1 + Below(Below(4) == 0 ? 60 : 8);
    for (int k = 1; k <= count; ++k) {
        const char type = "CCNDcnd"[Below(7)];
        const bool date = type == 'D' || type == 'd';
        columns.push_back({"F" + std::to_string(k), type, date && Below(4) != 0 ? 8 : Below(30)});
    }
    return columns;
}

TableMaker Lots::Table(const std::vector<TableMaker::Column>& columns) {
    TableMaker maker(columns);
    maker.Preamble(Bytes(4), Bytes(20)).ClaimHeaderLength(static_cast<std::int16_t>(Below(5000)));
    maker.Terminator(static_cast<char>(Below(32)));
    const int slack = Below(3) != 0 ? 0 : 1 + Below(5);
    maker.Slack(slack);
    const int count = Below(6) == 0 ? 0 : 1 + Below(Below(4) == 0 ? 300 : 20);
    const int deletedIn = 1 + Below(4);
    const int kind = Below(5);
    for (int k = 0; k < count; ++k) {
        std::string fields;
        for (const auto& column : columns) {
            std::string value = Value(column.Type, column.Length);
            value.resize(static_cast<std::size_t>(column.Length), ' ');
            fields += value;
        }
        bool deleted = Below(deletedIn + 1) == 0;
        if (kind == 0) deleted = false;
        if (kind == 1) deleted = k > count / 2;
        if (kind == 2) deleted = true;
        const char live = Below(20) != 0 ? ' ' : static_cast<char>(Below(42));
        maker.RawRow(fields + Bytes(slack), deleted ? '*' : live);
    }
    static const Values Ends = {"\x1A", " ", "", "*", "\x1A more behind"};
    return maker.End(Ends[static_cast<std::size_t>(Below(static_cast<int>(Ends.size())))]);
}

std::string UpToTheEnd(std::string bytes) {
    const TableContent content(bytes);
    EXPECT_GE(content.Count, 0);
    bytes.resize(bytes.size() - content.Behind.size());
    return bytes + (content.Behind.empty() ? ' ' : content.Behind.front());
}

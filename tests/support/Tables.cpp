#include "support/Tables.h"

#include "store/TableCatalogue.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

const TableEntry& Entry(std::string_view name) {
    const TableEntry* entry = FindTable(name);
    if (!entry) throw std::logic_error("no table " + std::string(name));
    return *entry;
}

} // namespace

TableMaker EmptyTableOf(std::string_view name) {
    std::vector<TableMaker::Column> columns;
    for (const TableField& field : Entry(name).Fields) {
        columns.push_back({field.Name, field.Type, field.Length, field.Decimals});
    }
    return TableMaker(columns);
}

std::string GivenTable(const std::string& folder, std::string_view name,
                       const std::vector<std::vector<std::string>>& rows) {
    TableMaker table = EmptyTableOf(name);
    for (const auto& row : rows) table.Row(row);
    fs::create_directories(folder);
    const std::string path = folder + Entry(name).Name + ".dbf";
    const std::string bytes = table.Bytes();
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return path;
}

std::vector<std::string> RowOf(std::string_view name,
                               const std::vector<std::pair<std::string, std::string>>& values) {
    const auto fields = Entry(name).Fields;
    std::vector<std::string> row(fields.size());
    for (const auto& [field, value] : values) {
        std::size_t place = 0;
        while (place < fields.size() && field != fields[place].Name) ++place;
        row.at(place) = value;
    }
    return row;
}

TableContent TableAt(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.good()) << path;
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return TableContent(bytes.str());
}

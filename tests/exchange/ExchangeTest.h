#pragma once

#include "store/CreateTable.h"
#include "store/TableCatalogue.h"
#include "store/TableScan.h"
#include "support/EngineTest.h"
#include "support/TableMaker.h"
#include "support/TableSteps.h"

#include <map>
#include <string>
#include <vector>

/// A test with tables of an office in its folder.
class ExchangeTest : public EngineTest {
protected:
    using Fields = std::map<std::string, std::string>;

    std::string PathOf(const std::string& table) const { return Folder() + table + ".DBF"; }

    /// Makes a table of the catalogue with the given records, other fields blank.
    std::string GivenTable(const std::string& table, const std::vector<Fields>& rows = {}) {
        const TableEntry* entry = FindTable(table);
        std::vector<TableMaker::Column> columns;
        for (const TableField& field : entry->Fields) {
            columns.push_back({field.Name, field.Type, field.Length, field.Decimals});
        }
        TableMaker maker(columns);
        for (const Fields& row : rows) {
            std::vector<std::string> values;
            std::size_t used = 0;
            for (const TableMaker::Column& column : columns) {
                const auto value = row.find(column.Name);
                values.push_back(value == row.end() ? "" : value->second);
                used += value == row.end() ? 0 : 1;
            }
            EXPECT_EQ(used, row.size()) << "a field that " << table << " does not have";
            maker.Row(values);
        }
        return GivenFile(table + ".DBF", maker.Bytes());
    }

    /// A record's fields that are not blank.
    Fields Row(const std::string& table, int record) const {
        const TableContent content(Bytes(PathOf(table)));
        Fields fields;
        if (record < 1 || record > content.Count) return {{"", "no such record"}};
        const std::vector<std::string> values = content.Trimmed(record);
        for (std::size_t k = 0; k < values.size(); ++k) {
            if (!values[k].empty()) fields[content.Names[k]] = values[k];
        }
        return fields;
    }

    /// One field of all records.
    std::vector<std::string> Column(const std::string& table, const std::string& field) const {
        const TableContent content(Bytes(PathOf(table)));
        std::vector<std::string> values;
        for (int record = 1; record <= content.Count; ++record) {
            for (std::size_t k = 0; k < content.Names.size(); ++k) {
                if (content.Names[k] == field) values.push_back(content.Trimmed(record)[k]);
            }
        }
        return values;
    }

    int RecordCount(const std::string& table) const { return TableContent(Bytes(PathOf(table))).Count; }
};

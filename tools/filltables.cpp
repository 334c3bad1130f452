// Fills tables of an office from text files of rows, for demonstrations and tests:
//
//   filltables OFFICE FILE...
//
// FILE is <TABLE>.tsv: UTF-8, columns parted by tabs, its first line the names of the fields, then
// a record a line. The records take the place of what the table in OFFICE/DBFFiles held.

#include "core/CodePage.h"
#include "core/Failure.h"
#include "core/Paths.h"
#include "core/TextFile.h"
#include "store/TableRewrite.h"

#include <iostream>
#include <string>
#include <vector>

namespace {

std::vector<std::string> Cells(const std::string& line) {
    std::vector<std::string> cells{""};
    for (const char c : Utf8ToCodePage(line)) {
        if (c == '\t')
            cells.emplace_back();
        else
            cells.back() += c;
    }
    return cells;
}

void Fill(const std::string& tables, const std::string& file) {
    const std::string_view name = FileNameOf(file);
    TableRewrite table(tables + std::string(name.substr(0, name.size() - ExtensionOf(name).size())) + ".dbf");
    TextReader rows(file);
    const std::vector<std::string> fields = Cells(rows.RequireLine());
    for (std::string line; rows.ReadLine(line);) {
        const auto refuse = [&](const std::string& reason) {
            throw RunTimeFailure(13, file + ", line " + std::to_string(rows.LineNumber()) + ": " + reason);
        };
        const std::vector<std::string> cells = Cells(line);
        if (cells.size() != fields.size()) refuse("it has not as many columns as the first line");
        table.Append();
        for (std::size_t i = 0; i < cells.size(); ++i) {
            if (table.Layout().Find(FieldKey(fields[i])) == 0) refuse("the table has no field " + fields[i]);
            if (!cells[i].empty()) table.Write(FieldKey(fields[i]), cells[i]);
        }
    }
    table.Commit();
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::cerr << "filltables OFFICE FILE...\n";
        return 2;
    }
    try {
        for (int i = 2; i < argc; ++i) Fill(AddBackslash(argv[1]) + "DBFFiles/", argv[i]);
    } catch (const RunTimeFailure& failure) {
        std::cerr << "filltables: " << failure.what() << "\n";
        return 1;
    }
    return 0;
}

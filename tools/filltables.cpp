// Fills tables of an office from text files of rows, for demonstrations and tests:
//
//   filltables OFFICE FILE...
//
// FILE is <TABLE>.tsv, a RowFile. The records take the place of what the table in OFFICE/DBFFiles held.

#include "RowFile.h"
#include "core/Failure.h"
#include "core/Paths.h"

#include <iostream>
#include <string>

namespace {

void Fill(const std::string& tables, const std::string& file) {
    const std::string_view name = FileNameOf(file);
    FillTable(tables + std::string(name.substr(0, name.size() - ExtensionOf(name).size())) + ".dbf",
              ReadRowFile(file));
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

// Makes the installed set that offices are laid out from:
//
//   makeinstall RESOURCES OUT
//
// writes below OUT: Install/<TABLE>.dbf, empty, for every table of the catalogue; Install/Notes.dat,
// empty; Install/Graphics, with the animations drawn; Templates; Languages.

#include "Animations.h"
#include "core/Failure.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "store/CreateTable.h"
#include "store/TableCatalogue.h"

#include <iostream>
#include <vector>

namespace {

void CopyFolder(const std::string& from, const std::string& to) {
    MakePath(to);
    for (const std::string& name : FilesWithExtension(from, "")) {
        if (ExtensionOf(name) != ".md") CopyOver(from + name, to + name, false);
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "makeinstall RESOURCES OUT\n";
        return 2;
    }
    try {
        const std::string resources = AddBackslash(argv[1]);
        const std::string out = AddBackslash(argv[2]);
        const std::string install = AddBackslash(out + "Install");
        MakePath(install);
        for (const TableEntry& table : AllTables()) {
            std::vector<FieldDef> fields;
            for (const TableField& field : table.Fields) {
                fields.push_back({field.Name, field.Type, field.Length, field.Decimals});
            }
            CreateTable(install + std::string(table.Name) + ".dbf", fields);
        }
        WriteWholeFile(install + "Notes.dat", "", false);
        CopyFolder(resources + "graphics/", install + "Graphics/");
        WriteWholeFile(install + "Graphics/WaitingforHotsync.gif", WaitingForHotsync(), false);
        WriteWholeFile(install + "Graphics/synczukwhite.gif", HotsyncRunning(), false);
        WriteWholeFile(install + "Graphics/SingleHotsync.gif", SingleHotsync(), false);
        CopyFolder(resources + "templates/", out + "Templates/");
        CopyFolder(resources + "languages/", out + "Languages/");
        WriteWholeFile(out + "complete.txt", "", false);
    } catch (const RunTimeFailure& failure) {
        std::cerr << "makeinstall: " << failure.what() << "\n";
        return 1;
    }
    return 0;
}

#include "store/OfficeTables.h"

#include "core/Globals.h"
#include "core/Paths.h"
#include "store/TableCatalogue.h"
#include "store/TableRewrite.h"
#include "store/TableScan.h"

std::string ReadCompanyName() {
    std::string path = Global.DBFPath + "ZUKComp.dbf";
    if (!FileExists(path)) path = Global.InstallPath + "ZUKCOMP.DBF";
    if (!FileExists(path)) return {};
    TableScan company(path);
    return company.Next() ? std::string(company.Trimmed(1)) : std::string();
}

void MakeEmptyTwins() {
    Global.DBFEmptyPath = AddBackslash(Global.AppPath + "DBFEmpty");
    MakePath(Global.DBFEmptyPath);
    for (const std::string& stray : FilesWithExtension(Global.DBFEmptyPath, ".dbf")) {
        Global.TheDisk->Remove(ResolvePath(Global.DBFEmptyPath + stray));
    }
    for (const TableEntry& table : AllTables().first(TwinTables)) {
        MakeEmptyTwin(std::string(table.Name) + ".dbf");
    }
}

void MakeEmptyTwin(const std::string& name) {
    CopyOver(Global.InstallPath + name, Global.DBFEmptyPath + name, false);
    EmptyTable(Global.DBFEmptyPath + name, false);
}

#include "maintenance/VersionUpdate.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "store/OfficeTables.h"
#include "store/TableLock.h"
#include "store/TableScan.h"
#include "store/TextBridge.h"

#include <algorithm>

namespace {

std::string NewDBFDir() {
    return AddBackslash(Global.AppPath + "DBFNew");
}

/// The records of `source` as a table of that structure at `target`, which may be the same file.
void Carry(std::string_view source, const TableLayout& structure, std::string_view target,
           Progress& progress) {
    const std::string text = Global.DBFPath + "DBFCOPY.TXT";
    BridgeFields fields;
    OldDBFtoText(source, fields, text, progress);
    TextToNewDBF(target, structure, fields, text, progress);
}

bool HaveAFieldInCommon(const TableLayout& a, const TableLayout& b) {
    for (int k = 1; k <= a.FieldCount(); ++k) {
        for (int m = 1; m <= b.FieldCount(); ++m) {
            if (SameText(a.PlainName(k), b.PlainName(m))) return true;
        }
    }
    return false;
}

/// RunTimeFailure when a table of `DBFNew` cannot be taken over.
void Look(const std::string& newTable, const std::string& oldTable) {
    if (Global.TheDisk->LockedByAnother(ResolvePath(newTable))) throw RunTimeFailure(70, newTable);
    const TableLayout structure = StructureOf(newTable);
    if (!FileExists(oldTable)) return;
    if (TableIsLocked(oldTable)) throw RunTimeFailure(70, oldTable);
    RefuseForeign(StructureOf(oldTable), oldTable, structure, newTable);
}

/// Gives a table the structure, with the records that it holds. False when it has it or is not there.
bool Restructure(const std::string& table, const TableLayout& structure, Progress& progress) {
    if (!FileExists(table) || HaveSameFields(StructureOf(table), structure)) return false;
    Carry(table, structure, table, progress);
    return true;
}

} // namespace

TableLayout StructureOf(std::string_view path) {
    try {
        return TableScan(path).Layout();
    } catch (const RunTimeFailure& failure) {
        // Two tables of one name are at work: which one it is says the path.
        const std::string words = failure.what();
        if (words.find(path) != std::string::npos) throw;
        throw RunTimeFailure(failure.Number(),
                             std::string(path) + words.substr(std::min(words.size(), words.find(": "))));
    }
}

void RefuseForeign(const TableLayout& records, std::string_view recordsOf, const TableLayout& structure,
                   std::string_view structureOf) {
    if (records.RecordCount() == 0 || HaveAFieldInCommon(records, structure)) return;
    throw RunTimeFailure(321, std::string(structureOf) + ": none of the fields of " + std::string(recordsOf));
}

void CopySingleTable(std::string_view oldTable, std::string_view newTable, Progress& progress) {
    TraceEvent("frmCopyDBF:CopySingleTable " + std::string(FileNameOf(newTable)));
    if (FileExists(newTable)) {
        const TableLayout structure = StructureOf(newTable);
        if (!HaveSameFields(StructureOf(oldTable), structure))
            return Carry(oldTable, structure, newTable, progress);
    }
    progress.Begin(Lines(msg::CopyDBFWait, Text::Path(FileNameOf(newTable))), 1);
    CopyOver(oldTable, newTable);
    progress.Show(1);
}

std::vector<std::string> NewTables() {
    return FilesWithExtension(NewDBFDir(), ".dbf");
}

void UpdateTables(Progress& progress) {
    const std::string from = NewDBFDir();
    MakePath(from);
    const std::vector<std::string> tables = NewTables();
    for (const std::string& table : tables) Look(from + table, Global.DBFPath + table);

    for (const std::string& table : tables) {
        TraceEvent("frmCopyDBF:UpdateTables " + table);
        const TableLayout structure = StructureOf(from + table);
        if (FileExists(Global.DBFPath + table))
            Restructure(Global.DBFPath + table, structure, progress);
        else
            CopyOver(from + table, Global.DBFPath + table);
        if (Restructure(Global.InstallPath + table, structure, progress) &&
            FileExists(Global.DBFEmptyPath + table))
            MakeEmptyTwin(table);
        Global.TheDisk->Remove(ResolvePath(from + table));
    }
}

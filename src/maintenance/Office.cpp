#include "maintenance/Office.h"

#include "core/Directories.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "store/OfficeTables.h"
#include "store/TableCatalogue.h"
#include "store/TableRewrite.h"
#include "store/TableScan.h"

namespace {

/// Stands in `Install` once a layout is complete.
constexpr std::string_view Mark = "Office.txt";

/// Not the name of the user's office, also where names ignore case: both may lie in one `share`.
constexpr std::string_view EverybodysSet = "share/zuk-tramble";

bool HoldsSet(const std::string& folder) {
    return FileExists(folder + "Install/ZUKOrHdr.dbf");
}

std::string SetOfPrefix(std::string_view programFolder) {
    const std::string own = AddBackslash(programFolder);
    const std::string_view prefix = FolderOf(std::string_view(own).substr(0, own.size() - 1));
    return AddBackslash(std::string(prefix) + std::string(EverybodysSet));
}

void CopyMissing(const std::string& from, const std::string& to) {
    if (!FileExists(to)) CopyOver(from, to);
}

void CopyMissingFiles(const std::string& from, const std::string& to) {
    MakePath(to);
    for (const std::string& name : FilesWithExtension(from, "")) CopyMissing(from + name, to + name);
}

/// A table of settings has one record from the start. It is there before the table stands under its
/// name.
void CopyWithOneRecord(const std::string& from, const std::string& to) {
    const std::string work = to + std::string(SafeFile::WorkExtension);
    try {
        CopyOver(from, work);
        if (TableScan(work).RecordCount() == 0) {
            TableRewrite table(work);
            table.Append();
            table.Commit();
        }
        Global.TheDisk->Rename(ResolvePath(work), ResolvePath(to));
        Global.TheDisk->FlushFolder(ResolvePath(FolderOf(to)));
    } catch (...) {
        RemoveQuietly(work);
        throw;
    }
}

void CopyTables(const std::string& install, const std::string& tables) {
    MakePath(tables);
    for (const TableEntry& table : AllTables()) {
        const std::string name = std::string(table.Name) + ".dbf";
        if (FileExists(tables + name)) continue;
        const std::string_view plain = table.Name;
        const bool oneRecord = plain == "ZUKComp" || plain == "ZUKPrint" || plain == "ZUKSetup";
        if (oneRecord)
            CopyWithOneRecord(install + name, tables + name);
        else
            CopyOver(install + name, tables + name);
    }
}

bool CanBeWritten(const std::string& folder) {
    try {
        const std::string probe = folder + "probe" + std::string(SafeFile::WorkExtension);
        Global.TheDisk->Open(probe, Access::Create);
        Global.TheDisk->Remove(probe);
        return true;
    } catch (const RunTimeFailure&) {
        return false;
    }
}

} // namespace

void LayOutOffice(std::string_view installedSet, std::string_view office) {
    const std::string set = AddBackslash(installedSet);
    const std::string app = AddBackslash(office);
    const std::string install = AddBackslash(app + "Install");
    if (FileExists(install + std::string(Mark))) return;

    CopyMissingFiles(AddBackslash(set + "Install"), install);
    CopyMissingFiles(AddBackslash(set + "Install/Graphics"), AddBackslash(install + "Graphics"));
    CopyTables(install, AddBackslash(app + "DBFFiles"));
    CopyMissing(install + "Notes.dat", app + "DBFFiles/Notes.dat");
    CopyMissingFiles(AddBackslash(set + "Templates"), AddBackslash(app + "Templates"));
    WriteWholeFile(install + std::string(Mark),
                   "This office has been laid out. Nothing is laid out again while this file is here.\r\n");
}

bool IsInstalledForEverybody(std::string_view programFolder) {
    return !HoldsSet(AddBackslash(programFolder)) && HoldsSet(SetOfPrefix(programFolder));
}

std::string InstalledSet(std::string_view programFolder) {
    return IsInstalledForEverybody(programFolder) ? SetOfPrefix(programFolder) : AddBackslash(programFolder);
}

std::string UsersOffice(std::string_view userDataFolder) {
    return AddBackslash(AddBackslash(userDataFolder) + "ZUKTramble");
}

std::string ApplicationDirectory(std::string_view programFolder, std::string_view userDataFolder) {
    std::string own = AddBackslash(programFolder);
    if (!IsInstalledForEverybody(own) && CanBeWritten(own)) {
        // Unpacked beside its installed set, it lays itself out where it lies.
        if (HoldsSet(own)) LayOutOffice(own, own);
        return own;
    }
    std::string app = UsersOffice(userDataFolder);
    LayOutOffice(InstalledSet(own), app);
    return app;
}

bool PrepareOffice(const std::function<void()>& downloadSelectionMissing,
                   const std::function<void()>& updateTables) {
    SetTablesAndInstall();
    if (!FileExists(Global.InstallPath + "ZUKOrHdr.dbf")) return false;
    SetGraphics();
    Global.CompanyName = ReadCompanyName();
    SetImagesAndTotals();
    CopyNotes();
    MakeEmptyTwins();
    SetDataIn();
    SetDataOutBackupTemplates();
    TemplatePass(downloadSelectionMissing);
    SetUpdates();
    RemoveStrays();
    updateTables();
    MoveNewBitmaps();
    return true;
}

#include "maintenance/Office.h"

#include "core/Checksum.h"
#include "core/Directories.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"
#include "maintenance/VersionUpdate.h"
#include "store/OfficeTables.h"
#include "store/TableCatalogue.h"
#include "store/TableRewrite.h"
#include "store/TableScan.h"
#include "store/TextBridge.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>

namespace {

/// Stands in `Install` once a layout is complete, with what the installed set held there.
constexpr std::string_view Mark = "Office.txt";
constexpr std::uint64_t LongestMark = std::uint64_t{1} << 20;

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

/// Checksums by the path below `Install`.
using SetSums = std::map<std::string, std::uint64_t>;

/// Of an installed set's `Install`.
SetSums SumsOf(const std::string& install) {
    SetSums sums;
    for (const char* folder : {"", "Graphics/"}) {
        for (const std::string& name : FilesWithExtension(install + folder, "")) {
            const std::string path = folder + name;
            sums[path] = SumOfFile(install + path).Sum;
        }
    }
    sums.erase(std::string(Mark)); // where the set lies in the office itself
    return sums;
}

void WriteMark(const std::string& install, const SetSums& sums) {
    SafeFile mark(install + std::string(Mark));
    mark.WriteLine(
        "This office has been laid out, from files with the checksums below. Nothing is laid out again "
        "while this file is here.");
    for (const auto& [name, sum] : sums) mark.WriteLine(SumText(sum) + " " + name);
    mark.Commit();
}

/// What is no line of a checksum says nothing: the file that it was of counts as the operator's.
SetSums ReadMark(const std::string& install) {
    SetSums sums;
    TextReader mark(install + std::string(Mark), LongestMark);
    for (std::string line; mark.ReadLine(line);) {
        const std::size_t blank = std::min(line.find(' '), line.size());
        const auto sum = SumFromText(std::string_view(line).substr(0, blank));
        if (sum && blank < line.size()) sums[line.substr(blank + 1)] = *sum;
    }
    return sums;
}

/// False also when one cannot be read.
bool AreAlike(const std::string& table, const std::string& other) {
    try {
        return HaveSameFields(StructureOf(table), StructureOf(other));
    } catch (const RunTimeFailure&) {
        return false;
    }
}

/// One file of a newer set; `old` is its checksum in the set before, nothing where that did not have it.
void Renew(const std::string& set, const std::string& app, const std::string& name,
           const std::optional<std::uint64_t>& old) {
    const std::string shipped = set + "Install/" + name;
    const std::string own = app + "Install/" + name;
    const bool stands = FileExists(own);
    if (stands && (!old || SumOfFile(own).Sum != *old)) return; // the operator's, or renewed already
    if (!stands && old) return;                                 // the operator has removed it
    if (SameText(ExtensionOf(name), ".dbf")) {
        // The operator's records go into the new structure as with any update, in this start.
        const std::string data = app + "DBFFiles/" + name;
        if (!old && !FileExists(data)) CopyOver(shipped, data);
        if (stands && !AreAlike(own, shipped) && AreAlike(own, data)) {
            MakePath(app + "DBFNew");
            CopyOver(shipped, app + "DBFNew/" + name);
        }
    }
    CopyOver(shipped, own);
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
    WriteMark(install, SumsOf(AddBackslash(set + "Install")));
}

void RenewInstall(std::string_view installedSet, std::string_view office) {
    const std::string set = AddBackslash(installedSet);
    const std::string app = AddBackslash(office);
    if (set == app || !HoldsSet(set)) return;
    const SetSums now = SumsOf(set + "Install/");
    const SetSums before = ReadMark(app + "Install/");
    if (now == before) return;
    for (const auto& [name, sum] : now) {
        const auto old = before.find(name);
        if (old == before.end())
            Renew(set, app, name, std::nullopt);
        else if (old->second != sum)
            Renew(set, app, name, old->second);
    }
    WriteMark(app + "Install/", now);
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

#include "core/Directories.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/Settings.h"
#include "core/TextCompare.h"

#include <array>
#include <exception>
#include <filesystem>
#include <string_view>
#include <utility>
#include <vector>

namespace {

void SetAndMake(std::string& path, const std::string& where) {
    path = AddBackslash(where);
    MakePath(path);
}

/// Where a template goes by its extension.
struct TemplatePlace {
    std::string_view Extension;
    std::string Globals::*Folder;
};

constexpr std::array TemplatePlaces = {
    TemplatePlace{".xah", &Globals::ExportTemplates},
    TemplatePlace{".xal", &Globals::ExportTemplates},
    TemplatePlace{".xhh", &Globals::ExportTemplates},
    TemplatePlace{".xic", &Globals::ExportTemplates},
    TemplatePlace{".xiq", &Globals::ExportTemplates},
    TemplatePlace{".xor", &Globals::ExportTemplates},
    TemplatePlace{".dst", &Globals::DownloadTemplates},
    TemplatePlace{".ust", &Globals::UploadTemplates},
    TemplatePlace{".dct", &Globals::DownloadTemplates},
    TemplatePlace{".cst", &Globals::ImportTemplates},
    TemplatePlace{".itm", &Globals::ImportTemplates},
    TemplatePlace{".orh", &Globals::ImportTemplates},
    TemplatePlace{".orl", &Globals::ImportTemplates},
    TemplatePlace{".stx", &Globals::ImportTemplates},
    TemplatePlace{".pct", &Globals::ClearPCTemplates},
    TemplatePlace{".xpm", &Globals::QuickButtonTemplates},
    TemplatePlace{".ipm", &Globals::QuickButtonTemplates},
    TemplatePlace{".dlm", &Globals::QuickButtonTemplates},
    TemplatePlace{".ulm", &Globals::QuickButtonTemplates},
    TemplatePlace{".uhs", &Globals::UnattendedTemplates},
    TemplatePlace{".ctm", &Globals::QuickButtonTemplates},
};

void SetTemplateSubdirectories() {
    SetAndMake(Global.ImportTemplates, Global.TemplatesPath + "Import");
    SetAndMake(Global.ExportTemplates, Global.TemplatesPath + "Export");
    SetAndMake(Global.DownloadTemplates, Global.TemplatesPath + "Download");
    SetAndMake(Global.UploadTemplates, Global.TemplatesPath + "Upload");
    SetAndMake(Global.ClearPCTemplates, Global.TemplatesPath + "ClearPC");
    SetAndMake(Global.QuickButtonTemplates, Global.TemplatesPath + "QuickButtons");
    SetAndMake(Global.UnattendedTemplates, Global.TemplatesPath + "UnattendedHotsync");
}

/// The first pass copies over what is there and leaves the source; the second fills gaps and moves.
void CarryTemplates(const std::string& source, bool secondPass) {
    const std::vector<std::string> names = FilesWithExtension(source, "");
    for (const TemplatePlace& kind : TemplatePlaces) {
        for (const std::string& name : names) {
            if (!SameText(ExtensionOf(name), kind.Extension)) continue;
            const std::string target = Global.*kind.Folder + name;
            if (!secondPass || !FileExists(target)) CopyOver(source + name, target);
            if (secondPass) Global.TheDisk->Remove(ResolvePath(source + name));
        }
    }
}

void CheckDownloadSelection(const std::function<void()>& selectionMissing) {
    if (!Global.RemoteSelect) return;
    const std::string name = NameToPath(Global.RemoteSelSettings);
    if (IsPlainFileName(name) && FileExists(Global.DownloadTemplates + name + ".dst")) return;
    selectionMissing();
    DeselectRemoteSelect();
    GetIniFile();
}

void RemoveFiles(const std::string& folder, std::string_view extension) {
    for (const std::string& name : FilesWithExtension(folder, extension)) {
        Global.TheDisk->Remove(ResolvePath(folder + name));
    }
}

void RemoveStraysIn(const std::string& folder, int depth) {
    for (const std::string& name : FilesWithExtension(folder, SafeFile::WorkExtension))
        RemoveQuietly(folder + name);
    if (depth == 0 || folder.empty()) return;
    for (const std::string& name : Global.TheDisk->FoldersIn(ResolvePath(folder))) {
        RemoveStraysIn(AddBackslash(folder + name), depth - 1);
    }
}

} // namespace

void SetTablesAndInstall() {
    SetAndMake(Global.DBFPath, Global.AppPath + "DBFFiles");
    Global.InstallPath = AddBackslash(Global.AppPath + "Install");
}

void SetGraphics() {
    SetAndMake(Global.GraphicsPath, Global.InstallPath + "Graphics");
}

void SetImagesAndTotals() {
    SetAndMake(Global.ImagesPath, Global.DBFPath + "Images");
    SetAndMake(Global.HHTotalsPath, Global.DBFPath + "HHTotals");
}

void CopyNotes() {
    if (FileExists(Global.DBFPath + "Notes.dat")) return;
    try {
        CopyOver(Global.InstallPath + "Notes.dat", Global.DBFPath + "Notes.dat");
    } catch (const RunTimeFailure&) { // the notes screen makes a file of its own
    }
}

void SetDataIn() {
    SetAndMake(Global.DataInPath, Global.AppPath + "DataIn");
    for (const std::string& name : FilesWithExtension(Global.AppPath, ".csv")) {
        CopyOver(Global.AppPath + name, Global.DataInPath + name);
        Global.TheDisk->Remove(ResolvePath(Global.AppPath + name));
    }
}

void SetDataOutBackupTemplates() {
    SetAndMake(Global.DataOutPath, Global.AppPath + "DataOut");
    SetAndMake(Global.BackupPath, Global.AppPath + "Backup");
    SetAndMake(Global.TemplatesPath, Global.AppPath + "Templates");
}

void TemplatePass(const std::function<void()>& selectionMissing) {
    const std::string source = Global.TemplatesPath;
    const bool demo = Global.UpdateDemoTemplates;
    if (demo) {
        SetAndMake(Global.TemplatesPath, source + "Demo");
        SetTemplateSubdirectories();
        CarryTemplates(source, false);
        Global.TemplatesPath = source;
    }
    SetTemplateSubdirectories();
    CheckDownloadSelection(selectionMissing);
    CarryTemplates(source, demo);
}

void SetUpdates() {
    SetAndMake(Global.UpdatesPath, Global.AppPath + "Updates");
}

void MoveNewBitmaps() {
    const std::string source = AddBackslash(Global.AppPath + "DBFNew");
    for (const std::string& name : FilesWithExtension(source, ".bmp")) {
        if (!FileExists(Global.ImagesPath + name)) CopyOver(source + name, Global.ImagesPath + name);
        Global.TheDisk->Remove(ResolvePath(source + name));
    }
}

void RemoveStrays() {
    for (const std::string* folder :
         {&Global.AppPath, &Global.DBFEmptyPath, &Global.DataOutPath, &Global.UpdatesPath}) {
        RemoveStraysIn(*folder, 0);
    }
    RemoveStraysIn(Global.DataInPath, 1);    // with the lists of lost lines
    RemoveStraysIn(Global.InstallPath, 1);   // with its graphics
    RemoveStraysIn(Global.DBFPath, 2);       // with images and each handheld's totals
    RemoveStraysIn(Global.BackupPath, 1);    // with each backup
    RemoveStraysIn(Global.TemplatesPath, 2); // with both sets
    if (const std::string text = Global.DBFPath + "DBFCOPY.TXT"; FileExists(text)) RemoveQuietly(text);
    // The compaction of a table works in a file of the table's name and this extension.
    for (const std::string& name : FilesWithExtension(Global.DBFPath, ".idx")) {
        const std::string table = Global.DBFPath + name.substr(0, name.size() - 3) + "dbf";
        if (FileExists(table)) RemoveQuietly(Global.DBFPath + name);
    }
    // The signature viewer's, which stands only while that is open.
    RemoveQuietly(Global.DBFPath + "SIGN.DBF");
}

std::string TemporaryDirectory() {
    std::error_code failed;
    const auto base = std::filesystem::temp_directory_path(failed).u8string();
    return AddBackslash(AddBackslash(std::string(base.begin(), base.end())) + "ZUKTemp");
}

void RemoveTemporaryDirectory() noexcept {
    try {
        const std::string folder = TemporaryDirectory();
        const std::string name = folder.substr(0, folder.size() - 1);
        // The system's temporary folder is everybody's: a link there may lead to files that are not ours.
        std::error_code failed;
        if (std::filesystem::is_symlink(std::filesystem::path(std::u8string(name.begin(), name.end())),
                                        failed))
            return;
        RemoveFiles(folder, "");
        Global.TheDisk->RemoveFolder(name);
    } catch (const std::exception&) { // what is left there harms nobody
    }
}

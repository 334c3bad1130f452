#include "fuzz/OfficeTargets.h"

#include "core/Catalogue.h"
#include "core/Dates.h"
#include "core/Globals.h"
#include "core/Progress.h"
#include "core/Settings.h"
#include "fuzz/Outside.h"
#include "handheld/Refusal.h"
#include "handheld/Settings.h"
#include "hotsync/SessionLog.h"
#include "installation/HandheldInstall.h"
#include "maintenance/Restore.h"
#include "maintenance/RtfText.h"
#include "maintenance/UnfinishedJobs.h"
#include "store/CreateTable.h"
#include "sync/Status.h"
#include "sync/TableTemplates.h"
#include "tools/FileVersion.h"
#include "tools/Notes.h"
#include "tools/SupportDesk.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace {

/// The same as an office whose folders are all one.
class Office : public Outside {
public:
    Office(std::string_view file, std::string_view content) : Outside(content, file) {
        for (std::string* path :
             {&Global.AppPath, &Global.DBFPath, &Global.InstallPath, &Global.DBFEmptyPath})
            *path = Folder;
        Global.BackupPath = Folder + "Backup/";
    }
};

bool IsPlain(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; });
}

} // namespace

void FuzzSettings(std::string_view bytes) {
    const Office outside("ZUKTramble.ini", bytes);
    Global.IniFile = Folder + "ZUKTramble.ini";
    Attempt([&] {
        GetIniFile();
        UpdateIniFile();
        const std::string written = outside.Content("ZUKTramble.ini");
        GetIniFile();
        UpdateIniFile();
        Require(outside.Content("ZUKTramble.ini") == written,
                "settings that are written are read as they were");
    });
}

void FuzzStatus(std::string_view bytes) {
    const Office outside("HSStatus.dat", bytes);
    Attempt([&] {
        GetHHStatus();
        Require(Global.HHSyncID.size() == static_cast<std::size_t>(Global.HHCount) + 1 &&
                    Global.HHStatus.size() == Global.HHSyncID.size(),
                "each handheld has a status");
        UpdateHHStatus();
        const auto ids = Global.HHSyncID;
        const auto statuses = Global.HHStatus;
        GetHHStatus();
        Require(Global.HHSyncID.size() == ids.size(), "a handheld is one line");
        UpdateHHStatus();
        const std::string written = outside.Content("HSStatus.dat");
        GetHHStatus();
        UpdateHHStatus();
        Require(outside.Content("HSStatus.dat") == written, "a status that is written is read as it was");
    });
}

void FuzzNotes(std::string_view bytes) {
    const Office outside("Notes.dat", bytes);
    Attempt([&] {
        const NotesFile before = ReadNotes();
        Require(before.Notes.size() == (bytes.size() + NoteLength - 1) / NoteLength, "the file is all notes");
        Require(NotesGrid(before.Notes)->RowCount() == static_cast<std::int32_t>(before.Notes.size()),
                "each note is listed");
        for (const Note& note : before.Notes) NoteMoment(note);
        if (before.Notes.empty()) return;
        Note note = before.Notes[before.Notes.size() / 2];
        note.Resolution = "Repaired";
        WriteNote(note);
        const std::string after = outside.Content("Notes.dat");
        Require(after.size() == before.Notes.size() * NoteLength, "a note that was cut off is filled up");
        const auto at = static_cast<std::size_t>(note.Number - 1) * NoteLength;
        for (std::size_t k = 0; k < bytes.size(); ++k) {
            if (k >= at && k < at + NoteLength) continue;
            Require(after[k] == bytes[k], "all other notes stay byte for byte");
        }
        Require(ReadNote(note.Number).Resolution == "Repaired", "a note is read as it was written");
    });
}

void FuzzMessages(std::string_view bytes) {
    const Office outside("Messages.tsv", bytes);
    const std::string faults = LoadMessages(Folder + "Messages.tsv");
    Require(faults.empty() || faults.find("Messages.tsv, ") != std::string::npos,
            "a row that cannot be read is named");
    for (std::size_t k = 0; k < CatalogueRowCount; ++k) {
        const MessageId entry{CatalogueRows[k].Number};
        Require(CatalogueCaption(entry).size() >= CatalogueText(entry).size(), "a caption is the whole text");
    }
    LoadMessages(Folder + "none.tsv");
    Require(CatalogueText(MessageId{CatalogueRows[0].Number}) == CatalogueRows[0].Words,
            "without the file the built-in texts are back");
}

void FuzzSupportDesk(std::string_view bytes) {
    const Office outside("Support.ini", bytes);
    Attempt([] {
        const SupportDesk desk = ReadSupportDesk();
        Require(IsPlain(desk.Address) && desk.Address.find_first_of("?& ") == std::string::npos,
                "an address adds nothing to a link");
        Require(desk.Web.empty() || desk.Web.starts_with("http") || desk.Web.starts_with("HTTP") ||
                    desk.Web.find("://") != std::string::npos,
                "a page is one of the web");
        Require(IsPlain(desk.Web), "a page has no control characters");
    });
}

void FuzzBackups(std::string_view bytes) {
    Office outside("Backup/61115023607/Backup.txt", bytes);
    outside.Disk.Put(Folder + "Backup/61115023607/ZUKOrHdr.dbf", "no table");
    outside.Disk.Put(Folder + "Backup/not a number/Backup.txt", std::string(bytes));
    Attempt([&] {
        NoProgress silent;
        for (BackupPoint& point : ReadBackups(silent)) {
            CompareSums(point);
            Require(point.SumsCompared, "the checksums have been compared");
            for (const SavedTable& table : point.Tables)
                Require(SavedTable::FromLine(table.Line()).has_value(),
                        "a line that was read can be written");
            FindBackup(point.Values[1]);
        }
    });
    Require(outside.Content("Backup/61115023607/Backup.txt") == bytes, "reading changes nothing");
}

void FuzzUnfinishedJobs(std::string_view bytes) {
    const std::string file = "UnfinishedJobs.txt";
    Office outside(file, bytes);
    const std::vector<FieldDef> fields = {{"PAY_CODE", 'C', 4, 0}};
    for (const char* table : {"ZUKPAY.DBF", "ZUKOrHdr.dbf"}) CreateTable(Folder + table, fields);
    const UnfinishedJobs found = FindUnfinishedJobs();
    Require(found.Broken.empty() || found.Jobs.empty(), "a mark can be read or not");
    Require(found.Broken.empty() || outside.Content(file) == bytes, "a mark that cannot be read stays");
    Require(FindUnfinishedJobs().Jobs == found.Jobs, "the next look finds the same");
    for (const CutOffJob& job : found.Jobs) {
        Require(!job.Left.empty(), "a job of which nothing is left is over");
        Require(!TellCutOff(job).IsEmpty(), "the operator is told of each job");
    }
    Attempt([&] {
        TableJob job(JobKind::Clear, "", {"ZUKPAY.DBF"});
        job.Finish();
        Require(found.Broken.empty() || outside.Content("UnfinishedJobs.bad.txt") == bytes,
                "a mark that cannot be read is laid aside");
    });
    Require(Global.Files.Count() == 0, "a file was left open");
}

void FuzzInstallMark(std::string_view bytes) {
    Office outside("InstallBegun.txt", bytes);
    for (const char* file :
         {"HotSync/ANNA/Install/x.prc", "HotSync/Users.txt", "ZUKOrHdr.dbf", "HotSync/Install/y"})
        outside.Disk.Put(Folder + file, "there");
    Attempt([&] {
        const auto user = TakeBackInstall(Folder + "HotSync/");
        Require(!outside.Has("InstallBegun.txt"), "what was taken back is forgotten");
        Require(user.has_value() != outside.Has("HotSync/ANNA/Install/x.prc"),
                "only what waits is taken back");
    });
    for (const char* file : {"HotSync/Users.txt", "ZUKOrHdr.dbf", "HotSync/Install/y"})
        Require(outside.Has(file), "nothing else is removed");
}

namespace {

template <typename Choice>
void ReadAndWrite(const char* name) {
    Attempt([&] {
        Choice read;
        ReadTemplate(Folder + "outside.txt", read);
        WriteTemplate(Folder + name, read);
        Choice again;
        ReadTemplate(Folder + name, again);
        Require(again == read, "a selection that is written is read as it was");
    });
}

} // namespace

void FuzzSelections(std::string_view bytes) {
    const Office outside("outside.txt", bytes);
    ReadAndWrite<UploadChoice>("again.ust");
    ReadAndWrite<DownloadChoice>("again.dst");
    ReadAndWrite<ClearChoice>("again.dct");
    ReadAndWrite<ClearPlan>("again.pct");
}

void FuzzHotSyncLog(std::string_view bytes) {
    const Office outside("HotSync.log", bytes);
    Global.Clock = [] { return DateTime{2026, 11, 15, 9, 30, 0}; };
    SessionLog log(Folder);
    const std::vector<std::string> before = log.Last(50);
    for (const std::string& line : before) Require(IsPlain(line), "a line is one line");
    log.Write("a HotSync began");
    std::vector<std::string> after = log.Last(before.size() + 1);
    Require(!after.empty() && after.back() == "2026-11-15 09:30:00 a HotSync began",
            "the last line is the one that was written last");
    after.pop_back();
    // A line that was cut off is ended, whatever it ended in.
    const bool isWhole = bytes.empty() || bytes.ends_with('\n');
    Require(!isWhole || before.size() == 50 || after == before, "the lines before it stay");
    Require(outside.Content("HotSync.log").starts_with(bytes), "nothing that stands there is changed");
}

void FuzzHandheldFile(std::string_view bytes) {
    const Office outside("Handheld.txt", bytes);
    std::optional<HandheldSettings> read;
    try {
        read = ReadSettings(bytes, "Handheld.txt");
    } catch (const Refusal& refusal) {
        Require(std::string_view(refusal.what()).starts_with("Handheld.txt"), "a refusal names the file");
    }
    if (!read) return;
    Require(ReadSettings(WriteSettings(*read), "Handheld.txt") == *read,
            "settings that are written are read as they were");
}

void FuzzUpdateText(std::string_view bytes) {
    const std::vector<RtfRun> runs = ReadRtf(bytes);
    std::size_t size = 0;
    for (const RtfRun& run : runs) size += run.Utf8.size();
    constexpr std::size_t MostBytesOfOne = 4;
    Require(size <= bytes.size() * MostBytesOfOne, "nothing is made up");
    Require(ReadRtf(bytes) == runs, "a text says the same twice");
}

void FuzzFileVersion(std::string_view bytes) {
    const Office outside("program.exe", bytes);
    const std::string version = FileVersion(Folder + "program.exe");
    constexpr std::size_t FourNumbers = 23;
    Require(version.size() <= FourNumbers && version.find_first_not_of("0123456789.") == std::string::npos,
            "a version is four numbers");
    Require(Global.Files.Count() == 0, "a file was left open");
}

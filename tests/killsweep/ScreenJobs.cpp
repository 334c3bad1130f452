#include "killsweep/Ground.h"
#include "killsweep/Jobs.h"

#include "core/Globals.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "quality/CheckResults.h"
#include "quality/ReportCsv.h"
#include "tools/Notes.h"
#include "tools/SystemInformation.h"
#include "views/Signatures.h"

namespace {

constexpr int NotesInFile = 200;

void PrepareNotes() {
    std::string notes;
    for (int k = 1; k <= NotesInFile; ++k) notes += NoteRecord(NewNote(k, "1.0.0"));
    WriteWholeFile(Global.DBFPath + "Notes.dat", notes);
}

std::string ResolveNote() {
    Note note = ReadNote(NotesInFile / 2);
    note.Resolution = "Repaired";
    WriteNote(note);
    return {};
}

// ---- the Quality Check ----

std::string WriteResults(std::int32_t warnings) {
    CheckResults results;
    results.Set(Check::Customers, {Now(), 0, warnings});
    results.Write(CheckResultsFile());
    return {};
}

std::string SaveProblems() {
    const auto words = [](std::string_view text) { return Text::Value(text); };
    SaveReport(Global.DataOutPath + "Quality Check 2026-11-15.csv", {{Severity::Warn,
                                                                      words("Customers"),
                                                                      words("A blank value"),
                                                                      words("Records: 1"),
                                                                      words("Fill it in"),
                                                                      Table("ZUKCust.dbf"),
                                                                      "1",
                                                                      "C_SEARCH",
                                                                      {}}});
    return {};
}

// ---- signatures ----

void PrepareSignatures() {
    FillOrders();
    WriteWholeFile(Global.ImagesPath + OrderCode(3) + ".bmp", "BM");
}

std::string ShowSignatures() {
    MakeSignTable();
    return {};
}

std::string JudgeSignatures() {
    return FileExists(SignTablePath()) ? "the table of the viewer lies about" : "";
}

std::string InformSupport() {
    WriteSysInfo({});
    return {};
}

} // namespace

std::vector<SweepJob> ScreenJobs() {
    return {
        {"note", {"DBFFiles/Notes.dat"}, PrepareNotes, ResolveNote},
        {"results of the checks", {"QCResults.dat"}, [] { WriteResults(7); }, [] { return WriteResults(0); }},
        {"report of the Quality Check", {"DataOut/Quality Check 2026-11-15.csv"}, [] {}, SaveProblems},
        {.Name = "table of the signed orders",
         .Steps = {"DBFFiles/SIGN.DBF"},
         .Prepare = PrepareSignatures,
         .Run = ShowSignatures,
         .JudgeStarted = JudgeSignatures},
        {"system information", {"SysInfo.txt"}, [] {}, InformSupport},
    };
}

#include "killsweep/Jobs.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/SafeFile.h"

#include <cstdlib>
#include <fstream>

namespace {

std::string HarmedFile() {
    return Global.DataOutPath + "harmed.txt";
}

void PrepareHarm() {
    WriteWholeFile(HarmedFile(), "what stood here before");
}

std::string WriteInPlace() {
    const auto file = Global.TheDisk->Open(HarmedFile(), Access::ReadWrite);
    file->WriteAt(0, "WHAT STANDS HERE BEHIND");
    return {};
}

std::string LeaveAFile() {
    const std::string work = Global.DataOutPath + "work.tmp";
    Global.TheDisk->Open(work, Access::Create)->WriteAt(0, "new");
    Global.TheDisk->Rename(work, HarmedFile());
    return {};
}

std::string KeepSilent() {
    try {
        WriteWholeFile(HarmedFile(), "new");
    } catch (const RunTimeFailure&) { // that nobody hears of it is the harm
    }
    return {};
}

std::string BreakDown() {
    try {
        WriteWholeFile(HarmedFile(), "new");
    } catch (const RunTimeFailure&) {
        std::abort();
    }
    return {};
}

std::string WriteInWrongOrder() {
    WriteWholeFile(Global.DataOutPath + "about.txt", "complete");
    WriteWholeFile(HarmedFile(), "new");
    return {};
}

std::string WriteByStream() {
    std::ofstream(HarmedFile()) << "new";
    return {};
}

} // namespace

std::vector<SweepJob> HarmJobs() {
    const std::string harmed = "DataOut/harmed.txt";
    return {
        {"harm: writes in place", {harmed}, PrepareHarm, WriteInPlace, "is neither the old nor the new"},
        {"harm: leaves a file", {harmed}, PrepareHarm, LeaveAFile, "work.tmp lies about"},
        {"harm: keeps silent", {harmed}, PrepareHarm, KeepSilent, "said that all went well"},
        {"harm: breaks down", {harmed}, PrepareHarm, BreakDown, "broke down"},
        {"harm: wrong order",
         {harmed, "DataOut/about.txt"},
         PrepareHarm,
         WriteInWrongOrder,
         "takes the steps"},
        {"harm: writes by a stream", {harmed}, PrepareHarm, WriteByStream, "cannot be followed"},
    };
}

#include "sync/SessionLinks.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "store/DBFEdit.h"
#include "store/TableScan.h"

#include <algorithm>
#include <cstdint>

namespace {

std::string PCLinks() {
    return Global.DBFPath + "ZUKLINK.DBF";
}

/// Moves to the user's first row; false when there is none.
bool GoTo(TableScan& links, std::string_view user) {
    const int id = links.Layout().Find(FieldKey("LK_HOTSYNC"));
    while (id != 0 && links.Next()) {
        if (SameText(links.Trimmed(id), user)) return true;
    }
    return false;
}

std::string Value(const TableScan& links, const char* field) {
    return std::string(links.Trimmed(links.Layout().Find(FieldKey(field))));
}

/// 0 for no row.
std::int32_t RowOnPC(std::string_view user) {
    TableScan links(PCLinks());
    return !user.empty() && GoTo(links, user) ? links.RecordNumber() : 0;
}

void WriteLink(DBFEdit& links, std::int32_t record) {
    links.Go(record);
    links.WriteData(FieldKey("LK_MACH_ID"), Global.HSMachID);
    if (!Global.HSLastOrderFull.empty() && !Global.HSMachID.empty()) {
        const std::size_t machine = std::min(Global.HSMachID.size(), Global.HSLastOrderFull.size());
        links.WriteData(FieldKey("LK_LSTONUM"), Global.HSLastOrderFull.substr(machine));
    }
    links.WriteData(FieldKey("LK_SERIAL"), Global.HSSerial);
    links.WriteData(FieldKey("LK_SFUSER"), Global.HSSFUser);
    links.UpDate();
}

void WriteRow(std::int32_t record) {
    DBFEdit links;
    links.FileOpen(PCLinks());
    try {
        WriteLink(links, record);
    } catch (const RunTimeFailure&) {
        links.FileClose();
        throw;
    }
    links.FileClose();
}

} // namespace

bool HasLink(std::string_view user) {
    if (!IsPlainFileName(user)) {
        TraceEvent("SessionLinks:HasLink no directory can be called like the user");
        return false;
    }
    TableScan links(PCLinks());
    return GoTo(links, user);
}

bool MakeHHUserDir(std::string_view user) {
    if (!IsPlainFileName(user)) {
        TraceEvent("SessionLinks:MakeHHUserDir no directory can be called like the user");
        return false;
    }
    const std::string directory = AddBackslash(Global.HHTotalsPath + NameToPath(user));
    MakePath(directory);
    Global.HHUserDir = directory;
    return true;
}

bool TakeHandheldLink(std::string_view user) {
    const std::string path = Global.HHUserDir + "ZUKLINK.DBF";
    if (Global.HHUserDir.empty() || !FileExists(path)) return false;
    try {
        TableScan links(path);
        if (!GoTo(links, user)) return false;
        Global.HSMachID = Value(links, "LK_MACH_ID");
        Global.HSLastOrderFull = Global.HSMachID + Value(links, "LK_LSTONUM");
        Global.HSSerial = Value(links, "LK_SERIAL");
        Global.HSSFUser = Value(links, "LK_SFUSER");
    } catch (const RunTimeFailure& failure) {
        TraceEvent(std::string("SessionLinks:TakeHandheldLink ") + failure.what());
        return false;
    }
    Global.HHLastOrder = Global.HSLastOrderFull;
    return true;
}

std::optional<std::string> WritePCLink(std::string_view user) {
    try {
        if (const std::int32_t record = RowOnPC(user)) WriteRow(record);
        return std::nullopt;
    } catch (const RunTimeFailure& failure) {
        TraceEvent(std::string("SessionLinks:WritePCLink ") + failure.what());
        return failure.what();
    }
}

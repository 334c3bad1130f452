#include "sync/Status.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"
#include "store/TableScan.h"

#include <string_view>
#include <utility>

namespace {

// Where the columns of the file begin, from 0.
constexpr std::size_t StatusAt = 30;
constexpr std::size_t MarkAt = 60;

std::string StatusFile() {
    return Global.InstallPath + "HSStatus.dat";
}

std::string Padded(std::string text, std::size_t width) {
    if (text.size() < width) text.resize(width, ' ');
    return text;
}

/// What stands in the columns from `begin` up to `end`, trimmed.
std::string Columns(std::string_view line, std::size_t begin, std::size_t end) {
    line = line.substr(0, end);
    return line.size() <= begin ? std::string() : std::string(Trim(line.substr(begin)));
}

std::string Section(std::size_t row) {
    return "HH" + std::to_string(row);
}

struct StatusRow {
    std::string HHSyncID, HHStatusInst = {}, HHStatusDT = {}, HHStatusType = {};
};

void Store(StatusStore& store, const std::vector<StatusRow>& rows) {
    std::vector<StatusEntry> entries;
    for (const StatusRow& row : rows) {
        const std::string section = Section(entries.size() / 4 + 1);
        entries.push_back({section, "HHSyncID", row.HHSyncID});
        entries.push_back({section, "HHStatusInst", row.HHStatusInst});
        entries.push_back({section, "HHStatusDT", row.HHStatusDT});
        entries.push_back({section, "HHStatusType", row.HHStatusType});
    }
    store.Replace(entries);
}

/// The two families share the ids and their count: every list has an entry for each of them.
void FitLists() {
    for (auto* list : {&Global.HHSyncID, &Global.HHStatus, &Global.HHStatusStd, &Global.HHStatusInst,
                       &Global.HHStatusDT, &Global.HHStatusType}) {
        list->resize(static_cast<std::size_t>(Global.HHCount) + 1);
    }
}

} // namespace

std::vector<std::string> LinkIDs() {
    const std::string path = Global.DBFPath + "ZUKLINK.DBF";
    std::vector<std::string> ids;
    if (!FileExists(path)) return ids;
    TableScan links(path);
    FieldKey key("LK_HOTSYNC");
    const int field = links.Layout().Find(key);
    while (links.Next()) ids.emplace_back(field == 0 ? std::string_view() : links.Trimmed(field));
    return ids;
}

void MakeHHStatusFile() {
    TraceEvent("basCommon:MakeHHStatusFile");
    SafeFile file(StatusFile());
    for (const std::string& id : LinkIDs()) file.WriteLine(OneLine(id));
    file.Commit();
}

void GetHHStatus() {
    TraceEvent("basCommon:GetHHStatus");
    if (!FileExists(StatusFile())) MakeHHStatusFile();
    std::vector<std::string> ids{""};
    std::vector<std::string> statuses{""};
    std::vector<std::string> marks{""};
    TextReader file(StatusFile(), TextReader::OwnFile);
    std::string line;
    while (file.ReadLine(line)) {
        ids.push_back(Columns(line, 0, StatusAt));
        statuses.push_back(Columns(line, StatusAt, MarkAt));
        marks.push_back(Columns(line, MarkAt, std::string::npos));
    }
    Global.HHCount = static_cast<std::int32_t>(ids.size() - 1);
    Global.HHSyncID = std::move(ids);
    Global.HHStatus = std::move(statuses);
    Global.HHStatusStd = std::move(marks);
    FitLists();
}

void UpdateHHStatus() {
    TraceEvent("basCommon:UpdateHHStatus");
    FitLists();
    SafeFile file(StatusFile());
    for (std::size_t i = 1; i <= static_cast<std::size_t>(Global.HHCount); ++i) {
        const std::string head = Padded(Padded(Global.HHSyncID[i], StatusAt) + Global.HHStatus[i], MarkAt);
        file.WriteLine(OneLine(head + Global.HHStatusStd[i]));
    }
    file.Commit();
}

void StoreHHStatus(std::vector<std::string>& list, std::string_view id, const std::string& value) {
    FitLists();
    for (std::size_t i = 1; i <= static_cast<std::size_t>(Global.HHCount); ++i) {
        if (!SameText(Global.HHSyncID[i], id)) continue;
        list[i] = value;
        return;
    }
}

void ClearHHStatus() {
    for (auto* list : {&Global.HHStatus, &Global.HHStatusStd}) {
        for (std::string& entry : *list) entry.clear();
    }
}

void MakeHHStatus(StatusStore& store) {
    TraceEvent("basCommon:MakeHHStatus");
    std::vector<StatusRow> rows;
    for (const std::string& id : LinkIDs()) rows.push_back({id});
    Store(store, rows);
}

void GetHHStatusInst(StatusStore& store) {
    TraceEvent("basCommon:GetHHStatusInst");
    if (!store.Read(Section(1), "HHSyncID")) MakeHHStatus(store);
    Global.HHCount = 0;
    for (auto* list : {&Global.HHSyncID, &Global.HHStatusInst, &Global.HHStatusDT, &Global.HHStatusType}) {
        list->assign(1, "");
    }
    for (std::size_t row = 1; const auto id = store.Read(Section(row), "HHSyncID"); ++row) {
        const std::string section = Section(row);
        ++Global.HHCount;
        Global.HHSyncID.push_back(*id);
        Global.HHStatusInst.push_back(store.Read(section, "HHStatusInst").value_or(""));
        Global.HHStatusDT.push_back(store.Read(section, "HHStatusDT").value_or(""));
        Global.HHStatusType.push_back(store.Read(section, "HHStatusType").value_or(""));
    }
    FitLists();
}

void UpdateHHStatusInst(StatusStore& store) {
    TraceEvent("basCommon:UpdateHHStatusInst");
    FitLists();
    std::vector<StatusRow> rows;
    for (std::size_t i = 1; i <= static_cast<std::size_t>(Global.HHCount); ++i)
        rows.push_back(
            {Global.HHSyncID[i], Global.HHStatusInst[i], Global.HHStatusDT[i], Global.HHStatusType[i]});
    Store(store, rows);
}

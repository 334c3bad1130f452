#include "installation/InstallList.h"

#include "core/Catalogue.h"
#include "core/Dates.h"
#include "core/Globals.h"
#include "core/TextCompare.h"
#include "installation/InstallFiles.h"
#include "sync/Status.h"

#include <algorithm>

void TakeInLinks(StatusStore& store) {
    GetHHStatusInst(store);
    const std::vector<std::string> links = LinkIDs();
    const std::vector<std::string> before = Global.HHSyncID;
    if (std::equal(links.begin(), links.end(), before.begin() + 1, before.end())) return;
    const auto statuses = Global.HHStatusInst;
    const auto moments = Global.HHStatusDT;
    const auto types = Global.HHStatusType;
    Global.HHCount = static_cast<std::int32_t>(links.size());
    for (auto* list : {&Global.HHSyncID, &Global.HHStatusInst, &Global.HHStatusDT, &Global.HHStatusType})
        list->assign(links.size() + 1, "");
    for (std::size_t i = 1; i <= links.size(); ++i) {
        Global.HHSyncID[i] = links[i - 1];
        const auto same = std::find_if(before.begin() + 1, before.end(),
                                       [&](const std::string& id) { return SameText(id, links[i - 1]); });
        if (same == before.end()) continue;
        const auto row = static_cast<std::size_t>(same - before.begin());
        Global.HHStatusInst[i] = statuses[row];
        Global.HHStatusDT[i] = moments[row];
        Global.HHStatusType[i] = types[row];
    }
    UpdateHHStatusInst(store); // in one step: a kill forgets no install
}

Text ShownType(const InstallRow& row) {
    const MessageId types[] = {InstallType(InstallKind::Demo), InstallType(InstallKind::Live),
                               InstallType(InstallKind::Program)};
    return ShownKey(row.HHStatusType, types);
}

std::vector<InstallRow> GetList(const StatusStore& store) {
    TraceEvent("frmHHInstall:GetList");
    std::vector<InstallRow> rows;
    for (std::size_t row = 1;; ++row) {
        const std::string section = "HH" + std::to_string(row);
        const auto read = [&](const char* key) {
            return std::string(Trim(store.Read(section, key).value_or("")));
        };
        if (!store.Read(section, "HHSyncID")) return rows;
        rows.push_back({read("HHSyncID"), read("HHStatusDT"), read("HHStatusType")});
    }
}

void RecordInstall(StatusStore& store, std::string_view user, MessageId type) {
    TakeInLinks(store);
    for (std::size_t i = 1; i <= static_cast<std::size_t>(Global.HHCount); ++i) {
        if (!SameText(Global.HHSyncID[i], user)) continue;
        Global.HHStatusInst[i] = "S";
        Global.HHStatusDT[i] = DateAndTime(Now());
        Global.HHStatusType[i] = KeyOf(type);
    }
    UpdateHHStatusInst(store);
    GetHHStatusInst(store);
}

void ResetInstalls(StatusStore& store) {
    MakeHHStatus(store);
    GetHHStatusInst(store);
}

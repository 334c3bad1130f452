#include "sync/StatusDetails.h"

#include "core/Globals.h"
#include "core/Numbers.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "store/TableScan.h"

namespace {

double Number(const TableScan& scan, const char* field) {
    return ToNumber(scan.Trimmed(scan.Layout().Find(FieldKey(field))));
}

} // namespace

std::optional<StatusDetails> ReadStatusDetails(std::string_view id) {
    if (!IsPlainFileName(id)) return std::nullopt;
    const std::string path = AddBackslash(Global.HHTotalsPath + NameToPath(id)) + "ZUKAudHH.dbf";
    if (!FileExists(path)) return std::nullopt;

    StatusDetails details;
    TableScan handheld(path);
    if (handheld.Next()) {
        details.Handheld = {Number(handheld, "TH_NUMHEAD"), Number(handheld, "TH_NUMLINE"),
                            Number(handheld, "TH_DOL_LIN")};
    }
    TableScan totals(Global.DBFPath + "ZUKTotalPC.dbf");
    const int idField = totals.Layout().Find(FieldKey("TP_HOTSYNC"));
    while (totals.Next()) {
        if (!SameText(totals.Trimmed(idField), id)) continue;
        details.PC = {Number(totals, "TP_NUMHEAD"), Number(totals, "TP_NUMLINE"),
                      Number(totals, "TP_DOL_LIN")};
        break;
    }
    return details;
}

#include "maintenance/Totals.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Numbers.h"
#include "core/TextCompare.h"
#include "store/TableRewrite.h"
#include "store/TableScan.h"

#include <array>
#include <cstdint>
#include <span>

namespace {

/// Places of the fields of the totals table, whose order is binding.
enum TotalsField : int {
    NumHead = 1,
    NumLine,
    DolLin,
    CurHead,
    CurLine,
    CurDol,
    Machine,
    Event,
    DateTim,
    HotSync,
    LstONu
};

std::string TotalsTable() {
    return Global.DBFPath + "ZUKTOTALPC.DBF";
}

bool IsUpload(std::string_view event) {
    return event == "UPLOAD-ADD" || event == "UPLOAD-REPLACE";
}

/// The name under which a second half is recorded; empty for any other event.
std::string_view SecondHalfName(std::string_view event) {
    if (event == "IMPORT2ADD") return "IMPORT-ADD";
    if (event == "IMPORT2REPLACE") return "IMPORT-REPLACE";
    if (event == "CLEAR2") return "CLEAR";
    return {};
}

bool HasSecondHalf(std::string_view event) {
    return event == "IMPORT-ADD" || event == "IMPORT-REPLACE" || event == "CLEAR";
}

std::string MoneyText(double amount) {
    return Fixed4ToText(ToFixed4(amount));
}

/// True when a backup for one event belongs to the operation of another: every upload backs up under
/// one name, and the halves of an operation have one backup.
bool SameOperation(std::string_view backup, std::string_view event) {
    if (backup.empty() || backup == event) return true;
    if (IsUpload(backup)) return IsUpload(event);
    return backup == SecondHalfName(event);
}

/// The moment of the operation's backup, once; else the present. A backup that no event followed, as
/// when the operator gave up behind it, says nothing of a later operation.
DateTime TakeEventTime(std::string_view event) {
    const bool backedUp = !Global.BackupTime.IsZero() && SameOperation(Global.BackupEvent, event);
    const DateTime time = backedUp ? Global.BackupTime : Now();
    if (backedUp && HasSecondHalf(event)) return time;
    Global.BackupTime = {};
    Global.BackupEvent.clear();
    return time;
}

/// Completes the record that the first half has written. The table is replaced whole: half of a
/// record would be an event that never was.
void WriteSecondHalf(std::span<const std::string> values) {
    TableScan totals(TotalsTable());
    TableRewrite rewrite(TotalsTable());
    while (totals.Next()) {
        rewrite.AppendRaw(totals.Flag(), totals.Record());
        if (totals.RecordNumber() > 1) continue;
        for (int field = CurHead; field <= LstONu; ++field) {
            rewrite.Write(field, values[static_cast<std::size_t>(field)]);
        }
    }
    rewrite.SetTrailing(totals.Trailing());
    totals.Close();
    rewrite.Commit();
}

bool HasRecords(const std::string& path) {
    return TableScan(path).RecordCount() > 0;
}

} // namespace

OrderTotals ReadOrderTotals(const std::string& folder, Progress& progress) {
    OrderTotals totals;
    totals.Headers = TableScan(folder + "ZUKORHDR.DBF").RecordCount();
    TableScan lines(folder + "ZUKORLIN.DBF");
    totals.Lines = lines.RecordCount();
    const int price = lines.Layout().Find(FieldKey("L_TOTPRICE"));
    progress.Begin(msg::ProcessingData, totals.Lines);
    while (lines.Next()) {
        totals.Dollars += ToNumber(lines.Trimmed(price));
        progress.Show(lines.RecordNumber());
    }
    return totals;
}

std::string MachineOf(std::string_view hotSyncID) {
    std::string machine;
    if (hotSyncID.empty()) return machine;
    TableScan links(Global.DBFPath + "ZUKLINK.DBF");
    FieldKey idKey("LK_HOTSYNC");
    FieldKey machineKey("LK_MACH_ID");
    const int idField = links.Layout().Find(idKey);
    const int machineField = links.Layout().Find(machineKey);
    while (links.Next()) {
        if (SameText(links.Trimmed(idField), hotSyncID)) machine = links.Trimmed(machineField);
    }
    return machine;
}

void CountOrders(Progress& progress) {
    const OrderTotals now = ReadOrderTotals(Global.DBFPath, progress);
    Global.CurHeaders = now.Headers;
    Global.CurLines = now.Lines;
    Global.CurDollars = now.Dollars;
}

void CalcOldPCTotals() {
    TraceEvent("Totals:CalcOldPCTotals");
    NoProgress silent;
    const OrderTotals old = ReadOrderTotals(Global.DBFPath, silent);
    Global.OldOrderCount = old.Headers;
    Global.OldLineCount = old.Lines;
    Global.OldLineTotal = old.Dollars;
}

void ZeroTotalsBlock() {
    Global.OldOrderCount = Global.OldLineCount = 0;
    Global.OldLineTotal = 0;
    Global.HHLastOrder.clear();
    Global.CurrentHotSyncID.clear();
}

void CalcPCTotals(std::string_view event, Progress& progress) {
    TraceEvent("frmProgress:CalcPCTotals");
    CountOrders(progress);

    const bool upload = IsUpload(event);
    const std::string id = upload ? Global.CurrentHotSyncID : std::string();
    const std::string_view secondHalf = SecondHalfName(event);

    std::array<std::string, LstONu + 1> values;
    if (secondHalf.empty()) {
        const bool added = event == "UPLOAD-ADD" || event == "IMPORT-ADD";
        values[NumHead] = std::to_string(Global.CurHeaders - (added ? Global.OldOrderCount : 0));
        values[NumLine] = std::to_string(Global.CurLines - (added ? Global.OldLineCount : 0));
        values[DolLin] = MoneyText(Global.CurDollars - (added ? Global.OldLineTotal : 0));
    }
    values[CurHead] = std::to_string(Global.CurHeaders);
    values[CurLine] = std::to_string(Global.CurLines);
    values[CurDol] = MoneyText(Global.CurDollars);
    if (event != "EXPORT") values[Machine] = MachineOf(id);
    values[Event] = secondHalf.empty() ? event : secondHalf;
    values[DateTim] = DateAndTime(TakeEventTime(event));
    values[HotSync] = id;
    if (upload) values[LstONu] = Global.HHLastOrder;

    // A second half without a first one is recorded on its own.
    if (!secondHalf.empty() && HasRecords(TotalsTable()))
        WriteSecondHalf(values);
    else
        ShiftDown(TotalsTable(), std::span<const std::string>(values).subspan(NumHead));
}

std::vector<UploadRow> GetPCTotals() {
    TraceEvent("basCommon:GetPCTotals");
    const std::string since = DateAndTime(Global.LastReset);
    std::vector<UploadRow> rows;
    TableScan totals(TotalsTable());
    while (rows.size() < MaxUploadRows && totals.Next()) {
        if (TextCompare(totals.Trimmed(DateTim), since) <= 0) continue;
        const std::string_view event = totals.Trimmed(Event);
        if (!SameText(event, "UPLOAD-ADD") && !SameText(event, "UPLOAD-REPLACE")) continue;
        rows.push_back({std::string(totals.Trimmed(HotSync)), std::string(totals.Trimmed(DateTim)),
                        std::string(totals.Trimmed(NumHead)), std::string(totals.Trimmed(NumLine)),
                        Money(ToNumber(totals.Trimmed(DolLin)))});
    }
    return rows;
}

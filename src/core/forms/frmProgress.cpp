#include "core/forms/frmProgress.h"

#include "maintenance/Totals.h"
#include "platform/BarProgress.h"

#include <array>

namespace {

constexpr std::array<std::string_view, ProgressFlags> EventNames = {
    "EXPORT",         "QUALCHECK",  "UPLOAD-ADD",     "UPLOAD-REPLACE", "CLEAR",  "CLEAR2",
    "IMPORT-REPLACE", "IMPORT-ADD", "IMPORT2REPLACE", "IMPORT2ADD",     "RESTORE"};

} // namespace

void frmProgress::Form_Load() {
    TraceEvent("frmProgress:Form_Load");
    for (std::size_t flag = 0; flag < ProgressFlags; ++flag) {
        if (!Global.Progress[flag]) continue;
        Global.Progress[flag] = false;
        show();
        BarProgress progress(lblProgress, *pgbProgress);
        CalcPCTotals(EventNames[flag], progress);
        break;
    }
    Unload();
}

void RecordTotals(ProgressFlag flag) {
    Global.Progress[static_cast<std::size_t>(flag)] = true;
    The<frmProgress>();
}

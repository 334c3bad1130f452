#include "core/forms/frmProgress.h"

#include "maintenance/Totals.h"
#include "platform/BarProgress.h"

#include <array>

namespace {

constexpr std::array<std::string_view, ProgressFlags> EventNames = {
    "EXPORT",         "QUALCHECK",  "UPLOAD-ADD",     "UPLOAD-REPLACE", "CLEAR",  "CLEAR2",
    "IMPORT-REPLACE", "IMPORT-ADD", "IMPORT2REPLACE", "IMPORT2ADD",     "RESTORE"};

constexpr double TimeToPaint = 0.2; ///< seconds

} // namespace

void frmProgress::Form_Load() {
    TraceEvent("frmProgress:Form_Load");
    for (std::size_t flag = 0; flag < ProgressFlags; ++flag) {
        if (!Global.Progress[flag]) continue;
        Global.Progress[flag] = false;
        show();
        BarProgress progress(lblProgress, *pgbProgress);
        CalcPCTotals(EventNames[flag], progress);
        return Unload();
    }
}

void FormProgress::Finish() {
    bar_.reset();
    if (auto* form = IfLoaded<frmProgress>()) form->Unload();
}

void FormProgress::Begin(const Text& label, std::int64_t maximum) {
    auto& form = The<frmProgress>();
    const bool isNew = !bar_;
    if (isNew) bar_.emplace(form.Label(), form.Bar());
    bar_->Begin(label, maximum);
    if (!isNew) return;
    form.FormBehaviour::Show();
    form.PauseFor(TimeToPaint);
}

void FormProgress::Show(std::int64_t value) {
    bar_->Show(value);
}

void RecordTotals(ProgressFlag flag) {
    Global.Progress[static_cast<std::size_t>(flag)] = true;
    The<frmProgress>();
}

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

void frmProgress::Stand() {
    // As a handler, since it can be unloaded while it waits.
    Run([this] {
        FormBehaviour::Show();
        PauseFor(TimeToPaint);
    });
}

void FormProgress::Finish() {
    bar_.reset();
    if (auto* form = IfLoaded<frmProgress>()) form->Unload();
}

void FormProgress::Begin(const Text& label, std::int64_t maximum) {
    if (bar_) return bar_->Begin(label, maximum);
    auto& form = The<frmProgress>();
    bar_.emplace(form.Label(), form.Bar());
    bar_->Begin(label, maximum);
    form.Stand();
}

void FormProgress::Show(std::int64_t value) {
    if (bar_) bar_->Show(value);
}

void RecordTotals(ProgressFlag flag) {
    Global.Progress[static_cast<std::size_t>(flag)] = true;
    The<frmProgress>();
}

#include "store/forms/AppendForm.h"

#include "core/Globals.h"
#include "platform/BarProgress.h"

#include <QCloseEvent>
#include <QLabel>
#include <QProgressBar>

#include <string>
#include <utility>

namespace {

constexpr double TimeToPaint = 0.2; ///< seconds

} // namespace

void AppendForm::Bind() {
    lblProgress = findChild<QLabel*>(QStringLiteral("lblProgress"));
    pgbProgress = findChild<QProgressBar*>(QStringLiteral("pgbProgress"));
}

void AppendForm::Form_Load() {
    Trace("Form_Load");
    const UploadRun& run = Global.MainSyncLoaded ? Global.SessionRun : Global.UploadScreenRun;
    for (const Step& step : steps_) {
        if (run.*step.IsWanted) merges_.emplace_back(step.Table).WriteText();
    }
}

void AppendForm::Form_GotFocus() {
    // It comes again when a form that was opened above has gone.
    if (std::exchange(reading_, true)) return;
    Trace("Form_GotFocus");
    PauseFor(TimeToPaint);
    if (IsOver()) return;
    BarProgress progress(lblProgress, *pgbProgress);
    for (TableMerge& merge : merges_) merge.ReadText(progress);
    pgbProgress->hide();
    Unload();
}

void AppendForm::closeEvent(QCloseEvent* event) {
    event->ignore();
}

#include "store/forms/frmCopyDBF.h"

#include "maintenance/VersionUpdate.h"
#include "platform/BarProgress.h"

#include <QCloseEvent>

namespace {

constexpr double TimeToPaint = 0.2; ///< seconds

void LoadAndUnload() {
    The<frmCopyDBF>().Unload();
}

} // namespace

/// Brings the form to the front with the first table, and not when there is none.
class frmCopyDBF::Shown final : public Progress {
public:
    explicit Shown(frmCopyDBF& form) : form_(form), bar_(form.lblMessage, *form.pgbProgress) {}

    void Begin(const Text& label, std::int64_t maximum) override {
        bar_.Begin(label, maximum);
        if (form_.isVisible()) return;
        form_.show();
        form_.raise();
        form_.PauseFor(TimeToPaint);
    }
    void Show(std::int64_t value) override { bar_.Show(value); }

private:
    frmCopyDBF& form_;
    BarProgress bar_;
};

void frmCopyDBF::Form_Load() {
    TraceEvent("frmCopyDBF:Form_Load");
    Shown progress(*this);
    if (Global.CopySingleTable)
        CopySingleTable(Global.OldTable, Global.NewTable, progress);
    else
        UpdateTables(progress);
}

void frmCopyDBF::closeEvent(QCloseEvent* event) {
    event->ignore();
}

void CopyTables() {
    Global.CopySingleTable = false;
    LoadAndUnload();
}

void CopyTable(const std::string& oldTable, const std::string& newTable) {
    Global.OldTable = oldTable;
    Global.NewTable = newTable;
    Global.CopySingleTable = true;
    try {
        LoadAndUnload();
    } catch (...) {
        Global.CopySingleTable = false;
        throw;
    }
    Global.CopySingleTable = false;
}

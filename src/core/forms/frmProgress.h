#pragma once

#include "core/Globals.h"
#include "platform/Form.h"
#include "ui_frmProgress.h"

/// Records the PC totals of an operation: it looks at the flags in their order, and does the work of
/// the first that it finds while it is being loaded.
class frmProgress final : public Form, private Ui::frmProgress {
    Q_OBJECT

public:
    frmProgress() { setupUi(this); }

protected:
    void Form_Load() override;
};

/// Sets a flag and loads the form. RunTimeFailure of CalcPCTotals.
void RecordTotals(ProgressFlag flag);

#pragma once

#include "store/forms/AppendForm.h"
#include "ui_frmAppendAudit.h"

/// Puts the old audits and handheld totals back behind those that a handheld has sent.
class frmAppendAudit final : public AppendForm, private Ui::frmAppendAudit {
    Q_OBJECT

public:
    frmAppendAudit();
};

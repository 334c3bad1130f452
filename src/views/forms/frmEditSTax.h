#pragma once

#include "ui_frmEditSTax.h"
#include "views/forms/MasterEditor.h"

/// The editor of the sales taxes.
class frmEditSTax final : public MasterEditor, private Ui::frmEditSTax {
    Q_OBJECT

public:
    frmEditSTax();
};

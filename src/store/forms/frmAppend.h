#pragma once

#include "store/forms/AppendForm.h"
#include "ui_frmAppend.h"

/// Puts the old order headers and lines back behind those that a handheld has sent.
class frmAppend final : public AppendForm, private Ui::frmAppend {
    Q_OBJECT

public:
    frmAppend();
};

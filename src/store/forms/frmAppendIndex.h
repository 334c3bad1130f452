#pragma once

#include "store/forms/AppendForm.h"
#include "ui_frmAppendIndex.h"

/// Would put the old barcode index back behind one that a handheld has sent. None sends one, so it comes up
/// and goes: that is meant.
class frmAppendIndex final : public AppendForm, private Ui::frmAppendIndex {
    Q_OBJECT

public:
    frmAppendIndex();
};

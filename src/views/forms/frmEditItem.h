#pragma once

#include "ui_frmEditItem.h"
#include "views/forms/MasterEditor.h"

/// The editor of the items.
class frmEditItem final : public MasterEditor, private Ui::frmEditItem {
    Q_OBJECT

public:
    frmEditItem();
};

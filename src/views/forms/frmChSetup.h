#pragma once

#include "ui_frmChSetup.h"
#include "views/forms/SetupForm.h"

/// The editor of what the handheld does. Loaded while Global.SetupOnly is set it reads the search fields
/// into memory and nothing more.
class frmChSetup final : public SetupForm, private Ui::frmChSetup {
    Q_OBJECT

public:
    frmChSetup() : SetupForm(ViewSetup, HandheldTable) { setupUi(this); }

protected:
    std::vector<QWidget*> Controls() const override;
    void Form_Load() override;
    bool Save() override;
};

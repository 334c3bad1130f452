#pragma once

#include "sync/forms/SendTablesForm.h"
#include "ui_frmTableSelectCL.h"

/// Empties tables of the handheld in the cradle: the empty twins are sent over them. The tables of the PC
/// stay as they are.
class frmTableSelectCL final : public SendTablesForm, private Ui::frmTableSelectCL {
    Q_OBJECT

public:
    frmTableSelectCL();

protected:
    void ReadSettings(const std::string& path) override;
    void WriteSettings(const std::string& path) override;
    void Perform() override;

private:
    ClearChoice Choice() const;
};

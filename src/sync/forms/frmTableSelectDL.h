#pragma once

#include "sync/forms/SendTablesForm.h"
#include "ui_frmTableSelectDL.h"

/// Sends master and setup tables to the handheld in the cradle, once a Quality Check has found nothing fatal.
class frmTableSelectDL final : public SendTablesForm, private Ui::frmTableSelectDL {
    Q_OBJECT

public:
    frmTableSelectDL();

protected:
    void ReadSettings(const std::string& path) override;
    void WriteSettings(const std::string& path) override;
    void Perform() override;

private:
    DownloadChoice Choice() const;
    bool PassGate();
};

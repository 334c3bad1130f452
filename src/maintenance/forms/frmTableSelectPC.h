#pragma once

#include "maintenance/ClearTables.h"
#include "sync/forms/TableSelectForm.h"
#include "ui_frmTableSelectPC.h"

/// Empties tables of the PC: each that is ticked becomes a copy of its empty twin.
class frmTableSelectPC final : public TableSelectForm, private Ui::frmTableSelectPC {
    Q_OBJECT

public:
    frmTableSelectPC();

    /// Before the form is shown: what it clears is written there too.
    void ReportTo(ClearedTables& cleared) { report_ = &cleared; }

private slots:
    void cmdInvert_Click();

protected:
    void Form_Load() override;
    void ReadSettings(const std::string& path) override;
    void WriteSettings(const std::string& path) override;
    void Perform() override;
    /// Also a screen that keeps templates asks whether it is to clear.
    bool OnlySaves() const override { return false; }
    void EndDrive() override { Unload(); }
    void ShowTables() override;

private:
    bool IsAgreedTo();
    static bool CopiesAreIn(const ClearPlan& plan);
    bool Clear(const ClearPlan& plan);
    static void ShowState(const ClearPlan& plan);
    ClearPlan Plan() const;

    ClearedTables* report_ = nullptr;
};

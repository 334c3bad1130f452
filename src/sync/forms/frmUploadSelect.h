#pragma once

#include "sync/UploadSession.h"
#include "sync/forms/TransferForm.h"
#include "ui_frmUploadSelect.h"

#include <optional>
#include <string>
#include <vector>

/// Brings tables of the handheld in the cradle to the PC. What comes replaces the PC's tables; the orders and
/// audits that the PC held are put back behind those that came.
class frmUploadSelect final : public TransferForm, private Ui::frmUploadSelect {
    Q_OBJECT

public:
    frmUploadSelect();

protected:
    void ReadSettings(const std::string& path) override;
    void WriteSettings(const std::string& path) override;
    void Perform() override;
    void HotSyncStatus(std::int32_t status) override;

private:
    UploadChoice Choice() const;
    std::vector<std::string> ChosenTables() const;
    bool MakeBackupOfChosen();
    void AddData();
    bool PrepareTables();
    void MergeOrders();
    void EndUpload();
    void TellBrokenOff();

    bool OrdersChosen = false;
    std::string backup_; ///< the name of the backup of this upload; empty when none was made
    std::optional<UploadSession> session_;
};

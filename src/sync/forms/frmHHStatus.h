#pragma once

#include "platform/Form.h"
#include "sync/StatusDetails.h"
#include "ui_frmHHStatus.h"

#include <string_view>

/// What a handheld said it had against what the PC took, for one handheld, and the receipt of its last
/// HotSync.
class frmHHStatus final : public Form, private Ui::frmHHStatus {
    Q_OBJECT

public:
    frmHHStatus() { setupUi(this); }

    void Fill(std::string_view id, const StatusDetails& details);

private slots:
    void cmdOK_Click();

protected:
    void Form_Load() override;

private:
    int HeightOfRows() const;
};

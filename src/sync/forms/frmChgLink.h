#pragma once

#include "core/Text.h"
#include "platform/Form.h"
#include "store/forms/RecordMoves.h"
#include "sync/Links.h"
#include "sync/SFrmAX40.h"
#include "ui_frmChgLink.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// The editor of the Links table, a handheld at a time. A move saves, and Cancel drops only what has not
/// been saved; an added record that was never given an id goes with the form.
class frmChgLink final : public Form, private Ui::frmChgLink {
    Q_OBJECT

public:
    frmChgLink();

private slots:
    void cmdAdd_Click();
    void cmdDelete_Click();
    void cmdView_Click();
    void cmdOK_Click();
    void cmdCancel_Click();
    void txtHotSync_Change();

protected:
    void Form_Load() override;
    void Form_GotFocus() override;
    void Form_Unload() override;

private:
    void DisplayData();
    void UpdateData();
    void SortData();
    void SFLink_HotSyncStatus(std::int32_t status);

    bool Saved();
    void Move(std::int32_t target);
    void ShowCount();
    Text Warning() const;
    bool Finish();

    RecordMoves* moves_ = nullptr;
    std::unique_ptr<SFrmAX40> SFLink;
    LinkTable links_;
    std::vector<std::string> users_;  ///< of the HotSync Manager
    std::vector<std::string> before_; ///< the ids for which the status of the handhelds was made
    bool UpdateFailed = false;
};

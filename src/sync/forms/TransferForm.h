#pragma once

#include "platform/SFrmUt40.h"
#include "sync/SFrmAX40.h"
#include "sync/forms/TableSelectForm.h"

#include <cstdint>
#include <memory>
#include <vector>

class GridView;

/// What the screens that start one HotSync for the tables that are chosen share: the handhelds that there
/// are, and the HotSync itself. The unattended mode's own control gives way as long as such a screen stands.
class TransferForm : public TableSelectForm {
protected:
    using TableSelectForm::TableSelectForm;

    /// As TableSelectForm has it.
    void Bind(std::vector<Group> groups, const Hints& hints, bool counted);

    void Form_Load() override;
    void Form_Unload() override;

    /// The control's event.
    virtual void HotSyncStatus(std::int32_t status) = 0;

    SFrmAX40& Control() const { return *control_; }

    /// Holds one HotSync. Its events go to HotSyncStatus.
    FlushEnd FlushCommandQueue();

    /// Waits until the HotSync Manager has closed the window of the transfer.
    void AwaitProgressWindow();

    /// Tells why there was no session; nothing to an operator who did not want one any more.
    static void TellEnd(FlushEnd end);

    /// Closes the screen when a session was held, or when nobody chose on it. Else it stays for another try.
    void Finish(bool held);

private:
    void DisplayLinkData();
    void DisplayData();
    void OnStatus(std::int32_t status);

    std::unique_ptr<SFrmAX40> control_;
    std::vector<std::vector<Text>> FGLink; ///< what the Links table says of the handhelds
    GridView* FG1 = nullptr;
};

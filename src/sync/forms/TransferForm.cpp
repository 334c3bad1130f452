#include "sync/forms/TransferForm.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "platform/GridView.h"
#include "platform/HotSyncControl.h"
#include "platform/TitledWindow.h"
#include "store/TableCatalogue.h"
#include "store/TableScan.h"
#include "sync/forms/frmMainSync.h"
#include "views/GridData.h"

#include <utility>

namespace {

constexpr const char* ProgressWindow = "Hotsync Progress";
constexpr std::string_view LinkColumns[] = {"LK_HOTSYNC", "LK_MACH_ID", "LK_LSTONUM"};

} // namespace

void TransferForm::Bind(std::vector<Group> groups, const Hints& hints, bool counted) {
    TableSelectForm::Bind(std::move(groups), hints, counted);
    FG1 = findChild<GridView*>(QStringLiteral("FG1"));
}

void TransferForm::Form_Load() {
    control_ = NewSFrmAX40();
    control_->HotSyncStatus = [this](std::int32_t status) {
        if (!IsOver()) Run([this, status] { OnStatus(status); });
    };
    TableSelectForm::Form_Load();
    DisplayLinkData();
    DisplayData();
}

void TransferForm::Form_Unload() {
    TableSelectForm::Form_Unload();
    if (control_) control_->SetEnabled(false); // the object lives on until its handlers have returned
    LoadMainSync();
}

/// What the Links table says of the handhelds.
void TransferForm::DisplayLinkData() {
    Trace("DisplayLinkData");
    FGLink.clear();
    try {
        TableScan links(Global.DBFPath + "ZUKLINK.DBF");
        while (links.Next()) {
            if (links.Deleted()) continue;
            std::vector<Text> row;
            for (const std::string_view field : LinkColumns) {
                const int column = links.Layout().Find(FieldKey(field));
                row.push_back(column > 0 ? Text::Value(links.Trimmed(column)) : Text());
            }
            FGLink.push_back(std::move(row));
        }
    } catch (const RunTimeFailure& failure) {
        FGLink.clear();
        FG1->SetEmptyText(Lines(msg::FileError, Text::Path(std::string_view(failure.what()))));
        return;
    }
    FG1->SetEmptyText(msg::lblNoHandhelds);
}

void TransferForm::DisplayData() {
    Trace("DisplayData");
    std::vector<GridHeading> headings;
    for (const std::string_view field : LinkColumns)
        headings.push_back({GetFriendlyFieldName(*FindTable("ZUKLINK"), field)});
    FG1->SetContent(std::make_unique<ListGrid>(std::move(headings), FGLink));
}

FlushEnd TransferForm::FlushCommandQueue() {
    const Busy busy(*this, msg::WaitForHandheld, WayOut::Open);
    Global.ManualUploadActive = true;
    control_->SetEnabled(true);
    const FlushEnd end = SF_FlushCommandQueue(Text(msg::SynchronizingData) + msg::SynchronizingDots,
                                              [this] { return !IsGone(); });
    Global.ManualUploadActive = false;
    control_->SetEnabled(false);
    return end;
}

void TransferForm::OnStatus(std::int32_t status) {
    // From its beginning on a session cannot be given up here: tables would stay half sent.
    if (Global.ManualUploadActive && status == SessionBegun) SetBusy(msg::SessionRuns, WayOut::Shut);
    HotSyncStatus(status);
}

void TransferForm::AwaitProgressWindow() {
    const Busy busy(*this, msg::SessionRuns, WayOut::Shut);
    LookUntil(*this, [] { return !FindWindow(QString::fromLatin1(ProgressWindow)); });
}

void TransferForm::TellEnd(FlushEnd end) {
    if (end == FlushEnd::Refused) Tell(msg::HotSyncRefused, Icon::Warning);
    if (end == FlushEnd::NoManager) Tell(msg::HotSyncNotReached, Icon::Warning);
    if (end == FlushEnd::Lost) Tell(msg::HotSyncLost, Icon::Warning);
}

void TransferForm::Finish(bool held) {
    if (held) SetPerformed();
    if (held || IsDriven()) Unload();
}

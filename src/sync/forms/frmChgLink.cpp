#include "sync/forms/frmChgLink.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/TextCompare.h"
#include "platform/Convert.h"
#include "platform/HotSyncControl.h"
#include "platform/Look.h"
#include "store/SortTables.h"
#include "sync/Status.h"
#include "sync/forms/StatusFile.h"
#include "sync/forms/frmMainSync.h"
#include "views/forms/frmViewData.h"
#include "views/forms/frmViewGrid.h"

#include <algorithm>
#include <utility>

frmChgLink::frmChgLink() {
    setupUi(this);
    moves_ = new RecordMoves(*this, [this](std::int32_t target) { Move(target); });
}

void frmChgLink::Form_Load() {
    Trace("Form_Load");
    // A session would write the same table.
    UnloadMainSync();
    setWindowIcon(Picture("UpDtHSUsers32x32-16M.ico"));
    SFLink = NewSFrmAX40();
    SFLink->HotSyncStatus = [this](std::int32_t status) {
        if (!IsOver()) Run([this, status] { SFLink_HotSyncStatus(status); });
    };
    users_ = KnownUsers(*SFLink);
    const std::int32_t record = std::exchange(Global.LinkRecordToShow, 0);
    if (!Try([&] { links_.Open(record > 0 ? record : Global.SelectedRow); })) return Unload();
    before_ = links_.IDs();
    const LinkFields room = links_.Padded();
    txtHotSync->setMaxLength(static_cast<int>(room.HotSync.size()));
    txtSerial->setMaxLength(static_cast<int>(room.Serial.size()));
    txtSFUser->setMaxLength(static_cast<int>(room.SFUser.size()));
    DisplayData();
    (links_.RecordCount() > 0 ? static_cast<QWidget*>(txtHotSync) : cmdAdd)->setFocus();
}

// ---- the screen ----

void frmChgLink::DisplayData() {
    Trace("DisplayData");
    const LinkFields fields = links_.Trimmed();
    const std::pair<QLineEdit*, std::string_view> texts[] = {
        {txtHotSync, fields.HotSync}, {txtSerial, fields.Serial}, {txtSFUser, fields.SFUser}};
    for (const auto& [line, text] : texts) {
        line->setText(ToQt(text));
        line->setCursorPosition(0);
    }
    ShowCount();
    lblWarning->setText(ToQt(Warning())); // the same id may be a repeat here and none there
}

void frmChgLink::ShowCount() {
    moves_->Show(links_.RecordNumber(), links_.RecordCount(), {frLinkField, cmdDelete}, {txtHotSync, cmdAdd});
}

/// Why no session, or another record's, might find the id on the screen; it is no reason to refuse it.
Text frmChgLink::Warning() const {
    const QString typed = txtHotSync->text();
    const std::string kept = FromQt(typed);
    if (ToQt(std::string_view(kept)) != typed) return msg::CharactersLost;
    const std::string_view id = Trim(kept);
    if (id.empty()) return {};
    if (const std::int32_t other = links_.OtherWith(id))
        return Words(msg::DuplicateLink, Text::Value(std::int64_t{other}));
    const auto isID = [&](const std::string& user) { return SameText(user, id); };
    const bool known = users_.empty() || std::any_of(users_.begin(), users_.end(), isID);
    return known ? Text() : Text(msg::UnknownUser);
}

void frmChgLink::txtHotSync_Change() {
    lblWarning->setText(ToQt(Warning()));
}

void frmChgLink::Form_GotFocus() {
    if (!links_.IsOpen()) return; // the browser stands in its place
    if (const std::int32_t record = std::exchange(Global.LinkRecordToShow, 0); record > 0) Move(record);
    ShowCount();
}

// ---- saving ----

void frmChgLink::UpdateData() {
    Trace("UpdateData");
    if (links_.RecordNumber() == 0) return;
    const LinkFields fields{FromQt(txtHotSync->text()), FromQt(txtSerial->text()), FromQt(txtSFUser->text())};
    if (Trim(fields.HotSync).empty()) {
        UpdateFailed = true;
        Tell(msg::EmptyHotSync, Icon::Warning);
        txtHotSync->setFocus();
    } else if (!Try([&] { links_.Write(fields); })) {
        UpdateFailed = true;
    }
}

/// Whether the step that is under way may go on: the record on the screen is in the table. After the
/// wrong handheld in the cradle nothing is written, and the step does not go on.
bool frmChgLink::Saved() {
    if (!UpdateFailed) UpdateData();
    return !std::exchange(UpdateFailed, false) && !IsOver();
}

void frmChgLink::SortData() {
    Trace("SortData");
    SortLinkFile(Global.DBFPath + "ZUKLINK.DBF");
}

/// Puts the table in order and lets the status of the handhelds begin anew.
/// False when the table could not be put in order: the operator has been told.
bool frmChgLink::Finish() {
    links_.Close();
    if (!Try([&] { SortData(); })) return false;
    before_ = links_.IDs();
    BeginHHStatusAnew();
    return true;
}

void frmChgLink::SFLink_HotSyncStatus(std::int32_t status) {
    Trace("SFLink_HotSyncStatus");
    if (!Global.ManualUploadActive || status != SessionBegun) return;
    if (SameText(SFLink->UserName(), Global.NewHSUser))
        return Tell(Text::Value(std::int64_t{SFLink->UserID()}));
    UpdateFailed = true;
    lblWarning->setText(ToQt(Text(msg::OtherUserInCradle)));
    Tell(msg::OtherUserInCradle, Icon::Warning);
}

// ---- moving ----

void frmChgLink::Move(std::int32_t target) {
    if (Saved() && Try([&] { links_.Go(target); })) DisplayData();
}

// ---- the other buttons ----

void frmChgLink::cmdAdd_Click() {
    Trace("cmdAdd_Click");
    if (!Saved() || !Try([&] { links_.Append(); })) return;
    DisplayData();
    txtHotSync->setFocus();
}

void frmChgLink::cmdDelete_Click() {
    Trace("cmdDelete_Click");
    if (!AskYesNo(msg::DeleteCurrentLink) || IsOver()) return;
    if (Try([&] { links_.Delete(); })) DisplayData();
}

void frmChgLink::cmdView_Click() {
    Trace("cmdView_Click");
    if (!Saved()) return;
    const std::int32_t record = links_.RecordNumber();
    links_.Close();
    hide();
    ShowTable(ViewLink, ShowMode::Modeless, record);
    WaitWhile([] { return IfLoaded<frmViewGrid>() || IfLoaded<frmViewData>(); });
    if (IsOver()) return;
    const std::int32_t chosen = std::exchange(Global.LinkRecordToShow, 0);
    if (!Try([&] { links_.Open(chosen > 0 ? chosen : record); })) return Unload();
    DisplayData();
    Show();
}

void frmChgLink::cmdOK_Click() {
    Trace("cmdOK_Click");
    if (!Saved()) return;
    const std::int32_t record = links_.RecordNumber();
    if (Finish()) return Unload();
    if (Try([&] { links_.Open(record); })) DisplayData();
}

void frmChgLink::cmdCancel_Click() {
    Trace("cmdCancel_Click");
    Unload();
}

void frmChgLink::Form_Unload() {
    Trace("Form_Unload");
    // A record that never got an id would be a handheld that nobody can name.
    if (links_.IsNew()) Try([&] { links_.Delete(); });
    // What was saved and deleted stays, whatever has closed the form.
    if (links_.IDs() != before_) Finish();
    links_.Close();
    LoadMainSync();
}

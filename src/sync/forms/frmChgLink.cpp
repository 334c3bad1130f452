#include "sync/forms/frmChgLink.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/TextCompare.h"
#include "core/forms/frmMain1.h"
#include "platform/Convert.h"
#include "platform/HotSyncControl.h"
#include "platform/Look.h"
#include "store/SortTables.h"
#include "sync/Status.h"
#include "sync/forms/StatusFile.h"
#include "sync/forms/frmMainSync.h"
#include "views/forms/frmViewData.h"
#include "views/forms/frmViewGrid.h"

#include <QShortcut>

#include <algorithm>
#include <utility>

void frmChgLink::Form_Load() {
    TraceEvent("frmChgLink:Form_Load");
    // A session would write the same table.
    UnloadMainSync();
    setWindowIcon(Picture("UpDtHSUsers32x32-16M.ico"));
    for (const auto& [key, button] : {std::pair{Qt::Key_PageUp, cmdPrevious}, {Qt::Key_PageDown, cmdNext}})
        connect(new QShortcut(key, this), &QShortcut::activated, button, &QPushButton::click);
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

/// Takes a step of the table. False when the disk would not have it: the operator has been told.
bool frmChgLink::Try(const std::function<void()>& step) {
    try {
        step();
        return true;
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::FileError, Text::Path(std::string_view(failure.what()))), Icon::Stop);
        return false;
    }
}

// ---- the screen ----

void frmChgLink::DisplayData() {
    TraceEvent("frmChgLink:DisplayData");
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
    const std::int32_t record = links_.RecordNumber();
    const std::int32_t count = links_.RecordCount();
    lblCount->setText(
        ToQt(count > 0 ? Words(Text::Value(std::int64_t{record}), msg::Of, Text::Value(std::int64_t{count}))
                       : Text(msg::NoRecords)));
    const QWidget* at = focusWidget();
    frLinkField->setEnabled(count > 0);
    cmdDelete->setEnabled(count > 0);
    for (QPushButton* button : {cmdFirst, cmdPrevious}) button->setEnabled(record > 1);
    for (QPushButton* button : {cmdNext, cmdLast}) button->setEnabled(record < count);
    if (!at || at->isEnabled()) return;
    // The same key once more, at either end or behind the last deletion, is to do no harm.
    QWidget* const harmless[] = {cmdPrevious, cmdNext, txtHotSync, cmdAdd};
    (*std::find_if(harmless, std::end(harmless) - 1, [](QWidget* each) {
        return each->isEnabled();
    }))->setFocus();
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
    TraceEvent("frmChgLink:UpdateData");
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
    TraceEvent("frmChgLink:SortData");
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
    TraceEvent("frmChgLink:SFLink_HotSyncStatus");
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

void frmChgLink::cmdFirst_Click() {
    TraceEvent("frmChgLink:cmdFirst_Click");
    Move(DBFEdit::First);
}

void frmChgLink::cmdPrevious_Click() {
    TraceEvent("frmChgLink:cmdPrevious_Click");
    Move(DBFEdit::Previous);
}

void frmChgLink::cmdNext_Click() {
    TraceEvent("frmChgLink:cmdNext_Click");
    Move(DBFEdit::Next);
}

void frmChgLink::cmdLast_Click() {
    TraceEvent("frmChgLink:cmdLast_Click");
    Move(DBFEdit::Last);
}

// ---- the other buttons ----

void frmChgLink::cmdAdd_Click() {
    TraceEvent("frmChgLink:cmdAdd_Click");
    if (!Saved() || !Try([&] { links_.Append(); })) return;
    DisplayData();
    txtHotSync->setFocus();
}

void frmChgLink::cmdDelete_Click() {
    TraceEvent("frmChgLink:cmdDelete_Click");
    if (!AskYesNo(msg::DeleteCurrentLink) || IsOver()) return;
    if (Try([&] { links_.Delete(); })) DisplayData();
}

void frmChgLink::cmdView_Click() {
    TraceEvent("frmChgLink:cmdView_Click");
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
    TraceEvent("frmChgLink:cmdOK_Click");
    if (!Saved()) return;
    const std::int32_t record = links_.RecordNumber();
    if (Finish()) return Unload();
    if (Try([&] { links_.Open(record); })) DisplayData();
}

void frmChgLink::cmdCancel_Click() {
    TraceEvent("frmChgLink:cmdCancel_Click");
    Unload();
}

void frmChgLink::Form_Unload() {
    TraceEvent("frmChgLink:Form_Unload");
    // A record that never got an id would be a handheld that nobody can name.
    if (links_.IsNew()) Try([&] { links_.Delete(); });
    // What was saved and deleted stays, whatever has closed the form.
    if (links_.IDs() != before_) Finish();
    links_.Close();
    LoadMainSync();
}

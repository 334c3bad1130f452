#include "views/forms/frmPay.h"

#include "core/Messages.h"
#include "core/Operator.h"

#include <QRadioButton>

#include <algorithm>

namespace {

constexpr std::size_t PayCode = 0; // its place among the fields

} // namespace

frmPay::frmPay() : SetupForm(ViewPay, PaymentTable) {
    setupUi(this);
    moves_ = new RecordMoves(*this, [this](std::int32_t target) { Move(target); });
}

void frmPay::Form_Load() {
    SetupForm::Form_Load();
    if (records_.RecordCount() == 0) cmdAdd->setFocus();
}

std::vector<QWidget*> frmPay::Controls() const {
    return {nullptr, cboPayRef, txtPayCDesc, cboPayCDet};
}

// ---- the screen ----

void frmPay::Put(std::size_t field, const std::string& text) {
    if (field != PayCode) return SetupForm::Put(field, text);
    const std::span<const char* const> types = PaymentTable.Fields[PayCode].Entries;
    QRadioButton* const options[] = {optCash, optCheck, optCard};
    for (std::size_t k = 0; k < std::size(options); ++k) {
        // By itself a group would keep one of its options chosen.
        options[k]->setAutoExclusive(false);
        options[k]->setChecked(text == types[k]);
    }
    for (QRadioButton* option : options) option->setAutoExclusive(true);
}

std::string frmPay::Held(std::size_t field) const {
    if (field != PayCode) return SetupForm::Held(field);
    const std::span<const char* const> types = PaymentTable.Fields[PayCode].Entries;
    return optCash->isChecked()    ? types[0]
           : optCheck->isChecked() ? types[1]
           : optCard->isChecked()  ? types[2]
                                   : std::string();
}

void frmPay::DisplayData() {
    SetupForm::DisplayData();
    CheckCard();
    ShowCount();
}

void frmPay::ShowCount() {
    moves_->Show(records_.RecordNumber(), records_.RecordCount(), {frPayment, cmdDelete, cmdUpdate},
                 {cboPayRef, cmdAdd});
}

void frmPay::Form_GotFocus() {
    if (records_.IsOpen()) ShowCount();
}

void frmPay::CheckCard() {
    Trace("CheckCard");
    for (QWidget* control : {static_cast<QWidget*>(txtPayCDesc), static_cast<QWidget*>(cboPayCDet)})
        control->setEnabled(optCard->isChecked());
}

void frmPay::optCash_Click() {
    CheckCard();
}

void frmPay::optCheck_Click() {
    CheckCard();
}

void frmPay::optCard_Click() {
    CheckCard();
}

// ---- saving ----

bool frmPay::HasType() {
    if (!Held(PayCode).empty()) return true;
    Tell(msg::SelectPaymentType, Icon::Warning);
    optCash->setFocus();
    return false;
}

/// Whether the step that is under way may go on. "No" drops what was changed.
bool frmPay::CheckUpdate() {
    Trace("CheckUpdate");
    if (records_.RecordNumber() == 0) return true;
    if (!HasType()) return false;
    const bool write = Differs() && AskYesNo(msg::UpdateChanged);
    return !IsOver() && (!write || UpdateData());
}

void frmPay::cmdUpdate_Click() {
    Trace("cmdUpdate_Click");
    if (HasType() && UpdateData()) DisplayData();
}

// ---- moving ----

void frmPay::Move(std::int32_t target) {
    if (CheckUpdate() && Try([&] { records_.Go(target); })) DisplayData();
}

void frmPay::GoTo(std::int32_t record) {
    const std::int32_t nearest = std::min(std::max(record, 1), records_.RecordCount());
    if (nearest != records_.RecordNumber()) Move(nearest);
}

// ---- the other buttons ----

void frmPay::cmdAdd_Click() {
    Trace("cmdAdd_Click");
    if (!CheckUpdate() || !Try([&] { records_.Append(); })) return;
    DisplayData();
    optCash->setFocus();
}

void frmPay::cmdDelete_Click() {
    Trace("cmdDelete_Click");
    if (!AskYesNo(msg::DeleteCurrentLink) || IsOver()) return;
    if (Try([&] { records_.Delete(TableRecords::Then::Previous); })) DisplayData();
}

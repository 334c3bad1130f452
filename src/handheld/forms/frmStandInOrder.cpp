#include "handheld/forms/frmStandInOrder.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Numbers.h"
#include "core/Operator.h"
#include "core/TextCompare.h"
#include "handheld/Decimal.h"
#include "handheld/forms/HandheldWork.h"
#include "handheld/line/FolderLock.h"
#include "platform/Convert.h"
#include "platform/Look.h"
#include "store/TableCatalogue.h"

namespace {

constexpr int QuantityDecimals = 4;

std::vector<std::string> TextsOf(const std::vector<OrderBook::Choice>& choices) {
    std::vector<std::string> texts;
    for (const OrderBook::Choice& choice : choices) {
        texts.push_back(choice.Code + "  " + choice.Name);
        if (!choice.More.empty()) texts.back() += "  " + choice.More;
    }
    return texts;
}

Text Dollars(std::int64_t cents) {
    constexpr double dollar = 100;
    return Text::Value(std::string_view(Money(static_cast<double>(cents) / dollar)));
}

GridHeading LineHeading(std::string_view field, SortKind kind = SortKind::Text) {
    return {GetFriendlyFieldName(*FindTable("ZUKORLIN"), field), kind};
}

} // namespace

/// The handheld at work. The lock goes last.
struct frmStandInOrder::Desk {
    std::shared_ptr<void> Lock = LockFolder(Global.StandInFolder);
    Handheld TheHandheld{Global.StandInFolder};
    OrderBook Book{TheHandheld};
};

frmStandInOrder::frmStandInOrder() {
    setupUi(this);
}

frmStandInOrder::~frmStandInOrder() = default;

void frmStandInOrder::Form_Load() {
    TraceEvent("frmStandInOrder:Form_Load");
    setWindowIcon(Picture("handheld"));
    FG1->SetEmptyText(msg::StandInNoLines);
    txtQty->setText(QStringLiteral("1"));
    const std::span<const TableField> fields = FindTable("ZUKORHDR")->Fields;
    txtPO->setMaxLength(fields[static_cast<std::size_t>(PlaceOf(fields, "H_CUST_PO")) - 1].Length);
    ShowOrder();
}

void frmStandInOrder::Form_Unload() {
    TraceEvent("frmStandInOrder:Form_Unload");
    desk_.reset();
}

bool frmStandInOrder::OpenDesk() {
    desk_.reset();
    return DoOnHandheld([this] { desk_ = std::make_unique<Desk>(); });
}

bool frmStandInOrder::Begin() {
    if (!OpenDesk()) return false;
    customers_ = desk_->Book.Customers();
    items_ = desk_->Book.PricedItems();
    if (customers_.empty() || items_.empty()) {
        Tell(msg::StandInNoTables, Icon::Information);
        return false;
    }
    customerTexts_ = TextsOf(customers_);
    itemTexts_ = TextsOf(items_);
    cboCustomer->Show(customerTexts_);
    cboCustomer->Stand(-1);
    cboItem->Show(itemTexts_);
    cboItem->Stand(-1);
    return true;
}

void frmStandInOrder::ShowOrder() {
    OrderBook::Sums sums;
    if (desk_) DoOnHandheld([&] { sums = desk_->Book.AddUp(entry_); });
    sums.Lines.resize(entry_.Lines.size());
    std::vector<std::vector<Text>> rows;
    for (std::size_t k = 0; k < entry_.Lines.size(); ++k) {
        const OrderBook::Choice& item = items_[chosen_[k]];
        const std::string quantity = DecimalText(entry_.Lines[k].Quantity, QuantityDecimals);
        rows.push_back({Text::Value(std::string_view(item.Code)), Text::Value(std::string_view(item.Name)),
                        Text::Value(std::string_view(quantity)), Dollars(sums.Lines[k])});
    }
    std::vector<GridHeading> headings{LineHeading("L_ITEMCODE"),
                                      LineHeading("L_ITEMDES1"),
                                      LineHeading("L_QTY", SortKind::Number),
                                      {msg::StandInExtended, SortKind::Number}};
    FG1->SetContent(std::make_unique<ListGrid>(std::move(headings), std::move(rows)),
                    QStringLiteral("frmStandInOrder"));
    lblTotals->setText(ToQt(Words(msg::StandInItems, Dollars(sums.Items))) + QStringLiteral("      ") +
                       ToQt(Words(msg::StandInTax, Dollars(sums.Tax))) + QStringLiteral("      ") +
                       ToQt(Words(msg::TotalsTotal, Dollars(sums.Total))));
    FG1_SelChange();
}

void frmStandInOrder::FG1_SelChange() {
    cmdRemove->setEnabled(FG1->SelectedRecord() != 0);
}

void frmStandInOrder::cboCustomer_Click() {
    TraceEvent("frmStandInOrder:cboCustomer_Click");
    const int row = cboCustomer->currentIndex();
    entry_.Customer = row < 0 ? std::string() : customers_.at(static_cast<std::size_t>(row)).Code;
    ShowOrder();
    cboItem->setFocus();
}

void frmStandInOrder::cboItem_Click() {
    TraceEvent("frmStandInOrder:cboItem_Click");
    txtQty->setFocus();
    txtQty->selectAll();
}

void frmStandInOrder::cmdAdd_Click() {
    TraceEvent("frmStandInOrder:cmdAdd_Click");
    const int row = cboItem->currentIndex();
    if (row < 0) {
        Tell(msg::StandInOneItem, Icon::Warning);
        return cboItem->setFocus();
    }
    const auto quantity = ReadDecimal(FromQt(txtQty->text()), QuantityDecimals);
    if (!quantity || *quantity <= 0) {
        Tell(msg::StandInQuantity, Icon::Warning);
        return txtQty->setFocus();
    }
    const auto item = static_cast<std::size_t>(row);
    entry_.Lines.push_back({items_.at(item).Code, *quantity, std::nullopt});
    if (!DoOnHandheld([this] { desk_->Book.AddUp(entry_); })) {
        entry_.Lines.pop_back();
        return;
    }
    chosen_.push_back(item);
    ShowOrder();
    FG1->SelectRecord(static_cast<std::int32_t>(chosen_.size()));
    cboItem->Stand(-1);
    txtQty->setText(QStringLiteral("1"));
    cboItem->setFocus();
}

void frmStandInOrder::cmdRemove_Click() {
    TraceEvent("frmStandInOrder:cmdRemove_Click");
    const std::int32_t record = FG1->SelectedRecord();
    if (record == 0) return;
    entry_.Lines.erase(entry_.Lines.begin() + record - 1);
    chosen_.erase(chosen_.begin() + record - 1);
    ShowOrder();
}

void frmStandInOrder::cmdOK_Click() {
    TraceEvent("frmStandInOrder:cmdOK_Click");
    if (entry_.Customer.empty()) {
        Tell(msg::StandInOneCustomer, Icon::Warning);
        return cboCustomer->setFocus();
    }
    if (entry_.Lines.empty()) return Tell(msg::StandInOneLine, Icon::Warning);
    std::string code;
    const bool done = DoOnHandheld([&] {
        entry_.CustomerPO = FromQt(txtPO->text());
        entry_.At = desk_->TheHandheld.Clock();
        code = desk_->Book.Take(entry_);
        const std::string name(Trim(FromQt(txtSigned->text())));
        if (!name.empty()) desk_->Book.Sign(code, name);
        desk_->Book.Save("ORDER", entry_.At);
    });
    if (IsOver()) return;
    if (done) {
        if (Taken) Taken(code);
        return Unload();
    }
    // The book may hold what was not written: another one, and what was entered stays.
    if (!OpenDesk()) Unload();
}

void frmStandInOrder::cmdCancel_Click() {
    TraceEvent("frmStandInOrder:cmdCancel_Click");
    if (!entry_.Lines.empty() && !AskYesNo(msg::StandInAskDrop, Icon::Warning)) return;
    if (!IsOver()) Unload();
}

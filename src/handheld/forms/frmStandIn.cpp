#include "handheld/forms/frmStandIn.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "handheld/CommandLine.h"
#include "handheld/OrderBook.h"
#include "handheld/forms/HandheldWork.h"
#include "handheld/forms/frmStandInOrder.h"
#include "handheld/line/FolderLock.h"
#include "handheld/line/HotSyncLine.h"
#include "platform/Convert.h"
#include "platform/Look.h"
#include "store/TableCatalogue.h"

#include <QFontDatabase>

#include <algorithm>
#include <sstream>

namespace {

Text Number(std::size_t number) {
    return Text::Value(static_cast<std::int64_t>(number));
}

Text ValueOf(std::string_view codePage) {
    return Text::Value(codePage);
}

Text WhatItIs(const HandheldOverview::Entry& entry) {
    using Kind = HandheldOverview::Entry::Kind;
    if (entry.What == Kind::Program) return msg::StandInProgram;
    const TableEntry* const table = entry.What == Kind::Table ? FindTable(entry.Name) : nullptr;
    return table ? Text(MessageId{table->FirstLabel}) : Text(msg::StandInData);
}

/// Works on the orders, and writes them back under the event's name.
template <typename Deed>
bool ChangeOrders(std::string_view event, Deed&& deed) {
    return DoOnHandheld([&] {
        const auto lock = LockFolder(Global.StandInFolder);
        Handheld handheld(Global.StandInFolder);
        OrderBook book(handheld);
        const DateTime at = handheld.Clock();
        deed(book, at);
        book.Save(event, at);
    });
}

} // namespace

frmStandIn::frmStandIn() {
    setupUi(this);
    setWindowFlags(Qt::Window);
}

void frmStandIn::Form_Load() {
    TraceEvent("frmStandIn:Form_Load");
    setWindowIcon(Picture("handheld"));
    cmdHotSync->setIcon(Picture("Hotsync16-256"));
    rtbLog->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    FG2->SetEmptyText(msg::StandInEmpty);
    txtHost->setText(
        QString::fromStdString(Global.StandInDesktop.empty() ? "127.0.0.1" : Global.StandInDesktop));
    ShowHandheld();
    SelectOrder(overview_.Orders.empty() ? std::string() : overview_.Orders.back().Code);
}

// ---- what it shows ----

void frmStandIn::ShowHandheld() {
    const HandheldOverview::Order* const selected = SelectedOrder();
    const std::string code = selected ? selected->Code : std::string();
    try {
        const auto lock = LockFolder(Global.StandInFolder);
        const Handheld handheld(Global.StandInFolder);
        overview_ = LookAt(handheld);
        rtbLog->setPlainText(QString::fromStdString(handheld.Log()));
        isThere_ = true;
        ShowOverview();
    } catch (const std::runtime_error& failure) {
        overview_ = {};
        isThere_ = false;
        lblWho->setText(ToQt(Lines(msg::StandInReadOnly, Text::Path(std::string_view(failure.what())))));
        lblSyncMsg->clear();
    }
    ShowOrders();
    ShowDatabases();
    SelectOrder(code);
}

void frmStandIn::ShowOverview() {
    const Text user = overview_.User.empty() ? Text(msg::StandInNoUser) : ValueOf(overview_.User);
    lblWho->setText(
        ToQt(Lines(Words(msg::HSUser, user), Words(msg::StandInMachine, ValueOf(overview_.Machine)))));
    setWindowTitle(ToQt(overview_.User.empty() ? Text(msg::frmStandIn) : Words(msg::frmStandIn, user)));
    lblSyncMsg->setPalette(palette());
    const Text when =
        overview_.LastSync.IsZero() ? Text(msg::HSNever) : ValueOf(DateAndTime(overview_.LastSync));
    lblSyncMsg->setText(ToQt(msg::HSLastSync) + QStringLiteral(": ") + ToQt(when));
}

void frmStandIn::ShowOrders() {
    std::vector<std::vector<Text>> rows;
    rows.reserve(overview_.Orders.size());
    for (const HandheldOverview::Order& order : overview_.Orders)
        rows.push_back({ValueOf(order.Code), ValueOf(order.Customer), ValueOf(order.Taken),
                        ValueOf(order.Lines), ValueOf(order.Total),
                        order.IsSigned ? Text(msg::Yes) : Text()});
    std::vector<GridHeading> headings{{GetFriendlyFieldName(*FindTable("ZUKORHDR"), "H_ORDCODE")},
                                      {msg::frCust},
                                      {msg::StandInTaken, SortKind::Date},
                                      {msg::ReceiptLines, SortKind::Number},
                                      {msg::StandInTotal, SortKind::Number},
                                      {msg::StandInSigned}};
    FG1->SetEmptyText(overview_.Databases.empty() ? msg::StandInEmpty : msg::StandInNoOrders);
    FG1->SetContent(std::make_unique<ListGrid>(std::move(headings), std::move(rows)),
                    QStringLiteral("frmStandIn"));
}

void frmStandIn::ShowDatabases() {
    std::vector<std::vector<Text>> rows;
    rows.reserve(overview_.Databases.size());
    for (const HandheldOverview::Entry& entry : overview_.Databases)
        rows.push_back({ValueOf(entry.Name), WhatItIs(entry), Number(entry.Records)});
    std::vector<GridHeading> headings{
        {msg::HSName}, {msg::StandInWhatItIs}, {msg::StandInRecords, SortKind::Number}};
    FG2->SetContent(std::make_unique<ListGrid>(std::move(headings), std::move(rows)),
                    QStringLiteral("frmStandIn2"));
}

void frmStandIn::EnableButtons() {
    const bool idle = isThere_ && !line_;
    cmdTake->setEnabled(idle);
    cmdSign->setEnabled(idle && SelectedOrder());
    cmdDelete->setEnabled(idle && SelectedOrder());
    cmdHotSync->setEnabled(idle);
    txtHost->setEnabled(idle);
}

/// nullptr when no row is selected.
const HandheldOverview::Order* frmStandIn::SelectedOrder() const {
    const auto record = static_cast<std::size_t>(FG1->SelectedRecord());
    return record == 0 || record > overview_.Orders.size() ? nullptr : &overview_.Orders[record - 1];
}

void frmStandIn::SelectOrder(const std::string& code) {
    const auto& orders = overview_.Orders;
    const auto found =
        std::find_if(orders.begin(), orders.end(), [&](const auto& order) { return order.Code == code; });
    if (found != orders.end()) FG1->SelectRecord(static_cast<std::int32_t>(found - orders.begin()) + 1);
    EnableButtons();
}

void frmStandIn::FG1_SelChange() {
    EnableButtons();
}

// ---- orders ----

void frmStandIn::cmdTake_Click() {
    TraceEvent("frmStandIn:cmdTake_Click");
    auto& form = The<frmStandInOrder>();
    std::string taken;
    form.Taken = [&taken](const std::string& code) { taken = code; };
    if (form.Begin())
        form.Show(ShowMode::Modal);
    else
        form.Unload();
    if (IsOver()) return;
    ShowHandheld();
    SelectOrder(taken);
}

void frmStandIn::cmdSign_Click() {
    TraceEvent("frmStandIn:cmdSign_Click");
    const HandheldOverview::Order* const order = SelectedOrder();
    if (!order) return;
    const std::string code = order->Code;
    const auto name = Global.TheOperator->InputBox(msg::StandInAskSign, order->Customer);
    if (!name || IsOver()) return;
    ChangeOrders("SIGN", [&](OrderBook& book, const DateTime&) { book.Sign(code, *name); });
    if (!IsOver()) ShowHandheld();
}

void frmStandIn::cmdDelete_Click() {
    TraceEvent("frmStandIn:cmdDelete_Click");
    const HandheldOverview::Order* const order = SelectedOrder();
    if (!order) return;
    const std::string code = order->Code;
    if (!AskYesNo(Lines(ValueOf(code), msg::StandInAskDelete)) || IsOver()) return;
    ChangeOrders("DELETE", [&](OrderBook& book, const DateTime& at) { book.Delete(code, at); });
    if (!IsOver()) ShowHandheld();
}

// ---- HotSync ----

void frmStandIn::cmdHotSync_Click() {
    TraceEvent("frmStandIn:cmdHotSync_Click");
    HotSyncJob job;
    try {
        TakePlace(txtHost->text().trimmed().toStdString(), job);
    } catch (const Misuse&) {
        return Tell(msg::StandInHostWrong, Icon::Warning);
    }
    std::ostringstream told;
    std::string why;
    try {
        const auto lock = LockFolder(Global.StandInFolder);
        Handheld handheld(Global.StandInFolder);
        WriteDownOrders(handheld, told);
        HotSyncLine line(handheld, job);
        line_ = &line;
        EnableButtons();
        lblSyncMsg->setPalette(palette());
        lblSyncMsg->setText(ToQt(msg::StandInRunning));
        line.Start();
        WaitWhile([&] { return !line.IsOver(); });
        line_ = nullptr;
        if (IsOver()) return;
        line.Tell(told);
    } catch (const std::runtime_error& failure) {
        line_ = nullptr;
        why = failure.what();
    }
    if (IsOver()) return;
    ShowHandheld();
    if (!told.str().empty()) rtbLog->appendPlainText(QString::fromStdString(told.str()).trimmed());
    ShowOutcome(why);
}

/// `why` tells in UTF-8 what went wrong; empty when all went well.
void frmStandIn::ShowOutcome(const std::string& why) {
    if (!isThere_) return;
    if (why.empty()) {
        const bool isBare = overview_.Databases.empty(); // nothing was waiting for it
        return lblSyncMsg->setText(
            ToQt(isBare ? Lines(msg::StandInDone, msg::StandInEmpty) : msg::StandInDone));
    }
    QPalette tones = palette();
    tones.setColor(QPalette::WindowText, WarningTone());
    lblSyncMsg->setPalette(tones);
    constexpr std::string_view prefix = "HotSync: ";
    const std::string_view words = std::string_view(why).substr(why.starts_with(prefix) ? prefix.size() : 0);
    lblSyncMsg->setText(ToQt(Lines(Words(msg::StandInFailed, Text::Path(words)), msg::StandInCheckManager)));
}

void frmStandIn::cmdCancel_Click() {
    TraceEvent("frmStandIn:cmdCancel_Click");
    if (line_ && !AskYesNo(msg::StandInAskBreak, Icon::Warning)) return;
    if (IsOver()) return;
    if (line_) line_->Break(); // it may have ended behind the question
    Unload();
}

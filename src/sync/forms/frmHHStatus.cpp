#include "sync/forms/frmHHStatus.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Numbers.h"
#include "platform/Convert.h"
#include "sync/Receipt.h"

#include <QFontDatabase>
#include <QHeaderView>

#include <algorithm>

namespace {

std::vector<Text> Row(MessageId name, const OrderFigures& figures) {
    return {name, Text::Value(std::string_view(NumberToText(figures.Orders))),
            Text::Value(std::string_view(NumberToText(figures.Lines))),
            Text::Value(std::string_view(Money(figures.Dollars)))};
}

} // namespace

void frmHHStatus::Form_Load() {
    TraceEvent("frmHHStatus:Form_Load");
    FG1->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    txtReceipt->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    txtReceipt->setPlaceholderText(ToQt(Text(msg::NoReceipt)));
    cmdOK->setFocus();
}

void frmHHStatus::Fill(std::string_view id, const StatusDetails& details) {
    lblID->setText(ToQt(Text(msg::HotsyncID)) + QStringLiteral(": ") + ToQt(id));
    const OrderFigures difference{details.Handheld.Orders - details.PC.Orders,
                                  details.Handheld.Lines - details.PC.Lines,
                                  details.Handheld.Dollars - details.PC.Dollars};
    std::vector<GridHeading> headings{{{}, SortKind::Text},
                                      {msg::StatusOrders, SortKind::Number},
                                      {msg::StatusLines, SortKind::Number},
                                      {msg::StatusDollars, SortKind::Number}};
    FG1->SetContent(std::make_unique<ListGrid>(
        std::move(headings), std::vector<std::vector<Text>>{Row(msg::StatusHandheld, details.Handheld),
                                                            Row(msg::StatusPC, details.PC),
                                                            Row(msg::StatusDifference, difference)}));
    int widest = 0;
    QHeaderView& header = *FG1->horizontalHeader();
    for (int column = 0; column < header.count(); ++column)
        widest = std::max(widest, header.sectionSizeHint(column));
    header.setMinimumSectionSize(widest); // no heading is cut when they share the width
    FG1->setFixedHeight(HeightOfRows());
    txtReceipt->setPlainText(QString::fromStdString(LastReceipt(id).value_or(std::string())));
}

/// Of the heading and the three rows: the rest of the box is the receipt's.
int frmHHStatus::HeightOfRows() const {
    return FG1->horizontalHeader()->sizeHint().height() + FG1->verticalHeader()->length() +
           2 * FG1->frameWidth();
}

void frmHHStatus::cmdOK_Click() {
    TraceEvent("frmHHStatus:cmdOK_Click");
    Unload();
}

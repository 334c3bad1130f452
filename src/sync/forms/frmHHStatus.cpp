#include "sync/forms/frmHHStatus.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Numbers.h"
#include "platform/Convert.h"
#include "platform/GridModel.h"

#include <QHeaderView>

namespace {

QStringList Row(MessageId name, const OrderFigures& figures) {
    return {ToQt(Text(name)), ToQt(std::string_view(NumberToText(figures.Orders))),
            ToQt(std::string_view(NumberToText(figures.Lines))),
            ToQt(std::string_view(Money(figures.Dollars)))};
}

} // namespace

void frmHHStatus::Form_Load() {
    TraceEvent("frmHHStatus:Form_Load");
    FG1->verticalHeader()->hide();
    FG1->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    FG1->verticalHeader()->setDefaultSectionSize(FG1->fontMetrics().height() + 8);
}

void frmHHStatus::Fill(std::string_view id, const StatusDetails& details) {
    lblID->setText(ToQt(Text(msg::HotsyncID)) + QStringLiteral(": ") + ToQt(id));
    auto* grid = new GridModel(this);
    grid->SetHeadings({QString(), ToQt(Text(msg::StatusOrders)), ToQt(Text(msg::StatusLines)),
                       ToQt(Text(msg::StatusDollars))},
                      {Qt::AlignLeft, Qt::AlignRight, Qt::AlignRight, Qt::AlignRight});
    const OrderFigures difference{details.Handheld.Orders - details.PC.Orders,
                                  details.Handheld.Lines - details.PC.Lines,
                                  details.Handheld.Dollars - details.PC.Dollars};
    grid->SetRows({Row(msg::StatusHandheld, details.Handheld), Row(msg::StatusPC, details.PC),
                   Row(msg::StatusDifference, difference)});
    FG1->setModel(grid);
}

void frmHHStatus::cmdOK_Click() {
    TraceEvent("frmHHStatus:cmdOK_Click");
    Unload();
}

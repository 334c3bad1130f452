#include "views/forms/frmPrinter.h"

#include "core/Messages.h"
#include "core/Operator.h"

std::vector<QWidget*> frmPrinter::Controls() const {
    return {txtLineMax,  cboPrinter, cboContForm, cboLineFeed,   cboBaudRate,
            cboStdLine2, cboLogo,    cboStdStyle, txtCompresChr, txtResetChr};
}

void frmPrinter::DisplayData() {
    SetupForm::DisplayData();
    EnableByPrinter();
    EnableByContForm();
    Global.LinesPerPage = PageLength(Held(PrinterField::LineMax));
}

void frmPrinter::cboPrinter_Click() {
    Trace("cboPrinter_Click");
    EnableByPrinter();
}

void frmPrinter::cboContForm_Click() {
    Trace("cboContForm_Click");
    EnableByContForm();
}

void frmPrinter::EnableByPrinter() {
    const DriverOptions options = OptionsOf(Held(PrinterField::Printer));
    cboBaudRate->setEnabled(options.BaudRate);
    cboLogo->setEnabled(options.Logo);
    for (QWidget* control : {static_cast<QWidget*>(lblCompresChr), static_cast<QWidget*>(txtCompresChr),
                             static_cast<QWidget*>(lblResetChr), static_cast<QWidget*>(txtResetChr)})
        control->setEnabled(options.FormatCodes);
}

void frmPrinter::EnableByContForm() {
    const bool pages = HasPages(Held(PrinterField::ContForm));
    for (QWidget* control : {static_cast<QWidget*>(txtLineMax), static_cast<QWidget*>(lblLineFeed),
                             static_cast<QWidget*>(cboLineFeed)})
        control->setEnabled(pages);
}

bool frmPrinter::Save() {
    const DatecsRules rules = RulesOf(SetupForm::Held());
    if (rules.ChangeFormat) {
        Put(PrinterField::StdStyle, ContinuousForm);
        Tell(msg::DatecsFormatChanged, Icon::Information);
    }
    if (rules.AskForForm && AskYesNo(msg::DatecsContForm)) {
        Put(PrinterField::ContForm, YesEntry);
        EnableByContForm();
    }
    if (IsOver() || !UpdateData()) return false;
    Global.LinesPerPage = PageLength(Held(PrinterField::LineMax));
    return true;
}

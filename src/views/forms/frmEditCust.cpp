#include "views/forms/frmEditCust.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "platform/Convert.h"
#include "store/TableScan.h"

frmEditCust::frmEditCust() : MasterEditor(CustomerMaster) {
    setupUi(this);
    Bind({{txtField_1, msg::HelpC_Search},
          {txtField_2, msg::HelpC_Code},
          {txtField_3, msg::HelpC_Phone},
          {txtField_4, msg::HelpC_Name},
          {txtField_5, msg::HelpC_Zip},
          {txtField_6, msg::HelpC_Address1},
          {txtField_7, msg::HelpC_Address2},
          {txtField_8, msg::HelpC_City},
          {txtField_9, msg::HelpC_State},
          {txtField_10, msg::HelpC_Contact},
          {txtField_11, msg::HelpC_PayTerms},
          {txtField_12, msg::HelpC_ShipVia},
          {cboC_STCode, msg::HelpC_STCode}},
         msg::HelpLookupCust);
}

void frmEditCust::Form_Load() {
    cboC_STCode->addItem(QString()); // for a customer who pays no tax
    try {
        TableScan taxes(Global.DBFPath + "ZUKSTAX.DBF");
        const int code = taxes.Layout().Find(FieldKey("ST_CODE"));
        while (taxes.Next()) {
            if (!taxes.Trimmed(code).empty()) cboC_STCode->addItem(ToQt(taxes.Trimmed(code)));
        }
    } catch (const RunTimeFailure& failure) {
        // Without the list no code could be shown, and the next save would empty it.
        cboC_STCode->setEnabled(false);
        Tell(Lines(msg::ListUnreadable, Text::Path(std::string_view(failure.what()))), Icon::Warning);
    }
    MasterEditor::Form_Load();
}

Text frmEditCust::OwnWarning(const MasterTable& table) const {
    if (!cboC_STCode->isEnabled() || cboC_STCode->currentIndex() >= 0) return {};
    const std::string kept = table.Trimmed(cboC_STCode->property("Tag").toInt());
    return Words(msg::TaxCodeNotInList, Text::Value(std::string_view(kept)));
}

void frmEditCust::cboC_STCode_Click() {
    ShowWarning();
}

#include "views/forms/frmEditSTax.h"

#include "core/Messages.h"

frmEditSTax::frmEditSTax() : MasterEditor(SalesTaxMaster) {
    setupUi(this);
    Bind({{txtField_1, msg::HelpST_Code}, {txtField_3, msg::HelpST_Desc}, {txtField_4, msg::HelpST_Rate}},
         msg::HelpLookupSTax);
}

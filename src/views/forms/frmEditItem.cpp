#include "views/forms/frmEditItem.h"

#include "core/Messages.h"

frmEditItem::frmEditItem() : MasterEditor(ItemMaster) {
    setupUi(this);
    Bind({{txtField_1, msg::HelpI_Search},
          {txtField_2, msg::HelpI_ItemCode},
          {txtField_3, msg::HelpI_Barcode},
          {txtField_4, msg::HelpI_Desc1},
          {txtField_5, msg::HelpI_UM},
          {txtField_6, msg::HelpI_Price}},
         msg::HelpLookupItem);
}

#pragma once

#include "exchange/ExportColumns.h"
#include "exchange/OrderCheck.h"
#include "exchange/forms/SavedMappings.h"
#include "platform/Form.h"
#include "ui_frmExport1.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Lays out the columns of an export of the orders, keeps that as a template, and exports by it. With
/// `Global.TemplateEditMode` it is opened to keep templates, and asks before it exports. Opened by the
/// report of the Quality Check for a template that names no file, it saves that and exports nothing.
class frmExport1 final : public Form, private Ui::frmExport1 {
    Q_OBJECT

public:
    frmExport1();

private slots:
    void cboSettings_Click();
    void cboSettings_Change();
    void txtExpFile_Change();
    void optCSVQ_Click();
    void optCSV_Click();
    void optTAB_Click();
    void chkHeader_Click();
    void chkBlankLine_Click();
    void lstAvailable_Click();
    void lstAvailable_DblClick();
    void lstSelected_Click();
    void lstSelected_DblClick();
    void cmdAdd1_Click();
    void cmdLiteral_Click();
    void cmdCalc_Click();
    void cmdPlus_Click();
    void cmdMinus_Click();
    void cmdMultiply_Click();
    void cmdDivide_Click();
    void cmdVal_Click();
    void cmdRemove1_Click();
    void cmdRemoveAll_Click();
    void cmdOK_Click();
    void cmdCancel_Click();

protected:
    void Form_Load() override;
    void Form_Unload() override;

private:
    void ChooseTemplate(const std::string& file);
    bool CanSave();
    void Write(const std::string& path) const;

    ::Delimiter Delimiter() const;
    ExportJob Job() const;
    std::optional<std::size_t> SelectedRow() const;
    void ShowCalc(bool shown);
    void Operate(std::string_view operation);
    void ShowColumns(std::optional<std::size_t> row);
    void ShowPreview();
    void CheckOK();
    bool Export();
    void OfferBackup();

    SavedMappings* templates_;
    std::string repair_; ///< the file name of the template that the report has named
    PCOrders book_;
    std::vector<std::string> available_; ///< the fields of the headers, then those of the lines
    ExportColumns columns_;
};

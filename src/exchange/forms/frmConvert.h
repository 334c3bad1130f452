#pragma once

#include "exchange/ImportTemplate.h"
#include "platform/Form.h"
#include "ui_frmConvert.h"

#include <string>

/// Asks which data file is to be imported, and into which table; or, opened by the report of the Quality
/// Check for a template whose data file is gone, which file it is to name from now on.
class frmConvert final : public Form, private Ui::frmConvert {
    Q_OBJECT

public:
    frmConvert();

    /// Full path of the file that is selected; empty for none.
    std::string ImportFile() const;

    TemplateKind Kind() const;

    /// Proposes the table.
    void TurnTo(TemplateKind kind);

    /// Esc. It deletes no template: that takes the button that says so.
    void reject() override;

private slots:
    void filFiles_Click();
    void filFiles_DblClick();
    void optCustomer_Click();
    void optItem_Click();
    void cmdOK_Click();
    void cmdCancel_Click();

protected:
    void Form_Load() override;
    void Form_Unload() override;

private:
    void ShowRepair();
    void DeleteTemplate() const;
    void CheckOK();

    std::string repair_; ///< the file name of that template; empty for an import
};

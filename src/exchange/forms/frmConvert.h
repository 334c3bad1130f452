#pragma once

#include "exchange/ImportTemplate.h"
#include "platform/Form.h"
#include "ui_frmConvert.h"

#include <string>

/// Asks which data file is to be imported, and into which table.
class frmConvert final : public Form, private Ui::frmConvert {
    Q_OBJECT

public:
    frmConvert();

    /// Full path of the file that is selected; empty for none.
    std::string ImportFile() const;

    TemplateKind Kind() const;

private slots:
    void filFiles_Click();
    void filFiles_DblClick();
    void optCustomer_Click();
    void optItem_Click();
    void cmdOK_Click();
    void cmdCancel_Click();

protected:
    void Form_Load() override;

private:
    void CheckOK();
};

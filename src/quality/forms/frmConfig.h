#pragma once

#include "core/Globals.h"
#include "platform/Form.h"
#include "quality/Checks.h"
#include "ui_frmConfig.h"

#include <functional>

/// The map of everything that has to be set up: a line a process, with the button that opens the
/// place where it is set up, the button that checks it, and how the last check ended. Loaded with
/// `Global.QCAutoRun` it checks everything at once, without being shown.
class frmConfig final : public Form, private Ui::frmConfig {
    Q_OBJECT

public:
    frmConfig() { setupUi(this); }

    /// What `cmdCheckAll` does.
    void CheckAll();

    /// Writes beside each line when it was last checked, and with what result.
    void ShowResults();

private slots:
    void cmdLinks1_Click();
    void cmdCust1_Click();
    void cmdItems1_Click();
    void cmdBarcode1_Click();
    void lblSTax_Click();
    void lblPrinter_Click();
    void cmdSTax1_Click();
    void cmdPay1_Click();
    void cmdPrinter1_Click();
    void cmdDownload1_Click();
    void cmdUpload1_Click();
    void cmdImport1_Click();
    void cmdExport1_Click();
    void cmdQB1_Click();
    void cmdUA1_Click();
    void cmdBackup1_Click();
    void cmdLinks2_Click();
    void cmdCust2_Click();
    void cmdItems2_Click();
    void cmdBarcode2_Click();
    void cmdSTax2_Click();
    void cmdPay2_Click();
    void cmdPrinter2_Click();
    void cmdDownload2_Click();
    void cmdUpload2_Click();
    void cmdImport2_Click();
    void cmdExport2_Click();
    void cmdQB2_Click();
    void cmdUA2_Click();
    void cmdBackup2_Click();
    void cmdCheckAll_Click();
    void cmdCancel_Click();

protected:
    void Form_Load() override;
    void Form_GotFocus() override;

private:
    void NameButtons();
    void ReserveResults();
    QLabel* ResultLabel(std::size_t check) const;
    void Configure(const char* handler, const std::function<void()>& open);
    void CheckOne(const char* handler, Check check);
};

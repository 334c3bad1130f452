#pragma once

#include "platform/Form.h"
#include "ui_frmPreview.h"
#include "views/Report.h"

#include <memory>

/// The pages of a report before they are printed, and the way to the printer.
class frmPreview final : public Form, private Ui::frmPreview {
    Q_OBJECT

public:
    frmPreview();

    void ShowReport(std::unique_ptr<Report> report);

private slots:
    void cmdFirst_Click();
    void cmdPrevious_Click();
    void cmdNext_Click();
    void cmdLast_Click();
    void cmdZoomIn_Click();
    void cmdZoomOut_Click();
    void cmdFitWidth_Click();
    void cmdWholePage_Click();
    void cmdPrint_Click();
    void cmdOK_Click();
    void TimerLook_Timer();

protected:
    void Form_Load() override;

private:
    void DividePages();
    void ShowPlace();

    std::unique_ptr<Report> report_;
    bool isBusy_ = false;
};

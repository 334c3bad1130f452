#pragma once

#include "platform/Form.h"
#include "ui_frmPrinting.h"
#include "views/Report.h"

#include <optional>

class RunTimeFailure;

/// A long report on its way to the printer: how far it is, and a way to stop it. It goes when the last page
/// has been printed.
class frmPrinting final : public Form, private Ui::frmPrinting {
    Q_OBJECT

public:
    frmPrinting();

    /// Prints what is left of a report, and returns when it is over or has been stopped. Failures as
    /// ReportRun::Step.
    void Finish(ReportRun& run);

private slots:
    void TimerPages_Timer();
    void cmdCancel_Click();

protected:
    void Form_Unload() override;

private:
    void ShowPlace();

    ReportRun* run_ = nullptr;                         ///< while it is under way
    std::optional<RunTimeFailure>* failure_ = nullptr; ///< where it is told
};

#pragma once

#include "platform/Form.h"
#include "ui_frmHSExit.h"

#include <functional>

/// Asks whether the HotSync Manager may end: its own operator, or another program, has asked for it.
class frmHSExit final : public Form, private Ui::frmHSExit {
    Q_OBJECT

public:
    frmHSExit();

    /// What happens on Ok.
    std::function<void()> Agreed;

private slots:
    void cmdOK_Click();
    void cmdCancel_Click();

protected:
    void Form_Load() override;
};

/// Brings the question up, and calls `agreed` when the answer is Ok. One that stands already comes to the
/// front. Does not wait.
void AskToExit(std::function<void()> agreed);

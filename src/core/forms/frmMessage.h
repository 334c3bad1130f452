#pragma once

#include "core/Operator.h"
#include "platform/Form.h"
#include "ui_frmMessage.h"

/// The shared question: the caller fills it, shows it modally and reads Global.MessageAnswer.
class frmMessage final : public Form, private Ui::frmMessage {
    Q_OBJECT

public:
    frmMessage() { setupUi(this); }

    void Fill(const Question& question);
    std::string HelpTopic() const override;

private slots:
    void cmdYes_Click();
    void cmdNo_Click();

protected:
    void Form_Load() override;
    void reject() override;

private:
    bool okOnNo_ = false; ///< the caption of `cmdNo` is "Ok"
};

#pragma once

#include "platform/Form.h"
#include "sync/UnattendedSettings.h"
#include "tools/forms/NamedFiles.h"

#include <string_view>

namespace Ui {
class frmOptions;
}

/// The page of frmOptions with what unattended mode does, and the files in which that is kept.
class UnattendedPage final : public FormPart {
    Q_OBJECT

public:
    /// The controls are made; the page belongs to the form.
    UnattendedPage(Form& form, const Ui::frmOptions& controls);

    /// Lists files and templates, and shows what is in force.
    void Fill();

    /// Turns to the files of an extension and chooses one of them, or to the selections of tables. Nothing
    /// for another extension.
    void TurnTo(std::string_view extension, const QString& name);

    // False when it cannot be done: the operator has been told.
    bool SelectionsAreThere() const;
    bool NamesCanBeSaved() const;
    bool Save();

    /// Puts what is chosen in force, saved or not.
    void PutInForce() const;

private slots:
    void cboRemoteSettings_Click();
    void cmdDelete_Click();
    void cmdSUDownload_Click();
    void cmdSUUpload_Click();
    void cmdSUClear_Click();

private:
    void PopDownload();
    void PopUpload();
    void PopClear();
    UnattendedSettings Chosen() const;
    void Show(const UnattendedSettings& settings);

    const Ui::frmOptions& controls_;
    NamedFiles files_;
};

#pragma once

#include "core/Globals.h"
#include "platform/Form.h"
#include "views/SetupTables.h"

#include <cstddef>
#include <string>
#include <vector>

class QComboBox;
class QLabel;
class QLineEdit;

/// The editor of a table that is sent to the handheld as its settings. `cmdOK` saves and closes, `cmdCancel`
/// closes, and `cmdView` leads to the table, asking what becomes of a change.
class SetupForm : public Form {
    Q_OBJECT

private slots:
    void cmdView_Click();
    void cmdOK_Click();
    void cmdCancel_Click();

protected:
    /// Opens at record 1 unless the form says otherwise.
    SetupForm(ViewFlag view, const SetupTable& table) : view_(view), table_(table) {}

    void Form_Load() override;
    void Form_Unload() override;

    /// One control a field: a line, or a list that the form fills with the field's entries. nullptr for a
    /// field that the form shows and holds itself.
    virtual std::vector<QWidget*> Controls() const = 0;
    virtual std::int32_t FirstShown() const { return 1; }
    virtual void Put(std::size_t field, const std::string& text);
    virtual std::string Held(std::size_t field) const;

    /// Fills the screen from the current record.
    virtual void DisplayData();

    /// What `cmdOK` does before it closes. False when the screen has to stay: the operator has been told why.
    virtual bool Save() { return UpdateData(); }

    /// Writes the screen to the current record. False when that failed: the operator has been told.
    virtual bool UpdateData();

    SetupTexts Held() const;
    bool Differs() const { return Held() != TextsOf(table_, records_); }

    TableRecords records_;

private:
    void Fill(QComboBox& list, const SetupField& field) const;
    void SetUp(QLineEdit& line, const SetupField& field);
    void ShowWarning();

    ViewFlag view_;
    const SetupTable& table_;
    std::vector<QWidget*> controls_;
    QLabel* lblWarning_ = nullptr;
};

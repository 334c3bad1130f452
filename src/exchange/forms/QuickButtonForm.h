#pragma once

#include "core/Text.h"
#include "platform/Form.h"
#include "ui_QuickButtonForm.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

/// What the QuickButton screens share: the droplist of activities, the report of two rows, and the
/// run that goes on from a failed row to the next.
class QuickButtonForm : public Form, protected Ui::QuickButtonForm {
    Q_OBJECT

private slots:
    void cboMaster_Click();
    void cmdOK_Click();
    void cmdCancel_Click();
    void cmdSetup_Click();

protected:
    /// What one row's run came to.
    struct RowResult {
        bool Worked = false;
        std::optional<Text> Report; ///< takes the place of the row's value
        Text Note = {};             ///< what more there is to know; shown as the row's tool tip
        bool Attention = false;     ///< worked, but somebody should look at it: the note says why
    };

    /// `extension`: that of the screen's activities, as ".ipm".
    explicit QuickButtonForm(std::string_view extension) : extension_(extension) {}

    /// Lays the screen out under its caption. In the constructor of the screen.
    void SetUp(MessageId caption);

    void Form_Load() override;

    /// The headings of the report while an activity runs.
    virtual void ShowHeadings() = 0;

    /// Runs the template that a row names, and tells the operator of what stops it.
    virtual RowResult RunRow(std::size_t row, const std::string& templateName) = 0;

    /// After the last row; `anyWorked` when at least one row did.
    virtual void FinishRun(bool anyWorked) = 0;

    /// A template that a row names cannot be opened: tells so.
    static RowResult TellCannotOpen(const Text& templateName);

    std::array<QLabel*, 2> imgSuccess{}, lblSS{}, lblSST{}; ///< of the report's rows

private:
    void PopMaster();
    void ShowActivity();
    void EmptyRows();
    void MarkRow(std::size_t row, const RowResult& result);

    std::string extension_;
    std::array<std::string, 2> templates_; ///< of the activity shown; empty for "None"
};

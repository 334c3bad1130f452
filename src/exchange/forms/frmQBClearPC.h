#pragma once

#include "exchange/forms/QuickButtonForm.h"

/// Runs a clear activity: up to two saved selections of tables of the PC, one after the other.
class frmQBClearPC final : public QuickButtonForm {
    Q_OBJECT

public:
    frmQBClearPC();

protected:
    void ShowHeadings() override;
    RowResult RunRow(std::size_t row, const std::string& templateName) override;
    void FinishRun(bool anyWorked) override;
};

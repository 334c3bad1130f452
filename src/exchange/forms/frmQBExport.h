#pragma once

#include "exchange/forms/QuickButtonForm.h"

/// Runs an export activity: up to two saved export templates, one after the other.
class frmQBExport final : public QuickButtonForm {
    Q_OBJECT

public:
    frmQBExport();

protected:
    void ShowHeadings() override;
    RowResult RunRow(std::size_t row, const std::string& templateName) override;
    void FinishRun(bool anyWorked) override;

private:
    void ShowWritten(const std::string& file);
    void OfferDeletion();
};

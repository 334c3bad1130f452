#pragma once

#include "exchange/forms/QuickButtonForm.h"

class Progress;
struct ImportJob;

/// Runs an import activity: up to two saved import templates, one after the other.
class frmQBImport final : public QuickButtonForm {
    Q_OBJECT

public:
    frmQBImport();

protected:
    void ShowHeadings() override;
    RowResult RunRow(std::size_t row, const std::string& templateName) override;
    void FinishRun(bool anyWorked) override;

private:
    static RowResult Import(ImportJob& job, const std::string& templateName, Progress& progress);
};

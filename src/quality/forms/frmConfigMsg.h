#pragma once

#include "platform/Form.h"
#include "quality/FlexGridPrint.h"
#include "quality/Problems.h"
#include "ui_frmConfigMsg.h"

#include <memory>
#include <string>

class ReportGrid;

/// The report of the Quality Check: what is wrong, and the way to the faulty records or templates.
class frmConfigMsg final : public Form, private Ui::frmConfigMsg {
    Q_OBJECT

public:
    frmConfigMsg();

    /// Shows what a run has found, in the place of an earlier report.
    void ShowProblems(ProblemList problems);

    const ProblemList& Problems() const { return problems_; }

private slots:
    void FG1_SelChange();
    void FG1_RequestEdit();
    void FG1_ColumnClick(int column);
    void TimerLook_Timer();
    void cmdView_Click();
    void cmdPrint_Click();
    void cmdPreview_Click();
    void cmdSave_Click();
    void cmdOK_Click();

protected:
    void Form_Load() override;
    void Form_GotFocus() override;
    void Form_Unload() override;

private:
    const ProblemRow* SelectedRow() const;
    void ViewTemplates(const ProblemRow& row);
    PrintGrid UpdateFlexGrid() const;
    std::unique_ptr<Report> NewReport() const;

    ProblemList problems_;
    ReportGrid* grid_ = nullptr; ///< what FG1 shows
};

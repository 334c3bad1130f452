#pragma once

#include "core/Globals.h"
#include "platform/Form.h"
#include "ui_frmViewGrid.h"
#include "views/TableViews.h"
#include "views/forms/BackupList.h"

#include <cstdint>
#include <memory>
#include <string>

class Report;
struct BoxForm;
class QTimer;

/// Opens the grid of a table: the one way into the browser. Clears the flags, sets the table's own,
/// and takes the place of a grid or a record viewer that is open. A record may be selected at once.
void ShowTable(ViewFlag flag, ShowMode mode = ShowMode::Modeless, std::int32_t record = 0);

/// The same for who comes to change the table: Enter opens its editor.
void EditTable(ViewFlag flag);

/// The same for a row of the Quality Check's report: marks the cells that `ReportedCells` tells of.
void ShowReported(ViewFlag flag);

/// A table as a grid: the one whose flag is set. With ViewRestore it is the list of backups, from which
/// tables are looked at, in the same grid, and had back.
class frmViewGrid final : public Form, private Ui::frmViewGrid {
    Q_OBJECT

public:
    frmViewGrid();

    void MakeEditDefault();

    /// That of the table.
    std::string HelpTopic() const override;

private slots:
    void cmdDataView_Click();
    void cmdEdit_Click();
    void cmdPrint_Click();
    void cmdPreview_Click();
    void cmdOK_Click();
    void FG1_Click();
    void FG1_DblClick();
    void FG1_ColumnClick(int column);
    void FG1_SelChange();
    void Timer1_Timer();

protected:
    void Form_Load() override;
    void Form_GotFocus() override;
    void Form_Unload() override;

private:
    void Display(const TableView& view);
    void DisplayData(const std::string& path);
    void DisplayCustData(const std::string& path);
    void DisplayItemData(const std::string& path);
    void DisplaySTaxData(const std::string& path);
    void DisplayTotalsData();
    void DisplayRestoreData();
    void ReloadBUData(ViewFlag flag, const std::string& folder);
    void ShowView();
    void Caption(QPushButton& button, MessageId text);
    void Preview();
    void Restore();
    bool RecordRestore();
    void BackToList();
    void ShowBackups(const std::string& folder);
    void DisplayPrint();
    void Fill(const std::string& path, ColumnsOf columnsOf);
    void EnablePrinting();

    // The reports, of the rows as they are shown.
    std::unique_ptr<Report> PrintData();
    std::unique_ptr<Report> PrintDataOrHdrAudt();
    std::unique_ptr<Report> PrintDataOrLinAudt();
    std::unique_ptr<Report> PrintDataAudtHH();
    std::unique_ptr<Report> ReportOf(const BoxForm& form);
    /// That of the table which is shown; nothing for a table that is not printed, and where the operator has
    /// been told that it cannot be read.
    std::unique_ptr<Report> ChosenReport();

    std::string path_; ///< of the table that is shown
    ColumnsOf columnsOf_;
    QTimer* Timer1;
    std::unique_ptr<BackupList> backups_;
};

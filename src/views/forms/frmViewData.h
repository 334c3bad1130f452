#pragma once

#include "platform/Form.h"
#include "store/TableReader.h"
#include "ui_frmViewData.h"
#include "views/TableViews.h"

#include <cstdint>
#include <memory>
#include <string>

/// A table record by record: the one whose flag is set.
class frmViewData final : public Form, private Ui::frmViewData {
    Q_OBJECT

public:
    frmViewData() { setupUi(this); }

    /// That of the table.
    std::string HelpTopic() const override;

private slots:
    void cmdFirst_Click();
    void cmdPrevious_Click();
    void cmdNext_Click();
    void cmdLast_Click();
    void cmdGridView_Click();
    void cmdEdit_Click();
    void cmdOK_Click();

protected:
    void Form_Load() override;
    void Form_GotFocus() override;
    void Form_Unload() override;

private:
    void Navigation();
    void DisplayFields(const std::string& path);
    void LayOutFields();
    void DisplayFriendlyFieldNames();
    void DisplayData();
    void Go(std::int32_t record);
    void SetField(int field, const QString& text);

    const TableView* view_ = nullptr;
    std::unique_ptr<TableReader> table_;
    std::int32_t record_ = 0; ///< 0 in an empty table
};

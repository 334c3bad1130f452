#pragma once

#include "core/Globals.h"
#include "platform/Form.h"
#include "ui_frmCopyDBF.h"

#include <string>

/// Copies tables into another structure while it loads, and shows which one as long as there is one: the one
/// of Global.OldTable over that of NewTable when CopySingleTable is set, else what a version update has
/// dropped. Whoever loads it unloads it at once; CopyTables and CopyTable do.
class frmCopyDBF final : public Form, private Ui::frmCopyDBF {
    Q_OBJECT

public:
    frmCopyDBF() { setupUi(this); }
    void reject() override {} // the work is not to be given up

protected:
    void Form_Load() override;
    void closeEvent(QCloseEvent* event) override;

private:
    class Shown;
};

/// The version update. RunTimeFailure as UpdateTables.
void CopyTables();

/// One table, by full paths. RunTimeFailure as CopySingleTable.
void CopyTable(const std::string& oldTable, const std::string& newTable);

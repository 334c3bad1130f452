#pragma once

#include "platform/Form.h"
#include "ui_frmFindNotes.h"

#include <cstdint>

/// The list of the notes.
class frmFindNotes final : public Form, private Ui::frmFindNotes {
    Q_OBJECT

public:
    frmFindNotes() { setupUi(this); }

private slots:
    void FG1_DblClick();
    void FG1_ColumnClick(int column);
    void cmdNew_Click();
    void cmdCancel_Click();

protected:
    void Form_Load() override;

private:
    void ReadList();
    void OpenNote(std::int32_t number, bool isNew);

    std::int32_t lastNote_ = 0; ///< number of the last record; 0 for none
};

#pragma once

#include "platform/Form.h"
#include "tools/Notes.h"
#include "ui_frmNotes.h"

class QCalendarWidget;
class QMenu;

/// One note, `Global.CurrentNote`, to be written, printed or sent.
class frmNotes final : public Form, private Ui::frmNotes {
    Q_OBJECT

public:
    frmNotes();

private slots:
    void cmdOK_Click();
    void cmdCancel_Click();
    void cmdPrint_Click();
    void cmdEMail_Click();
    void txtResolved_Click();
    void MonthView1_DateClick();
    void mnuSelect_Click();
    void mnuClear_Click();
    void txtIssue_Change();
    void txtNote_Change();
    void txtPerson_Change();

protected:
    void Form_Load() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Fill();
    Note FromScreen() const;
    void ShowWarning();

    QCalendarWidget* MonthView1;
    QMenu* mnuPop;
    Note note_;                                ///< as it was when the form was opened
    std::string shownIssue_, shownResolution_; ///< its texts as the screen gave them back then
};

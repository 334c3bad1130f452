#include "maintenance/forms/frmTotalsMsg.h"

#include "core/Globals.h"
#include "core/Numbers.h"
#include "platform/Convert.h"

#include <QWindow>

void frmTotalsMsg::Form_Load() {
    TraceEvent("frmTotalsMsg:Form_Load");
    const bool added = Global.UploadClosing;
    lblUploadOrders->setText(QString::number(Global.CurHeaders - (added ? Global.OldOrderCount : 0)));
    lblUploadLines->setText(QString::number(Global.CurLines - (added ? Global.OldLineCount : 0)));
    lblUploadDollars->setText(ToQt(Money(Global.CurDollars - (added ? Global.OldLineTotal : 0))));
    lblTotalOrders->setText(QString::number(Global.CurHeaders));
    lblTotalLines->setText(QString::number(Global.CurLines));
    lblTotalDollars->setText(ToQt(Money(Global.CurDollars)));
    lblHSID1->setText(ToQt(Global.CurrentHotSyncID));
    lblLastOrder1->setText(ToQt(Global.HHLastOrder));
}

void frmTotalsMsg::Form_GotFocus() {
    TraceEvent("frmTotalsMsg:Form_GotFocus");
    // Topmost for a moment: the operator may be in another program when the handheld is done.
    if (QWindow* handle = windowHandle()) {
        handle->setFlag(Qt::WindowStaysOnTopHint, true);
        handle->setFlag(Qt::WindowStaysOnTopHint, false);
    }
    raise();
    activateWindow();
}

void frmTotalsMsg::cmdOK_Click() {
    TraceEvent("frmTotalsMsg:cmdOK_Click");
    Unload();
}

#include "tools/forms/frmAbout.h"

#include "core/Globals.h"
#include "core/forms/frmEventLog.h"
#include "platform/Convert.h"
#include "platform/Look.h"

#include <QApplication>
#include <QSysInfo>

void frmAbout::Form_Load() {
    TraceEvent("frmAbout:Form_Load");
    imgIcon->setPixmap(Picture("zuk1.ico").pixmap(48, 48));
    QFont large = lblTitle->font();
    large.setPointSizeF(large.pointSizeF() * 1.6);
    large.setBold(true);
    lblTitle->setFont(large);

    lblZUKVer1->setText(QApplication::applicationVersion());
    lblOSName1->setText(QSysInfo::prettyProductName());
    lblOSVer1->setText(QSysInfo::kernelType() + QLatin1Char(' ') + QSysInfo::kernelVersion());
    lblAppPath1->setText(PathToQt(Global.AppPath));
    lblDBFPath1->setText(PathToQt(Global.DBFPath));
    lblDataInPath1->setText(PathToQt(Global.DataInPath));
    lblDataOutPath1->setText(PathToQt(Global.DataOutPath));
}

void frmAbout::cmdOK_Click() {
    TraceEvent("frmAbout:cmdOK_Click");
    Unload();
}

void frmAbout::cmdEventLog_Click() {
    TraceEvent("frmAbout:cmdEventLog_Click");
    The<frmEventLog>().Show(ShowMode::Modal);
}

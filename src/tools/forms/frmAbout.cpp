#include "tools/forms/frmAbout.h"

#include "core/Globals.h"
#include "core/Messages.h"
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
    // "10.0.19045", "6.1.0-18-amd64": two numbers of the version, and the rest is the build.
    const QString kernel = QSysInfo::kernelVersion();
    const auto part = [&](int first, int last) {
        return Text::Path(PathFromQt(kernel.section(QLatin1Char('.'), first, last)));
    };
    lblOSVer1->setText(ToQt(Words(Words(msg::OSVersion, part(0, 1)) + msg::OSBuild, part(2, -1))));
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

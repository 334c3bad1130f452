#include "core/forms/frmEventLog.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/SafeFile.h"
#include "core/Trace.h"
#include "platform/Convert.h"

#include <QFontDatabase>

void frmEventLog::Form_Load() {
    TraceEvent("frmEventLog:Form_Load");
    rtbEvents->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    try {
        rtbEvents->setPlainText(ToQt(std::string_view(ReadWholeFile(Global.AppPath + "Events.log"))));
    } catch (const RunTimeFailure& failure) {
        rtbEvents->setPlainText(PathToQt(failure.what()));
    }
}

void frmEventLog::cmdOK_Click() {
    TraceEvent("frmEventLog:cmdOK_Click");
    Unload();
}

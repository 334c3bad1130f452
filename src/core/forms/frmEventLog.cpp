#include "core/forms/frmEventLog.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/SafeFile.h"
#include "core/Trace.h"
#include "platform/Convert.h"
#include "tools/forms/Support.h"
#include "views/LinesReport.h"
#include "views/forms/PrintReport.h"

#include <QFontDatabase>

namespace {

std::string EventsPath() {
    return Global.AppPath + "Events.log";
}

} // namespace

void frmEventLog::Form_Load() {
    TraceEvent("frmEventLog:Form_Load");
    rtbEvents->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    try {
        rtbEvents->setPlainText(ToQt(std::string_view(ReadWholeFile(EventsPath()))));
    } catch (const RunTimeFailure& failure) {
        rtbEvents->setPlainText(PathToQt(failure.what()));
    }
}

void frmEventLog::cmdOK_Click() {
    TraceEvent("frmEventLog:cmdOK_Click");
    Unload();
}

void frmEventLog::cmdPrint_Click() {
    TraceEvent("frmEventLog:cmdPrint_Click");
    std::vector<Text> lines;
    for (const QString& line : rtbEvents->toPlainText().split(QLatin1Char('\n')))
        lines.push_back(Text::Path(std::string_view(PathFromQt(line))));
    LinesReport report(msg::EventLogTitle, std::move(lines));
    PrintReport(*this, report);
}

void frmEventLog::cmdEMail_Click() {
    TraceEvent("frmEventLog:cmdEMail_Click");
    const std::string events = EventsPath();
    OfferSupportMail(
        {msg::EventLogMailQuestion, msg::EventLogTitle, [] { return SystemInformationMail(ThisMachine()); },
         Text(msg::EventLogMailCreated) + Text::Path(std::string_view(events)) + msg::EventLogAttach});
}

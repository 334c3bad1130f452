#include "tools/forms/frmAbout.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/forms/frmEventLog.h"
#include "platform/Convert.h"
#include "platform/Look.h"
#include "tools/SupportDesk.h"
#include "tools/forms/Support.h"
#include "views/LinesReport.h"
#include "views/forms/PrintReport.h"

#include <utility>

void frmAbout::Form_Load() {
    TraceEvent("frmAbout:Form_Load");
    imgIcon->setPixmap(Picture("zuk1.ico").pixmap(48, 48));
    QFont large = lblTitle->font();
    large.setPointSizeF(large.pointSizeF() * 1.6);
    large.setBold(true);
    lblTitle->setFont(large);

    facts_ = ThisMachine();
    const std::pair<QLabel*, const Text&> facts[] = {{lblZUKVer1, facts_.ZUKVersion},
                                                     {lblOSName1, facts_.OSName},
                                                     {lblOSVer1, facts_.OSVersion},
                                                     {lblPalmDTVer1, facts_.PalmDesktopVersion},
                                                     {lblHotsyncVer1, facts_.HotsyncVersion}};
    for (const auto& [label, fact] : facts) label->setText(ToQt(fact));
    lblAppPath1->setText(PathToQt(Global.AppPath));
    lblDBFPath1->setText(PathToQt(Global.DBFPath));
    lblDataInPath1->setText(PathToQt(Global.DataInPath));
    lblDataOutPath1->setText(PathToQt(Global.DataOutPath));
    ShowWeb();
}

void frmAbout::ShowWeb() {
    try {
        web_ = ReadSupportDesk().Web;
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::SupportFileProblem, Text::Path(std::string_view(failure.what()))), Icon::Warning);
    }
    lblWeb->setVisible(!web_.empty());
    QFont underlined = lblWeb->font();
    underlined.setUnderline(true);
    lblWeb->setFont(underlined);
    QPalette tones = lblWeb->palette();
    tones.setColor(QPalette::ButtonText, tones.color(QPalette::Link));
    lblWeb->setPalette(tones);
    QString shown = PathToQt(web_);
    lblWeb->setText(shown.replace(QLatin1Char('&'), QLatin1String("&&")));
}

void frmAbout::cmdOK_Click() {
    TraceEvent("frmAbout:cmdOK_Click");
    Unload();
}

void frmAbout::cmdLog_Click() {
    TraceEvent("frmAbout:cmdLog_Click");
    try {
        const std::string path = WriteSysInfo(facts_);
        Tell(Lines(msg::LogFileCreated, Text::Path(std::string_view(path))), Icon::Information);
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::LogFileFailed, Text::Path(std::string_view(failure.what()))), Icon::Stop);
    }
}

void frmAbout::cmdPrint_Click() {
    TraceEvent("frmAbout:cmdPrint_Click");
    try {
        LinesReport report(msg::SysInfoTitle, SystemInformation(facts_));
        PrintReport(*this, report);
    } catch (const RunTimeFailure& failure) { // a label that leaves no room for its value
        Tell(Lines(msg::PrinterFailed, Text::Path(std::string_view(failure.what()))), Icon::Stop);
    }
}

void frmAbout::cmdEMail_Click() {
    TraceEvent("frmAbout:cmdEMail_Click");
    OfferSupportMail({msg::SysInfoMailQuestion, msg::SysInfoTitle,
                      [this] { return SystemInformationMail(facts_); }, msg::MailCreated});
}

void frmAbout::cmdEventLog_Click() {
    TraceEvent("frmAbout:cmdEventLog_Click");
    The<frmEventLog>().Show(ShowMode::Modal);
}

void frmAbout::lblWeb_Click() {
    TraceEvent("frmAbout:lblWeb_Click");
    if (!Global.TheOperator->OpenLink(web_))
        Tell(Lines(msg::WebFailed, Text::Path(std::string_view(web_))), Icon::Stop);
}

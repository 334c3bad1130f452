#include "tools/forms/Support.h"

#include "core/Failure.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "platform/Convert.h"
#include "platform/HotSyncManager.h"
#include "tools/Mail.h"
#include "tools/SupportDesk.h"

#include <QApplication>
#include <QSysInfo>

namespace {

Text FromToolkit(const QString& words) {
    return Text::Path(std::string_view(PathFromQt(words)));
}

/// "10.0.19045", "6.1.0-18-amd64": two numbers of the version, and the rest is the build.
Text OSVersion() {
    const QString kernel = QSysInfo::kernelVersion();
    const auto part = [&](int first, int last) {
        return FromToolkit(kernel.section(QLatin1Char('.'), first, last));
    };
    return Words(Words(msg::OSVersion, part(0, 1)) + msg::OSBuild, part(2, -1));
}

Text OSName() {
    const QString name = QSysInfo::prettyProductName();
    if (name.isEmpty() || name == QLatin1String("unknown")) return msg::OSUnidentified;
    return FromToolkit(name);
}

Text Reason(const RunTimeFailure& failure) {
    return Text::Path(std::string_view(failure.what()));
}

std::string SupportAddress() {
    try {
        return ReadSupportDesk().Address;
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::SupportFileProblem, Reason(failure)), Icon::Warning);
        return {};
    }
}

} // namespace

MachineFacts ThisMachine() {
    MachineFacts facts;
    facts.ZUKVersion = FromToolkit(QApplication::applicationVersion());
    facts.OSName = OSName();
    facts.OSVersion = OSVersion();
    facts.PalmDesktopVersion = Text::Path(std::string_view(PalmDesktopVersion()));
    facts.HotsyncVersion = Text::Path(std::string_view(HotSyncManagerVersion()));
    return facts;
}

void OfferSupportMail(const SupportMail& mail) {
    if (!AskYesNo(mail.Question)) return;
    const std::string address = SupportAddress();
    try {
        if (SendMail(address, {}, {}, mail.Subject.CodePage(), mail.Body()))
            Tell(mail.WhenCreated, Icon::Information);
        else
            Tell(Lines(msg::MailFailed, msg::NoMailProgram), Icon::Stop);
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::MailFailed, Reason(failure)), Icon::Stop);
    }
}

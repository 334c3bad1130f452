#include "sync/forms/UnattendedMode.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "platform/Convert.h"
#include "platform/MainScreen.h"
#include "sync/forms/frmMainSync.h"
#include "sync/forms/frmRemoteSync.h"

#include <QLabel>

namespace {

void ShowActivity(QWidget& form, const QString& name, const QString& letters, bool active,
                  const std::string& settings) {
    const auto label = [&form](const QString& wanted) { return form.findChild<QLabel*>(wanted); };
    QLabel* const heading = label(QStringLiteral("lbl") + name);
    QLabel* const yesOrNo = label(QStringLiteral("lbl") + letters + QStringLiteral("Active"));
    QLabel* const file = label(QStringLiteral("lbl") + letters + QStringLiteral("Template"));
    yesOrNo->setText(ToQt(Text(active ? msg::Yes : msg::No)));
    file->setText(active ? ToQt(std::string_view(settings)) : QString());
    for (QLabel* each : {heading, yesOrNo, file}) each->setEnabled(active);
}

} // namespace

void ShowUnattendedActivities(QWidget& form, const UnattendedSettings& settings) {
    const auto show = [&form](const char* name, const char* letters, bool active, const std::string& file) {
        ShowActivity(form, QLatin1String(name), QLatin1String(letters), active, file);
    };
    show("Upload", "UL", settings.Upload, settings.UploadTemplate);
    show("Clear", "CL", settings.Clear, settings.ClearTemplate);
    show("Download", "DL", settings.Download, settings.DownloadTemplate);
}

bool UnattendedSettingsCanBeUsed() {
    try {
        TakeUnattendedSettings();
        FindUnattendedTemplates();
        return true;
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::UnattendedNotStarted, Text::Path(std::string_view(failure.what()))), Icon::Stop);
        return false;
    }
}

void StopUnattended() {
    auto* main = IfMainScreen();
    auto* remote = IfLoaded<frmRemoteSync>();
    const auto* sync = IfLoaded<frmMainSync>();
    if (Global.UnattendedActive && sync && sync->InSession()) {
        if (main) main->StopAfterSession(msg::StopsAfterHotsync);
        return;
    }
    Global.UnattendedActive = false;
    if (remote) remote->Unload();
    if (main) main->LoadInactiveRemoteSync();
}

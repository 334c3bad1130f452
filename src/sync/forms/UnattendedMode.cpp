#include "sync/forms/UnattendedMode.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/forms/frmMain1.h"
#include "platform/Convert.h"
#include "sync/forms/frmMainSync.h"
#include "sync/forms/frmRemoteSync.h"

#include <QLabel>

namespace {

void ShowActivity(const ActivityLabels& labels, bool active, const std::string& settings) {
    labels.Active->setText(ToQt(Text(active ? msg::Yes : msg::No)));
    labels.Template->setText(active ? ToQt(std::string_view(settings)) : QString());
    for (QLabel* label : {labels.Name, labels.Active, labels.Template}) label->setEnabled(active);
}

} // namespace

void ShowUnattendedActivities(const ActivitiesLabels& labels, const UnattendedSettings& settings) {
    ShowActivity(labels[0], settings.Upload, settings.UploadTemplate);
    ShowActivity(labels[1], settings.Clear, settings.ClearTemplate);
    ShowActivity(labels[2], settings.Download, settings.DownloadTemplate);
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
    auto* main = IfLoaded<frmMain1>();
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

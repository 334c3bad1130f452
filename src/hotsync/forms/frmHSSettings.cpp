#include "hotsync/forms/frmHSSettings.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "platform/Convert.h"

namespace {

struct Input {
    std::string_view Key;
    MessageId Label;
};

/// In the order in which they stand on the screen.
const Input Inputs[] = {
    {"Address", msg::HSAddress},
    {"Port", msg::HSTcpPort},
    {"LookupPort", msg::HSLookupPort},
    {"HandshakeSeconds", msg::HSHandshake},
    {"AnswerSeconds", msg::HSAnswer},
    {"SessionMinutes", msg::HSSession},
    {"KeepAliveSeconds", msg::HSKeepAlive},
    {"WaitingCallers", msg::HSWaiting},
    {"LargestTableMB", msg::HSLargestTable},
    {"LargestFileMB", msg::HSLargestFile},
};

Text WhatItMayBe(std::string_view key) {
    const auto range = RangeOfManagerSetting(key);
    if (!range) return msg::HSEnterAddress;
    return Words(msg::HSEnterNumber, Text::Value(range->Least), msg::HSUpTo, Text::Value(range->Most));
}

} // namespace

QLineEdit& frmHSSettings::InputOf(std::string_view key) const {
    return *findChild<QLineEdit*>(QStringLiteral("txt") + ToQt(key));
}

void frmHSSettings::Form_Load() {
    TraceEvent("frmHSSettings:Form_Load");
    const ManagerSettings& settings = Global.TheManagerDesk->Settings();
    for (const auto& [key, label] : Inputs)
        InputOf(key).setText(ToQt(std::string_view(ManagerSettingText(settings, key))));
    chkLookup->setChecked(settings.Lookup);
    chkLookup_Click();
}

void frmHSSettings::chkLookup_Click() {
    txtLookupPort->setEnabled(chkLookup->isChecked());
}

/// False when an input cannot be what it is for; the operator has been told, and stands in it.
bool frmHSSettings::TakeInputs(ManagerSettings& settings) {
    settings.Lookup = chkLookup->isChecked();
    for (const auto& [key, label] : Inputs) {
        QLineEdit& input = InputOf(key);
        if (!input.isEnabled()) continue;
        try {
            SetManagerSetting(settings, key, FromQt(input.text()));
        } catch (const RunTimeFailure&) {
            Tell(Lines(label, WhatItMayBe(key)), Icon::Warning);
            input.setFocus();
            input.selectAll();
            return false;
        }
    }
    return true;
}

void frmHSSettings::cmdOK_Click() {
    TraceEvent("frmHSSettings:cmdOK_Click");
    ManagerSettings settings = Global.TheManagerDesk->Settings();
    if (!TakeInputs(settings)) return;
    try {
        Global.TheManagerDesk->TakeSettings(settings);
    } catch (const RunTimeFailure& failure) {
        return Tell(Lines(msg::HSSettingsNotWritten, Text::Path(std::string_view(failure.what()))),
                    Icon::Stop);
    }
    Unload();
}

void frmHSSettings::cmdCancel_Click() {
    TraceEvent("frmHSSettings:cmdCancel_Click");
    Unload();
}

#include "sync/forms/UpdateHSUsers.h"

#include "core/Directories.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "platform/Convert.h"
#include "platform/Form.h"
#include "platform/HotSyncManager.h"
#include "platform/MainScreen.h"
#include "platform/TitledWindow.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <utility>

namespace {

constexpr const char* Command = "rdkinst -crtreg ZUK2 -condpath SFrmCn40.dll  -name \"Tramble\" -restarths";

const QString SetupWindow = QStringLiteral("Setup");
const QString ExitWindow = QStringLiteral("Exit Hotsync Manager");

/// Changes the working directory for as long as it lives.
class WorkingDirectory {
public:
    WorkingDirectory() : before_(QDir::currentPath()) {}
    WorkingDirectory(const WorkingDirectory&) = delete;
    WorkingDirectory& operator=(const WorkingDirectory&) = delete;
    ~WorkingDirectory() { QDir::setCurrent(before_); }

private:
    QString before_;
};

/// Lets the main screen begin no second registration, which would wait for the windows of this one.
class OnlyOne {
public:
    OnlyOne() { Enable(false); }
    OnlyOne(const OnlyOne&) = delete;
    OnlyOne& operator=(const OnlyOne&) = delete;
    ~OnlyOne() { Enable(true); }

private:
    static void Enable(bool enabled) {
        if (auto* main = IfMainScreen()) main->EnableRegistration(enabled);
    }
};

Text Explanation() {
    Text text = Lines(msg::UpdateUsersWhy, Lines({}, msg::UpdateUsersSteps));
    for (const MessageId step : {msg::UpdateUsersClose, msg::UpdateUsersRegister, msg::UpdateUsersRestart})
        text = Lines(text, step);
    return text;
}

// ---- the command ----

/// The program that a folder holds, or where programs are installed for everybody the one among them.
QString ProgramFor(const QString& folder, const QString& name) {
    const QString there = QDir(folder).absoluteFilePath(name);
    const QString everybodys = QApplication::applicationDirPath() + QLatin1Char('/') + name;
    return !QFileInfo::exists(there) && QFileInfo::exists(everybodys) ? everybodys : there;
}

/// Runs the command in a folder, where its program lies. RunTimeFailure 53 without that program, 70 when it
/// could not be started.
void RunCommand(const std::string& folder) {
    QStringList words = QProcess::splitCommand(QString::fromLatin1(Command));
    QDir::setCurrent(PathToQt(folder));
    const QString program = ProgramFor(PathToQt(folder), words.takeFirst());
    if (QProcess::startDetached(program, words, PathToQt(folder))) return;
    throw RunTimeFailure(QFileInfo::exists(program) ? 70 : 53, PathFromQt(program));
}

/// A copy of the Install directory in the temporary directory. RunTimeFailure 70 when that belongs to
/// somebody else: a program is going to be run there.
std::string CopyOfInstall() {
    constexpr auto Mine = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner;
    std::string folder = TemporaryDirectory();
    const QString place = PathToQt(folder.substr(0, folder.size() - 1));
    if (QFileInfo(place).isSymLink()) throw RunTimeFailure(70, folder);
    MakePath(folder);
    if (!QFile::setPermissions(place, Mine)) throw RunTimeFailure(70, folder);
    Global.TemporaryDirectory = true;
    for (const std::string& name : FilesWithExtension(Global.InstallPath, "")) {
        CopyOver(Global.InstallPath + name, folder + name, false);
        QFile::setPermissions(PathToQt(folder + name), Mine);
    }
    return folder;
}

/// False when it cannot be run at all: the operator has been told.
bool StartRegistration() {
    try {
        RunCommand(Global.InstallPath);
        return true;
    } catch (const RunTimeFailure&) { // once more from a copy
    }
    try {
        RunCommand(CopyOfInstall());
        return true;
    } catch (const RunTimeFailure& failure) {
        Tell(Text::Path(std::string_view(failure.what())), Icon::Stop);
        return false;
    }
}

// ---- the windows ----

void AwaitSetup(FormBehaviour& form) {
    std::optional<FoundWindow> setup;
    LookUntil(form, [&] { return (setup = FindWindow(SetupWindow)).has_value(); });
    if (setup) LookUntil(form, [&] { return !setup->IsThere(); });
}

/// Presses Enter in the window that asks whether the manager may end; false when the registration goes on
/// without it.
bool AnswerExit(FormBehaviour& form) {
    bool exit = false;
    LookUntil(form, [&] {
        if (auto window = FindWindow(ExitWindow)) {
            window->BringToFront();
            window->SendKeys("{ENTER}");
            exit = true;
        }
        return exit || FindWindow(SetupWindow).has_value();
    });
    return exit;
}

} // namespace

void UpdateHSUsers(FormBehaviour& form) {
    if (!IsHotSyncActiveOrTell()) return;
    const bool agreed = Global.TheOperator->Ask(
        {Explanation(), msg::Ok, msg::Cancel, "Update_Hotsync_Users.htm", msg::lblUpdateHSUsers});
    if (agreed && !form.IsOver()) UpdateHS(form);
}

bool UpdateHS(FormBehaviour& form) {
    const OnlyOne registration;
    const WorkingDirectory before;
    RemoveTemporaryDirectory(); // also what a killed run has left there
    Global.TemporaryDirectory = false;
    if (!StartRegistration()) return false;
    AwaitSetup(form);
    if (!form.IsOver() && AnswerExit(form)) AwaitSetup(form);
    if (form.IsOver()) return false;
    return Global.HSUsersUpdated = true;
}

#include "Faces.h"

#include "AllForms.h"
#include "FilledTables.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "exchange/forms/QuickButtonForm.h"
#include "handheld/Commands.h"
#include "help/forms/QtHelp.h"
#include "installation/InstallList.h"
#include "maintenance/Backup.h"
#include "platform/Convert.h"
#include "platform/GridView.h"
#include "platform/LookupBox.h"
#include "platform/Registry.h"
#include "sync/forms/StatusFile.h"
#include "sync/forms/TableSelectForm.h"
#include "sync/forms/UnattendedMode.h"

#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QThread>
#include <QTimer>

#include <sstream>
#include <utility>

namespace {

void ChooseSetting(FormBehaviour& form, const char* name) {
    auto* settings = form.Window().findChild<QComboBox*>(QStringLiteral("cboSettings"));
    settings->setCurrentIndex(settings->findText(QLatin1String(name)));
    emit settings->activated(settings->currentIndex());
    form.Window().findChild<QListWidget*>(QStringLiteral("lstSelected"))->setCurrentRow(1);
}

void ChooseFile(FormBehaviour& form) {
    form.Window().findChild<QListWidget*>(QStringLiteral("filFiles"))->setCurrentRow(0);
    form.Window().findChild<QAbstractButton*>(QStringLiteral("optCustomer"))->click();
}

void Press(FormBehaviour& form, const char* button) {
    form.Window().findChild<QAbstractButton*>(QString::fromLatin1(button))->click();
}

/// What an operator would have done before looking at a screen.
void Prepare(FormBehaviour& form) {
    if (auto* message = dynamic_cast<frmMessage*>(&form)) {
        message->Fill({msg::ResetQuestion, msg::Yes, msg::No, {}});
    }
    if (dynamic_cast<QuickButtonForm*>(&form)) {
        auto* activities = form.Window().findChild<QComboBox*>(QStringLiteral("cboMaster"));
        activities->setCurrentIndex(0);
        emit activities->activated(0);
    }
    // Both lay out columns: a template that is there shows what they are for.
    if (dynamic_cast<frmImport1*>(&form)) ChooseSetting(form, "DemoCustomers.cst");
    if (dynamic_cast<frmExport1*>(&form)) ChooseSetting(form, "DemoOrders");
    if (dynamic_cast<frmConvert*>(&form)) ChooseFile(form);
    if (auto* options = dynamic_cast<frmOptions*>(&form)) {
        options->TurnTo("DemoImport.ipm");
        options->TurnTo("DemoExport.xpm");
    }
    if (auto* details = dynamic_cast<frmHHStatus*>(&form)) {
        details->Fill("Anna Berg", {{3, 12, 431.5}, {3, 12, 431.5}});
    }
    if (auto* pick = dynamic_cast<frmHSPickUser*>(&form))
        pick->Fill({{1, "Chlo\xE9 Martin", {}, false}, {2, "Diego Ruiz", {}, false}});
    if (auto* progress = dynamic_cast<frmHSProgress*>(&form)) {
        progress->ShowUser(Text::Value(std::string_view("Anna Berg")));
        QThread::msleep(60); // it paints only so often
        progress->ShowStep(Text::Value(std::string_view("ZUKCUST to the handheld")), 730, 1204);
    }
    if (dynamic_cast<frmAbout*>(&form)) {
        // What would stand there tells of this computer, and changes with it.
        for (const auto& [label, words] : {std::pair{"lblOSVer1", "Version 6.1, Build 0"},
                                           {"lblAppPath1", "/home/anna/office/"},
                                           {"lblDBFPath1", "/home/anna/office/DBFFiles/"},
                                           {"lblDataInPath1", "/home/anna/office/DataIn/"},
                                           {"lblDataOutPath1", "/home/anna/office/DataOut/"}})
            form.Window().findChild<QLabel*>(QLatin1String(label))->setText(QString::fromLatin1(words));
    }
    if (dynamic_cast<frmEventLog*>(&form)) {
        auto* events = form.Window().findChild<QPlainTextEdit*>(QStringLiteral("rtbEvents"));
        const QString office = PathToQt(Global.AppPath);
        events->setPlainText(events->toPlainText().replace(office, QLatin1String("/home/anna/office/")));
    }
    // Of these two only the orders are usual: the rest would be lost to the office.
    if (dynamic_cast<frmUploadSelect*>(&form) || dynamic_cast<frmTableSelectPC*>(&form)) {
        for (const char* const box : {"chkOrHdr", "chkAudtH", "chkAudHH"}) Press(form, box);
    } else if (dynamic_cast<TableSelectForm*>(&form)) {
        Press(form, "cmdSelectAll");
    }
    if (dynamic_cast<frmChgLink*>(&form)) {
        form.Window()
            .findChild<QLineEdit*>(QStringLiteral("txtHotSync"))
            ->setText(QStringLiteral("ben okafor"));
    }
}

/// The quarters of the main screen by themselves, with a handheld of each status.
void Quarters(Camera& camera) {
    auto& main = The<frmMain1>();
    Global.HHStatus = {"", "G", "G", "B", "", "G", ""};
    ShowHHStatus();
    camera.Take(main, QStringLiteral("frmMain1-letters"));
    const QSize usual = main.size();
    main.resize(usual * 7 / 5);
    for (const auto& [quarter, name] : {std::pair{"frame1", "status"},
                                        {"frame2", "uploads"},
                                        {"frame3", "quickbuttons"},
                                        {"frame4", "tools"}})
        camera.Take(*main.findChild<QWidget*>(QLatin1String(quarter)),
                    QStringLiteral("frmMain1-") + QLatin1String(name));
    Press(main, "lblNext");
    camera.Take(*main.findChild<QWidget*>(QStringLiteral("frame4")), QStringLiteral("frmMain1-summary"));
    Press(main, "lblPrev");
    main.resize(usual);
    for (std::string& letter : Global.HHStatus) letter.clear();
    ShowHHStatus();
}

/// What is said before the HotSync users are brought up to date.
void UsersQuestion(Camera& camera) {
    auto& question = The<frmMessage>();
    Text words = Lines(msg::UpdateUsersWhy, Lines({}, msg::UpdateUsersSteps));
    for (const MessageId step : {msg::UpdateUsersClose, msg::UpdateUsersRegister, msg::UpdateUsersRestart})
        words = Lines(words, step);
    question.Fill({words, msg::Ok, msg::Cancel, {}, msg::lblUpdateHSUsers});
    camera.Take(question, QStringLiteral("frmMessage-users"));
    question.Unload();
}

/// The other pages of the main screen, screens at work, and a report at its end.
void OtherFaces(Nobody& nobody, Camera& camera) {
    auto& main = The<frmMain1>();
    for (const char* page : {"frmMain1-page2", "frmMain1-quickstart"}) {
        Press(main, "lblNext");
        camera.Take(main, QString::fromLatin1(page));
    }
    auto& convert = The<frmConvert>();
    ChooseFile(convert);
    auto& mapping = The<frmImport1>();
    camera.Take(mapping, QStringLiteral("frmImport1-new"));
    mapping.Unload();
    convert.Unload();
    auto& calculation = The<frmExport1>();
    ChooseSetting(calculation, "DemoOrders");
    Press(calculation, "cmdCalc");
    camera.Take(calculation, QStringLiteral("frmExport1-calculate"));
    calculation.Unload();
    auto& report = The<frmQBImport>();
    Prepare(report);
    nobody.RunsActivities = true;
    Press(report, "cmdOK");
    nobody.RunsActivities = false;
    camera.Take(report, QStringLiteral("frmQBImport-report"));
    report.Unload();
    Global.MakeSFrmAX40 = nullptr;
    auto& nobodyToChoose = The<frmHSID>();
    camera.Take(nobodyToChoose, QStringLiteral("frmHSID-nobody"));
    nobodyToChoose.Unload();
}

/// The main screen and the window of unattended mode between two sessions and in one.
void UnattendedFaces(Camera& camera) {
    auto& main = The<frmMain1>();
    auto& window = The<frmRemoteSync>();
    camera.Take(main, QStringLiteral("frmMain1-armed"));
    main.ShowSession("Anna Berg");
    main.ShowPhase(SyncPhaseImage::Upload, PhaseLook::Queued);
    main.ShowPhase(SyncPhaseImage::Clear, PhaseLook::Queued);
    window.ShowSession("Anna Berg");
    camera.Take(main, QStringLiteral("frmMain1-session"));
    main.StopAfterSession(msg::StopsAfterHotsync);
    camera.Take(window, QStringLiteral("frmRemoteSync-stopping"));
    main.ShowWaiting();
    main.ShowUnattendedOff();
    camera.Take(main, QStringLiteral("frmMain1-off"));
    camera.Take(window, QStringLiteral("frmRemoteSync-off"));
    StopUnattended();
    camera.Take(main, QStringLiteral("frmMain1-stopped"));
}

/// The HotSync Manager while it waits, and without users or an address.
void ManagerFaces(Camera& camera, const std::string& emptyFolder) {
    auto& waiting = The<frmHSProgress>();
    waiting.ShowWaiting({});
    camera.Take(waiting, QStringLiteral("frmHSProgress-waiting"));
    waiting.Unload();
    ManagerDesk* const usual = Global.TheManagerDesk;
    SomeManager empty(emptyFolder);
    empty.State = {"10.0.0.7", 0, "The address is not available"};
    Global.TheManagerDesk = &empty;
    auto& manager = The<frmHSManager>();
    camera.Take(manager, QStringLiteral("frmHSManager-empty"));
    manager.Unload();
    Global.TheManagerDesk = usual;
}

/// An order of two lines before it is taken; and a handheld on which nothing is installed.
void StandInFaces(Camera& camera, const QString& work) {
    auto& order = The<frmStandInOrder>();
    order.Begin();
    for (const char* const name : {"cboCustomer", "cboItem", "cboItem"}) {
        auto& box = *order.findChild<LookupBox*>(QString::fromLatin1(name));
        box.Stand(box.count() / 3);
        emit box.activated(box.currentIndex());
        if (box.objectName() == QStringLiteral("cboItem")) Press(order, "cmdAdd");
    }
    camera.Take(order, QStringLiteral("frmStandInOrder-lines"));
    order.Unload();
    const std::string usual = std::exchange(Global.StandInFolder, PathFromQt(work) + "/empty/");
    std::ostringstream out, err;
    RunCommand({Global.StandInFolder, "new", "--no-user"}, {out, err, nullptr, nullptr});
    auto& empty = The<frmStandIn>();
    // A place where nobody waits: the usual one may be that of a HotSync Manager at work on this computer.
    auto& place = *empty.findChild<QLineEdit*>(QStringLiteral("txtHost"));
    const QString usualPlace = place.text();
    place.setText(QStringLiteral("127.0.0.1:1"));
    Press(empty, "cmdHotSync");
    place.setText(usualPlace);
    camera.Take(empty, QStringLiteral("frmStandIn-empty"));
    empty.Unload();
    Global.StandInFolder = usual;
}

/// The other tabs of the options, and the choice of a file for a template that the Quality Check reports.
void OptionsFaces(Camera& camera) {
    Global.QCViewMode = true;
    Global.QCViewRecords = "DemoItems.itm";
    auto& convert = The<frmConvert>();
    camera.Take(convert, QStringLiteral("frmConvert-repair"));
    convert.Unload();
    Global.QCViewMode = false;
    auto& options = The<frmOptions>();
    options.TurnTo(UnattendedExtension);
    camera.Take(options, QStringLiteral("frmOptions-unattended"));
    options.findChild<QTabWidget*>(QStringLiteral("SSTab1"))->setCurrentIndex(2);
    Press(options, "optDelBackup");
    camera.Take(options, QStringLiteral("frmOptions-backup"));
    options.Unload();
}

/// A preview, which the program waits for, unless a round before this one has ended it.
void PreviewFace(FormBehaviour& form, Camera& camera, const char* name) {
    bool isSaved = false;
    const auto save = [&] {
        if (std::exchange(isSaved, true)) return;
        auto& preview = The<frmPreview>();
        camera.Take(preview, QString::fromLatin1(name));
        Press(preview, "cmdWholePage");
        camera.Take(preview, QString::fromLatin1(name) + QStringLiteral("-whole"));
        preview.Unload();
    };
    QTimer meanwhile;
    meanwhile.callOnTimeout(save);
    meanwhile.start(0);
    Press(form, "cmdPreview");
    save();
}

/// The browser with each kind of table in it.
void BrowserFaces(Camera& camera) {
    const std::pair<ViewFlag, const char*> faces[] = {{ViewCust, "customers"},
                                                      {ViewItem, "items"},
                                                      {ViewOrHdr, "orders"},
                                                      {ViewTotals, "totals"},
                                                      {ViewLink, "links"}};
    for (const auto& [flag, name] : faces) {
        ShowTable(flag);
        auto& grid = The<frmViewGrid>();
        auto* rows = grid.findChild<GridView*>(QStringLiteral("FG1"));
        if (flag == ViewItem) rows->SortOn(2);
        if (flag == ViewCust) rows->ShowFindBar();
        camera.Take(grid, QStringLiteral("frmViewGrid-") + QString::fromLatin1(name));
        Press(grid, "cmdDataView");
        auto& records = The<frmViewData>();
        camera.Take(records, QStringLiteral("frmViewData-") + QString::fromLatin1(name));
        records.Unload();
    }
    ShowTable(ViewTotals);
    PreviewFace(The<frmViewGrid>(), camera, "frmPreview-totals");
    The<frmViewGrid>().Unload();
}

/// The backups of a day, of which one has lost its tables and one has been changed; and a table that is
/// being put back.
void RestoreFaces(Camera& camera) {
    const char* events[] = {"UPLOAD-ADD", "EXPORT", "CLEAR"};
    const auto before = Global.Clock;
    for (int k = 0; k < 3; ++k) {
        static DateTime moment;
        moment = {2026, 11, 21, 17 + k, 5, 30};
        Global.Clock = [] { return moment; };
        MakeBackup(events[k]);
        const std::string backup = Global.BackupPath + BackupName(moment) + "/";
        if (k == 0) PurgeBackups(moment, [](std::string_view) {});
        if (k == 1) WriteWholeFile(backup + "ZUKOrLin.dbf", "not what it was");
    }
    Global.Clock = before;
    ShowTable(ViewRestore);
    camera.Take(The<frmViewGrid>(), QStringLiteral("frmViewGrid-restore"));
    The<frmViewGrid>().Unload();

    QTimer meanwhile;
    meanwhile.callOnTimeout([&] {
        if (auto* copying = IfLoaded<frmCopyDBF>(); copying != nullptr && copying->isVisible()) {
            camera.Take(*copying, QStringLiteral("frmCopyDBF-table"));
            meanwhile.stop();
        }
    });
    meanwhile.start(0);
    CopyTable(Global.DBFPath + "ZUKCust.dbf", Global.DBFPath + "ZUKCust.dbf");
}

/// The screen of the installs in each of its states.
void InstallFaces(Camera& camera) {
    Registry registry;
    RecordInstall(registry, "Ben Okafor", msg::TypeDemo);
    auto& form = The<frmHHInstall>();
    auto* users = form.findChild<QComboBox*>(QStringLiteral("cboHSUsers"));
    users->setCurrentIndex(0);
    emit users->activated(0);
    camera.Take(form, QStringLiteral("frmHHInstall-chosen"));
    InstallScreen& screen = form;
    const Text anna = Text::Value(std::string_view("Anna Berg"));
    screen.SetActive(msg::ReadyToInstall + anna + msg::ReadyPressHotsync);
    camera.Take(form, QStringLiteral("frmHHInstall-waiting"));
    screen.SetActiveSync({});
    camera.Take(form, QStringLiteral("frmHHInstall-hotsync"));
    screen.SetActiveSync(msg::SecondHotsync);
    camera.Take(form, QStringLiteral("frmHHInstall-second"));
    screen.SetActive(Lines(Words(msg::FilesWaiting, Text::Value(std::int64_t{12})), msg::PressAgain));
    camera.Take(form, QStringLiteral("frmHHInstall-missing"));
    screen.SetInactive();
    form.Unload();
}

/// The window of the help, at the page of a screen, and what its panes find.
void HelpFaces(const QString& build, Camera& camera) {
    QtHelp help;
    help.Help().HHSetHelpFile(PathFromQt(QDir(build).absolutePath()) + "/installed/Tramble_Help.qch");
    help.Help().HHTopicURL = "Payments.htm";
    help.Help().HHDisplayTopicURL();
    auto& window = The<frmHelp>();
    camera.Take(window, QStringLiteral("frmHelp-page"));
    auto* panes = window.findChild<QTabWidget*>(QStringLiteral("tabHelp"));
    panes->setCurrentIndex(1);
    window.findChild<QLineEdit*>(QStringLiteral("txtKeyword"))->setText(QStringLiteral("h"));
    camera.Take(window, QStringLiteral("frmHelp-index"));
    panes->setCurrentIndex(2);
    window.findChild<QLineEdit*>(QStringLiteral("txtWords"))->setText(QStringLiteral("handheld"));
    Press(window, "cmdListTopics");
    const auto* found = window.findChild<QListWidget*>(QStringLiteral("lstFound"));
    for (int k = 0; k < 500 && found->count() == 0; ++k) {
        QThread::msleep(10); // no loop waits once a round has ended the program
        Settle();
    }
    Press(window, "cmdFind");
    camera.Take(window, QStringLiteral("frmHelp-search"));
    help.Close();
}

/// The report of a check of the imported tables, the Configurator behind it, and what the report's
/// rows lead to.
void CheckFaces(const OfficeForDay& office, Camera& camera) {
    BreakTables(office);
    auto& config = The<frmConfig>();
    Press(config, "cmdCheckAll");
    auto& report = The<frmConfigMsg>();
    camera.Take(config, QStringLiteral("frmConfig-checked"));
    camera.Take(report, QStringLiteral("frmConfigMsg-report"));
    PreviewFace(report, camera, "frmPreview-check");
    auto* rows = report.findChild<GridView*>(QStringLiteral("FG1"));
    for (int row = 0; row < rows->model()->rowCount(); ++row) {
        rows->SelectRecord(row + 1);
        if (report.Problems().Row(static_cast<std::size_t>(row)).Field.empty()) continue;
        Press(report, "cmdView");
        auto& grid = The<frmViewGrid>();
        camera.Take(grid, QStringLiteral("frmViewGrid-faulty-%1").arg(row + 1));
        grid.Unload();
    }
    report.Unload();
    config.Unload();
}

template <class F>
void Take(Camera& camera, const char* name) {
    // The form of the sessions has nothing to show.
    if constexpr (std::is_same_v<F, frmMainSync>) return;
    // Without a file it is empty.
    if constexpr (std::is_same_v<F, frmHelp>) return;
    F& form = The<F>();
    if (form.IsGone()) {
        // A form that does its work while it loads is shown as it stands meanwhile.
        F shell;
        FillCaptions(shell);
        camera.Take(shell, QString::fromLatin1(name));
        return;
    }
    Prepare(form);
    camera.Take(form, QString::fromLatin1(name));
    if constexpr (std::is_same_v<F, frmRemoteSync>)
        StopUnattended();
    else if constexpr (!std::is_same_v<F, frmMain1>)
        form.Unload();
    Settle();
}

} // namespace

void TakeAllScreens(const Stage& stage, Camera& camera) {
#define TAKE(form) Take<form>(camera, #form);
    ALL_FORMS(TAKE)
#undef TAKE
    Quarters(camera);
    UsersQuestion(camera);
    UnattendedFaces(camera);
    OtherFaces(stage.TheOperator, camera);
    ManagerFaces(camera, PathFromQt(stage.Work + QStringLiteral("/nobody")));
    StandInFaces(camera, stage.Work);
    OptionsFaces(camera);
    BrowserFaces(camera);
    HelpFaces(stage.Build, camera);
    InstallFaces(camera);
    RestoreFaces(camera);
    CheckFaces(stage.Office, camera);
}

void PrintReports(Nobody& nobody, const QString& folder) {
    const auto to = [&](const char* name) {
        nobody.PrintsTo = PathFromQt(folder) + "/Report-" + name + ".pdf";
    };
    Press(The<frmConfig>(), "cmdCheckAll");
    to("check");
    Press(The<frmConfigMsg>(), "cmdPrint");
    The<frmConfigMsg>().Unload();
    The<frmConfig>().Unload();
    FillAllTables(Global.DBFPath, 130);
    const std::pair<ViewFlag, const char*> reports[] = {{ViewTotals, "totals"},
                                                        {ViewOrHdrAudt, "header-audit"},
                                                        {ViewOrLinAudt, "line-audit"},
                                                        {ViewAudHH, "handheld-totals"}};
    for (const auto& [flag, name] : reports) {
        ShowTable(flag);
        Settle();
        to(name);
        Press(The<frmViewGrid>(), "cmdPrint");
        The<frmViewGrid>().Unload();
    }
    nobody.PrintsTo.clear();
}

#include "program/forms/frmMain1.h"

#include "core/Catalogue.h"
#include "core/Directories.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "core/Settings.h"
#include "installation/HandheldInstall.h"
#include "maintenance/Backup.h"
#include "maintenance/Office.h"
#include "maintenance/SafetyCopies.h"
#include "maintenance/Totals.h"
#include "maintenance/UnfinishedJobs.h"
#include "maintenance/forms/CopiesBack.h"
#include "platform/Convert.h"
#include "platform/HotSyncManager.h"
#include "platform/Look.h"
#include "platform/Registry.h"
#include "platform/SingleInstance.h"
#include "platform/TitledWindow.h"
#include "platform/Translation.h"
#include "quality/forms/QCRun.h"
#include "store/OfficeTables.h"
#include "store/TableScan.h"
#include "store/forms/frmCopyDBF.h"
#include "sync/Images.h"
#include "sync/Status.h"
#include "sync/StatusDetails.h"
#include "sync/UnattendedSettings.h"
#include "sync/forms/StatusFile.h"
#include "sync/forms/UnattendedMode.h"
#include "sync/forms/frmChgLink.h"
#include "sync/forms/frmHHStatus.h"
#include "sync/forms/frmMainSync.h"
#include "sync/forms/frmQBRemote.h"
#include "sync/forms/frmRemoteSync.h"
#include "views/SetupTables.h"
#include "views/TableViews.h"
#include "views/forms/frmChSetup.h"
#include "views/forms/frmViewGrid.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHeaderView>
#include <QScreen>
#include <QTimer>

#include <algorithm>

namespace {

constexpr int TwipsPerPixel = 15; // 1440 to the inch, 96 pixels
constexpr const char* ProgressWindow = "Hotsync Progress";
constexpr int LookEvery = 500;    // milliseconds
constexpr QSize IconSize(36, 28); // wider than the picture, which keeps the text off it

/// Pages of the Tools quadrant, in the order of `lblPrev`.
enum Page { PageTools, PageQuickStart, PageSummary, Pages };

constexpr MessageId PageTitles[] = {msg::pageTools, msg::pageQuickStart, msg::pageSummary};
constexpr const char* PagePictures[] = {"tools", "quickstart", "summary"};

std::string CountOf(const std::string& table) {
    const std::string path = Global.DBFPath + table;
    return FileExists(path) ? std::to_string(TableScan(path).RecordCount()) : std::string();
}

/// Whether a row of the Links table has had its manual download.
bool IsMarked(std::size_t row) {
    return row < Global.HHStatusStd.size() && Global.HHStatusStd[row] == "S";
}

} // namespace

frmMain1::frmMain1() {
    setupUi(this);
    bricks_ = std::make_unique<HHBricks>(*this, *grdBricks);
    unattended_ = std::make_unique<UnattendedView>(*this, static_cast<const Ui::frmMain1&>(*this));
    for (const auto& [timer, name] : {std::pair{&Timer2, "Timer2"}, {&Timer3, "Timer3"}}) {
        *timer = new QTimer(this);
        (*timer)->setObjectName(QLatin1String(name));
        (*timer)->setInterval(LookEvery);
    }
    // The progress window takes the place of picMatrix, and the words beside an image do not move.
    for (QWidget* place : {picMatrix, static_cast<QWidget*>(imgUpload), static_cast<QWidget*>(imgClear),
                           static_cast<QWidget*>(imgDownload)}) {
        QSizePolicy policy = place->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        place->setSizePolicy(policy);
    }
}

// ---- start ----

void frmMain1::Form_Load() {
    try {
        StartUp();
    } catch (const std::exception& failure) {
        StopStart(Lines(msg::StartFileError, Text::Path(std::string_view(failure.what()))));
    }
}

void frmMain1::StopStart(const Text& reason) {
    Tell(reason, Icon::Stop);
    EndProgram(1);
    Unload();
}

void frmMain1::StartUp() {
    const std::string problems = LoadTextsOfOffice(Global.AppPath);
    if (!SingleInstance::Take(Global.AppPath)) return StopStart(msg::AlreadyRunning);
    Global.CreatorID = "ZUK2";
    LoadEvents();
    TraceEvent("frmMain1:Form_Load");
    if (!problems.empty())
        Tell(Lines(msg::TextsCannotBeRead, Text::Path(std::string_view(problems))), Icon::Warning);
    FillCaptions(*this);
    IsHotSyncActiveOrTell();

    Global.IniFile = Global.AppPath + "ZUKTramble.ini";
    TakeWindowPosition();
    try {
        GetIniFile();
    } catch (const RunTimeFailure& failure) {
        if (failure.Number() == 13 || failure.Number() == 6) throw;
        return StopStart(Lines(msg::ConfigurationError, Text::Path(std::string_view(failure.what()))));
    }
    RenewOffice();
    if (!PrepareOffice([] { Tell(msg::DownloadSelectionMissing, Icon::Information); }, CopyTables))
        return StopStart(msg::TablesMissing);
    TellUnfinishedJobs();
    PutBackSafetyCopies();
    TakeBackQueuedInstall();
    LoadIcons();
    SetUpTotalsGrid();
    GetPCTotals();
    GetHHBricksStd();
    if (Global.Ending) return;
    LoadSetup();
    if (Global.PurgeBackup) {
        DeleteBackupTables([](std::string_view file) {
            Tell(Words(msg::CannotDelete, Text::Path(file)), Icon::Information);
        });
    }
    LoadInactiveRemoteSync();
    The<frmMainSync>();
    RestoreWindow();
    SetLLQStandard();
    operating_ = true;
    WriteSettings();
    Timer2->start();
}

/// What a newer release has brought; the next start tries again where that fails.
void frmMain1::RenewOffice() {
    try {
        RenewInstall(InstalledSet(PathFromQt(QApplication::applicationDirPath())), Global.AppPath);
    } catch (const RunTimeFailure& failure) {
        TraceEvent(std::string("frmMain1:RenewOffice ") + failure.what());
    }
}

/// Before what was left of an upload changes the tables. In unattended mode the trace has it.
void frmMain1::TellUnfinishedJobs() {
    const UnfinishedJobs found = FindUnfinishedJobs();
    if (Global.UnattendedActive) return;
    for (const CutOffJob& job : found.Jobs) Tell(TellCutOff(job), Icon::Warning);
    if (found.Broken.empty()) return;
    Tell(Lines(msg::CutOffNotRead, Text::Path(std::string_view(found.Broken))), Icon::Warning);
}

void frmMain1::PutBackSafetyCopies() {
    try {
        TellRecovered(RecoverSafetyCopies(), msg::SessionRecovered);
    } catch (const RecoveryFailure& failure) {
        TellRecovered(failure.Recovered, msg::SessionRecovered);
        Tell(Lines(msg::SessionNotRecovered, Text::Path(std::string_view(failure.what()))), Icon::Warning);
    }
}

/// In unattended mode the trace has it.
void frmMain1::TakeBackQueuedInstall() {
    try {
        const std::optional<std::string> user = TakeBackInstall(HotSyncManagerFolder());
        if (!user) return;
        TraceEvent("frmMain1:TakeBackQueuedInstall " + *user);
        if (Global.UnattendedActive) return;
        Tell(Lines(Text::Value(std::string_view(*user)), msg::CancelledInHotsync), Icon::Warning);
    } catch (const RunTimeFailure& failure) {
        TraceEvent(std::string("frmMain1:TakeBackQueuedInstall ") + failure.what());
    }
}

/// What the handheld's and the print settings tell the PC.
void frmMain1::LoadSetup() {
    Global.SetupOnly = true;
    The<frmChSetup>().Unload();
    Global.SetupOnly = false;
    ReadLinesPerPage();
}

void frmMain1::LoadIcons() {
    QApplication::setWindowIcon(Picture("zuk1.ico"));
    const auto label = [](QLabel& where, const char* name, int size) {
        where.setPixmap(Picture(name).pixmap(size, size));
    };
    label(*imgHHStatus, "handheld", 20);
    label(*imgMatrix, "uploads", 20);
    label(*imgQB, "quickbuttons", 20);
    label(*imgNotSynced, "brick-notsynced", 16);
    label(*imgSyncOK, "brick-syncok", 16);
    label(*imgBadSync, "brick-badsync", 16);
    label(*imgSysCust, "tool-customers", 28);
    label(*imgSysItems, "tool-items", 28);
    label(*imgSysOrders, "tool-orders-count", 28);
    const std::pair<QToolButton*, const char*> buttons[] = {
        {lblImportBtn, "tool-import"},
        {lblExportBtn, "tool-export"},
        {lblDownloadBtn, "tool-download"},
        {lblUploadBtn, "tool-upload"},
        {lblPCTables, "tool-tables"},
        {lblClearPC, "tool-clear"},
        {lblUA, "tool-unattended"},
        {lblUpdateHSUsers, "UpDtHSUsers32x32-16M"},
        {lblConfigurator, "tool-configurator"},
        {lblInstallHH, "tool-install"},
        {lblNotes, "tool-notes"},
        {lblRestore, "Restore"},
        {lblPurgeBU, "tool-purge"},
        {lblSetupPC, "tool-setup"},
        {lblQC, "tool-check"},
        {lblDemoInstall, "tool-demo"},
        {lblHelpOrders, "tool-orders"},
        {lblHelpCompany, "tool-company"},
        {lblPrev, "arrow-left"},
        {lblNext, "arrow-right"},
        {imgHHStatusHelp, "helpico16-256"},
        {imgMatrixHelp, "helpico16-256"},
        {imgQBHelp, "helpico16-256"},
        {imgToolsHelp, "helpico16-256"},
    };
    for (const auto& [button, name] : buttons) button->setIcon(Picture(name));
    // White arrows: what the mouse raises must not be as light as they are.
    for (QToolButton* arrow : {lblPrev, lblNext}) {
        QPalette palette = arrow->palette();
        palette.setColor(QPalette::Button, palette.color(QPalette::Highlight));
        arrow->setPalette(palette);
    }
    for (QWidget* page : {static_cast<QWidget*>(picQB), static_cast<QWidget*>(picRemoteSync)}) {
        for (QToolButton* button : page->findChildren<QToolButton*>()) button->setIconSize(IconSize);
    }
}

void frmMain1::SetLLQStandard() {
    TraceEvent("frmMain1:SetLLQStandard");
    ShowPage(PageTools);
    picQB->show();
    mnuDarkLook->setChecked(IsDarkLook());
    lblImportBtn->setFocus();
}

// ---- the end ----

void frmMain1::mnuExit_Click() {
    TraceEvent("frmMain1:mnuExit_Click");
    Unload();
}

void frmMain1::Form_Unload() {
    // A start that was given up and a program that failed have nothing to keep: the trace is to end
    // where they did.
    if (operating_ && !Global.Ending) {
        TraceEvent("frmMain1:Form_Unload");
        Global.UnattendedActive = false;
        for (std::string& status : Global.HHStatus) status.clear();
        WithStatusFile(UpdateHHStatus);
        TakeWindowPosition();
        WriteSettings();
        UnloadForms();
        UnloadMainSync();
    }
    SingleInstance::Release();
    EndProgram(0);
}

/// The first time the program waits for the end of the session that runs; the second time it asks.
void frmMain1::closeEvent(QCloseEvent* event) {
    const auto* sync = IfLoaded<frmMainSync>();
    if (!Global.UnattendedActive || !sync || !sync->InSession() || QApplication::activeModalWidget())
        return MainForm::closeEvent(event);
    event->ignore();
    Run([this] { CloseInSession(); });
}

void frmMain1::CloseInSession() {
    if (!std::exchange(closeAfterSession_, true)) return StopAfterSession(msg::ClosesAfterHotsync);
    if (AskYesNo(msg::CloseInHotsync, Icon::Warning)) Unload();
}

void frmMain1::UnloadForms() {
    TraceEvent("frmMain1:UnloadForms");
    sbrOutcome->hide();
    Global.UnloadingForms = true;
    if (Global.TemporaryDirectory) RemoveTemporaryDirectory();
    Global.TemporaryDirectory = false;
    FormRegistry::Instance().UnloadSecondary();
    Global.UnloadingForms = false;
}

void frmMain1::ShowOutcome(const Text& outcome) {
    sbrOutcome->showMessage(ToQt(outcome));
    sbrOutcome->setToolTip(PlainTip(ToQt(outcome))); // a long one is cut at the edge
    sbrOutcome->show();
}

// ---- the window's place ----

void frmMain1::TakeWindowPosition() {
    Global.WindowState = isMinimized() ? std::int16_t{1} : isMaximized() ? std::int16_t{2} : std::int16_t{0};
    // A maximised window keeps the numbers of the place that it had before.
    if (Global.WindowState != 0) return;
    // The frame's corner and the window's size: what `move` and `resize` set.
    const QRect place(pos(), size());
    // A window that was not moved keeps the numbers it was read with, whatever the rounding.
    if (place == restored_) return;
    Global.MainTop = place.top() * TwipsPerPixel;
    Global.MainLeft = place.left() * TwipsPerPixel;
    Global.MainHeight = place.height() * TwipsPerPixel;
    Global.MainWidth = place.width() * TwipsPerPixel;
}

void frmMain1::RestoreWindow() {
    if (Global.WindowState == 0) {
        if (Global.MainHeight > 0 && Global.MainWidth > 0) {
            resize(Global.MainWidth / TwipsPerPixel, Global.MainHeight / TwipsPerPixel);
        }
        const QPoint corner(Global.MainLeft / TwipsPerPixel, Global.MainTop / TwipsPerPixel);
        // A place on a screen that is no longer there cannot be reached.
        if (QGuiApplication::screenAt(corner + QPoint(width() / 2, 10))) move(corner);
    } else if (Global.WindowState == 1) {
        setWindowState(Qt::WindowNoState);
    } else {
        setWindowState(Qt::WindowMaximized);
    }
    restored_ = QRect(pos(), size());
}

// ---- settings on disk ----

void frmMain1::WriteSettings() {
    try {
        UpdateIniFile();
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::ConfigurationError, Text::Path(std::string_view(failure.what()))), Icon::Stop);
    }
}

// ---- handheld status ----

void frmMain1::DrawBricks(const QString& family, const std::function<HHBricks::Face(std::size_t)>& faceOf) {
    bricks_->Draw(family, *imgHHStatusHelp, faceOf);
    lblNoHandhelds->setVisible(bricks_->IsEmpty());
    scrHHStatus->setVisible(!bricks_->IsEmpty());
}

void frmMain1::GetHHBricks() {
    TraceEvent("frmMain1:GetHHBricks");
    if (!WithStatusFile(GetHHStatus)) return;
    DrawBricks(QStringLiteral("cmdHHHSID"), [](std::size_t row) -> HHBricks::Face {
        const std::string letter = row < Global.HHStatus.size() ? Global.HHStatus[row] : std::string();
        if (letter == "G") return {StateIcon("brick-syncok"), msg::lblSyncOK, true};
        if (letter == "B") return {StateIcon("brick-badsync"), msg::lblBadSync, true};
        return {StateIcon("brick-notsynced"), msg::lblNotSynced, true};
    });
}

void frmMain1::GetHHBricksStd() {
    TraceEvent("frmMain1:GetHHBricksStd");
    if (!WithStatusFile(GetHHStatus)) return;
    DrawBricks(QStringLiteral("cmdHHHSIDStd"), [](std::size_t row) -> HHBricks::Face {
        if (IsMarked(row)) return {StateIcon("Hotsync16-256.ico"), msg::lblSyncOK, false};
        return {{}, msg::lblNotSynced, true};
    });
}

void frmMain1::GetHHBricksInst() {
    TraceEvent("frmMain1:GetHHBricksInst");
    Registry registry;
    GetHHStatusInst(registry);
    DrawBricks(QStringLiteral("cmdHHHSIDInst"), [](std::size_t row) -> HHBricks::Face {
        if (row < Global.HHStatusInst.size() && !Global.HHStatusInst[row].empty())
            return {StateIcon("Hotsync16-256.ico"), msg::lblSyncOK, false};
        return {{}, msg::lblNotSynced, false};
    });
}

void frmMain1::cmdHHHSID_Click(int index) {
    TraceEvent("frmMain1:cmdHHHSID_Click");
    if (unattended_->InSession()) return;
    const std::string id = bricks_->ID(index);
    std::optional<StatusDetails> details;
    try {
        details = ReadStatusDetails(id);
    } catch (const RunTimeFailure& failure) {
        return Tell(Lines(msg::FileError, Text::Path(std::string_view(failure.what()))), Icon::Stop);
    }
    if (!details) return Tell(msg::NoStatusDetails, Icon::Information);
    auto& form = The<frmHHStatus>();
    form.Fill(id, *details);
    form.Show(ShowMode::Modal);
}

void frmMain1::cmdHHHSIDStd_Click(int index) {
    TraceEvent("frmMain1:cmdHHHSIDStd_Click");
    if (IsMarked(static_cast<std::size_t>(index))) return;
    const std::string id = bricks_->ID(index);
    UnloadForms();
    ClearViewFlags();
    Global.View[ViewLink] = true;
    // An editor that has just been closed may have put the table in another order.
    const int place = bricks_->IndexOf(id, index);
    Global.LinkRecordToShow = place != 0 ? place : index;
    if (place == 0) return;
    The<frmChgLink>().Show();
}

void frmMain1::cmdReset_Click() {
    TraceEvent("frmMain1:cmdReset_Click");
    if (!Global.TheOperator->Ask({msg::ResetQuestion, msg::Yes, msg::No, {}})) return;
    Global.LastReset = Now();
    ClearHHStatus();
    if (!WithStatusFile(UpdateHHStatus)) return;
    GetHHBricksStd();
    GetPCTotals();
}

// ---- recent uploads ----

void frmMain1::SetUpTotalsGrid() {
    // Each column has the width of what stands in it: the names are not to pay for large numbers.
    ShowUploads({});
    FGTot->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
}

void frmMain1::ShowUploads(std::vector<std::vector<Text>> rows) {
    std::vector<GridHeading> headings{{msg::FGTotID, SortKind::Text},
                                      {msg::FGTotDateTime, SortKind::Date},
                                      {msg::FGTotOrders, SortKind::Number},
                                      {msg::FGTotLines, SortKind::Number},
                                      {msg::FGTotDollars, SortKind::Number}};
    FGTot->SetContent(std::make_unique<ListGrid>(std::move(headings), std::move(rows)));
}

void frmMain1::GetPCTotals() {
    newestUpload_.reset();
    std::vector<std::vector<Text>> rows;
    for (const UploadRow& row : ::GetPCTotals()) {
        if (rows.empty()) newestUpload_ = row;
        std::vector<Text> cells;
        for (const std::string* cell :
             {&row.HotSyncID, &row.DateTime, &row.Orders, &row.Lines, &row.Dollars}) {
            cells.push_back(Text::Value(std::string_view(*cell)));
        }
        rows.push_back(std::move(cells));
    }
    lblNoUploads->setVisible(rows.empty());
    FGTot->setVisible(!rows.empty());
    ShowUploads(std::move(rows));
    Global.RefreshTotals = false;
}

void frmMain1::Form_GotFocus() {
    // As large a window as the screen has room for: the numbers of a larger screen stay.
    if (!std::exchange(stands_, true)) restored_ = QRect(pos(), size());
    if (!Global.RefreshTotals) return;
    try {
        GetPCTotals();
    } catch (const RunTimeFailure& failure) {
        if (!Global.UnattendedActive) throw;
        // Nobody may be there to answer a box, and handhelds are to be served.
        TraceEvent(std::string("frmMain1:Form_GotFocus ") + failure.what());
    }
}

// ---- the HotSync Manager's window ----

void frmMain1::ShowMatrix(bool shown) {
    picMatrix->setVisible(shown);
    FGTot->setVisible(shown && FGTot->model()->rowCount() > 0);
}

void frmMain1::Timer2_Timer() {
    if (Global.HSDisplayHeld) return;
    auto window = FindWindow(QString::fromLatin1(ProgressWindow));
    if (!window) return;
    ShowMatrix(false);
    SetHSWindow(*window);
    Timer2->stop();
    Timer3->start();
}

void frmMain1::Timer3_Timer() {
    if (FindWindow(QString::fromLatin1(ProgressWindow))) return;
    ShowMatrix(true);
    for (const std::string& name : RenameImages(Global.ImagesPath))
        TraceEvent("frmMain1:Timer3_Timer cannot rename " + name);
    Global.HSDisplayHeld = false;
    Timer3->stop();
    Timer2->start();
}

/// Places the window over the space of the recent uploads: above the main screen, and not above all others.
void frmMain1::SetHSWindow(FoundWindow& window) {
    TraceEvent("frmMain1:SetHSWindow");
    if (isMinimized()) return; // there is no space of it on the screen
    const QRect space(picMatrix->mapToGlobal(QPoint(0, 0)), picMatrix->size());
    if (window.Placement() == space) return;
    for (const bool topmost : {true, false}) window.SetPlacement(space, topmost);
}

// ---- tools ----

void frmMain1::ShowPage(int page) {
    picRemoteSync->setCurrentIndex(page);
    lblRemoteSync->setText(ToQt(Text(PageTitles[page])));
    imgTools->setPixmap(Picture(PagePictures[page]).pixmap(20, 20));
    imgToolsHelp->setProperty("HelpTopic", picRemoteSync->currentWidget()->property("HelpTopic"));
    if (page == PageSummary) RefreshRecordCounts();
}

void frmMain1::lblPrev_Click() {
    TraceEvent("frmMain1:lblPrev_Click");
    ShowPage((picRemoteSync->currentIndex() + 1) % Pages);
}

void frmMain1::lblNext_Click() {
    TraceEvent("frmMain1:lblNext_Click");
    ShowPage((picRemoteSync->currentIndex() + Pages - 1) % Pages);
}

/// A table that cannot be read has no count, and is told of to who looks at the counts: what has called this
/// is done, whatever has become of another table.
void frmMain1::RefreshRecordCounts() {
    TraceEvent("basCommon:RefreshRecordCounts");
    const std::pair<QLabel*, const char*> counts[] = {
        {lblSysCust1, "ZUKCUST.DBF"}, {lblSysItems1, "ZUKITEM.DBF"}, {lblSysOrders1, "ZUKORHDR.DBF"}};
    Text unread;
    for (const auto& [label, table] : counts) {
        label->clear();
        try {
            label->setText(ToQt(std::string_view(CountOf(table))));
        } catch (const RunTimeFailure& failure) {
            TraceEvent(std::string("basCommon:RefreshRecordCounts ") + failure.what());
            const Text reason = Text::Path(std::string_view(failure.what()));
            unread = unread.IsEmpty() ? reason : Lines(unread, reason);
        }
    }
    if (!unread.IsEmpty() && picRemoteSync->currentIndex() == PageSummary)
        Tell(Lines(msg::FileError, unread), Icon::Warning);
}

// ---- unattended mode ----

void frmMain1::lblUA_Click() {
    TraceEvent("frmMain1:lblUA_Click");
    UnloadForms();
    for (std::string& mark : Global.HHStatusStd) mark.clear();
    if (!WithStatusFile(UpdateHHStatus)) return;
    GetHHBricksStd();
    ChooseUnattended();
}

void frmMain1::ChooseUnattended() {
    if (NamesWithExtension(Global.UnattendedTemplates, UnattendedExtension).empty())
        return Tell(msg::NoUnattendedTemplates, Icon::Information);
    Global.QCHotsyncPending = true;
    The<frmQBRemote>().Show();
}

void frmMain1::mnuRemoteSync_Click() {
    TraceEvent("frmMain1:mnuRemoteSync_Click");
    UnloadForms();
    if (Global.RemoteSyncSettings.empty()) return ChooseUnattended();
    The<frmRemoteSync>().Show();
}

void frmMain1::cmdStopRemoteSync_Click() {
    TraceEvent("frmMain1:cmdStopRemoteSync_Click");
    StopUnattended();
}

void frmMain1::LoadActiveRemoteSync() {
    TraceEvent("frmMain1:LoadActiveRemoteSync");
    unattended_->ShowArmed();
    GetHHBricks();
}

void frmMain1::LoadInactiveRemoteSync() {
    TraceEvent("frmMain1:LoadInactiveRemoteSync");
    stopAfterSession_ = false;
    unattended_->ShowIdle();
    ShowPage(PageTools);
    if (operating_) lblUA->setFocus();
}

void frmMain1::ShowSession(const std::string& user) {
    unattended_->ShowSession(user);
}

void frmMain1::ShowPhase(SyncPhaseImage phase, PhaseLook look) {
    unattended_->ShowPhase(phase, look);
}

void frmMain1::ShowWaiting() {
    unattended_->ShowWaiting();
}

void frmMain1::ShowUnattendedOff() {
    unattended_->ShowNotice(msg::UnattendedIsOff);
    unattended_->StopWaiting();
    if (auto* remote = IfLoaded<frmRemoteSync>()) remote->ShowMessage(msg::UnattendedIsOff);
}

void frmMain1::StopAfterSession(const Text& message) {
    stopAfterSession_ = true;
    unattended_->ShowNotice(message);
    cmdStopRemoteSync->setEnabled(false);
    if (auto* remote = IfLoaded<frmRemoteSync>()) remote->ShowStopping(message);
}

void frmMain1::SessionIsOver() {
    if (closeAfterSession_) return Unload();
    if (stopAfterSession_) StopUnattended();
}

#pragma once

#include "core/Dates.h"
#include "core/Disk.h"
#include "core/FileNumbers.h"
#include "core/Trace.h"
#include "core/UploadRun.h"

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

class HTMLHelp;
class ManagerDesk;
class Operator;
class SFrmAX40;

/// What `frmProgress` does when it is loaded, in the order in which it looks.
enum class ProgressFlag {
    Export,
    QualCheck,
    UploadAdd,
    UploadReplace,
    Clear,
    Clear2,
    ImportReplace,
    ImportAdd,
    Import2Replace,
    Import2Add,
    Restore
};
inline constexpr std::size_t ProgressFlags = 11;

/// The tables that the browser can show, in the order in which it looks for the one that was chosen.
enum ViewFlag {
    ViewOrHdr,
    ViewOrLin,
    ViewOrHdrAudt,
    ViewOrLinAudt,
    ViewAudHH,
    ViewCompany,
    ViewPrinter,
    ViewSetup,
    ViewCust,
    ViewItem,
    ViewBarIn,
    ViewTotals,
    ViewSTax,
    ViewPay,
    ViewLink,
    ViewPRN,
    ViewRestore ///< no table: the backups from which tables can be had back
};
inline constexpr std::size_t ViewFlags = 17;

/// What a session is to do with tables: nothing, or what a template says. A session also knows what it does
/// with any other number, which no screen and no settings file gives it.
class Selection {
public:
    constexpr Selection(bool byTemplate = false) : value_(byTemplate ? std::int16_t{-1} : std::int16_t{0}) {}
    explicit constexpr Selection(std::int16_t value) : value_(value) {}

    constexpr explicit operator bool() const { return value_ != 0; }
    constexpr bool ByTemplate() const { return value_ == -1; }
    bool operator==(const Selection&) const = default;

private:
    std::int16_t value_;
};

/// All state of the process that outlives a routine. Nothing else in the program is global; a test
/// starts with a fresh one.
struct Globals {
    // The machine under it.
    Disk* TheDisk = &NativeDisk();
    Operator* TheOperator = nullptr; ///< set by the program, or by a test's script, before any form loads
    bool InstantPauses = false;      ///< short pauses end at once
    bool Ending = false;             ///< the process is on its way out; every wait ends
    int ExitCode = 0;                ///< once Ending is set
    DateTime (*Clock)() = nullptr;   ///< in place of the system's clock when set; see Now
    std::function<std::unique_ptr<SFrmAX40>()> MakeSFrmAX40; ///< in place of the platform's; see NewSFrmAX40
    HTMLHelp* TheHelp = nullptr; ///< the help of the session: set by the program before any form loads
    ManagerDesk* TheManagerDesk = nullptr; ///< in the HotSync Manager: set before any of its forms loads
    FileNumbers Files;
    TraceRing Events;

    // Texts of a translation that stand in place of the built-in ones, by number.
    struct Replacement {
        std::string Words; ///< UTF-8
        char Mnemonic = 0;
    };
    std::map<std::uint16_t, Replacement> Replacements;

    // Paths, each with a trailing separator, empty until start-up has set them.
    std::string AppPath, InstallPath, GraphicsPath, DBFPath, ImagesPath, HHTotalsPath, DBFEmptyPath;
    std::string DataInPath, DataOutPath, BackupPath, UpdatesPath, TemplatesPath;
    std::string ImportTemplates, ExportTemplates, DownloadTemplates, UploadTemplates, ClearPCTemplates;
    std::string QuickButtonTemplates, UnattendedTemplates;
    std::string IniFile;

    // Settings, as in ZUKTramble.ini.
    bool PurgeBackup = true;
    std::int16_t PurgeDays = 7;
    std::string RemoteSyncSettings;
    Selection RemoteSelect; ///< what a session downloads
    std::string RemoteSelSettings;
    bool RemoteClearSelect = false;
    std::string RemoteClearSettings;
    Selection UploadSelect; ///< what a session uploads
    std::string UploadSelSettings;
    bool UpdateDemoTemplates = true;
    std::int16_t WindowState = 0; ///< 0 normal, 1 minimised, 2 maximised
    std::int32_t MainTop = 0, MainLeft = 0, MainHeight = 0, MainWidth = 0; ///< twips
    DateTime LastReset;                                                    ///< zero: never, or not read yet

    // The company and the handheld application.
    std::string CreatorID;
    std::string CompanyName; ///< field 1 of the company table's first record, trimmed

    // Totals of the order tables; see maintenance/Totals.h.
    std::int32_t CurHeaders = 0, CurLines = 0;
    double CurDollars = 0;
    std::int32_t OldOrderCount = 0, OldLineCount = 0;
    double OldLineTotal = 0;
    std::string HHLastOrder, CurrentHotSyncID; ///< of the handheld in session or just synchronised
    bool UploadClosing = false;                ///< an upload has added orders, and the totals take them in
    bool TotalsBusy = false;                   ///< they are being taken in by an unattended session
    DateTime BackupTime;     ///< the moment of the last MakeBackup; zero once a totals event has taken it
    std::string BackupEvent; ///< the event that it was made for
    std::string BackupFault; ///< what stopped the last MakeBackup; empty when it was made
    /// What an upload moves, as its template or its screen says; backups take the latter two tables too.
    bool BackupOrders = false, BackupAudits = false, BackupHHTotals = false;
    bool BackupCustomers = false, BackupItems = false;
    bool RefreshTotals = false; ///< the main screen's totals are out of date

    // Handhelds, parallel arrays whose entry 0 is not used; see sync/Status.h.
    std::int32_t HHCount = 0;
    std::vector<std::string> HHSyncID{""}, HHStatus{""}, HHStatusStd{""};
    std::vector<std::string> HHStatusInst{""}, HHStatusDT{""}, HHStatusType{""};

    // Quality Check; see quality/forms/QualityCheck.h.
    bool QCCheckAll = false;       ///< several checks run as one: none of them shows a result
    bool QCAutoRun = false;        ///< the Configurator checks everything as soon as it has loaded
    bool QCWaiting = false;        ///< a caller waits for the end of the run
    bool QCFatalFound = false;     ///< a problem blocks a download
    bool QCHotsyncPending = false; ///< an unattended HotSync is being started
    bool QCViewMode = false;       ///< a screen is open on behalf of the report
    std::string QCViewRecords;     ///< then: numbers of the faulty records, or the name of one template
    std::string QCViewField;       ///< the field that is faulty in them
    std::string QCViewSeverity;    ///< "Fatal" or "Warn"

    // The session of a handheld; see sync/MainSession.h.
    bool UnattendedActive = false;            ///< unattended mode is armed: sessions are served
    bool HHInstallActive = false;             ///< the handheld installer owns the session
    bool InstallSession = false;              ///< it answers the statuses of its control
    bool MainSyncLoaded = false;              ///< `frmMainSync` is loaded
    bool RemoteFormLoaded = false;            ///< `frmRemoteSync` is loaded
    std::string HSUserName;                   ///< HotSync user of the handheld in session
    std::string HSMachID, HSSerial, HSSFUser; ///< from the handheld's own Links table
    std::string HSLastOrderFull;              ///< its machine id and last order number, joined
    std::string LastSyncedUser;               ///< of the last session that reached its end
    std::string HHUserDir;                    ///< that handheld's directory under HHTotalsPath
    UploadRun SessionRun;      ///< what the merge has to do while `frmMainSync` is loaded: set before it
    UploadRun UploadScreenRun; ///< and while it is not: set by `frmUploadSelect`
    std::vector<std::string> FailedMerges; ///< safety copies, by file name, that are needed still

    // The HotSync Manager, as its controls and SFrmUt40 know it.
    std::string LastSessionUser;         ///< whose session has begun last; empty before the first one
    std::uint32_t LastSessionUserID = 0; ///< and that user's id
    std::vector<std::pair<std::string, std::string>> CommandQueue; ///< direction and path; see SFrmUt40.h
    std::string ManagerThatFailed; ///< the manager's program that could not be started

    // Flags by which forms talk to each other.
    bool MessageAnswer = false;
    bool TemplateEditMode = false; ///< a screen is opened to keep its templates, and not to do its work
    std::string TemplateEditKind;  ///< in that mode: only templates of this extension; empty for all
    std::array<bool, ProgressFlags> Progress{};
    std::array<bool, ViewFlags> View{}; ///< the table that is shown; see views/TableViews.h
    std::string ViewFolder; ///< of tables that are shown and cannot be changed, as a backup's; empty: the
                            ///< tables directory
    std::int32_t SelectedRow = 0;  ///< number of the record that is chosen in it; 0 none
    bool SetupOnly = false;        ///< `frmChSetup` reads its table into the two below, and shows nothing
    std::string SearchCustomers;   ///< field from which a customer's search value comes, as SU_SRCHCUS has it
    std::string SearchItems;       ///< and an item's, as SU_SRCHITM
    std::int16_t LinesPerPage = 0; ///< of printed text reports, as LINEMAX of the print settings has it
    std::string OldTable, NewTable; ///< paths of the transfer between two structures of a table
    bool CopySingleTable = false;   ///< `frmCopyDBF` makes that one transfer, and no version update
    bool UpdateCancelled = false;   ///< the operator does not want the update of which `frmUpdateMsg` told
    bool FromConfigurator = false;  ///< a screen is open on behalf of the Configurator, and returns there
    std::int32_t CurrentNote = 0;   ///< number of the note that `frmNotes` opens
    bool NewNote = false;           ///< it is a new one, and stands in no file yet
    std::string
        StandInFolder; ///< in the stand-in handheld's window: its handheld's, set before its form loads
    std::string
        StandInDesktop; ///< and the HotSync Manager that it presses HotSync at first: HOST or HOST:PORT
    std::int32_t LinkRecordToShow = 0; ///< record of the Links table that its editor opens at; 0 the first
    std::string NewHSUser;             ///< HotSync user that the operator chose to add
    bool ManualUploadActive = false;   ///< a screen waits for the handheld in the cradle
    bool HSUsersUpdated = false;       ///< the conduit was registered for all HotSync users in this run
    bool HSDisplayHeld = false;        ///< the main screen leaves the HotSync Manager's window where it is
    bool UnloadingForms = false;
    bool TemporaryDirectory = false; ///< "ZUKTemp" was made and is removed by UnloadForms
};

extern Globals Global;

/// The present date and time of this place, to the second; `Global.Clock` when that is set.
DateTime Now();

/// The present day, midnight.
DateTime Today();

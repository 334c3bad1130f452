// A picture of every screen of the program, in the light look and in the dark one:
//
//   pictures_of_screens BUILD FOLDER [TEXTS]
//   pictures_of_screens BUILD --pages
//   pictures_of_screens BUILD --look [TEXTS]
//   pictures_of_screens BUILD --sheets FOLDER
//
// The first writes FOLDER/<form>-light.png and FOLDER/<form>-dark.png, with the demonstration day's files in
// the office that the screens show; and more of a form that has several faces. FOLDER/Report-*.pdf are the
// reports as a printer would have them. TEXTS is a translation, a file of rows as in Messages.tsv, or the
// word "stretched" for the built-in texts, each a third longer. At another scale: set QT_SCALE_FACTOR before,
// or QT_FONT_DPI for larger letters alone. The second, in the folder of the sources, makes anew the pictures
// that the help and README.md refer to, in the light look. The third takes no pictures: it looks for what is
// cut, lies upon another, cannot be reached or read (LayoutCheck.h), says so, and fails when there is
// something. The dark look is gone through with the built-in texts only. The fourth lays the pictures in the
// folders below FOLDER side by side (ContactSheet.h).

#include "AllForms.h"
#include "ContactSheet.h"
#include "FilledTables.h"
#include "LayoutCheck.h"
#include "OfficeForDay.h"
#include "PagePictures.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "exchange/Activity.h"
#include "exchange/forms/QuickButtonForm.h"
#include "handheld/Commands.h"
#include "help/forms/QtHelp.h"
#include "installation/InstallList.h"
#include "maintenance/Backup.h"
#include "platform/Convert.h"
#include "platform/GridView.h"
#include "platform/Look.h"
#include "platform/LookupBox.h"
#include "platform/Printing.h"
#include "platform/Registry.h"
#include "sync/SFrmAX40.h"
#include "sync/TableTemplates.h"
#include "sync/UnattendedSettings.h"
#include "sync/forms/StatusFile.h"
#include "sync/forms/TableSelectForm.h"
#include "sync/forms/UnattendedMode.h"
#include "tools/Notes.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPainterPath>
#include <QProcess>
#include <QScreen>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <cstdio>
#include <sstream>
#include <utility>
#include <vector>

namespace {

/// Nobody sits before these screens: each question gets its harmless answer.
class Nobody final : public Operator {
public:
    Answer MsgBox(const Text&, Icon, Buttons buttons) override {
        return buttons == Buttons::Ok ? Answer::Ok : RunsActivities ? Answer::Yes : Answer::No;
    }
    std::optional<std::string> InputBox(const Text&, const std::string&) override { return std::nullopt; }
    std::optional<std::string> OpenFile(const FileQuestion&) override { return std::nullopt; }
    bool Ask(const Question&) override { return false; }
    std::unique_ptr<Printer> PrinterDialog(const Text& document) override {
        if (PrintsTo.empty()) return nullptr;
        std::printf("%s\n", PrintsTo.c_str());
        return NewPdfPrinter(PrintsTo, UsualPaper(), ToQt(document));
    }
    bool OpenLink(std::string_view) override { return false; }
    void Beep() override {}

    bool RunsActivities = false;
    std::string PrintsTo; ///< path of a PDF file, instead of a dialog that is given up
};

/// A HotSync Manager with two users, and no handheld.
class TwoUsers final : public SFrmAX40 {
public:
    bool Enabled() const override { return enabled_; }
    void SetEnabled(bool enabled) override { enabled_ = enabled; }
    std::string UserName() const override { return {}; }
    std::int32_t UserID() const override { return 0; }
    std::int32_t CreatorID() const override { return 0; }
    std::string HotSyncUser(int index) const override {
        return index == 0 ? "Anna Berg" : index == 1 ? "Ben Okafor" : "";
    }
    // Nothing is synchronised for a picture.
    void QueueUpload(std::string_view, const TransferSettings&) override { throw RunTimeFailure(5); }
    void QueueDownload(std::string_view, const TransferSettings&) override { throw RunTimeFailure(5); }
    bool EndedWell(std::string_view) const override { return false; }
    void AddInstall(std::string_view, std::string_view) override { throw RunTimeFailure(5); }

private:
    bool enabled_ = false;
};

/// A HotSync Manager with users and a log in a folder of its own, and no lines to anybody.
class SomeManager final : public ManagerDesk {
public:
    explicit SomeManager(const std::string& folder) : folder_(folder), users_(folder), log_(folder) {}

    HotSyncUsers& Users() override { return users_; }
    SessionLog& Log() override { return log_; }
    std::optional<std::uint32_t> UserInSession() const override { return std::nullopt; }
    ListeningState Listening() const override { return State; }
    const ManagerSettings& Settings() const override { return settings_; }
    void TakeSettings(const ManagerSettings& settings) override { settings_ = settings; }
    void OpenStandIn(const HotSyncUser&) override {}
    void End() override {}

    /// What an office has after a morning.
    void Fill() {
        const auto before = std::exchange(Global.Clock, [] { return DateTime{2026, 11, 21, 8, 30, 5}; });
        // A new user gets a random id, and each picture would be another one.
        WriteWholeFile(AddBackslash(folder_) + "Users.txt",
                       "1804289383\tAnna Berg\t2026-11-21 08:31:40\tcomplete\n"
                       "846930886\tBen Okafor\t2026-11-20 17:02:11\tincomplete\n"
                       "1681692777\tChlo\xC3\xA9 Martin\tnever\tcomplete\n");
        users_.Load();
        log_.Write("Waiting for handhelds at 192.168.1.20, port 14238");
        log_.Write("Anna Berg: session from 192.168.1.57");
        log_.Write("Anna Berg: ZUKCUST to the handheld, 1204 rows");
        log_.Write("Anna Berg: ended well");
        Global.Clock = before;
    }

    ListeningState State{"192.168.1.20", 14238, {}};

private:
    std::string folder_;
    HotSyncUsers users_;
    SessionLog log_;
    ManagerSettings settings_;
};

/// Fills tables of an office with rows: each with a line of field names above its records.
void FillTables(const QString& build, const QString& office,
                const std::vector<std::pair<QString, QByteArray>>& tables) {
    const QTemporaryDir folder;
    QStringList arguments{office};
    for (const auto& [name, content] : tables) {
        QFile file(folder.filePath(name + QStringLiteral(".tsv")));
        if (!file.open(QIODevice::WriteOnly)) throw OfficeFailure("cannot write " + name.toStdString());
        file.write(content);
        arguments << file.fileName();
    }
    QProcess::execute(build + QStringLiteral("/filltables"), arguments);
}

/// Tables with a few handhelds and uploads, so that the main screen has something to show.
void FillOffice(const QString& build, const OfficeForDay& office) {
    const QByteArray links = "LK_HOTSYNC\tLK_MACH_ID\nAnna Berg\tA001\nBen Okafor\tB002\n"
                             "Chloé Martin\tC003\nDiego Ruiz\tD004\nEmi Sato\tE005\nFrank Weiss\tF006\n";
    QByteArray totals = "TP_NUMHEAD\tTP_NUMLINE\tTP_DOL_LIN\tTP_CURHEAD\tTP_CURLINE\tTP_CURDOL\tTP_EVENT\t"
                        "TP_DATETIM\tTP_HOTSYNC\tTP_MACHINE\n";
    // The newest first: each upload adds to what was there.
    const QByteArray uploads[] = {
        "3\t12\t431.5\t18\t90\t4315\tUPLOAD-ADD\t2026-11-21 17:46:05\tAnna Berg\tA001",
        "4\t19\t863\t15\t78\t3883.5\tUPLOAD-ADD\t2026-11-21 17:43:40\tBen Okafor\tB002",
        "5\t26\t1294.5\t11\t59\t3020.5\tUPLOAD-ADD\t2026-11-21 17:31:12\tChloé Martin\tC003",
        "6\t33\t1726\t6\t33\t1726\tUPLOAD-ADD\t2026-11-21 17:22:58\tDiego Ruiz\tD004"};
    for (const QByteArray& upload : uploads) totals += upload + '\n';
    FillTables(
        build, office.Path(QString()),
        {{QStringLiteral("ZUKLINK"), links},
         {QStringLiteral("ZUKTOTALPC"), totals},
         {QStringLiteral("ZUKCUST"),
          "C_SEARCH\tC_CODE\tC_NAME\tC_CONTACT\tC_PHONE\tC_ADDRESS1\tC_CITY\tC_STATE\tC_ZIP\tC_PAYTERMS\tC_"
          "STCODE\n"
          "A100\tA100\tAcme Hardware\tChloé Martin\t212-555-0142\t14 Mill Lane\tAlbany\tNew York\t12207\t"
          "30 days net\tNJ\nB200\tB200\tBolt & Sons\t\t\t\t\t\t\t\tNY\n"},
         {QStringLiteral("ZUKITEM"), "I_SEARCH\tI_ITEMCODE\tI_DESC1\tI_UM\tI_PRICE\tI_BARCODE\n"
                                     "HAMMER\tH1\tClaw hammer\tEach\t12.50\t4006381333931\n"},
         {QStringLiteral("ZUKSTAX"), "ST_CODE\tST_DESC\tST_RATE\nNY\tNew York State\t8.25\n"}});
}

/// What the handheld is told once, and an order with a signature.
void FillSettings(const QString& build, const OfficeForDay& office) {
    FillTables(
        build, office.Path(QString()),
        {{QStringLiteral("ZUKCOMP"), "COMPANY\tLINE2\tLINE3\tLINE4\tFOOTNOTE1\nNorth Star Supply Co.\t"
                                     "12 Harbour Road\tPortland, ME 04101\tTel. 207-555-0188\t"
                                     "Goods remain our property until they are paid for in full.\n"},
         {QStringLiteral("ZUKPRINT"),
          "LINEMAX\tPRINTER\tCONTFORM\tLINEFEED\tBAUDRATE\tSTDLINE2\tLOGO\tSTDSTYLE\t"
          "COMPRESCHR\tRESETCHR\n66\tBPM\tNO\t4\t9600\tBarcode\tNO\tFixed\t15\t18\n"},
         {QStringLiteral("ZUKSETUP"), "SU_HHBAKUP\tSU_SRCHCUS\tSU_SRCHITM\nREPLACE\tCompany\tDescription\n"},
         {QStringLiteral("ZUKPAY"),
          "PAY_CODE\tPAY_REF\tPAY_CDESC\tPAY_CDET\nCARD\tYES\tVisa, Mastercard\tYES\n"
          "CASH\tNO\t\tNO\n"},
         {QStringLiteral("ZUKORHDR"), "H_ORDCODE\tH_CUSTCODE\tH_BILLNAME\tH_CUSTFONE\tH_ORDDATE\n"
                                      "A001000124\tA100\tAcme Hardware\t212-555-0142\t20261121\n"
                                      "A001000125\tB200\tBolt & Sons\t\t20261121\n"}});
    QImage ink(160, 48, QImage::Format_RGB32);
    ink.fill(Qt::white);
    QPainterPath stroke(QPointF(8, 34));
    for (int letter = 0; letter < 9; ++letter) {
        const double x = 8 + letter * 16;
        stroke.cubicTo(x + 4, 2, x + 12, letter % 3 == 0 ? 2 : 20, x + 6, 36);
        stroke.quadTo(x + 10, 44, x + 16, 34);
    }
    QPainter painter(&ink);
    painter.drawPath(stroke);
    painter.end();
    WriteWholeFile(PathFromQt(office.Path(QStringLiteral("UpdateReadMe.rtf"))),
                   "{\\rtf1{\\b What is new}\\par\\par Customer names may be {\\i 40} characters long.\\par "
                   "The payments table has a field more.\\par}");
    const QString images = office.Path(QStringLiteral("DBFFiles/Images/"));
    QDir().mkpath(images);
    const QImage dots = ink.convertToFormat(QImage::Format_Mono, Qt::ThresholdDither);
    if (!dots.save(images + QStringLiteral("A001000124.bmp"))) throw OfficeFailure("no picture of ink");
}

/// Customers and items with faults in them.
void BreakTables(const QString& build, const OfficeForDay& office) {
    FillTables(
        build, office.Path(QString()),
        {{QStringLiteral("ZUKCUST"),
          "C_SEARCH\tC_CODE\tC_NAME\tC_STCODE\n\tA100\tAcme Hardware\tNY\nBOLT\tB200\tBolt & Sons\t\n"
          "CRANE CO\tC-300\tCrane Co\tNJ\nDELTA\tD400\tDelta Tools\t\nEAST\tD400\tEast Side Supply\t\n"},
         {QStringLiteral("ZUKITEM"),
          "I_SEARCH\tI_ITEMCODE\tI_DESC1\tI_PRICE\tI_BARCODE\nHAMMER\tH1\tClaw hammer\t12.50\t4006381333931\n"
          "HAMMER\tH2\tSledge hammer\t49.00\t\nNAILS\tN-10\tNails, 10 mm\t1.2X\t\nSAW\tS1\tHand "
          "saw\t0.00\t\n"}});
}

void Settle() {
    for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
}

/// Set when only the pictures for pages are wanted.
PagePictures* OnlyForPages = nullptr;

/// What is known and stands: a star is too thin for its colour to be measured, and a customer's code, name
/// and city are wider than any list at twice the size.
bool IsKnown(const QString& screen, const QString& problem) {
    return (screen == QLatin1String("frmExport1-calculate") &&
            problem.startsWith(QLatin1String("cmdMultiply has"))) ||
           (screen == QLatin1String("frmStandInOrder-lines") &&
            problem.startsWith(QLatin1String("cboCustomer cuts")));
}

/// Screens so full that with texts a third longer they scroll on a small screen.
bool IsWide(const QString& screen) {
    return screen.startsWith(QLatin1String("frmConfig")) || screen == QLatin1String("frmExport1-calculate");
}

/// Looks at the screens in place of a person, instead of taking pictures of them.
struct Looker {
    bool MayScroll = false; ///< with large letters
    int Looks = 0, Problems = 0;

    void Look(QWidget& window, const QString& name) {
        ++Looks;
        QStringList problems;
        if (!MayScroll) problems << ContrastProblems(window); // of larger letters the colours are the same
        if (!IsDarkLook()) problems << LayoutProblems(window);
        if (!IsDarkLook() && window.isWindow()) problems << KeyProblems(window);
        problems.removeIf([&](const QString& problem) { return IsKnown(name, problem); });
        if (Scrolls(window) && !MayScroll && !IsWide(name)) problems << QStringLiteral("the window scrolls");
        problems.removeDuplicates();
        for (const QString& problem : problems)
            std::printf("%s%s: %s\n", qPrintable(name), IsDarkLook() ? " (dark)" : "", qPrintable(problem));
        Problems += static_cast<int>(problems.size());
    }
};
Looker* OnlyLook = nullptr;

void Save(QWidget& window, const QString& folder, const QString& name) {
    window.show();
    Settle();
    if (OnlyForPages != nullptr) return OnlyForPages->Take(window, name);
    if (OnlyLook != nullptr) return OnlyLook->Look(window, name);
    const QString path = folder + QLatin1Char('/') + name + (IsDarkLook() ? "-dark.png" : "-light.png");
    if (!window.grab().save(path)) throw OfficeFailure("cannot write " + path.toStdString());
    std::printf("%s\n", path.toLocal8Bit().constData());
}

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
    if (dynamic_cast<TableSelectForm*>(&form)) Press(form, "cmdSelectAll");
    if (dynamic_cast<frmChgLink*>(&form)) {
        form.Window()
            .findChild<QLineEdit*>(QStringLiteral("txtHotSync"))
            ->setText(QStringLiteral("ben okafor"));
    }
}

/// Settings of unattended mode, and what the last session of a handheld has left.
void GivenUnattended() {
    WriteTemplate(Global.UploadTemplates + "All orders.ust", UploadChoice{.Orders = true, .HHTotals = true});
    WriteTemplate(Global.DownloadTemplates + "Orders.dct", ClearChoice{.Orders = true});
    SaveUA(Global.UnattendedTemplates + "Evening.uhs", {false, "", true, "All orders", true, "Orders"});
    Global.RemoteSyncSettings = "Evening";
    MakePath(Global.HHTotalsPath + "Anna Berg");
    const std::string receipt =
        "Receipt of a HotSync\r\n2026-11-21 17:46:05\r\nHandheld: Anna Berg\r\nUnattended session\r\n\r\n"
        "BALANCED\r\n\r\nTransfers:\r\n"
        "  from the handheld  HHTotals/Anna Berg/ZUKLINK.DBF          well\r\n"
        "  from the handheld  ZUKORHDR.DBF                            well\r\n"
        "  from the handheld  ZUKORLIN.DBF                            well\r\n"
        "  from the handheld  HHTotals/Anna Berg/ZUKAudHH.dbf         well\r\n\r\n"
        "                            Orders     Lines           Money\r\n"
        "The handheld states              3        12          431.50\r\n"
        "Arrived                          3        12          431.50\r\n"
        "The PC held before              15        78         3883.50\r\n"
        "The PC holds now                18        90         4315.00\r\n\r\n"
        "Orders that arrived:\r\n  A00100000126, A00100000127, A00100000128\r\n";
    WriteWholeFile(Global.HHTotalsPath + "Anna Berg/Receipt 2026-11-21 174605.txt", receipt);
}

/// An activity that clears tables.
void GivenClearing() {
    ClearPlan plan;
    for (const ClearGroup group : {ClearGroup::OrHdr, ClearGroup::AudtH, ClearGroup::AudHH})
        plan.Choose(group);
    WriteTemplate(Global.ClearPCTemplates + "Orders and audits.pct", plan);
    Activity activity;
    activity.Rows[0].Template = "Orders and audits.pct";
    WriteActivity(Global.QuickButtonTemplates + "Evening.ctm", activity);
}

/// A few notes, the first of them open on its screen.
void GivenNotes() {
    const struct {
        double Date;
        const char *Process, *Person, *Issue, *Resolved, *Resolution;
    } notes[] = {
        {46346.42, "Import", "Anna Berg", "The price list stops at line 84.", "2026-11-21",
         "A comma in a name. The export of the accounting system now writes quotes."},
        {46347.61, "Unattended Hotsync", "Ben Okafor", "The HotSync broke off in the garage.", "", ""},
        {46347.73, "Barcodes", "Chlo\xE9 Martin", "Two items have the same barcode.", "", ""},
    };
    std::int32_t number = 0;
    for (const auto& [date, process, person, issue, resolved, resolution] : notes)
        WriteNote({++number, date, issue, person, resolved, "1.0.0", process, resolution});
    Global.CurrentNote = 1;
}

/// An upload has just added three orders.
void GivenTotals() {
    Global.CurHeaders = 128;
    Global.CurLines = 1407;
    Global.CurDollars = 48215.75;
    Global.OldOrderCount = 125;
    Global.OldLineCount = 1395;
    Global.OldLineTotal = 47784.25;
    Global.CurrentHotSyncID = "Anna Berg";
    Global.HHLastOrder = "A00100000128";
    Global.UploadClosing = true;
}

/// The quarters of the main screen by themselves, with a handheld of each status.
void Quarters(const QString& folder) {
    auto& main = The<frmMain1>();
    Global.HHStatus = {"", "G", "G", "B", "", "G", ""};
    ShowHHStatus();
    Save(main, folder, QStringLiteral("frmMain1-letters"));
    const QSize usual = main.size();
    main.resize(usual * 7 / 5);
    for (const auto& [quarter, name] : {std::pair{"frame1", "status"},
                                        {"frame2", "uploads"},
                                        {"frame3", "quickbuttons"},
                                        {"frame4", "tools"}})
        Save(*main.findChild<QWidget*>(QLatin1String(quarter)), folder,
             QStringLiteral("frmMain1-") + QLatin1String(name));
    Press(main, "lblNext");
    Save(*main.findChild<QWidget*>(QStringLiteral("frame4")), folder, QStringLiteral("frmMain1-summary"));
    Press(main, "lblPrev");
    main.resize(usual);
    for (std::string& letter : Global.HHStatus) letter.clear();
    ShowHHStatus();
}

/// What is said before the HotSync users are brought up to date.
void UsersQuestion(const QString& folder) {
    auto& question = The<frmMessage>();
    Text words = Lines(msg::UpdateUsersWhy, Lines({}, msg::UpdateUsersSteps));
    for (const MessageId step : {msg::UpdateUsersClose, msg::UpdateUsersRegister, msg::UpdateUsersRestart})
        words = Lines(words, step);
    question.Fill({words, msg::Ok, msg::Cancel, {}, msg::lblUpdateHSUsers});
    Save(question, folder, QStringLiteral("frmMessage-users"));
    question.Unload();
}

/// The other pages of the main screen, screens at work, and a report at its end.
void OtherFaces(Nobody& nobody, const QString& folder) {
    auto& main = The<frmMain1>();
    for (const char* page : {"frmMain1-page2", "frmMain1-quickstart"}) {
        Press(main, "lblNext");
        Save(main, folder, QString::fromLatin1(page));
    }
    auto& convert = The<frmConvert>();
    ChooseFile(convert);
    auto& mapping = The<frmImport1>();
    Save(mapping, folder, QStringLiteral("frmImport1-new"));
    mapping.Unload();
    convert.Unload();
    auto& calculation = The<frmExport1>();
    ChooseSetting(calculation, "DemoOrders");
    Press(calculation, "cmdCalc");
    Save(calculation, folder, QStringLiteral("frmExport1-calculate"));
    calculation.Unload();
    auto& report = The<frmQBImport>();
    Prepare(report);
    nobody.RunsActivities = true;
    Press(report, "cmdOK");
    nobody.RunsActivities = false;
    Save(report, folder, QStringLiteral("frmQBImport-report"));
    report.Unload();
    Global.MakeSFrmAX40 = nullptr;
    auto& nobodyToChoose = The<frmHSID>();
    Save(nobodyToChoose, folder, QStringLiteral("frmHSID-nobody"));
    nobodyToChoose.Unload();
}

/// The main screen and the window of unattended mode between two sessions and in one.
void UnattendedFaces(const QString& folder) {
    auto& main = The<frmMain1>();
    auto& window = The<frmRemoteSync>();
    Save(main, folder, QStringLiteral("frmMain1-armed"));
    main.ShowSession("Anna Berg");
    main.ShowPhase(SyncPhaseImage::Upload, PhaseLook::Queued);
    main.ShowPhase(SyncPhaseImage::Clear, PhaseLook::Queued);
    window.ShowSession("Anna Berg");
    main.StopAfterSession(msg::StopsAfterHotsync);
    Save(main, folder, QStringLiteral("frmMain1-session"));
    Save(window, folder, QStringLiteral("frmRemoteSync-stopping"));
    main.ShowWaiting();
    main.ShowUnattendedOff();
    Save(main, folder, QStringLiteral("frmMain1-off"));
    Save(window, folder, QStringLiteral("frmRemoteSync-off"));
    StopUnattended();
    Save(main, folder, QStringLiteral("frmMain1-stopped"));
}

/// The HotSync Manager while it waits, and without users or an address.
void ManagerFaces(const QString& folder, const std::string& emptyFolder) {
    auto& waiting = The<frmHSProgress>();
    waiting.ShowWaiting({});
    Save(waiting, folder, QStringLiteral("frmHSProgress-waiting"));
    waiting.Unload();
    ManagerDesk* const usual = Global.TheManagerDesk;
    SomeManager empty(emptyFolder);
    empty.State = {"10.0.0.7", 0, "The address is not available"};
    Global.TheManagerDesk = &empty;
    auto& manager = The<frmHSManager>();
    Save(manager, folder, QStringLiteral("frmHSManager-empty"));
    manager.Unload();
    Global.TheManagerDesk = usual;
}

/// A stand-in handheld with all that the build installs on one.
std::string MakeStandIn(const QString& build, const QString& folder) {
    std::string place = AddBackslash(PathFromQt(folder));
    std::vector<std::string> install{place, "install"};
    const QDir files(build + QStringLiteral("/installed/Install"));
    for (const QString& file : files.entryList({QStringLiteral("*.pdb"), QStringLiteral("*.prc")}))
        install.push_back(PathFromQt(files.filePath(file)));
    std::ostringstream out, err;
    for (const auto& words : {std::vector<std::string>{place, "new", "--user", "Demo"}, install}) {
        if (RunCommand(words, {out, err, nullptr, nullptr}) != Outcome::Done) throw OfficeFailure(err.str());
    }
    return place;
}

/// An order of two lines before it is taken; and a handheld on which nothing is installed.
void StandInFaces(const QString& folder, const QString& work) {
    auto& order = The<frmStandInOrder>();
    order.Begin();
    for (const char* const name : {"cboCustomer", "cboItem", "cboItem"}) {
        auto& box = *order.findChild<LookupBox*>(QString::fromLatin1(name));
        box.Stand(box.count() / 3);
        emit box.activated(box.currentIndex());
        if (box.objectName() == QStringLiteral("cboItem")) Press(order, "cmdAdd");
    }
    Save(order, folder, QStringLiteral("frmStandInOrder-lines"));
    order.Unload();
    const std::string usual = std::exchange(Global.StandInFolder, PathFromQt(work) + "/empty/");
    std::ostringstream out, err;
    RunCommand({Global.StandInFolder, "new", "--no-user"}, {out, err, nullptr, nullptr});
    auto& empty = The<frmStandIn>();
    Press(empty, "cmdHotSync"); // nobody waits for it
    Save(empty, folder, QStringLiteral("frmStandIn-empty"));
    empty.Unload();
    Global.StandInFolder = usual;
}

/// The other tabs of the options, and the choice of a file for a template that the Quality Check reports.
void OptionsFaces(const QString& folder) {
    Global.QCViewMode = true;
    Global.QCViewRecords = "DemoItems.itm";
    auto& convert = The<frmConvert>();
    Save(convert, folder, QStringLiteral("frmConvert-repair"));
    convert.Unload();
    Global.QCViewMode = false;
    auto& options = The<frmOptions>();
    options.TurnTo(UnattendedExtension);
    Save(options, folder, QStringLiteral("frmOptions-unattended"));
    options.findChild<QTabWidget*>(QStringLiteral("SSTab1"))->setCurrentIndex(2);
    Press(options, "optDelBackup");
    Save(options, folder, QStringLiteral("frmOptions-backup"));
    options.Unload();
}

/// A preview, which the program waits for, unless a round before this one has ended it.
void PreviewFace(FormBehaviour& form, const QString& folder, const char* name) {
    bool isSaved = false;
    const auto save = [&] {
        if (std::exchange(isSaved, true)) return;
        auto& preview = The<frmPreview>();
        Save(preview, folder, QString::fromLatin1(name));
        Press(preview, "cmdWholePage");
        Save(preview, folder, QString::fromLatin1(name) + QStringLiteral("-whole"));
        preview.Unload();
    };
    QTimer meanwhile;
    meanwhile.callOnTimeout(save);
    meanwhile.start(0);
    Press(form, "cmdPreview");
    save();
}

/// The browser with each kind of table in it.
void BrowserFaces(const QString& folder) {
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
        Save(grid, folder, QStringLiteral("frmViewGrid-") + QString::fromLatin1(name));
        Press(grid, "cmdDataView");
        auto& records = The<frmViewData>();
        Save(records, folder, QStringLiteral("frmViewData-") + QString::fromLatin1(name));
        records.Unload();
    }
    ShowTable(ViewTotals);
    PreviewFace(The<frmViewGrid>(), folder, "frmPreview-totals");
    The<frmViewGrid>().Unload();
}

/// The backups of a day, of which one has lost its tables and one has been changed; and a table that is
/// being put back.
void RestoreFaces(const QString& folder) {
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
    Save(The<frmViewGrid>(), folder, QStringLiteral("frmViewGrid-restore"));
    The<frmViewGrid>().Unload();

    QTimer meanwhile;
    meanwhile.callOnTimeout([&] {
        if (auto* copying = IfLoaded<frmCopyDBF>(); copying != nullptr && copying->isVisible()) {
            Save(*copying, folder, QStringLiteral("frmCopyDBF-table"));
            meanwhile.stop();
        }
    });
    meanwhile.start(0);
    CopyTable(Global.DBFPath + "ZUKCust.dbf", Global.DBFPath + "ZUKCust.dbf");
}

/// The screen of the installs in each of its states.
void InstallFaces(const QString& folder) {
    Registry registry;
    RecordInstall(registry, "Ben Okafor", msg::TypeDemo);
    auto& form = The<frmHHInstall>();
    auto* users = form.findChild<QComboBox*>(QStringLiteral("cboHSUsers"));
    users->setCurrentIndex(0);
    emit users->activated(0);
    Save(form, folder, QStringLiteral("frmHHInstall-chosen"));
    InstallScreen& screen = form;
    const Text anna = Text::Value(std::string_view("Anna Berg"));
    screen.SetActive(msg::ReadyToInstall + anna + msg::ReadyPressHotsync);
    Save(form, folder, QStringLiteral("frmHHInstall-waiting"));
    screen.SetActiveSync({});
    Save(form, folder, QStringLiteral("frmHHInstall-hotsync"));
    screen.SetActiveSync(msg::SecondHotsync);
    Save(form, folder, QStringLiteral("frmHHInstall-second"));
    screen.SetActive(Lines(Words(msg::FilesWaiting, Text::Value(std::int64_t{12})), msg::PressAgain));
    Save(form, folder, QStringLiteral("frmHHInstall-missing"));
    screen.SetInactive();
    form.Unload();
}

/// The window of the help, at the page of a screen, and what its panes find.
void HelpFaces(const QString& build, const QString& folder) {
    QtHelp help;
    help.Help().HHSetHelpFile(PathFromQt(QDir(build).absolutePath()) + "/installed/Tramble_Help.qch");
    help.Help().HHTopicURL = "Payments.htm";
    help.Help().HHDisplayTopicURL();
    auto& window = The<frmHelp>();
    Save(window, folder, QStringLiteral("frmHelp-page"));
    auto* panes = window.findChild<QTabWidget*>(QStringLiteral("tabHelp"));
    panes->setCurrentIndex(1);
    window.findChild<QLineEdit*>(QStringLiteral("txtKeyword"))->setText(QStringLiteral("h"));
    Save(window, folder, QStringLiteral("frmHelp-index"));
    panes->setCurrentIndex(2);
    window.findChild<QLineEdit*>(QStringLiteral("txtWords"))->setText(QStringLiteral("handheld"));
    Press(window, "cmdListTopics");
    const auto* found = window.findChild<QListWidget*>(QStringLiteral("lstFound"));
    for (int k = 0; k < 500 && found->count() == 0; ++k) {
        QThread::msleep(10); // no loop waits once a round has ended the program
        Settle();
    }
    Press(window, "cmdFind");
    Save(window, folder, QStringLiteral("frmHelp-search"));
    help.Close();
}

/// Each report over tables that fill more than a page.
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

/// The report of a check of the imported tables, the Configurator behind it, and what the report's
/// rows lead to.
void CheckFaces(const QString& build, const OfficeForDay& office, const QString& folder) {
    BreakTables(build, office);
    auto& config = The<frmConfig>();
    Press(config, "cmdCheckAll");
    auto& report = The<frmConfigMsg>();
    Save(config, folder, QStringLiteral("frmConfig-checked"));
    Save(report, folder, QStringLiteral("frmConfigMsg-report"));
    PreviewFace(report, folder, "frmPreview-check");
    auto* rows = report.findChild<GridView*>(QStringLiteral("FG1"));
    for (int row = 0; row < rows->model()->rowCount(); ++row) {
        rows->SelectRecord(row + 1);
        if (report.Problems().Row(static_cast<std::size_t>(row)).Field.empty()) continue;
        Press(report, "cmdView");
        auto& grid = The<frmViewGrid>();
        Save(grid, folder, QStringLiteral("frmViewGrid-faulty-%1").arg(row + 1));
        grid.Unload();
    }
    report.Unload();
    config.Unload();
}

template <class F>
void Picture(const QString& folder, const char* name) {
    // The form of the sessions has nothing to show.
    if constexpr (std::is_same_v<F, frmMainSync>) return;
    // Without a file it is empty.
    if constexpr (std::is_same_v<F, frmHelp>) return;
    F& form = The<F>();
    if (form.IsGone()) {
        // A form that does its work while it loads is shown as it stands meanwhile.
        F shell;
        FillCaptions(shell);
        Save(shell, folder, QString::fromLatin1(name));
        return;
    }
    Prepare(form);
    Save(form, folder, QString::fromLatin1(name));
    if constexpr (std::is_same_v<F, frmRemoteSync>)
        StopUnattended();
    else if constexpr (!std::is_same_v<F, frmMain1>)
        form.Unload();
    Settle();
}

/// A screen of 1024 by 768, of which a panel takes 32. With QT_SCALE_FACTOR it has as many dots more, so that
/// as much of each window is seen; a look for faults keeps it at its size.
void UseSmallScreen(const QTemporaryDir& work, bool looks) {
    const double factor = looks ? 1 : std::max(1.0, qEnvironmentVariable("QT_SCALE_FACTOR").toDouble());
    const QString screen = QStringLiteral("{\"screens\":[{\"name\":\"small\",\"x\":0,\"y\":0,\"width\":%1,"
                                          "\"height\":%2,\"dpr\":1}]}")
                               .arg(static_cast<int>(1024 * factor))
                               .arg(static_cast<int>(736 * factor));
    const std::string file = PathFromQt(work.filePath(QStringLiteral("screen.json")));
    WriteWholeFile(file, screen.toStdString());
    qputenv("QT_QPA_PLATFORM", QByteArray::fromStdString("offscreen:configfile=" + file));
}

} // namespace

int main(int argc, char** argv) {
    const QTemporaryDir work;
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        UseSmallScreen(work, argc > 2 && std::string_view(argv[2]) == "--look");
    qputenv("XDG_CONFIG_HOME", work.path().toLocal8Bit());
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setApplicationVersion(QStringLiteral(TRAMBLE_VERSION));
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3 && arguments.size() != 4) {
        std::fputs("pictures_of_screens BUILD FOLDER [TEXTS]\n"
                   "pictures_of_screens BUILD --pages\n"
                   "pictures_of_screens BUILD --look [TEXTS]\n"
                   "pictures_of_screens BUILD --sheets FOLDER\n",
                   stderr);
        return 2;
    }
    Nobody nobody;
    try {
        if (arguments[2] == QLatin1String("--sheets")) {
            std::printf("%d sets of pictures\n", MakeContactSheets(arguments.value(3)));
            return 0;
        }
        const bool forPages = arguments[2] == QLatin1String("--pages");
        const bool looks = arguments[2] == QLatin1String("--look");
        const QString texts = arguments.value(3);
        // With letters or a scale for which a small screen has too little room.
        const QScreen& screen = *QGuiApplication::primaryScreen();
        Looker looker{.MayScroll = screen.logicalDotsPerInch() > 96 || screen.devicePixelRatio() > 1};
        if (looks) OnlyLook = &looker;
        PagePictures pages(QDir::currentPath());
        if (forPages) OnlyForPages = &pages;
        const QString folder = forPages || looks ? QString() : QDir(arguments[2]).absolutePath();
        if (!folder.isEmpty()) QDir().mkpath(folder);
        const OfficeForDay office(arguments[1], work.filePath(QStringLiteral("office")),
                                  QStringLiteral("samples/day"));
        FillOffice(arguments[1], office);
        FillSettings(arguments[1], office);
        const QString own = office.Path(QStringLiteral("Messages.tsv"));
        if (texts == QLatin1String("stretched"))
            WriteStretchedTexts(PathFromQt(own));
        else if (!texts.isEmpty() && !QFile::copy(texts, own))
            throw OfficeFailure("cannot copy " + texts.toStdString());
        SomeManager manager(PathFromQt(work.path()));
        manager.Fill();
        const std::string standIn = MakeStandIn(arguments[1], work.filePath(QStringLiteral("handheld")));
        for (const bool dark : {false, true}) {
            if (dark && (forPages || (looks && !texts.isEmpty()))) break;
            Global = Globals{};
            Global.Clock = [] { return DateTime{2026, 11, 21, 17, 50, 0}; };
            Global.TheOperator = &nobody;
            Global.MakeSFrmAX40 = [] { return std::make_unique<TwoUsers>(); };
            Global.AppPath = PathFromQt(office.Path(QString()));
            Global.TheManagerDesk = &manager;
            Global.StandInFolder = standIn;
            ApplyLook(application, dark);
            The<frmMain1>();
            GivenUnattended();
            GivenClearing();
            GivenNotes();
            Global.View[ViewOrLinAudt] = true;
            GivenTotals();
#define PICTURE(form) Picture<form>(folder, #form);
            ALL_FORMS(PICTURE)
#undef PICTURE
            Quarters(folder);
            UsersQuestion(folder);
            UnattendedFaces(folder);
            OtherFaces(nobody, folder);
            ManagerFaces(folder, PathFromQt(work.filePath(QStringLiteral("nobody"))));
            StandInFaces(folder, work.path());
            OptionsFaces(folder);
            BrowserFaces(folder);
            HelpFaces(arguments[1], folder);
            InstallFaces(folder);
            RestoreFaces(folder);
            CheckFaces(arguments[1], office, folder);
            // They are black on white in either look.
            if (dark && !looks) PrintReports(nobody, folder);
            FormRegistry::Instance().Clear();
        }
        if (forPages) pages.Finish();
        if (looks) {
            std::printf("%d screens, %d problems\n", looker.Looks, looker.Problems);
            return looker.Problems == 0 ? 0 : 1;
        }
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
    return 0;
}

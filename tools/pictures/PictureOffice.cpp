#include "PictureOffice.h"

#include "core/Globals.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "exchange/Activity.h"
#include "handheld/Commands.h"
#include "platform/Convert.h"
#include "sync/TableTemplates.h"
#include "sync/UnattendedSettings.h"
#include "tools/Notes.h"

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QTemporaryDir>

#include <sstream>
#include <utility>
#include <vector>

namespace {

/// Fills tables of an office with rows: each with a line of field names above its records.
void FillTables(const OfficeForDay& office, const std::vector<std::pair<QString, QByteArray>>& tables) {
    const QTemporaryDir folder;
    QStringList arguments{office.Path(QString())};
    for (const auto& [name, content] : tables) {
        arguments << folder.filePath(name + QStringLiteral(".tsv"));
        WriteWholeFile(PathFromQt(arguments.last()), content.toStdString());
    }
    office.Run(QStringLiteral("filltables"), arguments);
}

} // namespace

void FillOffice(const OfficeForDay& office) {
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
        office,
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

void FillSettings(const OfficeForDay& office) {
    FillTables(
        office,
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
                                      "A001000125\tB200\tBolt & Sons\t\t20261121\n"},
         {QStringLiteral("ZUKORLIN"),
          "L_ORDCODE\tL_KEY\tL_NUMBER\tL_ITEMCODE\tL_ITEMDES1\tL_QTY\tL_QTY_UM\tL_PRICE\tL_TOTPRICE\n"
          "A001000124\tA00100012401\t1\tH1\tClaw hammer\t4\tEach\t12.50\t50.00\n"
          "A001000124\tA00100012402\t2\tN10\tNails, 10 mm\t20\tBox\t3.20\t64.00\n"
          "A001000125\tA00100012501\t1\tH1\tClaw hammer\t2\tEach\t12.50\t25.00\n"}});
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

void BreakTables(const OfficeForDay& office) {
    FillTables(
        office,
        {{QStringLiteral("ZUKCUST"),
          "C_SEARCH\tC_CODE\tC_NAME\tC_STCODE\n\tA100\tAcme Hardware\tNY\nBOLT\tB200\tBolt & Sons\t\n"
          "CRANE CO\tC-300\tCrane Co\tNJ\nDELTA\tD400\tDelta Tools\t\nEAST\tD400\tEast Side Supply\t\n"},
         {QStringLiteral("ZUKITEM"),
          "I_SEARCH\tI_ITEMCODE\tI_DESC1\tI_PRICE\tI_BARCODE\nHAMMER\tH1\tClaw hammer\t12.50\t4006381333931\n"
          "HAMMER\tH2\tSledge hammer\t49.00\t\nNAILS\tN-10\tNails, 10 mm\t1.2X\t\nSAW\tS1\tHand "
          "saw\t0.00\t\n"}});
}

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

// ---- of the office that Global has been set to ----

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

void GivenClearing() {
    ClearPlan plan;
    for (const ClearGroup group : {ClearGroup::OrHdr, ClearGroup::AudtH, ClearGroup::AudHH})
        plan.Choose(group);
    WriteTemplate(Global.ClearPCTemplates + "Orders and audits.pct", plan);
    Activity activity;
    activity.Rows[0].Template = "Orders and audits.pct";
    WriteActivity(Global.QuickButtonTemplates + "Evening.ctm", activity);
}

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

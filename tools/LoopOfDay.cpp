#include "LoopOfDay.h"

#include "OfficeForDay.h"
#include "driver/DriverClient.h"
#include "platform/Convert.h"
#include "platform/ManagerSocket.h"
#include "store/TableScan.h"

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QLocalSocket>
#include <QProcess>
#include <QTimer>

#include <map>
#include <memory>
#include <optional>
#include <random>
#include <stdexcept>

namespace {

const QString Main = QStringLiteral("frmMain1");
constexpr int Patience = 60000; // milliseconds

class LoopFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

void Require(bool holds, const QString& what) {
    if (!holds) throw LoopFailure(what.toStdString());
}

QString TextOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void Put(const QString& path, const QByteArray& content) {
    QFile file(path);
    Require(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(), path);
}

/// What stands on one side: order codes with the number of their lines and the sum of these, in cents.
struct Order {
    int Headers = 0, Lines = 0;
    qint64 Cents = 0;

    friend bool operator==(const Order&, const Order&) = default;
};
using Orders = std::map<QString, Order>;

qint64 CentsOf(const QString& money) {
    return qRound64(money.toDouble() * 100);
}

QString Totals(const Orders& orders) {
    int headers = 0, lines = 0;
    qint64 cents = 0;
    for (const auto& [code, order] : orders) {
        headers += order.Headers;
        lines += order.Lines;
        cents += order.Cents;
    }
    return QStringLiteral("%1 orders, %2 lines, %3")
        .arg(headers)
        .arg(lines)
        .arg(static_cast<double>(cents) / 100, 0, 'f', 2);
}

class Loop {
public:
    Loop(const QString& build, const QString& office, const QString& samples,
         std::function<void(const QString&)> say)
        : build_(build),
          around_(office + QStringLiteral("-around")),
          say_(std::move(say)),
          office_(build, office, Samples(samples)) {
        office_.WithManager();
        Require(Run(office_.Manager(), {QStringLiteral("--register")}), said_);
        Require(Run(office_.Registration(),
                    {QStringLiteral("-crtreg"), QStringLiteral("ZUK2"), QStringLiteral("-condpath"),
                     QStringLiteral("SFrmCn40.dll"), QStringLiteral("-name"), QStringLiteral("Tramble")}),
                said_);
        Put(office_.Path(QStringLiteral("HotSync/HotSync.ini")), "[HotSync]\r\nPort=0\r\nLookup=False\r\n");
        Put(office_.Path(QStringLiteral("HotSync/Users.txt")),
            "7\tANNA\tnever\tcomplete\r\n8\tBERT\tnever\tcomplete\r\n");
        Template(QStringLiteral("Download/Day.dst"), "Customers=1\r\nItems=1\r\nSetup Tables=1\r\n");
        Template(QStringLiteral("Download/Day.dct"),
                 "Order Tables=1\r\nAudit Tables=1\r\nHandheld Totals=1\r\n");
        Template(QStringLiteral("Upload/Day.ust"), "Orders=1\r\nAudits=1\r\nHandheld Totals=1\r\n");
        Unattended(QStringLiteral("Morning"), "True", "False", "False");
        Unattended(QStringLiteral("Evening"), "False", "True", "False");
        Unattended(QStringLiteral("Night"), "False", "False", "True");
        Hand(QStringLiteral("ANNA"),
             {QStringLiteral("new"), QStringLiteral("--user"), QStringLiteral("ANNA"), QStringLiteral("--id"),
              QStringLiteral("7"), QStringLiteral("--machine"), QStringLiteral("M1")});
        Hand(QStringLiteral("BERT"),
             {QStringLiteral("new"), QStringLiteral("--user"), QStringLiteral("BERT"), QStringLiteral("--id"),
              QStringLiteral("8"), QStringLiteral("--machine"), QStringLiteral("M2")});
    }
    ~Loop() { StopManager(); }

    /// Without a seed nothing is broken.
    void Hold(std::optional<unsigned> seed) {
        if (seed) StartManager(); // one that can be killed
        StartProgram();
        CheckOrdersAtExport();
        Require(Until([&] { return !Address().isEmpty(); }),
                QStringLiteral("the HotSync Manager does not start"));

        say_(QStringLiteral("Import, by the activity DemoImport"));
        Activity(QStringLiteral("lblImportBtn"), QStringLiteral("frmQBImport"), QStringLiteral("DemoImport"),
                 {});

        say_(QStringLiteral("Download to both handhelds, behind the Quality Check"));
        Arm(QStringLiteral("Morning"), true);
        for (const QString& user : Users()) HotSync(user);
        Disarm();

        say_(QStringLiteral("Orders are taken on both; ANNA deletes one"));
        Hand(QStringLiteral("ANNA"),
             {QStringLiteral("take"), QStringLiteral("4"), QStringLiteral("--seed"), QStringLiteral("1")});
        Hand(QStringLiteral("BERT"),
             {QStringLiteral("take"), QStringLiteral("3"), QStringLiteral("--seed"), QStringLiteral("2")});
        const QString deleted = OnHandheld(QStringLiteral("ANNA")).begin()->first;
        Hand(QStringLiteral("ANNA"), {QStringLiteral("delete"), deleted});
        say_(QStringLiteral("    deleted: ") + deleted);
        Orders taken;
        for (const QString& user : Users()) {
            const Orders orders = OnHandheld(user);
            say_(QStringLiteral("    %1: %2").arg(user, Totals(orders)));
            taken.insert(orders.begin(), orders.end());
        }
        Require(taken.size() == 6 && !taken.contains(deleted),
                QStringLiteral("the handhelds do not hold six orders"));

        say_(QStringLiteral("Upload from both, and merge"));
        Arm(QStringLiteral("Evening"), false);
        if (seed) BreakThree(*seed);
        for (const QString& user : Users()) {
            HotSync(user);
            SayReceipt(user);
        }
        Disarm();
        Orders arrived = OnPC();
        say_(QStringLiteral("    the handhelds: %1").arg(Totals(taken)));
        say_(QStringLiteral("    the PC:        %1").arg(Totals(arrived)));
        QList<QPair<QString, QString>> questions{
            {QStringLiteral("Delete Exported Tables on PC?"), QStringLiteral("No")}};
        // What came before a break comes again: the order check takes it away once.
        for (auto& [code, order] : arrived) {
            if (order.Headers < 2 && order.Lines <= taken[code].Lines) continue;
            Require(seed.has_value(), code + QStringLiteral(" is there twice"));
            say_(QStringLiteral("    %1 came %2 times").arg(code).arg(order.Headers));
            if (questions.size() == 1)
                questions.prepend(
                    {QStringLiteral("Duplicate orders are in the order table."), QStringLiteral("Yes")});
            order = taken[code];
        }
        Require(arrived == taken, QStringLiteral("the PC does not hold what the handhelds took"));

        say_(QStringLiteral("Export, with the order check"));
        Activity(QStringLiteral("lblExportBtn"), QStringLiteral("frmQBExport"), QStringLiteral("DemoExport"),
                 questions);
        const Orders exported = InExport();
        say_(QStringLiteral("    the export:    %1").arg(Totals(exported)));
        Require(exported == taken, QStringLiteral("the export does not hold each order once"));
        Require(OnPC() == taken, QStringLiteral("the PC does not hold each order once behind the export"));

        say_(QStringLiteral("Clear both handhelds"));
        Arm(QStringLiteral("Night"), false);
        for (const QString& user : Users()) {
            HotSync(user);
            say_(QStringLiteral("    %1: %2").arg(user, Totals(OnHandheld(user))));
            Require(OnHandheld(user).empty(), user + QStringLiteral(" still has orders"));
        }
        Disarm();

        ClearPC();
        Require(program_->Quit() == 0, QStringLiteral("the program ended with a failure"));
    }

private:
    /// The bytes of the tables of orders and audits, in the order of ClearedTables.
    using TableBytes = QList<QByteArray>;

    /// On the screen: the orders, the audit, and what handhelds and PC have counted.
    void ClearPC() {
        const QString screen = QStringLiteral("frmTableSelectPC");
        say_(QStringLiteral("Clear the order, audit and totals tables on the PC"));
        const Orders held = OnPC();
        const TableBytes tables = TablesIn(QStringLiteral("DBFFiles"));
        const QStringList backups = Backups();
        program_->Click(Main, QStringLiteral("mnuClearPCTables"));
        program_->WaitForm(screen);
        for (const char* box : {"chkOrHdr", "chkAudtH", "chkAudHH", "chkTotalPC"})
            program_->Click(screen, QString::fromLatin1(box));
        program_->ExpectContaining(
            QStringLiteral("This action will delete all data from the selected tables on the PC."),
            QStringLiteral("Yes"));
        program_->Click(screen, QStringLiteral("cmdOK"));
        program_->WaitGone(screen);
        program_->Done();
        say_(QStringLiteral("    ") + program_->Text(Main, QStringLiteral("sbrOutcome")));
        for (const char* table : ClearedTables)
            Require(RecordsOf(table) == 0, QLatin1String(table) + QStringLiteral(" is not empty"));
        Require(RecordsOf("ZUKTotalPC") == 1, QStringLiteral("the PC totals do not begin with the clearing"));
        Require(QDir(office_.Path(QStringLiteral("DBFFiles/Images"))).isEmpty(QDir::Files),
                QStringLiteral("signatures are left"));
        QStringList made = Backups();
        made.removeIf([&](const QString& name) { return backups.contains(name); });
        Require(made.size() == 1, QStringLiteral("the clearing made no backup"));
        Require(TablesIn(QStringLiteral("Backup/") + made.first()) == tables,
                QStringLiteral("the backup does not hold what was cleared"));
        say_(QStringLiteral("    the backup %1: %2").arg(made.first(), Totals(held)));
        RestorePC(tables, held);
    }

    /// From the list of backups: what was cleared is back, to the byte.
    void RestorePC(const TableBytes& tables, const Orders& held) {
        const QString list = QStringLiteral("frmViewGrid"), rows = QStringLiteral("FG1");
        say_(QStringLiteral("Restore what was cleared"));
        program_->Click(Main, QStringLiteral("mnuRestore"));
        program_->WaitForm(list);
        const DrivenTable backups = program_->Rows(list, rows);
        qsizetype row = 0;
        while (row < backups.Rows.size() &&
               backups.Cell(row, QStringLiteral("Event")) != QLatin1String("CLEAR"))
            ++row;
        Require(row < backups.Rows.size(), QStringLiteral("the clearing is not in the list of backups"));
        program_->ChooseRow(list, rows, static_cast<int>(row));
        program_->ExpectContaining(QStringLiteral("This process will overwrite all existing data"),
                                   QStringLiteral("Yes"));
        program_->ExpectContaining(QStringLiteral("Tables successfully restored!"));
        program_->Click(list, QStringLiteral("cmdEdit"));
        program_->Done(
            DriverClient::Milliseconds(Patience)); // it goes on when the second of the clearing is over
        Require(TablesIn(QStringLiteral("DBFFiles")) == tables,
                QStringLiteral("what was restored is not what was cleared"));
        Require(OnPC() == held, QStringLiteral("the PC does not hold the orders that were cleared"));
        say_(QStringLiteral("    the PC:        %1").arg(Totals(OnPC())));
        program_->Click(list, QStringLiteral("cmdOK"));
        program_->WaitGone(list);
    }

    static constexpr const char* ClearedTables[] = {"ZUKOrHdr", "ZUKOrLin", "ZUKAudTH", "ZUKAudTL",
                                                    "ZUKAudHH"};

    TableBytes TablesIn(const QString& folder) const {
        TableBytes tables;
        for (const char* table : ClearedTables) {
            QFile file(
                office_.Path(folder + QLatin1Char('/') + QLatin1String(table) + QStringLiteral(".dbf")));
            Require(file.open(QIODevice::ReadOnly), file.fileName());
            tables << file.readAll();
        }
        return tables;
    }

    int RecordsOf(const char* table) const {
        const QString name = QStringLiteral("DBFFiles/") + QLatin1String(table) + QStringLiteral(".dbf");
        return TableScan(PathFromQt(office_.Path(name))).RecordCount();
    }
    QStringList Backups() const {
        return QDir(office_.Path(QStringLiteral("Backup"))).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    }

    void StartProgram(const QString& box = {}) {
        DrivenProgram start;
        start.Program = office_.Program();
        start.Folder = office_.Path(QString());
        start.Environment = Around();
        program_ = std::make_unique<DriverClient>(start);
        if (!box.isEmpty()) program_->ExpectContaining(box);
        program_->Start();
        program_->WaitForm(Main);
    }

    /// The manager as this process's own; the program finds it there.
    void StartManager() {
        const auto before = LogCount("awaits handhelds");
        manager_.setProcessEnvironment(Environment());
        manager_.setStandardOutputFile(QProcess::nullDevice());
        manager_.start(office_.Manager(), {QStringLiteral("--minimised")});
        Require(Until([&] { return LogCount("awaits handhelds") > before; }),
                QStringLiteral("the HotSync Manager does not start"));
    }

    /// Three sessions end at places that go by the seed: the line is cut, the handheld or the manager is
    /// killed, and the program is.
    void BreakThree(unsigned seed) {
        std::mt19937 random(seed);
        say_(QStringLiteral("Three sessions break, by the seed %1").arg(seed));
        const auto cut = 12 + random() % 60;
        // Behind the Links table and both order tables, and behind the first that is replaced: the PC has
        // orders by then, and the start has something to put back.
        const int handheldDies = 3 + static_cast<int>(random() % 3),
                  programDies = 2 + static_cast<int>(random() % 4);
        const bool managerDies = random() % 2 == 0;

        say_(QStringLiteral("    ANNA: the line is cut behind packet %1").arg(cut));
        const auto ended = LogCount("session ended");
        Run(build_ + QStringLiteral("/bin/handheld"),
            {HandheldFolder(QStringLiteral("ANNA")), QStringLiteral("hotsync"), Address(),
             QStringLiteral("--cut-after"), QString::number(cut)});
        Require(Until([&] { return LogCount("session ended") > ended; }),
                QStringLiteral("a session that was cut does not end"));

        if (managerDies) {
            KillManagerWith(QStringLiteral("BERT"), handheldDies);
        } else {
            say_(QStringLiteral("    BERT: the handheld is killed behind transfer %1").arg(handheldDies));
            PressAndAt(QStringLiteral("BERT"), handheldDies, [](QProcess& handheld) { handheld.kill(); });
        }

        say_(QStringLiteral("    ANNA: the program is killed behind transfer %1, and started again")
                 .arg(programDies));
        PressAndAt(QStringLiteral("ANNA"), programDies, [this](QProcess&) { program_->Kill(); });
        StartProgram(QStringLiteral("What the PC held before it has now been put back"));
        for (const auto& [code, order] : OnPC())
            Require(order.Headers > 0, code + QStringLiteral(" has lines and no header"));
        Arm(QStringLiteral("Evening"), false);
    }

    /// The program ends the session by itself, finds the manager when it is started again, and serves the
    /// handheld, which presses HotSync until then.
    void KillManagerWith(const QString& user, int transfers) {
        say_(QStringLiteral("    %1: the HotSync Manager is killed behind transfer %2, and started again")
                 .arg(user)
                 .arg(transfers));
        const QString armed = QStringLiteral("frmRemoteSync");
        PressAndAt(user, transfers, [&](QProcess& handheld) {
            manager_.kill();
            Require(manager_.waitForFinished(Patience) && handheld.waitForFinished(Patience),
                    QStringLiteral("a handheld does not notice that the manager has gone"));
            Require(handheld.exitCode() != 0,
                    user + QStringLiteral(" takes a broken session for a whole one"));
        });
        program_->WaitTextContaining(armed, QStringLiteral("lblMessage"), QStringLiteral("The last one was"));
        StartManager();
        const auto moved = LogCount(Moved);
        Require(Until([&] {
                    Hand(user, {QStringLiteral("hotsync"), Address()});
                    return LogCount(Moved) > moved;
                }),
                QStringLiteral("the program does not come back to the manager"));
        program_->WaitTextContaining(armed, QStringLiteral("lblMessage"), QStringLiteral("The last one was"));
    }

    static constexpr const char* Moved = " from the handheld: ";

    qsizetype LogCount(const char* words) const {
        return TextOf(office_.Path(QStringLiteral("HotSync/HotSync.log"))).count(QLatin1String(words));
    }

    /// The handheld presses HotSync on a slow line, and behind so many transfers something happens.
    void PressAndAt(const QString& user, int transfers, const std::function<void(QProcess& handheld)>& deed) {
        const auto ended = LogCount("session ended"), moved = LogCount(Moved);
        QProcess handheld;
        handheld.start(build_ + QStringLiteral("/bin/handheld"),
                       {HandheldFolder(user), QStringLiteral("hotsync"), Address(), QStringLiteral("--slow"),
                        QStringLiteral("8000")});
        Require(Until([&] { return LogCount(Moved) >= moved + transfers; }), QStringLiteral("no session"));
        deed(handheld);
        Require(Until([&] {
                    // A manager that was killed writes no end.
                    return handheld.state() == QProcess::NotRunning &&
                           (ended < LogCount("session ended") || manager_.state() == QProcess::NotRunning);
                }),
                QStringLiteral("a broken session does not end"));
    }

    static QStringList Users() { return {QStringLiteral("ANNA"), QStringLiteral("BERT")}; }

    /// The day's text files, and a Links table with both handhelds in place of the prepared orders.
    QString Samples(const QString& samples) const {
        const QString folder = around_ + QStringLiteral("/samples");
        QDir().mkpath(folder);
        QDir().mkpath(around_ + QStringLiteral("/tmp"));
        QFile::setPermissions(around_ + QStringLiteral("/tmp"),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        for (const char* file : {"customers.csv", "items.txt"}) {
            const QString name = QLatin1String(file);
            Require(QFile::copy(samples + QLatin1Char('/') + name, folder + QLatin1Char('/') + name), name);
        }
        Put(folder + QStringLiteral("/ZUKLINK.tsv"),
            "LK_HOTSYNC\tLK_MACH_ID\tLK_LSTONUM\nANNA\tM1\t000100\nBERT\tM2\t000200\n");
        return folder;
    }
    void CheckOrdersAtExport() const {
        const QString path = office_.Path(QStringLiteral("Templates/Export/DemoOrders.xor"));
        QFile file(path);
        Require(file.open(QIODevice::ReadOnly), path);
        QByteArray content = file.readAll();
        Require(content.contains("Quality Check0"), path);
        content.replace("Quality Check0", "Quality Check1");
        file.close();
        Put(path, content);
    }
    void Template(const QString& name, const QByteArray& content) const {
        const QString path = office_.Path(QStringLiteral("Templates/") + name);
        QDir().mkpath(path.left(path.lastIndexOf(QLatin1Char('/'))));
        Put(path, content);
    }
    void Unattended(const QString& name, const char* download, const char* upload, const char* clear) const {
        Template(QStringLiteral("UnattendedHotsync/") + name + QStringLiteral(".uhs"),
                 QByteArray("Download=") + download + "\r\nDownloadTemplate=Day\r\nUpload=" + upload +
                     "\r\nUploadTemplate=Day\r\nClear=" + clear + "\r\nClearTemplate=Day\r\n");
    }

    QMap<QString, QString> Around() const {
        const QString folder = around_ + QStringLiteral("/tmp");
        return {{QStringLiteral("XDG_CONFIG_HOME"), folder},
                {QStringLiteral("XDG_RUNTIME_DIR"), folder},
                {QStringLiteral("TMPDIR"), folder},
                {QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen")}};
    }
    QProcessEnvironment Environment() const {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        const auto around = Around();
        for (auto each = around.begin(); each != around.end(); ++each)
            environment.insert(each.key(), each.value());
        return environment;
    }
    bool Run(const QString& program, const QStringList& arguments) {
        QProcess process;
        process.setProcessEnvironment(Environment());
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(program, arguments);
        const bool ended = process.waitForFinished(Patience);
        said_ = QString::fromUtf8(process.readAll());
        return ended && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    }
    QString HandheldFolder(const QString& user) const {
        return around_ + QStringLiteral("/handheld-") + user;
    }
    void Hand(const QString& user, const QStringList& arguments) {
        Require(Run(build_ + QStringLiteral("/bin/handheld"), QStringList{HandheldFolder(user)} + arguments),
                user + QStringLiteral(": ") + said_);
    }

    static bool Until(const std::function<bool()>& condition) {
        QEventLoop loop;
        QTimer look, limit;
        QObject::connect(&look, &QTimer::timeout, [&] {
            if (condition()) loop.exit(1);
        });
        QObject::connect(&limit, &QTimer::timeout, [&] { loop.exit(0); });
        look.start(20);
        limit.start(Patience);
        return condition() || loop.exec() == 1;
    }

    /// Where the manager listens, out of its log.
    QString Address() const {
        const QString log = TextOf(office_.Path(QStringLiteral("HotSync/HotSync.log")));
        const auto at = log.lastIndexOf(QLatin1String("awaits handhelds"));
        if (at < 0) return {};
        return QStringLiteral("127.0.0.1:") +
               log.mid(at).section(QStringLiteral(" port "), 1, 1).section(QLatin1Char('\n'), 0, 0).trimmed();
    }

    void Activity(const QString& button, const QString& form, const QString& activity,
                  const QList<QPair<QString, QString>>& further) {
        program_->Click(Main, button);
        program_->WaitForm(form);
        program_->Choose(form, QStringLiteral("cboMaster"), activity);
        program_->Expect(QStringLiteral("Perform %1 - Is that correct?").arg(activity),
                         QStringLiteral("Yes"));
        for (const auto& [text, answer] : further) program_->ExpectContaining(text, answer);
        program_->Click(form, QStringLiteral("cmdOK"));
        const QString end = program_->WaitTextContaining(form, QStringLiteral("lblProgress"),
                                                         QStringLiteral("Process completed with"));
        say_(QStringLiteral("    ") + end);
        Require(end.contains(QLatin1String("no errors!")), activity + QStringLiteral(" had errors"));
        program_->Click(form, QStringLiteral("cmdCancel"));
        program_->WaitGone(form);
    }

    void Arm(const QString& name, bool checks) {
        const QString start = QStringLiteral("frmQBRemote");
        program_->Click(Main, QStringLiteral("lblUA"));
        program_->WaitForm(start);
        program_->Choose(start, QStringLiteral("cboUnattended"), name);
        program_->Expect(QStringLiteral("Perform %1 - Is that correct?").arg(name), QStringLiteral("Yes"));
        if (checks) {
            program_->ExpectContaining(QStringLiteral("The system will now perform a Quality Check"));
            program_->ExpectContaining(QStringLiteral("No fatal problems found"));
        }
        program_->Click(start, QStringLiteral("cmdOK"));
        program_->WaitForm(QStringLiteral("frmRemoteSync"));
    }
    void Disarm() {
        program_->Click(QStringLiteral("frmRemoteSync"), QStringLiteral("cmdCancel"));
        program_->WaitGone(QStringLiteral("frmRemoteSync"));
        program_->Done();
    }

    void HotSync(const QString& user) {
        Hand(user, {QStringLiteral("hotsync"), Address()});
        // The program works off the end of the session when the handheld has gone already.
        program_->WaitText(QStringLiteral("frmRemoteSync"), QStringLiteral("lblHotSyncID"), user);
        program_->WaitTextContaining(QStringLiteral("frmRemoteSync"), QStringLiteral("lblMessage"),
                                     QStringLiteral("The last one was"));
    }

    void SayReceipt(const QString& user) const {
        const QDir folder(office_.Path(QStringLiteral("DBFFiles/HHTotals/") + user));
        const QStringList receipts = folder.entryList({QStringLiteral("*.txt")}, QDir::Files, QDir::Name);
        Require(!receipts.isEmpty(), user + QStringLiteral(" has no receipt"));
        const QString receipt = TextOf(folder.filePath(receipts.last()));
        for (const QString& line : receipt.split(QLatin1Char('\n')))
            say_(QStringLiteral("      ") + line.trimmed());
        Require(receipt.contains(QLatin1String("BALANCED")),
                QStringLiteral("the receipt of %1 does not balance").arg(user));
    }

    static QString CellOf(const TableScan& scan, const char* field) {
        return ToQt(std::string(scan.Trimmed(scan.Layout().Find(field))));
    }
    Orders OnPC() const {
        Orders orders;
        TableScan headers(PathFromQt(office_.Path(QStringLiteral("DBFFiles/ZUKOrHdr.dbf"))));
        while (headers.Next()) ++orders[CellOf(headers, "H_ORDCODE")].Headers;
        TableScan lines(PathFromQt(office_.Path(QStringLiteral("DBFFiles/ZUKOrLin.dbf"))));
        while (lines.Next()) {
            Order& order = orders[CellOf(lines, "L_ORDCODE")];
            ++order.Lines;
            order.Cents += CentsOf(CellOf(lines, "L_TOTPRICE"));
        }
        return orders;
    }

    /// Rows of a text with a heading line and values in quotes or bare, parted by commas; the handheld
    /// doubles a quote inside a text, the export does not.
    static QList<QMap<QString, QString>> RowsOf(const QString& csv, bool doubled) {
        QList<QMap<QString, QString>> rows;
        QStringList headings;
        for (const QString& line : csv.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
            QStringList cells{QString()};
            bool quoted = false;
            const QString text = line.trimmed();
            for (qsizetype k = 0; k < text.size(); ++k) {
                const QChar c = text[k];
                // A quote inside a text of the export ends it only before a comma or the end of the line.
                const bool edge = doubled  ? true
                                  : quoted ? k + 1 == text.size() || text[k + 1] == QLatin1Char(',')
                                           : cells.last().isEmpty();
                if (c == QLatin1Char('"') && edge)
                    quoted = !quoted;
                else if (c == QLatin1Char(',') && !quoted)
                    cells << QString();
                else
                    cells.last() += c;
            }
            if (headings.isEmpty()) {
                headings = cells;
                continue;
            }
            QMap<QString, QString> row;
            for (qsizetype k = 0; k < headings.size() && k < cells.size(); ++k)
                row[headings[k].trimmed()] = cells[k].trimmed();
            rows << row;
        }
        return rows;
    }
    Orders OnHandheld(const QString& user) {
        Orders orders;
        Hand(user, {QStringLiteral("show"), QStringLiteral("ORHDR"), QStringLiteral("--csv")});
        for (const auto& row : RowsOf(said_, true)) ++orders[row[QStringLiteral("H_ORDCODE")]].Headers;
        Hand(user, {QStringLiteral("show"), QStringLiteral("ORLIN"), QStringLiteral("--csv")});
        for (const auto& row : RowsOf(said_, true)) {
            Order& order = orders[row[QStringLiteral("L_ORDCODE")]];
            ++order.Lines;
            order.Cents += CentsOf(row[QStringLiteral("L_TOTPRICE")]);
        }
        return orders;
    }
    /// The export has a row a line; an order counts once when its lines stand together.
    Orders InExport() const {
        Orders orders;
        QString last;
        for (const auto& row : RowsOf(TextOf(office_.Path(QStringLiteral("DataOut/orders.csv"))), false)) {
            const QString code = row[QStringLiteral("H_ORDCODE")];
            Order& order = orders[code];
            if (code != last) ++order.Headers;
            last = code;
            ++order.Lines;
            order.Cents += CentsOf(row[QStringLiteral("L_TOTPRICE")]);
        }
        return orders;
    }

    void StopManager() const {
        const QString name = ManagerSocketName(office_.Path(QStringLiteral("HotSync")));
        QLocalSocket socket;
        socket.connectToServer(around_ + QStringLiteral("/tmp/") + name);
        if (!socket.waitForConnected(Patience)) return; // it has gone already
        socket.write("HELLO\t1\nEXIT\tNOW\n");
        if (socket.state() != QLocalSocket::UnconnectedState) socket.waitForDisconnected(Patience);
    }

    QString build_, around_;
    std::function<void(const QString&)> say_;
    OfficeForDay office_;
    QProcess manager_; ///< started only where it may be killed
    std::unique_ptr<DriverClient> program_;
    QString said_;
};

} // namespace

void RunLoopOfDay(const QString& build, const QString& office, const QString& samples,
                  std::optional<unsigned> seed, const std::function<void(const QString& line)>& say) {
    Loop(build, office, samples, say).Hold(seed);
}

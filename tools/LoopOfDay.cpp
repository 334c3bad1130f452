#include "LoopOfDay.h"

#include "RunningOffice.h"
#include "platform/Convert.h"
#include "store/TableScan.h"

#include <QDir>
#include <QFile>
#include <QProcess>

#include <optional>
#include <random>

namespace {

class Loop : private RunningOffice {
public:
    Loop(const QString& build, const QString& office, const QString& samples,
         std::function<void(const QString&)> say)
        : RunningOffice(build, office,
                        {{QStringLiteral("ANNA"), 7, QStringLiteral("M1"), QStringLiteral("000100")},
                         {QStringLiteral("BERT"), 8, QStringLiteral("M2"), QStringLiteral("000200")}},
                        {}, std::move(say), [&samples](const QString& folder) {
                            for (const char* file : {"customers.csv", "items.txt"}) {
                                const QString name = QLatin1String(file);
                                Require(QFile::copy(samples + QLatin1Char('/') + name,
                                                    folder + QLatin1Char('/') + name),
                                        name);
                            }
                        }) {
        Unattended(QStringLiteral("Morning"), true, false, false);
        Unattended(QStringLiteral("Evening"), false, true, false);
        Unattended(QStringLiteral("Night"), false, false, true);
    }

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
            say_(QStringLiteral("    %1: %2").arg(user, TotalsOf(orders)));
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
        say_(QStringLiteral("    the handhelds: %1").arg(TotalsOf(taken)));
        say_(QStringLiteral("    the PC:        %1").arg(TotalsOf(arrived)));
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
        say_(QStringLiteral("    the export:    %1").arg(TotalsOf(exported)));
        Require(exported == taken, QStringLiteral("the export does not hold each order once"));
        Require(OnPC() == taken, QStringLiteral("the PC does not hold each order once behind the export"));

        say_(QStringLiteral("Clear both handhelds"));
        Arm(QStringLiteral("Night"), false);
        for (const QString& user : Users()) {
            HotSync(user);
            say_(QStringLiteral("    %1: %2").arg(user, TotalsOf(OnHandheld(user))));
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
        say_(QStringLiteral("    the backup %1: %2").arg(made.first(), TotalsOf(held)));
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
        say_(QStringLiteral("    the PC:        %1").arg(TotalsOf(OnPC())));
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
};

} // namespace

void RunLoopOfDay(const QString& build, const QString& office, const QString& samples,
                  std::optional<unsigned> seed, const std::function<void(const QString& line)>& say) {
    Loop(build, office, samples, say).Hold(seed);
}

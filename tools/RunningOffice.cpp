#include "RunningOffice.h"

#include "platform/Convert.h"
#include "platform/ManagerSocket.h"
#include "store/TableScan.h"

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QLocalSocket>
#include <QTimer>

namespace {

void Put(const QString& path, const QByteArray& content) {
    QFile file(path);
    Require(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(), path);
}

qint64 CentsOf(const QString& money) {
    return qRound64(money.toDouble() * 100);
}

QString CellOf(const TableScan& scan, const char* field) {
    return ToQt(std::string(scan.Trimmed(scan.Layout().Find(field))));
}

/// Rows of a text with a heading line and values in quotes or bare, parted by commas; the handheld
/// doubles a quote inside a text, the export does not.
QList<QMap<QString, QString>> RowsOf(const QString& csv, bool doubled) {
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

} // namespace

const QString RunningOffice::Main = QStringLiteral("frmMain1");

void Require(bool holds, const QString& what) {
    if (!holds) throw DayFailure(what.toStdString());
}

QString TextOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QString TotalsOf(const Orders& orders) {
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

RunningOffice::RunningOffice(const QString& build, const QString& office, const QList<Salesperson>& people,
                             const QStringList& options, std::function<void(const QString&)> say,
                             const std::function<void(const QString& folder)>& samples)
    : build_(build),
      around_(office + QStringLiteral("-around")),
      say_(std::move(say)),
      office_(build, office, SamplesFor(people, samples)) {
    office_.WithManager();
    Require(Run(office_.Manager(), {QStringLiteral("--register")}), said_);
    Require(Run(office_.Registration(),
                {QStringLiteral("-crtreg"), QStringLiteral("ZUK2"), QStringLiteral("-condpath"),
                 QStringLiteral("SFrmCn40.dll"), QStringLiteral("-name"), QStringLiteral("Tramble")}),
            said_);
    Put(office_.Path(QStringLiteral("HotSync/HotSync.ini")), "[HotSync]\r\nPort=0\r\nLookup=False\r\n");
    QByteArray users;
    for (const Salesperson& one : people)
        users += QByteArray::number(one.Id) + '\t' + one.Name.toLatin1() + "\tnever\tcomplete\r\n";
    Put(office_.Path(QStringLiteral("HotSync/Users.txt")), users);
    for (const Salesperson& one : people) {
        Hand(one.Name,
             QStringList{QStringLiteral("new"), QStringLiteral("--user"), one.Name, QStringLiteral("--id"),
                         QString::number(one.Id), QStringLiteral("--machine"), one.Machine} +
                 options);
    }
    Template(QStringLiteral("Download/Day.dst"), "Customers=1\r\nItems=1\r\nSetup Tables=1\r\n");
    Template(QStringLiteral("Download/Day.dct"), "Order Tables=1\r\nAudit Tables=1\r\nHandheld Totals=1\r\n");
    Template(QStringLiteral("Upload/Day.ust"), "Orders=1\r\nAudits=1\r\nHandheld Totals=1\r\n");
}

RunningOffice::~RunningOffice() {
    StopManager();
    if (manager_.state() != QProcess::NotRunning) manager_.waitForFinished(Patience);
}

/// The day's text files, and a Links table with all handhelds.
QString RunningOffice::SamplesFor(const QList<Salesperson>& people,
                                  const std::function<void(const QString& folder)>& samples) const {
    QString folder = around_ + QStringLiteral("/samples");
    QDir().mkpath(folder);
    QDir().mkpath(around_ + QStringLiteral("/tmp"));
    QFile::setPermissions(around_ + QStringLiteral("/tmp"),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    samples(folder);
    QByteArray links = "LK_HOTSYNC\tLK_MACH_ID\tLK_LSTONUM\n";
    for (const Salesperson& one : people)
        links += one.Name.toLatin1() + '\t' + one.Machine.toLatin1() + '\t' + one.LastOrder.toLatin1() + '\n';
    Put(folder + QStringLiteral("/ZUKLINK.tsv"), links);
    return folder;
}

void RunningOffice::StartProgram(const QString& box) {
    DrivenProgram start;
    start.Program = office_.Program();
    start.Folder = office_.Path(QString());
    start.Environment = Around();
    program_ = std::make_unique<DriverClient>(start);
    if (!box.isEmpty()) program_->ExpectContaining(box);
    program_->Start();
    program_->WaitForm(Main);
}

void RunningOffice::StartManager() {
    const auto before = LogCount("awaits handhelds");
    manager_.setProcessEnvironment(Environment());
    manager_.setStandardOutputFile(QProcess::nullDevice());
    manager_.start(office_.Manager(), {QStringLiteral("--minimised")});
    Require(Until([&] { return LogCount("awaits handhelds") > before; }),
            QStringLiteral("the HotSync Manager does not start"));
}

void RunningOffice::StopManager() const {
    const QString name = ManagerSocketName(office_.Path(QStringLiteral("HotSync")));
    QLocalSocket socket;
    socket.connectToServer(around_ + QStringLiteral("/tmp/") + name);
    if (!socket.waitForConnected(Patience)) return; // it has gone already
    socket.write("HELLO\t1\nEXIT\tNOW\n");
    if (socket.state() != QLocalSocket::UnconnectedState) socket.waitForDisconnected(Patience);
}

void RunningOffice::CheckOrdersAtExport() const {
    const QString path = office_.Path(QStringLiteral("Templates/Export/DemoOrders.xor"));
    QFile file(path);
    Require(file.open(QIODevice::ReadOnly), path);
    QByteArray content = file.readAll();
    Require(content.contains("Quality Check0"), path);
    content.replace("Quality Check0", "Quality Check1");
    file.close();
    Put(path, content);
}

void RunningOffice::Template(const QString& name, const QByteArray& content) const {
    const QString path = office_.Path(QStringLiteral("Templates/") + name);
    QDir().mkpath(path.left(path.lastIndexOf(QLatin1Char('/'))));
    Put(path, content);
}

void RunningOffice::Unattended(const QString& name, bool download, bool upload, bool clear) const {
    const auto word = [](bool on) { return on ? "True" : "False"; };
    Template(QStringLiteral("UnattendedHotsync/") + name + QStringLiteral(".uhs"),
             QByteArray("Download=") + word(download) + "\r\nDownloadTemplate=Day\r\nUpload=" + word(upload) +
                 "\r\nUploadTemplate=Day\r\nClear=" + word(clear) + "\r\nClearTemplate=Day\r\n");
}

void RunningOffice::Activity(const QString& button, const QString& form, const QString& activity,
                             const QList<QPair<QString, QString>>& further) {
    program_->Click(Main, button);
    program_->WaitForm(form);
    program_->Choose(form, QStringLiteral("cboMaster"), activity);
    program_->Expect(QStringLiteral("Perform %1 - Is that correct?").arg(activity), QStringLiteral("Yes"));
    for (const auto& [text, answer] : further) program_->ExpectContaining(text, answer);
    program_->Click(form, QStringLiteral("cmdOK"));
    const QString end = program_->WaitTextContaining(form, QStringLiteral("lblProgress"),
                                                     QStringLiteral("Process completed with"));
    say_(QStringLiteral("    ") + end);
    Require(end.contains(QLatin1String("no errors!")), activity + QStringLiteral(" had errors"));
    program_->Click(form, QStringLiteral("cmdCancel"));
    program_->WaitGone(form);
}

void RunningOffice::Arm(const QString& name, bool checks) {
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

void RunningOffice::Disarm() {
    program_->Click(QStringLiteral("frmRemoteSync"), QStringLiteral("cmdCancel"));
    program_->WaitGone(QStringLiteral("frmRemoteSync"));
    program_->Done();
}

void RunningOffice::HotSync(const QString& user) {
    Hand(user, {QStringLiteral("hotsync"), Address()});
    // The program works off the end of the session when the handheld has gone already.
    program_->WaitText(QStringLiteral("frmRemoteSync"), QStringLiteral("lblHotSyncID"), user);
    program_->WaitTextContaining(QStringLiteral("frmRemoteSync"), QStringLiteral("lblMessage"),
                                 QStringLiteral("The last one was"));
}

QString RunningOffice::HandheldFolder(const QString& user) const {
    return around_ + QStringLiteral("/handheld-") + user;
}

void RunningOffice::Hand(const QString& user, const QStringList& arguments) {
    const QStringList command =
        wrap_ + QStringList{build_ + QStringLiteral("/bin/handheld"), HandheldFolder(user)} + arguments;
    Require(Run(command.first(), command.mid(1)), user + QStringLiteral(": ") + said_);
}

bool RunningOffice::Run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.setProcessEnvironment(Environment());
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    const bool ended = process.waitForFinished(Patience);
    said_ = QString::fromUtf8(process.readAll());
    return ended && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

qsizetype RunningOffice::LogCount(const char* words) const {
    return TextOf(office_.Path(QStringLiteral("HotSync/HotSync.log"))).count(QLatin1String(words));
}

/// Where the manager listens, out of its log.
QString RunningOffice::Address() const {
    const QString log = TextOf(office_.Path(QStringLiteral("HotSync/HotSync.log")));
    const auto at = log.lastIndexOf(QLatin1String("awaits handhelds"));
    if (at < 0) return {};
    return QStringLiteral("127.0.0.1:") +
           log.mid(at).section(QStringLiteral(" port "), 1, 1).section(QLatin1Char('\n'), 0, 0).trimmed();
}

bool RunningOffice::Until(const std::function<bool()>& condition) const {
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

Orders RunningOffice::OnPC() const {
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

Orders RunningOffice::OnHandheld(const QString& user) {
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
Orders RunningOffice::InExport() const {
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

QMap<QString, QString> RunningOffice::Around() const {
    const QString folder = around_ + QStringLiteral("/tmp");
    return {{QStringLiteral("XDG_CONFIG_HOME"), folder},
            {QStringLiteral("XDG_RUNTIME_DIR"), folder},
            {QStringLiteral("TMPDIR"), folder},
            {QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen")}};
}

QProcessEnvironment RunningOffice::Environment() const {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const auto around = Around();
    for (auto each = around.begin(); each != around.end(); ++each)
        environment.insert(each.key(), each.value());
    return environment;
}

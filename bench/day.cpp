// One unattended day of an office at its limits, with the real programs over loopback:
//
//   daybench BUILD FOLDER      an office of 100,000 customers and 100,000 items and 50 handhelds with 200
//   orders
//                              of 10 lines each; before it the same at a tenth of customers, items and orders
//   daybench BUILD FOLDER N    the same at an N-th of it alone
//
// The mode is armed once, behind the Quality Check, with upload, clearing and download. In the morning each
// handheld presses HotSync and gets its tables, in the evening it brings its orders home and gets them anew.
// Then the orders are checked and exported. The office's making and the taking of orders are no part of the
// day and told apart. Ends in 0 when each order is there once and the limits of DayLimits.h hold.

#include "DayLimits.h"
#include "RunningOffice.h"
#include "platform/Convert.h"
#include "store/TableScan.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <poll.h>
#include <string_view>
#include <sys/inotify.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

constexpr int Handhelds = 50, LinesOfOrder = 10;
constexpr int Customers = 100000, Items = 100000, OrdersOfHandheld = 200;

void Say(const QString& line) {
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

/// What a program took.
struct Usage {
    double Seconds = 0; ///< of the processor
    double MB = 0;      ///< the most resident memory

    void Add(const Usage& other) {
        Seconds += other.Seconds;
        MB = std::max(MB, other.MB);
    }
};

QByteArray BytesOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Of a program that runs, since its start.
Usage UsageOf(qint64 process) {
    Usage usage;
    const QString folder = QStringLiteral("/proc/%1/").arg(process);
    for (const QByteArray& line : BytesOf(folder + QStringLiteral("status")).split('\n')) {
        if (line.startsWith("VmHWM:")) usage.MB = line.mid(6).trimmed().split(' ').first().toDouble() / 1024;
    }
    const QByteArray stat = BytesOf(folder + QStringLiteral("stat"));
    const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
    constexpr int userTime = 11, systemTime = 12;
    if (fields.size() > systemTime) {
        usage.Seconds = (fields[userTime].toDouble() + fields[systemTime].toDouble()) /
                        static_cast<double>(sysconf(_SC_CLK_TCK));
    }
    return usage;
}

/// Runs a program in the place of this one and leaves what it took in a file.
int RunAndMeasure(const char* file, char** command) {
    const pid_t child = fork();
    if (child == 0) {
        execv(command[0], command);
        _exit(127);
    }
    int status = 0;
    struct rusage used {};
    if (child < 0 || wait4(child, &status, 0, &used) != child) return 126;
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    std::FILE* const out = std::fopen(file, "w");
    if (!out) return 126;
    std::fprintf(out, "%f %f\n", seconds(used.ru_utime) + seconds(used.ru_stime),
                 static_cast<double>(used.ru_maxrss) / 1024);
    std::fclose(out);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 125;
}

/// Counts how often the trace is written, from outside.
class TraceWatch {
public:
    explicit TraceWatch(const QString& folder) : watch_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        inotify_add_watch(watch_, QFile::encodeName(folder).constData(), IN_MOVED_TO);
        thread_ = std::thread([this] { Count(); });
    }
    ~TraceWatch() {
        over_ = true;
        thread_.join();
        close(watch_);
    }
    TraceWatch(const TraceWatch&) = delete;
    TraceWatch& operator=(const TraceWatch&) = delete;

    int Events() const { return events_; }
    bool LostSome() const { return lost_; }

private:
    void Count() {
        alignas(inotify_event) char buffer[1 << 16];
        while (!over_) {
            pollfd ready{watch_, POLLIN, 0};
            constexpr int pause = 200; // milliseconds
            if (poll(&ready, 1, pause) <= 0) continue;
            const ssize_t got = read(watch_, buffer, sizeof buffer);
            for (ssize_t at = 0; at < got;) {
                const auto* const event = reinterpret_cast<const inotify_event*>(buffer + at);
                if ((event->mask & IN_Q_OVERFLOW) != 0) lost_ = true;
                if (event->len > 0 && std::string_view(event->name) == "Events.log") ++events_;
                at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
            }
        }
    }

    int watch_;
    std::atomic<int> events_{0};
    std::atomic<bool> over_{false}, lost_{false};
    std::thread thread_;
};

/// The day's customers and items, as an accounting system writes them.
void WriteSamples(const QString& folder, int customers, int items) {
    QFile customerFile(folder + QStringLiteral("/customers.csv")),
        itemFile(folder + QStringLiteral("/items.txt"));
    Require(customerFile.open(QIODevice::WriteOnly) && itemFile.open(QIODevice::WriteOnly), folder);
    customerFile.write(
        "CustNo,\"Company\",\"Contact\",\"Street\",\"Street2\",\"City\",\"State\",\"Postcode\","
        "\"Telephone\",\"TaxCode\",Terms\n");
    for (int k = 0; k < customers; ++k) {
        // In another order than that of the codes: sorting them is work.
        const int number = static_cast<int>(static_cast<qint64>(k) * 7919 % customers);
        customerFile.write(QStringLiteral("C%1,\"Works No. %2, Ltd.\",\"Manager %2\",\"%2 Mill Road\",\"\","
                                          "\"Pinebrook\",\"OH\",\"43999\",\"(555) %1\",\"\",Net 30\n")
                               .arg(number, 6, 10, QLatin1Char('0'))
                               .arg(number)
                               .toLatin1());
    }
    itemFile.write("Price list\nItem\tDescription\tUnit\tBin\tPrice\tBarcode\n");
    for (int k = 0; k < items; ++k) {
        const int number = static_cast<int>(static_cast<qint64>(k) * 7919 % items);
        itemFile.write(QStringLiteral("I%1\tHex bolt of kind %2, zinc\tEA\tA01\t%3.25\t2%1\n")
                           .arg(number, 6, 10, QLatin1Char('0'))
                           .arg(number)
                           .arg(1 + number % 90)
                           .toLatin1());
    }
    Require(customerFile.flush() && itemFile.flush(), folder);
}

class BusyDay : private RunningOffice {
public:
    /// At a `part`-th.
    BusyDay(const QString& build, const QString& office, int part)
        : RunningOffice(
              build, office, People(), {QStringLiteral("--memory"), QStringLiteral("268435456")}, Say,
              [part](const QString& folder) { WriteSamples(folder, Customers / part, Items / part); }),
          customers_(Customers / part),
          items_(Items / part),
          orders_(OrdersOfHandheld / part) {
        Unattended(QStringLiteral("Day"), true, true, true);
        wrap_ = {QCoreApplication::applicationFilePath(), QStringLiteral("--run"), UsageFile()};
        Patience = 600000;
    }

    DayFigures Hold() {
        StartManager();
        StartProgram();
        program_->SetPatience(DriverClient::Milliseconds(Patience));
        CheckOrdersAtExport();
        Timed("(the customers and items are imported)", [&] {
            Activity(QStringLiteral("lblImportBtn"), QStringLiteral("frmQBImport"),
                     QStringLiteral("DemoImport"), {});
        });
        const Usage programBefore = UsageOf(program_->ProcessId()),
                    managerBefore = UsageOf(manager_.processId());
        handhelds_ = {};

        TraceWatch trace(office_.Path(QString()));
        Timed("Quality Check, and the mode is armed", [&] { Arm(QStringLiteral("Day"), true); });
        Timed("Morning: each handheld gets its tables", [&] { EachHotSync(); });
        for (int k = 0; k < Handhelds; ++k) LookAtTables(User(k));
        const double soFar = day_;
        const Usage handheldsSoFar = handhelds_;
        const int eventsSoFar = trace.Events();
        Timed("(the orders are taken)", [&] { TakeOrders(); });
        day_ = soFar;
        const Usage taking{handhelds_.Seconds - handheldsSoFar.Seconds, handhelds_.MB};
        const Orders taken = Taken();
        handhelds_ = handheldsSoFar;
        const int unrelated = trace.Events() - eventsSoFar;
        Timed("Evening: each brings its orders home and gets its tables anew", [&] { EachHotSync(); });
        Disarm();
        Timed("Order check and export", [&] {
            Activity(QStringLiteral("lblExportBtn"), QStringLiteral("frmQBExport"),
                     QStringLiteral("DemoExport"),
                     {{QStringLiteral("Delete Exported Tables on PC?"), QStringLiteral("No")}});
        });
        const int events = trace.Events() - unrelated;

        Usage program = UsageOf(program_->ProcessId()), manager = UsageOf(manager_.processId());
        program.Seconds -= programBefore.Seconds;
        manager.Seconds -= managerBefore.Seconds;
        Look(taken);
        Tell("ZUKTramble", program);
        Tell("hotsync", manager);
        Tell("handheld, pressing HotSync", handhelds_);
        Tell("(handheld, taking orders)", taking);
        Say(QStringLiteral("    the day took %1 s; %2%3 events of the trace, %4 a second")
                .arg(day_, 0, 'f', 1)
                .arg(trace.LostSome() ? QStringLiteral("more than ") : QString())
                .arg(events)
                .arg(events / day_, 0, 'f', 0));
        Require(program_->Quit() == 0, QStringLiteral("the program ended with a failure"));
        return {day_,
                {{"ZUKTramble", program.MB},
                 {"hotsync", manager.MB},
                 {"handheld", std::max(handhelds_.MB, taking.MB)}}};
    }

private:
    static QString User(int k) { return QStringLiteral("USER%1").arg(k + 1, 2, 10, QLatin1Char('0')); }
    static QList<Salesperson> People() {
        QList<Salesperson> people;
        for (int k = 0; k < Handhelds; ++k)
            people.append({User(k), k + 1, QStringLiteral("H%1").arg(k + 1, 2, 10, QLatin1Char('0')),
                           QStringLiteral("000100")});
        return people;
    }
    QString UsageFile() const { return around_ + QStringLiteral("/usage.txt"); }

    template <class Deed>
    void Timed(const char* what, Deed deed) {
        const auto begun = std::chrono::steady_clock::now();
        deed();
        const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begun;
        if (*what != '(') day_ += seconds.count();
        Say(QStringLiteral("    %1 s  %2").arg(seconds.count(), 7, 'f', 1).arg(QLatin1String(what)));
    }

    void CountHandheld() {
        const QList<QByteArray> figures = BytesOf(UsageFile()).trimmed().split(' ');
        Require(figures.size() == 2, UsageFile());
        handhelds_.Add({figures[0].toDouble(), figures[1].toDouble()});
    }
    void EachHotSync() {
        for (int k = 0; k < Handhelds; ++k) {
            HotSync(User(k));
            CountHandheld();
        }
    }
    void LookAtTables(const QString& user) {
        Hand(user, {QStringLiteral("tables")});
        for (const auto& [table, rows] : {std::pair("ZUKCUST", customers_), std::pair("ZUKITEM", items_)}) {
            const QString line = QStringLiteral("%1: %2 records").arg(QLatin1String(table)).arg(rows);
            Require(said_.contains(line), QStringLiteral("%1 has not %2").arg(user, line));
        }
    }
    void TakeOrders() {
        for (int k = 0; k < Handhelds; ++k) {
            Hand(User(k), {QStringLiteral("take"), QString::number(orders_), QStringLiteral("--lines"),
                           QString::number(LinesOfOrder), QStringLiteral("--seed"), QString::number(k + 1)});
            CountHandheld();
        }
    }
    Orders Taken() {
        Orders taken;
        for (int k = 0; k < Handhelds; ++k) taken.merge(OnHandheld(User(k)));
        Require(taken.size() == static_cast<std::size_t>(Handhelds) * static_cast<std::size_t>(orders_),
                QStringLiteral("the handhelds do not hold all orders"));
        for (const auto& [code, order] : taken)
            Require(order.Headers == 1 && order.Lines == LinesOfOrder,
                    code + QStringLiteral(" is not whole"));
        return taken;
    }

    /// Each order once, on the PC, in its totals and in the export, and none on a handheld.
    void Look(const Orders& taken) {
        Say(QStringLiteral("    ") + TotalsOf(taken));
        Require(OnPC() == taken, QStringLiteral("the PC does not hold each order once"));
        Require(InExport() == taken, QStringLiteral("the export does not hold each order once"));
        for (int k = 0; k < Handhelds; ++k)
            Require(OnHandheld(User(k)).empty(), User(k) + QStringLiteral(" still has orders"));
        TableScan totals(PathFromQt(office_.Path(QStringLiteral("DBFFiles/ZUKTotalPC.dbf"))));
        Require(totals.Next(), QStringLiteral("there are no PC totals"));
        const auto cell = [&](const char* field) {
            return ToQt(std::string(totals.Trimmed(totals.Layout().Find(field))));
        };
        qint64 cents = 0;
        for (const auto& [code, order] : taken) cents += order.Cents;
        Require(cell("TP_CURHEAD").toInt() == Handhelds * orders_ &&
                    cell("TP_CURLINE").toInt() == Handhelds * orders_ * LinesOfOrder &&
                    qRound64(cell("TP_CURDOL").toDouble() * 100) == cents,
                QStringLiteral("the PC totals are %1 orders, %2 lines, %3")
                    .arg(cell("TP_CURHEAD"), cell("TP_CURLINE"), cell("TP_CURDOL")));
    }

    void Tell(const char* program, const Usage& usage) const {
        Say(QStringLiteral("    %1 %2 s of the processor, %3 MB")
                .arg(QLatin1String(program), -28)
                .arg(usage.Seconds, 6, 'f', 1)
                .arg(usage.MB, 4, 'f', 0));
    }

    int customers_, items_, orders_;
    double day_ = 0;
    Usage handhelds_;
};

DayFigures Measure(const QString& build, const QString& folder, int part) {
    Say(QStringLiteral("%1 customers, %2 items, %3 handhelds with %4 orders of %5 lines")
            .arg(Customers / part)
            .arg(Items / part)
            .arg(Handhelds)
            .arg(OrdersOfHandheld / part)
            .arg(LinesOfOrder));
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
    DayFigures figures = BusyDay(build, folder + QStringLiteral("/office"), part).Hold();
    QDir(folder).removeRecursively(); // gigabytes
    return figures;
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 3 && std::string_view(argv[1]) == "--run") return RunAndMeasure(argv[2], argv + 3);
    const QCoreApplication application(argc, argv);
    const int part = argc == 4 ? QString::fromLocal8Bit(argv[3]).toInt() : 1;
    if (argc < 3 || argc > 4 || part < 1 || part > OrdersOfHandheld) {
        std::fputs("daybench BUILD FOLDER [N]\n", stderr);
        return 2;
    }
    const QString build = QDir(QString::fromLocal8Bit(argv[1])).absolutePath(),
                  folder = QDir(QString::fromLocal8Bit(argv[2])).absolutePath();
    try {
        if (argc == 4) {
            Measure(build, folder, part);
            return 0;
        }
        const DayFigures tenth = Measure(build, folder, 10), whole = Measure(build, folder, 1);
        Say(QStringLiteral("The day took %1 s, %2 times its tenth")
                .arg(whole.Seconds, 0, 'f', 1)
                .arg(whole.Seconds / tenth.Seconds, 0, 'f', 1));
        const std::vector<std::string> broken = BrokenLimits(tenth, whole);
        for (const std::string& line : broken) std::fprintf(stderr, "BEYOND THE LIMIT: %s\n", line.c_str());
        return broken.empty() ? 0 : 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "FAILED: %s\n", failure.what());
        return 1;
    }
}

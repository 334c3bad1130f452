// What a HotSync costs over loopback, with the real manager and the stand-in handheld:
//
//   wirebench BUILD        10,000 customers and 20,000 items down, 1,000 orders of 10 lines up; the same at a
//                          tenth and at a half of it; and the most memory that the manager took

#include "WireRig.h"

#include "core/Paths.h"
#include "palm/Converter.h"
#include "platform/Convert.h"
#include "store/TableCatalogue.h"
#include "store/TableRewrite.h"

#include <QCoreApplication>
#include <QFile>

#include <chrono>
#include <cstdio>
#include <random>

namespace {

/// A table whose fields are filled to half with letters, as those of an office are.
std::string MakeTable(const std::string& folder, const char* name, int records) {
    const TableEntry& entry = *FindTable(name);
    std::vector<FieldDef> fields;
    for (const TableField& field : entry.Fields) {
        fields.push_back({field.Name, field.Type, field.Length, field.Decimals});
    }
    std::string path = folder + name + ".DBF";
    TableRewrite table(path, fields);
    std::mt19937 random(1);
    for (int k = 0; k < records; ++k) {
        std::string bytes;
        for (const TableField& field : entry.Fields) {
            for (int c = 0; c < field.Length; ++c)
                bytes += c * 2 < field.Length ? static_cast<char>('A' + random() % 26) : ' ';
        }
        table.AppendRaw(TableLayout::Live, bytes);
    }
    table.Commit();
    return path;
}

/// The most resident memory of a process so far, in MB.
double PeakMemory(qint64 process) {
    QFile status(QStringLiteral("/proc/%1/status").arg(process));
    if (!status.open(QIODevice::ReadOnly)) return 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:")) return line.mid(6).trimmed().split(' ').first().toDouble() / 1024;
    }
    return 0;
}

void Measure(const QString& build, int part) {
    WireRig rig(build, QStringLiteral("ANNA"));
    const std::string folder = PathFromQt(rig.Folder()) + "/pc/";
    MakePath(folder);
    const double before = PeakMemory(rig.ManagerProcess());
    const int customers = 10000 / part, items = 20000 / part, orders = 1000 / part;
    const std::string headers = MakeTable(folder, "ZUKORHDR", orders),
                      lines = MakeTable(folder, "ZUKORLIN", orders * 10);
    if (!rig.HotSync({{false, headers}, {false, lines}}).IsWhole())
        throw WireFailure(rig.Log().toStdString());
    const std::string customer = MakeTable(folder, "ZUKCUST", customers),
                      item = MakeTable(folder, "ZUKITEM", items);

    const auto begun = std::chrono::steady_clock::now();
    const auto outcome = rig.HotSync({{false, customer}, {false, item}, {true, headers}, {true, lines}});
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begun;

    if (!outcome.IsWhole()) throw WireFailure(outcome.HandheldSaid.toStdString() + rig.Log().toStdString());
    const int records = customers + items + orders * 11;
    std::printf(
        "%6d customers, %6d items down, %5d orders of 10 lines up: %6.2f s, %5.1f us a record; manager "
        "%.0f MB, %.0f MB of it before the sessions\n",
        customers, items, orders, seconds.count(), seconds.count() * 1e6 / records,
        PeakMemory(rig.ManagerProcess()), before);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("wirebench BUILD\n", stderr);
        return 2;
    }
    try {
        for (const int part : {10, 2, 1}) Measure(QString::fromLocal8Bit(argv[1]), part);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "FAILED: %s\n", failure.what());
        return 1;
    }
}

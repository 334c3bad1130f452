// The demonstration of a working day with the real program and no screen needed:
//
//   day BUILD SAMPLES [--faults [SEED]]
//
// lays out a fresh office, imports customers and items by a QuickButton activity, checks them, exports
// the prepared orders by another activity, and compares the export with the one that was made by other
// programs. Then it does the same in a second office on the mapping screens, by the keyboard alone, and
// compares. In a third office two handhelds go through the whole loop. With --faults only that loop is
// run, and three of its sessions are broken. Ends in 0 only if all held.

#include "LoopOfDay.h"
#include "MappingByKeys.h"
#include "OfficeForDay.h"
#include "driver/DriverClient.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <chrono>
#include <cstdio>
#include <functional>
#include <random>

namespace {

class DayFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

void Say(const QString& line) {
    std::fputs((line + QLatin1Char('\n')).toLocal8Bit().constData(), stdout);
    std::fflush(stdout);
}

void Require(bool holds, const QString& what) {
    if (!holds) throw DayFailure(what.toStdString());
}

QByteArray Bytes(const QString& path) {
    QFile file(path);
    Require(file.open(QIODevice::ReadOnly), path + QStringLiteral(" is not there"));
    return file.readAll();
}

/// Runs an activity on its screen and prints its report.
void RunActivity(
    DriverClient& program, const QString& button, const QString& form, const QString& activity,
    const std::function<void()>& expectFurther = [] {}) {
    program.Click(QStringLiteral("frmMain1"), button);
    program.WaitForm(form);
    program.Choose(form, QStringLiteral("cboMaster"), activity);
    program.Expect(QStringLiteral("Perform %1 - Is that correct?").arg(activity), QStringLiteral("Yes"));
    expectFurther();
    program.Click(form, QStringLiteral("cmdOK"));
    const QString end = program.WaitTextContaining(form, QStringLiteral("lblProgress"),
                                                   QStringLiteral("Process completed with"));
    Say(QStringLiteral("  ") + program.Text(form, QStringLiteral("lblHeading2")));
    for (const char* row : {"1", "2"}) {
        const QString name = program.Text(form, QStringLiteral("lblSS_") + QLatin1String(row));
        const QString report = program.Text(form, QStringLiteral("lblSST_") + QLatin1String(row));
        if (report != QLatin1String("None")) Say(QStringLiteral("    %1: %2").arg(name, report));
    }
    Say(QStringLiteral("  ") + end);
    Require(end.contains(QLatin1String("no errors!")), activity + QStringLiteral(" had errors"));
    program.Click(form, QStringLiteral("cmdCancel"));
    program.WaitGone(form);
}

DrivenProgram In(const OfficeForDay& office) {
    DrivenProgram start;
    start.Program = office.Program();
    start.Folder = office.Path(QString());
    return start;
}

void Start(DriverClient& program) {
    // No HotSync Manager is registered in this office.
    program.ExpectContaining(QStringLiteral("Palm Desktop software is needed"));
    program.Start();
    program.WaitForm(QStringLiteral("frmMain1"));
}

/// The Quality Check of the main screen, which sorts the tables and makes the barcode index; prints how
/// each line of the Configurator stands behind it.
void CheckEverything(DriverClient& program) {
    const QString main = QStringLiteral("frmMain1"), config = QStringLiteral("frmConfig");
    program.Click(main, QStringLiteral("lblQC"));
    program.WaitForm(QStringLiteral("frmMessage"));
    program.Expect(QStringLiteral("No fatal problems found in data tables!"));
    program.Click(QStringLiteral("frmMessage"), QStringLiteral("cmdYes"));
    program.Done(std::chrono::seconds(60));
    Say(QStringLiteral("  No fatal problems found in data tables!"));

    program.Click(main, QStringLiteral("lblConfigurator"));
    program.WaitForm(config);
    const std::pair<const char*, int> lines[] = {
        {"Customers", 2}, {"Items", 3}, {"Bar codes", 4}, {"Payments", 6}, {"Import", 10}};
    for (const auto& [line, number] : lines) {
        QString result = program.Text(config, QStringLiteral("lblResult_%1").arg(number));
        Say(QStringLiteral("    %1: %2").arg(QLatin1String(line), result.section(QLatin1Char('\n'), 1)));
    }
    program.Click(config, QStringLiteral("cmdCancel"));
    program.WaitGone(config);
}

void RunByActivities(const OfficeForDay& office) {
    DriverClient program(In(office));
    Start(program);

    Say(QStringLiteral("Import: customers.csv (quoted, commas and accents), items.txt (tabs)"));
    RunActivity(program, QStringLiteral("lblImportBtn"), QStringLiteral("frmQBImport"),
                QStringLiteral("DemoImport"));

    Say(QStringLiteral("Quality Check"));
    CheckEverything(program);

    Say(QStringLiteral("Export: the prepared orders"));
    RunActivity(
        program, QStringLiteral("lblExportBtn"), QStringLiteral("frmQBExport"), QStringLiteral("DemoExport"),
        [&program] {
            program.ExpectContaining(QStringLiteral("records in the Order Lines table appear to have no"));
            program.ExpectContaining(QStringLiteral("Delete Exported Tables on PC?"), QStringLiteral("No"));
        });

    program.Click(QStringLiteral("frmMain1"), QStringLiteral("lblNext"));
    Say(QStringLiteral("The office holds"));
    for (const char* name : {"Cust", "Items", "Orders"}) {
        const QString label = QStringLiteral("lblSys") + QLatin1String(name);
        Say(QStringLiteral("    %1: %2")
                .arg(program.Text(QStringLiteral("frmMain1"), label),
                     program.Text(QStringLiteral("frmMain1"), label + QLatin1Char('1'))));
    }
    Require(program.Quit() == 0, QStringLiteral("the program ended with a failure"));
}

void RunByKeys(const OfficeForDay& office) {
    DriverClient program(In(office));
    Start(program);
    const QString templates = office.Path(QStringLiteral("Templates/"));
    const QString name = QStringLiteral("Mine");
    Say(QStringLiteral("  ") + ImportByKeys(program, templates + QStringLiteral("Import/DemoCustomers.cst"),
                                            QStringLiteral("Alt+U"), name));
    Say(QStringLiteral("  ") + ImportByKeys(program, templates + QStringLiteral("Import/DemoItems.itm"),
                                            QStringLiteral("Alt+I"), name));
    CheckEverything(program);
    Say(QStringLiteral("  ") +
        ExportByKeys(program, templates + QStringLiteral("Export/DemoOrders.xor"), name, [&program] {
            program.ExpectContaining(QStringLiteral("records in the Order Lines table appear to have no"));
            program.ExpectContaining(QStringLiteral("Delete Exported Tables on PC?"), QStringLiteral("No"));
        }));
    Require(program.Quit() == 0, QStringLiteral("the program ended with a failure"));
}

void RunDay(const QString& build, const QString& samples) {
    const QString where = build + QStringLiteral("/day");
    QDir(where).removeRecursively();
    QDir().mkpath(where);
    const OfficeForDay office(build, where + QStringLiteral("/office"), samples);
    Say(QStringLiteral("A fresh office lies in ") + office.Path(QString()));
    RunByActivities(office);
    const QString exported = office.Path(QStringLiteral("DataOut/orders.csv"));
    const QString expected = samples + QStringLiteral("/expected/orders.csv");
    Say(QStringLiteral("The tables lie in ") + office.Path(QStringLiteral("DBFFiles")));
    Say(QStringLiteral("The export is ") + exported);
    if (QFileInfo::exists(expected)) {
        Require(Bytes(exported) == Bytes(expected), exported + QStringLiteral(" differs from ") + expected);
        Say(QStringLiteral("It equals, byte for byte, what other programs made of the same tables: ") +
            expected);
    }

    const OfficeForDay second(build, where + QStringLiteral("/keyboard"), samples);
    Say(QStringLiteral("The same on the mapping screens, by the keyboard alone, in ") +
        second.Path(QString()));
    RunByKeys(second);
    for (const char* file : {"DBFFiles/ZUKCust.dbf", "DBFFiles/ZUKItem.dbf", "DataOut/orders.csv"}) {
        const QString name = QString::fromLatin1(file);
        Require(Bytes(office.Path(name)) == Bytes(second.Path(name)), name + QStringLiteral(" differs"));
    }
    Say(QStringLiteral("Tables and export are the same, byte for byte."));

    const QString loop = where + QStringLiteral("/loop");
    Say(QStringLiteral("The whole loop with two handhelds, in ") + loop);
    RunLoopOfDay(build, loop, samples, {}, Say);
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const bool breaks = arguments.value(3) == QLatin1String("--faults");
    bool isSeed = true;
    const unsigned seed = arguments.size() == 5 ? arguments[4].toUInt(&isSeed) : std::random_device()();
    if (!isSeed || (arguments.size() != 3 && !(breaks && arguments.size() <= 5))) {
        std::fputs("day BUILD SAMPLES [--faults [SEED]]\n", stderr);
        return 2;
    }
    try {
        if (breaks) {
            const QString where = QDir(arguments[1]).absolutePath() + QStringLiteral("/faults");
            QDir(where).removeRecursively();
            QDir().mkpath(where);
            Say(QStringLiteral("To repeat this run: ./run day --faults %1").arg(seed));
            RunLoopOfDay(QDir(arguments[1]).absolutePath(), where + QStringLiteral("/office"),
                         QDir(arguments[2]).absolutePath(), seed, Say);
            Say(QStringLiteral("The day held."));
            return 0;
        }
        RunDay(QDir(arguments[1]).absolutePath(), QDir(arguments[2]).absolutePath());
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "The day failed: %s\n", failure.what());
        return 1;
    }
    Say(QStringLiteral("The day held."));
    return 0;
}

// Every screen of the tables, opened and worked by the keyboard alone:
//
//   keys BUILD FOLDER [RECORDS...]
//
// lays out an office for each number of records (0, 1 and 100000 when none is given), fills every table
// with so many, and goes through the screens in the light and in the dark look. Pictures of them go to
// FOLDER. Ends in 0 only if every screen did as it should.

#include "OfficeForKeys.h"
#include "ScreensByKeys.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>

#include <cstdio>
#include <exception>

namespace {

const QString Light = QStringLiteral("light"), Dark = QStringLiteral("dark");

void Say(const QString& line) {
    std::fputs((line + QLatin1Char('\n')).toLocal8Bit().constData(), stdout);
    std::fflush(stdout);
}

/// In an office of its own, since what is saved in an empty table stays.
void GoThrough(const QString& build, const QString& folder, int records, const QString& look) {
    OfficeForKeys office(build, records);
    DriverClient& program = office.Program();
    if (look == Dark) {
        for (const char* key : {"Alt+V", "D"}) program.Key(QLatin1String(key));
    }
    QElapsedTimer timer;
    timer.start();
    const int screens =
        ScreensByKeys{program, records, QStringLiteral("%1/%2-%3-").arg(folder).arg(records).arg(look)}.Run();
    Say(QStringLiteral("%1 records, %2: %3 screens, %4 s")
            .arg(records)
            .arg(look)
            .arg(screens)
            .arg(static_cast<double>(timer.elapsed()) / 1000, 0, 'f', 1));
    program.Done();
    program.Quit();
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3) {
        std::fputs("keys BUILD FOLDER [RECORDS...]\n", stderr);
        return 2;
    }
    try {
        QDir().mkpath(arguments.at(2));
        const QString folder = QDir(arguments.at(2)).absolutePath();
        QStringList counts = arguments.mid(3);
        if (counts.isEmpty()) counts = {QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("100000")};
        for (const QString& count : counts) {
            for (const QString& look : {Light, Dark}) GoThrough(arguments.at(1), folder, count.toInt(), look);
        }
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}

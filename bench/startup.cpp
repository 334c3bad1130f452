// How long the program takes from its start to a main screen that is painted and has settled:
//
//   startup OFFICE RUNS     milliseconds, a line a run
//
// Offscreen, through the driver, in a laid-out office with the program in it. The box about the
// missing HotSync Manager comes in that time and is answered at once.

#include "driver/DriverClient.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <cstdio>

namespace {

qint64 Start(const QString& office) {
    DrivenProgram program;
    program.Program = office + QStringLiteral("/ZUKTramble");
    program.Folder = office;
    DriverClient client(program);
    client.ExpectContaining(QStringLiteral("Palm Desktop software is needed"));
    QElapsedTimer watch;
    watch.start();
    client.Start();
    client.WaitForm(QStringLiteral("frmMain1"));
    const qint64 took = watch.elapsed();
    client.Done();
    client.Quit();
    return took;
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        std::fputs("startup OFFICE RUNS\n", stderr);
        return 2;
    }
    try {
        for (int run = arguments[2].toInt(); run > 0; --run)
            std::printf("%lld\n", static_cast<long long>(Start(arguments[1])));
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
    return 0;
}

#include "OfficeForDay.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <utility>

namespace {

void Copy(const QString& from, const QString& to) {
    if (!QFile::copy(from, to)) throw OfficeFailure(("cannot copy " + from + " to " + to).toStdString());
}

} // namespace

OfficeForDay::OfficeForDay(QString build, QString office, const QString& samples)
    : build_(std::move(build)),
      office_(std::move(office)) {
    if (QDir(office_).exists() && !QDir(office_).isEmpty())
        throw OfficeFailure((office_ + " is not empty").toStdString());
    if (!QDir(samples).exists()) throw OfficeFailure((samples + " is no folder").toStdString());
    Run(QStringLiteral("layoutoffice"), {build_ + QStringLiteral("/installed"), office_});
    Copy(build_ + QStringLiteral("/bin/ZUKTramble"), Program());
    const QString help = QStringLiteral("Tramble_Help.qch");
    Copy(build_ + QStringLiteral("/installed/") + help, Path(help));

    QDir().mkpath(Path(QStringLiteral("DataIn")));
    QStringList tables{office_};
    for (const QString& name : QDir(samples).entryList(QDir::Files, QDir::Name)) {
        const QString path = samples + QLatin1Char('/') + name;
        if (name.endsWith(QLatin1String(".tsv"))) tables << path;
        if (name.endsWith(QLatin1String(".csv")) || name.endsWith(QLatin1String(".txt"))) {
            Copy(path, Path(QStringLiteral("DataIn/") + name));
        }
    }
    if (tables.size() > 1) Run(QStringLiteral("filltables"), tables);
}

void OfficeForDay::WithManager() const {
    const std::pair<QString, QString> programs[] = {{QStringLiteral("hotsync"), Manager()},
                                                    {QStringLiteral("rdkinst"), Registration()}};
    for (const auto& [name, place] : programs) {
        QDir().mkpath(QFileInfo(place).path());
        const QString built = build_ + QStringLiteral("/bin/") + name;
        if (QFile::exists(built)) Copy(built, place);
    }
}

void OfficeForDay::Run(const QString& tool, const QStringList& arguments) const {
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(build_ + QLatin1Char('/') + tool, arguments);
    process.waitForFinished(-1);
    if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0) return;
    throw OfficeFailure(
        (tool + ": " + QString::fromLocal8Bit(process.readAll()) + process.errorString()).toStdString());
}

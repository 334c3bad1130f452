#include "platform/Registry.h"

#include "core/Globals.h"
#include "platform/Convert.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QSettings>

namespace {

#ifdef _WIN32
constexpr auto Kind = QSettings::NativeFormat;
#else
constexpr auto Kind = QSettings::IniFormat;
#endif

/// The part of the registry that belongs to this application directory.
QString Office(std::string_view appPath = Global.AppPath) {
    const QByteArray path(appPath.data(), static_cast<qsizetype>(appPath.size()));
    return QString::fromLatin1(QCryptographicHash::hash(path, QCryptographicHash::Sha1).toHex().left(12));
}

QSettings Own() {
    return QSettings(Kind, QSettings::UserScope, QStringLiteral("ZUK"), QStringLiteral("ZUKTramble"));
}

QString StatusGroup() {
    return Office() + QStringLiteral("/ZUK Tramble PC HHStatus");
}

QString StatusKey(std::string_view section, std::string_view key) {
    return StatusGroup() + QLatin1Char('/') + ToQt(section) + QLatin1Char('/') + ToQt(key);
}

QString DarkKey(std::string_view appPath = Global.AppPath) {
    return Office(appPath) + QStringLiteral("/DarkLook");
}

/// Where the HotSync Manager's values lie, below "Software" on Windows.
QSettings ManagersOwn() {
    return QSettings(Kind, QSettings::UserScope, QStringLiteral("U.S. Robotics"),
                     QStringLiteral("Pilot Desktop"));
}

QString CoreKey(std::string_view name) {
    return QStringLiteral("Core/") + PathToQt(name);
}

/// A name in a key: neither separator stands in it.
QString NumbersKey(const char* group, QString name) {
    for (const char c : {'/', '\\'}) name.replace(QLatin1Char(c), QLatin1Char(' '));
    return Office() + QLatin1Char('/') + QLatin1String(group) + QLatin1Char('/') + name;
}

constexpr const char* Widths = "ColumnWidths";
constexpr const char* Places = "WindowPlaces";

/// Numbers in one value, parted by blanks.
QList<int> ReadNumbers(const QString& key) {
    QList<int> numbers;
    for (const QString& part : Own().value(key).toString().split(QLatin1Char(' '))) {
        bool isNumber = false;
        numbers << part.toInt(&isNumber);
        if (!isNumber) return {};
    }
    return numbers;
}

void WriteNumbers(const QString& key, const QList<int>& numbers) {
    QStringList parts;
    for (const int number : numbers) parts << QString::number(number);
    Own().setValue(key, parts.join(QLatin1Char(' ')));
}

} // namespace

std::optional<std::string> Registry::HotSyncManagerValue(std::string_view name) {
    const QString value = ManagersOwn().value(CoreKey(name)).toString();
    if (value.isEmpty()) return std::nullopt;
    return PathFromQt(value);
}

bool Registry::SetHotSyncManager(std::string_view program) {
    QSettings core = ManagersOwn();
    core.setValue(CoreKey("HotSyncPath"), PathToQt(program));
    core.setValue(CoreKey("Path"), QFileInfo(PathToQt(program)).path());
    core.sync();
    return core.status() == QSettings::NoError;
}

std::optional<std::string> Registry::Read(std::string_view section, std::string_view key) const {
    const QSettings settings = Own();
    const QVariant value = settings.value(StatusKey(section, key));
    if (!value.isValid()) return std::nullopt;
    return FromQt(value.toString());
}

void Registry::Write(std::string_view section, std::string_view key, std::string_view value) {
    Own().setValue(StatusKey(section, key), ToQt(value));
}

void Registry::RemoveAll() {
    Own().remove(StatusGroup());
}

bool Registry::DarkLook() {
    return DarkLook(Global.AppPath);
}

bool Registry::DarkLook(std::string_view appPath) {
    return Own().value(DarkKey(appPath)).toBool();
}

void Registry::SetDarkLook(bool dark) {
    Own().setValue(DarkKey(), dark);
}

QList<int> Registry::ColumnWidths(const QString& grid) {
    return ReadNumbers(NumbersKey(Widths, grid));
}

void Registry::SetColumnWidths(const QString& grid, const QList<int>& widths) {
    WriteNumbers(NumbersKey(Widths, grid), widths);
}

QList<int> Registry::WindowPlace(const QString& window) {
    return ReadNumbers(NumbersKey(Places, window));
}

void Registry::SetWindowPlace(const QString& window, const QList<int>& numbers) {
    WriteNumbers(NumbersKey(Places, window), numbers);
}

#include "platform/Registry.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "platform/Convert.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QSet>
#include <QSettings>

namespace {

#ifdef _WIN32
constexpr auto Kind = QSettings::NativeFormat;
#else
constexpr auto Kind = QSettings::IniFormat;
#endif

/// Writes what was set. RunTimeFailure 75 when that is not possible.
void Keep(QSettings& settings) {
    settings.sync();
    if (settings.status() != QSettings::NoError) throw RunTimeFailure(75, PathFromQt(settings.fileName()));
}

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

QString LanguageKey(std::string_view appPath = Global.AppPath) {
    return Office(appPath) + QStringLiteral("/Language");
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

/// An INI file is replaced by the one `sync`. In a registry that is written value by value the old rows go
/// last.
void Registry::Replace(const std::vector<StatusEntry>& entries) {
    QSettings own = Own();
    QSet<QString> sections;
    for (const StatusEntry& entry : entries) {
        own.setValue(StatusKey(entry.Section, entry.Key), ToQt(std::string_view(entry.Value)));
        sections.insert(ToQt(std::string_view(entry.Section)));
    }
    own.beginGroup(StatusGroup());
    for (const QString& section : own.childGroups()) {
        if (!sections.contains(section)) own.remove(section);
    }
    own.endGroup();
    Keep(own);
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

std::string Registry::Language(std::string_view appPath) {
    return PathFromQt(Own().value(LanguageKey(appPath)).toString());
}

void Registry::SetLanguage(const std::string& name) {
    QSettings own = Own();
    own.setValue(LanguageKey(), PathToQt(name));
    Keep(own);
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

#include "WireTest.h"

#include "core/Paths.h"
#include "platform/Convert.h"
#include "store/TableScan.h"
#include "support/Tables.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

namespace {

constexpr const char* Table = "ZUKVER";

void CopyFolder(const QString& from, const QString& to) {
    QDir().mkpath(to);
    QDirIterator files(from, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString copy = to + files.next().mid(from.size());
        QDir().mkpath(QFileInfo(copy).path());
        ASSERT_TRUE(QFile::copy(files.filePath(), copy)) << copy.toStdString();
    }
}

std::vector<std::vector<std::string>> Rows(const QStringList& values) {
    std::vector<std::vector<std::string>> rows;
    for (const QString& value : values) rows.push_back({value.toStdString()});
    return rows;
}

} // namespace

WireTest::WireTest(WireRig::Setup setup)
    : leaks_(qputenv("LSAN_OPTIONS", "suppressions=" TRAMBLE_SOURCE "/tests/leaks.txt:print_suppressions=0")),
      rig_(QStringLiteral(TRAMBLE_BUILD), QStringLiteral("ANNA"), std::move(setup)),
      folder_(PathFromQt(rig_.Folder()) + "/") {
    rig_.Patience = 30000;
    PutOld();
    if (rig_.Port() == 0) return;
    MakePath(folder_ + "next");
    const auto given = rig_.HotSync({{false, GivenTable(folder_ + "new/", Table, Rows(New()))}});
    EXPECT_TRUE(given.IsWhole()) << given.HandheldSaid.toStdString() << rig_.Log().toStdString();
    NewLog();
}

void WireTest::PutOld() const {
    GivenTable(folder_ + "pc/", Table, Rows(Old()));
}

std::unique_ptr<OddHandheld> WireTest::Odd() {
    const QString folder = rig_.Folder() + QStringLiteral("/odd") + QString::number(++odds_);
    CopyFolder(rig_.HandheldFolder(), folder);
    return std::make_unique<OddHandheld>(folder);
}

WireRig::Outcome WireTest::Meet(OddHandheld& odd, bool mustBegin) {
    return Meet(odd, Fetch(), mustBegin);
}

WireRig::Outcome WireTest::Meet(OddHandheld& odd, const std::vector<WireRig::Transfer>& transfers,
                                bool mustBegin) {
    odd.Call(rig_.Port());
    return rig_.Attend(
        transfers, [&] { return odd.IsOver(); }, mustBegin);
}

QStringList WireTest::RowsOf(const std::string& path) {
    QStringList rows;
    if (!FileExists(path)) return rows;
    TableScan scan(path);
    while (scan.Next()) rows << ToQt(std::string(scan.Trimmed(1)));
    return rows;
}

void WireTest::ExpectNoWorkFilesIn(const QString& folder) {
    QDirIterator files(folder, {QStringLiteral("*~")}, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) ADD_FAILURE() << files.next().toStdString();
}

void WireTest::ExpectTheNextIsServed() {
    ASSERT_TRUE(rig_.ManagerRuns()) << rig_.Log().toStdString();
    QFile::remove(PathToQt(Next()));

    const auto outcome = rig_.HotSync({{true, Next()}});

    EXPECT_EQ(outcome.HandheldCode, 0) << outcome.HandheldSaid.toStdString() << rig_.Log().toStdString();
    const std::vector<int> held{1, 3, 2};
    ASSERT_GE(outcome.Statuses.size(), held.size());
    EXPECT_TRUE(std::equal(held.rbegin(), held.rend(), outcome.Statuses.rbegin()));
    EXPECT_EQ(RowsOf(Next()), New());
    ExpectNoWorkFilesIn(rig_.Folder());
    EXPECT_FALSE(rig_.Errors().contains(QStringLiteral("anitizer"))) << rig_.Errors().toStdString();
}

std::int64_t WireTest::MostMemory() const {
    QFile status(QStringLiteral("/proc/%1/status").arg(rig_.ManagerProcess()));
    EXPECT_TRUE(status.open(QIODevice::ReadOnly));
    static const QRegularExpression most(QStringLiteral("VmHWM:\\s+(\\d+) kB"));
    const auto found = most.match(QString::fromLatin1(status.readAll()));
    EXPECT_TRUE(found.hasMatch());
    return found.captured(1).toLongLong() / 1024;
}

QString WireTest::NewLog() {
    const QString all = rig_.LogFile();
    const QString added = all.mid(logged_);
    logged_ = all.size();
    return added;
}

void WireTest::ExpectLogged(const QString& piece) {
    // The manager writes of a session behind its goodbye, and the handheld may have gone by then.
    QString added;
    const bool isThere = rig_.Until([&] {
        added = rig_.LogFile().mid(logged_);
        return added.contains(piece);
    });
    EXPECT_TRUE(isThere) << piece.toStdString() << " is not in\n" << added.toStdString();
}

#include "DeskProgram.h"
#include "WireTest.h"

#include "platform/Convert.h"
#include "support/Tables.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QNetworkDatagram>
#include <QRegularExpression>
#include <QTcpSocket>
#include <QTimer>
#include <QUdpSocket>

#include <algorithm>
#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <vector>

#ifdef Q_OS_LINUX
#include <sys/resource.h>
#endif

// What a machine can do that reaches the manager's ports and is nobody's handheld, or has listened to one.

namespace {

using Moment = OddHandheld::Moment;

class HostileNetwork : public WireTest {
protected:
    HostileNetwork()
        : WireTest({{},
                    [](ManagerSettings& settings) {
                        settings.Lookup = true;
                        settings.LookupPort = 0;
                    },
                    false}) {
        const QRegularExpression place(QStringLiteral("look for this computer on port (\\d+)"));
        lookupPort_ = place.match(rig_.LogFile()).captured(1).toUShort();
        EXPECT_NE(lookupPort_, 0);
    }

    using Callers = std::vector<std::unique_ptr<QTcpSocket>>;

    /// So many connections, each of which says no more than these bytes.
    Callers Call(int count, const QByteArray& words) const {
        Callers callers;
        for (int k = 0; k < count; ++k) {
            auto& caller = *callers.emplace_back(std::make_unique<QTcpSocket>());
            QObject::connect(&caller, &QTcpSocket::connected, [&caller, words] { caller.write(words); });
            caller.connectToHost(QStringLiteral("127.0.0.1"), rig_.Port());
        }
        return callers;
    }

    bool WereAllTaken(const Callers& callers) const {
        return rig_.Until([&] {
            return std::all_of(callers.begin(), callers.end(), [](const auto& caller) {
                return caller->state() == QAbstractSocket::ConnectedState ||
                       caller->state() == QAbstractSocket::UnconnectedState;
            });
        });
    }

    bool HaveAllGone(const Callers& callers) const {
        return rig_.Until([&] {
            return std::all_of(callers.begin(), callers.end(), [](const auto& caller) {
                return caller->state() == QAbstractSocket::UnconnectedState;
            });
        });
    }

    qsizetype OpenFiles() const {
        return QDir(QStringLiteral("/proc/%1/fd").arg(rig_.ManagerProcess()))
            .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
            .size();
    }

    unsigned FirstFreeFile() const {
        const QString files = QStringLiteral("/proc/%1/fd/").arg(rig_.ManagerProcess());
        unsigned number = 0;
        while (QFileInfo(files + QString::number(number)).isSymLink()) ++number;
        return number;
    }

    /// Every file of the rig with what it holds, but for those of the test's own handhelds and what the
    /// window system's stand-in says on the standard error.
    std::map<QString, QByteArray> Disk() const {
        std::map<QString, QByteArray> disk;
        QDirIterator each(rig_.Folder(),
                          QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                          QDirIterator::Subdirectories);
        while (each.hasNext()) {
            const QString path = each.next();
            if (path.startsWith(rig_.Folder() + QStringLiteral("/odd")) ||
                path == rig_.Folder() + QStringLiteral("/errors.txt"))
                continue;
            QFile file(path);
            const bool isRead = each.fileInfo().isFile() && file.open(QIODevice::ReadOnly);
            disk[path.mid(rig_.Folder().size() + 1)] =
                isRead ? QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256) : QByteArray();
        }
        return disk;
    }

    /// The files that differ, are new or have gone.
    static QStringList Changed(const std::map<QString, QByteArray>& before,
                               const std::map<QString, QByteArray>& after) {
        QStringList changed;
        for (const auto& [path, content] : after) {
            const auto old = before.find(path);
            if (old == before.end() || old->second != content) changed << path;
        }
        for (const auto& [path, content] : before) {
            if (!after.contains(path)) changed << path;
        }
        changed.sort();
        return changed;
    }

    std::uint16_t lookupPort_ = 0;
};

TEST_F(HostileNetwork, AFloodOfCallersThatDoNotGreetHoldsNobodyUp) {
    const std::int64_t memory = MostMemory();
    const qsizetype files = OpenFiles();

    constexpr int many = 150;
    const Callers silent = Call(many, {});
    const Callers halfway = Call(many, QByteArray("\x01\xFF\0\0\0\x16\x90\x01", 8));
    ASSERT_TRUE(WereAllTaken(silent));
    ASSERT_TRUE(WereAllTaken(halfway));

    // The time of a handshake is 20 seconds, and theirs is not over.
    ExpectTheNextIsServed();
    EXPECT_LT(OpenFiles() - files, 80);
    EXPECT_LT(MostMemory() - memory, 100);
    const QString log = NewLog();
    EXPECT_EQ(log.count(QStringLiteral("session ended")), 1) << log.toStdString();
    EXPECT_LT(log.count(QLatin1Char('\n')), 120);
}

TEST_F(HostileNetwork, StrangersChangeNothingButTheLogAndCannotFillIt) {
    const auto before = Disk();
    const std::int64_t memory = MostMemory();

    const Callers browsers = Call(150, "GET / HTTP/1.1\r\n\r\n");
    ASSERT_TRUE(HaveAllGone(browsers));
    const Callers greeters = Call(20, QByteArray::fromStdString(PackPacket(HandheldHello())) + "nonsense");
    ASSERT_TRUE(HaveAllGone(greeters));
    for (int packet = 0; packet < 4; ++packet) {
        const auto odd = Odd();
        odd->Cut = {packet, 100, packet % 2 == 0};
        EXPECT_FALSE(Meet(*odd).Begun());
    }
    const auto unknown = Odd();
    unknown->Twist = [](const Moment& moment) {
        std::string bytes = moment.Right;
        constexpr std::size_t userId = 12;
        if (moment.Answers(DlpFunction::ReadUserInfo))
            bytes[userId] = static_cast<char>(bytes[userId] ^ '\x40');
        return bytes;
    };
    EXPECT_FALSE(Meet(*unknown).Begun());
    EXPECT_NE(unknown->Ended(), EndCode::Normal);

    for (const QString& path : Changed(before, Disk())) EXPECT_EQ(path.toStdString(), "HotSync/HotSync.log");
    EXPECT_EQ(RowsOf(Target()), Old());
    EXPECT_LT(MostMemory() - memory, 100);
    ExpectTheNextIsServed();
    const QString log = NewLog();
    EXPECT_LT(log.count(QLatin1Char('\n')), 120) << log.toStdString();
    EXPECT_TRUE(log.contains(QStringLiteral(" lines about callers that nobody knows were left out here")));
    EXPECT_TRUE(log.contains(QStringLiteral("ANNA: session ended well")));
}

TEST_F(HostileNetwork, LookupsWithoutNumberAreAnsweredWhereTheyAreSoundAndHoldNobodyUp) {
    QUdpSocket machine;
    ASSERT_TRUE(machine.bind(QHostAddress::LocalHost));
    const QByteArray sound =
        QByteArray::fromStdString(PackLookup({false, 0, 0x7F000001, 0xFF000000, "desk"}));
    const auto send = [&](const QByteArray& datagram) {
        machine.writeDatagram(datagram, QHostAddress::LocalHost, lookupPort_);
    };
    const std::int64_t memory = MostMemory();

    constexpr int many = 2000;
    for (int k = 0; k < many; ++k) {
        send(QByteArray::fromStdString(PackLookup({true, 0, 0x7F000001, 0xFF000000, "desk"})));
        send(sound.left(k % 13));
        send(QByteArray(1000, '\xFE'));
        send(sound.left(12) + QByteArray(20000, 'x') + '\0');
    }
    // The system keeps so many and drops the others: the question is repeated, as a handheld does.
    qsizetype answers = 0;
    QTimer again;
    QObject::connect(&again, &QTimer::timeout, [&] { send(sound); });
    again.start(std::chrono::milliseconds(50));
    EXPECT_TRUE(rig_.Until([&] {
        while (machine.hasPendingDatagrams()) {
            const QByteArray answer = machine.receiveDatagram().data();
            EXPECT_EQ(answer.size(), sound.size());
            EXPECT_EQ(answer.at(2), '\2');
            ++answers;
        }
        return answers > 0;
    }));

    ExpectTheNextIsServed();
    EXPECT_LT(MostMemory() - memory, 100);
    EXPECT_LT(NewLog().count(QLatin1Char('\n')), 20);
}

/// Nothing in a session tells it from the one before: what is played again does what the handheld did, once
/// more, and no more than that.
TEST_F(HostileNetwork, ASessionThatIsPlayedAgainBringsTheSameTableAndNothingTwice) {
    std::vector<std::string> recorded;
    const auto honest = Odd();
    honest->Twist = [&](const Moment& moment) { return recorded.emplace_back(moment.Right); };
    Meet(*honest, true);
    ASSERT_EQ(honest->Ended(), EndCode::Normal);
    ASSERT_EQ(RowsOf(Target()), New());
    const auto before = Disk();
    std::string whole;
    for (const std::string& packet : recorded) whole += packet;

    for (const bool atOnce : {false, true}) {
        const auto replay = Odd();
        replay->Twist = [&](const Moment& moment) {
            if (atOnce) return moment.Number == 0 ? whole : std::string();
            return recorded.at(static_cast<std::size_t>(moment.Number));
        };
        EXPECT_EQ(Meet(*replay, true).Statuses, (std::vector<int>{1, 3, 2})) << atOnce;
        EXPECT_EQ(RowsOf(Target()), New()) << atOnce;
    }

    // The time of the last HotSync is another one, unless all of them fell into one second.
    const QStringList mayChange{QStringLiteral("HotSync/HotSync.log"), QStringLiteral("HotSync/Users.txt")};
    for (const QString& path : Changed(before, Disk()))
        EXPECT_TRUE(mayChange.contains(path)) << path.toStdString();
    ExpectTheNextIsServed();
}

/// All its answers lie there before it is asked, and what it is sent is never taken.
TEST_F(HostileNetwork, AHandheldThatAnswersWithoutReadingFillsNoMemory) {
    const std::string table = GivenTable(folder_ + "sent/", "ZUKCUST", {{"C1"}});
    std::string answers;
    std::string written;
    const auto honest = Odd();
    honest->Twist = [&](const Moment& moment) {
        if (written.empty()) answers += moment.Right;
        if (moment.Answers(DlpFunction::WriteRecord)) written = moment.Right;
        return moment.Right;
    };
    Meet(*honest, {{false, table}}, true);
    ASSERT_FALSE(written.empty());
    // More than the system itself keeps of what was sent.
    constexpr std::size_t records = 40000;
    GivenTable(folder_ + "sent/", "ZUKCUST", std::vector<std::vector<std::string>>(records, {"C1"}));
    for (std::size_t k = 0; k < records; ++k) answers += written;
    const std::int64_t memory = MostMemory();
    NewLog();

    QTcpSocket caller;
    caller.setReadBufferSize(1);
    QObject::connect(&caller, &QTcpSocket::connected, [&] {
        caller.setSocketOption(QAbstractSocket::ReceiveBufferSizeSocketOption, 4096);
        caller.write(QByteArray::fromStdString(answers));
    });
    caller.connectToHost(QStringLiteral("127.0.0.1"), rig_.Port());
    rig_.Attend(
        {{false, table}}, [] { return true; }, true);

    ExpectLogged(QStringLiteral("session ended early: the handheld answers what it has not read"));
    EXPECT_LT(MostMemory() - memory, 100);
    ExpectTheNextIsServed();
}

#ifdef Q_OS_LINUX
/// The system gives the manager no further file for a while, whoever uses them up.
TEST_F(HostileNetwork, CallersAreTakenAgainWhenThereAreFilesAgain) {
    DeskProgram desk(rig_.SocketPath());
    desk.Greet();
    ASSERT_TRUE(rig_.Until([&] { return !desk.Heard("USERS").empty(); }));
    const auto process = static_cast<pid_t>(rig_.ManagerProcess());
    rlimit before{};
    ASSERT_EQ(prlimit(process, RLIMIT_NOFILE, nullptr, &before), 0);
    const rlimit none{FirstFreeFile(), before.rlim_max};
    ASSERT_EQ(prlimit(process, RLIMIT_NOFILE, &none, nullptr), 0);

    const Callers callers = Call(1, {});
    ASSERT_TRUE(WereAllTaken(callers));
    // Each answer is a turn of the manager's loop: by the third it has tried to take the caller.
    for (std::size_t turn = 1; turn <= 3; ++turn) {
        desk.Say({"COMMAND", {"UPLOAD", "no path"}});
        ASSERT_TRUE(rig_.Until([&] { return desk.Heard("REFUSED").size() == turn; }));
    }
    ASSERT_EQ(prlimit(process, RLIMIT_NOFILE, &before, nullptr), 0);

    ExpectTheNextIsServed();
}
#endif

/// A caller that takes part for as long as nobody asks who it is.
class SlowStranger : public WireTest {
protected:
    SlowStranger()
        : WireTest({{}, [](ManagerSettings& settings) { settings.HandshakeSeconds = 1; }, false}) {}

    /// The handheld falls silent when it is asked for this. The time for an answer is a minute.
    void ExpectGivenUp(DlpFunction at, bool isKnown) {
        const auto odd = Odd();
        bool isSilent = false;
        odd->Twist = [&](const Moment& moment) {
            isSilent = isSilent || moment.Answers(at);
            std::string bytes = isSilent ? std::string() : moment.Right;
            constexpr std::size_t userId = 12;
            if (!isKnown && moment.Answers(DlpFunction::ReadUserInfo))
                bytes[userId] = static_cast<char>(bytes[userId] ^ '\x40');
            return bytes;
        };
        EXPECT_FALSE(Meet(*odd).Begun());
    }
};

TEST_F(SlowStranger, HasTheTimeOfAHandshakeAndNotThatOfManyAnswers) {
    ExpectGivenUp(DlpFunction::ReadSysInfo, true);
    ExpectLogged(QStringLiteral("session ended early: the handheld did not answer in time"));
    ExpectGivenUp(DlpFunction::EndOfSync, false);
    ExpectLogged(QStringLiteral("no user of this manager is called \"ANNA\""));
    ExpectTheNextIsServed();
}

} // namespace

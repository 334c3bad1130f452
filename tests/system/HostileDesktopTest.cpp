#include "WireTest.h"

#include "palm/NetSync.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTcpServer>
#include <QTcpSocket>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

/// A desktop inside the test: it makes the handshake, sends one packet after the other, each when the one
/// before has been answered, and does not care what is in them.
class OddDesktop {
public:
    OddDesktop() {
        QObject::connect(&server_, &QTcpServer::newConnection, [this] {
            socket_ = server_.nextPendingConnection();
            QObject::connect(socket_, &QTcpSocket::readyRead, socket_, [this] { Read(); });
        });
        server_.listen(QHostAddress::LocalHost);
    }

    std::vector<std::string> Packets; ///< what goes out behind the handshake
    std::string InsteadOfHandshake;   ///< when not empty
    bool HangsUp = true;              ///< behind the last packet, once that is answered
    bool HangsUpAtOnce = false;       ///< directly behind the last packet
    std::vector<DlpResponse> Answers;

    std::uint16_t Port() const { return server_.serverPort(); }

    /// A request, whatever its bytes, as a packet.
    void Ask(const std::string& message) { Packets.push_back(PackPacket({NetPacket::Data, 7, message})); }
    void Ask(const DlpRequest& request) { Ask(PackRequest(request)); }

private:
    void Read() {
        reader_.Feed(socket_->readAll().toStdString());
        while (const auto packet = reader_.Next()) {
            if (!InsteadOfHandshake.empty()) return Write(InsteadOfHandshake);
            if (!handshake_.IsDone()) {
                if (const auto answer = handshake_.Take(*packet)) Write(PackPacket(*answer));
                if (!handshake_.IsDone()) continue;
            } else {
                Answers.push_back(ReadResponse(packet->Payload));
            }
            GoOn();
        }
    }
    void GoOn() {
        if (sent_ < Packets.size())
            Write(Packets[sent_++]);
        else if (HangsUp)
            socket_->disconnectFromHost();
        if (HangsUpAtOnce && sent_ == Packets.size()) socket_->disconnectFromHost();
    }
    void Write(const std::string& bytes) {
        socket_->write(bytes.data(), static_cast<qint64>(bytes.size()));
        socket_->flush();
    }

    QTcpServer server_;
    QTcpSocket* socket_ = nullptr;
    PacketReader reader_;
    DesktopHandshake handshake_{0x7F000001};
    std::size_t sent_ = 0;
};

/// The real stand-in handheld and desktops that no office has.
class HostileDesktop : public WireTest {
protected:
    struct Called {
        int Code = -1;
        QString Said;
    };

    Called Call(const OddDesktop& desktop, const QStringList& options = {}) {
        QProcess handheld;
        rig_.PressHotSync(handheld, rig_.HandheldFolder(), options, desktop.Port());
        EXPECT_TRUE(rig_.Until([&] { return handheld.state() == QProcess::NotRunning; }));
        Called called;
        called.Said = QString::fromUtf8(handheld.readAll());
        if (handheld.exitStatus() == QProcess::NormalExit) called.Code = handheld.exitCode();
        return called;
    }

    void ExpectFails(const OddDesktop& desktop, const QString& words, const QStringList& options = {}) {
        const auto before = Databases();
        const Called called = Call(desktop, options);
        EXPECT_EQ(called.Code, 1) << called.Said.toStdString();
        EXPECT_TRUE(called.Said.contains(words)) << called.Said.toStdString();
        EXPECT_EQ(Databases(), before);
    }

    /// The tables that the handheld was given; it makes its totals anew at each HotSync.
    std::map<QString, QByteArray> Databases() const {
        std::map<QString, QByteArray> databases;
        QDirIterator files(rig_.HandheldFolder() + QStringLiteral("/databases"), QDir::Files | QDir::Hidden);
        while (files.hasNext()) {
            QFile file(files.next());
            if (files.fileName().contains(QStringLiteral("AUD"))) continue;
            EXPECT_TRUE(file.open(QIODevice::ReadOnly));
            databases[files.fileName()] = file.readAll();
        }
        return databases;
    }
};

TEST_F(HostileDesktop, ThatKeepsToNoProtocolIsLeft) {
    const std::map<std::string, QString> greetings{
        {"HTTP/1.1 400 Bad Request\r\n\r\n", QStringLiteral("a packet of type 72")},
        {std::string("\x01\x01\xFF\xFF\xFF\xFF", 6), QStringLiteral("a packet of 4294967295 bytes")},
        {std::string("\x01\x01\0\0\0\0", 6), QStringLiteral("no packet of a handshake")},
        {std::string("\x01\x01\0\0\0\x08\x13\x01\xFF\xFF\xFF\xFF\xFF\xFF", 14),
         QStringLiteral("no packet of a handshake")},
        {std::string("\x02\x01\0\0\0\x01x", 7), QStringLiteral("a packet of 1 bytes")},
    };
    for (const auto& [bytes, words] : greetings) {
        SCOPED_TRACE(words.toStdString());
        OddDesktop desktop;
        desktop.InsteadOfHandshake = bytes;
        ExpectFails(desktop, words);
    }
    ExpectTheNextIsServed();
}

TEST_F(HostileDesktop, ThatFallsSilentIsLeftWhenThePatienceEnds) {
    OddDesktop desktop;
    desktop.HangsUp = false;
    ExpectFails(desktop, QStringLiteral("the desktop was silent for 1 seconds"),
                {QStringLiteral("--patience"), QStringLiteral("1")});
    ExpectTheNextIsServed();
}

TEST_F(HostileDesktop, MayVanishInsideAnyPacket) {
    const std::string packet =
        PackPacket({NetPacket::Data, 7, PackRequest(PackOpenDB("TZUK20000_ZUKVER", true))});
    for (const std::size_t bytes : {std::size_t{1}, std::size_t{5}, std::size_t{6}, packet.size() - 1}) {
        SCOPED_TRACE(bytes);
        OddDesktop desktop;
        desktop.Packets = {packet.substr(0, bytes)};
        desktop.HangsUpAtOnce = true;
        ExpectFails(desktop, QStringLiteral("the line was lost"));
    }
    ExpectTheNextIsServed();
}

TEST_F(HostileDesktop, IsToldAnErrorForEachRequestThatIsNone) {
    DatabaseHeader longName;
    longName.Name = std::string(32, 'x');
    DlpRequest noRecord(DlpFunction::ReadRecord);
    noRecord.Arguments = {{0x21, std::string("\x01\0\xFF\xFF\xFF\xFF\xFF\xFF", 8)}};
    OddDesktop desktop;
    desktop.Ask("");
    desktop.Ask("\x17");
    desktop.Ask(std::string("\x7E\0", 2));
    desktop.Ask(std::string("\x97\0\0\0", 4));
    desktop.Ask(std::string("\x17\xFF\x20\x01", 4));
    desktop.Ask(std::string("\x17\x01\x20\xFF\x01", 5));
    desktop.Ask(std::string("\x17\x01\xA0\0\xFF\xFF", 6));
    desktop.Ask(std::string("\x17\x01\x60\0\xFF\xFF\xFF\xFF", 8));
    desktop.Ask(DlpRequest(DlpFunction::OpenDB, std::string("\0\x80name without an end", 21)));
    desktop.Ask(PackOpenDB("../../Handheld.txt", true));
    desktop.Ask(PackDeleteDB("../Handheld.txt"));
    desktop.Ask(PackDeleteDB(std::string(200, 'x')));
    desktop.Ask(PackCreateDB(longName));
    desktop.Ask(PackReadOpenDBInfo(1));
    desktop.Ask(PackReadRecord(1, 0));
    desktop.Ask(noRecord);
    desktop.Ask(PackWriteRecord(200, {0, 0, 0xFFFFFF, std::string(60000, 'x')}));
    desktop.Ask(PackSetDBInfo(1, 0, "../x"));
    const std::size_t wrong = desktop.Packets.size();
    desktop.Ask(PackEndOfSync(EndCode::Normal));

    const auto before = Databases();
    const Called called = Call(desktop);

    EXPECT_EQ(called.Code, 0) << called.Said.toStdString();
    ASSERT_EQ(desktop.Answers.size(), wrong + 1);
    for (std::size_t k = 0; k < wrong; ++k) EXPECT_NE(desktop.Answers[k].Error, DlpError::None) << k;
    EXPECT_EQ(desktop.Answers.back().Error, DlpError::None);
    EXPECT_EQ(Databases(), before);
    ExpectTheNextIsServed();
}

/// Whatever a database is called, its file lies in its folder.
TEST_F(HostileDesktop, CannotNameAFileOutsideTheHandheld) {
    const auto files = [this](const QString& folder) {
        QStringList names;
        QDirIterator each(folder, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                          QDirIterator::Subdirectories);
        while (each.hasNext()) {
            const QString name = each.next();
            if (!name.startsWith(rig_.HandheldFolder() + QStringLiteral("/databases/"))) names << name;
        }
        names.sort();
        return names;
    };
    DlpRequest closeAll(DlpFunction::CloseDB);
    closeAll.Arguments.push_back({0x21, {}});
    OddDesktop desktop;
    for (const char* name : {"../../x", "/tmp/x", "..", ".", "C:\\x", "a\nb", "CON"}) {
        DatabaseHeader header;
        header.Name = name;
        desktop.Ask(PackCreateDB(header));
        desktop.Ask(closeAll);
        desktop.Ask(PackDeleteDB(name));
    }
    desktop.Ask(PackEndOfSync(EndCode::Normal));
    rig_.HotSync({}); // whatever a HotSync leaves is there by now
    const QStringList before = files(rig_.Folder());
    const auto databases = Databases();

    EXPECT_EQ(Call(desktop).Code, 0);

    for (const DlpResponse& answer : desktop.Answers) EXPECT_EQ(answer.Error, DlpError::None);
    EXPECT_EQ(desktop.Answers.size(), desktop.Packets.size());
    EXPECT_EQ(files(rig_.Folder()), before);
    EXPECT_EQ(Databases(), databases);
    ExpectTheNextIsServed();
}

} // namespace

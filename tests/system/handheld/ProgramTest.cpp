#include "system/handheld/Desk.h"

#include "handheld/Handheld.h"
#include "handheld/HandheldTable.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

namespace {

/// The program at work. What it started is gone with it.
class Press {
public:
    explicit Press(const QStringList& words) {
        process_.start(QStringLiteral(TRAMBLE_BUILD "/bin/handheld"), words);
        EXPECT_TRUE(process_.waitForStarted());
    }
    Press(const Press&) = delete;
    Press& operator=(const Press&) = delete;
    ~Press() { Kill(); }

    /// Its exit code, once it has ended; -1 when it did not end by itself.
    int End() {
        constexpr int late = 60000;
        if (process_.state() != QProcess::NotRunning) process_.waitForFinished(late);
        out_ += process_.readAllStandardOutput();
        err_ += process_.readAllStandardError();
        return process_.exitStatus() == QProcess::NormalExit && process_.state() == QProcess::NotRunning
                   ? process_.exitCode()
                   : -1;
    }
    void Kill() {
        process_.kill();
        process_.waitForFinished();
    }

    std::string Out() const { return out_.toStdString(); }
    std::string Err() const { return err_.toStdString(); }

private:
    QProcess process_;
    QByteArray out_, err_;
};

class HandheldProgram : public ::testing::Test {
protected:
    HandheldProgram() {
        Press made({Place(), QStringLiteral("new"), QStringLiteral("--user"), QStringLiteral("Änne Berg"),
                    QStringLiteral("--id"), QStringLiteral("4711"), QStringLiteral("--machine"),
                    QStringLiteral("M1")});
        EXPECT_EQ(made.End(), 0) << made.Err();
    }

    QString Place() const { return folder_.filePath(QStringLiteral("handheld")); }
    Handheld Its() const { return Handheld(Place().toStdString()); }

    QStringList Words(const char* words) const {
        return QStringList{Place()} + QString::fromUtf8(words).split(QLatin1Char(' '));
    }
    QStringList HotSync(const QString& more = QString()) const {
        QStringList words{Place(), QStringLiteral("hotsync"), desk_.Where()};
        if (!more.isEmpty()) words += more.split(QLatin1Char(' '));
        return words;
    }

    void GivenMasters() const {
        Handheld handheld = Its();
        const auto put = [&](const char* name, std::vector<std::pair<const char*, const char*>> values) {
            HandheldTable table = HandheldTable::OpenOrMake(handheld.Store, name, 1, 1);
            std::string fields = table.NewFields();
            for (const auto& [field, value] : values) table.Put(fields, field, value);
            table.Append(fields);
            handheld.Store.Save(table.Data());
        };
        put("ZUKCUST", {{"C_SEARCH", "ACME"}, {"C_CODE", "C1"}, {"C_NAME", "Acme \xC4"}});
        put("ZUKITEM", {{"I_SEARCH", "NUT"}, {"I_ITEMCODE", "N1"}, {"I_PRICE", "0.215"}});
    }

    std::string BlankCustomer() const { return HandheldTable(Its().Store, "ZUKCUST").NewFields(); }

    /// A session as an office holds it: the user, a table that is sent under another name and renamed, a
    /// table that is read, and the end.
    void Serve(EndCode end = EndCode::Normal) {
        desk_.Accept();
        EXPECT_EQ(ReadUserInfo(desk_.Well(DlpRequest(DlpFunction::ReadUserInfo))).UserId, 4711U);
        desk_.Well(DlpRequest(DlpFunction::OpenConduit));
        DatabaseHeader header = HandheldHeader("ZUKVER");
        header.Name += '~';
        header.Version = 0;
        std::uint8_t handle = ReadHandle(desk_.Well(PackCreateDB(header)));
        const HandheldLayout layout{{{"V_MAJOR", 'C', 10, 0}}};
        desk_.Well(PackWriteAppBlock(handle, PackLayout(layout)));
        for (const char* version : {"100", "101"}) {
            std::string fields(10, ' ');
            layout.Put(0, version, fields);
            desk_.Well(PackWriteRecord(handle, {0, 0, 0, fields}));
        }
        desk_.Well(DlpRequest(DlpFunction::OpenConduit));
        desk_.Well(PackSetDBInfo(handle, WholeTable, ""));
        header.Name.pop_back();
        desk_.Well(PackSetDBInfo(handle, 0xFFFF, header.Name));
        desk_.Well(PackCloseDB(handle));
        handle = ReadHandle(desk_.Well(PackOpenDB("TZUK20000_ZUKCUST", false)));
        EXPECT_EQ(ReadRecordAnswer(desk_.Well(PackReadRecord(handle, 0))).Record.Data.substr(0, 5), "ACME ");
        desk_.Well(PackCloseDB(handle));
        desk_.Well(PackSyncLog("of the session\n"));
        desk_.Well(PackEndOfSync(end));
        desk_.Close();
    }

    static constexpr const char* SessionReport = "TZUK20000_ZUKVER: written, 2 records\n"
                                                 "TZUK20000_ZUKCUST: read, 1 records\n"
                                                 "HotSync: done\n";

    QTemporaryDir folder_;
    Desk desk_;
};

TEST_F(HandheldProgram, HelpTellsThatItStandsInForAHandheld) {
    Press help({QStringLiteral("help")});

    EXPECT_EQ(help.End(), 0);
    EXPECT_NE(help.Out().find("stands in for a handheld"), std::string::npos);
    Press nothing({});
    EXPECT_EQ(nothing.End(), 2);
}

TEST_F(HandheldProgram, TakesAnOrderAndShowsIt) {
    GivenMasters();

    Press order(Words("order --customer acme --line N1:10 --po Ä1"));
    EXPECT_EQ(order.End(), 0) << order.Err();
    EXPECT_EQ(order.Out(), "M1000001\n");

    Press show(Words("show ORHDR"));
    EXPECT_EQ(show.End(), 0);
    EXPECT_NE(show.Out().find("  H_BILLNAME  Acme Ä\n"), std::string::npos) << show.Out();
    EXPECT_NE(show.Out().find("  H_CUST_PO   Ä1\n"), std::string::npos);
    EXPECT_NE(show.Out().find("  H_TOTITEMS  2.15\n"), std::string::npos);
}

TEST_F(HandheldProgram, ASessionLeavesWhatTheDesktopWroteAndTellsOfIt) {
    GivenMasters();
    Press press(HotSync());

    Serve();

    EXPECT_EQ(press.End(), 0) << press.Err();
    EXPECT_EQ(press.Out(), SessionReport);
    Press version(Words("version"));
    EXPECT_EQ(version.End(), 0);
    EXPECT_EQ(version.Out(), "100\n");
    const Handheld now = Its();
    EXPECT_EQ(now.Settings.LastEnd, "done");
    EXPECT_NE(now.Settings.User.LastGoodSync.Year, 0);
    EXPECT_FALSE(now.Store.Has("TZUK20000_ZUKVER~"));
}

TEST_F(HandheldProgram, ALineThatIsSlowOrSplitsItsPacketsComesToTheSame) {
    GivenMasters();
    for (const char* how : {"--split", "--slow 100000", "--split --slow 60000"}) {
        Press press(HotSync(QString::fromLatin1(how)));
        Serve();
        EXPECT_EQ(press.End(), 0) << how << press.Err();
        EXPECT_EQ(press.Out(), SessionReport) << how;
        Handheld handheld = Its();
        handheld.Store.Remove("TZUK20000_ZUKVER");
    }
}

TEST_F(HandheldProgram, ALineThatIsCutAnywhereLeavesTheOldTableOrTheNew) {
    GivenMasters();
    int cuts = 0;
    for (int after = 0;; ++after) {
        Handheld handheld = Its();
        handheld.Store.Remove("TZUK20000_ZUKVER");
        handheld.Store.Remove("TZUK20000_ZUKVER~");
        Press press(HotSync(QStringLiteral("--cut-after %1").arg(after)));
        bool isLost = false;
        try {
            Serve();
        } catch (const LineLost&) {
            isLost = true;
            desk_.Close();
        }
        const int code = press.End();
        if (code == 0) break;
        ++cuts;
        EXPECT_EQ(code, 3) << press.Err();
        EXPECT_NE(press.Out().find("HotSync: the line was cut after " + std::to_string(after) + " packets\n"),
                  std::string::npos);
        const Handheld now = Its();
        if (now.Store.Has("TZUK20000_ZUKVER")) {
            EXPECT_EQ(now.Store.Load("TZUK20000_ZUKVER").Records.size(), 2U);
        }
        ASSERT_LT(after, 200);
        EXPECT_TRUE(isLost || desk_.Packets() >= after);
    }
    // Five of the handshake and two for each of the fifteen requests; the last cut is behind the last packet.
    EXPECT_EQ(cuts, 5 + 2 * 15 + 1);
}

TEST_F(HandheldProgram, ACancelIsAnsweredToTheNextConduit) {
    GivenMasters();
    Press press(HotSync(QStringLiteral("--cancel-after 9")));

    desk_.Accept();
    EXPECT_EQ(desk_.Ask(DlpRequest(DlpFunction::OpenConduit)).Error, DlpError::None);
    EXPECT_EQ(desk_.Ask(DlpRequest(DlpFunction::ReadUserInfo)).Error, DlpError::None);
    EXPECT_EQ(desk_.Packets(), 9);
    EXPECT_EQ(desk_.Ask(DlpRequest(DlpFunction::OpenConduit)).Error, DlpError::Cancelled);
    desk_.Well(PackEndOfSync(EndCode::Cancelled));
    desk_.Close();

    EXPECT_EQ(press.End(), 1);
    EXPECT_EQ(press.Err(), "handheld: HotSync: ended by the desktop, code 2\n");
}

TEST_F(HandheldProgram, WhatWasWrittenStaysWhenTheDesktopGoes) {
    GivenMasters();
    Press press(HotSync());

    desk_.Accept();
    const std::uint8_t handle = ReadHandle(desk_.Well(PackOpenDB("TZUK20000_ZUKCUST", true)));
    desk_.Well(PackWriteRecord(handle, {0, 0, 0, BlankCustomer()}));
    desk_.Close();

    EXPECT_EQ(press.End(), 1);
    EXPECT_EQ(press.Err(), "handheld: HotSync: the line was lost\n");
    EXPECT_EQ(press.Out(), "TZUK20000_ZUKCUST: written, 1 records\n");
    EXPECT_EQ(Its().Store.Load("TZUK20000_ZUKCUST").Records.size(), 2U);
    EXPECT_EQ(Its().Settings.LastEnd, "the line was lost");
}

TEST_F(HandheldProgram, TheDesktopIsLookedUpByItsName) {
    GivenMasters();
    const QString port = QString::number(desk_.LookupPort());
    Press press(HotSync(QStringLiteral("--lookup office --lookup-port ") + port));

    const std::optional<NetLookup> asked = desk_.AnswerLookup();
    ASSERT_TRUE(asked);
    EXPECT_EQ(asked->Name, "office");
    EXPECT_EQ(asked->Address, 0x7F000001U);
    EXPECT_FALSE(asked->IsAnswer);
    Serve();

    EXPECT_EQ(press.End(), 0) << press.Err();
}

TEST_F(HandheldProgram, ADesktopThatDoesNotKeepToTheProtocolIsToldOf) {
    Press press(HotSync());
    desk_.Accept();

    desk_.SendRaw(QByteArray("rubbish"));

    EXPECT_EQ(press.End(), 1);
    EXPECT_EQ(press.Err(),
              "handheld: HotSync: the desktop does not keep to the protocol: a packet of type 114\n");
    EXPECT_NE(Its().Settings.LastEnd.find("protocol"), std::string::npos);
}

TEST_F(HandheldProgram, ADesktopThatIsSilentIsGivenUp) {
    Press press(HotSync(QStringLiteral("--patience 1")));
    desk_.Accept();

    EXPECT_EQ(press.End(), 1);
    EXPECT_EQ(press.Err(), "handheld: HotSync: the desktop was silent for 1 seconds\n");
}

TEST_F(HandheldProgram, WhereNobodyListensThereIsNoSession) {
    QString nobody;
    {
        const Desk gone;
        nobody = gone.Where();
    }

    Press press({Place(), QStringLiteral("hotsync"), nobody});

    EXPECT_EQ(press.End(), 1);
    EXPECT_EQ(press.Err().substr(0, 41), "handheld: HotSync: no connection to 127.0");
}

TEST_F(HandheldProgram, ASecondCommandOnAFolderIsTurnedAway) {
    GivenMasters();
    Press first(HotSync());
    desk_.Accept();

    Press second(Words("info"));
    EXPECT_EQ(second.End(), 1);
    EXPECT_EQ(second.Err(),
              "handheld: another command is using the handheld in " + Place().toStdString() + "/\n");

    desk_.Well(PackEndOfSync(EndCode::Normal));
    desk_.Close();
    EXPECT_EQ(first.End(), 0) << first.Err();
    Press third(Words("info"));
    EXPECT_EQ(third.End(), 0) << third.Err();
}

TEST_F(HandheldProgram, AKilledOneLeavesItsFolderToTheNext) {
    GivenMasters();
    Press killed(HotSync());
    desk_.Accept();
    const std::uint8_t handle = ReadHandle(desk_.Well(PackOpenDB("TZUK20000_ZUKCUST", true)));
    desk_.Well(PackWriteRecord(handle, {0, 0, 0, BlankCustomer()}));
    desk_.Well(PackCloseDB(handle));

    killed.Kill();

    Press next(Words("tables"));
    EXPECT_EQ(next.End(), 0) << next.Err();
    EXPECT_NE(next.Out().find("ZUKCUST: 2 records"), std::string::npos) << next.Out();
}

} // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}

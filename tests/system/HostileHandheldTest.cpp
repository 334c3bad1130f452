#include "WireTest.h"

#include "core/CodePage.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "palm/Converter.h"
#include "platform/Convert.h"
#include "store/TableCatalogue.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QTimer>

#include <array>
#include <map>
#include <set>

namespace {

using Moment = OddHandheld::Moment;
using Twist = std::function<std::string(const Moment&)>;

class HostileHandheld : public WireTest {
protected:
    using WireTest::WireTest;

    struct Lie {
        const char* What;
        Twist Told;
        QString Logged;
        QStringList Left; ///< the rows at the target afterwards
        bool Begins = true;
    };

    /// Each lie by a handheld of its own; one manager lives through them all.
    void ExpectEachIsSurvived(const std::vector<Lie>& lies) {
        for (const Lie& lie : lies) {
            SCOPED_TRACE(lie.What);
            PutOld();
            NewLog();
            const auto odd = Odd();
            odd->Twist = lie.Told;

            const auto outcome = Meet(*odd, lie.Begins);

            EXPECT_EQ(outcome.Begun(), lie.Begins);
            EXPECT_EQ(RowsOf(Target()), lie.Left);
            ExpectLogged(lie.Logged);
            ExpectLogged(QStringLiteral(": session ended "));
            ASSERT_TRUE(rig_.ManagerRuns());
        }
        ExpectTheNextIsServed();
    }

    /// The answers to one kind of request, told otherwise.
    static Twist To(DlpFunction function, Twist twist) {
        return [=](const Moment& moment) { return moment.Answers(function) ? twist(moment) : moment.Right; };
    }

    /// The message of the right answer, told otherwise, in a packet that tells its length.
    static Twist Message(DlpFunction function, std::function<std::string(std::string)> change) {
        return To(function, [=](const Moment& moment) {
            return AnswerPacket(moment.Transaction, change(moment.Right.substr(HeaderSize)));
        });
    }

    static Twist Length(DlpFunction function, std::function<std::uint32_t(std::uint32_t)> claim) {
        return To(function, [=](const Moment& moment) {
            const std::string message = moment.Right.substr(HeaderSize);
            ByteWriter packet;
            packet.U8(NetPacket::Data).U8(moment.Transaction);
            packet.U32(claim(static_cast<std::uint32_t>(message.size()))).Put(message);
            return packet.Bytes();
        });
    }

    static Twist Argument(DlpFunction function, std::string argument) {
        return Message(function, [=](const std::string&) { return PackResponse({function, argument}); });
    }

    static Twist Records(std::function<void(RecordAnswer&)> change) {
        return Message(DlpFunction::ReadRecord, [=](const std::string& message) {
            const DlpResponse right = ReadResponse(message);
            if (right.Error != DlpError::None) return message;
            RecordAnswer answer = ReadRecordAnswer(right);
            change(answer);
            return PackResponse(PackRecord(DlpFunction::ReadRecord, answer));
        });
    }

    static Twist Count(std::function<std::uint16_t()> count) {
        return Message(DlpFunction::ReadOpenDBInfo, [=](const std::string&) {
            ByteWriter bytes;
            bytes.U16(count());
            return PackResponse({DlpFunction::ReadOpenDBInfo, bytes.Bytes()});
        });
    }

    static Twist Block(const std::string& block) {
        ByteWriter bytes;
        bytes.U16(static_cast<unsigned>(block.size())).Put(block);
        return Argument(DlpFunction::ReadAppBlock, bytes.Bytes());
    }

    std::set<QString> Folders() const {
        std::set<QString> folders;
        QDirIterator each(rig_.Folder(), QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot,
                          QDirIterator::Subdirectories);
        while (each.hasNext()) folders.insert(each.next());
        return folders;
    }

    static constexpr std::size_t HeaderSize = 6;
};

// ---- lines that break ----

TEST_F(HostileHandheld, MayVanishInsideAnyPacket) {
    const std::vector<WireRig::Transfer> both{{true, Target()}, {false, folder_ + "new/ZUKVER.DBF"}};
    std::vector<std::size_t> sizes;
    {
        const auto whole = Odd();
        whole->Twist = [&](const Moment& moment) {
            sizes.push_back(moment.Right.size());
            return moment.Right;
        };
        Meet(*whole, both, true);
        ASSERT_EQ(whole->Ended(), EndCode::Normal);
    }
    ASSERT_GT(sizes.size(), 30U);
    NewLog();

    // The session begins when the fifth packet has told the user.
    constexpr int user = 4;
    qsizetype cases = 0;
    for (int packet = 0; packet < static_cast<int>(sizes.size()); ++packet) {
        const std::size_t size = sizes[static_cast<std::size_t>(packet)];
        for (const std::size_t bytes : packet % 2 == 0
                                           ? std::set<std::size_t>{0, 1, HeaderSize, size - 1}
                                           : std::set<std::size_t>{5, HeaderSize + 1, size / 2, size}) {
            SCOPED_TRACE(::testing::Message() << bytes << " bytes of packet " << packet);
            PutOld();
            const auto odd = Odd();
            odd->Cut = {packet, bytes, ++cases % 2 == 0};

            Meet(*odd, both, packet > user);

            const QStringList rows = RowsOf(Target());
            EXPECT_TRUE(rows == Old() || rows == New()) << rows.join(QLatin1Char(' ')).toStdString();
            ExpectNoWorkFilesIn(rig_.Folder() + QStringLiteral("/pc"));
            ASSERT_TRUE(rig_.ManagerRuns());
        }
    }

    ExpectTheNextIsServed();
    const QString log = NewLog();
    EXPECT_EQ(log.count(QStringLiteral(": session ended ")) +
                  log.count(QStringLiteral(": went away while it waited")),
              cases + 1);
    EXPECT_GT(log.count(QStringLiteral("session ended early: the handheld went away")), cases / 2);
}

// ---- lengths, sizes and counts that lie ----

TEST_F(HostileHandheld, CannotLieAboutTheLengthOfAPacket) {
    const auto list = DlpFunction::ReadDBList;
    ExpectEachIsSurvived({
        {"4 GB", Length(list, [](auto) { return 0xFFFFFFFF; }), "a packet of 4294967295 bytes", Old()},
        {"the sign", Length(list, [](auto) { return 0x80000000; }), "a packet of 2147483648 bytes", Old()},
        {"one too many", Length(list, [](auto) { return PacketReader::LongestPayload + 1; }),
         "a packet of 131073 bytes", Old()},
        {"nothing", Length(list, [](auto) { return 0; }), "early: answer: ", Old()},
        {"less than comes", Length(list, [](auto size) { return size - 3; }), "early: answer: ", Old()},
        {"4 GB before the session", Length(DlpFunction::ReadUserInfo, [](auto) { return 0xFFFFFFFF; }),
         "a packet of 4294967295 bytes", Old(), false},
        {"4 GB in place of the greeting",
         [](const Moment&) { return std::string("\x01\xFF\xFF\xFF\xFF\xFF", 6) + std::string(100, '\x90'); },
         "a packet of 4294967295 bytes", Old(), false},
    });
}

TEST_F(HostileHandheld, CannotLieAboutTheSizeOfAnArgument) {
    const auto open = DlpFunction::OpenDB;
    const auto message = [open](const std::string& bytes) {
        return Message(open, [=](const std::string&) { return bytes; });
    };
    ExpectEachIsSurvived({
        {"tiny", message(std::string("\x97\x01\0\0\x20\xFF\x01", 7)), "early: answer: ", Old()},
        {"small", message(std::string("\x97\x01\0\0\xA0\0\xFF\xFF\x01", 9)), "early: answer: ", Old()},
        {"long", message(std::string("\x97\x01\0\0\x60\0\xFF\xFF\xFF\xFF\x01", 11)),
         "early: answer: ", Old()},
        {"cut off in its header", message(std::string("\x97\x01\0\0\xA0\0\xFF", 7)),
         "early: answer: ", Old()},
        {"255 arguments", message(std::string("\x97\xFF\0\0\x20\x01\x01", 7)), "early: answer: ", Old()},
        {"bytes behind them", message(std::string("\x97\0\0\0\x20\x01\x01", 7)), "early: answer: ", Old()},
        {"none where one is needed", message(std::string("\x97\0\0\0", 4)), "argument 32 is missing", Old()},
        {"half a header", message("\x97"), "early: answer: ", Old()},
        {"the system", Argument(DlpFunction::ReadSysInfo, std::string("\0\0\0\0\0\0\0\0\0\xFF", 10)),
         "system information", Old(), false},
        {"the user's name",
         Argument(DlpFunction::ReadUserInfo, std::string(28, '\x01') + std::string("\xFF\0x", 3)),
         "user information", Old(), false},
    });
}

TEST_F(HostileHandheld, CannotLieAboutWhatItsDatabasesHold) {
    const auto changing = [](std::vector<std::uint16_t> counts) {
        auto next = std::make_shared<std::size_t>(0);
        return Count([=] { return counts.at(std::min((*next)++, counts.size() - 1)); });
    };
    HandheldLayout wide;
    for (int k = 0; k < 128; ++k) wide.Fields.push_back({"F" + std::to_string(k), 'C', 255, 0});
    ExpectEachIsSurvived({
        {"65535 records", Count([] { return 65535; }), "read record 4: not found", Old()},
        {"fewer at the end", changing({3, 2}), "changed while it was read", Old()},
        {"more at the end", changing({3, 65535}), "changed while it was read", Old()},
        {"none, and then some", changing({0, 3}), "changed while it was read", Old()},
        {"a record that is larger than it is", Records([](auto& answer) { answer.Size = 300; }),
         "failed: ", Old()},
        {"a record of which nothing comes", Records([](auto& answer) {
             answer.Size = 65535;
             answer.Record.Data.clear();
         }),
         "it changed meanwhile", Old()},
        {"a record that is smaller than it is", Records([](auto& answer) { answer.Size = 1; }),
         "more bytes than the record has", Old()},
        {"a record that is too short for its fields", Records([](auto& answer) {
             answer.Size = 3;
             answer.Record.Data.resize(3);
         }),
         "failed: ", Old()},
        {"a record with something behind its fields", Records([](auto& answer) {
             answer.Record.Data += "INK1\xFF\xFF\xFF\xFF";
             answer.Size = static_cast<std::uint16_t>(answer.Record.Data.size());
         }),
         "failed: ", Old()},
        {"another record", Records([](auto& answer) { answer.Index = 0; }), "another record came", Old()},
        {"a category", Records([](auto& answer) { answer.Record.Category = 200; }), "category 200", Old()},
        {"no fields", Block(std::string("ZUKT\0\1\0\0", 8)), "failed: ", Old()},
        {"fields that are not there", Block(std::string("ZUKT\0\1\xFF\xFF", 8)), "failed: ", Old()},
        {"another mark", Block("PKZIP and more"), "failed: ", Old()},
        {"the size of the fields",
         Argument(DlpFunction::ReadAppBlock, std::string("\xFF\xFF", 2) + PackLayout(wide)),
         "another size than it says", Old()},
    });
}

TEST_F(HostileHandheld, MayListDatabasesForEver) {
    const auto list = [](std::function<DatabaseList(std::uint16_t)> make) {
        return To(DlpFunction::ReadDBList, [=](const Moment& moment) {
            bool several = false;
            return AnswerPacket(moment.Transaction,
                                PackDatabaseList(make(ReadListRequest(*moment.Request, several))));
        });
    };
    DatabaseInfo database;
    database.Name = "TZUK20000_NOTHING";
    database.Creator = HandheldCreator;
    const std::vector<DatabaseInfo> many(255, database);
    const std::int64_t before = MostMemory();

    ExpectEachIsSurvived({
        {"the same piece", list([&](auto) {
             return DatabaseList{0, true, {database}};
         }),
         "1 transfer", New()},
        {"an empty piece", list([&](auto first) {
             return DatabaseList{first, true, {}};
         }),
         "1 transfer", New()},
        {"a place further each time", list([&](auto first) {
             return DatabaseList{first, true, many};
         }),
         "more databases than a handheld can have", Old()},
        {"the last place", list([&](auto) {
             return DatabaseList{65535, true, many};
         }),
         "1 transfer", New()},
        {"a name without an end",
         Argument(DlpFunction::ReadDBList,
                  std::string("\0\0\0\x01", 4) + '\x2E' + std::string(43, '\0') + "xx"),
         "database in a list", Old()},
    });
    EXPECT_LT(MostMemory() - before, 150);
}

// ---- answers that belong elsewhere ----

TEST_F(HostileHandheld, MayAnswerUnderStrangeNumbers) {
    const auto every = [](std::function<std::string(const Moment&)> twist) {
        return [=](const Moment& moment) { return moment.Request ? twist(moment) : moment.Right; };
    };
    ExpectEachIsSurvived({
        {"another function", every([](const Moment& moment) {
             std::string bytes = moment.Right;
             bytes[HeaderSize] = '\xAF';
             return bytes;
         }),
         "the number of another request", New()},
        {"a function that nobody knows", every([](const Moment& moment) {
             std::string bytes = moment.Right;
             bytes[HeaderSize] = '\xFE';
             return bytes;
         }),
         "the number of another request", New()},
        {"another transaction", every([](const Moment& moment) {
             std::string bytes = moment.Right;
             bytes[1] = '\x77';
             return bytes;
         }),
         "the number of another request", New()},
        {"a request", every([](const Moment& moment) {
             return moment.Answers(DlpFunction::OpenDB) ? AnswerPacket(1, PackRequest(*moment.Request))
                                                        : moment.Right;
         }),
         "a request in its place", Old()},
        {"tickles before each", every([](const Moment& moment) {
             return PackPacket({NetPacket::Tickle, 0xFF, {}}) + moment.Right;
         }),
         "1 transfer", New()},
        {"tickles without number",
         To(DlpFunction::OpenDB,
            [](const Moment& moment) {
                std::string tickles;
                for (int k = 0; k < 50000; ++k) tickles += PackPacket({NetPacket::Tickle, 0xFF, {}});
                return tickles + moment.Right;
            }),
         "1 transfer", New()},
        {"a tickle that carries something",
         To(DlpFunction::OpenDB,
            [](const Moment& moment) {
                return PackPacket({NetPacket::Tickle, 0xFF, "tickle"}) + moment.Right;
            }),
         "a packet of 6 bytes", Old()},
        {"a packet of no known type",
         To(DlpFunction::OpenDB, [](const Moment& moment) { return '\x07' + moment.Right.substr(1); }),
         "a packet of type 7", Old()},
    });
}

TEST_F(HostileHandheld, DoesNotPassAnAnswerThatComesTwiceOffAsAnother) {
    const auto twice = [](DlpFunction function, int times) {
        return To(function, [=](const Moment& moment) {
            std::string bytes;
            for (int k = 0; k < times; ++k) bytes += moment.Right;
            return bytes;
        });
    };
    ExpectEachIsSurvived({
        {"a record", twice(DlpFunction::ReadRecord, 2), "the number of another request", Old()},
        {"the opening", twice(DlpFunction::OpenDB, 2), "the number of another request", Old()},
        {"the count", twice(DlpFunction::ReadOpenDBInfo, 2), "the number of another request", Old()},
        {"a flood", twice(DlpFunction::OpenDB, 50000), "the number of another request", Old()},
    });
}

TEST_F(HostileHandheld, MayBeAnotherProgramAltogether) {
    const auto says = [](const std::string& bytes) { return [=](const Moment&) { return bytes; }; };
    ExpectEachIsSurvived({
        {"a browser", says("GET / HTTP/1.1\r\nHost: office\r\n\r\n"), "a packet of type 71", Old(), false},
        {"a secure browser", says(std::string("\x16\x03\x01\x02\0\x01\0\x01\xFC\x03\x03", 11)),
         "a packet of type 22", Old(), false},
        {"a handheld that begins in the middle",
         says(std::string("\x01\xFF\0\0\0\x08\x92\0\0\0\0\0\0\0", 14)),
         "no packet of a HotSync handshake, step 1", Old(), false},
        {"a handheld that greets for ever", [](const Moment&) { return PackPacket(HandheldHello()); },
         "no packet of a HotSync handshake, step 2", Old(), false},
        {"an old handheld",
         To(DlpFunction::ReadSysInfo,
            [](const Moment& moment) {
                SysInfo old;
                old.DlpMinor = 1;
                return AnswerPacket(moment.Transaction, PackSysInfo(old));
            }),
         "speaks version 1.1", Old(), false},
    });
}

// ---- names ----

class HostileName : public HostileHandheld {
protected:
    using HostileHandheld::HostileHandheld;

    static Twist User(std::uint32_t id, const std::string& name) {
        ByteWriter user;
        user.U32(id).U32(0).U32(0).Put(std::string(16, '\0'));
        user.U8(static_cast<unsigned>(name.size() + 1)).U8(0).Text(name);
        return Argument(DlpFunction::ReadUserInfo, user.Bytes());
    }
};

TEST_F(HostileName, IsRefusedOnOneLineOfTheLogAndMakesNoFolder) {
    const std::vector<std::string> names{"..\\..\\x",
                                         "../../x",
                                         "/etc/x",
                                         "C:x",
                                         "..",
                                         ".",
                                         "CON",
                                         "NUL.txt",
                                         std::string("a\0b", 3),
                                         "a\nb",
                                         "a\r\n2026-01-01 00:00:00 BOSS: all well",
                                         "a\tb",
                                         "\x1B[2J",
                                         std::string(40, '\xFF'),
                                         "",
                                         "ANNA",
                                         "HotSync.log"};
    for (const std::string& name : names) {
        SCOPED_TRACE(name);
        PutOld();
        const auto odd = Odd();
        const auto folders = Folders();
        NewLog();
        odd->Twist = User(4711, name);

        const auto outcome = Meet(*odd);

        EXPECT_FALSE(outcome.Begun());
        EXPECT_NE(odd->Ended(), EndCode::Normal);
        EXPECT_EQ(Folders(), folders);
        const QString log = NewLog();
        EXPECT_EQ(log.count(QLatin1Char('\n')), 1) << log.toStdString();
        EXPECT_TRUE(log.contains(QStringLiteral("no user of this manager is called"))) << log.toStdString();
        EXPECT_FALSE(log.trimmed().contains(QRegularExpression(QStringLiteral("[\\x00-\\x1f\\x7f]"))))
            << log.toStdString();
    }
    ExpectTheNextIsServed();
}

TEST_F(HostileName, OfMoreThanItsLengthIsNoName) {
    for (const std::string& name : {std::string(41, 'x'), std::string(254, '\xFF')}) {
        PutOld();
        const auto odd = Odd();
        const auto folders = Folders();
        odd->Twist = User(4711, name);

        EXPECT_FALSE(Meet(*odd).Begun());

        EXPECT_EQ(Folders(), folders);
        ExpectLogged(QStringLiteral("user information: a name of more than 40 bytes"));
    }
    ExpectTheNextIsServed();
}

TEST_F(HostileName, UnderAKnownIdIsSetRightAgain) {
    const auto odd = Odd();
    const auto folders = Folders();
    std::string changed;
    odd->Twist = [&](const Moment& moment) {
        if (moment.Answers(DlpFunction::WriteUserInfo)) changed = ReadUserChange(*moment.Request).Name;
        if (!moment.Answers(DlpFunction::ReadUserInfo)) return moment.Right;
        const UserInfo user = ReadUserInfo(ReadResponse(moment.Right.substr(HeaderSize)));
        return User(user.UserId, "../../etc")(moment);
    };

    EXPECT_TRUE(Meet(*odd, true).Begun());

    EXPECT_EQ(changed, "ANNA");
    EXPECT_EQ(Folders(), folders);
    EXPECT_EQ(RowsOf(Target()), New());
    ExpectTheNextIsServed();
}

/// A handheld without a user, and a user without a handheld.
class NobodysHandheld : public HostileName {
protected:
    NobodysHandheld()
        : HostileName({{QStringLiteral("BEN")},
                       [](ManagerSettings& settings) { settings.KeepAliveSeconds = 1; },
                       false}) {}
};

TEST_F(NobodysHandheld, MayVanishWhileTheOperatorIsAskedWhoseItIs) {
    const auto odd = Odd();
    bool isWaiting = false;
    odd->Twist = [&](const Moment& moment) {
        isWaiting = isWaiting || moment.Answers(DlpFunction::OpenConduit);
        return moment.Answers(DlpFunction::ReadUserInfo) ? User(0, "")(moment) : moment.Right;
    };
    odd->Call(rig_.Port());
    ASSERT_TRUE(rig_.Until([&] { return isWaiting; }));

    odd->HangUp();

    ExpectTheNextIsServed();
    ExpectLogged(QStringLiteral("session ended early: the handheld went away"));
}

// ---- sizes ----

class LargeTable : public HostileHandheld {
protected:
    static constexpr int Megabytes = 8;
    LargeTable()
        : HostileHandheld(
              {{}, [](ManagerSettings& settings) { settings.LargestTableMB = Megabytes; }, false}) {}

    static HandheldLayout Headers() {
        HandheldLayout layout;
        for (const TableField& field : FindTable("ZUKORHDR")->Fields) {
            layout.Fields.push_back({std::string(field.Name), field.Type,
                                     static_cast<std::uint8_t>(field.Length),
                                     static_cast<std::uint8_t>(field.Decimals)});
        }
        return layout;
    }
};

TEST_F(LargeTable, ThatIsClaimedIsRefusedBeforeARecordComes) {
    HandheldLayout wide;
    for (int k = 0; k < 8; ++k) wide.Fields.push_back({"F" + std::to_string(k), 'C', 255, 0});
    int records = 0;
    const std::int64_t before = MostMemory();
    const auto odd = Odd();
    odd->Twist = [&, fields = Block(PackLayout(wide)),
                  count = Count([] { return 52000; })](const Moment& moment) {
        records += moment.Answers(DlpFunction::ReadRecord) ? 1 : 0;
        return moment.Answers(DlpFunction::ReadAppBlock) ? fields(moment) : count(moment);
    };

    Meet(*odd, true);

    EXPECT_EQ(records, 0);
    EXPECT_EQ(RowsOf(Target()), Old());
    ExpectLogged(QStringLiteral("52000 records are more than 8 MB"));
    EXPECT_LT(MostMemory() - before, 50);
    ExpectTheNextIsServed();
}

/// Drawings count, too.
TEST_F(LargeTable, OfSignaturesIsLeftWhereTheLimitIsReached) {
    const HandheldLayout layout = Headers();
    constexpr std::uint16_t count = 800;
    std::uint16_t sent = 0;
    const std::int64_t before = MostMemory();
    const std::string headers = folder_ + "pc/ZUKORHDR.DBF";
    const auto odd = Odd();
    odd->Twist = [&, fields = Block(PackLayout(layout)), counts = Count([] { return count; }),
                  opened = Argument(DlpFunction::OpenDB, "\x01")](const Moment& moment) {
        if (moment.Answers(DlpFunction::OpenDB)) return opened(moment);
        if (moment.Answers(DlpFunction::ReadAppBlock)) return fields(moment);
        if (!moment.Answers(DlpFunction::ReadRecord)) return counts(moment);
        RecordAnswer answer;
        answer.Index = sent++;
        HandheldRecord record;
        record.Fields = std::string(layout.RecordBytes(), ' ');
        layout.Put(layout.Find("H_ORDCODE"), "H1" + std::to_string(sent), record.Fields);
        record.Signature = {320, 320, std::string(40 * 320, '\x55')};
        answer.Record.Data = PackRecord(layout, record);
        answer.Size = static_cast<std::uint16_t>(answer.Record.Data.size());
        return AnswerPacket(moment.Transaction, PackRecord(DlpFunction::ReadRecord, answer));
    };

    Meet(*odd, {{true, headers}}, true);

    EXPECT_GT(sent, 100);
    EXPECT_LT(sent, Megabytes * 1024 / 12);
    EXPECT_FALSE(FileExists(headers));
    EXPECT_FALSE(QDir(rig_.Folder() + QStringLiteral("/pc/Images")).exists());
    ExpectLogged(QStringLiteral("800 records are more than 8 MB"));
    EXPECT_LT(MostMemory() - before, 200);
    ExpectTheNextIsServed();
}

TEST_F(LargeTable, InTheInstallFolderIsRefusedByItsSizeAndStays) {
    const QString path = rig_.ManagerFolder() + QStringLiteral("/ANNA/Install/large.pdb");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    constexpr qint64 size = qint64{100} << 20;
    ASSERT_TRUE(file.resize(size));
    const std::int64_t before = MostMemory();

    EXPECT_TRUE(rig_.HotSync(Fetch()).IsWhole());

    ExpectLogged(QStringLiteral("could not install large.pdb: "));
    EXPECT_EQ(QFileInfo(path).size(), size);
    EXPECT_LT(MostMemory() - before, 50);
    EXPECT_EQ(RowsOf(Target()), New());
    ExpectTheNextIsServed();
}

TEST_F(HostileHandheld, WithAFullMemoryKeepsItsOldTable) {
    int written = 0;
    const auto odd = Odd();
    odd->Twist = To(DlpFunction::WriteRecord, [&](const Moment& moment) {
        return ++written < 2 ? moment.Right
                             : AnswerPacket(moment.Transaction,
                                            DlpResponse(DlpFunction::WriteRecord, DlpError::NoSpace));
    });
    const std::string sent = folder_ + "pc/ZUKVER.DBF";

    const auto outcome = Meet(*odd, {{false, sent}, {true, Next()}}, true);

    EXPECT_EQ(outcome.Statuses, (std::vector<int>{1, 3, 3, 2}));
    EXPECT_EQ(odd->Ended(), EndCode::Normal);
    ExpectLogged(QStringLiteral("write record 2: not enough storage space"));
    ExpectLogged(QStringLiteral("session ended 1 transfer failed"));
    EXPECT_EQ(RowsOf(Next()), New());
    ExpectTheNextIsServed();
}

// ---- hours ----

class SlowHandheld : public HostileHandheld {
protected:
    SlowHandheld()
        : HostileHandheld({{},
                           [](ManagerSettings& settings) {
                               settings.HandshakeSeconds = 1;
                               settings.AnswerSeconds = 1;
                           },
                           false}) {}

    void ExpectGivenUp(const Twist& twist, bool begins) {
        PutOld();
        NewLog();
        const auto odd = Odd();
        odd->Twist = twist;
        EXPECT_EQ(Meet(*odd, begins).Begun(), begins);
        ExpectLogged(QStringLiteral("session ended early: the handheld did not answer in time"));
        EXPECT_EQ(RowsOf(Target()), Old());
    }
};

TEST_F(SlowHandheld, ThatNeverSaysAWordIsSentAway) {
    const auto odd = Odd();
    odd->Twist = [](const Moment&) { return std::string(); };

    EXPECT_FALSE(Meet(*odd).Begun());

    ExpectLogged(QStringLiteral("sent away, it did not greet"));
    ExpectTheNextIsServed();
}

TEST_F(SlowHandheld, ThatPromisesMoreThanComesIsGivenUp) {
    ExpectGivenUp(Length(DlpFunction::ReadRecord, [](auto size) { return size + 1; }), true);
    ExpectTheNextIsServed();
}

/// Each byte comes in time, their packet does not.
TEST_F(SlowHandheld, ThatSpellsItsAnswerByteByByteIsGivenUp) {
    PutOld();
    const auto odd = Odd();
    std::string left;
    QTimer spelling;
    QObject::connect(&spelling, &QTimer::timeout, [&] {
        if (left.empty() || !odd->IsConnected()) return;
        odd->Send(left.substr(0, 1));
        left.erase(0, 1);
    });
    odd->Twist = To(DlpFunction::ReadRecord, [&](const Moment& moment) {
        left = moment.Right;
        spelling.start(std::chrono::milliseconds(200));
        return std::string();
    });

    Meet(*odd, true);

    EXPECT_FALSE(left.empty());
    ExpectLogged(QStringLiteral("session ended early: the handheld did not answer in time"));
    EXPECT_EQ(RowsOf(Target()), Old());
    ExpectTheNextIsServed();
}

TEST_F(SlowHandheld, ThatAnswersInTimeIsServed) {
    const auto outcome = rig_.HotSync(Fetch(), {QStringLiteral("--slow"), QStringLiteral("3000")});

    EXPECT_EQ(outcome.HandheldCode, 0) << outcome.HandheldSaid.toStdString();
    EXPECT_EQ(RowsOf(Target()), New());
    ExpectTheNextIsServed();
}

} // namespace

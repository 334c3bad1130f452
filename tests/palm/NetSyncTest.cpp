#include "palm/NetSync.h"

#include "palm/Dlp.h"
#include "palm/PalmTest.h"

#include <vector>

namespace {

constexpr std::uint32_t DeskAddress = 0xC0A80121, HandAddress = 0xC0A80204;
constexpr std::uint16_t HandPort = 0xC001;

// The five packets of a handshake as handhelds and desktops have always sent them.
const std::string HelloBytes = Hex("01 FF 00000016 | 90 01 0000 00000000 0020 00000008 | 0200000000000000");
const std::string PreferencesBytes =
    Hex("01 01 00000032 | 12 01 0000 00000000 0020 00000024 |"
        "FFFFFFFF 3C00 3C00 00000000 00000000 C0A80121 0427 0000 00000000 00000000 00000000");
const std::string PreferencesAnswerBytes =
    Hex("01 01 00000032 | 92 01 0000 00000000 0020 00000024 |"
        "FFFFFFFF 003C 003C 40000000 02000000 C0A80204 C001 0000 00000000 00000000 00000000");
const std::string CompleteBytes =
    Hex("01 02 0000002E | 13 01 0000 00000000 0020 00000020 |"
        "FFFFFFFF 003C 003C 00000000 00000001 00000000 00000000 00000000 00000000");
const std::string CompleteAnswerBytes = Hex("01 02 00000008 | 93 00 0000 00000000");

NetPacket PacketOf(const std::string& bytes) {
    PacketReader reader;
    reader.Feed(bytes);
    const std::optional<NetPacket> packet = reader.Next();
    EXPECT_TRUE(packet && !reader.IsInside());
    return packet.value_or(NetPacket{});
}

NetPacket AnyPacket(Lots& lots) {
    if (lots.Below(5) == 0) return {NetPacket::Tickle, AnyU8(lots), {}};
    const int size = lots.Below(10) == 0 ? lots.Below(70000) : lots.Below(60);
    return {NetPacket::Data, AnyU8(lots), lots.Bytes(size)};
}

/// The packets that come out when bytes are fed in pieces of 1 to `largest` bytes.
std::vector<NetPacket> InPieces(const std::string& bytes, Lots& lots, int largest) {
    PacketReader reader;
    std::vector<NetPacket> packets;
    for (std::size_t at = 0; at < bytes.size();) {
        const auto size = static_cast<std::size_t>(1 + lots.Below(largest));
        reader.Feed(std::string_view(bytes).substr(at, size));
        at += size;
        while (auto packet = reader.Next()) packets.push_back(std::move(*packet));
    }
    EXPECT_FALSE(reader.IsInside());
    return packets;
}

/// One end of a line: what was sent to it lies there until it is fetched, in pieces of any size.
class LineEnd {
public:
    void Send(const std::optional<NetPacket>& packet) {
        if (packet) onTheWay_ += PackPacket(*packet);
    }

    /// Some of what is on the way arrives; the packets that are whole by then.
    std::vector<NetPacket> Fetch(Lots& lots) {
        const auto size = static_cast<std::size_t>(lots.Below(20));
        reader_.Feed(std::string_view(onTheWay_).substr(0, size));
        onTheWay_.erase(0, size);
        std::vector<NetPacket> packets;
        while (auto packet = reader_.Next()) packets.push_back(std::move(*packet));
        return packets;
    }

    bool IsQuiet() const { return onTheWay_.empty() && !reader_.IsInside(); }

private:
    std::string onTheWay_;
    PacketReader reader_;
};

} // namespace

TEST(NetSyncPacket, IsSixBytesOfHeaderAndThePayload) {
    const NetPacket packet{NetPacket::Data, 0x07, "abc"};

    EXPECT_EQ(PackPacket(packet), Hex("01 07 00000003") + "abc");
    EXPECT_EQ(PacketOf(PackPacket(packet)), packet);
}

TEST(NetSyncPacket, TickleIsAHeaderAlone) {
    const NetPacket tickle{NetPacket::Tickle, 0xFF, {}};

    EXPECT_EQ(PackPacket(tickle), Hex("02 FF 00000000"));
    EXPECT_EQ(PacketOf(PackPacket(tickle)), tickle);
}

TEST(NetSyncPacket, ComesOutOnceItsLastByteIsThere) {
    PacketReader reader;
    const std::string bytes = PackPacket({NetPacket::Data, 3, "payload"});
    for (const char c : bytes) {
        EXPECT_FALSE(reader.Next());
        reader.Feed(std::string_view(&c, 1));
        EXPECT_TRUE(reader.IsInside());
    }

    EXPECT_EQ(reader.Next()->Payload, "payload");
    EXPECT_FALSE(reader.IsInside());
    EXPECT_FALSE(reader.Next());
}

TEST(NetSyncPacket, ComesOutAlikeInWhateverPiecesItsBytesCome) {
    Lots lots(41);
    for (int round = 0; round < 60; ++round) {
        std::vector<NetPacket> packets;
        std::string bytes;
        for (int k = lots.Below(12); k > 0; --k) bytes += PackPacket(packets.emplace_back(AnyPacket(lots)));

        EXPECT_EQ(InPieces(bytes, lots, 1), packets);
        EXPECT_EQ(InPieces(bytes, lots, 9), packets);
        EXPECT_EQ(InPieces(bytes, lots, 5000), packets);
        EXPECT_EQ(InPieces(bytes, lots, 1000000), packets);
    }
}

TEST(NetSyncPacket, WithoutItsHeaderIsTakenAtTheBeginningOnly) {
    const std::string headerless = HelloBytes.substr(6);
    PacketReader reader;
    reader.Feed(headerless.substr(0, 21));
    EXPECT_FALSE(reader.Next());
    reader.Feed(headerless.substr(21) + PreferencesAnswerBytes);

    EXPECT_EQ(reader.Next(), PacketOf(HelloBytes));
    EXPECT_EQ(reader.Next(), PacketOf(PreferencesAnswerBytes));
    reader.Feed(headerless);
    EXPECT_EQ(Refusal([&] { reader.Next(); }), "a packet of type 144");
}

TEST(NetSyncPacket, OfFourGigabytesIsRefusedByItsHeader) {
    PacketReader reader;
    reader.Feed(Hex("01 01 FFFFFFFF"));

    EXPECT_EQ(Refusal([&] { reader.Next(); }), "a packet of 4294967295 bytes");
}

TEST(NetSyncPacket, AByteLongerThanTheLongestIsRefusedAndTheLongestIsTaken) {
    const NetPacket longest{NetPacket::Data, 1, std::string(PacketReader::LongestPayload, 'x')};
    EXPECT_EQ(PacketOf(PackPacket(longest)), longest);

    PacketReader reader;
    reader.Feed(Hex("01 01 00020001"));
    EXPECT_EQ(Refusal([&] { reader.Next(); }), "a packet of 131073 bytes");
}

TEST(NetSyncPacket, TheLongestMessageFitsIntoOne) {
    DlpRequest request(DlpFunction::WriteRecord, std::string(0xFFFF, 'x'));

    EXPECT_EQ(PacketOf(PackPacket({NetPacket::Data, 9, PackRequest(request)})).Payload, PackRequest(request));
}

TEST(NetSyncPacket, OfAnUnknownTypeIsRefusedByItsFirstByteAndTheLineStaysRefused) {
    for (int type = 0; type < 256; ++type) {
        if (type == 1 || type == 2) continue;
        PacketReader reader;
        reader.Feed(HelloBytes);
        reader.Next();
        reader.Feed(std::string(1, static_cast<char>(type)));

        EXPECT_EQ(Refusal([&] { reader.Next(); }), "a packet of type " + std::to_string(type));
        reader.Feed(PackPacket({NetPacket::Data, 1, "good"}));
        EXPECT_FALSE(GoesWell([&] { reader.Next(); }));
    }
}

TEST(NetSyncPacket, ATickleWithAPayloadIsRefused) {
    PacketReader reader;
    reader.Feed(Hex("02 FF 00000001"));

    EXPECT_EQ(Refusal([&] { reader.Next(); }), "a packet of 1 bytes");
}

TEST(NetSyncHandshake, TheHandheldSendsItsThreePacketsLetterForLetter) {
    EXPECT_EQ(PackPacket(HandheldHello()), HelloBytes);
    EXPECT_EQ(PackPacket(*HandheldAnswer(PacketOf(PreferencesBytes), HandAddress, HandPort)),
              PreferencesAnswerBytes);
    EXPECT_EQ(PackPacket(*HandheldAnswer(PacketOf(CompleteBytes), HandAddress, HandPort)),
              CompleteAnswerBytes);
}

TEST(NetSyncHandshake, TheDesktopSendsItsTwoPacketsLetterForLetter) {
    DesktopHandshake handshake(DeskAddress);

    EXPECT_EQ(PackPacket(*handshake.Take(PacketOf(HelloBytes))), PreferencesBytes);
    EXPECT_EQ(PackPacket(*handshake.Take(PacketOf(PreferencesAnswerBytes))), CompleteBytes);
    EXPECT_FALSE(handshake.IsDone());
    EXPECT_EQ(handshake.Take(PacketOf(CompleteAnswerBytes)), std::nullopt);
    EXPECT_TRUE(handshake.IsDone());
}

TEST(NetSyncHandshake, TheFirstRequestBehindItIsTheThirdPacketOfTheDesktop) {
    EXPECT_EQ(NextTransaction(PacketOf(CompleteBytes).Transaction), 3);
}

TEST(NetSyncHandshake, TheHandheldAnswersWhateverTransactionNumberCame) {
    NetPacket request = PacketOf(CompleteBytes);
    for (const unsigned number : {0x00U, 0x02U, 0xFEU, 0xFFU}) {
        request.Transaction = static_cast<std::uint8_t>(number);

        EXPECT_EQ(HandheldAnswer(request, 0, 0)->Transaction, number);
    }
}

TEST(NetSyncHandshake, TheDesktopTakesWhateverAHandheldSaysOfItself) {
    for (const char* said : {"0000010000000000", "0100000000000000", "0000000200000000"}) {
        DesktopHandshake handshake(DeskAddress);
        NetPacket hello = PacketOf(HelloBytes);
        hello.Payload.replace(14, 8, Hex(said));

        EXPECT_EQ(PackPacket(*handshake.Take(hello)), PreferencesBytes);
    }
}

TEST(NetSyncHandshake, AnswersOfOtherLengthsAreTaken) {
    DesktopHandshake handshake(DeskAddress);
    NetPacket preferences = PacketOf(PreferencesAnswerBytes), complete = PacketOf(CompleteAnswerBytes);
    preferences.Payload.resize(40);
    complete.Payload += "more";

    handshake.Take(PacketOf(HelloBytes));
    handshake.Take(preferences);
    handshake.Take(complete);

    EXPECT_TRUE(handshake.IsDone());
}

TEST(NetSyncHandshake, AnyOtherPacketEndsTheDesktopsSide) {
    const std::vector<NetPacket> expected = {PacketOf(HelloBytes), PacketOf(PreferencesAnswerBytes),
                                             PacketOf(CompleteAnswerBytes)};
    const NetPacket cutHello{NetPacket::Data, 0xFF, std::string(1, '\x90')};
    for (std::size_t step = 0; step <= expected.size(); ++step) {
        std::vector<NetPacket> wrong = {{NetPacket::Tickle, 0xFF, {}},
                                        {NetPacket::Data, 1, {}},
                                        {NetPacket::Data, 1, "nonsense"},
                                        cutHello};
        for (std::size_t other = 0; other < expected.size(); ++other) {
            if (other != step) wrong.push_back(expected[other]);
        }
        for (const NetPacket& packet : wrong) {
            DesktopHandshake handshake(DeskAddress);
            for (std::size_t k = 0; k < step; ++k) handshake.Take(expected[k]);

            EXPECT_EQ(Refusal([&] { handshake.Take(packet); }),
                      "no packet of a HotSync handshake, step " + std::to_string(step + 1));
        }
    }
}

TEST(NetSyncHandshake, RequestsThatBeginWithTheSameByteBelongToNone) {
    for (const char* request : {"12 01 20 04 0001 0004", "13 00", "12 00", "12", "13"}) {
        const NetPacket packet{NetPacket::Data, 3, Hex(request)};

        EXPECT_EQ(HandheldAnswer(packet, HandAddress, HandPort), std::nullopt) << request;
        EXPECT_FALSE(IsLastOfHandshake(packet)) << request;
    }
}

TEST(NetSyncHandshake, TheHandheldKnowsWhichPacketIsItsLast) {
    EXPECT_FALSE(IsLastOfHandshake(PacketOf(PreferencesBytes)));
    EXPECT_TRUE(IsLastOfHandshake(PacketOf(CompleteBytes)));
    EXPECT_FALSE(IsLastOfHandshake({NetPacket::Tickle, 0xFF, {}}));
    EXPECT_FALSE(IsLastOfHandshake({NetPacket::Data, 1, {}}));
}

TEST(NetSyncHandshake, BothSidesComeToItsEndHoweverTheLineCutsTheirBytes) {
    for (unsigned seed = 0; seed < 200; ++seed) {
        Lots lots(seed);
        DesktopHandshake handshake(AnyU32(lots));
        LineEnd desktop, handheld;
        bool serving = false;
        std::vector<NetPacket> seen;
        desktop.Send(HandheldHello());
        while (!desktop.IsQuiet() || !handheld.IsQuiet()) {
            for (const NetPacket& packet : desktop.Fetch(lots)) {
                seen.push_back(packet);
                handheld.Send(handshake.Take(packet));
            }
            for (const NetPacket& packet : handheld.Fetch(lots)) {
                seen.push_back(packet);
                desktop.Send(HandheldAnswer(packet, AnyU32(lots), AnyU16(lots)));
                serving = serving || IsLastOfHandshake(packet);
            }
        }

        ASSERT_TRUE(handshake.IsDone() && serving) << seed;
        ASSERT_EQ(seen.size(), 5u);
        const std::vector<std::pair<int, std::size_t>> rule = {
            {0xFF, 22}, {0x01, 50}, {0x01, 50}, {0x02, 46}, {0x02, 8}};
        for (std::size_t k = 0; k < seen.size(); ++k) {
            EXPECT_EQ(seen[k].Transaction, rule[k].first) << k;
            EXPECT_EQ(seen[k].Payload.size(), rule[k].second) << k;
        }
    }
}

TEST(NetSyncHandshake, ASessionFollowsItInOneStreamOfBytes) {
    const std::string request = PackRequest(DlpRequest(DlpFunction::ReadSysInfo, Hex("0001 0004")));
    PacketReader reader;
    reader.Feed(PreferencesBytes + CompleteBytes + PackPacket({NetPacket::Data, 3, request}));
    std::vector<std::string> answered;
    while (const auto packet = reader.Next()) {
        const auto answer = HandheldAnswer(*packet, 0, 0);
        answered.push_back(answer ? "handshake" : "session");
    }

    EXPECT_EQ(answered, (std::vector<std::string>{"handshake", "handshake", "session"}));
}

TEST(NetSyncTransaction, NumbersGoFromOneTo254AndRoundAgain) {
    std::uint8_t number = 0;
    for (int expected = 1; expected <= 254; ++expected) {
        number = NextTransaction(number);
        EXPECT_EQ(number, expected);
    }
    EXPECT_EQ(NextTransaction(0xFE), 1);
    EXPECT_EQ(NextTransaction(0xFF), 1);
}

TEST(NetSyncLookup, QuestionAndAnswerAreTheseBytes) {
    const NetLookup question{false, 0, 0x7F000001, 0xFF000000, "desk"};
    NetLookup answer = question;
    answer.IsAnswer = true;

    EXPECT_EQ(PackLookup(question), Hex("FADE0100 7F000001 FF000000 6465736B00"));
    EXPECT_EQ(PackLookup(answer), Hex("FADE0200 7F000001 FF000000 6465736B00"));
    EXPECT_EQ(ReadLookup(Hex("FADE0100 7F000001 FF000000 6465736B00")), question);
    EXPECT_EQ(ReadLookup(Hex("FADE0200 7F000001 FF000000 6465736B00")), answer);
}

TEST(NetSyncLookup, WithoutANameIsOne) {
    EXPECT_EQ(ReadLookup(Hex("FADE0107 C0A8012A FFFFFF00 00")),
              (NetLookup{false, 7, 0xC0A8012A, 0xFFFFFF00, ""}));
}

TEST(NetSyncLookup, AnythingElseIsNone) {
    const std::string good = Hex("FADE0100 7F000001 FF000000 6465736B00");
    for (std::size_t size = 0; size < good.size(); ++size)
        EXPECT_EQ(ReadLookup(good.substr(0, size)), std::nullopt) << size;
    EXPECT_EQ(ReadLookup(Hex("FADF0100 7F000001 FF000000 6465736B00")), std::nullopt);
    EXPECT_EQ(ReadLookup(Hex("FADE0000 7F000001 FF000000 6465736B00")), std::nullopt);
    EXPECT_EQ(ReadLookup(Hex("FADE0300 7F000001 FF000000 6465736B00")), std::nullopt);
    EXPECT_EQ(ReadLookup(good + "x"), std::nullopt);
}

TEST(NetSyncLookup, WhatIsPackedReadsTheSame) {
    Lots lots(52);
    for (int k = 0; k < 300; ++k) {
        const NetLookup lookup{lots.Below(2) == 0, AnyU8(lots), AnyU32(lots), AnyU32(lots),
                               AnyText(lots, 0, 80)};

        EXPECT_EQ(ReadLookup(PackLookup(lookup)), lookup);
    }
}

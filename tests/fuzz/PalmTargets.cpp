#include "fuzz/PalmTargets.h"

#include "core/Globals.h"
#include "fuzz/Outside.h"
#include "handheld/DlpServer.h"
#include "handheld/Handheld.h"
#include "palm/Converter.h"
#include "palm/Database.h"
#include "palm/Dlp.h"
#include "palm/NetSync.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

/// What a reader makes of bytes; nothing when it refuses them. What is done with it afterwards may not
/// be refused any more.
template <typename Read>
auto Taken(Read&& read) -> std::optional<decltype(read())> {
    try {
        return read();
    } catch (const PalmFailure&) {
        return std::nullopt;
    }
}

std::uint8_t FirstByte(std::string_view& bytes) {
    if (bytes.empty()) return 0;
    const auto first = static_cast<std::uint8_t>(bytes.front());
    bytes.remove_prefix(1);
    return first;
}

// ---- packets ----

struct Stream {
    std::vector<NetPacket> Packets;
    bool Refused = false;

    friend bool operator==(const Stream&, const Stream&) = default;
};

Stream InPieces(std::string_view bytes, std::size_t size) {
    Stream stream;
    PacketReader reader;
    try {
        while (!bytes.empty()) {
            reader.Feed(bytes.substr(0, size));
            bytes.remove_prefix(std::min(size, bytes.size()));
            while (auto packet = reader.Next()) stream.Packets.push_back(std::move(*packet));
        }
    } catch (const PalmFailure&) {
        stream.Refused = true;
    }
    return stream;
}

/// The packets of a stream, which are the same in whatever pieces it comes, and come again when they are
/// sent again.
std::vector<NetPacket> PacketsIn(std::string_view bytes, std::size_t piece) {
    const Stream stream = InPieces(bytes, piece == 0 ? bytes.size() : piece);
    Require(InPieces(bytes, bytes.size()) == stream, "packets do not depend on the pieces they come in");
    std::string again;
    for (const NetPacket& packet : stream.Packets) again += PackPacket(packet);
    Require(InPieces(again, again.size()).Packets == stream.Packets,
            "packets that are sent again are the same");
    return stream.Packets;
}

// ---- what a desktop reads ----

/// Read, packed and read again it is the same.
template <typename Read, typename Pack>
void ReadsTheSame(const DlpResponse& response, Read&& read, Pack&& pack) {
    const auto taken = Taken([&] { return read(response); });
    if (taken) Require(read(pack(*taken)) == *taken, "what was answered can be answered again");
}

void Databases(const DlpResponse& response) {
    if (const auto list = Taken([&] { return ReadDatabaseList(response); })) {
        const DatabaseList again = ReadDatabaseList(PackDatabaseList(*list));
        Require(again.Databases == list->Databases && again.More == list->More &&
                    again.LastIndex == list->LastIndex,
                "a list can be answered again");
    }
    if (const auto found = Taken([&] { return ReadFound(response); })) {
        const DlpResponse again(response.Function, std::string(10, '\0') + PackDatabaseInfo(*found));
        Require(ReadFound(again) == *found, "a database that was found can be found again");
        Require(found->Name.size() <= LongestDatabaseName, "a database has a name of its length");
    }
}

/// The block of a table that came over the wire.
void TableBlock(std::string_view block) {
    const auto layout = Taken([&] { return ReadLayout(block); });
    if (!layout) return;
    Require(ReadLayout(PackLayout(*layout)) == *layout, "a layout can be sent again");
    Require(layout->RecordBytes() * layout->RowsInRecord <= LongestRecord,
            "a record of any layout fits a database");
}

/// A record that came from a handheld goes into a file as it is.
void Record(const DlpResponse& response) {
    const auto answer = Taken([&] { return ReadRecordAnswer(response); });
    if (!answer) return;
    Require(PackRecord(response.Function, *answer).Argument().substr(4) == response.Argument().substr(4),
            "a record can be answered again");
    if (answer->Record.Data.size() > LongestRecord) return;
    Database database;
    database.Name = "Records";
    database.Records = {answer->Record};
    database.Records[0].Flags &= 0xF0; // a file has no place for an archived one's mark
    Require(ReadDatabase(WriteDatabase(database)) == database, "a record that was answered fits a file");
}

void Response(std::string_view message) {
    const auto response = Taken([&] { return ReadResponse(message); });
    if (!response) return;
    Require(ReadResponse(PackResponse(*response)) == *response, "an answer can be sent again");
    Require(response->Error == DlpError::None || response->Arguments.empty(), "an error carries nothing");
    Require(!WordsOf(response->Error).empty(), "each error has words");
    ReadsTheSame(*response, ReadSysInfo, PackSysInfo);
    ReadsTheSame(*response, ReadUserInfo, PackUserInfo);
    Databases(*response);
    Record(*response);
    Taken([&] { return ReadHandle(*response); });
    Taken([&] { return ReadRecordCount(*response); });
    if (const auto block = Taken([&] { return ReadBlock(*response); })) {
        Require(block->size() + 2 == response->Argument().size(),
                "a block is all that stands behind its size");
        TableBlock(*block);
    }
    if (const auto date = Taken([&] { return ReadDate(response->Argument()); })) {
        Require(ReadDate(PackDate(*date)) == *date, "a date can be sent again");
        if (const std::uint32_t seconds = date->Seconds())
            Require(DlpDate::FromSeconds(seconds) == *date, "a moment is the same in seconds");
    }
}

// ---- what a handheld reads ----

void Request(std::string_view message) {
    const auto request = Taken([&] { return ReadRequest(message); });
    if (!request) return;
    Require(ReadRequest(PackRequest(*request)) == *request, "a request can be sent again");
    if (const auto change = Taken([&] { return ReadUserChange(*request); })) {
        const UserChange again = ReadUserChange(PackUserChange(*change));
        Require(again.Flags == change->Flags && again.UserId == change->UserId &&
                    again.ViewerId == change->ViewerId && again.LastSyncPC == change->LastSyncPC &&
                    again.SyncDate == change->SyncDate && again.Name == change->Name,
                "a change of the user can be sent again");
    }
    if (request->Function == DlpFunction::WriteAppBlock) {
        Taken([&] {
            ByteReader from(request->Argument(), "block");
            from.Skip(4); // the handle, and the size
            TableBlock(from.Rest());
            return true;
        });
    }
    Taken([&] {
        bool several = false;
        return ReadListRequest(*request, several);
    });
}

/// A record that is not packed.
void Row(const HandheldLayout& layout, const HandheldRecord& record, std::string_view data) {
    Require(PackRecord(layout, record) == data, "a record loses nothing");
    std::string joined, put(record.Fields.size(), ' ');
    for (std::size_t field = 0; field < layout.Fields.size(); ++field) {
        const std::string_view value = layout.Get(field, record.Fields);
        joined += value;
        layout.Put(field, value, put);
        Require(layout.Find(layout.Fields[field].Name) == field, "a field is found by its name");
    }
    Require(joined == record.Fields && put == joined, "a record is its fields");
    if (record.IsSigned()) Require(!InkBitmap(record.Signature).empty(), "ink has a bitmap");
}

} // namespace

void FuzzHandheldDatabase(std::string_view bytes) {
    const auto database = Taken([&] { return ReadDatabase(bytes); });
    if (!database) return;
    const std::string file = WriteDatabase(*database);
    Require(ReadDatabase(file) == *database, "what is read and written again reads the same");
    Require(WriteDatabase(*database) == file, "a database is written one way");
    Require(file.size() <= bytes.size() + 2, "nothing is made up");
}

void FuzzHandheldTable(std::string_view bytes) {
    std::size_t size = FirstByte(bytes) * std::size_t{256};
    size += FirstByte(bytes);
    const std::string_view block = bytes.substr(0, size);
    const std::string_view data = bytes.substr(block.size());
    const auto layout = Taken([&] { return ReadLayout(block); });
    if (!layout) return;
    Require(ReadLayout(PackLayout(*layout)) == *layout, "a layout can be packed again");
    // As two records: what stands behind one that is full, or is not.
    const std::size_t first = std::min(data.size(), layout->RecordBytes() * layout->RowsInRecord);
    RowReader reader(*layout);
    if (layout->IsPacked()) {
        std::string again;
        const auto keep = [&](std::string_view record) {
            const auto rows = Taken([&] { return reader.Read(record); });
            if (!rows) return false;
            Require(!rows->empty() && rows->size() <= layout->RowsInRecord, "a record has 1 to so many rows");
            for (const HandheldRecord& row : *rows) again += PackRecord(*layout, row);
            return true;
        };
        if (keep(data.substr(0, first)) && keep(data.substr(first)))
            Require(again == data, "packed records lose nothing");
        return;
    }
    const auto rows = Taken([&] { return reader.Read(data); });
    if (!rows) return;
    Require(rows->size() == 1, "a record that is not packed is one row");
    Row(*layout, rows->front(), data);
}

void FuzzHandheldToDesktop(std::string_view bytes) {
    const std::uint8_t how = FirstByte(bytes);
    const std::vector<NetPacket> packets = PacketsIn(bytes, how >> 1);
    DesktopHandshake handshake(0x7F000001);
    const bool isOver = (how & 1) != 0;
    for (const NetPacket& packet : packets) {
        if (packet.Type == NetPacket::Tickle) continue;
        if (isOver || handshake.IsDone()) {
            Response(packet.Payload);
        } else if (!Taken([&] { return handshake.Take(packet).has_value(); })) {
            return;
        }
    }
}

void FuzzDesktopToHandheld(std::string_view bytes) {
    const std::uint8_t how = FirstByte(bytes);
    for (const NetPacket& packet : PacketsIn(bytes, how >> 1)) {
        if (packet.Type == NetPacket::Tickle) continue;
        const auto answer = HandheldAnswer(packet, 0x7F000001, 40000);
        Require(!IsLastOfHandshake(packet) || answer, "the last packet of a handshake is answered");
        if (answer) {
            Require(answer->Transaction == packet.Transaction, "an answer has its question's number");
        } else {
            Request(packet.Payload);
        }
    }
}

void FuzzHandheldSession(std::string_view bytes) {
    const Outside outside;
    const std::string folder = "/fuzz/handheld/";
    const std::uint8_t how = FirstByte(bytes);
    HandheldSettings settings;
    if ((how & 1) != 0) settings.Memory = 1000;
    Handheld::Make(folder, settings);
    {
        Handheld handheld(folder);
        DlpServer server(handheld);
        for (const NetPacket& packet : PacketsIn(bytes, how >> 1)) {
            if (packet.Type == NetPacket::Tickle) continue;
            const DlpResponse response = ReadResponse(server.Answer(packet.Payload));
            const int asked = packet.Payload.empty() ? 0 : packet.Payload.front() & 0x7F;
            Require(static_cast<int>(response.Function) == asked, "an answer is one to its request");
        }
        if (!server.Ended()) server.EndWithout("the line was cut");
    }
    const Handheld again(folder);
    for (const DatabaseStore::Entry& entry : again.Store.Entries()) {
        Require(again.Store.Load(entry.Header.Name).Name == entry.Header.Name,
                "a database that is kept is whole");
    }
    Require(again.Store.Used() <= settings.Memory, "no more is kept than the memory holds");
    Require(Global.Files.Count() == 0, "a file was left open");
}

#include "fuzz/HandheldTarget.h"

#include "core/Globals.h"
#include "fuzz/MemoryDisk.h"
#include "handheld/DlpServer.h"
#include "palm/Converter.h"

#include <algorithm>
#include <stdexcept>

namespace {

constexpr std::string_view Place = "/fuzz/handheld/";

void Require(bool holds, const char* rule) {
    if (!holds) throw std::logic_error(rule);
}

/// A fresh program over a disk in memory.
class InMemory {
public:
    InMemory() {
        Global = Globals{};
        Global.TheDisk = &disk_;
        Global.Clock = [] { return DateTime{2026, 3, 5, 8, 0, 0}; };
    }
    InMemory(const InMemory&) = delete;
    InMemory& operator=(const InMemory&) = delete;
    ~InMemory() { Global = Globals{}; }

private:
    MemoryDisk disk_;
};

/// A handheld with a table, a program and a database of another kind.
Handheld GivenHandheld() {
    HandheldSettings settings;
    settings.User.Name = "Anna";
    settings.Memory = 4000;
    Handheld::Make(Place, settings);
    Handheld handheld(Place);

    Database table;
    static_cast<DatabaseHeader&>(table) = HandheldHeader("ZUKVER");
    table.AppInfo = PackLayout({{{"V_MAJOR", 'C', 10, 0}}});
    table.Records = {
        {DirtyRecord, 0, 1, "100       "}, {SecretRecord, 2, 2, "101       "}, {DeletedRecord, 0, 3, ""}};
    handheld.Store.Save(table);

    Database program;
    program.Name = "Tramble";
    program.Flags = ResourceDatabase;
    program.Resources = {{FourCharacters("code"), 0, "abc"}, {FourCharacters("code"), 1, "defg"}};
    handheld.Store.Save(program);
    return handheld;
}

void CheckAnswer(std::string_view request, const std::string& message) {
    const DlpResponse answer = ReadResponse(message);
    const unsigned asked = request.empty() ? 0 : static_cast<unsigned char>(request.front()) & 0x7F;
    Require(static_cast<unsigned>(answer.Function) == asked, "an answer is to what was asked");
    Require(answer.Error == DlpError::None || answer.Arguments.empty(), "an error has no arguments");
}

} // namespace

void HandheldServer(std::string_view bytes) {
    const InMemory memory;
    Handheld handheld = GivenHandheld();
    DlpServer server(handheld);
    while (!bytes.empty()) {
        const std::size_t wanted = static_cast<unsigned char>(bytes.front());
        const std::string_view request = bytes.substr(1, wanted);
        bytes.remove_prefix(1 + request.size());
        try {
            CheckAnswer(request, server.Answer(request));
        } catch (const PalmFailure&) {
            throw std::logic_error("every answer can be read");
        }
        Require(handheld.Store.Used() <= handheld.Store.Memory(), "no more is kept than the memory holds");
    }
    server.EndWithout("the line was lost");
    Require(Global.Files.Count() == 0, "a file was left open");

    const Handheld again(Place);
    Require(again.Settings == handheld.Settings, "settings that are written are read as they were");
    Require(again.Store.Used() == handheld.Store.Used(), "what is kept is as large as it was thought");
    for (const DatabaseStore::Entry& entry : again.Store.Entries()) {
        Require(again.Store.Load(entry.Header.Name).Name == entry.Header.Name, "what is kept can be read");
    }
}

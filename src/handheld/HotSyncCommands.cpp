#include "handheld/CommandTable.h"

#include "handheld/Refusal.h"
#include "palm/NetSync.h"

#include <array>
#include <limits>

namespace {

constexpr std::uint64_t Any = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t MostSpeed = 1'000'000'000;
constexpr std::uint64_t MostPatience = 86400;
constexpr std::uint64_t LastPort = 65535;

std::optional<std::uint64_t> Packets(const CommandLine& line, std::string_view option) {
    return line.Has(option) ? std::optional(line.Number(option, 0, Any)) : std::nullopt;
}

HotSyncJob JobOf(const CommandLine& line) {
    HotSyncJob job;
    TakePlace(line.Operands().front(), job);
    if (line.Has("--lookup")) job.Lookup = line.Value("--lookup");
    job.LookupPort = NetSyncLookupPort;
    if (line.Has("--lookup-port")) {
        job.LookupPort = static_cast<std::uint16_t>(line.Number("--lookup-port", 1, LastPort));
    }
    job.CancelAfter = Packets(line, "--cancel-after");
    job.CutAfter = Packets(line, "--cut-after");
    if (line.Has("--slow")) job.BytesPerSecond = line.Number("--slow", 1, MostSpeed);
    job.Split = line.Has("--split");
    if (line.Has("--patience")) job.Patience = static_cast<int>(line.Number("--patience", 1, MostPatience));
    return job;
}

Outcome HotSync(const CommandRun& run) {
    const HotSyncJob job = JobOf(run.Line);
    Handheld handheld(run.Folder);
    if (!run.Around.HotSync) throw Refusal("no line to a desktop");
    WriteDownOrders(handheld, run.Around.Err);
    return run.Around.HotSync(handheld, job, run.Out());
}

constexpr std::array<OptionDef, 7> Options{{{"--lookup"},
                                            {"--lookup-port"},
                                            {"--cancel-after"},
                                            {"--cut-after"},
                                            {"--slow"},
                                            {"--split", false},
                                            {"--patience"}}};

constexpr std::array<CommandDef, 1> Commands{{
    {"hotsync",
     "HOST[:PORT] [--lookup NAME [--lookup-port PORT]] [--cancel-after N] [--cut-after N]\n"
     "      [--slow BYTES_PER_SECOND] [--split] [--patience SECONDS]",
     "Presses HotSync: connects to the desktop, answers its requests until it ends the session, and tells\n"
     "which databases were read and written.\n"
     "  --lookup        first asks HOST by UDP for the desktop of that name, three times at most\n"
     "  --cancel-after  the user cancels after N packets, either way, those of the handshake included\n"
     "  --cut-after     the line is cut after so many; exit code 3\n"
     "  --slow          a slow line, each way\n"
     "  --split         packets are sent in several pieces\n"
     "  --patience      how long to wait for the desktop: 30 seconds when it is not given\n",
     Options, 1, 1, HotSync},
}};

} // namespace

std::span<const CommandDef> HotSyncCommands() {
    return Commands;
}

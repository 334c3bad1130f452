#include "handheld/CommandTable.h"

#include "handheld/OrderNumbers.h"
#include "handheld/Refusal.h"
#include "handheld/Totals.h"
#include "palm/NetSync.h"

#include <algorithm>
#include <array>
#include <limits>
#include <ostream>

namespace {

constexpr std::uint64_t Any = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t MostSpeed = 1'000'000'000;
constexpr std::uint64_t MostPatience = 86400;
constexpr std::uint64_t LastPort = 65535;

std::optional<std::uint64_t> Packets(const CommandLine& line, std::string_view option) {
    return line.Has(option) ? std::optional(line.Number(option, 0, Any)) : std::nullopt;
}

/// HOST or HOST:PORT; a host with colons in it, an IPv6 address, stands in brackets.
void TakePlace(const std::string& where, HotSyncJob& job) {
    const bool isBracketed = where.starts_with('[');
    const std::size_t end = std::min(where.find(isBracketed ? ']' : ':'), where.size());
    job.Host = isBracketed ? where.substr(1, end - 1) : where.substr(0, end);
    if (job.Host.empty() || (isBracketed && end == where.size())) {
        throw Misuse("no host in \"" + where + '"');
    }
    const std::string port = where.substr(isBracketed ? end + 1 : end);
    if (!port.empty() && port.front() != ':') throw Misuse("no colon behind the host in \"" + where + '"');
    job.Port = port.empty()
                   ? NetSyncPort
                   : static_cast<std::uint16_t>(WholeNumber("the port", port.substr(1), 1, LastPort));
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

/// Writes the totals, and the count of the Links table, which the HotSync may take away and not replace.
/// Neither a damaged table nor a full disk keeps a handheld from the HotSync that brings its orders home.
void WriteDownOrders(Handheld& handheld, std::ostream& err) {
    try {
        OrderNumbers(handheld).KeepIn(handheld.Settings);
        handheld.SaveSettings();
        RewriteTotals(handheld, "HOTSYNC");
    } catch (const std::exception& failure) {
        err << "handheld: the totals are not written: " << failure.what() << '\n';
    }
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

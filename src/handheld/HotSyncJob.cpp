#include "handheld/HotSyncJob.h"

#include "handheld/CommandLine.h"
#include "handheld/Handheld.h"
#include "handheld/OrderNumbers.h"
#include "handheld/Totals.h"
#include "palm/NetSync.h"

#include <algorithm>
#include <ostream>

namespace {
constexpr std::uint64_t LastPort = 65535;
}

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

void WriteDownOrders(Handheld& handheld, std::ostream& err) {
    try {
        OrderNumbers(handheld).KeepIn(handheld.Settings);
        handheld.SaveSettings();
        RewriteTotals(handheld, "HOTSYNC");
    } catch (const std::exception& failure) {
        err << "handheld: the totals are not written: " << failure.what() << '\n';
    }
}

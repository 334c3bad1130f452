#include "installation/OrdersAtRisk.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "core/TextCompare.h"
#include "installation/InstallList.h"
#include "store/TableScan.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace {

std::int64_t OrdersOnPC() {
    TableScan headers(Global.DBFPath + "ZUKORHDR.DBF");
    std::int64_t orders = 0;
    while (headers.Next()) orders += headers.Deleted() ? 0 : 1;
    return orders;
}

/// What the PC knows of a handheld's use.
struct HandheldUse {
    bool InUse = false;
    std::string LastOrder; ///< with the machine id; empty when it has none
};

HandheldUse UseOf(std::string_view user, const StatusStore& store) {
    HandheldUse use;
    TableScan links(Global.DBFPath + "ZUKLINK.DBF");
    const auto field = [&](const char* name) { return links.Layout().Find(FieldKey(name)); };
    const int id = field("LK_HOTSYNC"), machine = field("LK_MACH_ID"), last = field("LK_LSTONUM");
    while (links.Next()) {
        if (!SameText(links.Trimmed(id), user)) continue;
        const std::string number(links.Trimmed(last));
        use.InUse = use.InUse || !number.empty() || !links.Trimmed(machine).empty();
        if (!number.empty()) use.LastOrder = std::string(links.Trimmed(machine)) + number;
    }
    const std::vector<InstallRow> installs = GetList(store);
    use.InUse = use.InUse || std::any_of(installs.begin(), installs.end(), [&](const InstallRow& row) {
                    return SameText(row.HHSyncID, user) && !row.HHStatusDT.empty();
                });
    return use;
}

} // namespace

std::optional<Text> AskBeforeInstall(InstallKind kind, std::string_view user, const StatusStore& store) {
    if (kind == InstallKind::Program) return std::nullopt;
    std::vector<Text> warnings;
    if (const std::int64_t orders = kind == InstallKind::Live ? OrdersOnPC() : 0)
        warnings.push_back(Words(msg::OrdersGoAlong, Text::Value(orders)));
    if (const HandheldUse use = UseOf(user, store); use.InUse) {
        Text warning = msg::HandheldMayHoldOrders;
        if (!use.LastOrder.empty())
            warning = Words(warning, msg::LastOrderKnown, Text::Value(std::string_view(use.LastOrder)));
        warnings.push_back(warning);
        // A reset handheld keeps its machine id, and the prepared data knows no last order.
        if (kind == InstallKind::Demo && !use.LastOrder.empty()) warnings.emplace_back(msg::DemoBeginsAgain);
    }
    if (warnings.empty()) return std::nullopt;
    Text question;
    for (const Text& warning : warnings) question = question + Lines(warning, Lines({}, {}));
    return question + msg::InstallAnyway;
}

#include "sync/Arrivals.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/TextCompare.h"

#include <algorithm>

namespace {

/// 0 when there is no file that can be read.
std::uint64_t VersionOf(const std::string& path) {
    try {
        return std::max<std::uint64_t>(1, Global.TheDisk->Open(ResolvePath(path), Access::Read)->Version());
    } catch (const RunTimeFailure&) {
        return 0;
    }
}

} // namespace

void Arrivals::Remember(const std::string& path) {
    versions_[FoldCase(path)] = VersionOf(path);
}

bool Arrivals::Has(const SFrmAX40& control, const std::string& path) const {
    const auto remembered = versions_.find(FoldCase(path));
    if (remembered == versions_.end()) return false;
    const std::uint64_t now = VersionOf(path);
    return now != 0 && (control.EndedWell(path) || now != remembered->second);
}

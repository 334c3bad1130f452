#include "rdkinst/Options.h"

#include <set>

std::optional<Options> ReadOptions(const std::vector<std::string>& arguments) {
    Options options;
    std::set<std::string> seen;
    for (std::size_t at = 0; at < arguments.size(); ++at) {
        const std::string& option = arguments[at];
        if (!seen.insert(option).second) return std::nullopt;
        if (option == "-restarths") {
            options.RestartHS = true;
            continue;
        }
        std::string* const value = option == "-crtreg"     ? &options.Registered.Creator
                                   : option == "-condpath" ? &options.Registered.CondPath
                                   : option == "-name"     ? &options.Registered.Name
                                                           : nullptr;
        if (!value || ++at == arguments.size() || arguments[at].starts_with('-')) return std::nullopt;
        *value = arguments[at];
    }
    const bool complete = seen.contains("-crtreg") && seen.contains("-condpath") && seen.contains("-name");
    if (!complete || options.Registered.Creator.size() != 4) return std::nullopt;
    return options;
}

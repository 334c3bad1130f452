#pragma once

#include "sync/Conduits.h"

#include <optional>
#include <string>
#include <vector>

/// What the registration was asked for.
struct Options {
    Conduit Registered;
    bool RestartHS = false; ///< the HotSync Manager is closed and started again, so that it takes notice
};

inline constexpr const char* Usage =
    "rdkinst -crtreg CREATOR -condpath PATH -name NAME [-restarths]\n"
    "  -crtreg     the creator id of the handheld application, four characters\n"
    "  -condpath   the conduit's program file\n"
    "  -name       its name for the operator\n"
    "  -restarths  close the HotSync Manager and start it again\n"
    "rdkinst --help | --version\n";

/// Reads the arguments behind the program's own name: the options above, each once and in any order. Nothing
/// when they are not that.
std::optional<Options> ReadOptions(const std::vector<std::string>& arguments);

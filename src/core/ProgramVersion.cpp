#include "core/ProgramVersion.h"

#include <cstdio>
#include <string_view>

bool TellsVersion(int argc, const char* const* argv, const char* program, const char* version) {
    if (argc != 2 || std::string_view(argv[1]) != "--version") return false;
    std::printf("%s %s\n", program, version);
    return true;
}

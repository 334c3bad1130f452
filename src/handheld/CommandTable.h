#pragma once

#include "handheld/CommandLine.h"
#include "handheld/Commands.h"

#include <cstddef>
#include <ostream>
#include <span>
#include <string>
#include <string_view>

/// A command at work.
struct CommandRun {
    std::string Folder;
    const CommandLine& Line;
    const Surroundings& Around;

    std::ostream& Out() const { return Around.Out; }
};

/// One command of the program.
struct CommandDef {
    std::string_view Name;
    std::string_view Usage; ///< what stands behind the name
    std::string_view Help;  ///< what it does, in lines
    std::span<const OptionDef> Options;
    std::size_t LeastOperands = 0, MostOperands = 0;
    Outcome (*Run)(const CommandRun& run) = nullptr;
};

inline constexpr std::string_view NewCommand = "new";

/// In the order in which the help lists them.
std::span<const CommandDef> AllCommands();

/// The groups that AllCommands puts together.
std::span<const CommandDef> FolderCommands();
std::span<const CommandDef> TableCommands();
std::span<const CommandDef> OrderCommands();
std::span<const CommandDef> HotSyncCommands();

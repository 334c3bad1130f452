#pragma once

#include "handheld/Handheld.h"
#include "handheld/HotSyncJob.h"

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

/// How a command ended: the exit codes of the program.
enum class Outcome { Done = 0, Failed = 1, Misused = 2, Cut = 3 };

/// What commands need of the world around them.
struct Surroundings {
    std::ostream& Out; ///< UTF-8
    std::ostream& Err;

    /// Keeps others off a folder until its result is gone; Refusal when another has it. May be empty.
    std::function<std::shared_ptr<void>(const std::string& folder)> Lock;

    /// Carries out a HotSync over a line. Refusal and the failures of the disk.
    std::function<Outcome(Handheld&, const HotSyncJob&, std::ostream& out)> HotSync;
};

/// Runs a command of the stand-in handheld: the program's arguments in UTF-8, without its own name. What goes
/// wrong is told on Err; nothing is thrown.
Outcome RunCommand(const std::vector<std::string>& arguments, const Surroundings& around);

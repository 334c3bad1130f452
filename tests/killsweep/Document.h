#pragma once

#include "killsweep/Sweep.h"

#include <string>
#include <utility>
#include <vector>

// `docs/kill-sweep.md`: which source file writes what, the job that sweeps it, and what the last sweep found.

/// The jobs of a sweep, each with its findings.
using SweepResults = std::vector<std::pair<const SweepJob*, SweepFindings>>;

/// Puts the table of the results in the place of the one that the document has.
void WriteResults(const std::string& document, const SweepResults& results);

/// What is wrong with the document, a line each: a job that its tables do not name or that is none, a source
/// file that puts files in place, moves or removes them and has no row. `sources` is the folder of the
/// program's sources, with a trailing separator.
std::vector<std::string> FaultsOf(const std::string& document, const std::string& sources);

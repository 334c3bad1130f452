#pragma once

#include "killsweep/Jobs.h"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

/// The ways in which a call goes wrong.
enum class Fault { KilledBefore, KilledWithin, DiskFull, IoError };
inline constexpr std::size_t Faults = 4;

/// What the runs with one kind of fault have found.
struct FaultFindings {
    int Old = 0;  ///< runs after which every file was the one from before the job
    int Part = 0; ///< some steps of the job were taken, each whole
    int New = 0;  ///< every file was the one of an undisturbed job
    int Told = 0; ///< runs that lived and told the operator of a failure
};

struct SweepFindings {
    long Calls = 0; ///< calls that change something, in an undisturbed run
    std::array<FaultFindings, Faults> ByFault;
    std::vector<std::string> Complaints; ///< what was hurt, and at which call
};

/// Of each job the calls number `First`, `First` + `Of` and so on, counted from 1: what one of `Of` sweeps
/// that share the work takes. The shares cost the same, whatever the jobs cost.
struct Share {
    long First = 1, Of = 1;
};

/// What the sweep needs to run a job in a process of its own.
struct SweepTools {
    std::string Program; ///< runs a job when it is called as "PROGRAM job NAME OFFICE"
    std::string Library; ///< the faults
    std::string Office;  ///< an office that has been laid out and started, with a trailing separator
    std::string Log;     ///< a folder for what a run tells, with a trailing separator
};

/// Runs the job with each fault at each call of the share. The office is afterwards as it was.
SweepFindings Sweep(const SweepJob& job, const SweepTools& tools, Share share = {});

/// The process of one job: does it, prints what the operator is told, and returns the exit code, 0
/// for a job that said that all went well and 1 for one that told of a failure.
int RunJob(const SweepJob& job, const std::string& office);

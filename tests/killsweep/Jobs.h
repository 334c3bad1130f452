#pragma once

#include <string>
#include <string_view>
#include <vector>

/// One thing that a program does to the files of an office, to be disturbed at each call.
struct SweepJob {
    std::string Name;

    /// The files that it puts in place, by their paths in the office, in this order: an undisturbed
    /// run takes just these steps. A file may come twice. `Events.log` is left out.
    std::vector<std::string> Steps;

    /// Readies the laid-out office in Global for the job. Not disturbed.
    void (*Prepare)();

    /// Does it, and returns what the operator is told of failures: nothing when all went well. May
    /// end in a RunTimeFailure, whose words are then what the operator is told.
    std::string (*Run)() = nullptr;

    /// Words of a complaint that the sweep must make, for a job that is meant to do harm; empty for a
    /// job of the office.
    std::string Harm = {};

    /// The job is a start of the office, or a part of it where there is a `Run`, and so the next start
    /// completes it.
    bool IsStart = false;

    /// For a job that the next start puts in order: whether it has, the office being open. Returns what is
    /// wrong. The start may then change files.
    std::string (*JudgeStarted)() = nullptr;

    /// The path of a file in which a job that fails on the way says how far it came: its content then is for
    /// JudgeStarted.
    std::string Mark = {};

    /// A failure of it stops nothing and nobody is told: that each file is the old or the new one is all that
    /// is asked.
    bool IsQuiet = false;

    /// The path of a file that is written in its place, where a fault may cut off what is written: its
    /// content then is for JudgeStarted.
    std::string InPlace = {};
};

/// The jobs of an office, and those that do harm.
const std::vector<SweepJob>& SweepJobs();

// By what they are of.
std::vector<SweepJob> StoreJobs();
std::vector<SweepJob> ExchangeJobs();
std::vector<SweepJob> MaintenanceJobs();
std::vector<SweepJob> SyncJobs();
std::vector<SweepJob> ScreenJobs();
std::vector<SweepJob> HotSyncJobs(); ///< the HotSync Manager's, the installer's and the handheld's
std::vector<SweepJob> HarmJobs();

/// Sets Global's paths to an office that has been started before. Changes no file of it.
void OpenOffice(const std::string& folder);

/// What the program's start does to the files of an office, in its order. RunTimeFailure as the
/// routines of core/Directories.h.
void StartOffice(const std::string& folder);

/// An import template with so many fields.
struct ImportTemplate CustomerTemplate(std::size_t fields);

/// The trace, which each job writes and which goes by a rule of its own.
inline constexpr std::string_view TraceFile = "Events.log";

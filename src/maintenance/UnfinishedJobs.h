#pragma once

#include "core/Text.h"

#include <string>
#include <string_view>
#include <vector>

/// Jobs that replace several tables of the tables directory one after the other: a restore and a clearing.
///
/// Each table is the old one or the new one whatever happens, but a job that does not come to its end leaves
/// tables of two moments: orders without their lines. So the mark "UnfinishedJobs.txt" lies beside the tables
/// from before the first one is replaced until all are (docs/files.md). It stays behind a job that was killed
/// or has failed, until that job, or others, have replaced the tables which it left.

enum class JobKind { Restore, Clear };

/// The mark around one job. Without Finish, as when a failure ends the job, it stays and says by then which
/// tables have been replaced.
class TableJob {
public:
    /// Sets the mark, on the medium when this returns. `backup` is the name of the backup's directory: the
    /// one that is restored, or that a clearing has made, empty for none. `tables` are file names; the
    /// tables have not been touched yet; without any there is no mark. RunTimeFailure as SafeFile, and 57:
    /// the job must not begin.
    TableJob(JobKind kind, std::string_view backup, std::vector<std::string> tables);
    TableJob(const TableJob&) = delete;
    TableJob& operator=(const TableJob&) = delete;
    ~TableJob();

    /// All of the tables have been replaced: takes them off the mark, also as those of earlier jobs. Never
    /// fails: where the mark stays, the next look finds that nothing is missing.
    void Finish() noexcept;

private:
    std::vector<std::string> tables_;
    bool finished_ = false;
};

/// A job that has replaced some of its tables and not the others.
struct CutOffJob {
    JobKind Kind = JobKind::Restore;
    std::string Backup;                  ///< as TableJob has it
    std::vector<std::string> Done, Left; ///< file names, in the job's order; those replaced since left out

    bool operator==(const CutOffJob&) const = default;
};

/// What the mark says, no job being at work.
struct UnfinishedJobs {
    std::vector<CutOffJob> Jobs; ///< the earliest first
    std::string Broken;          ///< UTF-8: why the mark cannot be read, with file and line; else empty
};

/// Looks for the mark, to be done at the start before anything else changes a table. What became of each
/// table is found out by its content once and kept in the mark; a mark of jobs that replaced all of their
/// tables, or none, is removed. Each job that was cut off leaves a line in the trace. Never fails.
UnfinishedJobs FindUnfinishedJobs();

/// What happened and what is to be done, for the operator.
Text TellCutOff(const CutOffJob& job);

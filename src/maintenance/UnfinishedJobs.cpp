#include "maintenance/UnfinishedJobs.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "core/Progress.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"
#include "maintenance/Restore.h"
#include "store/TableCatalogue.h"
#include "store/TableScan.h"

#include <algorithm>
#include <exception>
#include <optional>

namespace {

constexpr std::string_view RestoreWord = "RESTORE";
constexpr std::string_view ClearWord = "CLEAR";
constexpr std::string_view DoneWord = "done";
constexpr std::string_view LeftWord = "left";

/// More than jobs can leave, each of which holds a table at most once.
constexpr std::int64_t MostLines = 1000;

/// A table of a job, with what it was before it or, once that has been looked at, what became of it.
struct JobTable {
    enum class State { Open, Done, Left };
    SavedTable Before; ///< all zeros for one that was not there
    State Now = State::Open;
};

struct Job {
    JobKind Kind = JobKind::Restore;
    std::string Backup;
    std::vector<JobTable> Tables;

    bool Has(JobTable::State state) const {
        return std::any_of(Tables.begin(), Tables.end(),
                           [&](const JobTable& table) { return table.Now == state; });
    }
};

std::string Mark() {
    return Global.DBFPath + "UnfinishedJobs.txt";
}

bool MarkStands() {
    return Global.TheDisk->IsFile(ResolvePath(Mark()));
}

SavedTable Look(const std::string& name) {
    const std::string path = Global.DBFPath + name;
    SavedTable table;
    table.Name = name;
    if (!Global.TheDisk->IsFile(ResolvePath(path))) return table;
    table.Content = SumOfFile(path);
    try {
        table.Records = TableScan(path).RecordCount();
    } catch (const RunTimeFailure&) { // what is no table can be replaced too
    }
    return table;
}

// ---- the mark's lines ----

std::string LineOf(const Job& job) {
    std::string line(job.Kind == JobKind::Restore ? RestoreWord : ClearWord);
    return job.Backup.empty() ? line : line + '\t' + job.Backup;
}

std::string LineOf(const JobTable& table) {
    if (table.Now == JobTable::State::Open) return table.Before.Line();
    const std::string_view word = table.Now == JobTable::State::Done ? DoneWord : LeftWord;
    return std::string(word) + '\t' + table.Before.Name;
}

/// Nothing for a line that begins no job.
std::optional<Job> JobFrom(std::string_view word, std::string_view rest) {
    if (word != RestoreWord && word != ClearWord) return std::nullopt;
    const bool isRestore = word == RestoreWord;
    if (!IsPlainFileName(rest) && (isRestore || !rest.empty())) return std::nullopt;
    return Job{isRestore ? JobKind::Restore : JobKind::Clear, std::string(rest), {}};
}

std::optional<JobTable> TableFrom(std::string_view word, std::string_view rest, std::string_view line) {
    if (word == DoneWord || word == LeftWord) {
        if (!IsPlainFileName(rest)) return std::nullopt;
        JobTable table;
        table.Before.Name = rest;
        table.Now = word == DoneWord ? JobTable::State::Done : JobTable::State::Left;
        return table;
    }
    auto before = SavedTable::FromLine(line);
    if (!before) return std::nullopt;
    return JobTable{*std::move(before), JobTable::State::Open};
}

/// RunTimeFailure as TextReader, and 321 with the line that says nothing.
std::vector<Job> ReadMark() {
    TextReader text(Mark(), TextReader::OwnFile);
    std::vector<Job> jobs;
    std::string line;
    text.ReadLine(line); // for people
    while (text.ReadLine(line)) {
        const std::string_view whole = line;
        const std::size_t tab = std::min(whole.find('\t'), whole.size());
        const std::string_view word = whole.substr(0, tab);
        const std::string_view rest = whole.substr(std::min(tab + 1, whole.size()));
        auto job = JobFrom(word, rest);
        auto table = job ? std::nullopt : TableFrom(word, rest, whole);
        if (text.LineNumber() > MostLines || (!job && (!table || jobs.empty())))
            throw FailureInLine(321, Mark(), text.LineNumber(), line);
        if (job)
            jobs.push_back(*std::move(job));
        else
            jobs.back().Tables.push_back(*std::move(table));
    }
    if (jobs.empty()) throw FailureInLine(321, Mark(), text.LineNumber(), line);
    return jobs;
}

void WriteMark(const std::vector<Job>& jobs) {
    SafeFile text(Mark());
    text.WriteLine("A restore or a clearing replaces these tables. The next start tells of one that did not "
                   "come to its end.");
    for (const Job& job : jobs) {
        text.WriteLine(LineOf(job));
        for (const JobTable& table : job.Tables) text.WriteLine(LineOf(table));
    }
    text.Commit();
}

void KeepMark(const std::vector<Job>& jobs) noexcept {
    try {
        if (jobs.empty()) return RemoveQuietly(Mark());
        WriteMark(jobs);
    } catch (const std::exception&) { // it says what it said before
    }
}

// ---- what became of the tables ----

std::optional<FileSum> SumOf(const std::string& path) {
    try {
        return SumOfFile(path);
    } catch (const RunTimeFailure&) {
        return std::nullopt;
    }
}

/// What the job puts in a table's place. A restore may bring it into other fields on the way.
std::string SourceOf(const Job& job, const std::string& table) {
    if (job.Kind == JobKind::Clear) return Global.DBFEmptyPath + table;
    return AddBackslash(Global.BackupPath + job.Backup) + table;
}

/// Finds out what became of the tables. False for a job that has changed no table.
bool Settle(Job& job) {
    if (!job.Has(JobTable::State::Open)) return true;
    bool hasChanged = false;
    for (JobTable& table : job.Tables) {
        const auto now = SumOf(Global.DBFPath + table.Before.Name);
        const bool changed = now.value_or(FileSum{}) != table.Before.Content;
        // One that held already what the job puts there is not missing.
        const bool done = changed || (now && now == SumOf(SourceOf(job, table.Before.Name)));
        table.Now = done ? JobTable::State::Done : JobTable::State::Left;
        hasChanged = hasChanged || changed;
    }
    return hasChanged;
}

/// The jobs that left tables of two moments, as the mark is to have them. RunTimeFailure as ReadMark.
std::vector<Job> SettledJobs() {
    std::vector<Job> jobs;
    if (!MarkStands()) return jobs;
    bool isSettled = true;
    for (Job& job : ReadMark()) {
        isSettled = isSettled && !job.Has(JobTable::State::Open);
        if (Settle(job) && job.Has(JobTable::State::Left)) jobs.push_back(std::move(job));
    }
    if (!isSettled || jobs.empty()) KeepMark(jobs);
    return jobs;
}

CutOffJob TellingOf(const Job& job) {
    CutOffJob told{job.Kind, job.Backup, {}, {}};
    for (const JobTable& table : job.Tables)
        (table.Now == JobTable::State::Done ? told.Done : told.Left).push_back(table.Before.Name);
    return told;
}

/// Earlier jobs that are not over. A mark that cannot be read is laid aside: it is not to be lost.
std::vector<Job> EarlierJobs() {
    try {
        return SettledJobs();
    } catch (const RunTimeFailure&) {
        CopyOver(Mark(), Global.DBFPath + "UnfinishedJobs.bad.txt");
        return {};
    }
}

Text NamesOf(const std::vector<std::string>& tables) {
    Text names;
    for (const std::string& table : tables) {
        if (!names.IsEmpty()) names += Text::Path(std::string_view(", "));
        const TableEntry* entry = FindTable(table);
        names += entry ? Text(MessageId{entry->FirstLabel}) : Text::Path(std::string_view(table));
    }
    return names;
}

/// The backup in a directory of this name; nothing when its tables are not there.
std::optional<BackupPoint> BackupNamed(const std::string& name) {
    NoProgress silent;
    for (BackupPoint& point : ReadBackups(silent)) {
        if (point.Folder == name && point.Files != BackupFiles::Deleted) return std::move(point);
    }
    return std::nullopt;
}

} // namespace

TableJob::TableJob(JobKind kind, std::string_view backup, std::vector<std::string> tables)
    : tables_(std::move(tables)) {
    if (tables_.empty()) return;
    std::vector<Job> jobs = EarlierJobs();
    Job& job = jobs.emplace_back(Job{kind, std::string(backup), {}});
    for (const std::string& table : tables_) job.Tables.push_back({Look(table), JobTable::State::Open});
    WriteMark(jobs);
}

TableJob::~TableJob() {
    if (!finished_) FindUnfinishedJobs();
}

void TableJob::Finish() noexcept {
    finished_ = true;
    if (tables_.empty()) return;
    try {
        std::vector<Job> jobs = ReadMark();
        for (Job& job : jobs) {
            std::erase_if(job.Tables, [this](const JobTable& table) {
                return std::any_of(tables_.begin(), tables_.end(), [&](const std::string& replaced) {
                    return SameText(replaced, table.Before.Name);
                });
            });
        }
        std::erase_if(jobs, [](const Job& job) {
            return !job.Has(JobTable::State::Left) && !job.Has(JobTable::State::Open);
        });
        KeepMark(jobs);
    } catch (const std::exception&) { // the next look finds all of these tables replaced
    }
}

UnfinishedJobs FindUnfinishedJobs() {
    UnfinishedJobs found;
    try {
        for (const Job& job : SettledJobs()) {
            TraceEvent("UnfinishedJobs:FindUnfinishedJobs " + LineOf(job));
            found.Jobs.push_back(TellingOf(job));
        }
    } catch (const std::exception& failure) {
        TraceEvent(std::string("UnfinishedJobs:FindUnfinishedJobs ") + failure.what());
        found.Broken = failure.what();
    }
    return found;
}

Text TellCutOff(const CutOffJob& job) {
    const bool isRestore = job.Kind == JobKind::Restore;
    Text told = isRestore ? msg::RestoreCutOff : msg::ClearingCutOff;
    std::optional<BackupPoint> backup;
    if (!job.Backup.empty()) {
        backup = BackupNamed(job.Backup);
        Text name = Words(msg::CutOffBackup, Text::Path(std::string_view(job.Backup)));
        if (backup) {
            name = Words(msg::CutOffBackup, Text::Value(std::string_view(backup->Values[0])),
                         Text::Value(std::string_view(backup->Values[1])));
        }
        told = Lines(told, name);
    }
    const auto add = [&told](MessageId title, const std::vector<std::string>& tables) {
        if (!tables.empty()) told = Lines(told, Words(title, NamesOf(tables)));
    };
    add(isRestore ? msg::RestoredAlready : msg::TablesCleared, job.Done);
    add(isRestore ? msg::NotRestored : msg::NotCleared, job.Left);
    if (!isRestore) return Lines(told, msg::ClearThemAgain);
    return Lines(told, backup ? msg::RestoreItAgain : msg::BackupHasGone);
}

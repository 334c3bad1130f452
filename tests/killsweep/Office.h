#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

/// All that lies in a folder: files by their paths in it, folders as paths that end in a separator,
/// with no content.
using OfficeFiles = std::map<std::string, std::string>;

OfficeFiles FilesOf(const std::string& folder);

/// Makes the folder hold just these files and folders; what is right already is not touched.
/// `now` is what it holds.
void PutBack(const std::string& folder, const OfficeFiles& files, const OfficeFiles& now);

/// True for a file that the next start removes.
bool IsWorkFile(const std::string& path);

/// The files without the trace, and without work files too when `workFiles` is off.
OfficeFiles Judged(OfficeFiles files, bool workFiles);

/// The steps of an undisturbed run: what the office looked like after each of them, the first entry
/// being the office before it.
class OfficeHistory {
public:
    /// `before` and `after` are whole offices; `log` is the folder in which the library kept what the
    /// run put in place.
    OfficeHistory(const OfficeFiles& before, const OfficeFiles& after, const std::string& office,
                  const std::string& log);

    /// Calls that the library counted.
    long Calls() const { return calls_; }

    /// The paths that changed, in order, the trace left out.
    const std::vector<std::string>& Steps() const { return steps_; }

    /// The number of steps that the files show as taken, -1 when no number of them explains the files.
    int StepsTaken(const OfficeFiles& files) const;

    /// True when the files are those from before the first step.
    bool IsBefore(const OfficeFiles& files) const { return files == states_.front(); }

    /// What is wrong with one file or another, when each may be the old one or any later one; empty
    /// when nothing is.
    std::string FirstHurt(const OfficeFiles& files) const;

    /// True for a trace that the run has written at one time, or found.
    bool KnowsTrace(const std::string& content) const { return traces_.count(content) != 0; }

private:
    void Step(const std::string& path, OfficeFiles state);

    std::vector<OfficeFiles> states_;
    std::vector<std::string> steps_;
    std::map<std::string, std::set<std::string>> contents_; ///< of each file at any time
    std::set<std::string> mayBeAbsent_;
    std::set<std::string> traces_;
    long calls_ = 0;
};

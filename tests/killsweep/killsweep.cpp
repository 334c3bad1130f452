// Disturbs each job of an office at each of its calls that change a file, and looks at what is left.
//
//   killsweep [JOB...]    all jobs, or those whose names begin so; prints a table, ends in 0 only
//                         when nothing was hurt
//   killsweep share K N   all jobs, but of each only the calls K, K + N, K + 2N ... of 1, 2, 3 ...
//   killsweep harm        jobs that do harm; ends in 0 only when each of them was found out
//   killsweep table       all jobs; writes the table of docs/kill-sweep.md
//   killsweep listed      sweeps nothing; ends in 0 when docs/kill-sweep.md names each job and each source
//                         file that writes files

#include "core/Failure.h"
#include "killsweep/Document.h"
#include "killsweep/Sweep.h"
#include "maintenance/Office.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

/// A folder with an office, and one for the logs; gone with its object.
class Place {
public:
    Place() {
        std::string name = (Base() / "killsweep-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) throw RunTimeFailure(75, name);
        root_ = fs::canonical(name).string() + "/";
        // A list of libraries is parted by blanks and colons, which the path of a build may hold.
        fs::create_symlink(KILLSWEEP_LIBRARY, Library());
        LayOutOffice(TRAMBLE_INSTALLED, Office());
        // The pictures take no part in any job.
        fs::remove_all(Office() + "Install/Graphics");
        StartOffice(Office());
    }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;
    ~Place() {
        std::error_code ignored;
        fs::remove_all(root_, ignored);
    }

    std::string Office() const { return root_ + "office/"; }
    SweepTools Tools() const {
        return {fs::canonical("/proc/self/exe").string(), Library(), Office(), root_ + "log/"};
    }

private:
    std::string Library() const { return root_ + "faults.so"; }

    /// Memory where there is enough of it: the sweep writes the same few files over and over.
    static fs::path Base() {
        constexpr std::uintmax_t Enough = std::uintmax_t{64} << 20;
        std::error_code failed;
        const fs::space_info memory = fs::space("/dev/shm", failed);
        return !failed && memory.available >= Enough ? fs::path("/dev/shm") : fs::temp_directory_path();
    }

    std::string root_;
};

constexpr int NameWidth = 30;
constexpr int CallsWidth = 5;
constexpr int StatesWidth = 13;
constexpr int ToldWidth = 5;

/// Kills leave nobody to tell.
bool Tells(std::size_t fault) {
    return fault == static_cast<std::size_t>(Fault::DiskFull) ||
           fault == static_cast<std::size_t>(Fault::IoError);
}

void PrintHead() {
    std::cout << std::left << std::setw(NameWidth) << "" << std::right << std::setw(CallsWidth) << ""
              << "  " << std::left;
    for (const char* fault : {"killed before", "killed within"}) {
        std::cout << "  " << std::setw(StatesWidth) << fault;
    }
    for (const char* fault : {"disk full", "I/O error"}) {
        std::cout << "  " << std::setw(StatesWidth + ToldWidth) << fault;
    }
    std::cout << "\n"
              << std::setw(NameWidth) << "job" << std::right << std::setw(CallsWidth) << "calls"
              << "  " << std::left;
    for (std::size_t fault = 0; fault < Faults; ++fault) {
        std::cout << "  " << std::setw(StatesWidth) << "old/part/new";
        if (Tells(fault)) std::cout << std::right << std::setw(ToldWidth) << "told" << std::left;
    }
    std::cout << "\n";
}

void Print(const SweepJob& job, const SweepFindings& findings) {
    std::cout << std::left << std::setw(NameWidth) << job.Name << std::right << std::setw(CallsWidth)
              << findings.Calls << "  ";
    for (std::size_t fault = 0; fault < Faults; ++fault) {
        const FaultFindings& found = findings.ByFault[fault];
        std::cout << "  " << std::left << std::setw(StatesWidth)
                  << std::to_string(found.Old) + "/" + std::to_string(found.Part) + "/" +
                         std::to_string(found.New);
        if (Tells(fault)) std::cout << std::right << std::setw(ToldWidth) << found.Told;
    }
    std::cout << std::endl;
    for (const std::string& complaint : findings.Complaints) std::cout << "    HURT: " << complaint << "\n";
}

bool IsAskedFor(const SweepJob& job, const std::vector<std::string>& names) {
    return names.empty() || std::any_of(names.begin(), names.end(),
                                        [&](const std::string& name) { return job.Name.starts_with(name); });
}

/// Prints a table; `results` gets what it is made of.
int SweepOffice(const std::vector<std::string>& names, Share share, SweepResults& results) {
    const Place place;
    int runs = 0;
    std::size_t hurt = 0;
    PrintHead();
    for (const SweepJob& job : SweepJobs()) {
        if (!job.Harm.empty() || !IsAskedFor(job, names)) continue;
        results.emplace_back(&job, Sweep(job, place.Tools(), share));
        const SweepFindings& findings = results.back().second;
        Print(job, findings);
        hurt += findings.Complaints.size();
        for (const FaultFindings& found : findings.ByFault) runs += found.Old + found.Part + found.New;
    }
    std::cout << runs << " runs of " << results.size() << " jobs, " << hurt << " complaints\n";
    return hurt == 0 && !results.empty() ? 0 : 1;
}

int SweepOffice(const std::vector<std::string>& names, Share share = {}) {
    SweepResults results;
    return SweepOffice(names, share, results);
}

const std::string Source = KILLSWEEP_SOURCE "/";
const std::string Document = Source + "docs/kill-sweep.md";

int SweepForTheDocument() {
    SweepResults results;
    const int outcome = SweepOffice({}, {}, results);
    WriteResults(Document, results);
    return outcome;
}

int CheckTheDocument() {
    const std::vector<std::string> faults = FaultsOf(Document, Source + "src/");
    for (const std::string& fault : faults) std::cout << fault << "\n";
    return faults.empty() ? 0 : 1;
}

/// Share `first` of `of`, from 1. RunTimeFailure 5 for what is none.
Share ShareOf(const std::string& first, const std::string& of) {
    const Share share{std::atol(first.c_str()), std::atol(of.c_str())};
    if (share.First < 1 || share.First > share.Of) throw RunTimeFailure(5, "share " + first + " of " + of);
    return share;
}

int SweepHarm() {
    const Place place;
    int missed = 0;
    for (const SweepJob& job : SweepJobs()) {
        if (job.Harm.empty()) continue;
        const SweepFindings findings = Sweep(job, place.Tools());
        const bool found = std::any_of(
            findings.Complaints.begin(), findings.Complaints.end(),
            [&](const std::string& complaint) { return complaint.find(job.Harm) != std::string::npos; });
        missed += found ? 0 : 1;
        std::cout << (found ? "found out  " : "NOT FOUND  ") << job.Name << "\n";
        for (const std::string& complaint : findings.Complaints) std::cout << "    " << complaint << "\n";
    }
    return missed == 0 ? 0 : 1;
}

int RunOneJob(const std::string& name, const std::string& office) {
    for (const SweepJob& job : SweepJobs()) {
        if (job.Name == name) return RunJob(job, office);
    }
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    try {
        if (words.size() == 3 && words[0] == "job") return RunOneJob(words[1], words[2]);
        if (words.size() == 1 && words[0] == "harm") return SweepHarm();
        if (words.size() == 1 && words[0] == "table") return SweepForTheDocument();
        if (words.size() == 1 && words[0] == "listed") return CheckTheDocument();
        if (words.size() == 3 && words[0] == "share") return SweepOffice({}, ShareOf(words[1], words[2]));
        return SweepOffice(words);
    } catch (const std::exception& failure) {
        std::cerr << "killsweep: " << failure.what() << "\n";
        return 2;
    }
}

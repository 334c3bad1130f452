#include "killsweep/Sweep.h"

#include "killsweep/Office.h"

#include "core/Trace.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr std::array<const char*, Faults> ModeOf = {"before", "within", "full", "error"};
constexpr std::array<const char*, Faults> WordsOf = {"killed before", "killed within", "disk full at",
                                                     "I/O error at"};
constexpr unsigned LongestRun = 120; // seconds; a job that waits for ever ends by a signal
constexpr std::size_t EnoughComplaints = 8;

std::string TextOf(const std::string& path) {
    std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/// Does something in a process of its own and returns how that ended, as waitpid tells it.
int InOwnProcess(const std::function<int()>& deed) {
    std::cout.flush();
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(LongestRun);
        try {
            ::_exit(deed());
        } catch (const std::exception& failure) {
            std::cerr << "killsweep: " << failure.what() << std::endl;
            ::_exit(1);
        }
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
}

void Redirect(int descriptor, const std::string& path) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    ::dup2(file, descriptor);
    ::close(file);
}

bool IsWholeTrace(const std::string& content) {
    return static_cast<std::size_t>(std::count(content.begin(), content.end(), '\n')) == TraceEntries &&
           content.ends_with("\r\n");
}

class Run {
public:
    Run(const SweepJob& job, const SweepTools& tools, Share share)
        : job_(job),
          tools_(tools),
          share_(share),
          laidOut_(FilesOf(tools.Office)),
          before_(Prepared()),
          history_(Watched()) {}

    SweepFindings All() {
        findings_.Calls = history_.Calls();
        if (history_.Calls() == 0) Complain("changes nothing");
        if (history_.Steps() != job_.Steps) {
            std::string steps;
            for (const std::string& step : history_.Steps()) steps += " " + step;
            Complain("takes the steps" + steps);
        }
        for (std::size_t fault = 0; fault < Faults && !Enough(); ++fault) {
            fault_ = fault;
            // The call behind the last one shows that the job repeats itself.
            for (at_ = share_.First; at_ <= history_.Calls() + 1 && !Enough(); at_ += share_.Of) {
                const bool exists = at_ <= history_.Calls();
                if (Struck() != exists) {
                    Complain(exists ? "made fewer calls than undisturbed"
                                    : "made more calls than undisturbed");
                }
            }
        }
        PutBack(tools_.Office, laidOut_, FilesOf(tools_.Office));
        return std::move(findings_);
    }

private:
    bool Enough() const { return findings_.Complaints.size() >= EnoughComplaints; }

    void Complain(const std::string& words) {
        std::string where;
        if (at_ > 0) {
            where = std::string(WordsOf[fault_]) + " call " + std::to_string(at_) + " (" +
                    WithoutOffice(TextOf(tools_.Log + "struck")) + "): ";
        }
        const std::string complaint = where + WithoutOffice(words);
        auto& all = findings_.Complaints;
        if (all.empty() || all.back() != complaint) all.push_back(complaint);
    }

    std::string WithoutOffice(std::string text) const {
        const std::size_t at = text.find(tools_.Office);
        return at == std::string::npos ? text : text.erase(at, tools_.Office.size());
    }

    OfficeFiles Prepared() {
        const int status = InOwnProcess([&] {
            OpenOffice(tools_.Office);
            job_.Prepare();
            return 0;
        });
        if (status != 0) Complain("cannot be prepared");
        if (!job_.IsStart) Start();
        return FilesOf(tools_.Office);
    }

    OfficeHistory Watched() {
        const int status = RunDisturbed("watch");
        const OfficeFiles after = FilesOf(tools_.Office);
        if (status != 0) Complain("does not work undisturbed: " + Said());
        OfficeHistory history(before_, after, tools_.Office, tools_.Log);
        PutBack(tools_.Office, before_, after);
        return history;
    }

    /// Runs the job under the library, in a log folder that is empty before.
    int RunDisturbed(const char* mode) {
        fs::remove_all(tools_.Log);
        fs::create_directory(tools_.Log);
        return InOwnProcess([&] {
            ::setenv("KILLSWEEP_FOLDER", tools_.Office.c_str(), 1);
            ::setenv("KILLSWEEP_LOG", tools_.Log.c_str(), 1);
            ::setenv("KILLSWEEP_MODE", mode, 1);
            ::setenv("KILLSWEEP_AT", std::to_string(at_).c_str(), 1);
            ::setenv("LD_PRELOAD", tools_.Library.c_str(), 1);
            Redirect(1, tools_.Log + "said");
            Redirect(2, tools_.Log + "errors");
            ::execl(tools_.Program.c_str(), tools_.Program.c_str(), "job", job_.Name.c_str(),
                    tools_.Office.c_str(), nullptr);
            return 127;
        });
    }

    std::string Said() const { return TextOf(tools_.Log + "said") + TextOf(tools_.Log + "errors"); }

    /// The next start, undisturbed.
    void Start() {
        const int status = InOwnProcess([&] {
            StartOffice(tools_.Office);
            return 0;
        });
        if (status != 0) Complain("the next start fails");
    }

    /// What the job itself says of the office behind the start.
    void Judge() {
        const std::string verdict = tools_.Log + "judged";
        const int status = InOwnProcess([&] {
            OpenOffice(tools_.Office);
            const std::string fault = job_.JudgeStarted();
            std::ofstream(verdict) << fault;
            return fault.empty() ? 0 : 1;
        });
        if (status != 0) Complain("behind the next start: " + TextOf(verdict));
    }

    /// One run with the fault at one call, and all that is to hold after it. False when the job has
    /// fewer calls.
    bool Struck() {
        const int status = RunDisturbed(ModeOf[fault_]);
        const bool struck = fs::exists(tools_.Log + "struck");
        const OfficeFiles left = FilesOf(tools_.Office);
        const bool kills = fault_ == static_cast<std::size_t>(Fault::KilledBefore) ||
                           fault_ == static_cast<std::size_t>(Fault::KilledWithin);
        if (!struck) {
            if (status != 0 || !AllNew(Judged(left, true))) Complain("does not repeat itself: " + Said());
        } else if (kills) {
            JudgeKilled(status, left);
        } else {
            JudgeLiving(status, left);
        }
        PutBack(tools_.Office, before_, JudgeStarted(left, kills || !struck, struck));
        return struck;
    }

    bool AllNew(const OfficeFiles& files) const {
        return history_.StepsTaken(files) == static_cast<int>(history_.Steps().size());
    }

    void JudgeKilled(int status, const OfficeFiles& left) {
        if (!WIFSIGNALED(status) || WTERMSIG(status) != SIGKILL) return Complain("was not killed: " + Said());
        JudgeFiles(Judged(left, false), true);
        const auto trace = left.find(std::string(TraceFile));
        if (trace == left.end() || !history_.KnowsTrace(trace->second)) Complain("the trace is hurt");
    }

    void JudgeLiving(int status, const OfficeFiles& left) {
        if (!WIFEXITED(status) || WEXITSTATUS(status) > 1) return Complain("broke down: " + Said());
        const bool fine = WEXITSTATUS(status) == 0;
        // A file that could not be removed may stay: the next start has it, or a job's own judge.
        const bool removal = TextOf(tools_.Log + "struck").starts_with("unlink");
        const bool mayStay = removal && job_.JudgeStarted;
        if (fine && !mayStay && !job_.IsQuiet && !AllNew(Judged(left, false)))
            Complain("said that all went well, and it did not");
        if (!fine) ++findings_.ByFault[fault_].Told;
        if (!fine && TextOf(tools_.Log + "said").empty()) Complain("told of a failure without a word");
        OfficeFiles files = Judged(left, false);
        files.erase(job_.Mark);
        JudgeFiles(std::move(files), false);
        for (const auto& [path, content] : left) {
            if (IsWorkFile(path) && !removal) Complain(path + " was left by a process that lived");
        }
        const auto trace = left.find(std::string(TraceFile));
        if (trace == left.end() || !IsWholeTrace(trace->second)) Complain("the trace is hurt");
    }

    void JudgeFiles(OfficeFiles files, bool inOrder) {
        if (const auto written = files.find(job_.InPlace); written != files.end())
            written->second = before_.at(job_.InPlace);
        const std::string hurt = history_.FirstHurt(files);
        if (!hurt.empty()) return Complain(hurt);
        if (inOrder && history_.StepsTaken(files) < 0) Complain("its files changed in another order");
    }

    /// Starts the office, judges it, and returns what then lies in it.
    OfficeFiles JudgeStarted(const OfficeFiles& left, bool inOrder, bool counts) {
        Start();
        OfficeFiles now = FilesOf(tools_.Office);
        OfficeFiles files = Judged(now, true);
        if (job_.JudgeStarted) {
            Judge();
            now = FilesOf(tools_.Office); // it may have gone on
        } else if (job_.IsStart) {
            if (!AllNew(files)) Complain("the next start did not complete it");
            files = Judged(left, false);
        } else {
            JudgeFiles(files, inOrder);
            if (files != Judged(left, false)) Complain("the next start changed a file");
        }
        if (!counts) return now;
        FaultFindings& found = findings_.ByFault[fault_];
        if (AllNew(files))
            ++found.New;
        else if (history_.IsBefore(files))
            ++found.Old;
        else
            ++found.Part;
        return now;
    }

    const SweepJob& job_;
    const SweepTools& tools_;
    Share share_;
    SweepFindings findings_;
    std::size_t fault_ = 0;
    long at_ = 0;
    OfficeFiles laidOut_;
    OfficeFiles before_;
    OfficeHistory history_;
};

} // namespace

SweepFindings Sweep(const SweepJob& job, const SweepTools& tools, Share share) {
    return Run(job, tools, share).All();
}

int RunJob(const SweepJob& job, const std::string& office) {
    std::string told;
    try {
        if (job.Run == nullptr) {
            StartOffice(office);
        } else {
            OpenOffice(office);
            told = job.Run();
        }
    } catch (const std::exception& failure) {
        told = failure.what();
    }
    std::cout << told;
    return told.empty() ? 0 : 1;
}

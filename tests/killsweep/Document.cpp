#include "killsweep/Document.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace fs = std::filesystem;

namespace {

constexpr std::string_view Begin = "<!-- results -->\n";
constexpr std::string_view End = "<!-- end of the results -->\n";
constexpr std::string_view NoJob = "none:"; // and why

std::string TextOf(const fs::path& path) {
    std::ifstream file(path);
    if (!file) throw std::runtime_error(path.string() + " cannot be read");
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::string Trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string::npos ? std::string()
                                      : text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

/// The cells of the rows of all tables in a text, headings left out.
std::vector<std::vector<std::string>> Rows(const std::string& text) {
    std::vector<std::vector<std::string>> rows;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("| ")) {
            // The heading stands above the line that parts it from the rows.
            if (line.starts_with("|-") && !rows.empty()) rows.pop_back();
            continue;
        }
        std::istringstream cells(line.substr(1));
        rows.emplace_back();
        for (std::string cell; std::getline(cells, cell, '|');) rows.back().push_back(Trimmed(cell));
    }
    return rows;
}

std::pair<std::size_t, std::size_t> PlaceOfResults(const std::string& text) {
    const std::size_t begin = text.find(Begin);
    const std::size_t end = text.find(End);
    if (begin == std::string::npos || end == std::string::npos || end < begin)
        throw std::runtime_error("the document has no place for the results");
    return {begin + Begin.size(), end};
}

std::string RowOf(const SweepJob& job, const SweepFindings& findings) {
    FaultFindings sum;
    for (const FaultFindings& found : findings.ByFault) {
        sum.Old += found.Old;
        sum.Part += found.Part;
        sum.New += found.New;
        sum.Told += found.Told;
    }
    std::string row = "| " + job.Name + " |";
    for (const long number :
         {findings.Calls, static_cast<long>(sum.Old + sum.Part + sum.New), static_cast<long>(sum.Old),
          static_cast<long>(sum.Part), static_cast<long>(sum.New), static_cast<long>(sum.Told),
          static_cast<long>(findings.Complaints.size())})
        row += " " + std::to_string(number) + " |";
    return row + "\n";
}

/// True for a source that puts a file in place, moves or removes one itself, or writes into one.
bool WritesFiles(const std::string& source) {
    static const std::regex SafeFileMade("\\bSafeFile [A-Za-z_0-9]+[({]");
    constexpr std::array Ways = {
        "make_unique<SafeFile>", "WriteWholeFile(", "CopyOver(",    "TableRewrite ", "TableRewrite(",
        "AppendLine(",           "RemoveQuietly(",  "CreateTable(", "->Rename(",     "->Remove(",
        "->RemoveFolder(",       "->WriteAt(",      ".WriteAt(",    "DBFEdit links", "Access::Create",
        "Access::ReadWrite"};
    if (std::regex_search(source, SafeFileMade)) return true;
    return std::any_of(Ways.begin(), Ways.end(),
                       [&](const char* way) { return source.find(way) != std::string::npos; });
}

/// Screens, and what stands between the programs and their surroundings, hand files to routines of others.
bool IsLooked(const std::string& path) {
    constexpr std::array Others = {"forms/", "platform/", "driver/", "/window/"};
    return path.ends_with(".cpp") && std::none_of(Others.begin(), Others.end(), [&](const char* other) {
               return path.find(other) != std::string::npos;
           });
}

std::set<std::string> WritingSources(const std::string& sources) {
    std::set<std::string> writing;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(sources)) {
        const std::string path = entry.path().string().substr(sources.size());
        if (IsLooked(path) && WritesFiles(TextOf(entry.path())))
            writing.insert(path.substr(0, path.size() - std::string_view(".cpp").size()));
    }
    return writing;
}

} // namespace

void WriteResults(const std::string& document, const SweepResults& results) {
    std::string text = TextOf(document);
    const auto [begin, end] = PlaceOfResults(text);
    std::string table = "\n| Job | Calls | Runs | Old | Part | New | Told | Complaints |\n"
                        "|---|---|---|---|---|---|---|---|\n";
    for (const auto& [job, findings] : results) table += RowOf(*job, findings);
    text.replace(begin, end - begin, table + "\n");
    std::ofstream(document) << text;
}

std::vector<std::string> FaultsOf(const std::string& document, const std::string& sources) {
    std::set<std::string> jobs;
    for (const SweepJob& job : SweepJobs()) {
        if (job.Harm.empty()) jobs.insert(job.Name);
    }
    const std::string text = TextOf(document);
    const auto [begin, end] = PlaceOfResults(text);
    std::vector<std::string> faults;

    std::set<std::string> unnamed = jobs;
    for (const auto& row : Rows(text.substr(begin, end - begin))) {
        if (unnamed.erase(row.front()) == 0)
            faults.push_back("the results have a row too many: " + row.front());
    }
    for (const std::string& job : unnamed) faults.push_back("the results lack the job: " + job);

    std::set<std::string> writing = WritingSources(sources);
    unnamed = jobs;
    for (const auto& row : Rows(text.substr(0, begin))) {
        if (writing.erase(row.front()) == 0)
            faults.push_back(row.front() + " writes no file, or stands there twice");
        if (row.back().starts_with(NoJob)) continue;
        std::istringstream named(row.back());
        for (std::string job; std::getline(named, job, ';');) {
            job = Trimmed(job);
            if (!jobs.contains(job)) faults.push_back(row.front() + ": there is no job " + job);
            unnamed.erase(job);
        }
    }
    for (const std::string& source : writing) faults.push_back(source + " writes files and has no row");
    for (const std::string& job : unnamed) faults.push_back("no source has the job: " + job);
    return faults;
}

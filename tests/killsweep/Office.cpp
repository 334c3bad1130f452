#include "killsweep/Office.h"

#include "killsweep/Jobs.h"

#include "core/SafeFile.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

namespace {

std::string ContentOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::string content(static_cast<std::size_t>(fs::file_size(path)), '\0');
    file.read(content.data(), static_cast<std::streamsize>(content.size()));
    return content;
}

bool IsFolder(const std::string& path) {
    return path.ends_with('/');
}

bool IsIn(const std::string& path, const std::string& folder) {
    return path.starts_with(folder) && path != folder;
}

bool HoldsSomething(const OfficeFiles& files, const std::string& folder) {
    return std::any_of(files.begin(), files.end(),
                       [&](const auto& file) { return IsIn(file.first, folder); });
}

/// Gives a folder another name.
void Move(OfficeFiles& files, const std::string& from, const std::string& to) {
    OfficeFiles moved;
    for (const auto& [path, content] : files) {
        moved[path.starts_with(from) ? to + path.substr(from.size()) : path] = content;
    }
    files = std::move(moved);
}

} // namespace

OfficeFiles FilesOf(const std::string& folder) {
    OfficeFiles files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        const std::string path = entry.path().string().substr(folder.size());
        if (entry.is_directory())
            files[path + "/"];
        else
            files[path] = ContentOf(entry.path());
    }
    return files;
}

void PutBack(const std::string& folder, const OfficeFiles& files, const OfficeFiles& now) {
    for (const auto& [path, content] : now) {
        if (!files.contains(path)) fs::remove_all(folder + path);
    }
    for (const auto& [path, content] : files) {
        const auto there = now.find(path);
        if (there != now.end() && there->second == content) continue;
        if (IsFolder(path)) {
            fs::create_directories(folder + path);
            continue;
        }
        fs::remove(folder + path);
        std::ofstream(folder + path, std::ios::binary)
            .write(content.data(), static_cast<std::streamsize>(content.size()));
    }
}

bool IsWorkFile(const std::string& path) {
    return path.ends_with(SafeFile::WorkExtension) || path.ends_with(".idx");
}

OfficeFiles Judged(OfficeFiles files, bool workFiles) {
    std::erase_if(files, [&](const auto& entry) {
        return entry.first == TraceFile || (!workFiles && IsWorkFile(entry.first));
    });
    return files;
}

OfficeHistory::OfficeHistory(const OfficeFiles& before, const OfficeFiles& after, const std::string& office,
                             const std::string& log) {
    OfficeFiles state = Judged(before, true);
    Step("", state);
    traces_.insert(before.at(std::string(TraceFile)));
    std::ifstream calls(log + "calls");
    for (std::string line; std::getline(calls, line); ++calls_) {
        std::istringstream words(line);
        std::string number, call, path;
        words >> number >> call;
        std::getline(words >> std::ws, path);
        if (path.size() <= office.size()) continue; // the office's own folder was flushed
        path = path.substr(office.size());
        if (IsWorkFile(path)) continue;
        if (call == "rename" && path == TraceFile) {
            traces_.insert(ContentOf(log + number));
            continue;
        }
        if (call == "rename") {
            const std::string from = fs::read_symlink(log + number + ".from").string().substr(office.size());
            if (fs::exists(log + number)) {
                state[path] = ContentOf(log + number);
                state.erase(from);
            } else {
                Move(state, from + "/", path += "/");
            }
        } else if (call == "mkdir")
            state[path += "/"];
        else if (call == "unlink")
            state.erase(path);
        else if (call == "rmdir" && !HoldsSomething(state, path += "/"))
            state.erase(path);
        // Nothing is removed that was not there.
        if (call == "rename" || state != states_.back()) Step(path, state);
    }
    // What changed in a way that is no step, such as a file that was written in place.
    for (const auto& [path, content] : Judged(after, true)) {
        if (state.contains(path) && state[path] == content) continue;
        state[path] = content;
        Step(path, state);
    }
}

void OfficeHistory::Step(const std::string& path, OfficeFiles state) {
    if (!path.empty()) steps_.push_back(path);
    for (const auto& [file, content] : state) {
        contents_[file].insert(content);
        if (!states_.empty() && !states_.front().contains(file)) mayBeAbsent_.insert(file);
    }
    if (!states_.empty()) {
        for (const auto& [file, content] : states_.front()) {
            if (!state.contains(file)) mayBeAbsent_.insert(file);
        }
    }
    states_.push_back(std::move(state));
}

int OfficeHistory::StepsTaken(const OfficeFiles& files) const {
    // From the end: a step that changed nothing counts as taken.
    for (std::size_t k = states_.size(); k-- > 0;) {
        if (states_[k] == files) return static_cast<int>(k);
    }
    return -1;
}

std::string OfficeHistory::FirstHurt(const OfficeFiles& files) const {
    for (const auto& [path, content] : files) {
        const auto known = contents_.find(path);
        if (known == contents_.end()) return path + " lies about";
        if (!known->second.contains(content)) {
            return path + " (" + std::to_string(content.size()) +
                   " bytes) is neither the old nor the new one";
        }
    }
    for (const auto& [path, content] : contents_) {
        if (!files.contains(path) && !mayBeAbsent_.contains(path)) return path + " is gone";
    }
    return {};
}

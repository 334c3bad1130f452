#include "quality/RowWatch.h"

#include "core/Disk.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Numbers.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextFile.h"
#include "store/TableReader.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <string_view>
#include <utility>

namespace {

void Mix(std::uint64_t& sum, std::uint64_t part) {
    sum ^= part + 0x9E3779B97F4A7C15U + (sum << 6) + (sum >> 2);
}

std::uint64_t HashOf(std::string_view bytes) {
    return std::hash<std::string_view>()(bytes);
}

/// Another number for another state of a file; 0 for none that can be read.
std::uint64_t VersionOf(const std::string& path) {
    try {
        return Global.TheDisk->Open(ResolvePath(path), Access::Read)->Version() | 1;
    } catch (const std::exception&) {
        return 0;
    }
}

/// What stands in a file that a template is; of a large one, which file it is.
std::uint64_t ContentOfFile(const std::string& path) {
    try {
        return HashOf(ReadWholeFile(ResolvePath(path), TextReader::OwnFile)) | 1;
    } catch (const std::exception&) {
        return VersionOf(path);
    }
}

} // namespace

RowWatch::RowWatch(std::span<const ProblemRow> rows) {
    for (const ProblemRow& row : rows) {
        Watched watched;
        watched.IsTable = !IsTemplateTarget(row.Target);
        watched.Files = watched.IsTable ? std::vector{row.Target} : row.Files;
        if (watched.IsTable) {
            // A list goes by the field that was checked, the table by its key: read in the table's order,
            // each block is read once.
            watched.Records = WholeNumbers(row.List, ListSeparator);
            std::sort(watched.Records.begin(), watched.Records.end());
        }
        for (const std::string& file : watched.Files) versions_.try_emplace(file, VersionOf(file));
        watched.Seen = ContentOf(watched);
        watched_.push_back(std::move(watched));
    }
}

std::uint64_t RowWatch::ContentOf(const Watched& watched) {
    std::uint64_t sum = 0;
    if (!watched.IsTable) {
        for (const std::string& file : watched.Files) Mix(sum, ContentOfFile(file));
        return sum;
    }
    try {
        TableReader table(watched.Files.front());
        // A row without a list is about the table as a whole: that it is empty.
        if (watched.Records.empty()) {
            Mix(sum, static_cast<std::uint64_t>(table.RecordCount()));
            Mix(sum, HashOf(table.Record(1)));
        }
        for (const std::int32_t record : watched.Records) Mix(sum, HashOf(table.Record(record)));
    } catch (const std::exception&) {
        // A table that is gone holds none of the records.
    }
    return sum;
}

bool RowWatch::Look() {
    Versions changed;
    for (auto& [file, version] : versions_) {
        const std::uint64_t now = VersionOf(file);
        if (now == version) continue;
        version = now;
        changed.emplace(file, now);
    }
    if (changed.empty()) return false;
    bool isNews = false;
    for (Watched& watched : watched_) {
        bool touched = false;
        for (const std::string& file : watched.Files) touched = touched || changed.contains(file);
        if (!touched) continue;
        const bool isOther = ContentOf(watched) != watched.Seen;
        isNews = isNews || isOther != watched.Changed;
        watched.Changed = isOther;
    }
    return isNews;
}

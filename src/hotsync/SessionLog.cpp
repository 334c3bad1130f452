#include "hotsync/SessionLog.h"

#include "core/CodePage.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "hotsync/PlainText.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace {

constexpr std::string_view FileName = "HotSync.log";
constexpr std::string_view OldFileName = "HotSync.old.log";

/// The lines in the last FullAt bytes of a file, without the piece of one at the front. Failures of the disk.
std::vector<std::string> LastLines(const std::string& path) {
    std::vector<std::string> lines;
    const auto file = Global.TheDisk->Open(ResolvePath(path), Access::Read);
    const std::uint64_t size = file->Size();
    const std::uint64_t from = size - std::min(size, SessionLog::FullAt);
    std::string bytes(static_cast<std::size_t>(size - from), '\0');
    bytes.resize(file->ReadAt(from, bytes.data(), bytes.size()));
    std::string_view left = bytes;
    if (from > 0) left.remove_prefix(std::min(left.find('\n'), left.size() - 1) + 1);
    for (std::string_view line : SplitText(left, "\n")) {
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (!line.empty()) lines.push_back(WithoutControls(Utf8ToCodePage(line)));
    }
    return lines;
}

std::string Dated(std::string_view line) {
    return DateAndTime(Now()) + ' ' + WithoutControls(line.substr(0, SessionLog::LongestLine));
}

} // namespace

SessionLog::SessionLog(std::string_view folder) : folder_(AddBackslash(folder)) {}

void SessionLog::Write(std::string_view line) {
    TellLeftOut();
    WriteDated(line);
}

void SessionLog::WriteOfStranger(std::string_view line) {
    if (!TakeRation()) {
        ++leftOut_;
        return;
    }
    Write(line);
}

void SessionLog::TellLeftOut() {
    if (leftOut_ == 0) return;
    const std::string count = std::to_string(std::exchange(leftOut_, 0));
    WriteDated(count + " lines about callers that nobody knows were left out here");
}

bool SessionLog::TakeRation() {
    const Clock::time_point now = Moment();
    const auto minutes = (now - filled_) / PerFurtherStranger;
    filled_ += minutes * PerFurtherStranger;
    ration_ = static_cast<int>(std::min<std::int64_t>(ration_ + minutes, StrangersAtOnce));
    if (ration_ == 0) return false;
    --ration_;
    return true;
}

void SessionLog::WriteDated(std::string_view line) {
    const std::string dated = Dated(line);
    try {
        if (missing_ > 0) Append(Dated(std::to_string(missing_) + " lines could not be written here"));
        missing_ = 0;
        Append(dated);
    } catch (const std::exception&) { // a disk that is full must not end a session
        ++missing_;
    }
    if (Written) Written(dated);
}

void SessionLog::Append(std::string_view line) const {
    const std::string path = folder_ + std::string(FileName);
    if (AppendLine(path, CodePageToUtf8(line)) < FullAt) return;
    try {
        Global.TheDisk->Rename(ResolvePath(path), ResolvePath(folder_ + std::string(OldFileName)));
    } catch (const std::exception&) { // the line stands; the next one tries again
    }
}

std::vector<std::string> SessionLog::Last(std::size_t lines) const noexcept {
    std::vector<std::string> last;
    for (const std::string_view name : {FileName, OldFileName}) {
        if (last.size() >= lines) break;
        try {
            const std::vector<std::string> before = LastLines(folder_ + std::string(name));
            const std::size_t wanted = std::min(lines - last.size(), before.size());
            last.insert(last.begin(), before.end() - static_cast<std::ptrdiff_t>(wanted), before.end());
        } catch (const std::exception&) { // what can be read is shown
        }
    }
    return last;
}

#include "exchange/LostLines.h"

#include "core/Dates.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "core/TextFile.h"

#include <exception>

namespace {

constexpr std::size_t LongestLine = 4000; ///< of a lost line, in characters: enough to know it again

} // namespace

std::string LostLinesFile(std::string_view dataIn, std::string_view dataFile) {
    return AddBackslash(std::string(dataIn) + "Errors") + NameToPath(dataFile) + ".txt";
}

LostLines::LostLines(std::string listFile, std::string_view dataFile)
    : listFile_(std::move(listFile)),
      dataFile_(dataFile) {}

void LostLines::Begin() {
    MakePath(FolderOf(listFile_));
    file_.emplace(listFile_);
    const Text head =
        Words(msg::LostLinesOf, Text::Path(FileNameOf(dataFile_)) + Text::Value(std::string_view(",")),
              Text::Value(std::string_view(DateAndTime(Now()))));
    file_->WriteLine(head.CodePage());
}

void LostLines::Add(std::int64_t number, const Text& reason, std::string_view line) noexcept {
    if (listFile_.empty() || givenUp_) return;
    try {
        if (!file_) Begin();
        file_->WriteLine(std::to_string(number) + '\t' + reason.CodePage() + '\t' +
                         OneLine(line.substr(0, LongestLine)));
    } catch (const std::exception&) {
        file_.reset();
        givenUp_ = true;
    }
}

bool LostLines::Commit() noexcept {
    if (listFile_.empty()) return false;
    try {
        if (file_) {
            file_->Commit();
            return true;
        }
    } catch (const std::exception&) { // what stood there is of an earlier run
    }
    RemoveQuietly(listFile_);
    return false;
}

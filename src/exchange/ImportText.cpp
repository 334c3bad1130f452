#include "exchange/ImportText.h"

#include "core/CodePage.h"
#include "core/Failure.h"

#include <algorithm>
#include <limits>

namespace {

constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF";
constexpr int LineTooLong = 6;
constexpr std::size_t Beginning = 4000; ///< characters of a line that is too long

} // namespace

ImportReader::ImportReader(std::string_view path, bool utf8) : path_(path), utf8_(utf8) {
    file_.emplace(path_);
}

bool ImportReader::ReadLine(std::string& line) {
    if (broken_) Reopen();
    broken_ = true;
    const bool got = TakeLine(line);
    broken_ = false;
    if (!got) return false;
    if (tooLong_) line = beginning_;
    if (passed_++ == 0 && line.starts_with(Utf8Mark)) {
        hasMark_ = true;
        line.erase(0, Utf8Mark.size());
    }
    if (utf8_ && HasHighBytes(line)) line = Utf8ToCodePage(line);
    if (tooLong_) throw RunTimeFailure(LineTooLong, path_ + ", line " + std::to_string(passed_));
    return true;
}

/// The next line to its end, or only the end of one that is too long.
bool ImportReader::TakeLine(std::string& line) {
    tooLong_ = false;
    while (true) {
        try {
            return file_->ReadLine(line);
        } catch (const RunTimeFailure& failure) {
            // The file gives up inside the line and goes on from there.
            if (failure.Number() != LineTooLong) throw;
            if (!tooLong_) beginning_ = line.substr(0, Beginning);
            tooLong_ = true;
        }
    }
}

void ImportReader::Reopen() {
    file_.reset();
    file_.emplace(path_);
    std::string line;
    for (std::int64_t k = 0; k < passed_; ++k) TakeLine(line);
}

ImportSurvey SurveyImportFile(std::string_view path) {
    ImportSurvey survey;
    bool valid = true;
    bool high = false;
    ImportReader file(path, false);
    std::string line;
    for (bool more = true; more;) {
        bool tooLong = false;
        try {
            more = file.ReadLine(line);
        } catch (const RunTimeFailure& failure) {
            if (failure.Number() != LineTooLong) throw;
            tooLong = true;
        }
        if (!more || (line.empty() && !tooLong)) continue;
        if (survey.LineCount < std::numeric_limits<std::int32_t>::max()) ++survey.LineCount;
        // A line end is never part of a longer character: a file is valid when each line is. A line
        // that is too long is refused by the import anyway and has no say.
        if (tooLong || !valid || !HasHighBytes(line)) continue;
        high = true;
        valid = IsValidUtf8(line);
    }
    survey.Utf8 = file.HasMark() || (valid && high);
    return survey;
}

std::int32_t CountLines(std::string_view path) {
    return SurveyImportFile(path).LineCount;
}

bool ReadOrPass(ImportReader& file, std::string& line) {
    try {
        return file.ReadLine(line);
    } catch (const RunTimeFailure& failure) {
        if (failure.Number() != LineTooLong) throw;
        return true;
    }
}

std::size_t CountColumns(std::string_view line, Delimiter delimiter) {
    const char separator = delimiter == Delimiter::Tab ? '\t' : ',';
    return static_cast<std::size_t>(std::count(line.begin(), line.end(), separator)) + 1;
}

std::optional<Delimiter> RecogniseDelimiter(std::string_view path) {
    // The delimiters are the same bytes in either encoding.
    ImportReader file(path, false);
    for (std::string line; ReadOrPass(file, line);) {
        if (line.find("\",") != std::string::npos) return Delimiter::CsvQuotes;
        if (line.find(',') != std::string::npos) return Delimiter::Csv;
        if (line.find('\t') != std::string::npos) return Delimiter::Tab;
    }
    return std::nullopt;
}

#include "exchange/ImportText.h"

#include "core/CodePage.h"
#include "core/Failure.h"

#include <limits>

namespace {

constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF";
constexpr int LineTooLong = 6;

} // namespace

ImportReader::ImportReader(std::string_view path, bool utf8) : file_(path), utf8_(utf8) {}

bool ImportReader::ReadLine(std::string& line) {
    const bool first = first_;
    first_ = false;
    try {
        if (!file_.ReadLine(line)) return false;
    } catch (const RunTimeFailure& failure) {
        if (failure.Number() != LineTooLong) throw;
        hasMark_ = first && line.starts_with(Utf8Mark);
        PassLongLine();
        throw;
    }
    if (first && line.starts_with(Utf8Mark)) {
        hasMark_ = true;
        line.erase(0, Utf8Mark.size());
    }
    if (utf8_ && HasHighBytes(line)) line = Utf8ToCodePage(line);
    return true;
}

void ImportReader::PassLongLine() {
    // The reader gives up inside the line and goes on from there, so the first piece that it reads
    // to an end is the end of that line.
    std::string rest;
    for (bool inside = true; inside;) {
        try {
            file_.ReadLine(rest);
            inside = false;
        } catch (const RunTimeFailure& failure) {
            if (failure.Number() != LineTooLong) throw;
        }
    }
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

std::optional<Delimiter> RecogniseDelimiter(std::string_view path) {
    // The delimiters are the same bytes in either encoding.
    ImportReader file(path, false);
    std::string line;
    while (true) {
        try {
            if (!file.ReadLine(line)) return std::nullopt;
        } catch (const RunTimeFailure& failure) {
            if (failure.Number() != LineTooLong) throw;
            continue;
        }
        if (line.find("\",") != std::string::npos) return Delimiter::CsvQuotes;
        if (line.find(',') != std::string::npos) return Delimiter::Csv;
        if (line.find('\t') != std::string::npos) return Delimiter::Tab;
    }
}

#include "exchange/HeadLines.h"

#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"
#include "exchange/ImportTemplate.h"
#include "exchange/ImportText.h"

#include <algorithm>
#include <exception>

namespace {

constexpr std::string_view StartLineWord = "StartLine=";
constexpr std::size_t LongestLine = 4000; ///< characters that are kept and compared

std::string FileBeside(std::string_view templateFile) {
    return std::string(templateFile) + ".head";
}

} // namespace

HeadLines ReadHeadLines(std::string_view dataFile, std::int32_t startLine) {
    HeadLines head;
    head.StartLine = startLine;
    if (startLine <= 1) return head;
    ImportReader file(dataFile, SurveyImportFile(dataFile).Utf8);
    std::string line;
    for (std::int32_t k = 1; k < startLine; ++k) {
        if (!ReadOrPass(file, line)) break;
        if (k >= startLine - HeadLines::MaxLines)
            head.Lines.emplace_back(TrimRight(OneLine(line.substr(0, LongestLine))));
    }
    return head;
}

std::optional<HeadLines> RememberedHeadLines(std::string_view templateFile) noexcept {
    try {
        TextReader file(FileBeside(templateFile), TextReader::OwnFile);
        const std::string first = file.RequireLine();
        if (!BeginsWith(first, StartLineWord)) return std::nullopt;
        HeadLines head;
        head.StartLine = StartLineNumber(std::string_view(first).substr(StartLineWord.size()));
        for (std::string line; file.ReadLine(line);) head.Lines.push_back(line);
        return head;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

void RememberHeadLines(std::string_view templateFile, const HeadLines& lines) noexcept {
    try {
        if (lines.Lines.empty()) return ForgetHeadLines(templateFile);
        SafeFile file(FileBeside(templateFile));
        file.WriteLine(std::string(StartLineWord) + std::to_string(lines.StartLine));
        for (const std::string& line : lines.Lines) file.WriteLine(line);
        file.Commit();
    } catch (const std::exception&) { // nothing is remembered
    }
}

void ForgetHeadLines(std::string_view templateFile) noexcept {
    try {
        RemoveQuietly(FileBeside(templateFile));
    } catch (const std::exception&) { // it stays, and no template leads to it
    }
}

std::optional<ChangedLine> FirstChange(const std::optional<HeadLines>& remembered, const HeadLines& lines) {
    if (!remembered || remembered->StartLine != lines.StartLine) return std::nullopt;
    const std::size_t count = std::max(remembered->Lines.size(), lines.Lines.size());
    const auto at = [](const std::vector<std::string>& all, std::size_t k) {
        return k < all.size() ? all[k] : std::string();
    };
    for (std::size_t k = 0; k < count; ++k) {
        ChangedLine change{at(remembered->Lines, k), at(lines.Lines, k)};
        if (change.Before != change.Now) return change;
    }
    return std::nullopt;
}

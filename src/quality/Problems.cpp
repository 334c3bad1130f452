#include "quality/Problems.h"

#include "core/Globals.h"
#include "core/Messages.h"

#include <algorithm>
#include <array>
#include <utility>

Text SeverityText(Severity severity) {
    return severity == Severity::Fatal ? msg::Fatal : msg::Warn;
}

std::string_view SeverityName(Severity severity) {
    return severity == Severity::Fatal ? "Fatal" : "Warn";
}

bool IsTemplateTarget(std::string_view target) {
    using namespace TemplateTarget;
    constexpr std::array words{Download, Upload, Import, Export, QuickButtons, Unattended};
    return std::find(words.begin(), words.end(), target) != words.end();
}

void ProblemList::Add(ProblemRow row) {
    if (row.Severity == Severity::Fatal) Global.QCFatalFound = true;
    rows_.push_back(std::move(row));
}

std::int32_t ProblemList::Count(Severity severity, std::size_t from) const {
    const auto begin = rows_.begin() + static_cast<std::ptrdiff_t>(std::min(from, rows_.size()));
    return static_cast<std::int32_t>(
        std::count_if(begin, rows_.end(), [=](const ProblemRow& row) { return row.Severity == severity; }));
}

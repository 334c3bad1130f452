#include "exchange/Activity.h"

#include "core/CodePage.h"
#include "core/Failure.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"

namespace {

constexpr std::size_t LabelWidth = 20;
constexpr std::string_view None = "None";

ActivityRow RowOf(std::string_view line) {
    ActivityRow row;
    row.Label = Trim(line.substr(0, LabelWidth));
    if (line.size() < LabelWidth) return row;
    // The value begins with the label's last column, which is a blank.
    const std::string_view rest = line.substr(LabelWidth - 1);
    const std::string_view value = Trim(rest.substr(0, rest.find(';')));
    if (value.empty() || SameText(value, None)) return row;
    if (!IsPlainFileName(value)) throw RunTimeFailure(52, CodePageToUtf8(value));
    row.Template = value;
    return row;
}

} // namespace

Activity ReadActivity(std::string_view path) {
    TextReader file(path, TextReader::OwnFile);
    Activity activity;
    for (ActivityRow& row : activity.Rows) row = RowOf(file.RequireLine());
    return activity;
}

void WriteActivity(std::string_view path, const Activity& activity) {
    SafeFile file(path);
    int number = 0;
    for (const ActivityRow& row : activity.Rows) {
        const std::string_view name = Trim(row.Template);
        const bool none = name.empty() || SameText(name, None);
        if (!none && (!IsPlainFileName(name) || name.find(';') != std::string_view::npos)) {
            throw RunTimeFailure(52, CodePageToUtf8(name));
        }
        std::string line = "Saved Setting " + std::to_string(++number) + ":";
        line.resize(LabelWidth, ' ');
        if (!none) line += name;
        file.WriteLine(line + ";");
    }
    file.Commit();
}

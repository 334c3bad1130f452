#include "exchange/Activity.h"

#include "core/Catalogue.h"
#include "core/CodePage.h"
#include "core/Failure.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"

namespace {

constexpr std::size_t LabelWidth = 20;

ActivityRow RowOf(std::string_view line) {
    ActivityRow row;
    row.Label = Trim(line.substr(0, LabelWidth));
    row.Template = ActivityValue(line);
    if (!row.Template.empty() && !IsPlainFileName(row.Template))
        throw RunTimeFailure(52, CodePageToUtf8(row.Template));
    return row;
}

} // namespace

std::string ActivityValue(std::string_view line) {
    if (line.size() < LabelWidth) return {};
    // The value begins with the label's last column, which is a blank.
    const std::string_view rest = line.substr(LabelWidth - 1);
    const std::string_view value = Trim(rest.substr(0, rest.find(';')));
    return IsKey(value, msg::None) ? std::string() : std::string(value);
}

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
        const bool none = name.empty() || IsKey(name, msg::None);
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

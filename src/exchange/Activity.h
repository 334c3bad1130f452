#pragma once

#include <array>
#include <string>
#include <string_view>

/// The extensions of activity files, by the screen that runs them.
inline constexpr std::string_view ImportActivities = ".ipm";
inline constexpr std::string_view ExportActivities = ".xpm";
inline constexpr std::string_view ClearPCActivities = ".ctm";

/// One row of an activity, in code page 1252.
struct ActivityRow {
    std::string Label;    ///< "Saved Setting 1:"
    std::string Template; ///< a plain file name with its extension; empty for "None"
};

/// What a QuickButton runs: up to two templates, one after the other.
struct Activity {
    std::array<ActivityRow, 2> Rows;
};

/// The template that a line of an activity file names, as it stands there; empty for "None", which is a key.
std::string ActivityValue(std::string_view line);

/// Reads an activity file. RunTimeFailure as TextReader, 62 when it has fewer than two lines, 52 for
/// a template that is not a plain file name.
Activity ReadActivity(std::string_view path);

/// Writes an activity file with its own labels. RunTimeFailure 52 for a template that is not a plain
/// file name or holds a semicolon, otherwise as SafeFile.
void WriteActivity(std::string_view path, const Activity& activity);

#pragma once

#include "core/Globals.h"

#include <string>
#include <string_view>

/// Topics of the help by what they tell of. A topic is the file name of its page, as "Notes.htm"; the help
/// finds it whatever its case.

/// Where the help begins: the topic of the main screen.
inline constexpr std::string_view HomeTopic = "INTRODUCTION.htm";

/// The topic of a form by its name, as "frmNotes"; HomeTopic for one that has none of its own. Parts of a
/// form that have topics of their own hold them as the property "HelpTopic".
std::string HelpTopicOfForm(std::string_view form);

/// The topic of a table that is looked at; `otherwise` for one that has none of its own.
std::string HelpTopicOfView(ViewFlag flag, std::string_view otherwise = HomeTopic);

#pragma once

#include "core/Text.h"

#include <string_view>

/// What a line of a table selection (a template of an upload, a download or a clearing of handhelds) says
/// of a group of tables: the digit at the end of a line that begins with the group's name. 0 for a line
/// that speaks of something else.
int SelectionValue(std::string_view line, MessageId group);

#pragma once

#include "core/Text.h"

#include <optional>
#include <string_view>

/// Lines of a table selection: a template of an upload, a download or a clearing. The name of a group of
/// tables is a key (core/Catalogue.h).

/// Whether a line begins with the name of a group of tables, without regard to case. In the language of the
/// texts the name stands alone before "=" or the digit, so that no translation takes the line of another
/// group.
bool BeginsAs(std::string_view line, MessageId group);

/// What a line says of a group of tables when it is looked at by its beginning alone: the digit at its end
/// when it begins with the group's name (BeginsAs). 0 for a line that speaks of something else.
int SelectionValue(std::string_view line, MessageId group);

/// Whether a line turns a group of tables on. Nothing for a line that is not the group's: what stands before
/// its first "=", blanks behind it cut, is the group's name without regard to case. On is a line whose last
/// character, blanks cut, is a 1. Blanks before the name are part of it.
std::optional<bool> TurnsOn(std::string_view line, MessageId group);

/// The same for a clearing on the PC: a line is the group's when it begins with the name, without regard to
/// case. On is a line whose last character, blanks cut, is a 1.
std::optional<bool> TurnsOnByBeginning(std::string_view line, MessageId group);

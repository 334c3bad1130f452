#pragma once

#include "core/Catalogue.h"

#include <string>
#include <string_view>

/// Puts a text of another language in the place of each built-in one: none begins or ends as any built-in
/// one.
void UseForeignTexts();

/// That of an entry, in code page 1252, whichever is in force.
std::string ForeignText(MessageId entry);

/// Puts the built-in ones back.
void UseEnglishTexts();

#pragma once

#include "core/Text.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// One entry as it was built in, UTF-8. `Mnemonic` is a letter of the text, or 0.
struct CatalogueRow {
    std::uint16_t Number;
    char Mnemonic;
    const char* Words;
};

/// All entries in the order of their numbers.
extern const CatalogueRow CatalogueRows[];
extern const std::size_t CatalogueRowCount;

/// The entry's text, UTF-8, as built in or as `Messages.tsv` replaces it. RunTimeFailure 9 for a
/// number that the catalogue does not have.
std::string CatalogueText(MessageId entry);

/// The text as a caption, with "&" before its mnemonic letter and any "&" of its own doubled.
std::string CatalogueCaption(MessageId entry);

bool CatalogueHas(MessageId entry);

/// Reads replacements from a file of rows as in resources/messages.tsv, in UTF-8; columns two and
/// three may be left out or empty. A number that is not in the catalogue, or a row that cannot be
/// read, is passed over. Returns what was wrong, one "file, line: reason" (UTF-8) each; nothing when
/// the file is not there. Replaces what an earlier call has read.
std::string LoadMessages(std::string_view path);

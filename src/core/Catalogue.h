#pragma once

#include "core/Text.h"

#include <cstddef>
#include <optional>
#include <span>
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

/// The entry's text, UTF-8, as built in or as a translation replaces it. RunTimeFailure 9 for a
/// number that the catalogue does not have.
std::string CatalogueText(MessageId entry);

/// The text as a caption, with "&" before its mnemonic letter and any "&" of its own doubled.
std::string CatalogueCaption(MessageId entry);

/// Whether there is an entry of this number, so that the two above do not fail.
bool CatalogueHas(MessageId entry);

/// Reads replacements from a file of rows as in resources/messages.tsv, in UTF-8; columns two and
/// three may be left out or empty. A number that is not in the catalogue, or a row that cannot be
/// read or could not be shown, is passed over; so is a mnemonic that its text does not hold. Returns what was
/// wrong, one "file, line: reason" (UTF-8) each; nothing when the file is not there. What it has no row for
/// stays as an earlier call has read it.
std::string AddMessages(std::string_view path);

/// The same over the built-in texts: what an earlier call has read is forgotten.
std::string LoadMessages(std::string_view path);

// Texts that are keys: a file holds the built-in one, whatever the language, and is read in both.

/// The entry as files hold it: the built-in text in code page 1252.
std::string KeyOf(MessageId entry);

/// Whether a text out of a file is the entry, built in or as it is in force, without regard to case. What is
/// another entry as that was built in is not this one, whatever the language calls it.
bool IsKey(std::string_view text, MessageId entry);

/// A text out of a file as it is shown: the first of these entries that it is the key of, or the text itself.
Text ShownKey(std::string_view text, std::span<const MessageId> entries);

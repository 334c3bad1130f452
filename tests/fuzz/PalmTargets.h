#pragma once

#include <string_view>

/// What a handheld, a desktop or a file of a handheld says. A PalmFailure is expected of bad bytes, and
/// stays inside; a rule that is broken ends in another exception.

/// The file of a handheld database.
void FuzzHandheldDatabase(std::string_view bytes);

/// The application block and one record of a table's database: two bytes say where the block ends.
void FuzzHandheldTable(std::string_view bytes);

/// The bytes that a handheld sends, as a desktop sees them. The lowest bit of the first byte says that
/// the handshake is over already, the others in pieces of how many bytes the rest comes, 0 in one.
void FuzzHandheldToDesktop(std::string_view bytes);

/// The bytes that a desktop sends, as a handheld sees them; the first byte is as above.
void FuzzDesktopToHandheld(std::string_view bytes);

/// The same bytes as a session that the stand-in handheld holds; the lowest bit of the first byte gives it
/// little memory.
void FuzzHandheldSession(std::string_view bytes);

#pragma once

#include <optional>
#include <string>
#include <string_view>

/// What a session does with the Links tables: that of the PC in DBFPath, and the handheld's own, which a
/// session fetches into the handheld's directory.

/// Whether the PC's Links table has a row for a HotSync user, without regard to case. A user that is no
/// plain file name counts as one without a row, since the handheld's directory is called like it; a trace
/// line says so. RunTimeFailure as TableScan.
bool HasLink(std::string_view user);

/// Sets Global.HHUserDir to the directory of a user for whom HasLink could hold, and makes it. False, and
/// nothing is changed, for one that is no plain file name. RunTimeFailure as MakePath.
bool MakeHHUserDir(std::string_view user);

/// Takes machine id, last order number, serial and the opaque text of a user out of the handheld's own table
/// in Global.HHUserDir into Global.HSMachID and its neighbours, HHLastOrder too. False when there is no row
/// for the user, or no table that can be read: they then keep what they had.
bool TakeHandheldLink(std::string_view user);

/// Writes them into the user's row of the PC's table, if it has one. Orders come before the Links table: a
/// failure leaves a trace line and the session goes on. Returns its words (UTF-8), nothing when it went well.
std::optional<std::string> WritePCLink(std::string_view user);

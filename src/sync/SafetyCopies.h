#pragma once

#include <string>
#include <string_view>
#include <vector>

/// What the PC held before an upload: a transfer replaces a table by what the handheld has, so each table is
/// first copied to a file of its name with the extension ".dap", and the merge puts the old records back
/// behind the new ones.

/// Which tables: the six of an unattended session, or the eight of the upload screen.
enum class SafetyCopies { OfSession, OfUploadScreen };

/// Copies the tables, over any earlier copies. RunTimeFailure as CopyOver, 53 for a table that is not there;
/// the copies before it are then made.
void MakeSafetyCopies(SafetyCopies which);

/// Deletes the copies that are there. RunTimeFailure as Disk::Remove.
void DeleteSafetyCopies(SafetyCopies which);

/// A table that is merged after an upload, with the names of its files in the tables directory.
struct MergedTable {
    std::string_view Source; ///< the safety copy
    std::string_view Text;   ///< the bridge between them
    std::string_view Target;
};

/// In the order in which they are merged: headers, lines; audit headers, audit lines, handheld totals;
/// barcode index.
inline constexpr MergedTable MergedOrders[] = {{"ZUKORHDR.DAP", "OLDHDR.TXT", "ZUKORHDR.DBF"},
                                               {"ZUKORLIN.DAP", "OLDLIN.TXT", "ZUKORLIN.DBF"}};
inline constexpr MergedTable MergedAudits[] = {{"ZUKAUDTH.DAP", "OLDAUDTH.TXT", "ZUKAUDTH.DBF"},
                                               {"ZUKAUDTL.DAP", "OLDAUDTL.TXT", "ZUKAUDTL.DBF"}};
inline constexpr MergedTable MergedHHTotals[] = {{"ZUKAUDHH.DAP", "OLDAUDHH.TXT", "ZUKAUDHH.DBF"}};
inline constexpr MergedTable MergedBarcodeIndex[] = {{"ZUKBARIN.DAP", "OLDBARIN.TXT", "ZUKBARIN.DBF"}};

/// What a program that ended in the middle of a session has left: merges each safety copy whose table was
/// replaced by an upload and not merged yet, and deletes the copies of an unattended session. A table that
/// is as it was, or that ends with the copy's records already, stays as it is. To be called when no
/// session can run.
/// Returns the tables whose old records were put back. RunTimeFailure as the merge; what is not done yet then
/// stays for the next call.
std::vector<std::string> RecoverSafetyCopies();

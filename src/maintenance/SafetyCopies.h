#pragma once

#include "core/Failure.h"
#include "core/Progress.h"
#include "store/TextBridge.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// What the PC held before an upload: a transfer replaces a table by what the handheld has, so each table is
/// first copied to a file of its name with the extension ".dap", and the merge puts the old records back
/// behind the new ones. All of it lies in the tables directory.
///
/// While a table may be replaced and not merged yet, the mark "SafetyCopies.txt" lies beside the copies. A
/// start that finds it follows a program that ended in the middle. Without it copies mean nothing: a session
/// that uploads nothing leaves its own lying about.

/// Which tables: the six of an unattended session, or the eight of the upload screen.
enum class SafetyCopies { OfSession, OfUploadScreen };

/// Copies the tables, over any earlier copies, and sets the mark when there will be an upload. Earlier copies
/// that are needed still are put back first. RunTimeFailure as RecoverSafetyCopies; as CopyOver, 53 for a
/// table that is not there; the copies before it are then made.
void MakeSafetyCopies(SafetyCopies which);

/// Deletes the mark and the copies that are there. The copies of Global.FailedMerges stay, with the mark, and
/// the list is emptied. RunTimeFailure as Disk::Remove when the mark stays; the copies have gone all the
/// same.
void DeleteSafetyCopies(SafetyCopies which);

/// A table that is merged after an upload, with the names of its files in the tables directory.
struct MergedTable {
    std::string_view Source; ///< the safety copy
    std::string_view Text;   ///< the bridge between them
    std::string_view Target;
};

/// In the order in which they are merged.
inline constexpr MergedTable MergedOrderHeaders{"ZUKORHDR.DAP", "OLDHDR.TXT", "ZUKORHDR.DBF"};
inline constexpr MergedTable MergedOrderLines{"ZUKORLIN.DAP", "OLDLIN.TXT", "ZUKORLIN.DBF"};
inline constexpr MergedTable MergedAuditHeaders{"ZUKAUDTH.DAP", "OLDAUDTH.TXT", "ZUKAUDTH.DBF"};
inline constexpr MergedTable MergedAuditLines{"ZUKAUDTL.DAP", "OLDAUDTL.TXT", "ZUKAUDTL.DBF"};
inline constexpr MergedTable MergedHHTotals{"ZUKAUDHH.DAP", "OLDAUDHH.TXT", "ZUKAUDHH.DBF"};
inline constexpr MergedTable MergedBarcodeIndex{"ZUKBARIN.DAP", "OLDBARIN.TXT", "ZUKBARIN.DBF"};

/// One table's merge in its two steps. A failure of files is for the trace alone: it ends the merge, the
/// table stays as the handheld sent it, and Global.FailedMerges names it, so that the next start, or the next
/// safety copies, put its old records back.
class TableMerge {
public:
    explicit TableMerge(const MergedTable& table) : table_(table) {}

    /// Writes the text.
    void WriteText();
    /// Reads it back into the table. Nothing when it could not be written.
    void ReadText(Progress& progress);

private:
    template <typename Step>
    void Attempt(const Step& step);

    MergedTable table_;
    BridgeFields fields_;
    bool failed_ = false;
};

/// A table whose old records were put back.
struct RecoveredTable {
    std::string_view Table; ///< file name
    std::int32_t Records = 0;

    bool operator==(const RecoveredTable&) const = default;
};

/// A recovery that could not be done whole.
class RecoveryFailure : public RunTimeFailure {
public:
    RecoveryFailure(const RunTimeFailure& failure, std::vector<RecoveredTable> recovered)
        : RunTimeFailure(failure),
          Recovered(std::move(recovered)) {}

    std::vector<RecoveredTable> Recovered; ///< what was put back all the same
};

/// Where the mark is found: puts each copy of orders, audits and handheld totals back whose table was
/// replaced by an upload and not merged yet, then deletes all copies of a session, and the mark. A table that
/// is as it was, or that holds the copy's records as a merge writes them, in whatever order, stays as it is:
/// nothing is lost then, and a merge would double them. Where it holds some of them, as a table from which
/// the operator has deleted since, the others alone come back: one too many can be deleted once more, and one
/// that is lost cannot be had again. The barcode index, which no handheld sends, stays as it is. To be called
/// when no session can run: at the start, with a trace line. Returns the tables whose old records were put
/// back. RecoveryFailure, with what AppendMissing says, also for a table that cannot be read: the others are
/// done, and the copies of those that failed stay for the next call, with the mark.
std::vector<RecoveredTable> RecoverSafetyCopies();

/// Whether one of these tables, by path or file name, has a copy that RecoverSafetyCopies would put back. It
/// must not be replaced then: the copy would come behind what replaced it.
bool HaveKeptCopy(std::span<const std::string> tables);

/// To be called before any of these tables is replaced or taken for whole: where HaveKeptCopy,
/// RecoverSafetyCopies, and what it has put back. RecoveryFailure as there when one of these tables still has
/// its copy.
std::vector<RecoveredTable> RecoverBeforeReplacing(std::span<const std::string> tables);

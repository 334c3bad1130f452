#pragma once

#include "hotsync/HandheldLine.h"
#include "palm/Converter.h"

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

/// One transfer could not be done; the session goes on. `what()` is UTF-8.
class TransferFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Moves tables between the disk and a handheld, and program files to it.
///
/// What stands at a target is the old or the new one, whole, wherever the line breaks: a table on the PC is
/// replaced by a rename, one on the handheld as docs/handheld-database.md tells. Memory holds a record at
/// a time, and of a signed table the ink.
///
/// Every routine fails with TransferFailure when this transfer is not possible, and the handheld then has
/// no database open; with LineFailure or SessionCancelled when the session is over.
class TableTransfer {
public:
    struct Limits {
        std::uint64_t LargestTable = std::uint64_t{64} << 20; ///< bytes of records that come from a handheld
        std::uint64_t LargestFile = std::uint64_t{16} << 20;  ///< bytes of a program file
    };

    /// Called with the records moved so far and their number. May throw SessionCancelled.
    using Step = std::function<void(std::int32_t done, std::int32_t of)>;

    /// Whether somebody still waits for what is fetched. Asked before a table is put in its place: without
    /// the program that merges it with what the office had, it would only take that away.
    using Awaited = std::function<bool()>;

    TableTransfer(
        HandheldLine& line, const Limits& limits, Step step, Awaited awaited = [] { return true; });

    struct Result {
        std::int32_t Records = 0;
        std::int32_t LeftBehind = 0; ///< marked as deleted, and not moved, whichever way
        std::int32_t Signatures = 0;
        bool WasMissing = false; ///< the handheld had no such table
        std::string Odd;         ///< what was passed over, in words; UTF-8
    };

    /// Fetches a table from the handheld into the file at `path`. A table there that has the same fields,
    /// or more of them, keeps its structure; any other, or none, is replaced by one with the handheld's. The
    /// signatures of order headers go into the folder `Images` beside it. A table that the handheld lacks
    /// counts as one without records when it is the handheld that fills it; else this is a TransferFailure.
    Result Upload(std::string_view path);

    /// Sends the table at `path` to the handheld. Not a table that the handheld fills and that Upload could
    /// not fetch before: its records are nowhere else.
    Result Download(std::string_view path);

    /// Puts a PDB or PRC file on the handheld, in the place of a database of the same name, without the mark
    /// of a read-only one, under which nothing could be written; the number of its records.
    std::int32_t Install(std::string_view path);

    /// Brings to its end, or takes back, what an earlier session left half done on the handheld; the names
    /// of the tables concerned. Before the first transfer.
    std::vector<std::string> Recover();

    /// Whether something was installed that wants the handheld to be reset behind the session.
    bool NeedsReset() const { return needsReset_; }

private:
    template <class Deed>
    auto Guarded(const std::string& work, Deed deed);
    Result Fetch(std::string_view path, const std::string& name);
    Result FetchNone(std::string_view path, const std::string& name);
    Result Send(std::string_view path, const std::string& work);
    void Put(const Database& database, const std::string& work);

    DatabaseRecord ReadWhole(std::uint8_t handle, std::uint16_t index);
    std::uint16_t CountRecords(std::uint8_t handle, const std::string& name);
    std::uint8_t Begin(const DatabaseHeader& header, const std::string& work);
    void MoveToName(const std::string& work, const std::string& name);
    void Close(std::uint8_t handle);
    void DeleteIfThere(const std::string& name);
    void CheckAwaited() const;

    HandheldLine& line_;
    Limits limits_;
    Step step_;
    Awaited awaited_;
    std::set<std::string> notFetched_; ///< databases
    bool needsReset_ = false;
};

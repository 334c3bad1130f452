#pragma once

#include "core/Text.h"
#include "sync/ReceiptSheet.h"
#include "sync/SFrmAX40.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// The receipt of a session: a text file in the handheld's directory under HHTotalsPath that sets what the
/// handheld says it had against what arrived and what the PC holds now, and says whether they balance.

/// The newest receipts of a handheld are kept, so many.
inline constexpr std::size_t ReceiptsKept = 50;

/// What a session notes on its way, and the writing of it. A session that never began has no receipt. Nothing
/// here fails: what cannot be counted or written leaves a trace line, and a session goes on.
class SessionReceipt {
public:
    explicit SessionReceipt(SessionKind kind);
    SessionReceipt(const SessionReceipt&) = delete;
    SessionReceipt& operator=(const SessionReceipt&) = delete;
    ~SessionReceipt();

    /// A session begins, with status 1: what was noted of an earlier one is forgotten.
    void Begin(std::string_view user);

    /// A transfer was queued at the control, and the next one of those queued has finished.
    void NoteUpload(std::string_view path);
    void NoteDownload(std::string_view path);
    void NoteFinished();

    /// A line for the operator: what went wrong beside the transfers.
    void Note(const Text& line);

    /// The directory of the backup that the session made, under BackupPath.
    void NoteBackup(std::string_view name);

    /// Counts what has arrived, against the safety copies. Between the last transfer and the merge: both
    /// tables and copies are read here. `totals` is the table with what the handheld states, when it has
    /// come in this session; else empty.
    void TakeArrived(const UploadRun& arrived, std::string_view totals);

    /// Counts what the PC holds now and writes the receipt; the oldest ones go. `merged`: what the merge put
    /// together; other tables that arrived hold only what the handheld sent. The second call for a session
    /// does nothing.
    void Write(const SFrmAX40& control, const UploadRun& merged);

    bool HasBegun() const { return notes_ != nullptr; }
    /// Whether TakeArrived was called for that session.
    bool HasTaken() const;

private:
    SessionKind kind_;
    std::unique_ptr<ReceiptNotes> notes_; ///< of the session that has begun and has no receipt yet
};

/// The text of a handheld's last receipt, in UTF-8; nothing when it has none or it cannot be read.
std::optional<std::string> LastReceipt(std::string_view id);

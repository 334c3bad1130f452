#include "sync/Receipt.h"

#include "core/Dates.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextFile.h"
#include "maintenance/SafetyCopies.h"

#include <algorithm>
#include <exception>

namespace {

// ---- its file ----

/// "Receipt 2026-11-22 180311", and "_02" behind it for the second one of a second: a later name is a later
/// receipt.
std::string NameFor(const DateTime& moment, int number) {
    const std::string time = Format(moment, "hhnnss");
    std::string name = "Receipt " + ShortDate(moment) + " " + time;
    if (number > 1) name += (number < 10 ? "_0" : "_") + std::to_string(number);
    return name;
}

bool IsReceipt(std::string_view name) {
    constexpr std::string_view Shape = "Receipt 0000-00-00 000000";
    constexpr std::string_view Second = "_00";
    const auto fits = [](std::string_view text, std::string_view shape) {
        return std::equal(text.begin(), text.end(), shape.begin(), shape.end(),
                          [](char c, char as) { return as == '0' ? c >= '0' && c <= '9' : c == as; });
    };
    const std::string_view stem = name.substr(0, Shape.size());
    const std::string_view rest = name.substr(stem.size());
    return fits(stem, Shape) && (rest.empty() || fits(rest, Second));
}

std::string DirectoryOf(std::string_view user) {
    return AddBackslash(Global.HHTotalsPath + NameToPath(user));
}

/// Names without their extension, oldest first.
std::vector<std::string> ReceiptsIn(const std::string& directory) {
    std::vector<std::string> names = NamesWithExtension(directory, ".txt");
    std::erase_if(names, [](const std::string& name) { return !IsReceipt(name); });
    std::sort(names.begin(), names.end());
    return names;
}

void RemoveOldest(const std::string& directory, const std::string& written) {
    std::vector<std::string> names = ReceiptsIn(directory);
    std::erase(names, written);
    for (std::size_t i = 0; i + ReceiptsKept <= names.size(); ++i)
        RemoveQuietly(directory + names[i] + ".txt");
}

/// The first name of this moment that is free. Past 99 of them the last one is written over.
std::string FreeName(const std::string& directory, const DateTime& moment) {
    for (int number = 1; number < 99; ++number) {
        std::string name = NameFor(moment, number);
        if (!FileExists(directory + name + ".txt")) return name;
    }
    return NameFor(moment, 99);
}

// ---- tables ----

/// A table of the tables directory by its file name.
std::string TableOf(std::string_view name) {
    return Global.DBFPath + std::string(name);
}

/// Where the records lie that the PC had before the session, as long as nothing is merged: in the table,
/// unless that was replaced.
std::string BeforeOf(const MergedTable& table, bool arrived) {
    const std::string path = TableOf(arrived ? table.Source : table.Target);
    return FileExists(path) ? path : std::string();
}

void SettleTransfers(ReceiptNotes& notes, const SFrmAX40& control) {
    for (std::size_t i = 0; i < notes.Transfers.size(); ++i) {
        using End = ReceiptTransfer::End;
        const bool well = control.EndedWell(notes.Transfers[i].Path);
        notes.Transfers[i].How = well ? End::Well : i < notes.Finished ? End::Failed : End::CutOff;
    }
}

} // namespace

SessionReceipt::SessionReceipt(SessionKind kind) : kind_(kind) {}
SessionReceipt::~SessionReceipt() = default;

void SessionReceipt::Begin(std::string_view user) {
    notes_.reset();
    if (!IsPlainFileName(user)) {
        TraceEvent("SessionReceipt:Begin no directory can be called like the user");
        return;
    }
    notes_ = std::make_unique<ReceiptNotes>();
    notes_->Began = Now();
    notes_->User = user;
}

void SessionReceipt::NoteUpload(std::string_view path) {
    if (notes_) notes_->Transfers.push_back({.Upload = true, .Path = std::string(path)});
}

void SessionReceipt::NoteDownload(std::string_view path) {
    if (notes_) notes_->Transfers.push_back({.Upload = false, .Path = std::string(path)});
}

void SessionReceipt::NoteFinished() {
    if (notes_) ++notes_->Finished;
}

void SessionReceipt::Note(const Text& line) {
    if (notes_) notes_->Lines.push_back(line);
}

void SessionReceipt::NoteBackup(std::string_view name) {
    if (notes_) notes_->Backup = name;
}

bool SessionReceipt::HasTaken() const {
    return notes_ && notes_->Taken;
}

void SessionReceipt::TakeArrived(const UploadRun& arrived, std::string_view totals) {
    if (!notes_ || notes_->Taken) return;
    notes_->Taken = true;
    notes_->Arrived = arrived;
    try {
        if (OrderTally stated; !totals.empty() && ReadStated(std::string(totals), stated))
            notes_->Stated = stated;
        if (!notes_->AskedForOrders()) return;
        notes_->Came = Compare({arrived.OrderHeaders ? TableOf(MergedOrderHeaders.Target) : std::string(),
                                arrived.OrderLines ? TableOf(MergedOrderLines.Target) : std::string()},
                               {BeforeOf(MergedOrderHeaders, arrived.OrderHeaders),
                                BeforeOf(MergedOrderLines, arrived.OrderLines)});
    } catch (const std::exception& failure) {
        TraceEvent(std::string("SessionReceipt:TakeArrived ") + failure.what());
    }
}

void SessionReceipt::Write(const SFrmAX40& control, const UploadRun& merged) {
    if (!notes_) return;
    const std::unique_ptr<ReceiptNotes> notes = std::move(notes_);
    try {
        SettleTransfers(*notes, control);
        std::optional<OrderTally> now;
        if (notes->Came)
            now = CountTally({TableOf(MergedOrderHeaders.Target), TableOf(MergedOrderLines.Target)});
        const std::string text = ReceiptSheet(kind_, *notes, merged, now);

        const std::string directory = DirectoryOf(notes->User);
        MakePath(directory);
        const std::string name = FreeName(directory, notes->Began);
        WriteWholeFile(directory + name + ".txt", text);
        RemoveOldest(directory, name);
    } catch (const std::exception& failure) {
        TraceEvent(std::string("SessionReceipt:Write ") + failure.what());
    }
}

std::optional<std::string> LastReceipt(std::string_view id) {
    if (!IsPlainFileName(id)) return std::nullopt;
    try {
        const std::string directory = DirectoryOf(id);
        const std::vector<std::string> names = ReceiptsIn(directory);
        if (names.empty()) return std::nullopt;
        return ReadWholeFile(directory + names.back() + ".txt", TextReader::OwnFile);
    } catch (const RunTimeFailure& failure) {
        TraceEvent(std::string("LastReceipt ") + failure.what());
        return std::nullopt;
    }
}

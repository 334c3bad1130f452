#include "sync/Receipt.h"

#include "core/Dates.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"
#include "sync/ReceiptCount.h"
#include "sync/SafetyCopies.h"

#include <algorithm>
#include <exception>
#include <span>

namespace {

constexpr std::size_t LineWidth = 78;
constexpr std::size_t LabelWidth = 24;
constexpr std::size_t CountWidth = 10;
constexpr std::size_t MoneyWidth = 16;

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

// ---- its words ----

/// What came out of a table or over a line: one line, without control characters.
Text Clean(std::string_view codePage) {
    const std::string value = WithoutControls(OneLine(codePage), '?');
    return Text::Value(std::string_view(value));
}

std::size_t Width(std::string_view utf8) {
    return static_cast<std::size_t>(
        std::count_if(utf8.begin(), utf8.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

std::string Left(const std::string& utf8, std::size_t width) {
    return utf8 + std::string(width - std::min(width, Width(utf8)), ' ');
}

std::string Right(const std::string& utf8, std::size_t width) {
    return std::string(width - std::min(width, Width(utf8)), ' ') + utf8;
}

/// Ten-thousandths in whole cents, half a cent away from zero.
std::int64_t Cents(std::int64_t tenThousandths) {
    return (tenThousandths + (tenThousandths < 0 ? -50 : 50)) / 100;
}

std::string MoneyText(std::int64_t tenThousandths) {
    const std::int64_t cents = Cents(tenThousandths);
    const std::string digits = std::to_string(cents < 0 ? -cents : cents);
    const std::string padded = std::string(3 - std::min<std::size_t>(3, digits.size()), '0') + digits;
    return (cents < 0 ? "-" : "") + padded.substr(0, padded.size() - 2) + "." +
           padded.substr(padded.size() - 2);
}

bool SameTally(const OrderTally& a, const OrderTally& b) {
    return a.Orders == b.Orders && a.Lines == b.Lines && Cents(a.Money) == Cents(b.Money);
}

std::string Row(const Text& label, const std::string& orders, const std::string& lines,
                const std::string& money) {
    return Left(label.Utf8(), LabelWidth) + Right(orders, CountWidth) + Right(lines, CountWidth) +
           Right(money, MoneyWidth);
}

std::string Row(const Text& label, const OrderTally& tally) {
    return Row(label, std::to_string(tally.Orders), std::to_string(tally.Lines), MoneyText(tally.Money));
}

MessageId KindText(SessionKind kind) {
    switch (kind) {
    case SessionKind::Upload:
        return msg::ReceiptUpload;
    case SessionKind::Download:
        return msg::ReceiptDownload;
    case SessionKind::Clear:
        return msg::ReceiptClear;
    case SessionKind::Unattended:
        break;
    }
    return msg::ReceiptUnattended;
}

MessageId EndText(ReceiptTransfer::End end) {
    switch (end) {
    case ReceiptTransfer::End::Well:
        return msg::ReceiptWell;
    case ReceiptTransfer::End::Failed:
        return msg::ReceiptFailed;
    case ReceiptTransfer::End::CutOff:
        break;
    }
    return msg::ReceiptCutOff;
}

/// A path as it is told: below the tables directory, or else below that of the application.
std::string ShortPath(const std::string& path) {
    for (const std::string* folder : {&Global.DBFPath, &Global.AppPath}) {
        if (!folder->empty() && path.starts_with(*folder)) return path.substr(folder->size());
    }
    return path;
}

/// A heading and codes below it, wrapped; nothing when there is none.
void AddCodes(std::string& text, MessageId heading, const std::vector<std::string>& codes) {
    if (codes.empty()) return;
    text += "\r\n" + Text(heading).Utf8();
    std::size_t at = LineWidth;
    for (const std::string& code : codes) {
        const std::string word = (code.empty() ? Text(msg::ReceiptBlankCode) : Clean(code)).Utf8();
        const std::size_t width = Width(word);
        if (at + 2 + width > LineWidth) {
            text += "\r\n  ";
            at = 2;
        } else {
            text += ", ";
            at += 2;
        }
        text += word;
        at += width;
    }
    text += "\r\n";
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

/// Whether a transfer brought one of the PC's own tables, and that has not been merged.
bool HoldsOnlySent(const ReceiptTransfer& transfer, const UploadRun& arrived, const UploadRun& merged) {
    if (!transfer.Upload || !SameText(FolderOf(transfer.Path), Global.DBFPath)) return false;
    const struct {
        const MergedTable& Table;
        bool UploadRun::*Which;
    } tables[] = {{MergedOrderHeaders, &UploadRun::OrderHeaders},
                  {MergedOrderLines, &UploadRun::OrderLines},
                  {MergedAuditHeaders, &UploadRun::AuditHeaders},
                  {MergedAuditLines, &UploadRun::AuditLines},
                  {MergedHHTotals, &UploadRun::HHTotals}};
    for (const auto& [table, which] : tables) {
        if (SameText(FileNameOf(transfer.Path), table.Target)) return arrived.*which && !(merged.*which);
    }
    return transfer.How == ReceiptTransfer::End::Well;
}

} // namespace

struct SessionReceipt::Notes {
    DateTime Began;
    std::string User;
    std::vector<ReceiptTransfer> Transfers;
    std::size_t Finished = 0;
    std::vector<Text> Lines;
    std::string Backup;

    bool Taken = false;
    UploadRun Arrived;
    std::optional<OrderTally> Stated;
    std::optional<Comparison> Came; ///< nothing when it could not be counted

    bool AskedForOrders() const {
        return std::any_of(Transfers.begin(), Transfers.end(), [](const ReceiptTransfer& transfer) {
            return transfer.Upload && SameText(transfer.Path, TableOf(MergedOrderHeaders.Target));
        });
    }

    bool BrokeOff() const {
        return std::any_of(Transfers.begin(), Transfers.end(), [](const ReceiptTransfer& transfer) {
            return transfer.How == ReceiptTransfer::End::CutOff;
        });
    }

    /// What the PC must hold when all is well.
    OrderTally Expected(const UploadRun& merged) const {
        const auto side = [](bool arrived, bool isMerged, std::int64_t came, std::int64_t before) {
            return (arrived ? came : 0) + (arrived && !isMerged ? 0 : before);
        };
        const OrderTally& came = Came->Arrived;
        const OrderTally& before = Came->Before;
        return {side(Arrived.OrderHeaders, merged.OrderHeaders, came.Orders, before.Orders),
                side(Arrived.OrderLines, merged.OrderLines, came.Lines, before.Lines),
                side(Arrived.OrderLines, merged.OrderLines, came.Money, before.Money)};
    }

    void SettleTransfers(const SFrmAX40& control) {
        for (std::size_t i = 0; i < Transfers.size(); ++i) {
            using End = ReceiptTransfer::End;
            const bool well = control.EndedWell(Transfers[i].Path);
            Transfers[i].How = well ? End::Well : i < Finished ? End::Failed : End::CutOff;
        }
    }

    std::string Verdict(const std::optional<OrderTally>& now, const UploadRun& merged) const {
        const auto notCompared = [](MessageId why) { return Words(msg::ReceiptNotCompared, why).Utf8(); };
        const auto outBy = [](const OrderTally& difference, MessageId of) {
            return Words(msg::ReceiptOutBy, Text::Value(difference.Orders), msg::ReceiptOutOrders,
                         Text::Value(difference.Lines), msg::ReceiptOutLines,
                         Text::Path(std::string_view(MoneyText(difference.Money))), of)
                .Utf8();
        };
        if (!AskedForOrders()) return notCompared(msg::ReceiptNoOrders);
        if (!Came || !now) return notCompared(msg::ReceiptNotCounted);
        if (Stated && !SameTally(*Stated, Came->Arrived))
            return outBy(*Stated - Came->Arrived, msg::ReceiptOutArrived);
        const OrderTally expected = Expected(merged);
        if (!SameTally(expected, *now)) return outBy(expected - *now, msg::ReceiptOutPC);
        return Stated ? Text(msg::ReceiptBalanced).Utf8() : notCompared(msg::ReceiptNoTotals);
    }

    void AddTransfers(std::string& text) const {
        text += "\r\n" + Text(msg::ReceiptTransfers).Utf8() + "\r\n";
        if (Transfers.empty()) text += "  " + Text(msg::None).Utf8() + "\r\n";
        for (const ReceiptTransfer& transfer : Transfers) {
            const std::string way = Text(transfer.Upload ? msg::ReceiptFrom : msg::ReceiptTo).Utf8();
            text += "  " + Left(way, 19) + Left(Text::Path(ShortPath(transfer.Path)).Utf8(), 40) +
                    Text(EndText(transfer.How)).Utf8() + "\r\n";
        }
    }

    void AddFigures(std::string& text, const std::optional<OrderTally>& now) const {
        text += "\r\n" +
                Row(Text(), Text(msg::ReceiptOrders).Utf8(), Text(msg::ReceiptLines).Utf8(),
                    Text(msg::ReceiptMoney).Utf8()) +
                "\r\n";
        const std::string notStated = Text(msg::ReceiptNotStated).Utf8();
        text +=
            (Stated ? Row(msg::ReceiptStated, *Stated) : Row(msg::ReceiptStated, {}, {}, notStated)) + "\r\n";
        if (Came) {
            const std::string notCome = Text(msg::ReceiptNotArrived).Utf8();
            const OrderTally& came = Came->Arrived;
            if (Arrived.OrderHeaders && Arrived.OrderLines)
                text += Row(msg::ReceiptArrived, came) + "\r\n";
            else if (Arrived.OrderHeaders)
                text += Row(msg::ReceiptArrived, std::to_string(came.Orders), {}, notCome) + "\r\n";
            else if (Arrived.OrderLines)
                text +=
                    Row(msg::ReceiptArrived, "0", std::to_string(came.Lines), MoneyText(came.Money)) + "\r\n";
            else
                text += Row(msg::ReceiptArrived, {}, {}, notCome) + "\r\n";
            text += Row(msg::ReceiptBefore, Came->Before) + "\r\n";
        }
        if (now) text += Row(msg::ReceiptNow, *now) + "\r\n";
    }

    void AddOrders(std::string& text) const {
        AddCodes(text, msg::ReceiptCodes, Came->Codes);
        AddCodes(text, msg::ReceiptAgain, Came->Again);
        AddCodes(text, msg::ReceiptChanged, Came->Changed);
        AddCodes(text, msg::ReceiptInPart, Came->InPart);
        AddCodes(text, msg::ReceiptLinesAlone, Came->LinesAlone);
        AddCodes(text, msg::ReceiptNoLines, Came->NoLines);
    }

    void AddTablesNotMerged(std::string& text, const UploadRun& merged) const {
        std::string rows;
        for (const ReceiptTransfer& transfer : Transfers) {
            if (!HoldsOnlySent(transfer, Arrived, merged)) continue;
            const std::string table(FileNameOf(transfer.Path));
            const bool inBackup =
                !Backup.empty() && FileExists(AddBackslash(Global.BackupPath + Backup) + table);
            const Text where = inBackup ? Words(msg::ReceiptInBackup, Text::Value(std::string_view(Backup)))
                                        : msg::ReceiptNoBackup;
            rows += "  " + Left(Text::Path(table).Utf8(), 16) + where.Utf8() + "\r\n";
        }
        if (rows.empty()) return;
        text += "\r\n" + Text(msg::ReceiptOnlySent).Utf8() + "\r\n" + rows;
    }
};

SessionReceipt::SessionReceipt(SessionKind kind) : kind_(kind) {}
SessionReceipt::~SessionReceipt() = default;

void SessionReceipt::Begin(std::string_view user) {
    notes_.reset();
    if (!IsPlainFileName(user)) {
        TraceEvent("SessionReceipt:Begin no directory can be called like the user");
        return;
    }
    notes_ = std::make_unique<Notes>();
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
    const std::unique_ptr<Notes> notes = std::move(notes_);
    try {
        notes->SettleTransfers(control);
        std::optional<OrderTally> now;
        if (notes->Came)
            now = CountTally({TableOf(MergedOrderHeaders.Target), TableOf(MergedOrderLines.Target)});

        std::string text = Text(msg::ReceiptTitle).Utf8() + "\r\n" + DateAndTime(notes->Began) + "\r\n" +
                           Words(msg::ReceiptUser, Clean(notes->User)).Utf8() + "\r\n" +
                           Text(KindText(kind_)).Utf8() + "\r\n\r\n" + notes->Verdict(now, merged) + "\r\n";
        for (const Text& line : notes->Lines) text += line.Utf8() + "\r\n";
        if (kind_ == SessionKind::Upload && notes->BrokeOff())
            text += Text(msg::ReceiptNotMerged).Utf8() + "\r\n";
        notes->AddTablesNotMerged(text, merged);
        notes->AddTransfers(text);
        if (notes->AskedForOrders()) notes->AddFigures(text, now);
        if (notes->Came) notes->AddOrders(text);

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

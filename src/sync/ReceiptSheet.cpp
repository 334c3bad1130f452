#include "sync/ReceiptSheet.h"

#include "core/CodePage.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"
#include "maintenance/SafetyCopies.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace {

constexpr std::size_t LineWidth = 78;
constexpr std::size_t LabelWidth = 24;
constexpr std::size_t CountWidth = 10;
constexpr std::size_t MoneyWidth = 16;

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

// ---- its parts ----

/// Whether a table lies in the tables directory, as the PC's own do.
bool IsInTables(const std::string& path) {
    return SameText(FolderOf(path), Global.DBFPath);
}

/// Whether a transfer brought one of the PC's own tables, and that has not been merged.
bool HoldsOnlySent(const ReceiptTransfer& transfer, const UploadRun& arrived, const UploadRun& merged) {
    if (!transfer.Upload || !IsInTables(transfer.Path)) return false;
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

/// What the PC must hold when all is well.
OrderTally Expected(const ReceiptNotes& notes, const UploadRun& merged) {
    const auto side = [](bool arrived, bool isMerged, std::int64_t came, std::int64_t before) {
        return (arrived ? came : 0) + (arrived && !isMerged ? 0 : before);
    };
    const OrderTally& came = notes.Came->Arrived;
    const OrderTally& before = notes.Came->Before;
    return {side(notes.Arrived.OrderHeaders, merged.OrderHeaders, came.Orders, before.Orders),
            side(notes.Arrived.OrderLines, merged.OrderLines, came.Lines, before.Lines),
            side(notes.Arrived.OrderLines, merged.OrderLines, came.Money, before.Money)};
}

std::string Verdict(const ReceiptNotes& notes, const UploadRun& merged,
                    const std::optional<OrderTally>& now) {
    const auto notCompared = [](MessageId why) { return Words(msg::ReceiptNotCompared, why).Utf8(); };
    const auto outBy = [](const OrderTally& difference, MessageId of) {
        return Words(msg::ReceiptOutBy, Text::Value(difference.Orders), msg::ReceiptOutOrders,
                     Text::Value(difference.Lines), msg::ReceiptOutLines,
                     Text::Path(std::string_view(MoneyText(difference.Money))), of)
            .Utf8();
    };
    if (!notes.AskedForOrders()) return notCompared(msg::ReceiptNoOrders);
    if (!notes.Came || !now) return notCompared(msg::ReceiptNotCounted);
    if (notes.Stated && !SameTally(*notes.Stated, notes.Came->Arrived))
        return outBy(*notes.Stated - notes.Came->Arrived, msg::ReceiptOutArrived);
    const OrderTally expected = Expected(notes, merged);
    if (!SameTally(expected, *now)) return outBy(expected - *now, msg::ReceiptOutPC);
    return notes.Stated ? Text(msg::ReceiptBalanced).Utf8() : notCompared(msg::ReceiptNoTotals);
}

void AddTransfers(std::string& text, const ReceiptNotes& notes) {
    text += "\r\n" + Text(msg::ReceiptTransfers).Utf8() + "\r\n";
    if (notes.Transfers.empty()) text += "  " + Text(msg::None).Utf8() + "\r\n";
    for (const ReceiptTransfer& transfer : notes.Transfers) {
        const std::string way = Text(transfer.Upload ? msg::ReceiptFrom : msg::ReceiptTo).Utf8();
        text += "  " + Left(way, 19) + Left(Text::Path(ShortPath(transfer.Path)).Utf8(), 40) +
                Text(EndText(transfer.How)).Utf8() + "\r\n";
    }
}

void AddFigures(std::string& text, const ReceiptNotes& notes, const std::optional<OrderTally>& now) {
    text += "\r\n" +
            Row(Text(), Text(msg::ReceiptOrders).Utf8(), Text(msg::ReceiptLines).Utf8(),
                Text(msg::ReceiptMoney).Utf8()) +
            "\r\n";
    const std::string notStated = Text(msg::ReceiptNotStated).Utf8();
    text +=
        (notes.Stated ? Row(msg::ReceiptStated, *notes.Stated) : Row(msg::ReceiptStated, {}, {}, notStated)) +
        "\r\n";
    if (notes.Came) {
        const std::string notCome = Text(msg::ReceiptNotArrived).Utf8();
        const OrderTally& came = notes.Came->Arrived;
        if (notes.Arrived.OrderHeaders && notes.Arrived.OrderLines)
            text += Row(msg::ReceiptArrived, came) + "\r\n";
        else if (notes.Arrived.OrderHeaders)
            text += Row(msg::ReceiptArrived, std::to_string(came.Orders), {}, notCome) + "\r\n";
        else if (notes.Arrived.OrderLines)
            text += Row(msg::ReceiptArrived, "0", std::to_string(came.Lines), MoneyText(came.Money)) + "\r\n";
        else
            text += Row(msg::ReceiptArrived, {}, {}, notCome) + "\r\n";
        text += Row(msg::ReceiptBefore, notes.Came->Before) + "\r\n";
    }
    if (now) text += Row(msg::ReceiptNow, *now) + "\r\n";
}

void AddOrders(std::string& text, const Comparison& came) {
    AddCodes(text, msg::ReceiptCodes, came.Codes);
    AddCodes(text, msg::ReceiptAgain, came.Again);
    AddCodes(text, msg::ReceiptChanged, came.Changed);
    AddCodes(text, msg::ReceiptInPart, came.InPart);
    AddCodes(text, msg::ReceiptLinesAlone, came.LinesAlone);
    AddCodes(text, msg::ReceiptNoLines, came.NoLines);
}

void AddTablesNotMerged(std::string& text, const ReceiptNotes& notes, const UploadRun& merged) {
    std::string rows;
    for (const ReceiptTransfer& transfer : notes.Transfers) {
        if (!HoldsOnlySent(transfer, notes.Arrived, merged)) continue;
        const std::string table(FileNameOf(transfer.Path));
        const bool inBackup =
            !notes.Backup.empty() && FileExists(AddBackslash(Global.BackupPath + notes.Backup) + table);
        const Text where = inBackup ? Words(msg::ReceiptInBackup, Text::Value(std::string_view(notes.Backup)))
                                    : msg::ReceiptNoBackup;
        rows += "  " + Left(Text::Path(table).Utf8(), 16) + where.Utf8() + "\r\n";
    }
    if (rows.empty()) return;
    text += "\r\n" + Text(msg::ReceiptOnlySent).Utf8() + "\r\n" + rows;
}

} // namespace

bool ReceiptNotes::AskedForOrders() const {
    return std::any_of(Transfers.begin(), Transfers.end(), [](const ReceiptTransfer& transfer) {
        return transfer.Upload && IsInTables(transfer.Path) &&
               SameText(FileNameOf(transfer.Path), MergedOrderHeaders.Target);
    });
}

bool ReceiptNotes::BrokeOff() const {
    return std::any_of(Transfers.begin(), Transfers.end(), [](const ReceiptTransfer& transfer) {
        return transfer.How == ReceiptTransfer::End::CutOff;
    });
}

std::string ReceiptSheet(SessionKind kind, const ReceiptNotes& notes, const UploadRun& merged,
                         const std::optional<OrderTally>& now) {
    std::string text = Text(msg::ReceiptTitle).Utf8() + "\r\n" + DateAndTime(notes.Began) + "\r\n" +
                       Words(msg::ReceiptUser, Clean(notes.User)).Utf8() + "\r\n" +
                       Text(KindText(kind)).Utf8() + "\r\n\r\n" + Verdict(notes, merged, now) + "\r\n";
    for (const Text& line : notes.Lines) text += line.Utf8() + "\r\n";
    if (kind == SessionKind::Upload && notes.BrokeOff()) text += Text(msg::ReceiptNotMerged).Utf8() + "\r\n";
    AddTablesNotMerged(text, notes, merged);
    AddTransfers(text, notes);
    if (notes.AskedForOrders()) AddFigures(text, notes, now);
    if (notes.Came) AddOrders(text, *notes.Came);
    return text;
}

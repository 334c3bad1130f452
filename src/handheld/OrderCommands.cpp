#include "handheld/CommandTable.h"

#include "core/CodePage.h"
#include "handheld/Decimal.h"
#include "handheld/OrderBook.h"
#include "handheld/RandomOrders.h"
#include "handheld/Refusal.h"

#include <array>
#include <limits>

namespace {

constexpr int QuantityDecimals = 4, MoneyDecimals = 2;
constexpr std::uint64_t MostOrders = 65535, MostLines = 9999;

std::int64_t Amount(const std::string& option, std::string_view text, int decimals) {
    const std::optional<std::int64_t> amount = ReadDecimal(text, decimals);
    if (!amount) throw Misuse(option + ": \"" + std::string(text) + "\" is no number");
    return *amount;
}

/// A sum of money has no more decimals than money.
std::int64_t MoneyInTenThousandths(const std::string& option, std::string_view text) {
    constexpr std::int64_t ToTenThousandths = 100;
    const auto amount = ProductOver(Amount(option, text, MoneyDecimals), ToTenThousandths, 1);
    if (!amount) throw Misuse(option + ": \"" + std::string(text) + "\" is too great");
    return *amount;
}

DateTime Date(const std::string& option, const std::string& text) {
    const std::optional<DateTime> date = CDate(text);
    if (!date) throw Misuse(option + ": \"" + text + "\" is no date");
    return *date;
}

DateTime MomentOf(const CommandRun& run, const Handheld& handheld) {
    return run.Line.Has("--at") ? Date("--at", run.Line.Value("--at")) : handheld.Clock();
}

/// The parts before and behind the last colon.
std::pair<std::string, std::string> AtLastColon(const std::string& option, const std::string& text) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos) throw Misuse(option + ": \"" + text + "\" has no colon");
    return {text.substr(0, colon), text.substr(colon + 1)};
}

OrderEntry::Line LineOf(const std::string& text) {
    const std::string option = "--line";
    const auto [item, rest] = AtLastColon(option, text);
    const std::size_t at = rest.find('@');
    OrderEntry::Line line;
    line.Item = Utf8ToCodePage(item);
    line.Quantity = Amount(option, rest.substr(0, at), QuantityDecimals);
    if (at != std::string::npos) line.Price = Amount(option, rest.substr(at + 1), QuantityDecimals);
    return line;
}

OrderEntry EntryOf(const CommandRun& run, const Handheld& handheld) {
    OrderEntry entry;
    if (!run.Line.Has("--customer")) throw Misuse("--customer is missing");
    if (!run.Line.Has("--line")) throw Misuse("--line is missing");
    entry.Customer = Utf8ToCodePage(run.Line.Value("--customer"));
    for (const std::string& line : run.Line.Values("--line")) entry.Lines.push_back(LineOf(line));
    entry.CustomerPO = Utf8ToCodePage(run.Line.Value("--po"));
    if (run.Line.Has("--ship-date")) entry.ShipDate = Date("--ship-date", run.Line.Value("--ship-date"));
    if (run.Line.Has("--discount")) {
        std::string discount = run.Line.Value("--discount");
        entry.DiscountIsPercent = discount.ends_with('%');
        if (entry.DiscountIsPercent) discount.pop_back();
        entry.Discount = entry.DiscountIsPercent ? Amount("--discount", discount, QuantityDecimals)
                                                 : MoneyInTenThousandths("--discount", discount);
    }
    for (const std::string& text : run.Line.Values("--charge")) {
        const auto [description, amount] = AtLastColon("--charge", text);
        entry.Charges.push_back({Utf8ToCodePage(description), Amount("--charge", amount, MoneyDecimals)});
    }
    entry.At = MomentOf(run, handheld);
    return entry;
}

Outcome Order(const CommandRun& run) {
    Handheld handheld(run.Folder);
    const OrderEntry entry = EntryOf(run, handheld);
    OrderBook book(handheld);
    const std::string code = book.Take(entry);
    book.Save("ORDER", entry.At);
    run.Out() << CodePageToUtf8(code) << '\n';
    return Outcome::Done;
}

Outcome Sign(const CommandRun& run) {
    Handheld handheld(run.Folder);
    OrderBook book(handheld);
    const std::string& code = run.Line.Operands().front();
    book.Sign(Utf8ToCodePage(code), Utf8ToCodePage(run.Line.Value("--text")));
    book.Save("SIGN", handheld.Clock());
    run.Out() << code << " is signed\n";
    return Outcome::Done;
}

Outcome Delete(const CommandRun& run) {
    Handheld handheld(run.Folder);
    OrderBook book(handheld);
    const std::string& code = run.Line.Operands().front();
    const DateTime at = MomentOf(run, handheld);
    const std::size_t lines = book.Delete(Utf8ToCodePage(code), at);
    book.Save("DELETE", at);
    run.Out() << code << " is deleted with " << lines << " lines\n";
    return Outcome::Done;
}

Outcome Totals(const CommandRun& run) {
    Handheld handheld(run.Folder);
    const HandheldTotals totals = RewriteTotals(handheld, "TOTALS");
    run.Out() << "Orders: " << totals.Headers << "\nLines: " << totals.Lines
              << "\nDollars: " << DecimalText(totals.Dollars, QuantityDecimals)
              << "\nMachine id: " << CodePageToUtf8(totals.Machine)
              << "\nLast order: " << (totals.LastOrder.empty() ? "none" : CodePageToUtf8(totals.LastOrder))
              << '\n';
    return Outcome::Done;
}

Outcome Take(const CommandRun& run) {
    const std::uint64_t count = WholeNumber("take", run.Line.Operands().front(), 1, MostOrders);
    if (!run.Line.Has("--seed")) throw Misuse("--seed is missing");
    const std::uint64_t seed = run.Line.Number("--seed", 0, std::numeric_limits<std::uint32_t>::max());
    const std::uint64_t lines = run.Line.Has("--lines") ? run.Line.Number("--lines", 1, MostLines) : 0;
    Handheld handheld(run.Folder);
    OrderBook book(handheld);
    const DateTime at = MomentOf(run, handheld);
    const std::vector<std::string> codes =
        TakeRandomOrders(book, static_cast<std::size_t>(count), static_cast<std::uint32_t>(seed), at,
                         static_cast<std::size_t>(lines));
    book.Save("ORDER", handheld.Clock());
    run.Out() << codes.size() << " orders, " << CodePageToUtf8(codes.front()) << " to "
              << CodePageToUtf8(codes.back()) << '\n';
    return Outcome::Done;
}

constexpr std::array<OptionDef, 7> OrderOptions{{{"--customer"},
                                                 {"--line", true, true},
                                                 {"--po"},
                                                 {"--ship-date"},
                                                 {"--discount"},
                                                 {"--charge", true, true},
                                                 {"--at"}}};
constexpr std::array<OptionDef, 1> SignOptions{{{"--text"}}};
constexpr std::array<OptionDef, 1> DeleteOptions{{{"--at"}}};
constexpr std::array<OptionDef, 3> TakeOptions{{{"--seed"}, {"--lines"}, {"--at"}}};

constexpr std::array<CommandDef, 5> Commands{{
    {"order",
     "--customer CODE_OR_KEY --line ITEM:QTY[@PRICE] ... [--po TEXT] [--ship-date D]\n"
     "      [--discount AMOUNT|PERCENT%] [--charge DESC:AMOUNT] ... [--at \"yyyy-mm-dd hh:mm:ss\"]",
     "Takes an order and tells its code: the machine id and the next order number. A customer and an item\n"
     "are named by their codes or search values. A price stands in place of the item's. Up to 4 charges.\n",
     OrderOptions, 0, 0, Order},
    {"sign", "ORDER [--text NAME]",
     "Signs an order: puts ink behind its header, drawn from the name, or from the customer's.\n",
     SignOptions, 1, 1, Sign},
    {"delete", "ORDER [--at MOMENT]",
     "Deletes an order with its lines and writes both into the audit tables.\n", DeleteOptions, 1, 1, Delete},
    {"totals",
     "",
     "Counts its orders and writes the record of its totals table ZUKAUDHH.\n",
     {},
     0,
     0,
     Totals},
    {"take", "N --seed S [--lines L] [--at MOMENT]",
     "Takes N orders of 1 to 10 lines by chance, or of L lines each, some of them signed: the same ones for\n"
     "the same seed and moment, over the same tables.\n",
     TakeOptions, 1, 1, Take},
}};

} // namespace

std::span<const CommandDef> OrderCommands() {
    return Commands;
}

#include "sync/ReceiptCount.h"

#include "core/Failure.h"
#include "core/Numbers.h"
#include "core/TextCompare.h"
#include "store/TableScan.h"

#include <bit>
#include <limits>
#include <unordered_map>

namespace {

/// One order, as one pair of tables has it. The digests of its records are added up, so their order does not
/// count, and an order that stands twice has twice the sum.
struct Order {
    std::string Code;
    std::uint64_t HeaderDigest = 0, LineDigest = 0;
    std::uint64_t Headers = 0, Lines = 0;
};

std::uint64_t Spread(std::uint64_t bits) {
    bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9U;
    bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBU;
    return bits ^ (bits >> 31);
}

std::uint64_t Hash(std::string_view text) {
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
    return Spread(hash);
}

/// Digests the records of a table. Fields go by their names and blank ones do not count, so that a table
/// compares with a copy of another structure; a merge turns a blank number into 0.
class RecordDigest {
public:
    explicit RecordDigest(const TableLayout& layout) {
        for (int field = 1; field <= layout.FieldCount(); ++field)
            fields_.push_back({Hash(layout.PlainName(field)), layout.FieldType(field) == "N"});
    }
    std::uint64_t Of(const TableScan& scan) const {
        std::uint64_t sum = 0;
        int number = 0;
        for (const Field& field : fields_) {
            const std::string_view value = scan.Trimmed(++number);
            if (value.empty()) continue;
            const std::uint64_t bits = field.IsNumber ? NumberBits(value) : Hash(value);
            if (bits != 0) sum += Spread(field.Name ^ bits);
        }
        return Spread(sum);
    }

private:
    struct Field {
        std::uint64_t Name = 0;
        bool IsNumber = false;
    };
    static std::uint64_t NumberBits(std::string_view value) {
        return Spread(std::bit_cast<std::uint64_t>(ToNumber(value)));
    }
    std::vector<Field> fields_;
};

/// RunTimeFailure 6 when it does not fit.
std::int64_t Sum(std::int64_t sum, std::string_view value) {
    const std::int64_t amount = ToFixed4(ToNumber(value));
    constexpr auto Most = std::numeric_limits<std::int64_t>::max() / 4;
    if (amount > Most || amount < -Most || sum + amount > Most || sum + amount < -Most)
        throw RunTimeFailure(6, std::string(value));
    return sum + amount;
}

class OrderBook {
public:
    OrderTally Tally;

    void ReadHeaders(const std::string& path) {
        TableScan headers(path);
        const int code = headers.Layout().Find(FieldKey("H_ORDCODE"));
        const RecordDigest digest(headers.Layout());
        while (headers.Next()) {
            Order& order = Of(headers.Trimmed(code));
            order.HeaderDigest += digest.Of(headers);
            ++order.Headers;
            ++Tally.Orders;
        }
    }

    void ReadLines(const std::string& path) {
        TableScan lines(path);
        const int code = lines.Layout().Find(FieldKey("L_ORDCODE"));
        const int price = lines.Layout().Find(FieldKey("L_TOTPRICE"));
        const RecordDigest digest(lines.Layout());
        while (lines.Next()) {
            Order& order = Of(lines.Trimmed(code));
            order.LineDigest += digest.Of(lines);
            ++order.Lines;
            ++Tally.Lines;
            Tally.Money = Sum(Tally.Money, lines.Trimmed(price));
        }
    }

    const std::vector<Order>& Orders() const { return orders_; }

    const Order* Find(std::string_view code) const {
        const auto found = byCode_.find(FoldCase(code));
        return found == byCode_.end() ? nullptr : &orders_[found->second];
    }

private:
    Order& Of(std::string_view code) {
        // The lines of an order stand together for the most part.
        if (!orders_.empty() && orders_[last_].Code == code) return orders_[last_];
        const auto [place, isNew] = byCode_.try_emplace(FoldCase(code), orders_.size());
        if (isNew) orders_.push_back({.Code = std::string(code)});
        last_ = place->second;
        return orders_[last_];
    }

    std::vector<Order> orders_;
    std::unordered_map<std::string, std::size_t> byCode_; ///< by the folded code
    std::size_t last_ = 0;
};

OrderBook ReadBook(const OrderPair& tables) {
    OrderBook book;
    if (!tables.Headers.empty()) book.ReadHeaders(tables.Headers);
    if (!tables.Lines.empty()) book.ReadLines(tables.Lines);
    return book;
}

/// Whether the PC held just this: once, or several times when it came several times already.
bool IsSame(const Order& came, const Order& held) {
    const std::uint64_t times = came.Headers == 0 ? 1 : held.Headers / came.Headers;
    return held.Headers == times * came.Headers && held.HeaderDigest == times * came.HeaderDigest &&
           held.Lines == times * came.Lines && held.LineDigest == times * came.LineDigest;
}

} // namespace

OrderTally operator+(const OrderTally& a, const OrderTally& b) {
    return {a.Orders + b.Orders, a.Lines + b.Lines, a.Money + b.Money};
}

OrderTally operator-(const OrderTally& a, const OrderTally& b) {
    return {a.Orders - b.Orders, a.Lines - b.Lines, a.Money - b.Money};
}

OrderTally CountTally(const OrderPair& tables) {
    OrderTally tally;
    if (!tables.Headers.empty()) tally.Orders = TableScan(tables.Headers).RecordCount();
    if (tables.Lines.empty()) return tally;
    TableScan lines(tables.Lines);
    const int price = lines.Layout().Find(FieldKey("L_TOTPRICE"));
    tally.Lines = lines.RecordCount();
    while (lines.Next()) tally.Money = Sum(tally.Money, lines.Trimmed(price));
    return tally;
}

Comparison Compare(const OrderPair& arrived, const OrderPair& before) {
    const OrderBook came = ReadBook(arrived);
    const OrderBook held = ReadBook(before);
    const bool whole = !arrived.Headers.empty() && !arrived.Lines.empty();

    Comparison result;
    result.Arrived = came.Tally;
    result.Before = held.Tally;
    for (const Order& order : came.Orders()) {
        result.Codes.push_back(order.Code);
        const Order* const old = held.Find(order.Code);
        if (old) {
            std::vector<std::string>& as = !whole                ? result.InPart
                                           : IsSame(order, *old) ? result.Again
                                                                 : result.Changed;
            as.push_back(order.Code);
        }
        // What did not arrive is as it was.
        const std::uint64_t headers = arrived.Headers.empty() && old ? old->Headers : order.Headers;
        const std::uint64_t lines = arrived.Lines.empty() && old ? old->Lines : order.Lines;
        if (headers == 0) result.LinesAlone.push_back(order.Code);
        if (lines == 0) result.NoLines.push_back(order.Code);
    }
    return result;
}

bool ReadStated(const std::string& path, OrderTally& stated) {
    TableScan totals(path);
    if (!totals.Next()) return false;
    const auto number = [&totals](int field) { return Sum(0, totals.Trimmed(field)); };
    stated = {number(1) / 10'000, number(2) / 10'000, number(3)};
    return true;
}

#include "handheld/RandomOrders.h"

#include "handheld/Refusal.h"

#include <random>
#include <utility>

namespace {

constexpr std::int64_t One = 10'000; // of a quantity

class Dice {
public:
    explicit Dice(std::uint32_t seed) : engine_(seed) {}

    /// 0 up to `sides`, that left out. The library's distributions differ from one system to the next.
    std::size_t Throw(std::size_t sides) { return engine_() % sides; }
    bool OneIn(std::size_t times) { return Throw(times) == 0; }
    const std::string& Choose(const std::vector<std::string>& texts) { return texts[Throw(texts.size())]; }

private:
    std::mt19937 engine_;
};

OrderEntry RandomOrder(Dice& dice, const std::vector<std::string>& customers,
                       const std::vector<std::string>& items, const DateTime& at, std::size_t lines) {
    OrderEntry entry;
    entry.At = at;
    entry.Customer = dice.Choose(customers);
    if (lines == 0) lines = 1 + dice.Throw(10);
    for (std::size_t k = 0; k < lines; ++k) {
        OrderEntry::Line line;
        line.Item = dice.Choose(items);
        line.Quantity = static_cast<std::int64_t>(1 + dice.Throw(24)) * One;
        if (dice.OneIn(12)) line.Quantity += One / 2;
        entry.Lines.push_back(std::move(line));
    }
    if (dice.OneIn(3)) entry.CustomerPO = "PO " + std::to_string(1000 + dice.Throw(9000));
    if (dice.OneIn(2)) entry.ShipDate = AddDays(at, static_cast<int>(1 + dice.Throw(14)));
    if (dice.OneIn(10)) {
        entry.Discount = static_cast<std::int64_t>(1 + dice.Throw(10)) * One;
        entry.DiscountIsPercent = true;
    }
    if (dice.OneIn(8))
        entry.Charges.push_back({"Freight", static_cast<std::int64_t>(500 + dice.Throw(2000))});
    return entry;
}

std::vector<std::string> CodesOf(const std::vector<OrderBook::Choice>& choices) {
    std::vector<std::string> codes;
    codes.reserve(choices.size());
    for (const OrderBook::Choice& choice : choices) codes.push_back(choice.Code);
    return codes;
}

} // namespace

std::vector<std::string> TakeRandomOrders(OrderBook& book, std::size_t count, std::uint32_t seed,
                                          const DateTime& from, std::size_t lines) {
    const std::vector<std::string> customers = CodesOf(book.Customers()), items = CodesOf(book.PricedItems());
    if (customers.empty()) throw Refusal("the handheld has no customer with a code (ZUKCUST)");
    if (items.empty()) throw Refusal("the handheld has no item with a code and a price (ZUKITEM)");
    constexpr double MinutesADay = 1440;
    constexpr int MinutesApart = 7;
    Dice dice(seed);
    std::vector<std::string> codes;
    for (std::size_t k = 0; k < count; ++k) {
        const DateTime at = FromSerial(ToSerial(from) + static_cast<double>(k) * MinutesApart / MinutesADay);
        codes.push_back(book.Take(RandomOrder(dice, customers, items, at, lines)));
        if (dice.OneIn(4)) book.Sign(codes.back(), {});
    }
    return codes;
}

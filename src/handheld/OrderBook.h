#pragma once

#include "core/Dates.h"
#include "handheld/Handheld.h"
#include "handheld/HandheldTable.h"
#include "handheld/OrderNumbers.h"
#include "handheld/Totals.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// An order as a salesperson enters it. Texts are in code page 1252.
struct OrderEntry {
    struct Line {
        std::string Item;                  ///< code, else search value
        std::int64_t Quantity = 0;         ///< in ten-thousandths, above 0
        std::optional<std::int64_t> Price; ///< in ten-thousandths, not below 0, in place of the item's
    };
    struct Charge {
        std::string Description;
        std::int64_t Cents = 0;
    };

    std::string Customer; ///< code, else search value
    std::vector<Line> Lines;
    std::string CustomerPO;
    std::optional<DateTime> ShipDate;
    std::int64_t Discount = 0; ///< in ten-thousandths: of a dollar, or of a percent
    bool DiscountIsPercent = false;
    std::vector<Charge> Charges; ///< up to MostCharges
    DateTime At;

    static constexpr std::size_t MostCharges = 4;
};

/// The orders of a handheld and what they are made from, in memory between two calls of Save. Between two
/// calls orders are either taken or deleted: the files of both go to the disk in another order.
class OrderBook {
public:
    /// Reads the tables that there are. Refusal for a damaged one.
    explicit OrderBook(Handheld& handheld);

    /// What an order comes to, in cents.
    struct Sums {
        std::vector<std::int64_t> Lines;
        std::int64_t Items = 0, Tax = 0, Total = 0;
    };
    /// Adds an order up without taking it; without a customer it has no sales tax. Refusal as Take.
    Sums AddUp(const OrderEntry& entry) const;

    /// Takes an order; its code. Refusal that says what is missing or wrong; the book then is as before.
    std::string Take(const OrderEntry& entry);
    /// Puts ink behind an order's header. An empty name is that of the customer.
    void Sign(std::string_view orderCode, std::string_view name);
    /// Removes an order with its lines and writes down that it did; how many lines there were.
    std::size_t Delete(std::string_view orderCode, const DateTime& at);

    /// Writes what has changed, and the totals, under the event's name. When the memory does not hold it,
    /// Refusal, and the handheld is as it was. A kill in between leaves no number that could be given again,
    /// and no header without its lines. Failures of the disk.
    void Save(std::string_view event, const DateTime& at);

    HandheldTotals Totals() const { return CountTotals(&headers_, &lines_, numbers_); }

    /// Something that an order can be taken of.
    struct Choice {
        std::string Code, Name;
        std::string More; ///< of a customer the city; of an item price, unit and barcode
    };
    std::vector<Choice> Customers() const;   ///< those with a code
    std::vector<Choice> PricedItems() const; ///< those with a code and a price

private:
    /// First row of each code, by FoldCase.
    using CodeIndex = std::unordered_map<std::string, std::size_t>;

    struct Tax {
        std::string Code, Type, Description;
        std::string RateText = "0";
        std::int64_t Rate = 0; ///< percent, in hundred-thousandths
        bool IsKnown = false;
    };
    struct PricedLine {
        std::size_t Item = 0;
        std::int64_t Quantity = 0, Price = 0, ListPrice = 0; ///< in ten-thousandths
        std::int64_t Cents = 0;
        bool IsTaxable = false, IsListPrice = true;
    };
    struct Amounts {
        std::int64_t Items = 0, Taxable = 0, Charges = 0, Tax = 0, Total = 0; ///< cents
        std::int64_t TaxableLines = 0;
    };

    HandheldTable Open(std::string_view table) const;
    static CodeIndex IndexOf(const HandheldTable& table, std::string_view field);
    std::size_t FindCustomer(std::string_view codeOrKey) const;
    std::size_t FindItem(std::string_view codeOrKey) const;
    Tax TaxOf(std::size_t customer) const;
    PricedLine Priced(const OrderEntry::Line& line) const;
    static Amounts Add(const OrderEntry& entry, const std::vector<PricedLine>& lines, const Tax& tax);
    std::string HeaderOf(const OrderEntry& entry, std::size_t customer, const Amounts& amounts,
                         const Tax& tax) const;
    std::string LineOf(const PricedLine& line, std::size_t customer, const Tax& tax,
                       const DateTime& at) const;
    std::size_t FindHeader(std::string_view orderCode) const;
    std::string NewCode();

    Handheld& handheld_;
    OrderNumbers numbers_;
    std::optional<HandheldTable> customers_, items_, taxes_;
    HandheldTable headers_, lines_;
    std::optional<HandheldTable> headerAudit_, lineAudit_;
    CodeIndex customerCodes_, itemCodes_, headerCodes_;
    bool hasDeleted_ = false; ///< since the last Save
};

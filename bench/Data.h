#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// An office in a folder with generated data, always the same for the same counts; the shared block
/// points at it while the object lives.
class BenchOffice {
public:
    /// In a temporary folder of its own, which goes with the object.
    BenchOffice();
    /// In a folder that stays. What stands there is used as it is.
    explicit BenchOffice(std::string folder);
    BenchOffice(const BenchOffice&) = delete;
    BenchOffice& operator=(const BenchOffice&) = delete;
    ~BenchOffice();

    /// A quoted text file of customers in UTF-8, a line of 14 columns each behind a heading line;
    /// returns its path.
    std::string GivenCustomerFile(std::int64_t lines) const;

    /// Customers, and items with barcodes, as an accounting system delivers them: in no order, or in that
    /// of their keys.
    enum class Order { None, OfKeys };
    void GivenCustomers(std::int64_t count, Order order) const;
    void GivenItems(std::int64_t count, Order order) const;

    /// The one sales tax of those customers and items.
    void GivenSalesTax(std::string_view code) const;

    /// Order headers in no order, and lines spread over them, those of an order together.
    void GivenOrders(std::int64_t headers, std::int64_t lines) const;

    /// Headers of deleted orders in the audit.
    void GivenAudit(std::int64_t headers) const;

    /// Events in the totals table.
    void GivenEvents(std::int64_t events) const;

private:
    void Use() const;

    std::string folder_; ///< ends in a slash
    bool keep_;
};

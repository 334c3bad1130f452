#pragma once

#include <cstdint>
#include <string>

/// An office in a folder of its own with generated data, always the same for the same counts; the
/// shared block points at it. Gone with the object.
class BenchOffice {
public:
    BenchOffice();
    BenchOffice(const BenchOffice&) = delete;
    BenchOffice& operator=(const BenchOffice&) = delete;
    ~BenchOffice();

    /// A quoted text file of customers, a line each behind a heading line; returns its path.
    std::string GivenCustomerFile(std::int64_t lines) const;

    /// Order headers, and lines spread over them evenly.
    void GivenOrders(std::int64_t headers, std::int64_t lines) const;

    /// Events in the totals table.
    void GivenEvents(std::int64_t events) const;

private:
    std::string folder_;
};

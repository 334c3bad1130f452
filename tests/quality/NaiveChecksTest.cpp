#include "quality/QualityTest.h"

#include "core/CodePage.h"
#include "core/Numbers.h"
#include "core/TextCompare.h"

#include <random>

// The checks of tables against a slow walk over plain grids of texts, over tables of nasty cells.

namespace {

/// A table in memory: column 1 the record's number, the fields behind it. Rows and columns count from 1.
class Grid {
public:
    /// The rows of a table as the sort by its first field leaves it.
    Grid(const std::vector<std::vector<std::string>>& records) {
        rows_.emplace_back();
        for (const auto& record : records) {
            std::vector<std::string> row{"", ""};
            for (const std::string& cell : record) row.emplace_back(Trim(cell));
            rows_.push_back(row);
        }
        Sort(2);
        for (std::size_t row = 1; row <= Rows(); ++row) At(row, 1) = std::to_string(row);
    }

    std::size_t Rows() const { return rows_.size() - 1; }
    std::string& At(std::size_t row, std::size_t column) { return rows_.at(row).at(column); }

    /// Each row before the first one that is greater.
    void Sort(std::size_t column) {
        for (std::size_t row = 2; row <= Rows(); ++row) {
            for (std::size_t k = row; k > 1 && TextCompare(At(k - 1, column), At(k, column)) > 0; --k)
                std::swap(rows_[k - 1], rows_[k]);
        }
    }

private:
    std::vector<std::vector<std::string>> rows_;
};

std::string WithoutLastComma(std::string list) {
    return list.ends_with(", ") ? list.substr(0, list.size() - 2) : "";
}

std::string BlankOnes(Grid& grid, std::size_t column) {
    std::string list;
    for (std::size_t row = 1; row <= grid.Rows(); ++row) {
        if (!grid.At(row, column).empty()) break;
        list += grid.At(row, 1) + ", ";
    }
    return WithoutLastComma(list);
}

std::string DuplicateOnes(Grid& grid, std::size_t column) {
    std::string list;
    for (std::size_t row = 1; row <= grid.Rows(); ++row) {
        const std::string value = grid.At(row, column);
        if (row != grid.Rows() && !value.empty() && TextCompare(grid.At(row + 1, column), value) == 0)
            list += grid.At(row, 1) + ", " + grid.At(row + 1, 1) + ", ";
    }
    return WithoutLastComma(list);
}

bool LiesIn(char c, const char* first, const char* last) {
    const std::string text(1, c);
    return TextCompare(text, first) >= 0 && TextCompare(text, last) <= 0;
}

template <typename Allowed>
std::string OnesWithOtherThan(Grid& grid, std::size_t column, Allowed&& allowed) {
    std::string list;
    for (std::size_t row = 1; row <= grid.Rows(); ++row) {
        grid.At(row, column) = UpperCase(grid.At(row, column));
        for (const char c : grid.At(row, column)) {
            if (allowed(c)) continue;
            list += grid.At(row, 1) + ", ";
            break;
        }
    }
    return WithoutLastComma(list);
}

std::string InvalidOnes(Grid& grid, std::size_t column) {
    return OnesWithOtherThan(grid, column, [](char c) { return LiesIn(c, "0", "9") || LiesIn(c, "A", "Z"); });
}

using Findings = std::vector<std::string>; ///< a list a test, those that found nothing left out

void Add(Findings& findings, const std::string& list) {
    if (!list.empty()) findings.push_back(list);
}

Findings NaiveCustomers(Grid customers, Grid taxes) {
    Findings found;
    customers.Sort(2);
    Add(found, BlankOnes(customers, 2));
    customers.Sort(3);
    Add(found, BlankOnes(customers, 3));
    Add(found, DuplicateOnes(customers, 3));
    Add(found, InvalidOnes(customers, 2));
    Add(found, InvalidOnes(customers, 3));
    std::string unknown;
    bool isFound = false;
    for (std::size_t row = 1; row <= customers.Rows(); ++row) {
        const std::string code = customers.At(row, 14);
        if (code.empty()) continue;
        for (std::size_t tax = 1; tax <= taxes.Rows(); ++tax) {
            if (TextCompare(taxes.At(tax, 2), code) != 0) continue;
            isFound = true;
            break;
        }
        if (!isFound) unknown += customers.At(row, 1) + ", ";
    }
    Add(found, WithoutLastComma(unknown));
    return found;
}

Findings NaiveItems(Grid items) {
    Findings found;
    items.Sort(2);
    Add(found, BlankOnes(items, 2));
    items.Sort(3);
    Add(found, BlankOnes(items, 3));
    items.Sort(2);
    Add(found, DuplicateOnes(items, 2));
    items.Sort(3);
    Add(found, DuplicateOnes(items, 3));
    Add(found, InvalidOnes(items, 3));
    Add(found,
        OnesWithOtherThan(items, 7, [](char c) { return LiesIn(c, "0", "9") || c == ',' || c == '.'; }));
    items.Sort(7);
    std::string zeros;
    for (std::size_t row = 1; row <= items.Rows() && ToNumber(items.At(row, 7)) == 0; ++row)
        zeros += items.At(row, 1) + ", ";
    Add(found, WithoutLastComma(zeros));
    return found;
}

Findings NaiveBarcodes(Grid items) {
    Findings found;
    items.Sort(4);
    if (items.Rows() == 0 || items.At(items.Rows(), 4).empty()) return found;
    Add(found, BlankOnes(items, 4));
    Add(found, InvalidOnes(items, 4));
    items.Sort(4);
    Add(found, DuplicateOnes(items, 4));
    return found;
}

Findings NaiveTaxes(Grid taxes) {
    Findings found;
    taxes.Sort(2);
    Add(found, BlankOnes(taxes, 2));
    Add(found, DuplicateOnes(taxes, 2));
    Add(found, InvalidOnes(taxes, 2));
    return found;
}

class NaiveChecksTest : public QualityTest {
protected:
    /// Few characters, so that equal cells are many: letters in both cases, with and without accents,
    /// digits, what stands at the ends of the ranges, signs, blanks.
    std::string Cell() {
        static const std::string characters = "aAzZ 09-.,\xE9\xC9\xE4\xDF\x8E\x9E\xB2\xD8\xFE\x01\xA0";
        std::string cell;
        for (std::size_t k = random_() % 4; k > 0; --k) cell += characters[random_() % characters.size()];
        return cell;
    }
    std::string Price() {
        static const char* const prices[] = {"",     "0",    "0.00", "1,250.00", "12.5A", "-3", " ", "1e5",
                                             "0,00", "\xB2", ".",    "$1",       "0A",    "7",  "#"};
        return random_() % 4 == 0 ? Cell() : prices[random_() % std::size(prices)];
    }

    /// Rows of a table of so many fields, all others blank.
    std::vector<std::vector<std::string>> Rows(std::size_t fields) {
        return {random_() % 9, std::vector<std::string>(fields)};
    }

    void GivenRows(const std::string& table, const std::vector<std::string>& fields,
                   const std::vector<std::vector<std::string>>& rows) {
        for (const auto& row : rows) {
            QualityOffice::Record record;
            for (std::size_t k = 0; k < fields.size(); ++k) record.emplace_back(fields[k], row[k]);
            office_.Tables[table].push_back(record);
        }
    }

    QualityOffice office_;
    std::mt19937 random_{20261121};
};

TEST_F(NaiveChecksTest, CustomersAndTaxesAreFoundAsByTheSlowWalk) {
    const std::vector<std::string> fields = {"C_SEARCH",   "C_CODE",     "C_PHONE", "C_NAME",  "C_ZIP",
                                             "C_ADDRESS1", "C_ADDRESS2", "C_CITY",  "C_STATE", "C_CONTACT",
                                             "C_PAYTERMS", "C_SHIPVIA",  "C_STCODE"};
    for (int round = 0; round < 150; ++round) {
        office_ = {};
        auto customers = Rows(fields.size());
        for (auto& row : customers) row[0] = Cell(), row[1] = Cell(), row[12] = Cell();
        auto taxes = Rows(1);
        for (auto& row : taxes) row[0] = Cell();
        GivenRows("ZUKCUST", fields, customers);
        GivenRows("ZUKSTAX", {"ST_CODE"}, taxes);
        Given(office_);

        EXPECT_EQ(Lists(Check::Customers), NaiveCustomers(Grid(customers), Grid(taxes))) << "round " << round;
        EXPECT_EQ(Lists(Check::SalesTax), NaiveTaxes(Grid(taxes))) << "round " << round;
    }
}

TEST_F(NaiveChecksTest, ItemsAndBarcodesAreFoundAsByTheSlowWalk) {
    const std::vector<std::string> fields = {"I_SEARCH", "I_ITEMCODE", "I_BARCODE",
                                             "I_DESC1",  "I_UM",       "I_PRICE"};
    for (int round = 0; round < 150; ++round) {
        office_ = {};
        auto items = Rows(fields.size());
        const bool hasBarcodes = random_() % 5 != 0;
        for (auto& row : items) {
            row[0] = Cell(), row[1] = Cell(), row[5] = Price();
            if (hasBarcodes) row[2] = Cell();
        }
        GivenRows("ZUKITEM", fields, items);
        Given(office_);

        EXPECT_EQ(Lists(Check::Items), NaiveItems(Grid(items))) << "round " << round;
        EXPECT_EQ(Lists(Check::BarCodes), NaiveBarcodes(Grid(items))) << "round " << round;
    }
}

} // namespace

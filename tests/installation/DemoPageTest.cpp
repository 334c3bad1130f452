#include "core/SafeFile.h"
#include "support/EngineTest.h"

#include <algorithm>
#include <string>

namespace {

std::string Resource(const std::string& name) {
    return ReadWholeFile(std::string(TRAMBLE_SOURCE) + "/resources/" + name);
}

TEST(DemoPage, TellsAsMuchOfTheDemoCompanyAsThereIs) {
    const std::string page = Resource("help/Demo_Company.htm");
    for (const auto& [table, what] : {std::pair{"ZUKCust", "customers"},
                                      {"ZUKItem", "items"},
                                      {"ZUKSTAX", "sales tax codes"},
                                      {"ZUKPAY", "payments"},
                                      {"ZUKOrHdr", "orders"}}) {
        const std::string rows = Resource(std::string("demo/") + table + ".tsv");
        const auto records =
            std::count(rows.begin(), rows.end(), '\n') - 1; // the first line names the fields
        EXPECT_NE(page.find("<td>" + std::to_string(records) + " " + what + "</td>"), std::string::npos)
            << records << " " << what;
    }
}

TEST(DemoPage, NamesOnlyItemsAndCustomersThatThereAre) {
    const std::string page = Resource("help/Demo_Company.htm");
    const std::string items = Resource("demo/ZUKItem.tsv");
    int examples = 0;
    const std::string cell = "</td><td>";
    for (std::size_t at = 0; (at = page.find(" ...</td><td>", at)) != std::string::npos; ++at, ++examples) {
        const std::size_t begin = page.find(cell, page.find(cell, at) + 1) + cell.size();
        std::string example = page.substr(begin, page.find("</td>", begin) - begin);
        const std::size_t description = example.find(", ") + 2;
        const std::size_t price = example.rfind(", ");
        const std::string code = '\t' + example.substr(0, description - 2) + '\t';
        const std::size_t item = items.find(code);
        ASSERT_NE(item, std::string::npos) << example;
        const std::string row = items.substr(item, items.find('\n', item) - item);
        EXPECT_NE(row.find('\t' + example.substr(description, price - description) + '\t'), std::string::npos)
            << row;
        EXPECT_NE(row.find('\t' + example.substr(price + 2)), std::string::npos) << row;
    }
    EXPECT_EQ(examples, 6);
    const std::string customers = Resource("demo/ZUKCust.tsv");
    for (const char* code : {"JUNIPERH01", "CAFEBEAU01"}) {
        EXPECT_NE(customers.find(std::string("\t") + code + '\t'), std::string::npos) << code;
        EXPECT_NE(page.find(code), std::string::npos) << code;
    }
}

} // namespace

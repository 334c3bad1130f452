#include "handheld/OrderBook.h"

#include "core/CodePage.h"
#include "core/TextCompare.h"
#include "handheld/Decimal.h"
#include "handheld/Refusal.h"
#include "handheld/Signature.h"
#include "handheld/TableSearch.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int QuantityDecimals = 4, MoneyDecimals = 2, RateDecimals = 5;
constexpr std::size_t MostLines = 9999; ///< as the line number in L_KEY has four digits
constexpr std::size_t LineNumberWidth = 4;

// Divisors from products of two such numbers to cents.
constexpr std::uint32_t QuantityByPrice = 1'000'000; // 4 + 4 decimals to 2
constexpr std::uint32_t CentsByPercent = 1'000'000;  // 2 + 4 decimals and the hundred of a percent to 2
constexpr std::uint32_t CentsByRate = 10'000'000;    // 2 + 5 decimals and the hundred of a percent to 2
constexpr std::int64_t HundredPercent = 1'000'000;   // with 4 decimals

constexpr std::string_view NotPrinted = "N";
constexpr std::string_view ChargeType = "C";
constexpr std::string_view WholeOrder = "ORDER";

[[noreturn]] void TooGreat(const char* what) {
    throw Refusal(std::string(what) + " is too great");
}

std::int64_t Fits(std::optional<std::int64_t> amount, const char* what) {
    if (!amount) TooGreat(what);
    return *amount;
}

std::string Cents(std::int64_t cents) {
    return DecimalText(cents, MoneyDecimals);
}

std::string TimeOf(const DateTime& at) {
    return Format(at, "hh:nn:ss");
}

std::string Padded(std::size_t number, std::size_t width) {
    std::string digits = std::to_string(number);
    if (digits.size() < width) digits.insert(0, width - digits.size(), '0');
    return digits;
}

} // namespace

OrderBook::OrderBook(Handheld& handheld)
    : handheld_(handheld),
      numbers_(handheld),
      headers_(Open("ZUKORHDR")),
      lines_(Open("ZUKORLIN")) {
    const auto openIfAny = [&](std::string_view table, std::optional<HandheldTable>& to) {
        if (HandheldTable::Has(handheld.Store, table)) to.emplace(handheld.Store, table);
    };
    openIfAny("ZUKCUST", customers_);
    openIfAny("ZUKITEM", items_);
    openIfAny("ZUKSTAX", taxes_);
    if (customers_) customerCodes_ = IndexOf(*customers_, "C_CODE");
    if (items_) itemCodes_ = IndexOf(*items_, "I_ITEMCODE");
    headerCodes_ = IndexOf(headers_, "H_ORDCODE");
    for (const std::string_view field : {"L_ORDCODE", "L_KEY", "L_TOTPRICE"}) lines_.Field(field);
}

HandheldTable OrderBook::Open(std::string_view table) const {
    return HandheldTable::OpenOrMake(handheld_.Store, table, handheld_.Settings.IdSeed,
                                     ToDlpDate(handheld_.Clock()).Seconds());
}

OrderBook::CodeIndex OrderBook::IndexOf(const HandheldTable& table, std::string_view field) {
    CodeIndex index;
    const std::size_t code = table.Field(field);
    for (std::size_t row = 0; row < table.Count(); ++row)
        index.try_emplace(FoldCase(table.Get(row, code)), row);
    return index;
}

std::size_t OrderBook::FindCustomer(std::string_view codeOrKey) const {
    if (!customers_) throw Refusal("the handheld has no customers (ZUKCUST)");
    codeOrKey = Trim(codeOrKey);
    if (codeOrKey.empty()) throw Refusal("no customer is named");
    if (const auto found = customerCodes_.find(FoldCase(codeOrKey)); found != customerCodes_.end()) {
        return found->second;
    }
    const RowRange range = FindKey(*customers_, codeOrKey);
    if (range.IsEmpty())
        throw Refusal("there is no customer " + CodePageToUtf8(codeOrKey) + OrderHint(*customers_));
    return range.First;
}

std::size_t OrderBook::FindItem(std::string_view codeOrKey) const {
    if (!items_) throw Refusal("the handheld has no items (ZUKITEM)");
    codeOrKey = Trim(codeOrKey);
    if (codeOrKey.empty()) throw Refusal("no item is named");
    if (const auto found = itemCodes_.find(FoldCase(codeOrKey)); found != itemCodes_.end())
        return found->second;
    const RowRange range = FindKey(*items_, codeOrKey);
    if (range.IsEmpty()) throw Refusal("there is no item " + CodePageToUtf8(codeOrKey) + OrderHint(*items_));
    return range.First;
}

OrderBook::Tax OrderBook::TaxOf(std::size_t customer) const {
    Tax tax;
    tax.Code = customers_->Get(customer, "C_STCODE");
    if (tax.Code.empty() || !taxes_) return tax;
    const RowRange range = FindKey(*taxes_, tax.Code);
    if (range.IsEmpty()) return tax;
    tax.Type = taxes_->Get(range.First, "ST_TYPE");
    tax.Description = taxes_->Get(range.First, "ST_DESC");
    const std::optional<std::int64_t> rate = ReadDecimal(taxes_->Get(range.First, "ST_RATE"), RateDecimals);
    tax.IsKnown = rate && *rate >= 0;
    if (tax.IsKnown) tax.Rate = *rate;
    tax.RateText = DecimalText(tax.Rate, RateDecimals);
    return tax;
}

OrderBook::PricedLine OrderBook::Priced(const OrderEntry::Line& line) const {
    PricedLine priced;
    priced.Item = FindItem(line.Item);
    const std::string item = "the item " + CodePageToUtf8(items_->Get(priced.Item, "I_ITEMCODE"));
    if (line.Quantity <= 0) throw Refusal(item + ": the quantity is not above 0");
    const std::string_view written = items_->Get(priced.Item, "I_PRICE");
    const std::optional<std::int64_t> list = ReadDecimal(written, QuantityDecimals);
    if (!line.Price && (!list || *list <= 0)) {
        throw Refusal(item + " has no price" +
                      (written.empty() ? "" : ": \"" + CodePageToUtf8(written) + '"') +
                      "; enter one behind the quantity");
    }
    priced.Quantity = line.Quantity;
    priced.ListPrice = list.value_or(0);
    priced.Price = line.Price.value_or(priced.ListPrice);
    priced.IsListPrice = !line.Price;
    if (priced.Price < 0) throw Refusal(item + ": the price is below 0");
    priced.Cents = Fits(ProductOver(priced.Quantity, priced.Price, QuantityByPrice), "the price of a line");
    const std::string_view use = items_->Get(priced.Item, "I_STAXUSE");
    priced.IsTaxable = !use.empty() && ToUpper(use.front()) == 'Y';
    return priced;
}

OrderBook::Amounts OrderBook::Add(const OrderEntry& entry, const std::vector<PricedLine>& lines,
                                  const Tax& tax) {
    Amounts amounts;
    for (const PricedLine& line : lines) {
        amounts.Items = Fits(Sum(amounts.Items, line.Cents), "the total of the items");
        if (!line.IsTaxable) continue;
        amounts.Taxable += line.Cents;
        ++amounts.TaxableLines;
    }
    for (const OrderEntry::Charge& charge : entry.Charges) {
        amounts.Charges = Fits(Sum(amounts.Charges, charge.Cents), "the total of the charges");
    }
    const std::optional<std::int64_t> most =
        entry.DiscountIsPercent ? HundredPercent : ProductOver(amounts.Items, 100, 1);
    if (entry.Discount < 0 || (most && entry.Discount > *most)) {
        throw Refusal("the discount is not between nothing and the whole");
    }
    const std::int64_t discount =
        Fits(entry.DiscountIsPercent ? ProductOver(amounts.Items, entry.Discount, CentsByPercent)
                                     : ProductOver(entry.Discount, 1, 100),
             "the discount");
    amounts.Tax = Fits(ProductOver(amounts.Taxable, tax.Rate, CentsByRate), "the sales tax");
    amounts.Total = Fits(Sum(amounts.Items - discount, amounts.Charges), "the total of the order");
    amounts.Total = Fits(Sum(amounts.Total, amounts.Tax), "the total of the order");
    return amounts;
}

std::string OrderBook::HeaderOf(const OrderEntry& entry, std::size_t customer, const Amounts& amounts,
                                const Tax& tax) const {
    std::string fields = headers_.NewFields();
    const auto put = [&](std::string_view field, std::string_view value) {
        headers_.Put(fields, field, value);
    };
    const auto fromCustomer = [&](std::string_view field, std::string_view from) {
        headers_.PutCut(fields, field, customers_->Get(customer, from));
    };
    put("H_CUSTCODE", customers_->Get(customer, "C_CODE"));
    constexpr std::pair<std::string_view, std::string_view> Copied[] = {
        {"H_BILLNAME", "C_NAME"},     {"H_CUSTFONE", "C_PHONE"},    {"H_SHIPVIA", "C_SHIPVIA"},
        {"H_PAYTERMS", "C_PAYTERMS"}, {"H_BILLADD1", "C_ADDRESS1"}, {"H_BILLADD2", "C_ADDRESS2"},
        {"H_BILLCITY", "C_CITY"},     {"H_BILLST", "C_STATE"},      {"H_BILLZIP", "C_ZIP"},
        {"H_SHIPNAME", "C_NAME"},     {"H_SHIPADD1", "C_ADDRESS1"}, {"H_SHIPADD2", "C_ADDRESS2"},
        {"H_SHIPCITY", "C_CITY"},     {"H_SHIPST", "C_STATE"},      {"H_SHIPZIP", "C_ZIP"}};
    for (const auto& [field, from] : Copied) fromCustomer(field, from);
    put("H_CUST_PO", entry.CustomerPO);
    put("H_ORDDATE", YyyyMmDd(entry.At));
    put("H_ORDTIME", TimeOf(entry.At));
    put("H_DATE", YyyyMmDd(entry.At));
    put("H_TIME", TimeOf(entry.At));
    if (entry.ShipDate) put("H_SHIPDATE", YyyyMmDd(*entry.ShipDate));
    put("H_LASTLINE", std::to_string(entry.Lines.size()));
    put("H_NUMLINES", std::to_string(entry.Lines.size()));
    put("H_DISCOUNT", DecimalText(entry.Discount, QuantityDecimals));
    if (entry.Discount != 0) put("H_DISCTYPE", entry.DiscountIsPercent ? "%" : "$");
    for (std::size_t k = 0; k < entry.Charges.size(); ++k) {
        const std::string charge = "H_CHG" + std::to_string(k + 1);
        put(charge + "DESC", entry.Charges[k].Description);
        put(charge + "AMT", Cents(entry.Charges[k].Cents));
        put(charge + "TYP", ChargeType);
    }
    put("H_TOTCHARG", Cents(amounts.Charges));
    put("H_PRT_STAT", NotPrinted);
    put("H_STCODE", tax.Code);
    headers_.PutCut(fields, "H_STTYPE", tax.Type);
    headers_.PutCut(fields, "H_STDESC", tax.Description);
    put("H_STRATE", tax.RateText);
    // Whose tax nobody knows here: the customer has a tax code, but the Sales Tax table has no rate for it.
    put("H_STAXNUM", std::to_string(tax.IsKnown || tax.Code.empty() ? 0 : amounts.TaxableLines));
    put("H_TOTTAX", Cents(amounts.Taxable));
    put("H_TOTITEMS", Cents(amounts.Items));
    put("H_TOTTOTAL", Cents(amounts.Total));
    return fields;
}

std::string OrderBook::LineOf(const PricedLine& line, std::size_t customer, const Tax& tax,
                              const DateTime& at) const {
    std::string fields = lines_.NewFields();
    const auto put = [&](std::string_view field, std::string_view value) {
        lines_.Put(fields, field, value);
    };
    put("L_CUSTCODE", customers_->Get(customer, "C_CODE"));
    put("L_ITEMCODE", items_->Get(line.Item, "I_ITEMCODE"));
    lines_.PutCut(fields, "L_BARCODE", items_->Get(line.Item, "I_BARCODE"));
    lines_.PutCut(fields, "L_ITEMDES1", items_->Get(line.Item, "I_DESC1"));
    lines_.PutCut(fields, "L_QTY_UM", items_->Get(line.Item, "I_UM"));
    put("L_QTY", DecimalText(line.Quantity, QuantityDecimals));
    put("L_PRICE", DecimalText(line.Price, QuantityDecimals));
    put("L_TOTPRICE", Cents(line.Cents));
    put("L_PRIC_SRC", line.IsListPrice ? "LIST" : "ENTERED");
    put("L_PRICEREF", DecimalText(line.ListPrice, QuantityDecimals));
    put("L_STRATE", line.IsTaxable ? tax.RateText : "0");
    put("L_DATE", YyyyMmDd(at));
    put("L_TIME", TimeOf(at));
    put("L_SOURCE", "KEY");
    return fields;
}

std::string OrderBook::NewCode() {
    // Orders may stand here that an older Links table, come from the office, does not count.
    std::string code = numbers_.Next();
    while (headerCodes_.contains(FoldCase(code))) code = numbers_.Next();
    return code;
}

OrderBook::Sums OrderBook::AddUp(const OrderEntry& entry) const {
    std::vector<PricedLine> priced;
    priced.reserve(entry.Lines.size());
    for (const OrderEntry::Line& line : entry.Lines) priced.push_back(Priced(line));
    const Tax tax = entry.Customer.empty() ? Tax{} : TaxOf(FindCustomer(entry.Customer));
    const Amounts amounts = Add(entry, priced, tax);
    Sums sums{{}, amounts.Items, amounts.Tax, amounts.Total};
    for (const PricedLine& line : priced) sums.Lines.push_back(line.Cents);
    return sums;
}

std::string OrderBook::Take(const OrderEntry& entry) {
    if (entry.Lines.empty()) throw Refusal("an order has at least one line");
    if (entry.Lines.size() > MostLines) throw Refusal("an order has at most 9999 lines");
    if (entry.Charges.size() > OrderEntry::MostCharges) throw Refusal("an order has at most 4 charges");
    headers_.RequireChangeable();
    lines_.RequireChangeable();
    if (headers_.Data().Records.size() >= MostRecords ||
        lines_.Data().Records.size() + entry.Lines.size() > MostRecords) {
        throw Refusal("the handheld's order tables are full");
    }
    const std::size_t customer = FindCustomer(entry.Customer);
    const Tax tax = TaxOf(customer);
    std::vector<PricedLine> priced;
    priced.reserve(entry.Lines.size());
    for (const OrderEntry::Line& line : entry.Lines) priced.push_back(Priced(line));
    std::string header = HeaderOf(entry, customer, Add(entry, priced, tax), tax);
    std::vector<std::string> lines;
    lines.reserve(priced.size());
    for (const PricedLine& line : priced) lines.push_back(LineOf(line, customer, tax, entry.At));

    const OrderNumbers before = numbers_;
    try {
        std::string code = NewCode();
        headers_.Put(header, "H_ORDCODE", code);
        for (std::size_t k = 0; k < lines.size(); ++k) {
            lines_.Put(lines[k], "L_ORDCODE", code);
            lines_.Put(lines[k], "L_NUMBER", std::to_string(k + 1));
            lines_.Put(lines[k], "L_KEY", code + Padded(k + 1, LineNumberWidth));
        }
        for (const std::string& line : lines) lines_.Append(line);
        headerCodes_.try_emplace(FoldCase(code), headers_.Append(header));
        return code;
    } catch (const Refusal&) {
        numbers_ = before;
        throw;
    }
}

std::size_t OrderBook::FindHeader(std::string_view orderCode) const {
    const auto found = headerCodes_.find(FoldCase(Trim(orderCode)));
    if (found == headerCodes_.end()) throw Refusal("there is no order " + CodePageToUtf8(orderCode));
    return found->second;
}

void OrderBook::Sign(std::string_view orderCode, std::string_view name) {
    const std::size_t row = FindHeader(orderCode);
    headers_.Sign(row, DrawSignature(name.empty() ? headers_.Get(row, "H_BILLNAME") : name));
}

std::size_t OrderBook::Delete(std::string_view orderCode, const DateTime& at) {
    const std::size_t header = FindHeader(orderCode);
    if (!headerAudit_) headerAudit_ = Open("ZUKAUDTH");
    if (!lineAudit_) lineAudit_ = Open("ZUKAUDTL");
    for (const HandheldTable* table : {&headers_, &lines_, &*headerAudit_, &*lineAudit_})
        table->RequireChangeable();
    const auto putMoment = [&](const HandheldTable& audit, std::string& fields) {
        audit.Put(fields, "A_DATE", YyyyMmDd(at));
        audit.Put(fields, "A_TIME", TimeOf(at));
        audit.Put(fields, "A_MACH_ID", numbers_.Machine());
    };
    std::string gone = headerAudit_->NewFields();
    constexpr std::pair<std::string_view, std::string_view> Copied[] = {{"A_ORDCODE", "H_ORDCODE"},
                                                                        {"A_CUSTCODE", "H_CUSTCODE"},
                                                                        {"A_TOTTOTAL", "H_TOTTOTAL"},
                                                                        {"A_PRT_STAT", "H_PRT_STAT"}};
    for (const auto& [field, from] : Copied) headerAudit_->Put(gone, field, headers_.Get(header, from));
    headerAudit_->Put(gone, "A_DELTYPE", WholeOrder);
    putMoment(*headerAudit_, gone);
    headerAudit_->Append(gone);

    const std::size_t code = lines_.Field("L_ORDCODE");
    std::vector<bool> goneLines(lines_.Count(), false);
    for (std::size_t row = 0; row < lines_.Count(); ++row) {
        if (!SameText(lines_.Get(row, code), Trim(orderCode))) continue;
        goneLines[row] = true;
        std::string line = lineAudit_->NewFields();
        lineAudit_->Put(line, "A_KEY", lines_.Get(row, "L_KEY"));
        lineAudit_->Put(line, "A_ITEMCODE", lines_.Get(row, "L_ITEMCODE"));
        putMoment(*lineAudit_, line);
        lineAudit_->Append(line);
    }
    lines_.RemoveRows(goneLines);
    std::vector<bool> goneHeaders(headers_.Count(), false);
    goneHeaders[header] = true;
    headers_.RemoveRows(goneHeaders);
    headerCodes_ = IndexOf(headers_, "H_ORDCODE");
    hasDeleted_ = true;
    return static_cast<std::size_t>(std::count(goneLines.begin(), goneLines.end(), true));
}

void OrderBook::Save(std::string_view event, const DateTime& at) {
    const std::uint32_t now = ToDlpDate(handheld_.Clock()).Seconds();
    HandheldTable totals = Open("ZUKAUDHH");
    PutTotals(totals, Totals(), event, at);
    // The number first, so that it is never given twice; what was deleted is told before it goes; and a
    // header comes behind its lines and goes before them, since without them it would look complete.
    std::vector<HandheldTable*> tables{numbers_.ChangedLinks(),
                                       headerAudit_ ? &*headerAudit_ : nullptr,
                                       lineAudit_ ? &*lineAudit_ : nullptr,
                                       hasDeleted_ ? &headers_ : &lines_,
                                       hasDeleted_ ? &lines_ : &headers_,
                                       &totals};
    std::erase_if(tables, [](const HandheldTable* table) { return table == nullptr || !table->IsChanged(); });
    std::vector<const Database*> changed;
    changed.reserve(tables.size());
    for (HandheldTable* const table : tables) changed.push_back(&table->Changed(now));
    handheld_.Store.CheckRoomFor(changed);
    numbers_.KeepIn(handheld_.Settings);
    handheld_.SaveSettings();
    handheld_.Store.SaveAll(changed);
    for (HandheldTable* const table : tables) table->MarkSaved();
    hasDeleted_ = false;
}

std::vector<OrderBook::Choice> OrderBook::Customers() const {
    std::vector<Choice> choices;
    for (std::size_t row = 0; customers_ && row < customers_->Count(); ++row) {
        const auto get = [&](std::string_view field) { return customers_->Get(row, field); };
        if (const std::string_view code = get("C_CODE"); !code.empty())
            choices.push_back({std::string(code), std::string(get("C_NAME")), std::string(get("C_CITY"))});
    }
    return choices;
}

std::vector<OrderBook::Choice> OrderBook::PricedItems() const {
    std::vector<Choice> choices;
    for (std::size_t row = 0; items_ && row < items_->Count(); ++row) {
        const auto get = [&](std::string_view field) { return items_->Get(row, field); };
        const std::string_view code = get("I_ITEMCODE");
        const std::optional<std::int64_t> price = ReadDecimal(get("I_PRICE"), QuantityDecimals);
        if (code.empty() || !price || *price <= 0) continue;
        std::string more(get("I_PRICE"));
        for (const std::string_view field : {"I_UM", "I_BARCODE"}) {
            if (const std::string_view text = get(field); !text.empty()) more.append("  ").append(text);
        }
        choices.push_back({std::string(code), std::string(get("I_DESC1")), std::move(more)});
    }
    return choices;
}

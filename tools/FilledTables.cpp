#include "FilledTables.h"

#include "core/Paths.h"
#include "store/TableCatalogue.h"
#include "store/TableRewrite.h"

#include <algorithm>
#include <string_view>

namespace {

std::string Padded(std::int32_t number, std::size_t digits) {
    std::string text = std::to_string(number);
    if (text.size() < digits) text.insert(0, digits - text.size(), '0');
    return text.substr(text.size() - std::min(text.size(), digits));
}

/// A field that has its own kind of content.
struct Known {
    std::string_view Field;
    std::string (*Value)(std::int32_t record);
};

std::string Code(std::int32_t record) {
    return "C" + Padded(record, 6);
}

std::string ItemCode(std::int32_t record) {
    return "I" + Padded(record, 6);
}

std::string TaxCode(std::int32_t record) {
    return "T" + Padded(record, 6);
}

std::string Money(std::int32_t record) {
    return std::to_string(record % 900 + 1) + "." + Padded(record % 100, 2);
}

std::string OrderCode(std::int32_t record) {
    return "A" + Padded(record, 6);
}

constexpr Known AllKnown[] = {
    {"C_CODE", Code},
    {"C_SEARCH", Code},
    {"C_STCODE", TaxCode},
    {"C_NAME", [](std::int32_t record) { return "Caf\xE9 M\xFCller & Sons " + std::to_string(record); }},
    {"C_PHONE", [](std::int32_t record) { return "555-" + Padded(record, 6); }},
    {"I_ITEMCODE", ItemCode},
    {"I_SEARCH", ItemCode},
    {"I_BARCODE", [](std::int32_t record) { return "40" + Padded(record, 8); }},
    {"I_DESC1", [](std::int32_t record) { return "Green tea, box of " + std::to_string(record % 50 + 1); }},
    {"I_PRICE", Money},
    {"I_UM", [](std::int32_t) { return std::string("BOX"); }},
    {"ST_CODE", TaxCode},
    {"ST_DESC", [](std::int32_t record) { return "County " + std::to_string(record); }},
    {"ST_RATE", [](std::int32_t record) { return "0.0" + Padded(record % 1000, 4); }},
    {"PAY_CODE", [](std::int32_t record) { return std::string(record % 2 ? "CASH" : "CARD"); }},
    {"PAY_REF", [](std::int32_t) { return std::string("NO"); }},
    {"PAY_CDET", [](std::int32_t) { return std::string("YES"); }},
    {"LK_HOTSYNC", [](std::int32_t record) { return "User " + std::to_string(record); }},
    {"H_ORDCODE", OrderCode},
    {"H_CUSTCODE", Code},
    {"L_ORDCODE", OrderCode},
    {"L_ITEMCODE", ItemCode},
    {"L_TOTPRICE", Money},
    {"LINEMAX", [](std::int32_t) { return std::string("60"); }},
    {"PRINTER", [](std::int32_t) { return std::string("PalmSerial"); }},
    {"CONTFORM", [](std::int32_t) { return std::string("NO"); }},
    {"STDSTYLE", [](std::int32_t) { return std::string("Fixed"); }},
    {"SU_SRCHCUS", [](std::int32_t) { return std::string("Code"); }},
    {"SU_SRCHITM", [](std::int32_t) { return std::string("Code"); }},
};

std::string ValueOf(const TableField& field, std::int32_t record) {
    for (const Known& known : AllKnown) {
        if (known.Field == field.Name) return known.Value(record);
    }
    if (field.Type == 'D') return "202611" + Padded(record % 28 + 1, 2);
    if (field.Type == 'N') return std::to_string(record % 9 + 1);
    return std::string(field.Name).substr(0, field.Length / 2) + " " + std::to_string(record % 1000);
}

std::int32_t MostOf(std::string_view table, std::int32_t records) {
    if (table == "ZUKComp" || table == "ZUKPrint" || table == "ZUKSetup") return std::min(records, 1);
    return table == "ZUKLINK" ? std::min(records, MostHandhelds) : records;
}

} // namespace

void FillAllTables(const std::string& tables, std::int32_t records) {
    for (const TableEntry& table : AllTables()) {
        TableRewrite rewrite(AddBackslash(tables) + table.Name + ".dbf");
        const std::int32_t count = MostOf(table.Name, records);
        for (std::int32_t record = 1; record <= count; ++record) {
            rewrite.Append();
            int place = 0;
            for (const TableField& field : table.Fields) rewrite.Write(++place, ValueOf(field, record));
        }
        rewrite.Commit();
    }
}

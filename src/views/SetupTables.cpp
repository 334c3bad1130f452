#include "views/SetupTables.h"

#include "core/Globals.h"
#include "core/Numbers.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "store/TableScan.h"

#include <algorithm>
#include <limits>

namespace {

constexpr const char* Drivers[] = {"PalmSerial", "Datecs", "BPM"};
constexpr const char* YesOrNo[] = {YesEntry, "NO"};
constexpr const char* LineFeeds[] = {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10"};
constexpr const char* BaudRates[] = {"300",   "1200",  "2400",  "4800",  "9600",
                                     "19200", "38400", "57600", "115200"};
constexpr const char* SecondLines[] = {"Barcode", "None"};
constexpr const char* Formats[] = {"Fixed Length", ContinuousForm};
constexpr const char* Backups[] = {"REPLACE", "APPEND"};
constexpr const char* CustomerFields[] = {"Code", "Company", "Phone"};
constexpr const char* ItemFields[] = {"Code", "Description"};
constexpr const char* PaymentTypes[] = {"CASH", "CHECK", "CARD"};

constexpr SetupField Company[] = {{"COMPANY"}, {"LINE2"},     {"LINE3"},     {"LINE4"},    {"LINE5"},
                                  {"LINE6"},   {"FOOTNOTE1"}, {"FOOTNOTE2"}, {"FOOTNOTE3"}};

constexpr SetupField PrinterFields[] = {{"LINEMAX", SetupControl::Number},
                                        {"PRINTER", SetupControl::Entry, Drivers},
                                        {"CONTFORM", SetupControl::Entry, YesOrNo},
                                        {"LINEFEED", SetupControl::NumberEntry, LineFeeds},
                                        {"BAUDRATE", SetupControl::Entry, BaudRates},
                                        {"STDLINE2", SetupControl::Entry, SecondLines},
                                        {"LOGO", SetupControl::Entry, YesOrNo},
                                        {"STDSTYLE", SetupControl::Entry, Formats, 5},
                                        {"COMPRESCHR", SetupControl::Number},
                                        {"RESETCHR", SetupControl::Number}};

constexpr SetupField Handheld[] = {{"SU_HHBAKUP", SetupControl::Entry, Backups},
                                   {"SU_SRCHCUS", SetupControl::Entry, CustomerFields},
                                   {"SU_SRCHITM", SetupControl::Entry, ItemFields}};

constexpr SetupField Payment[] = {{"PAY_CODE", SetupControl::Entry, PaymentTypes},
                                  {"PAY_REF", SetupControl::Entry, YesOrNo},
                                  {"PAY_CDESC"},
                                  {"PAY_CDET", SetupControl::Entry, YesOrNo}};

/// The number that a text stands for, blank for a blank one.
std::string NumberIn(std::string_view text) {
    return text.empty() ? std::string() : NumberToText(ToNumber(text));
}

std::string TextOf(const SetupField& field, std::string_view stored) {
    if (field.Control == SetupControl::Text) return std::string(stored);
    if (field.Control == SetupControl::Number) return NumberIn(stored);
    const std::string sought =
        field.Control == SetupControl::NumberEntry ? NumberIn(stored) : std::string(stored);
    const auto isStored = [&](std::string_view entry) {
        return SameText(Trim(entry.substr(0, field.Kept)), sought);
    };
    const auto entry = std::find_if(field.Entries.begin(), field.Entries.end(), isStored);
    return entry == field.Entries.end() ? std::string() : *entry;
}

/// A field of a table's first record, trimmed; empty where there is no such table, record or field.
std::vector<std::string> FirstRecord(const SetupTable& table, std::initializer_list<const char*> fields) {
    std::vector<std::string> values(fields.size());
    if (!FileExists(table.Path())) return values;
    TableScan scan(table.Path());
    if (!scan.Next()) return values;
    std::transform(fields.begin(), fields.end(), values.begin(), [&](const char* field) {
        return std::string(scan.Trimmed(scan.Layout().Find(FieldKey(field))));
    });
    return values;
}

} // namespace

const SetupTable CompanyTable{"ZUKCOMP.DBF", Company};
const SetupTable PrinterTable{"ZUKPRINT.DBF", PrinterFields};
const SetupTable HandheldTable{"ZUKSETUP.DBF", Handheld};
const SetupTable PaymentTable{"ZUKPAY.DBF", Payment};

std::string SetupTable::Path() const {
    return Global.DBFPath + File;
}

SetupTexts TextsOf(const SetupTable& table, const TableRecords& record) {
    SetupTexts texts;
    for (const SetupField& field : table.Fields) texts.push_back(TextOf(field, record.Trimmed(field.Name)));
    return texts;
}

TableRecords::Values ValuesOf(const SetupTable& table, const SetupTexts& texts) {
    TableRecords::Values values;
    for (std::size_t k = 0; k < table.Fields.size(); ++k) {
        const SetupField& field = table.Fields[k];
        const std::string& text = texts.at(k);
        const bool number =
            field.Control == SetupControl::Number || field.Control == SetupControl::NumberEntry;
        if (!field.Entries.empty() && text.empty()) continue;
        values.emplace_back(field.Name, number ? NumberToText(ToNumber(text)) : text.substr(0, field.Kept));
    }
    return values;
}

DriverOptions OptionsOf(std::string_view printer) {
    const bool bpm = printer == "BPM";
    return {bpm || printer == "PalmSerial", printer == "Datecs", bpm};
}

bool HasPages(std::string_view contForm) {
    return contForm != YesEntry;
}

DatecsRules RulesOf(const SetupTexts& printer) {
    if (printer.at(PrinterField::Printer) != "Datecs") return {};
    return {printer.at(PrinterField::StdStyle) != ContinuousForm,
            printer.at(PrinterField::ContForm) != YesEntry};
}

std::int16_t PageLength(std::string_view lineMax) {
    const double lines = RoundToEven(ToNumber(lineMax));
    return static_cast<std::int16_t>(
        std::clamp(lines, 0.0, static_cast<double>(std::numeric_limits<std::int16_t>::max())));
}

void ReadLinesPerPage() {
    Global.LinesPerPage = PageLength(FirstRecord(PrinterTable, {"LINEMAX"}).front());
}

void ReadSearchFields() {
    const std::vector<std::string> fields = FirstRecord(HandheldTable, {"SU_SRCHCUS", "SU_SRCHITM"});
    Global.SearchCustomers = fields[0];
    Global.SearchItems = fields[1];
}

#pragma once

#include "store/TableRecords.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The tables that are sent to the handheld as its settings, as their editors show and store them.

/// How a field stands on the screen.
enum class SetupControl {
    Text,
    Number,     ///< shown and stored by its numeric value; nothing is shown of a blank one
    Entry,      ///< one of a list
    NumberEntry ///< one of a list, by its numeric value
};

/// A field of such a table and its control.
struct SetupField {
    const char* Name;
    SetupControl Control = SetupControl::Text;
    std::span<const char* const> Entries = {}; ///< of the list, in its order; none without one
    std::size_t Kept = std::string_view::npos; ///< as many characters of an entry are stored
};

/// A table of one record, and its fields in the order of the controls: at least one.
struct SetupTable {
    const char* File; ///< in the tables directory
    std::span<const SetupField> Fields;

    std::string Path() const; ///< full
    /// The field without which the file is not this table.
    const char* Key() const { return Fields.front().Name; }
};

extern const SetupTable CompanyTable;  ///< `COMPANY`, five further lines, three footnotes
extern const SetupTable PrinterTable;  ///< its fields in the order of PrinterField
extern const SetupTable HandheldTable; ///< `SU_HHBAKUP`, `SU_SRCHCUS`, `SU_SRCHITM`
extern const SetupTable PaymentTable;  ///< `PAY_CODE`, `PAY_REF`, `PAY_CDESC`, `PAY_CDET`

/// Places of the print settings among their fields.
namespace PrinterField {
enum : std::size_t {
    LineMax,
    Printer,
    ContForm,
    LineFeed,
    BaudRate,
    StdLine2,
    Logo,
    StdStyle,
    CompresChr,
    ResetChr
};
}

/// What the controls of an editor hold, one text a field in their order, code page 1252.
using SetupTexts = std::vector<std::string>;

/// What the screen shows of the current record: of a list the entry that equals the stored value without
/// regard to case, or nothing. Two records of which the screen shows the same do not differ.
SetupTexts TextsOf(const SetupTable& table, const TableRecords& record);

/// What is written for that. A list in which nothing is chosen leaves its field as it is.
TableRecords::Values ValuesOf(const SetupTable& table, const SetupTexts& texts);

// ---- print settings ----

/// Which print settings a driver takes.
struct DriverOptions {
    bool BaudRate = false;
    bool Logo = false;
    bool FormatCodes = false; ///< the codes for compressed print and for its end
};
/// Those of an entry of the list of printers, letter by letter; none for another text.
DriverOptions OptionsOf(std::string_view printer);

/// Whether the page's length and the line feeds at its end count: unless forms are continuous.
bool HasPages(std::string_view contForm);

/// What saving asks of the settings of a roll printer.
struct DatecsRules {
    bool ChangeFormat = false; ///< the print format has to be for continuous forms
    bool AskForForm = false;   ///< continuous form printing is recommended
};
/// `printer`: what PrinterTable's editor holds. Nothing for other printers.
DatecsRules RulesOf(const SetupTexts& printer);

/// Entries of the lists of print format and continuous form printing.
inline constexpr const char* ContinuousForm = "Continuous Form";
inline constexpr const char* YesEntry = "YES";

/// The length of a page that `LINEMAX` stands for: at least 0.
std::int16_t PageLength(std::string_view lineMax);

/// Reads it into Global.LinesPerPage: 0 without print settings. RunTimeFailure as TableScan.
void ReadLinesPerPage();

// ---- the handheld's settings ----

/// Reads the two search fields into Global.SearchCustomers and SearchItems: empty without settings.
/// RunTimeFailure as TableScan.
void ReadSearchFields();

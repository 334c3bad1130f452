#include "core/Catalogue.h"
#include "core/CodePage.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "support/EngineTest.h"

#include <algorithm>
#include <map>

namespace {

// Each file of resources/languages is held to the catalogue. English.tsv of the build has all of its rows.

struct Row {
    std::string Name, Mnemonic, Quoted;
};

/// The names by which the groups of tables stand in the selections of each kind.
const std::vector<MessageId> Selections[] = {
    {msg::UploadOrders, msg::UploadAudits, msg::TablesHHTotals, msg::UploadPrintSpooler, msg::TablesCustomers,
     msg::TablesItems},
    {msg::TablesCustomers, msg::TablesItems, msg::TablesSetup},
    {msg::TablesOrders, msg::TablesAudits, msg::TablesHHTotals},
    {msg::TablesOrders, msg::TablesAudits, msg::TablesHHTotals, msg::TablesBarIn, msg::TablesComp,
     msg::TablesCustomersPC, msg::TablesHelp, msg::TablesItems, msg::TablesPrint, msg::TablesSetupPC,
     msg::TablesSTax, msg::TablesPay, msg::TablesLinks, msg::TablesTotalPC}};

class TranslationsTest : public EngineTest {
protected:
    /// What is wrong with a translation, a line each.
    std::string Faults(const std::string& path) {
        faults_ = LoadMessages(path);
        const std::map<int, Row> english = RowsOf(std::string(TRAMBLE_BUILD) + "/generated/English.tsv");
        const std::map<int, Row> rows = RowsOf(path);
        for (const auto& [number, row] : english) {
            const auto found = rows.find(number);
            if (found == rows.end())
                Fault(number, "is missing");
            else
                Compare(number, row, found->second);
        }
        for (const auto& [number, row] : rows) {
            if (!english.contains(number)) Fault(number, "is no text of the catalogue");
        }
        CompareKeys();
        return faults_;
    }

    static std::string English() { return Bytes(std::string(TRAMBLE_BUILD) + "/generated/English.tsv"); }

    /// A translation of all texts but one, of which it has another row.
    std::string AllBut(const std::string& row) {
        const std::string number = row.substr(0, row.find('\t') + 1);
        std::string content;
        for (const std::string& line : Lines(std::string(TRAMBLE_BUILD) + "/generated/English.tsv"))
            content += (line.starts_with(number) ? row : line) + "\n";
        return GivenFile("Dansk.tsv", content);
    }

private:
    std::map<int, Row> RowsOf(const std::string& path) {
        std::map<int, Row> rows;
        for (const std::string& line : Lines(path)) {
            if (line.empty() || line.front() == '#') continue;
            std::vector<std::string> cells;
            for (const std::string_view cell : SplitText(line, "\t")) cells.emplace_back(cell);
            if (cells.size() != 4) {
                faults_ += "not four columns: " + line + "\n";
                continue;
            }
            const int number = std::stoi(cells[0]);
            if (!rows.emplace(number, Row{cells[1], cells[2], cells[3]}).second)
                Fault(number, "stands twice");
        }
        return rows;
    }

    static std::size_t CountOf(const std::string& text, const char* part) {
        std::size_t count = 0;
        for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
        return count;
    }

    /// The blanks before and behind a text in quotes.
    static std::pair<std::size_t, std::size_t> Blanks(const std::string& quoted) {
        const std::string_view words = std::string_view(quoted).substr(1, quoted.size() - 2);
        return {words.size() - TrimLeft(words).size(), words.size() - TrimRight(words).size()};
    }

    void Compare(int number, const Row& english, const Row& row) {
        const bool isLabel = number >= 60000;
        if (row.Name != english.Name && !(isLabel && row.Name.empty())) Fault(number, "has another name");
        if (row.Quoted.size() < 3) return Fault(number, "has no text");
        if (!english.Mnemonic.empty() && row.Mnemonic.empty()) Fault(number, "has no mnemonic");
        if (!row.Mnemonic.empty() && row.Quoted.find(row.Mnemonic) == std::string::npos)
            Fault(number, "does not hold its mnemonic");
        if ((CountOf(row.Quoted, "\\n") == 0) != (CountOf(english.Quoted, "\\n") == 0))
            Fault(number, "has other line breaks");
        if (CountOf(row.Quoted, "\\t") != CountOf(english.Quoted, "\\t")) Fault(number, "has other tabs");
        if (Blanks(row.Quoted) != Blanks(english.Quoted)) Fault(number, "has other blanks at its ends");
        if (CodePageToUtf8(Utf8ToCodePage(row.Quoted)) != row.Quoted)
            Fault(number, "has a character that the code page lacks");
    }

    /// The groups of a selection have names of their own.
    void CompareKeys() {
        for (const auto& groups : Selections) {
            for (const MessageId group : groups) {
                for (const MessageId other : groups) {
                    if (group.Number < other.Number &&
                        SameText(Text(group).CodePage(), Text(other).CodePage()))
                        Fault(other.Number, "is called as " + std::to_string(group.Number));
                }
            }
        }
    }

    void Fault(int number, const std::string& what) { faults_ += std::to_string(number) + " " + what + "\n"; }

    std::string faults_;
};

TEST_F(TranslationsTest, EachOfThemHasEveryTextAndKeepsWhatItsPlaceAsksFor) {
    const std::string folder = std::string(TRAMBLE_SOURCE) + "/resources/languages/";
    for (const std::string& file : FilesWithExtension(folder, ".tsv"))
        EXPECT_EQ(Faults(folder + file), "") << file;
}

TEST_F(TranslationsTest, TheRowsOfTheBuildAreAllOfTheCatalogueAsItIsBuiltIn) {
    const std::string path = GivenFile("Dansk.tsv", English());
    EXPECT_EQ(Faults(path), "");
    ASSERT_EQ(Global.Replacements.size(), CatalogueRowCount);
    for (std::size_t k = 0; k < CatalogueRowCount; ++k) {
        const CatalogueRow& row = CatalogueRows[k];
        EXPECT_EQ(Text(MessageId{row.Number}).Utf8(), row.Words) << row.Number;
        EXPECT_EQ(Global.Replacements[row.Number].Mnemonic, row.Mnemonic) << row.Number;
    }
}

TEST_F(TranslationsTest, AFaultOfEachKindIsFound) {
    const std::pair<const char*, const char*> rows[] = {
        {"137\tYeah\tJ\t\"Ja\"", "137 has another name\n"},
        {"137\tYes\t\t\"Ja\"", "137 has no mnemonic\n"},
        {"137\tYes\tY\t\"Ja\"", "137 does not hold its mnemonic\n"},
        {"137\tYes\tJ\t\"J\\na\"", "137 has other line breaks\n"},
        {"137\tYes\tJ\t\"J\\ta\"", "137 has other tabs\n"},
        {"137\tYes\tJ\t\" Ja\"", "137 has other blanks at its ends\n"},
        {"137\tYes\tJ\t\"J\xC4\x85\"", "137 has a character that the code page lacks\n"},
        {"137\tYes\tJ\t\"\"", "Dansk.tsv, line 2: the text is empty\n137 has no text\n"},
    };
    for (const auto& [row, fault] : rows) EXPECT_EQ(Faults(AllBut(row)), fault) << row;
    EXPECT_EQ(Faults(GivenFile("Dansk.tsv", English() + "2\tNone\t\t\"Nej\"\n")),
              "Dansk.tsv, line " + std::to_string(CatalogueRowCount + 1) +
                  ": there is no text of this number\n2 is no text of the catalogue\n");
    EXPECT_EQ(Faults(GivenFile("Dansk.tsv", English().substr(English().find('\n') + 1))), "101 is missing\n");
}

TEST_F(TranslationsTest, TwoGroupsOfTablesOfOneNameAreFound) {
    const int first = std::min(msg::TablesHelp.Number, msg::TablesItems.Number);
    const int second = std::max(msg::TablesHelp.Number, msg::TablesItems.Number);
    const std::string row = std::to_string(msg::TablesHelp.Number) + "\tTablesHelp\te\t\"Items\"";

    EXPECT_EQ(Faults(AllBut(row)), std::to_string(second) + " is called as " + std::to_string(first) + "\n");
}

} // namespace

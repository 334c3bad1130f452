#include "core/Catalogue.h"

#include "core/CodePage.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"

#include <algorithm>
#include <charconv>

namespace {

const CatalogueRow* BuiltIn(MessageId entry) {
    const CatalogueRow* end = CatalogueRows + CatalogueRowCount;
    const CatalogueRow* row =
        std::lower_bound(CatalogueRows, end, entry.Number,
                         [](const CatalogueRow& r, int number) { return r.Number < number; });
    return row != end && row->Number == entry.Number ? row : nullptr;
}

const CatalogueRow* BuiltInOrFail(MessageId entry) {
    const CatalogueRow* row = BuiltIn(entry);
    if (!row) throw RunTimeFailure(9, "text " + std::to_string(entry.Number));
    return row;
}

std::vector<std::string_view> SplitTabs(std::string_view line) {
    std::vector<std::string_view> cells;
    for (std::size_t tab = line.find('\t'); tab != std::string_view::npos; tab = line.find('\t')) {
        cells.push_back(line.substr(0, tab));
        line.remove_prefix(tab + 1);
    }
    cells.push_back(line);
    return cells;
}

/// Whether words are those of a free number, or of the line that marks where a range begins.
bool IsNoText(std::string_view words) {
    return words == "x" || words.starts_with("<<<") || words.starts_with(">>>") || words.starts_with(">*>");
}

/// Labels before a value in a column of its own, of which each stays within its room.
constexpr MessageId ColumnLabels[] = {msg::lblZUKVer,    msg::lblOSName,     msg::lblOSVer,
                                      msg::lblPalmDTVer, msg::lblHotsyncVer, msg::lblAppPath,
                                      msg::lblDBFPath,   msg::lblDataInPath, msg::lblDataOutPath};
constexpr std::size_t LongestColumnLabel = 29;

/// Where the bars stand in the head of a report: the rows below go by them.
std::string Bars(std::string text) {
    for (char& c : text) {
        if (c != '|') c = ' ';
    }
    return text;
}

/// Why a text cannot stand in the place of an entry; nothing when it can.
const char* WhyNotShown(MessageId entry, const std::string& words) {
    if (words.find_first_not_of(" \t\n") == std::string::npos) return "the text is empty";
    const bool isLabel =
        std::find(std::begin(ColumnLabels), std::end(ColumnLabels), entry) != std::end(ColumnLabels);
    if (isLabel && Utf8ToCodePage(words).size() > LongestColumnLabel)
        return "the text is longer than 29 characters";
    if (const std::string head = KeyOf(entry);
        head.starts_with('|') && Bars(Utf8ToCodePage(words)) != Bars(head))
        return "the bars do not stand where the columns of the report end";
    return nullptr;
}

/// What is wrong with a row, or nothing when it went into the catalogue or is none of a text.
const char* TakeRow(std::string_view line) {
    const std::vector<std::string_view> cells = SplitTabs(line);
    if (cells.size() != 2 && cells.size() != 4) return "a row has two or four columns";
    std::uint16_t number = 0;
    const auto [end, error] = std::from_chars(cells[0].data(), cells[0].data() + cells[0].size(), number);
    if (error != std::errc{} || end != cells[0].data() + cells[0].size())
        return "the first column is no number";
    const std::string_view quoted = cells.back();
    if (quoted.size() > 2 && quoted.front() == '"' && IsNoText(quoted.substr(1, quoted.size() - 2)))
        return nullptr;
    if (!CatalogueHas({number})) return "there is no text of this number";
    if (quoted.size() < 2 || quoted.front() != '"' || quoted.back() != '"')
        return "the text is not in quotes";
    if (!IsValidUtf8(quoted)) return "the text is not in UTF-8";

    Globals::Replacement replacement;
    for (std::size_t i = 1; i + 1 < quoted.size(); ++i) {
        char c = quoted[i];
        if (c == '\\' && i + 2 < quoted.size()) {
            c = quoted[++i];
            if (c == 'n')
                c = '\n';
            else if (c == 't')
                c = '\t';
            else if (c != '\\')
                return "behind a backslash only n, t and a backslash can stand";
        }
        replacement.Words += c;
    }
    if (const char* reason = WhyNotShown({number}, replacement.Words)) return reason;
    if (cells.size() == 4 && cells[2].size() == 1 && replacement.Words.find(cells[2]) != std::string::npos)
        replacement.Mnemonic = cells[2][0];
    Global.Replacements[number] = replacement;
    return nullptr;
}

/// The entry as it was built in or replaced.
Globals::Replacement InForce(MessageId entry) {
    const auto found = Global.Replacements.find(entry.Number);
    const CatalogueRow* row = BuiltInOrFail(entry);
    return found == Global.Replacements.end() ? Globals::Replacement{row->Words, row->Mnemonic}
                                              : found->second;
}

} // namespace

bool CatalogueHas(MessageId entry) {
    return BuiltIn(entry) != nullptr;
}

std::string CatalogueText(MessageId entry) {
    return InForce(entry).Words;
}

std::string CatalogueCaption(MessageId entry) {
    const auto [text, mnemonic] = InForce(entry);
    const std::size_t place = mnemonic != 0 ? text.find(mnemonic) : std::string::npos;
    std::string caption;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i == place || text[i] == '&') caption += '&';
        caption += text[i];
    }
    return caption;
}

std::string AddMessages(std::string_view path) {
    if (!FileExists(path)) return {};
    std::string problems;
    const auto report = [&](std::int64_t line, const char* reason) {
        problems += std::string(FileNameOf(path)) + ", line " + std::to_string(line) + ": " + reason + "\n";
    };
    try {
        TextReader file(path, TextReader::OwnFile);
        std::string line;
        while (file.ReadLine(line)) {
            if (file.LineNumber() == 1 && line.starts_with("\xEF\xBB\xBF")) line.erase(0, 3);
            if (line.empty() || line.front() == '#') continue;
            if (const char* reason = TakeRow(line)) report(file.LineNumber(), reason);
        }
    } catch (const RunTimeFailure& failure) {
        problems += std::string(failure.what()) + "\n";
    }
    return problems;
}

std::string LoadMessages(std::string_view path) {
    Global.Replacements.clear();
    return AddMessages(path);
}

std::string KeyOf(MessageId entry) {
    return Utf8ToCodePage(BuiltInOrFail(entry)->Words);
}

bool IsKey(std::string_view text, MessageId entry) {
    if (SameText(text, KeyOf(entry))) return true;
    return SameText(text, Text(entry).CodePage()) &&
           std::none_of(CatalogueRows, CatalogueRows + CatalogueRowCount,
                        [&](const CatalogueRow& row) { return SameText(text, Utf8ToCodePage(row.Words)); });
}

Text ShownKey(std::string_view text, std::span<const MessageId> entries) {
    const auto entry =
        std::find_if(entries.begin(), entries.end(), [&](MessageId each) { return IsKey(text, each); });
    return entry == entries.end() ? Text::Value(text) : Text(*entry);
}

#include "maintenance/RtfText.h"

#include "core/CodePage.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace {

constexpr std::size_t MostGroups = 200; ///< one inside the other
constexpr int MostDigits = 9;

/// Groups that hold no words of the text.
constexpr std::array<std::string_view, 22> Hidden = {
    "colortbl", "datastore", "filetbl", "fldinst", "fonttbl",    "footer",   "footerf", "footerl",
    "footerr",  "generator", "header",  "headerf", "headerl",    "headerr",  "info",    "listtable",
    "object",   "pict",      "rsidtbl", "private", "stylesheet", "themedata"};

/// Words that stand for characters, in UTF-8.
constexpr std::array<std::pair<std::string_view, std::string_view>, 14> Characters = {{
    {"par", "\n"},
    {"line", "\n"},
    {"sect", "\n"},
    {"page", "\n"},
    {"row", "\n"},
    {"tab", "\t"},
    {"cell", "\t"},
    {"bullet", "\u2022"},
    {"emdash", "\u2014"},
    {"endash", "\u2013"},
    {"lquote", "\u2018"},
    {"rquote", "\u2019"},
    {"ldblquote", "\u201C"},
    {"rdblquote", "\u201D"},
}};

bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

int HexDigit(char c) {
    if (IsDigit(c)) return c - '0';
    const char small = ToLower(c);
    return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

std::string Utf8Of(std::uint32_t code) {
    const auto tail = [code](int shift) { return static_cast<char>(0x80 | (code >> shift & 0x3F)); };
    if (code < 0x80) return {static_cast<char>(code)};
    if (code < 0x800) return {static_cast<char>(0xC0 | code >> 6), tail(0)};
    if (code < 0x10000) return {static_cast<char>(0xE0 | code >> 12), tail(6), tail(0)};
    return {static_cast<char>(0xF0 | code >> 18), tail(12), tail(6), tail(0)};
}

class RtfReader {
public:
    explicit RtfReader(std::string_view bytes) : left_(bytes) {}

    std::vector<RtfRun> Read() {
        while (!left_.empty() && !ended_) Step(Take());
        return std::move(runs_);
    }

private:
    struct Group {
        bool Bold = false, Italic = false, Hidden = false;
        int Fallback = 1; ///< characters behind a Unicode one that stand in its place
    };

    char Take() {
        const char c = left_.front();
        left_.remove_prefix(1);
        return c;
    }

    void Step(char c) {
        switch (c) {
        case '{':
            passedBy_ = 0;
            if (outer_.size() == MostGroups) {
                ++tooDeep_;
                return;
            }
            outer_.push_back(group_);
            return;
        case '}':
            passedBy_ = 0;
            if (tooDeep_ > 0) {
                --tooDeep_;
                return;
            }
            if (outer_.empty()) {
                ended_ = true;
                return;
            }
            group_ = outer_.back();
            outer_.pop_back();
            ended_ = outer_.empty();
            return;
        case '\\':
            return Control();
        case '\r':
        case '\n':
            return;
        default:
            return Byte(c);
        }
    }

    void Control() {
        if (left_.empty()) return;
        if (IsLetter(left_.front())) return Word();
        const char symbol = Take();
        switch (symbol) {
        case '\'': {
            if (left_.size() < 2) return;
            const int high = HexDigit(Take());
            const int low = HexDigit(Take());
            if (high >= 0 && low >= 0) Byte(static_cast<char>(high * 16 + low));
            return;
        }
        case '*':
            group_.Hidden = true;
            return;
        case '~':
            return Add("\u00A0");
        case '_':
            return Add("\u2011");
        case '\r':
        case '\n':
            return Add("\n");
        case '\\':
        case '{':
        case '}':
            return Byte(symbol);
        default:
            return;
        }
    }

    void Word() {
        std::size_t size = 0;
        while (size < left_.size() && IsLetter(left_[size])) ++size;
        const std::string_view word = left_.substr(0, size);
        left_.remove_prefix(size);
        const bool negative = !left_.empty() && left_.front() == '-';
        if (negative) Take();
        bool hasNumber = false;
        std::int64_t number = 0;
        for (int digits = 0; !left_.empty() && IsDigit(left_.front()); ++digits) {
            const int digit = Take() - '0';
            hasNumber = true;
            if (digits < MostDigits) number = number * 10 + digit;
        }
        if (!left_.empty() && left_.front() == ' ') Take();
        Obey(word, negative ? -number : number, hasNumber);
    }

    void Obey(std::string_view word, std::int64_t number, bool hasNumber) {
        const bool on = !hasNumber || number != 0;
        if (word == "b") {
            group_.Bold = on;
        } else if (word == "i") {
            group_.Italic = on;
        } else if (word == "plain") {
            group_.Bold = group_.Italic = false;
        } else if (word == "uc") {
            group_.Fallback = static_cast<int>(std::clamp<std::int64_t>(number, 0, 8));
        } else if (word == "u") {
            Unicode(number);
        } else if (word == "bin") {
            left_.remove_prefix(static_cast<std::size_t>(
                std::clamp<std::int64_t>(number, 0, static_cast<std::int64_t>(left_.size()))));
        } else if (std::find(Hidden.begin(), Hidden.end(), word) != Hidden.end()) {
            group_.Hidden = true;
        } else {
            for (const auto& [name, character] : Characters) {
                if (name == word) return Add(character);
            }
        }
    }

    /// Two halves of a character beyond the first 65536 come one behind the other.
    void Unicode(std::int64_t number) {
        const auto code = static_cast<std::uint32_t>(number & 0xFFFF);
        if (code >= 0xD800 && code < 0xDC00) {
            half_ = code;
        } else if (code >= 0xDC00 && code < 0xE000) {
            if (half_ != 0) Add(Utf8Of(0x10000 + ((half_ - 0xD800) << 10) + (code - 0xDC00)));
            half_ = 0;
        } else if (code >= 0x20) {
            Add(Utf8Of(code));
        }
        passedBy_ = group_.Fallback;
    }

    void Byte(char c) {
        if (passedBy_ > 0) {
            --passedBy_;
            return;
        }
        if (static_cast<unsigned char>(c) < 0x20 && c != '\t') return;
        Add(CodePageToUtf8(std::string_view(&c, 1)));
    }

    void Add(std::string_view utf8) {
        if (group_.Hidden || tooDeep_ > 0 || outer_.empty()) return;
        if (runs_.empty() || runs_.back().Bold != group_.Bold || runs_.back().Italic != group_.Italic)
            runs_.push_back({{}, group_.Bold, group_.Italic});
        runs_.back().Utf8 += utf8;
    }

    std::string_view left_;
    std::vector<RtfRun> runs_;
    Group group_;
    std::vector<Group> outer_;
    std::size_t tooDeep_ = 0;
    int passedBy_ = 0;
    std::uint32_t half_ = 0;
    bool ended_ = false;
};

} // namespace

std::vector<RtfRun> ReadRtf(std::string_view bytes) {
    if (bytes.starts_with("{\\rtf")) return RtfReader(bytes).Read();
    std::string text(bytes);
    std::erase_if(text,
                  [](char c) { return static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\t'; });
    if (text.empty()) return {};
    return {{IsValidUtf8(text) ? text : CodePageToUtf8(text)}};
}

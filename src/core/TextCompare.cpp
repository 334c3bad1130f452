#include "core/TextCompare.h"

#include "core/CodePage.h"

#include <algorithm>
#include <array>

namespace {

constexpr unsigned Byte(char c) {
    return static_cast<unsigned char>(c);
}

/// The letters or the digit that a small letter or a raised sign counts as; `First` is 0 for a
/// character that is its own base.
struct Spelling {
    char First = 0;
    char Second = 0;
};

constexpr Spelling SpellingOf(unsigned smallLetter) {
    switch (smallLetter) {
    case 0xE6:
        return {'a', 'e'};
    case 0x9C:
        return {'o', 'e'};
    case 0xDF:
        return {'s', 's'};
    case 0xFE:
        return {'t', 'h'};
    case 0xAA:
        return {'a'};
    case 0xE7:
        return {'c'};
    case 0xF0:
        return {'d'};
    case 0x83:
        return {'f'};
    case 0xF1:
        return {'n'};
    case 0xBA:
    case 0xF8:
        return {'o'};
    case 0x9A:
        return {'s'};
    case 0xFD:
    case 0xFF:
        return {'y'};
    case 0x9E:
        return {'z'};
    case 0xB9:
        return {'1'};
    case 0xB2:
        return {'2'};
    case 0xB3:
        return {'3'};
    default:
        break;
    }
    if (smallLetter >= 0xE0 && smallLetter <= 0xE5) return {'a'};
    if (smallLetter >= 0xE8 && smallLetter <= 0xEB) return {'e'};
    if (smallLetter >= 0xEC && smallLetter <= 0xEF) return {'i'};
    if (smallLetter >= 0xF2 && smallLetter <= 0xF6) return {'o'};
    if (smallLetter >= 0xF9 && smallLetter <= 0xFC) return {'u'};
    return {};
}

constexpr unsigned SmallLetter(unsigned byte) {
    return Byte(ToLower(static_cast<char>(static_cast<unsigned char>(byte))));
}

constexpr bool IsControl(unsigned byte) {
    return byte < 0x20 || byte == 0x7F || byte == 0x81 || byte == 0x8D || byte == 0x8F || byte == 0x90 ||
           byte == 0x9D;
}

constexpr bool IsSymbol(unsigned byte) {
    const unsigned letter = SmallLetter(byte);
    return !IsControl(byte) && byte != 0x20 && byte != 0xA0 && !(byte >= '0' && byte <= '9') &&
           !(letter >= 'a' && letter <= 'z') && SpellingOf(letter).First == 0;
}

/// How one character is weighed. A `Base` is at least 1, so that 0 can stand for the end.
struct Weight {
    unsigned char Base = 0;
    unsigned char SecondBase = 0; ///< 0 for a character that counts as one
    unsigned char Accent = 0;     ///< 0 for none
};

constexpr std::array<Weight, 256> MakeWeights() {
    std::array<Weight, 256> weights{};
    unsigned char next = 1;
    for (unsigned byte = 0; byte < 256; ++byte) {
        if (IsControl(byte)) weights[byte].Base = next++;
    }
    weights[0x20].Base = next++;
    weights[0xA0].Base = next++;
    for (unsigned byte = 0; byte < 256; ++byte) {
        if (IsSymbol(byte)) weights[byte].Base = next++;
    }
    for (unsigned digit = '0'; digit <= '9'; ++digit) weights[digit].Base = next++;
    for (unsigned letter = 'a'; letter <= 'z'; ++letter) weights[letter].Base = next++;

    for (unsigned byte = 0; byte < 256; ++byte) {
        if (weights[byte].Base != 0) continue;
        const unsigned letter = SmallLetter(byte);
        const Spelling spelling = SpellingOf(letter);
        if (spelling.First == 0) {
            weights[byte] = weights[letter];
            continue;
        }
        weights[byte].Base = weights[Byte(spelling.First)].Base;
        if (spelling.Second != 0) weights[byte].SecondBase = weights[Byte(spelling.Second)].Base;
        weights[byte].Accent = static_cast<unsigned char>(letter);
    }
    return weights;
}

constexpr std::array<Weight, 256> kWeights = MakeWeights();

/// Walks a text base by base; behind the end come zeros.
class Bases {
public:
    explicit Bases(std::string_view text) : text_(text) {}

    struct Step {
        int Base = 0;
        int Accent = 0;
    };

    Step Next() {
        if (second_ != 0) {
            const Step step{second_, accent_};
            second_ = 0;
            return step;
        }
        if (at_ == text_.size()) return {};
        const Weight& weight = kWeights[Byte(text_[at_++])];
        second_ = weight.SecondBase;
        accent_ = weight.Accent;
        return {weight.Base, weight.Accent};
    }

private:
    std::string_view text_;
    std::size_t at_ = 0;
    int second_ = 0;
    int accent_ = 0;
};

bool SameCharacter(char a, char b) {
    return a == b || ToUpper(a) == ToUpper(b);
}

} // namespace

int TextCompare(std::string_view a, std::string_view b) {
    const auto [endOfA, endOfB] = std::mismatch(a.begin(), a.end(), b.begin(), b.end(), SameCharacter);
    a.remove_prefix(static_cast<std::size_t>(endOfA - a.begin()));
    b.remove_prefix(static_cast<std::size_t>(endOfB - b.begin()));

    int accents = 0;
    Bases basesOfA(a);
    Bases basesOfB(b);
    for (;;) {
        const Bases::Step ofA = basesOfA.Next();
        const Bases::Step ofB = basesOfB.Next();
        if (ofA.Base != ofB.Base) return ofA.Base - ofB.Base;
        if (ofA.Base == 0) return accents;
        if (accents == 0) accents = ofA.Accent - ofB.Accent;
    }
}

bool SameText(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), SameCharacter);
}

std::string SortKey(std::string_view text) {
    std::string key;
    std::string accents; // of the bases up to the last accent: none at all come before any
    key.reserve(text.size());
    Bases bases(text);
    for (Bases::Step step = bases.Next(); step.Base != 0; step = bases.Next()) {
        if (step.Accent != 0) {
            accents.resize(key.size());
            accents += static_cast<char>(step.Accent);
        }
        key += static_cast<char>(step.Base);
    }
    // No base is 0, so that a text which goes on comes behind one that ends with accents.
    if (!accents.empty()) key.append(1, '\0').append(accents);
    return key;
}

std::string FoldCase(std::string_view text) {
    return UpperCase(text);
}

bool IsKeyCharacter(char c) {
    static const std::array<bool, 256> known = [] {
        std::array<bool, 256> table{};
        for (int code = 0; code < 256; ++code) {
            const char letter = static_cast<char>(code);
            const std::string_view text(&letter, 1);
            const auto liesIn = [&](std::string_view first, std::string_view last) {
                return TextCompare(text, first) >= 0 && TextCompare(text, last) <= 0;
            };
            table[static_cast<std::size_t>(code)] = liesIn("0", "9") || liesIn("A", "Z");
        }
        return table;
    }();
    return known[static_cast<unsigned char>(c)];
}

std::vector<std::string_view> SplitText(std::string_view text, std::string_view separator) {
    std::vector<std::string_view> pieces;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(separator), text.size());
        pieces.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + separator.size(), text.size()));
    }
    return pieces;
}

bool BeginsWith(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() && SameText(text.substr(0, prefix.size()), prefix);
}

std::size_t FindText(std::string_view text, std::string_view part, std::size_t from) {
    if (from > text.size()) return std::string_view::npos;
    const auto start = text.begin() + static_cast<std::ptrdiff_t>(from);
    const auto found = std::search(start, text.end(), part.begin(), part.end(), SameCharacter);
    if (found == text.end() && !part.empty()) return std::string_view::npos;
    return static_cast<std::size_t>(found - text.begin());
}

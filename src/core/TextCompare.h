#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Comparison and search without regard to case, over text in code page 1252. All of it agrees:
/// SameText, FoldCase, BeginsWith and FindText take two characters for the same exactly when
/// TextCompare does.

/// Below 0, 0 or above 0 as `a` comes before, with or after `b`.
///
/// Two passes. First the base characters, in this order: control characters, blank, no-break
/// blank, punctuation and symbols by code, digits, letters. ¹ ² ³ count as their digits, ª º ƒ
/// and an accented letter as the letter below, Ø as O, Ð as D, and Æ, Œ, ß, Þ as AE, OE, SS, TH;
/// µ is a symbol. A text that ends comes first. Only when the bases are equal throughout does the
/// first differing accent decide: none before any, then by the code of the small letter. So "é"
/// lies between "A" and "Z", and "éa" comes before "ez". Texts are equal exactly when they differ
/// in nothing but case: "ß" is not equal to "ss", it comes right behind. Never allocates.
int TextCompare(std::string_view a, std::string_view b);

/// TextCompare(a, b) == 0, at less cost.
bool SameText(std::string_view a, std::string_view b);

/// A key for sorts: the bytes of two keys stand to each other (std::string's own comparison) as
/// TextCompare has it of the texts. At most twice as long as the bases of the text, and a byte.
/// Whoever compares the same texts many times makes their keys once.
std::string SortKey(std::string_view text);

/// A key for maps: two folded texts are the same bytes exactly when TextCompare of the texts is 0.
/// The bytes' own order is not TextCompare's.
std::string FoldCase(std::string_view text);

/// True if `text` starts with `prefix`; every text starts with the empty one.
bool BeginsWith(std::string_view text, std::string_view prefix);

/// Whether the handheld's searches know a character: it lies from "0" to "9" or from "A" to "Z".
bool IsKeyCharacter(char c);

/// The pieces between separators; none for an empty text. The views live as long as the text.
std::vector<std::string_view> SplitText(std::string_view text, std::string_view separator);

/// Position, from 0, of the first `part` that starts at `from` or behind; npos if there is none.
/// An empty part is found at `from`, unless that lies behind the end of the text.
std::size_t FindText(std::string_view text, std::string_view part, std::size_t from = 0);

/// The text without the blanks (0x20, nothing else) at both ends, its start or its end. The view
/// lives as long as the characters that the argument views: do not keep it from a temporary.
inline std::string_view TrimLeft(std::string_view text) {
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    return text;
}
inline std::string_view TrimRight(std::string_view text) {
    // In long steps, since fields of tables are blank for the most part: up to seven are left
    // behind the first, one behind the last but one.
    constexpr std::string_view Eight = "        ";
    constexpr std::string_view Four = "    ";
    constexpr std::string_view Two = "  ";
    while (text.ends_with(Eight)) text.remove_suffix(8);
    if (text.ends_with(Four)) text.remove_suffix(4);
    if (text.ends_with(Two)) text.remove_suffix(2);
    if (text.ends_with(' ')) text.remove_suffix(1);
    return text;
}
inline std::string_view Trim(std::string_view text) {
    return TrimLeft(TrimRight(text));
}

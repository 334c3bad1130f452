#include "core/CodePage.h"
#include "core/DateNames.h"
#include "core/Dates.h"
#include "core/Failure.h"
#include "core/TextCompare.h"

#include <algorithm>
#include <cstddef>
#include <vector>

// How dates are written: the formats of core/Dates.h.

namespace {

/// The number with zeros before it up to `width`.
std::string Padded(int number, std::size_t width) {
    std::string digits = std::to_string(number);
    if (digits.size() < width) digits.insert(0, width - digits.size(), '0');
    return digits;
}

enum class Piece { Literal, Day, Weekday, Month, Minute, Year, Hour, Second, Half };

constexpr std::size_t kLongestRun = 4; // letters of the longest piece

/// A piece of a format and its letters; for a literal, the text itself.
struct FormatPiece {
    Piece Kind = Piece::Literal;
    std::string_view Text;
};

/// The piece that a run of one letter begins with; a literal when it begins none.
FormatPiece FirstOfRun(std::string_view run) {
    const auto upTo = [run](std::size_t longest) { return run.substr(0, longest); };
    switch (ToLower(run[0])) {
    case 'd':
        return {run.size() > 2 ? Piece::Weekday : Piece::Day, upTo(4)};
    case 'm':
        return {Piece::Month, upTo(4)};
    case 'y':
        if (run.size() >= 4) return {Piece::Year, upTo(4)};
        if (run.size() >= 2) return {Piece::Year, upTo(2)};
        break;
    case 'h':
        return {Piece::Hour, upTo(2)};
    case 'n':
        return {Piece::Minute, upTo(2)};
    case 's':
        return {Piece::Second, upTo(2)};
    default:
        break;
    }
    return {Piece::Literal, upTo(1)};
}

/// The piece at the start of a format that is not empty; `used` are the characters it takes.
FormatPiece FirstPiece(std::string_view format, std::size_t& used) {
    const char c = format[0];
    if (c == '"') {
        const std::size_t end = std::min(format.find('"', 1), format.size());
        used = std::min(end + 1, format.size());
        return {Piece::Literal, format.substr(1, end - 1)};
    }
    if (c == '\\' && format.size() > 1) {
        used = 2;
        return {Piece::Literal, format.substr(1, 1)};
    }
    for (const std::string_view half : {"AM/PM", "A/P"}) {
        if (BeginsWith(format, half)) {
            used = half.size();
            return {Piece::Half, format.substr(0, used)};
        }
    }
    const std::string_view start = format.substr(0, kLongestRun);
    const auto end =
        std::find_if(start.begin(), start.end(), [c](char other) { return ToLower(other) != ToLower(c); });
    const FormatPiece piece = FirstOfRun(start.substr(0, static_cast<std::size_t>(end - start.begin())));
    used = piece.Text.size();
    return piece;
}

std::vector<FormatPiece> SplitFormat(std::string_view format) {
    std::vector<FormatPiece> pieces;
    Piece before = Piece::Literal;
    while (!format.empty()) {
        std::size_t used = 0;
        FormatPiece piece = FirstPiece(format, used);
        format.remove_prefix(used);
        if (piece.Kind == Piece::Month && piece.Text.size() <= 2 && before == Piece::Hour)
            piece.Kind = Piece::Minute;
        if (piece.Kind != Piece::Literal) before = piece.Kind;
        pieces.push_back(piece);
    }
    return pieces;
}

/// A name in the length that the letters ask for: three of them, or four.
std::string_view Name(std::string_view name, std::string_view letters) {
    return letters.size() == kShortName ? name.substr(0, kShortName) : name;
}

std::string Written(const DateTime& date, const FormatPiece& piece, bool twelveHours) {
    const std::string_view letters = piece.Text;
    switch (piece.Kind) {
    case Piece::Literal:
        break;
    case Piece::Day:
        return Padded(date.Day, letters.size());
    case Piece::Weekday:
        return std::string(Name(kWeekdays[static_cast<std::size_t>(DayOfWeek(date) - 1)], letters));
    case Piece::Month:
        if (letters.size() <= 2) return Padded(date.Month, letters.size());
        return std::string(Name(kMonths[static_cast<std::size_t>(date.Month - 1)], letters));
    case Piece::Minute:
        return Padded(date.Minute, letters.size());
    case Piece::Year:
        return Padded(letters.size() == 4 ? date.Year : date.Year % 100, letters.size());
    case Piece::Hour:
        return Padded(twelveHours ? (date.Hour + 11) % 12 + 1 : date.Hour, letters.size());
    case Piece::Second:
        return Padded(date.Second, letters.size());
    case Piece::Half: {
        std::string half = date.Hour < 12 ? "AM" : "PM";
        if (letters.size() == 3) half.resize(1);
        return letters[0] == 'a' ? LowerCase(half) : half;
    }
    }
    return std::string(letters);
}

} // namespace

std::string ShortDate(const DateTime& date) {
    return Format(date, "yyyy-mm-dd");
}

std::string DateAndTime(const DateTime& date) {
    return Format(date, "yyyy-mm-dd hh:nn:ss");
}

std::string LongDate(const DateTime& date) {
    return Format(date, "dddd, mmmm d, yyyy");
}

std::string YyyyMmDd(const DateTime& date) {
    return Format(date, "yyyymmdd");
}

std::string Format(const DateTime& date, std::string_view format) {
    if (date.IsZero()) return {};
    if (!IsValid(date)) throw RunTimeFailure(5);

    const std::vector<FormatPiece> pieces = SplitFormat(format);
    const bool twelveHours = std::any_of(pieces.begin(), pieces.end(),
                                         [](const FormatPiece& piece) { return piece.Kind == Piece::Half; });
    std::string text;
    for (const FormatPiece& piece : pieces) text += Written(date, piece, twelveHours);
    return text;
}

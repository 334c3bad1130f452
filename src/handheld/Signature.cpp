#include "handheld/Signature.h"

#include "core/TextCompare.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

constexpr int Width = 150, Height = 48;
constexpr int RowBytes = (Width + 7) / 8;
constexpr int Baseline = 34;
constexpr int Margin = 8;
constexpr std::size_t MostLetters = 24;

struct Point {
    int X = 0, Y = 0;
};

class Paper {
public:
    Paper() : ink_{Width, Height, std::string(std::size_t{RowBytes} * Height, '\0')} {}

    void Dot(Point at) {
        if (at.X < 0 || at.X >= Width || at.Y < 0 || at.Y >= Height) return;
        char& byte =
            ink_.Rows[static_cast<std::size_t>(at.Y) * RowBytes + static_cast<std::size_t>(at.X / 8)];
        byte = static_cast<char>(static_cast<unsigned char>(byte) | 0x80U >> at.X % 8);
    }

    /// A pen two dots wide.
    void Line(Point from, Point to) {
        const int steps = std::max({std::abs(to.X - from.X), std::abs(to.Y - from.Y), 1});
        for (int step = 0; step <= steps; ++step) {
            const Point at{from.X + (to.X - from.X) * step / steps, from.Y + (to.Y - from.Y) * step / steps};
            Dot(at);
            Dot({at.X, at.Y + 1});
        }
    }

    /// From one point to another, bent towards a third.
    void Curve(Point from, Point bend, Point to) {
        constexpr int Pieces = 8;
        Point last = from;
        for (int t = 1; t <= Pieces; ++t) {
            const int s = Pieces - t;
            const auto mix = [&](int a, int b, int c) {
                return (s * s * a + 2 * s * t * b + t * t * c) / (Pieces * Pieces);
            };
            const Point next{mix(from.X, bend.X, to.X), mix(from.Y, bend.Y, to.Y)};
            Line(last, next);
            last = next;
        }
    }

    Ink Take() && { return std::move(ink_); }

private:
    Ink ink_;
};

/// How high above the line (or deep below it) a letter swings, and how round: out of the letter alone, so
/// that a letter looks the same wherever it stands.
struct Swing {
    int High = 0, Bend = 0;
};

Swing SwingOf(char letter) {
    const unsigned code = static_cast<unsigned char>(letter);
    const bool isLarge = (letter >= 'A' && letter <= 'Z') || (code >= 0xC0 && code <= 0xDE);
    constexpr std::string_view tall = "bdfhklt";
    constexpr std::string_view deep = "gjpqyz";
    const unsigned mix = code * 2654435761U >> 16;
    Swing swing{6 + static_cast<int>(mix % 5), static_cast<int>(mix / 5 % 9) - 4};
    if (isLarge) swing.High += 16;
    if (tall.find(letter) != std::string_view::npos) swing.High += 10;
    if (deep.find(letter) != std::string_view::npos) swing.High = -8;
    return swing;
}

} // namespace

Ink DrawSignature(std::string_view name) {
    Paper paper;
    std::string letters(Trim(name).substr(0, MostLetters));
    if (letters.empty()) letters = "~o~";
    const int step = std::clamp((Width - 2 * Margin) / static_cast<int>(letters.size()), 5, 14);
    Point pen{Margin, Baseline};
    for (const char letter : letters) {
        const Point next{pen.X + step, Baseline};
        if (letter != ' ') {
            const Swing swing = SwingOf(letter);
            const Point top{pen.X + step / 2 + swing.Bend, Baseline - swing.High};
            paper.Curve(pen, {pen.X - swing.Bend, (pen.Y + top.Y) / 2}, top);
            paper.Curve(top, {next.X + swing.Bend / 2, (top.Y + next.Y) / 2}, next);
        }
        pen = next;
    }
    paper.Curve({Margin, Baseline + 8}, {Width / 2, Baseline + 5},
                {std::min(pen.X + Margin, Width - Margin), Baseline + 9});
    return std::move(paper).Take();
}

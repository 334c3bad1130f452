#pragma once

#include "core/Failure.h"
#include "core/Printer.h"

#include <string>
#include <vector>

/// A printer that keeps what it was told. Each character is so wide, each line so high.
class PaperInMemory final : public Printer {
public:
    static constexpr int CharacterWidth = 100, LineHeight = 200;

    struct Line {
        std::string Words;
        bool Bold = false;
        bool operator==(const Line&) const = default;
    };
    struct Piece {
        int Left = 0, Top = 0;
        std::string Words;
        PrintFont Font{"", 0};
    };
    struct Box {
        int Left = 0, Top = 0, Width = 0, Height = 0;
    };
    struct Page {
        std::vector<Line> Lines;
        std::vector<Piece> Pieces;
        std::vector<Box> Boxes;
    };

    int Capacity = 1000;               ///< lines to the page
    int Width = 12000, Height = 15000; ///< of the page
    Range Wanted;
    std::int32_t FailsAtPage = 0; ///< that is begun with a failure; 0 none

    std::vector<Page> Printed{{}};
    bool Ended = false;
    std::string FontName;
    int FontPoints = 0;

    /// The lines of a page, from 0, as a text.
    std::string TextOf(std::size_t page) const {
        std::string all;
        for (const Line& line : Printed.at(page).Lines) all += line.Words + '\n';
        return all;
    }

    void SetFont(const PrintFont& font) override {
        font_ = font;
        FontName = font.Name;
        FontPoints = font.Points;
    }
    void Print(const Text& line) override { Printed.back().Lines.push_back({line.CodePage(), font_.Bold}); }
    int LinesPerPage() override { return Capacity; }
    int PageWidth() const override { return Width; }
    int PageHeight() const override { return Height; }
    int TextWidth(const Text& text) override {
        return static_cast<int>(text.CodePage().size()) * CharacterWidth;
    }
    int TextHeight() override { return LineHeight; }
    void PrintAt(int left, int top, const Text& text) override {
        Printed.back().Pieces.push_back({left, top, text.CodePage(), font_});
    }
    void PrintBox(int left, int top, int width, int height) override {
        Printed.back().Boxes.push_back({left, top, width, height});
    }
    void NewPage() override {
        Printed.emplace_back();
        if (static_cast<std::int32_t>(Printed.size()) == FailsAtPage) throw RunTimeFailure(57, "LPT1");
    }
    void EndDoc() override { Ended = true; }
    Range Pages() const override { return Wanted; }

private:
    PrintFont font_{"", 0};
};

#pragma once

#include "core/Text.h"

#include <cstdint>
#include <limits>

/// A font by its name, or the nearest that the system has.
struct PrintFont {
    const char* Name;
    int Points;
    bool Bold = false;
};

/// A document on its way to a printer, to a file, or to a screen that shows it.
///
/// A page takes either lines of text, one below the other, or pieces at places. Lengths are twips, 1440 to
/// the inch, from the upper left corner of what the page's margins leave. A document that ends without
/// EndDoc is not printed. Every routine may fail with RunTimeFailure, as the disk under it or 57.
class Printer {
public:
    Printer() = default;
    Printer(const Printer&) = delete;
    Printer& operator=(const Printer&) = delete;
    virtual ~Printer() = default;

    /// For what is printed or measured from now on.
    virtual void SetFont(const PrintFont& font) = 0;

    /// A line below the last one of this page, from the left margin. All lines of a page are of one font,
    /// whatever is bold. Where they are wider than the paper, or more, the whole page is made smaller.
    virtual void Print(const Text& line) = 0;

    /// How many lines of the font fit a page at its own size.
    virtual int LinesPerPage() = 0;

    /// Of what the margins leave.
    virtual int PageWidth() const = 0;
    virtual int PageHeight() const = 0;

    /// Of a text on one line, in the font in force.
    virtual int TextWidth(const Text& text) = 0;
    virtual int TextHeight() = 0; ///< of one line
    /// A text on one line, by its upper left corner. What reaches beyond the page is lost.
    virtual void PrintAt(int left, int top, const Text& text) = 0;
    /// An outline; what stands inside stays.
    virtual void PrintBox(int left, int top, int width, int height) = 0;

    /// Ends a page, also an empty one, and begins the next.
    virtual void NewPage() = 0;
    /// Ends the last page and sends the document on its way. Nothing may be printed behind it.
    virtual void EndDoc() = 0;

    /// The pages that the operator wants of the document, from 1.
    struct Range {
        std::int32_t First = 1;
        std::int32_t Last = std::numeric_limits<std::int32_t>::max();
    };
    /// All, where nothing else was asked for.
    virtual Range Pages() const { return {}; }
};

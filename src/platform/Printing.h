#pragma once

#include "core/Printer.h"

#include <QFont>
#include <QPageLayout>
#include <QString>

#include <memory>
#include <vector>

class QPagedPaintDevice;
class QPainter;

/// A font by its name, or one of fixed pitch where the system has none of the name and the name is that of
/// a fixed one. Its size is in twips. Never hinted: a text has the same width on a screen and on paper.
QFont FontFor(const PrintFont& font);

/// Margins of a quarter inch: a report of 116 characters at size 8 fits between them, also on A4.
QMarginsF UsualMargins();

/// The paper of this place, upright, with the usual margins: what a preview shows.
QPageLayout UsualPaper();

/// Pages that a QPainter draws, black on whatever is there. One page at a time: who derives from it says
/// where the next one is.
class PaintedPages : public Printer {
public:
    void SetFont(const PrintFont& font) override;
    void Print(const Text& line) override;
    int LinesPerPage() override;
    int PageWidth() const override { return width_; }
    int PageHeight() const override { return height_; }
    int TextWidth(const Text& text) override;
    int TextHeight() override;
    void PrintAt(int left, int top, const Text& text) override;
    void PrintBox(int left, int top, int width, int height) override;

protected:
    /// The size is that of what the margins leave, in twips.
    PaintedPages(int width, int height);

    /// Set up to draw in twips.
    virtual QPainter& Painter() = 0;

    /// Draws the lines of the page that is being printed.
    void FinishPage();

private:
    struct Line {
        QString Words;
        QFont Font;
    };

    int width_, height_;
    QFont font_;
    std::vector<Line> lines_;
};

/// One page that is shown: in twips, by a painter that is moved and scaled already.
class ShownPage final : public PaintedPages {
public:
    ShownPage(QPainter& painter, const QPageLayout& paper);

    void NewPage() override { FinishPage(); }
    void EndDoc() override { FinishPage(); }

private:
    QPainter& Painter() override { return painter_; }

    QPainter& painter_;
};

/// A PDF file of a title. It is written beside its place, which it takes at EndDoc. RunTimeFailure as
/// SafeFile, from the constructor on.
std::unique_ptr<Printer> NewPdfPrinter(std::string_view path, const QPageLayout& paper, const QString& title,
                                       Printer::Range pages = {});

/// The printer dialog of the platform; see Operator::PrinterDialog. It remembers paper and file no longer
/// than it is open.
std::unique_ptr<Printer> AskForPrinter(const QString& document);

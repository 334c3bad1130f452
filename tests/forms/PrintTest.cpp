#include "core/Failure.h"
#include "core/Messages.h"
#include "forms/FormTest.h"
#include "forms/ReadPdf.h"
#include "platform/Convert.h"
#include "platform/GridView.h"
#include "platform/PageView.h"
#include "platform/Printing.h"
#include "quality/forms/frmConfigMsg.h"
#include "support/PaperInMemory.h"
#include "support/RefusingDisk.h"
#include "views/BoxReport.h"
#include "views/forms/PrintReport.h"
#include "views/forms/frmPreview.h"
#include "views/forms/frmPrinting.h"
#include "views/forms/frmViewGrid.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <QTimer>

#include <filesystem>

namespace {

class Printing : public FormTest {
protected:
    Printing() {
        GivenOffice();
        Global.Clock = [] { return DateTime{2026, 11, 15, 14, 5, 9}; };
    }

    void GivenAudit(int rows) {
        std::vector<std::string> lines{
            "A_ORDCODE|A_CUSTCODE|A_TOTTOTAL|A_PRT_STAT|A_DELTYPE|A_DATE|A_TIME|A_MACH_ID"};
        for (int k = 1; k <= rows; ++k) {
            lines.push_back("A" + std::to_string(1000 + k) + "|CUST" + std::to_string(rows - k) +
                            "|431.5|Y|SINGLE|20261115|10:02:00|A001");
        }
        GivenRows("ZUKAUDTH", lines);
    }

    frmViewGrid& OpenGrid(ViewFlag flag) {
        ShowTable(flag);
        Settle();
        return The<frmViewGrid>();
    }

    std::string Pdf() const { return Folder() + "report.pdf"; }

    std::function<std::unique_ptr<Printer>()> ToPdf(Printer::Range pages = {}) const {
        return [path = Pdf(), pages] {
            return NewPdfPrinter(path, UsualPaper(), QStringLiteral("Report"), pages);
        };
    }

    static void Meanwhile(std::function<void()> deed) { QTimer::singleShot(0, qApp, std::move(deed)); }

    static PageView& Pages() { return dynamic_cast<PageView&>(Control(The<frmPreview>(), "Page")); }
};

/// A report whose pages hold their own number.
class NumberedPages : public Report {
public:
    explicit NumberedPages(std::int32_t count) : count_(count) {}

    Text Title() const override { return msg::PrintDataTitle; }
    void Begin(Printer& printer) override { printer.SetFont({"Courier New", 8}); }
    std::int32_t PageCount() const override { return count_; }
    void PrintPage(std::int32_t page, Printer& printer) override {
        if (OnPage) OnPage(page);
        printer.Print(Text::Value(std::int64_t{page}));
    }

    std::function<void(std::int32_t)> OnPage;

private:
    std::int32_t count_;
};

TEST_F(Printing, EachReportIsReadBackFromItsPdfAsItsPagesHaveIt) {
    GivenAudit(60);
    GivenRows("ZUKAUDTL", {"A_KEY|A_ITEMCODE|A_DATE|A_TIME|A_MACH_ID", "A100101|H1|20261115|10:02:00|A001"});
    GivenRows("ZUKAUDHH", {"TH_NUMHEAD|TH_NUMLINE|TH_DOL_LIN|TH_MACHINE|TH_LASTONU|TH_DATE|TH_TIME|TH_EVENT",
                           "3|12|431.5|A001|A00100000128|20261115|10:02:00|UPLOAD-REPLACE"});
    GivenRows("ZUKTOTALPC",
              {"TP_NUMHEAD|TP_NUMLINE|TP_DOL_LIN|TP_CURHEAD|TP_CURLINE|TP_CURDOL|TP_MACHINE|TP_EVENT|"
               "TP_DATETIM|TP_HOTSYNC|TP_LSTONUM",
               "2|5|10.5|12|15|110.5|A001|UPLOAD-ADD|2026-11-15 10:02:00|Anna Berg|A00100000128"});
    const struct {
        ViewFlag Flag;
        const BoxForm& Form;
        const char* Row;
        int Pages;
    } reports[] = {
        {ViewTotals, TotalsForm(),
         "|UPLOAD-ADD |2026-11-15 10:02:00| 12| 15| 110.50| 2| 5| 10.50|Anna Berg |A001 "
         "|A00100000128|",
         1},
        {ViewOrHdrAudt, OrHdrAudtForm(), "|A1060 |CUST0 | 431.5|Y | |SINGLE |20261115 |10:02:00 |A001 |", 2},
        {ViewOrLinAudt, OrLinAudtForm(), "|A100101 |H1 | |20261115 |10:02:00 |A001 |", 1},
        {ViewAudHH, AudtHHForm(), "| 3| 12| 431.5| |A001 |A00100000128|20261115 |10:02:00 |UPLOAD-REPLACE|",
         1},
    };
    for (const auto& each : reports) {
        SCOPED_TRACE(each.Row);
        auto& form = OpenGrid(each.Flag);
        // By customer: the last record comes first.
        if (each.Flag == ViewOrHdrAudt) dynamic_cast<GridView&>(Control(form, "FG1")).SortOn(2);
        ASSERT_TRUE(Enabled(form, "cmdPrint"));
        Operator_.ExpectPrinterDialog(each.Form.Title, ToPdf());

        Click(form, "cmdPrint");

        const QStringList lines = ReadPdf(Pdf());
        EXPECT_EQ(lines.count(QStringLiteral("\\f")), each.Pages);
        EXPECT_EQ(lines.first(), ToQt(Text(each.Form.Title)));
        for (const MessageId head : each.Form.Head)
            EXPECT_EQ(lines.count(ToQt(Text(head)).simplified()), each.Pages) << Text(head).Utf8();
        const QStringList rows = lines.filter(QRegularExpression(QStringLiteral("^\\|.*\\d.*\\|$")));
        EXPECT_EQ(rows.first().toStdString(), each.Row);
        EXPECT_EQ(lines.contains(QStringLiteral("----------------- Continued on Page 2 ----------------")),
                  each.Pages == 2);
        EXPECT_EQ(lines[lines.size() - 2], QStringLiteral("*** End of Report ***"));
    }
}

TEST_F(Printing, GivingUpInTheDialogEndsQuietlyAndAnyOtherFailureIsTold) {
    GivenAudit(3);
    auto& form = OpenGrid(ViewOrHdrAudt);

    Operator_.ExpectPrinterDialog(msg::PrintDataOrHdrAudtTitle, nullptr);
    Click(form, "cmdPrint");

    Operator_.ExpectPrinterDialog(msg::PrintDataOrHdrAudtTitle, [this] {
        return NewPdfPrinter(Folder() + "nowhere/report.pdf", UsualPaper(), QStringLiteral("Report"));
    });
    Operator_.ExpectBeginning(msg::ReportFailed).With(Icon::Stop);
    Click(form, "cmdPrint");

    // The file could be begun, and its disk is full then.
    GivenFile("report.pdf", "an older report");
    class FullDisk final : public PassingDisk {
    public:
        void Rename(const std::string&, const std::string& to) override { throw RunTimeFailure(61, to); }
    } full;
    Global.TheDisk = &full;
    Operator_.ExpectPrinterDialog(msg::PrintDataOrHdrAudtTitle, ToPdf());
    Operator_.ExpectBeginning(msg::ReportFailed).With(Icon::Stop);
    Click(form, "cmdPrint");
    Global.TheDisk = &NativeDisk();
    EXPECT_EQ(Bytes(Pdf()), "an older report");
    EXPECT_FALSE(Exists(Pdf() + ".zuk~"));
    EXPECT_TRUE(Operator_.AllCame());
}

TEST_F(Printing, ThePreviewTurnsPagesGrowsShrinksPrintsAndIsClosedByEsc) {
    GivenAudit(120);
    auto& form = OpenGrid(ViewOrHdrAudt);
    bool looked = false;
    Meanwhile([&] {
        auto& preview = The<frmPreview>();
        EXPECT_EQ(TextOf(preview, "lblPage"), QStringLiteral("Page 1 of 3"));
        EXPECT_FALSE(Enabled(preview, "cmdPrevious"));
        Click(preview, "cmdNext");
        EXPECT_EQ(TextOf(preview, "lblPage"), QStringLiteral("Page 2 of 3"));
        Press(preview, "Page", Qt::Key_End);
        EXPECT_EQ(TextOf(preview, "lblPage"), QStringLiteral("Page 3 of 3"));
        EXPECT_FALSE(Enabled(preview, "cmdNext"));
        Click(preview, "cmdWholePage");
        const double whole = Pages().Scale();
        Press(preview, "Page", Qt::Key_PageUp);
        EXPECT_EQ(Pages().Page(), 2);
        Click(preview, "cmdZoomIn");
        EXPECT_GT(Pages().Scale(), whole);
        Click(preview, "cmdZoomOut");
        EXPECT_DOUBLE_EQ(Pages().Scale(), whole);
        Click(preview, "cmdFitWidth");
        EXPECT_GT(Pages().Scale(), whole);
        // Black on white, whatever the look is.
        const QImage shown = Pages().grab().toImage().convertToFormat(QImage::Format_RGB32);
        const QPoint middle(shown.width() / 2, shown.height() / 2);
        int white = 0, black = 0;
        for (int y = 0; y < middle.y(); ++y) {
            white += qGray(shown.pixel(middle.x(), y)) == 255;
            for (int x = 0; x < shown.width(); ++x) black += qGray(shown.pixel(x, y)) < 90;
        }
        EXPECT_GT(white, middle.y() / 2);
        EXPECT_GT(black, 100);

        Operator_.ExpectPrinterDialog(msg::PrintDataOrHdrAudtTitle, ToPdf({2, 2}));
        Click(preview, "cmdPrint");
        EXPECT_EQ(TextOf(preview, "lblPage"), QStringLiteral("Page 2 of 3"));
        looked = true;
        Press(preview, "Page", Qt::Key_Escape);
    });

    Click(form, "cmdPreview");

    EXPECT_TRUE(looked);
    EXPECT_EQ(IfLoaded<frmPreview>(), nullptr);
    const QStringList lines = ReadPdf(Pdf());
    EXPECT_EQ(lines.count(QStringLiteral("\\f")), 1);
    EXPECT_TRUE(lines.contains(QStringLiteral("Page 2")));
}

TEST_F(Printing, APreviewOfATableThatChangesSaysSoAndGoes) {
    GivenAudit(3);
    auto& form = OpenGrid(ViewOrHdrAudt);
    Meanwhile([&] {
        GivenAudit(5);
        Operator_.Expect(msg::ReportOutdated).With(Icon::Warning);
        The<frmPreview>().findChild<QTimer*>(QStringLiteral("TimerLook"))->start(0); // it looks once a second
    });

    Click(form, "cmdPreview");

    EXPECT_EQ(IfLoaded<frmPreview>(), nullptr);
}

TEST_F(Printing, ALongReportShowsHowFarItIsAndCanBeStopped) {
    auto& form = OpenGrid(ViewOrHdrAudt);
    NumberedPages report(100);
    report.OnPage = [](std::int32_t page) {
        if (page != 28) return;
        auto& window = The<frmPrinting>();
        EXPECT_EQ(TextOf(window, "lblPage"), QStringLiteral("Printing page 26 of 100"));
        Click(window, "cmdCancel");
    };
    Operator_.ExpectPrinterDialog(report.Title(), ToPdf());
    PrintReport(form, report);
    EXPECT_EQ(IfLoaded<frmPrinting>(), nullptr);
    EXPECT_FALSE(Exists(Pdf()));

    report.OnPage = nullptr;
    Operator_.ExpectPrinterDialog(report.Title(), ToPdf());
    PrintReport(form, report);
    EXPECT_EQ(ReadPdf(Pdf()).count(QStringLiteral("\\f")), 100);

    report.OnPage = [](std::int32_t page) {
        if (page == 30) throw RunTimeFailure(57, "LPT1");
    };
    Operator_.ExpectPrinterDialog(report.Title(), ToPdf());
    Operator_.ExpectBeginning(msg::ReportFailed).With(Icon::Stop);
    PrintReport(form, report);
    EXPECT_EQ(IfLoaded<frmPrinting>(), nullptr);
}

TEST_F(Printing, TheQualityCheckPrintsItsRowsWithTitleCompanyAndMomentAndSaysWhenItIsDone) {
    Global.CompanyName = "Acme Hardware";
    ProblemList problems;
    ProblemRow row;
    row.Group = Text::Value(std::string_view("Handheld: Basic Setup: Customers"));
    row.Problem = Text::Value(std::string_view("Field contains blank value"));
    row.Issue = Text::Value(std::string_view("Code field is blank.\nRecords: 1, 2"));
    row.Correction = Text::Value(std::string_view("Fill it."));
    row.Target = Global.DBFPath + "ZUKCUST.DBF";
    row.List = "1, 2";
    problems.Add(row);
    auto& form = The<frmConfigMsg>();
    form.ShowProblems(std::move(problems));
    Settle();
    Operator_.ExpectPrinterDialog(msg::frmConfigMsg, ToPdf());
    Operator_.Expect(msg::PrintingComplete).With(Icon::Information);

    Click(form, "cmdPrint");

    const QString all = ReadPdf(Pdf()).join(QLatin1Char('\n'));
    for (const char* words :
         {"Quality Check", "Acme Hardware", "Printed on 2026-11-15 at 02:05 PM", "Severity",
          "Configurator Group", "Code field is blank.", "Records: 1, 2", "Fill it."})
        EXPECT_TRUE(all.contains(QString::fromLatin1(words))) << words << "\n" << all.toStdString();
}

/// A printer that outlives the report: what it is told goes to a paper of the test's.
class PrinterOnto final : public Printer {
public:
    explicit PrinterOnto(PaperInMemory& paper) : paper_(paper) {}

    void SetFont(const PrintFont& font) override { paper_.SetFont(font); }
    void Print(const Text& line) override { paper_.Print(line); }
    int LinesPerPage() override { return paper_.LinesPerPage(); }
    int PageWidth() const override { return paper_.PageWidth(); }
    int PageHeight() const override { return paper_.PageHeight(); }
    int TextWidth(const Text& text) override { return paper_.TextWidth(text); }
    int TextHeight() override { return paper_.TextHeight(); }
    void PrintAt(int left, int top, const Text& text) override { paper_.PrintAt(left, top, text); }
    void PrintBox(int left, int top, int width, int height) override {
        paper_.PrintBox(left, top, width, height);
    }
    void NewPage() override { paper_.NewPage(); }
    void EndDoc() override { paper_.EndDoc(); }
    Range Pages() const override { return paper_.Pages(); }

private:
    PaperInMemory& paper_;
};

TEST_F(Printing, TheRowsOfTheQualityCheckAreAsHighOnPaperAsOnTheScreenAndTheColumnsHaveTheirTwips) {
    ProblemList problems;
    for (const char* issue : {"Code field is blank.\nRecords: 1, 2", "One.\nTwo.\nThree.\nFour."}) {
        ProblemRow row;
        row.Issue = Text::Value(std::string_view(issue));
        problems.Add(row);
    }
    auto& form = The<frmConfigMsg>();
    form.ShowProblems(std::move(problems));
    Settle();
    const auto& grid = dynamic_cast<GridView&>(Control(form, "FG1"));
    const std::vector<int> heights{grid.rowHeight(0), grid.rowHeight(1)};
    EXPECT_LT(heights[0], heights[1]);
    PaperInMemory paper;
    Operator_.ExpectPrinterDialog(msg::frmConfigMsg, [&] { return std::make_unique<PrinterOnto>(paper); });
    Operator_.Expect(msg::PrintingComplete);

    Click(form, "cmdPrint");

    const auto& boxes = paper.Printed.at(0).Boxes;
    const std::vector<int> widths{1200, 2850, 1425, 2850, 2880};
    ASSERT_EQ(boxes.size(), 3 * widths.size()) << "the headings and two rows";
    for (std::size_t k = 0; k < boxes.size(); ++k) {
        EXPECT_EQ(boxes[k].Width, widths[k % widths.size()]) << k;
        if (k >= widths.size()) {
            EXPECT_EQ(boxes[k].Height, heights[k / widths.size() - 1] * 15) << k;
        }
    }
}

TEST_F(Printing, AReportOf116CharactersFitsTheWidthOfA4AndLetterAndNothingOfAWiderLineIsCut) {
    const QFont font = FontFor({"Courier New", 8});
    EXPECT_TRUE(QFontInfo(font).fixedPitch());
    EXPECT_EQ(QFontMetricsF(font).horizontalAdvance(QLatin1Char('i')),
              QFontMetricsF(font).horizontalAdvance(QLatin1Char('W')));
    for (const auto size : {QPageSize::A4, QPageSize::Letter, QPageSize::A6}) {
        for (const int width : {116, 300}) {
            const QPageLayout paper(QPageSize(size), QPageLayout::Portrait, UsualMargins(),
                                    QPageLayout::Point);
            auto printer = NewPdfPrinter(Pdf(), paper, QStringLiteral("Report"));
            printer->SetFont({"Courier New", 8});
            for (int line = 0; line < printer->LinesPerPage() + 20; ++line)
                printer->Print(Text::Value(
                    std::string_view("<" + std::string(static_cast<std::size_t>(width) - 2, 'x') + ">")));
            const int lines = printer->LinesPerPage() + 20;
            printer->EndDoc();
            const QStringList read = ReadPdf(Pdf());
            EXPECT_EQ(read.filter(QRegularExpression(QStringLiteral("^<x{%1}>$").arg(width - 2))).size(),
                      lines);
        }
    }
}

} // namespace

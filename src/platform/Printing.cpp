#include "platform/Printing.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/SafeFile.h"
#include "platform/Convert.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QIODevice>
#include <QLocale>
#include <QPainter>
#include <QPdfWriter>
#include <QPointer>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QPushButton>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

namespace {

constexpr double TwipsToThePoint = 20;
constexpr double TwipsToTheInch = 1440;
constexpr int PdfResolution = 1200; ///< dots to the inch

int Twips(double points) {
    return static_cast<int>(std::lround(points * TwipsToThePoint));
}

bool IsFixedName(const QString& name) {
    return name.startsWith(QLatin1String("Courier"));
}

/// The family that stands for a fixed font: as wide as Courier New where possible, and of fixed pitch in
/// any case, or the boxes would not stand below each other.
const QString& FixedFamily() {
    static const QString found = [] {
        for (const char* name :
             {"Courier New", "Liberation Mono", "Cousine", "Nimbus Mono PS", "DejaVu Sans Mono"}) {
            QString family = QString::fromLatin1(name);
            if (QFontDatabase::hasFamily(family) && QFontInfo(QFont(family)).fixedPitch()) return family;
        }
        return QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
    }();
    return found;
}

/// Brings what a PDF consists of into a SafeFile. A failure of the disk is kept until it is asked for, since
/// it may not pass through the writer.
class SafeFileDevice final : public QIODevice {
public:
    explicit SafeFileDevice(std::string_view path) : file_(path) { open(WriteOnly); }

    bool isSequential() const override { return true; }

    void Check() const {
        if (failure_) throw RunTimeFailure(*failure_);
    }
    void Commit() {
        Check();
        file_.Commit();
    }

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char* bytes, qint64 size) override {
        try {
            if (!failure_) file_.Write({bytes, static_cast<std::size_t>(size)});
        } catch (const RunTimeFailure& failure) {
            failure_ = failure;
        }
        return failure_ ? -1 : size;
    }

private:
    SafeFile file_;
    std::optional<RunTimeFailure> failure_;
};

/// Pages on a device that takes one behind the other.
class PagedPrinter : public PaintedPages {
public:
    PagedPrinter(std::unique_ptr<QPagedPaintDevice> device, Range pages)
        : PaintedPages(Twips(device->pageLayout().paintRect(QPageLayout::Point).width()),
                       Twips(device->pageLayout().paintRect(QPageLayout::Point).height())),
          device_(std::move(device)),
          pages_(pages) {}

    Range Pages() const override { return pages_; }

    void NewPage() override {
        FinishPage();
        if (!device_->newPage()) Fail();
        Check();
    }

    void EndDoc() override {
        FinishPage();
        if (!Painter().end()) Fail();
        Check();
    }

protected:
    QPainter& Painter() override {
        if (!painter_.isActive()) {
            if (!painter_.begin(device_.get())) Fail();
            painter_.scale(painter_.device()->logicalDpiX() / TwipsToTheInch,
                           painter_.device()->logicalDpiY() / TwipsToTheInch);
        }
        return painter_;
    }

    QPagedPaintDevice& Device() { return *device_; }
    void GiveUp() {
        if (painter_.isActive()) painter_.end();
    }

    virtual void Check() {}
    [[noreturn]] virtual void Fail() = 0;

private:
    std::unique_ptr<QPagedPaintDevice> device_;
    QPainter painter_;
    Range pages_;
};

struct PdfFile {
    explicit PdfFile(std::string_view path) : Device(path) {}
    SafeFileDevice Device;
};

class PdfPrinter final : private PdfFile, public PagedPrinter {
public:
    PdfPrinter(std::string_view path, const QPageLayout& paper, const QString& title, Range pages)
        : PdfFile(path),
          PagedPrinter(WriterOn(PdfFile::Device, paper, title), pages),
          path_(path) {}
    ~PdfPrinter() override { GiveUp(); }

    void EndDoc() override {
        PagedPrinter::EndDoc();
        PdfFile::Device.Commit();
    }

private:
    static std::unique_ptr<QPagedPaintDevice> WriterOn(QIODevice& device, const QPageLayout& paper,
                                                       const QString& title) {
        auto writer = std::make_unique<QPdfWriter>(&device);
        writer->setResolution(PdfResolution);
        writer->setPageLayout(paper);
        writer->setTitle(title);
        writer->setCreator(ToQt(Text(msg::Title)));
        return writer;
    }

    void Check() override { PdfFile::Device.Check(); }
    void Fail() override {
        Check();
        throw RunTimeFailure(57, path_);
    }

    std::string path_;
};

class PaperPrinter final : public PagedPrinter {
public:
    PaperPrinter(std::unique_ptr<QPrinter> printer, Range pages) : PagedPrinter(std::move(printer), pages) {}
    ~PaperPrinter() override {
        if (!ended_) ThePrinter().abort();
        GiveUp();
    }

    void EndDoc() override {
        PagedPrinter::EndDoc();
        ended_ = true;
        Check();
    }

private:
    QPrinter& ThePrinter() { return static_cast<QPrinter&>(Device()); }

    void Check() override {
        if (ThePrinter().printerState() == QPrinter::Error) Fail();
    }
    void Fail() override { throw RunTimeFailure(57, PathFromQt(ThePrinter().printerName())); }

    bool ended_ = false;
};

Printer::Range WantedPages(const QPrinter& printer) {
    Printer::Range range;
    if (printer.printRange() != QPrinter::PageRange || printer.fromPage() == 0) return range;
    range.First = printer.fromPage();
    if (printer.toPage() > 0) range.Last = printer.toPage();
    return range;
}

} // namespace

QFont FontFor(const PrintFont& font) {
    const QString name = QString::fromLatin1(font.Name);
    QFont found(IsFixedName(name) ? FixedFamily() : name);
    found.setStyleHint(IsFixedName(name) ? QFont::TypeWriter : QFont::SansSerif);
    found.setFixedPitch(IsFixedName(name));
    found.setPixelSize(Twips(font.Points));
    found.setBold(font.Bold);
    found.setHintingPreference(QFont::PreferNoHinting);
    // No joined letters: what is looked for in a PDF is found.
    found.setStyleStrategy(QFont::PreferNoShaping);
    return found;
}

QMarginsF UsualMargins() {
    constexpr double QuarterInch = 18;
    return {QuarterInch, QuarterInch, QuarterInch, QuarterInch};
}

QPageLayout UsualPaper() {
    const bool isMetric = QLocale::system().measurementSystem() == QLocale::MetricSystem;
    return {QPageSize(isMetric ? QPageSize::A4 : QPageSize::Letter), QPageLayout::Portrait, UsualMargins(),
            QPageLayout::Point};
}

// ---- pages that are drawn ----

PaintedPages::PaintedPages(int width, int height) : width_(width), height_(height) {}

void PaintedPages::SetFont(const PrintFont& font) {
    font_ = FontFor(font);
}

void PaintedPages::Print(const Text& line) {
    lines_.push_back({ToQt(line), font_});
}

int PaintedPages::LinesPerPage() {
    return static_cast<int>(height_ / QFontMetricsF(font_).lineSpacing());
}

int PaintedPages::TextWidth(const Text& text) {
    return static_cast<int>(std::ceil(QFontMetricsF(font_).horizontalAdvance(ToQt(text))));
}

int PaintedPages::TextHeight() {
    return static_cast<int>(std::ceil(QFontMetricsF(font_).lineSpacing()));
}

void PaintedPages::PrintAt(int left, int top, const Text& text) {
    QPainter& painter = Painter();
    painter.setPen(Qt::black);
    painter.setFont(font_);
    painter.drawText(QPointF(left, top + QFontMetricsF(font_).ascent()), ToQt(text));
}

void PaintedPages::PrintBox(int left, int top, int width, int height) {
    constexpr double LineWidth = 8;
    QPainter& painter = Painter();
    painter.setPen(QPen(Qt::black, LineWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRectF(left, top, width, height));
}

void PaintedPages::FinishPage() {
    QPainter& painter = Painter();
    if (lines_.empty()) return;
    // Of lines in a font of fixed pitch the longest is the widest.
    const auto longest = std::max_element(lines_.begin(), lines_.end(), [](const Line& a, const Line& b) {
        return a.Words.size() < b.Words.size();
    });
    const double widest = QFontMetricsF(longest->Font).horizontalAdvance(longest->Words);
    const QFontMetricsF metrics(lines_.back().Font);
    const double height = metrics.lineSpacing() * static_cast<double>(lines_.size());
    const double scale = std::min({1.0, width_ / std::max(1.0, widest), height_ / height});
    painter.save();
    painter.scale(scale, scale);
    painter.setPen(Qt::black);
    double base = metrics.ascent();
    for (const Line& line : lines_) {
        painter.setFont(line.Font);
        painter.drawText(QPointF(0, base), line.Words);
        base += metrics.lineSpacing();
    }
    painter.restore();
    lines_.clear();
}

ShownPage::ShownPage(QPainter& painter, const QPageLayout& paper)
    : PaintedPages(Twips(paper.paintRect(QPageLayout::Point).width()),
                   Twips(paper.paintRect(QPageLayout::Point).height())),
      painter_(painter) {}

// ---- where they go ----

std::unique_ptr<Printer> NewPdfPrinter(std::string_view path, const QPageLayout& paper, const QString& title,
                                       Printer::Range pages) {
    return std::make_unique<PdfPrinter>(path, paper, title, pages);
}

std::unique_ptr<Printer> AskForPrinter(const QString& document) {
    auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    printer->setDocName(document);
    printer->setCreator(ToQt(Text(msg::Title)));
    printer->setPageMargins(UsualMargins(), QPageLayout::Point);
    // Without a printer only a file is left, and it needs a name.
    if (QPrinterInfo::availablePrinterNames().isEmpty())
        printer->setOutputFileName(PathToQt(Global.DataOutPath) + document + QStringLiteral(".pdf"));
    const QPointer<QPrintDialog> dialog = new QPrintDialog(printer.get(), QApplication::activeWindow());
    dialog->setObjectName(QStringLiteral("PrintDialog"));
    dialog->setOptions(QAbstractPrintDialog::PrintToFile | QAbstractPrintDialog::PrintPageRange |
                       QAbstractPrintDialog::PrintShowPageSize | QAbstractPrintDialog::PrintCollateCopies);
    // The dialog is the platform's; where it is made of Qt's own parts its buttons get names, and a list of
    // pages, which a file would not have, goes.
    for (const char* name : {"pagesRadioButton", "pagesLineEdit"}) {
        if (auto* list = dialog->findChild<QWidget*>(QString::fromLatin1(name))) list->hide();
    }
    if (auto* buttons = dialog->findChild<QDialogButtonBox*>()) {
        if (auto* ok = buttons->button(QDialogButtonBox::Ok)) ok->setObjectName(QStringLiteral("Ok"));
        if (auto* cancel = buttons->button(QDialogButtonBox::Cancel))
            cancel->setObjectName(QStringLiteral("Cancel"));
    }
    const bool isChosen = dialog->exec() == QDialog::Accepted && dialog;
    delete dialog;
    if (!isChosen) return nullptr;
    const Printer::Range pages = WantedPages(*printer);
    const QString file = printer->outputFileName();
    if (!file.isEmpty()) return NewPdfPrinter(PathFromQt(file), printer->pageLayout(), document, pages);
    return std::make_unique<PaperPrinter>(std::move(printer), pages);
}

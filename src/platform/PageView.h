#pragma once

#include <QAbstractScrollArea>
#include <QPageLayout>
#include <QPixmap>

#include <cstdint>
#include <functional>

class Printer;

/// Shows one page of a document at a time, on paper that is white in either look.
///
/// The arrow keys and Page Up and Down move over the page and on to the next one, Home and End go
/// to the first and last, + and - and the wheel with Ctrl make it larger and smaller. A page is drawn once
/// for each size in which it is shown.
class PageView final : public QAbstractScrollArea {
    Q_OBJECT

public:
    explicit PageView(QWidget* parent = nullptr);

    /// How large a page is shown.
    enum class Fit { Width, Page, Scale };

    using Drawer = std::function<void(std::int32_t page, Printer& printer)>;

    /// Takes a document of so many pages, and shows the first of them.
    void SetPages(const QPageLayout& paper, std::int32_t count, Drawer draw);

    std::int32_t Page() const { return page_; } ///< from 1
    std::int32_t PageCount() const { return count_; }
    /// A number outside the document is the nearest inside it. The view is at the page's top.
    void TurnTo(std::int32_t page);

    void SetFit(Fit fit);
    void ZoomIn() { ZoomBy(ZoomStep); }
    void ZoomOut() { ZoomBy(1 / ZoomStep); }
    /// The size of what is shown against that on paper.
    double Scale() const;

    QSize sizeHint() const override;

signals:
    /// Another page, or another size of it.
    void Turned();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    static constexpr double ZoomStep = 1.25;

    void ZoomBy(double factor);
    /// Over the page by a step, or on to the next one where its end is in sight.
    void Move(int direction, bool wholeScreen);
    void LayOut();
    QSizeF PaperInPixels() const; ///< at scale 1
    QPixmap Draw(QSize pixels, double ratio);

    QPageLayout paper_;
    Drawer draw_;
    std::int32_t page_ = 1, count_ = 0;
    Fit fit_ = Fit::Width;
    double scale_ = 1;
    QPixmap drawn_;
    std::int32_t drawnPage_ = 0;
};

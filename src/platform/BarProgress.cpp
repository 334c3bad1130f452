#include "platform/BarProgress.h"

#include "platform/Convert.h"

#include <QLabel>
#include <QProgressBar>

#include <algorithm>

namespace {

constexpr qint64 PaintEvery = 50; // milliseconds
constexpr int Steps = 1000;       // of the bar, whatever is counted

} // namespace

BarProgress::BarProgress(QLabel* label, QProgressBar& bar) : label_(label), bar_(&bar) {}

void BarProgress::Begin(const Text& label, std::int64_t maximum) {
    if (!bar_) return;
    maximum_ = std::max<std::int64_t>(1, maximum);
    if (label_) label_->setText(ToQt(label));
    bar_->setRange(0, Steps);
    bar_->setValue(0);
    Repaint();
}

void BarProgress::Show(std::int64_t value) {
    if (!bar_) return;
    const auto shown = std::clamp<std::int64_t>(value, 0, maximum_);
    const bool last = shown == maximum_;
    if (!last && lastPaint_.isValid() && lastPaint_.elapsed() < PaintEvery) return;
    bar_->setValue(static_cast<int>(shown * Steps / maximum_));
    Repaint();
}

void BarProgress::Repaint() {
    bar_->window()->repaint();
    lastPaint_.start();
}

#pragma once

#include "core/Progress.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QWidget>

class QLabel;
class QProgressBar;

/// A progress that is a label and a bar of a form. It repaints that form, at most 20 times a
/// second, and handles no other event.
class BarProgress final : public Progress {
public:
    /// `label` may be missing: then only the bar moves.
    BarProgress(QLabel* label, QProgressBar& bar);

    void Begin(const Text& label, std::int64_t maximum) override;
    void Show(std::int64_t value) override;

private:
    void Repaint();

    QPointer<QLabel> label_;
    QPointer<QProgressBar> bar_;
    QElapsedTimer lastPaint_;
    std::int64_t maximum_ = 1;
};

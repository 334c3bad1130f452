#pragma once

#include "core/Globals.h"
#include "platform/BarProgress.h"
#include "platform/Form.h"
#include "ui_frmProgress.h"

#include <cstdint>
#include <optional>

/// Shows the course of long work. When a flag is set as it loads, the work is its own: it records the
/// PC totals of an operation, that of the first flag in their order, and goes. Else it stands for the
/// work of a FormProgress.
class frmProgress final : public Form, private Ui::frmProgress {
    Q_OBJECT

public:
    frmProgress() { setupUi(this); }

    /// Shows itself, with the time to paint.
    void Stand();

    QLabel* Label() const { return lblProgress; }
    QProgressBar& Bar() const { return *pgbProgress; }

protected:
    void Form_Load() override;
    void reject() override {} // the work is not to be given up
};

/// A progress on `frmProgress`, which shows with the first Begin and goes with Finish.
class FormProgress final : public Progress {
public:
    FormProgress() = default;
    ~FormProgress() override { Finish(); }

    void Finish();

    void Begin(const Text& label, std::int64_t maximum) override;
    void Show(std::int64_t value) override;

private:
    std::optional<BarProgress> bar_;
};

/// Sets a flag and loads the form. RunTimeFailure of CalcPCTotals.
void RecordTotals(ProgressFlag flag);

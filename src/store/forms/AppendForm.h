#pragma once

#include "core/UploadRun.h"
#include "maintenance/SafetyCopies.h"
#include "platform/Form.h"

#include <initializer_list>
#include <vector>

class QLabel;
class QProgressBar;

/// What the screens of a merge share: as one loads, the old records of its tables are written out as text;
/// once it has been painted they are read back behind what the handheld has sent, and it goes. Which of its
/// tables are merged says the upload's run in Global. The work is not to be given up half way.
class AppendForm : public Form {
    Q_OBJECT

public:
    void reject() override {}

protected:
    /// A table, and what of a run says that it is merged.
    struct Step {
        bool UploadRun::*IsWanted;
        const MergedTable& Table;
    };

    explicit AppendForm(std::initializer_list<Step> steps) : steps_(steps) {}

    /// Binds the controls that every such screen has under the same names. After setupUi.
    void Bind();

    void Form_Load() override;
    void Form_GotFocus() override;
    void closeEvent(QCloseEvent* event) override;

private:
    std::vector<Step> steps_;
    std::vector<TableMerge> merges_;
    bool reading_ = false;
    QLabel* lblProgress = nullptr;
    QProgressBar* pgbProgress = nullptr;
};

#pragma once

#include "core/Text.h"
#include "hotsync/SessionProgress.h"
#include "platform/Form.h"
#include "ui_frmHSProgress.h"

#include <QElapsedTimer>
#include <QTimer>

#include <functional>
#include <optional>
#include <string>

/// Shows how a HotSync gets on, or that a handheld is awaited. It repaints at most 20 times a second.
class frmHSProgress final : public Form, private Ui::frmHSProgress {
    Q_OBJECT

public:
    frmHSProgress();

    /// Waits for a handheld under this caption; an empty one is the usual one.
    void ShowWaiting(const Text& caption);
    void ShowUser(const Text& user);
    void ShowStep(const Text& what, std::int32_t done, std::int32_t of);

    /// `cmdCancel` was pressed, or the window closed. It can be pressed once, until the next ShowUser.
    std::function<void()> Cancelled;

private slots:
    void cmdCancel_Click();

protected:
    void Form_Load() override;
    void closeEvent(QCloseEvent* event) override;

private:
    void Paint();

    QTimer nextPaint_;
    QElapsedTimer lastPaint_;
    Text what_; ///< not on the screen yet, as the rest
    int bar_ = 0;
};

/// The progress of the HotSync Manager's sessions on `frmHSProgress`, which it opens and closes.
class HotSyncProgress final : public SessionProgress {
public:
    HotSyncProgress() = default;
    HotSyncProgress(const HotSyncProgress&) = delete;
    HotSyncProgress& operator=(const HotSyncProgress&) = delete;
    ~HotSyncProgress() override { CloseWindow(); }

    /// Brings the window up until a session has been held: a program waits for the next handheld.
    void Await(const Text& caption);

    /// The program waits no longer. A session that runs goes on.
    void StopAwaiting();

    /// The operator does not want to wait any longer; nothing is awaited by then.
    std::function<void()> AwaitCancelled;

    void Begun(std::string_view user) override;
    void Step(Way way, std::string_view what, std::int32_t done, std::int32_t of) override;
    void Ended(std::string_view how, bool well) override;
    bool CancelAsked() override { return cancelAsked_; }

private:
    frmHSProgress& Window();
    void Cancel();
    static void CloseWindow();

    std::optional<Text> awaited_; ///< the caption
    bool inSession_ = false;
    bool cancelAsked_ = false;
};

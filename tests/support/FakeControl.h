#pragma once

#include "support/IdleControl.h"

#include "core/Failure.h"
#include "core/TextCompare.h"
#include "sync/SessionStatus.h"

#include <algorithm>
#include <deque>
#include <functional>

/// A control with a HotSync Manager that a test plays: it raises statuses, keeps the queue, and runs it one
/// transfer at a time.
class FakeControl : public IdleControl {
public:
    std::string User;
    std::int32_t Creator = 0x5A554B32; ///< "ZUK2"

    /// What a transfer does with the table at `path`; false when it fails. None: every one is well and moves
    /// nothing.
    std::function<bool(bool upload, const std::string& path)> Transfer;

    /// Whether the control says how transfers ended, as a manager that has died does not.
    bool Tells = true;

    std::string UserName() const override { return User; }
    std::int32_t CreatorID() const override { return Creator; }
    void QueueUpload(std::string_view path, const TransferSettings& settings) override {
        Queue(true, path, settings);
        IdleControl::QueueUpload(path, settings);
    }
    void QueueDownload(std::string_view path, const TransferSettings& settings) override {
        Queue(false, path, settings);
        IdleControl::QueueDownload(path, settings);
    }
    bool EndedWell(std::string_view path) const override {
        return Tells && std::any_of(ended_.begin(), ended_.end(),
                                    [path](const std::string& each) { return SameText(each, path); });
    }

    void Raise(std::int32_t status) {
        if (status == SessionBegun) {
            ended_.clear();
            waiting_.clear();
            Queued.clear();
        }
        raising_ = true;
        try {
            HotSyncStatus(status);
        } catch (...) {
            raising_ = false;
            throw;
        }
        raising_ = false;
    }

    /// Runs the next transfer of the queue and says that it has finished. False when there is none.
    bool RunNext() {
        if (!Move()) return false;
        Raise(OperationFinished);
        return true;
    }

    /// Runs the next transfer, and nothing says that it has finished.
    bool Move() {
        if (waiting_.empty()) return false;
        const auto [upload, path] = waiting_.front();
        waiting_.pop_front();
        if (!Transfer || Transfer(upload, path)) ended_.push_back(path);
        return true;
    }

    /// A session of a user's handheld; it is cut after so many transfers.
    void Session(const std::string& user, int transfers = 1000) {
        User = user;
        Raise(SessionBegun);
        while (transfers-- > 0 && RunNext()) {
        }
        waiting_.clear();
        Raise(SessionEnded);
    }

    std::size_t Waiting() const { return waiting_.size(); }

private:
    void Queue(bool upload, std::string_view path, const TransferSettings& settings) {
        if (!raising_ || settings != TransferSettings{}) throw RunTimeFailure(5, std::string(path));
        waiting_.emplace_back(upload, path);
    }

    bool raising_ = false;
    std::deque<std::pair<bool, std::string>> waiting_;
    std::vector<std::string> ended_;
};

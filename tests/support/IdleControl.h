#pragma once

#include "sync/SFrmAX40.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// A control with no HotSync Manager behind it, which keeps what it is given: for the controls of tests.
class IdleControl : public SFrmAX40 {
public:
    explicit IdleControl(std::vector<std::string> users = {}) : Users(std::move(users)) {}

    bool Enabled() const override { return enabled_; }
    void SetEnabled(bool enabled) override { enabled_ = enabled; }
    std::string UserName() const override { return {}; }
    std::int32_t UserID() const override { return 0; }
    std::int32_t CreatorID() const override { return 0; }
    std::string HotSyncUser(int index) const override {
        const auto place = static_cast<std::size_t>(index);
        return place < Users.size() ? Users[place] : std::string();
    }
    void QueueUpload(std::string_view path, const TransferSettings&) override {
        Queued.push_back("UPLOAD " + std::string(path));
    }
    void QueueDownload(std::string_view path, const TransferSettings&) override {
        Queued.push_back("DOWNLOAD " + std::string(path));
    }
    bool EndedWell(std::string_view) const override { return false; }
    void AddInstall(std::string_view file, std::string_view user) override {
        Installs.emplace_back(file, user);
    }

    std::vector<std::string> Users;
    std::vector<std::string> Queued;
    std::vector<std::pair<std::string, std::string>> Installs; ///< file and user

private:
    bool enabled_ = false;
};

#pragma once

#include "core/Globals.h"
#include "help/HTMLHelp.h"

#include <string>
#include <utility>
#include <vector>

/// The help of the session for as long as it lives: shows nothing, and notes which topics were opened.
class TopicList final : public HelpViewer {
public:
    TopicList() { Global.TheHelp = &help_; }
    TopicList(const TopicList&) = delete;
    TopicList& operator=(const TopicList&) = delete;
    ~TopicList() override { Global.TheHelp = nullptr; }

    /// Those since it was asked last.
    std::vector<std::string> Opened() { return std::exchange(topics_, {}); }

    void SetFile(const std::string&) override {}
    void ShowTopic(const std::string& topic) override { topics_.push_back(topic); }
    void ShowPane(HelpPane) override {}
    void ShowNotice(const Text&, const Text&) override {}
    void ShowKeyword(const std::string&) override {}
    std::vector<std::string> TopicsOfKeyword(const std::string&) override { return {}; }
    std::vector<std::string> TopicsOfIdentifier(const std::string&) override { return {}; }
    void SetOnTop(bool) override {}
    void Close() override {}
    std::uintptr_t Handle() const override { return 0; }
    void ShowPopup(const PopupDefinition&, std::optional<ScreenPlace>) override {}
    void BeginWhatsThis() override {}

private:
    std::vector<std::string> topics_;
    HTMLHelp help_{*this};
};

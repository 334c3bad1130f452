#pragma once

#include "help/HTMLHelp.h"

#include <memory>

class HelpFile;
class frmHelp;

/// The help of a program with a screen: the window `frmHelp` and the pop-ups. Made once, before any form is;
/// it is `Global.TheHelp` as long as it lives.
class QtHelp final : public HelpViewer {
public:
    QtHelp();
    ~QtHelp() override;
    QtHelp(const QtHelp&) = delete;
    QtHelp& operator=(const QtHelp&) = delete;

    HTMLHelp& Help() { return help_; }

    void SetFile(const std::string& path) override;
    void ShowTopic(const std::string& topic) override;
    void ShowPane(HelpPane pane) override;
    void ShowNotice(const Text& title, const Text& words) override;
    void ShowKeyword(const std::string& keyword) override;
    std::vector<std::string> TopicsOfKeyword(const std::string& keyword) override;
    std::vector<std::string> TopicsOfIdentifier(const std::string& identifier) override;
    void SetOnTop(bool onTop) override { onTop_ = onTop; }
    void Close() override;
    std::uintptr_t Handle() const override;
    void ShowPopup(const PopupDefinition& popup, std::optional<ScreenPlace> place) override;
    void BeginWhatsThis() override;

private:
    HelpFile& File();
    frmHelp& Opened();

    HTMLHelp help_;
    std::string path_;
    std::unique_ptr<HelpFile> file_;
    bool onTop_ = false;
};

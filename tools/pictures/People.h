#pragma once

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "hotsync/forms/ManagerDesk.h"
#include "platform/Convert.h"
#include "platform/Printing.h"
#include "sync/SFrmAX40.h"

#include <cstdio>
#include <utility>

/// Nobody sits before these screens: each question gets its harmless answer.
class Nobody final : public Operator {
public:
    Answer MsgBox(const Text&, Icon, Buttons buttons) override {
        return buttons == Buttons::Ok ? Answer::Ok : RunsActivities ? Answer::Yes : Answer::No;
    }
    std::optional<std::string> InputBox(const Text&, const std::string&) override { return std::nullopt; }
    std::optional<std::string> OpenFile(const FileQuestion&) override { return std::nullopt; }
    bool Ask(const Question&) override { return false; }
    std::unique_ptr<Printer> PrinterDialog(const Text& document) override {
        if (PrintsTo.empty()) return nullptr;
        std::printf("%s\n", PrintsTo.c_str());
        return NewPdfPrinter(PrintsTo, UsualPaper(), ToQt(document));
    }
    bool OpenLink(std::string_view) override { return false; }
    void Beep() override {}

    bool RunsActivities = false;
    std::string PrintsTo; ///< path of a PDF file, instead of a dialog that is given up
};

/// A HotSync Manager with two users, and no handheld.
class TwoUsers final : public SFrmAX40 {
public:
    bool Enabled() const override { return enabled_; }
    void SetEnabled(bool enabled) override { enabled_ = enabled; }
    std::string UserName() const override { return {}; }
    std::int32_t UserID() const override { return 0; }
    std::int32_t CreatorID() const override { return 0; }
    std::string HotSyncUser(int index) const override {
        return index == 0 ? "Anna Berg" : index == 1 ? "Ben Okafor" : "";
    }
    // Nothing is synchronised for a picture.
    void QueueUpload(std::string_view, const TransferSettings&) override { throw RunTimeFailure(5); }
    void QueueDownload(std::string_view, const TransferSettings&) override { throw RunTimeFailure(5); }
    bool EndedWell(std::string_view) const override { return false; }
    void AddInstall(std::string_view, std::string_view) override { throw RunTimeFailure(5); }

private:
    bool enabled_ = false;
};

/// A HotSync Manager with users and a log in a folder of its own, and no lines to anybody.
class SomeManager final : public ManagerDesk {
public:
    explicit SomeManager(const std::string& folder) : folder_(folder), users_(folder), log_(folder) {}

    HotSyncUsers& Users() override { return users_; }
    SessionLog& Log() override { return log_; }
    std::optional<std::uint32_t> UserInSession() const override { return std::nullopt; }
    ListeningState Listening() const override { return State; }
    const ManagerSettings& Settings() const override { return settings_; }
    void TakeSettings(const ManagerSettings& settings) override { settings_ = settings; }
    void OpenStandIn(const HotSyncUser&) override {}
    void End() override {}

    /// What an office has after a morning.
    void Fill() {
        const auto before = std::exchange(Global.Clock, [] { return DateTime{2026, 11, 21, 8, 30, 5}; });
        // A new user gets a random id, and each picture would be another one.
        WriteWholeFile(AddBackslash(folder_) + "Users.txt",
                       "1804289383\tAnna Berg\t2026-11-21 08:31:40\tcomplete\n"
                       "846930886\tBen Okafor\t2026-11-20 17:02:11\tincomplete\n"
                       "1681692777\tChlo\xC3\xA9 Martin\tnever\tcomplete\n");
        users_.Load();
        log_.Write("Waiting for handhelds at 192.168.1.20, port 14238");
        log_.Write("Anna Berg: session from 192.168.1.57");
        log_.Write("Anna Berg: ZUKCUST to the handheld, 1204 rows");
        log_.Write("Anna Berg: ended well");
        Global.Clock = before;
    }

    ListeningState State{"192.168.1.20", 14238, {}};

private:
    std::string folder_;
    HotSyncUsers users_;
    SessionLog log_;
    ManagerSettings settings_;
};

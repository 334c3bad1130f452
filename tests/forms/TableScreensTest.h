#pragma once

#include "core/Messages.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "forms/HotSyncTest.h"
#include "support/IdleControl.h"
#include "sync/SessionStatus.h"
#include "sync/Status.h"

#include <QTimer>

#include <functional>
#include <string>
#include <vector>

/// An office with a HotSync Manager and one handheld, whose tables lie in a folder. Somebody presses HotSync
/// on it as soon as a screen waits for that.
class TableScreens : public HotSyncTest {
protected:
    TableScreens() {
        GivenOffice();
        Manager.Listen();
        Global.MakeSFrmAX40 = [this] { return std::make_unique<Control>(*this); };
    }
    ~TableScreens() override { FormRegistry::Instance().Clear(); }

    class Control final : public IdleControl {
    public:
        explicit Control(TableScreens& test) : test_(test) { test_.controls_.push_back(this); }
        ~Control() override { std::erase(test_.controls_, this); }

        std::string UserName() const override { return test_.User; }
        bool EndedWell(std::string_view path) const override {
            return std::find(Well.begin(), Well.end(), path) != Well.end();
        }

        std::vector<std::string> Well;

    private:
        TableScreens& test_;
    };

    std::string Handheld() const { return Folder() + "handheld/"; }

    /// Gives the handheld a table; the office's has no records afterwards.
    void GivenOnHandheld(const std::string& table, const std::vector<std::string>& lines) {
        GivenRows(table, lines);
        std::filesystem::create_directories(Handheld());
        const std::string file = table + ".DBF";
        CopyOver(Global.DBFPath + file, Handheld() + file);
        GivenRows(table, {lines.front()});
    }

    /// The handheld's session: what was queued is transferred in its order, after each a status. It breaks
    /// off before the transfer `cutAt`, from 0.
    void Session(std::size_t cutAt = 1000) {
        Raise(SessionBegun);
        for (std::size_t done = 0;; ++done) {
            Control* control = Enabled();
            if (!control || done >= control->Queued.size() || done >= cutAt) break;
            Transfer(*control, control->Queued[done]);
            Raise(OperationFinished);
        }
        Raise(SessionEnded);
    }

    /// Once a screen waits for a handheld: does something, and lets the manager say how the wait ends.
    void WhenItWaits(std::function<void()> deed, const std::string& end = "DONE") {
        WhenEver([this] { return Waits() > handled_; },
                 [this, deed = std::move(deed), end] {
                     ++handled_;
                     deed();
                     Manager.Say({"FLUSHED", {end}});
                 });
    }

    /// Does something once as soon as a condition holds.
    static void WhenEver(std::function<bool()> condition, std::function<void()> deed) {
        auto* timer = new QTimer(qApp);
        QObject::connect(timer, &QTimer::timeout, timer, [timer, condition, deed] {
            if (!condition()) return;
            timer->stop();
            timer->deleteLater();
            deed();
        });
        timer->start(1);
    }

    void Raise(std::int32_t status) {
        if (Control* control = Enabled()) control->HotSyncStatus(status);
    }

    /// The one control that answers.
    Control* Enabled() {
        Control* enabled = nullptr;
        for (Control* control : controls_) {
            if (!control->Enabled()) continue;
            EXPECT_EQ(enabled, nullptr) << "two controls answer one handheld";
            enabled = control;
        }
        return enabled;
    }

    int Waits() const {
        const auto heard = Manager.Heard();
        return static_cast<int>(std::count_if(
            heard.begin(), heard.end(), [](const std::string& line) { return line.starts_with("FLUSH\t"); }));
    }

    static void Tick(FormBehaviour& form, const char* box, bool on = true) {
        dynamic_cast<QAbstractButton&>(FormTest::Control(form, box)).setChecked(on);
    }
    static bool Ticked(FormBehaviour& form, const char* box) {
        return dynamic_cast<QAbstractButton&>(FormTest::Control(form, box)).isChecked();
    }

    static std::string Name(const std::string& queued) {
        return queued.substr(0, queued.find(' ')) + " " +
               std::string(FileNameOf(std::string_view(queued).substr(queued.find(' ') + 1)));
    }

    /// The transfers that the sessions have asked for, without folders.
    std::vector<std::string> Queued() const {
        std::vector<std::string> names;
        for (const std::string& each : queued_) names.push_back(Name(each));
        return names;
    }

    std::string User = "Anna";
    std::vector<std::string> queued_; ///< with their paths

private:
    void Transfer(Control& control, const std::string& queued) {
        queued_.push_back(queued);
        const std::string path = queued.substr(queued.find(' ') + 1);
        if (queued.starts_with("UPLOAD")) {
            const std::string from = Handheld() + std::string(FileNameOf(path));
            if (!FileExists(from)) return;
            CopyOver(from, path);
        }
        control.Well.push_back(path);
    }

    std::vector<Control*> controls_;
    int handled_ = 0;
};

#include "platform/HotSyncControl.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "platform/Convert.h"
#include "platform/Form.h"
#include "platform/HotSyncManager.h"
#include "platform/ManagerLine.h"
#include "sync/InstallFolder.h"

#include <QFileInfo>
#include <QTimer>

#include <algorithm>
#include <charconv>
#include <deque>
#include <exception>
#include <optional>
#include <utility>
#include <vector>

namespace {

constexpr int LookEvery = 1000; // milliseconds
constexpr int LookAtOnce = 5;   // where pauses are instant

/// The manager sends one status and waits; a side that heaps them up is no manager.
constexpr std::size_t MostWaiting = 16;

/// A status as the manager tells it.
struct Status {
    std::int32_t Value = 0;
    std::string User; ///< code page 1252
    std::uint32_t UserID = 0;
    std::int32_t Creator = 0;
    std::string Path;       ///< of the transfer that has ended, where one has
    bool EndedWell = false; ///< and how
    int Connection = 0;     ///< on which HANDLED is awaited; 0 when nobody awaits it
};

/// Four characters as one number, the first the highest byte.
std::optional<std::int32_t> CreatorNumber(const std::string& utf8) {
    const std::string creator = FromQt(QString::fromStdString(utf8));
    if (creator.size() != 4) return std::nullopt;
    std::uint32_t number = 0;
    for (const char c : creator) number = (number << 8) | static_cast<unsigned char>(c);
    return static_cast<std::int32_t>(number);
}

std::optional<Status> ReadStatus(const ManagerMessage& message) {
    Status status;
    const std::string& value = message.TextAt(0);
    const char* const end = value.data() + value.size();
    const auto read = std::from_chars(value.data(), end, status.Value);
    const auto creator = CreatorNumber(message.TextAt(3));
    if (read.ec != std::errc() || read.ptr != end || !creator || !ReadId(message.TextAt(2), status.UserID))
        return std::nullopt;
    status.User = FromQt(QString::fromStdString(message.TextAt(1)));
    status.Creator = *creator;
    status.Path = message.TextAt(4);
    status.EndedWell = message.TextAt(5) == "WELL";
    return status;
}

/// What a transfer is queued with: the full path of a table.
std::string TablePath(std::string_view path, const TransferSettings& settings) {
    const std::string_view name = FileNameOf(path);
    const std::string_view extension = ExtensionOf(name);
    if (!SameText(extension, ".dbf") || name.size() == extension.size())
        throw RunTimeFailure(5, std::string(path));
    if (settings != TransferSettings{}) throw RunTimeFailure(5, settings.Converter);
    if (QFileInfo(PathToQt(path)).isAbsolute()) return std::string(path);
    return PathFromQt(QFileInfo(PathToQt(path)).absoluteFilePath());
}

/// What there is of a control behind its interface. It outlives the control while a handler runs.
class ControlState final : public QObject {
public:
    explicit ControlState(SFrmAX40& control) : control_(&control) {
        line_.Received = [this](const ManagerMessage& message) { Note(message); };
        line_.Lost = [this] { NoteLoss(); };
        connect(&look_, &QTimer::timeout, this, [this] { LookForManager(); });
        look_.setInterval(Global.InstantPauses ? LookAtOnce : LookEvery);
    }

    /// The control goes. A handler that runs still gets its HANDLED.
    void Release() {
        control_ = nullptr;
        SetEnabled(false);
        if (!handling_) delete this;
    }

    bool Enabled() const { return enabled_; }

    void SetEnabled(bool enabled) {
        if (enabled == enabled_) return;
        enabled_ = enabled;
        if (!enabled) return Disable();
        if (line_.IsOpen())
            SendEnable();
        else
            LookForManager();
        line_.AwaitUsers();
        look_.start();
    }

    std::string UserAt(std::size_t place) {
        if (!line_.IsOpen()) LookForManager();
        line_.AwaitUsers();
        return place < line_.Users().size() ? line_.Users()[place].Name : std::string();
    }

    const Status& Last() const { return last_; }

    bool EndedWell(std::string_view path) const {
        return std::any_of(ended_.begin(), ended_.end(),
                           [path](const std::string& each) { return SameText(each, path); });
    }

    void Queue(const char* verb, std::string_view path, const TransferSettings& settings) {
        if (!handling_) throw RunTimeFailure(5, std::string(path));
        line_.Send({verb, {TablePath(path, settings)}});
    }

private:
    void LookForManager() {
        if (line_.IsOpen()) return;
        const std::string folder = HotSyncManagerFolder();
        if (folder.empty() || !line_.Open(PathToQt(folder))) return;
        ++connection_;
        if (enabled_) SendEnable();
    }

    void SendEnable() { line_.Send({"ENABLE", {TransferSettings().Creator}}); }

    void Disable() {
        look_.stop();
        // Nobody is called for what has come already, and the manager does not wait for it.
        for (const Status& status : std::exchange(waiting_, {})) SendHandled(status);
        inSession_ = false;
        line_.Send({"DISABLE", {}});
    }

    void SendHandled(const Status& status) {
        if (status.Connection == connection_) line_.Send({"HANDLED", {}});
    }

    void Note(const ManagerMessage& message) {
        if (message.Verb == "REFUSED")
            TraceEvent("SFrmAX40:Refused " + message.TextAt(0) + ": " + message.TextAt(1));
        if (message.Verb != "STATUS") return;
        std::optional<Status> status = ReadStatus(message);
        if (!status || waiting_.size() == MostWaiting) return line_.Refuse();
        status->Connection = connection_;
        if (!enabled_) return SendHandled(*status);
        if (status->Value == SessionBegun) inSession_ = true;
        if (status->Value == SessionEnded) inSession_ = false;
        newest_ = *status;
        Await(std::move(*status));
    }

    void NoteLoss() {
        if (!std::exchange(inSession_, false)) return;
        Status end = newest_;
        end.Value = SessionEnded;
        end.Connection = 0;
        Await(std::move(end));
    }

    void Await(Status status) {
        waiting_.push_back(std::move(status));
        CallLater();
    }

    void CallLater() {
        QMetaObject::invokeMethod(
            this, [this] { CallHandler(); }, Qt::QueuedConnection);
    }

    void CallHandler() {
        if (handling_ || waiting_.empty()) return;
        last_ = std::move(waiting_.front());
        waiting_.pop_front();
        if (last_.Value == SessionBegun) ended_.clear();
        if (last_.Value == OperationFinished && last_.EndedWell) ended_.push_back(last_.Path);
        Global.LastSessionUser = last_.User;
        Global.LastSessionUserID = last_.UserID;
        const Status status = last_;
        // Copies: the handler may destroy the control.
        const auto handler = control_->HotSyncStatus;
        handling_ = true;
        std::exception_ptr thrown;
        try {
            if (handler) handler(status.Value);
        } catch (const std::exception&) {
            thrown = std::current_exception();
        }
        handling_ = false;
        SendHandled(status);
        if (!control_)
            deleteLater();
        else if (!waiting_.empty())
            CallLater();
        if (thrown) Show(thrown);
    }

    static void Show(const std::exception_ptr& thrown) {
        try {
            std::rethrow_exception(thrown);
        } catch (const std::exception& failure) {
            FailUnexpectedly(failure);
        }
    }

    SFrmAX40* control_; ///< nothing once it has gone
    ManagerLine line_;
    QTimer look_;
    std::deque<Status> waiting_;
    Status last_;                    ///< the one that is handled, or was last
    std::vector<std::string> ended_; ///< paths of the transfers of this session that have ended well
    Status newest_;                  ///< the one that has come last
    int connection_ = 0;
    bool enabled_ = false;
    bool handling_ = false;
    bool inSession_ = false;
};

class ManagerControl final : public SFrmAX40 {
public:
    ManagerControl() : state_(new ControlState(*this)) {}
    ~ManagerControl() override { state_->Release(); }

    bool Enabled() const override { return state_->Enabled(); }
    void SetEnabled(bool enabled) override { state_->SetEnabled(enabled); }
    std::string UserName() const override { return state_->Last().User; }
    std::int32_t UserID() const override { return static_cast<std::int32_t>(state_->Last().UserID); }
    std::int32_t CreatorID() const override { return state_->Last().Creator; }
    std::string HotSyncUser(int index) const override {
        return index < 0 ? std::string() : state_->UserAt(static_cast<std::size_t>(index));
    }
    void QueueUpload(std::string_view path, const TransferSettings& settings) override {
        state_->Queue("UPLOAD", path, settings);
    }
    void QueueDownload(std::string_view path, const TransferSettings& settings) override {
        state_->Queue("DOWNLOAD", path, settings);
    }
    bool EndedWell(std::string_view path) const override { return state_->EndedWell(path); }
    void AddInstall(std::string_view file, std::string_view user) override {
        ::AddInstall(HotSyncManagerFolder(), file, user);
    }

private:
    ControlState* state_;
};

} // namespace

std::unique_ptr<SFrmAX40> NewSFrmAX40() {
    if (Global.MakeSFrmAX40) return Global.MakeSFrmAX40();
    return std::make_unique<ManagerControl>();
}

#include "rdkinst/forms/frmSetup.h"

#include "platform/Convert.h"
#include "platform/HotSyncManager.h"
#include "platform/TitledWindow.h"

#include <QTimer>

#include <exception>

namespace {

constexpr int StandAtMost = 3000; // milliseconds

} // namespace

void frmSetup::Form_Load() {
    announced_ = new TitledWindow(*this, PathToQt(HotSyncManagerFolder()));
}

void frmSetup::StandFor(const Text& text, bool isWatched, const std::function<void()>& work) {
    lblSetup->setText(ToQt(text));
    Show();
    WaitWhile([this] { return !painted_; });
    std::exception_ptr thrown;
    try {
        work();
    } catch (const std::exception&) {
        thrown = std::current_exception();
    }
    QTimer longest;
    longest.setSingleShot(true);
    longest.start(StandAtMost);
    WaitWhile([&] { return isWatched && !announced_->WasFound() && longest.isActive(); });
    Unload();
    if (thrown) std::rethrow_exception(thrown);
}

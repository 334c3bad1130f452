#include "platform/HotSyncControl.h"

#include "core/Globals.h"

namespace {

class NoManager final : public SFrmAX40 {
public:
    std::string UserName() const override { return {}; }
    std::int32_t UserID() const override { return 0; }
    std::string HotSyncUser(int) const override { return {}; }
};

} // namespace

std::unique_ptr<SFrmAX40> NewSFrmAX40() {
    if (Global.MakeSFrmAX40) return Global.MakeSFrmAX40();
    return std::make_unique<NoManager>();
}

#include "sync/SFrmAX40.h"

#include <utility>

std::vector<std::string> KnownUsers(const SFrmAX40& control) {
    std::vector<std::string> users;
    for (int index = 0;; ++index) {
        std::string user = control.HotSyncUser(index);
        if (user.empty()) return users;
        users.push_back(std::move(user));
    }
}

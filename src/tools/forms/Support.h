#pragma once

#include "core/Text.h"
#include "tools/SystemInformation.h"

#include <functional>
#include <string>
#include <string_view>

/// What this program, its HotSync Manager and this system say of themselves. The manager is asked, which may
/// take a moment.
MachineFacts ThisMachine();

/// A message that an operator is offered to have begun for the support desk.
struct SupportMail {
    Text Question; ///< whether it is wanted
    Text Subject;
    std::function<std::string()>
        Body; ///< code page 1252; called when it is. RunTimeFailure when there is none
    Text WhenCreated;
};

/// Asks, hands the message to the desktop's mail program, and tells how that went. Where the addresses of the
/// support desk cannot be read the operator is told so, and the message has none.
void OfferSupportMail(const SupportMail& mail);

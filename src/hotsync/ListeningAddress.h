#pragma once

#include <string_view>

/// Whether handhelds can be awaited there: "*" for all addresses of this computer, four numbers with points,
/// or an IPv6 address without a zone.
bool IsListeningAddress(std::string_view text);

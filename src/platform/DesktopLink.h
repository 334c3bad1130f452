#pragma once

#include <cstddef>
#include <string_view>

/// The longest link that is handed to a desktop, in bytes of its final form: Windows takes no longer command
/// line, and an office on another system is to send no other messages.
inline constexpr std::size_t LongestLink = 32000;

/// See Operator::OpenLink. Where the desktop's opener is a program of its own (xdg-open) its answer is waited
/// for, three seconds at most: one that goes on is the mail program itself.
bool OpenDesktopLink(std::string_view link);

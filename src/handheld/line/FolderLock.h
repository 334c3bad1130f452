#pragma once

#include <memory>
#include <string>

/// Keeps all others off a handheld's folder (with its trailing separator) until the result is gone, by the
/// file Handheld.lock, which one that was killed leaves to the next. Refusal when another has the folder, or
/// when the file cannot be written.
std::shared_ptr<void> LockFolder(const std::string& folder);

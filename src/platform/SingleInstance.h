#pragma once

#include <string>

/// One program an application directory. The name of a local server, made from the directory, says
/// whether one is running; a crashed one never blocks the next start.
namespace SingleInstance {

/// False when another process holds the directory.
bool Take(const std::string& applicationDirectory);

void Release();

} // namespace SingleInstance

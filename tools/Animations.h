#pragma once

#include <string>

/// The animations of the HotSync as bytes of GIF files, three pixels for each one of the screen on a
/// transparent ground: a computer that waits for a handheld, one that exchanges records with it, and a
/// handheld whose HotSync button is to be pressed.
std::string WaitingForHotsync();
std::string HotsyncRunning();
std::string SingleHotsync();

#pragma once

/// Whether a program was asked for its version and for nothing else, by "--version": it has been told on the
/// standard output then, as "hotsync 1.0.0", and the program ends. Asked before there is a display.
bool TellsVersion(int argc, const char* const* argv, const char* program, const char* version);

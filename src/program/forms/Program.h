#pragma once

/// The whole run of the PC program, from the main screen's load to its unload; the exit code. "--version" or
/// "--help" alone is answered on the standard output, and needs no display.
/// `version` is ASCII, as in "1.0.0".
int RunProgram(int argc, char** argv, const char* version);

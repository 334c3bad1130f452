#pragma once

/// Runs a routine that reads or writes the status file. False when it could not: the operator has been
/// told, and the process ends.
bool WithStatusFile(void (*routine)());

/// The handhelds of the Links table have changed: lets the status of each, which goes by its rows, begin
/// anew, and draws the bricks.
void BeginHHStatusAnew();

/// Writes the status list to the file and draws the bricks: those of the letters, which uploads and
/// unattended sessions give, or those of the marks of manual downloads. For a letter or a mark that has
/// changed.
void ShowHHStatus();
void ShowHHStatusStd();

#pragma once

#include <functional>
#include <string>
#include <string_view>

/// The directories of an application directory and what start-up does in them. Each routine sets
/// its global paths, makes what is missing, and passes a RunTimeFailure on.

/// `DBFFiles` and `Install`; the latter is not made: it comes with the installation.
void SetTablesAndInstall();

/// `Install/Graphics`, then `DBFFiles/Images` and `DBFFiles/HHTotals`.
void SetGraphics();
void SetImagesAndTotals();

/// Copies `Notes.dat` from the install directory when the tables directory has none.
void CopyNotes();

/// `DataIn`, with every *.csv of the application directory moved into it.
void SetDataIn();

/// `DataOut`, `Backup` and `Templates`.
void SetDataOutBackupTemplates();

/// The template subdirectories, and the pass over the files in the templates directory's root.
/// `selectionMissing` is called when the saved download selection is gone; the settings have it off
/// afterwards.
void TemplatePass(const std::function<void()>& selectionMissing);

/// `Updates`.
void SetUpdates();

/// Moves each *.bmp from `DBFNew` into the images directory. A name that is there already is kept,
/// and the one in `DBFNew` deleted.
void MoveNewBitmaps();

/// Removes work files that a killed run has left in the application directory's folders, the text of a
/// table on its way into another structure among them: the table itself still stands. One that
/// cannot be removed stays.
void RemoveStrays();

/// Removes the temporary directory "ZUKTemp" and the files in it. Never fails.
void RemoveTemporaryDirectory() noexcept;

/// Where "ZUKTemp" lies, with a trailing separator: below the system's temporary folder.
std::string TemporaryDirectory();

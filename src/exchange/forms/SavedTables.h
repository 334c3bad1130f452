#pragma once

#include "platform/Form.h"

#include <string>
#include <string_view>

class QComboBox;
class QPushButton;

/// What the two QuickButton screens share that perform a saved selection of tables.

/// Fills a droplist with the saved selections of a folder, none chosen; one that was chosen stays so.
void FillSavedTables(QComboBox& box, const std::string& folder, std::string_view extension);

/// Asks whether a selection is to be performed.
bool AgreedToPerform(const std::string& name);

/// Opens the options where selections of an extension are kept, and waits until they have gone.
void SetUpSavedTables(std::string_view extension);

/// After a run: the way out says that it is done.
void ShowDone(QPushButton& cmdCancel);

/// Performs a selection on its own screen. True when a session was held.
template <class F>
bool PerformSavedTables(const std::string& name) {
    bool held = false;
    auto& screen = The<F>();
    screen.Drive(name, held);
    screen.Show(ShowMode::Modal);
    return held;
}

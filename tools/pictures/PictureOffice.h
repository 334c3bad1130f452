#pragma once

#include "OfficeForDay.h"

#include <QString>

#include <string>

/// What stands in the office whose screens are shown. OfficeFailure or RunTimeFailure when a file cannot be
/// written.

/// Tables with a few handhelds and uploads, so that the main screen has something to show.
void FillOffice(const OfficeForDay& office);

/// What the handheld is told once, and an order with a signature.
void FillSettings(const OfficeForDay& office);

/// Customers and items with faults in them, in place of the others.
void BreakTables(const OfficeForDay& office);

/// A stand-in handheld with all that a build, in the folder `build`, installs on one. Returns its folder.
std::string MakeStandIn(const QString& build, const QString& folder);

// ---- of the office that Global has been set to ----

/// Settings of unattended mode, and what the last session of a handheld has left.
void GivenUnattended();

/// An activity that clears tables.
void GivenClearing();

/// A few notes, the first of them open on its screen.
void GivenNotes();

/// An upload has just added three orders.
void GivenTotals();

#pragma once

#include "driver/DriverClient.h"

#include <QString>

#include <cstdint>

/// The screens of the tables, worked by the keyboard alone: no click, no choice by name.
struct ScreensByKeys {
    DriverClient& Program;    ///< stands at its main screen
    std::int32_t Records = 0; ///< that every table of the office holds; see FilledTables.h
    QString Pictures;         ///< what the names of the screens' pictures begin with; empty for no pictures

    /// Opens each screen that shows, edits, prints or clears tables, does on it what it is for, and leaves
    /// it. DriverFailure when a screen does not do as it should. Returns how many screens were opened.
    int Run();
};

#pragma once

#include "driver/DriverClient.h"

#include <QString>

#include <functional>

/// The mapping screens of a running program, worked by the keyboard alone: no click, no choice by
/// name. DriverFailure when the screens do not do as they should.

/// Lays out the mapping that a template file tells, for its file in `DataIn`, keeps it under a name
/// and imports by it. `table`: the key of the table on the first screen, as "Alt+U". Returns the text
/// of the box at the end.
QString ImportByKeys(DriverClient& program, const QString& templateFile, const QString& table,
                     const QString& name);

/// Lays out the columns that a template file tells, keeps them under a name and exports by it;
/// `expectFurther` says what boxes come behind the count. Returns the text of the count.
QString ExportByKeys(DriverClient& program, const QString& templateFile, const QString& name,
                     const std::function<void()>& expectFurther);

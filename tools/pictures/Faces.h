#pragma once

#include "Camera.h"
#include "People.h"
#include "PictureOffice.h"

#include <QString>

/// What stands behind the screens, besides Global.
struct Stage {
    QString Build; ///< the folder of the build
    const OfficeForDay& Office;
    Nobody& TheOperator;
    QString Work; ///< a folder for what the screens make
};

/// Takes every screen of the program, and more of one that has several faces. The tables are other ones
/// after it. OfficeFailure when a file cannot be written.
void TakeAllScreens(const Stage& stage, Camera& camera);

/// Prints each report over tables that fill more than a page into `folder`, as "Report-<name>.pdf".
void PrintReports(Nobody& nobody, const QString& folder);

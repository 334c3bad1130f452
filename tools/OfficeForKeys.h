#pragma once

#include "OfficeForDay.h"
#include "driver/DriverClient.h"

#include <QTemporaryDir>

#include <cstdint>

/// A fresh office whose tables hold so many records each (FilledTables.h), and the program in it, which
/// stands at its main screen. Both go with the object.
class OfficeForKeys {
public:
    /// `build` is the folder of a build. OfficeFailure, RunTimeFailure or DriverFailure when it cannot be
    /// had.
    OfficeForKeys(const QString& build, std::int32_t records);

    DriverClient& Program() { return program_; }

private:
    QTemporaryDir folder_;
    QTemporaryDir samples_; ///< none: what is sold there comes with the records
    OfficeForDay office_;
    DriverClient program_;
};

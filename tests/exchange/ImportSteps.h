#pragma once

#include "exchange/Import.h"

/// The import step by step, as slow as its words: a record at a time through DBFEdit, all storage
/// kept between lines, every list searched anew for each line. For files in code page 1252.
ImportResult ImportStepByStep(const ImportJob& job);

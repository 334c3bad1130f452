#pragma once

#include "exchange/Export.h"

#include <string>

/// The text of an export, step by step: the tables read record at a time through DBFEdit, every
/// column's row taken apart again for every record, every header searched from the first one on.
std::string ExportStepByStep(const ExportJob& job, const std::string& headerFile, const std::string& lineFile,
                             ExportResult& result);

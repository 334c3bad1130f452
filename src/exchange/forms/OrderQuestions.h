#pragma once

#include "exchange/OrderCheck.h"

/// The questions of the order check as every exporting screen asks them.
RepeatQuestions OrderQuestions();

/// Tells of order lines that were left out of an export; nothing when there is none.
void TellOrphanLines(const ExportResult& result);

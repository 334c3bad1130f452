#pragma once

#include "palm/Converter.h"

#include <string_view>

/// The ink of somebody who signs with a name (code page 1252): strokes in one running line, the same for
/// the same name, with a rule under it. A name without a letter gives a short flourish.
Ink DrawSignature(std::string_view name);

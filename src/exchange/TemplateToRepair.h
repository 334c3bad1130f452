#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

/// The file name of the template that the report of the Quality Check has opened a screen for, in the
/// file system's encoding; empty when the screen is open for something else, or does not keep
/// templates of that extension. A name that leads elsewhere counts as none: screens delete by it.
std::string TemplateToRepair(std::initializer_list<std::string_view> extensions);

/// For a screen that such a template was for, when it closes: one that is opened while the report
/// still stands is not for it again.
void EndRepair();

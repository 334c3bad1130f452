#include "exchange/TemplateToRepair.h"

#include "core/Globals.h"
#include "core/Paths.h"
#include "core/TextCompare.h"

#include <algorithm>

std::string TemplateToRepair(std::initializer_list<std::string_view> extensions) {
    // A screen that was opened to keep templates shows all of them, whatever report stands behind it.
    if (!Global.QCViewMode || Global.TemplateEditMode) return {};
    const std::string name = NameToPath(Global.QCViewRecords);
    const bool kept = std::any_of(extensions.begin(), extensions.end(), [&](std::string_view extension) {
        return SameText(ExtensionOf(name), extension);
    });
    return kept && IsPlainFileName(name) ? name : std::string();
}

void EndRepair() {
    Global.QCViewRecords.clear();
}

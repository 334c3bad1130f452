#include "exchange/forms/DataDirectory.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"

void EnsureDataDirectory(std::string& path, std::string_view name, MessageId lost) {
    if (Global.TheDisk->IsFolder(ResolvePath(path))) return;
    const std::string old = path;
    path = AddBackslash(Global.AppPath + std::string(name));
    MakePath(path);
    Tell(Text(lost) + Text::Path(std::string_view(old)) + msg::PathChanged +
             Text::Path(std::string_view(path)) + msg::PathChangedEnd,
         Icon::Information);
}

#include "sync/SortIndexClean.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "core/TextFile.h"
#include "store/SortTables.h"
#include "sync/TableSelection.h"

#include <array>
#include <string>

namespace {

/// A line of a download template, and what makes its table ready.
struct Sort {
    MessageId Group;
    std::string_view Table;
    void (*Run)(std::string_view path, const SortOptions& options, Progress& progress);
};

constexpr std::array Sorts = {
    Sort{msg::TablesCustomers, "ZUKCust.dbf", SortCustFile},
    Sort{msg::TablesItems, "ZUKItem.dbf", SortItemFile},
    Sort{msg::TablesSetup, "ZUKStax.dbf", SortSTaxFile},
};

void SortByTemplate(const std::string& path, const SortOptions& options, Progress& progress) {
    TextReader lines(path, TextReader::OwnFile);
    for (std::string line; lines.ReadLine(line);) {
        for (const Sort& sort : Sorts) {
            if (SelectionValue(line, sort.Group) == 1)
                sort.Run(Global.DBFPath + std::string(sort.Table), options, progress);
        }
    }
}

} // namespace

void SortIndexCleanFiles(Progress& progress) {
    if (!Global.RemoteSelect) return;
    const SortOptions options{.RebuildIndex = true, .SortContents = true, .RemoveSpecial = true};
    const std::string name = NameToPath(Global.RemoteSelSettings);
    if (!IsPlainFileName(name)) throw RunTimeFailure(52, name);
    if (options.SortContents) SortByTemplate(Global.DownloadTemplates + name + ".dst", options, progress);
    if (options.RebuildIndex) RebuildIndexTables(progress);
}

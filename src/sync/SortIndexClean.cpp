#include "sync/SortIndexClean.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"
#include "store/SortTables.h"

#include <array>
#include <string>

namespace {

/// A line of a download template, and what makes its table ready.
struct Sort {
    std::string_view Group;
    std::string_view Table;
    void (*Run)(std::string_view path, const SortOptions& options, Progress& progress);
};

constexpr std::array Sorts = {
    Sort{"Customers", "ZUKCust.dbf", SortCustFile},
    Sort{"Items", "ZUKItem.dbf", SortItemFile},
    Sort{"Setup Tables", "ZUKStax.dbf", SortSTaxFile},
};

void SortByTemplate(const std::string& path, const SortOptions& options, Progress& progress) {
    TextReader lines(path, TextReader::OwnFile);
    for (std::string line; lines.ReadLine(line);) {
        const std::string_view text = Trim(line);
        for (const Sort& sort : Sorts) {
            if (BeginsWith(text, sort.Group) && text.ends_with('1'))
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

#include "sync/Conduits.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextFile.h"

#include <algorithm>

namespace {

constexpr std::string_view FileName = "Conduits.txt";

std::string FileIn(std::string_view folder) {
    if (folder.empty()) throw RunTimeFailure(76, "the HotSync Manager's folder");
    return AddBackslash(folder) + std::string(FileName);
}

bool IsCreator(std::string_view text) {
    return text.size() == 4 &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

bool HasControlCharacter(std::string_view text) {
    return std::any_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 127; });
}

/// What a line of the file cannot say; empty when it can say it all.
std::string_view ReasonAgainst(const Conduit& conduit) {
    if (!IsCreator(conduit.Creator)) return "the creator is not four plain characters";
    if (conduit.CondPath.empty()) return "the path is empty";
    if (HasControlCharacter(conduit.CondPath)) return "the path holds a control character";
    if (HasControlCharacter(conduit.Name)) return "the name holds a control character";
    return {};
}

auto PlaceOf(std::string_view creator, std::vector<Conduit>& conduits) {
    return std::find_if(conduits.begin(), conduits.end(),
                        [creator](const Conduit& each) { return each.Creator == creator; });
}

/// Reads one line; a reason against it, or nothing.
std::string_view ReadLine(std::string_view line, Conduit& conduit) {
    const std::size_t first = line.find('\t');
    const std::size_t second = first == std::string_view::npos ? first : line.find('\t', first + 1);
    if (second == std::string_view::npos) return "it does not hold creator, path and name";
    conduit.Creator = line.substr(0, first);
    conduit.CondPath = line.substr(first + 1, second - first - 1);
    conduit.Name = line.substr(second + 1);
    return ReasonAgainst(conduit);
}

} // namespace

std::vector<Conduit> ReadConduits(std::string_view folder) {
    const std::string file = FileIn(folder);
    std::vector<Conduit> conduits;
    const std::string path = ResolvePath(file);
    if (!Global.TheDisk->IsFile(path) && !Global.TheDisk->IsFolder(path)) return conduits;
    TextReader reader(file, TextReader::OwnFile);
    std::string line;
    while (reader.ReadLine(line)) {
        if (line.empty()) continue;
        Conduit conduit;
        std::string_view reason = ReadLine(line, conduit);
        if (reason.empty() && PlaceOf(conduit.Creator, conduits) != conduits.end())
            reason = "the creator stands there twice";
        if (!reason.empty()) {
            throw RunTimeFailure(321, file + ", line " + std::to_string(reader.LineNumber()) + ": " +
                                          std::string(reason));
        }
        conduits.push_back(std::move(conduit));
    }
    return conduits;
}

void RegisterConduit(std::string_view folder, const Conduit& conduit) {
    if (const std::string_view reason = ReasonAgainst(conduit); !reason.empty())
        throw RunTimeFailure(5, std::string(reason));
    std::vector<Conduit> conduits = ReadConduits(folder);
    if (const auto place = PlaceOf(conduit.Creator, conduits); place != conduits.end())
        *place = conduit;
    else
        conduits.push_back(conduit);
    SafeFile file(FileIn(folder));
    for (const Conduit& each : conduits)
        file.WriteLine(each.Creator + '\t' + each.CondPath + '\t' + each.Name);
    file.Commit();
}

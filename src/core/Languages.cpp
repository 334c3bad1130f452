#include "core/Languages.h"

#include "core/Catalogue.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Paths.h"

#include <algorithm>

namespace {

constexpr std::string_view Extension = ".tsv";

std::string AddLanguage(std::string_view language, const std::vector<std::string>& folders) {
    const std::string name = std::string(language) + std::string(Extension);
    if (!IsPlainFileName(language)) return RunTimeFailure(52, name).what() + std::string("\n");
    for (const std::string& folder : folders) {
        if (FileExists(folder + name)) return AddMessages(folder + name);
    }
    return RunTimeFailure(53, name).what() + std::string("\n");
}

} // namespace

std::vector<std::string> LanguageFolders(std::string_view programFolder, std::string_view appPath) {
    const std::string program = AddBackslash(programFolder);
    const std::string around(FolderOf(std::string_view(program).substr(0, program.size() - 1)));
    std::vector<std::string> folders;
    for (const std::string& folder : {AddBackslash(appPath), program, around}) {
        const std::string languages = AddBackslash(folder + "Languages");
        if (std::find(folders.begin(), folders.end(), languages) == folders.end())
            folders.push_back(languages);
    }
    return folders;
}

std::vector<std::string> Languages(const std::vector<std::string>& folders) {
    std::vector<std::string> languages;
    for (const std::string& folder : folders) {
        const std::vector<std::string> names = NamesWithExtension(folder, Extension);
        languages.insert(languages.end(), names.begin(), names.end());
    }
    std::sort(languages.begin(), languages.end());
    languages.erase(std::unique(languages.begin(), languages.end()), languages.end());
    std::erase(languages, English);
    return languages;
}

std::string LoadTexts(std::string_view language, const std::vector<std::string>& folders,
                      std::string_view appPath) {
    Global.Replacements.clear();
    std::string problems;
    if (!language.empty() && language != English) problems = AddLanguage(language, folders);
    return problems + AddMessages(AddBackslash(appPath) + "Messages.tsv");
}

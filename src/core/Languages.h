#pragma once

#include <string>
#include <string_view>
#include <vector>

/// The language of the built-in texts, by its own name.
inline constexpr std::string_view English = "English";

/// Where the files of the other languages lie for a program: `Languages` in the application directory, beside
/// the program, and in the folder that this one lies in. Folders with a trailing separator; so are the
/// arguments.
std::vector<std::string> LanguageFolders(std::string_view programFolder, std::string_view appPath);

/// The languages beside English: each file `<its own name>.tsv` of these folders, in the order of their
/// names. A folder that is not there has none. Names are in the file system's encoding.
std::vector<std::string> Languages(const std::vector<std::string>& folders);

/// Puts the texts of a language in force, from the first of the folders that has its file, and over them,
/// row by row, those of `Messages.tsv` in the application directory. What neither has a row for is English;
/// so is everything where `language` is English or empty. Returns what was wrong, as AddMessages, a language
/// whose file is not there among it.
std::string LoadTexts(std::string_view language, const std::vector<std::string>& folders,
                      std::string_view appPath);

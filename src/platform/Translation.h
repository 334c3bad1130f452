#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Where the files of languages lie for this program and an application directory.
std::vector<std::string> LanguageFolders(std::string_view appPath);

/// Puts the texts of the language in force that the operator has chosen for the office in `appPath`, and what
/// `Messages.tsv` there has in its place; the toolkit's own boxes follow where it knows the language. Called
/// before any caption is filled. Returns what could not be read, as LoadTexts.
std::string LoadTextsOfOffice(std::string_view appPath);

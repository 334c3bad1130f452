#pragma once

#include "core/Text.h"

#include <QString>

#include <string>
#include <string_view>

/// The one border between the engine's bytes and the screens' Unicode. Total both ways: a
/// character that code page 1252 lacks becomes `?`.
QString ToQt(const Text& text);
QString ToQt(std::string_view codePage);
std::string FromQt(const QString& text);

/// The same for path texts, which are in the file system's encoding.
QString PathToQt(std::string_view path);
std::string PathFromQt(const QString& path);

/// A text as a tool tip that shows it to the letter: what looks like markup is not taken for it.
QString PlainTip(const QString& text);

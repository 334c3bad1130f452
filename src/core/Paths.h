#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Path texts are in the file system's encoding (UTF-8 on Windows too). Names of files and folders
/// are found whatever their case, on every file system, and both separators are read.

/// Cuts trailing blanks and appends the platform's separator, unless the path ends in either one.
std::string AddBackslash(std::string_view path);

/// True when the path can be opened for reading, a trailing separator being cut first. Never fails.
bool FileExists(std::string_view path) noexcept;

/// Makes every missing folder along a path in turn. RunTimeFailure 75 when one cannot be made.
void MakePath(std::string_view path);

/// The path as it stands on the disk: the exact name first, else the first by bytes of those that
/// differ only in case. What is not there keeps the spelling it was asked for. RunTimeFailure 52 for
/// a path with a NUL in it.
std::string ResolvePath(std::string_view path);

/// The last part of a path, behind the last separator of either kind.
std::string_view FileNameOf(std::string_view path);

/// What stands before the file name, with its separator; empty when there is none.
std::string_view FolderOf(std::string_view path);

/// The extension with its point, as in ".cst"; empty when the file name has none.
std::string_view ExtensionOf(std::string_view path);

/// A file name that came out of a table, a template or a line, in code page 1252, as the file
/// system writes it; and back, with `?` for what the code page lacks.
std::string NameToPath(std::string_view codePageName);
std::string PathToName(std::string_view path);

/// True when a name that came from outside is a plain file name: not empty, no separator, no drive,
/// no control character, and neither "." nor "..".
bool IsPlainFileName(std::string_view name);

/// True for a plain file name, without its extension, that may be made on every system: none of
/// `*?"<>|`, no device of Windows ("NUL", "com1.old"), and no point or blank at its end.
bool IsNameForNewFile(std::string_view name);

/// Names in the folder that end in `extension` (as ".cst", any case; "" for all), in the order of
/// their names without regard to case.
std::vector<std::string> FilesWithExtension(std::string_view folder, std::string_view extension);

/// The same without their extension, which is not empty.
std::vector<std::string> NamesWithExtension(std::string_view folder, std::string_view extension);

/// Removes a file if it is there and can be removed, as after a failure that is the one to be told
/// of. Never fails.
void RemoveQuietly(std::string_view path) noexcept;

/// Copies a file over another by a work file beside it, flushed and renamed unless `flush` is off.
/// RunTimeFailure as Disk::Open, and 57, 61, 75.
void CopyOver(std::string_view from, std::string_view to, bool flush = true);

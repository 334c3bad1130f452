#pragma once

#include "maintenance/ClearTables.h"
#include "sync/DownloadSession.h"
#include "sync/UploadSession.h"

#include <string_view>

/// Saved selections of tables: `*.ust` for uploads, `*.dst` for downloads, `*.dct` for clearing handhelds,
/// `*.pct` for clearing tables of the PC. A line a group of tables: its display name in English,
/// "=", and 1 or 0; in a `*.pct` there is nothing between the name and the digit. Read it is in the language
/// of the texts too.

/// Reads a template over a choice: a group that the file has no line for stays as it stood, and a line of
/// another kind is skipped; nothing changes when it fails. RunTimeFailure as TextReader.
void ReadTemplate(std::string_view path, UploadChoice& choice);
void ReadTemplate(std::string_view path, DownloadChoice& choice);
void ReadTemplate(std::string_view path, ClearChoice& choice);
void ReadTemplate(std::string_view path, ClearPlan& plan);

/// Writes a template from scratch, all its lines. RunTimeFailure as SafeFile.
void WriteTemplate(std::string_view path, const UploadChoice& choice);
void WriteTemplate(std::string_view path, const DownloadChoice& choice);
void WriteTemplate(std::string_view path, const ClearChoice& choice);
void WriteTemplate(std::string_view path, const ClearPlan& plan);

#pragma once

#include "quality/Problems.h"

#include <string>
#include <string_view>
#include <vector>

/// Writes the rows of a report as comma-separated text: a line of headings, then a line a row with
/// the five columns that the report shows, every cell in quotes, lists whole and line breaks kept.
/// UTF-8 with a mark, as spreadsheets expect it. RunTimeFailure as SafeFile.
void SaveReport(std::string_view path, const std::vector<ProblemRow>& rows);

/// The headings of the report's columns.
std::vector<Text> ReportHeadings();

#pragma once

#include <string>

/// The company's name: field 1 of the first record of the company table, in the tables directory or
/// else in the install directory, trimmed. Empty when neither is there.
std::string ReadCompanyName();

/// Makes `DBFEmpty` afresh: no stray table in it, and an empty twin of each of the 24 tables.
/// RunTimeFailure 53 names a table that the install directory lacks.
void MakeEmptyTwins();

/// The twin of one table, by its file name, in the place of the one that is there.
void MakeEmptyTwin(const std::string& name);

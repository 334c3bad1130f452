#pragma once

#include <QString>

/// Lays the pictures of all screens side by side. Each folder below `folder` is a set of them, as one scale
/// and one language have it, with files "<screen>-light.png" and "<screen>-dark.png". Writes
/// `folder`/<set>-<look>.png, all screens of a set in small, and `folder`/index.html, a line for each screen
/// with its picture of every set; where a set lacks one, its place is empty. A folder without such pictures
/// is no set. Returns the number of sets. OfficeFailure or RunTimeFailure when a file cannot be read or
/// written.
int MakeContactSheets(const QString& folder);

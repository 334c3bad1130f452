#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Gives each file of the images directory whose name does not end in ".bmp" that ending, by copying it and
/// deleting the old name: an upload delivers signature images without one. A file of the new name is
/// replaced. Work files of files that are just being written are passed by. Returns the names that could not
/// be changed and so are still there.
std::vector<std::string> RenameImages(std::string_view folder);

#pragma once

#include <string>
#include <string_view>
#include <vector>

/// What brings a handheld application's data to its PC program. Texts are UTF-8.
struct Conduit {
    std::string Creator;  ///< the application's creator id: four printable ASCII characters
    std::string CondPath; ///< the conduit's program file; not empty
    std::string Name;     ///< as operators read it; may be empty

    friend bool operator==(const Conduit&, const Conduit&) = default;
};

/// The conduits that are registered with the HotSync Manager of a folder: its file "Conduits.txt", a line
/// each, of creator, tab, path, tab and name. None without such a file. RunTimeFailure 321 with file, line
/// and reason for anything else in it, and 6 for one of more than 4 MB.
std::vector<Conduit> ReadConduits(std::string_view folder);

/// Registers a conduit in the place of the one that its creator had, or behind the others. A file that
/// cannot be read is left as it is and fails as above; RunTimeFailure 5 for a conduit that a line cannot
/// hold.
void RegisterConduit(std::string_view folder, const Conduit& conduit);

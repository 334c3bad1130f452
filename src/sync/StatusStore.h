#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A value of the store, by its section and key.
struct StatusEntry {
    std::string Section, Key, Value;
};

/// Where the rows of the installation family are kept, under "ZUK Tramble PC HHStatus": a section a
/// handheld, named "HH" and a running number from 1, with keys. Texts are code page 1252.
class StatusStore {
public:
    virtual ~StatusStore() = default;
    /// Nothing when there is no such value, or when it cannot be read.
    virtual std::optional<std::string> Read(std::string_view section, std::string_view key) const = 0;

    /// Makes these all that the store holds, in one step: a failure or a kill leaves what it held.
    /// RunTimeFailure 75 when it cannot be written.
    virtual void Replace(const std::vector<StatusEntry>& entries) = 0;
};

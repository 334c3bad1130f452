#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Where the rows of the installation family are kept, under "ZUK Tramble PC HHStatus": a section a
/// handheld, named "HH" and a running number from 1, with keys. Texts are code page 1252.
class StatusStore {
public:
    virtual ~StatusStore() = default;
    virtual std::optional<std::string> Read(std::string_view section, std::string_view key) const = 0;
    virtual void Write(std::string_view section, std::string_view key, std::string_view value) = 0;
    virtual void RemoveAll() = 0;
};

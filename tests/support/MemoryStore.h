#pragma once

#include "core/Failure.h"
#include "sync/StatusStore.h"

#include <functional>
#include <map>
#include <utility>

/// A store of the installation family in memory.
class MemoryStore final : public StatusStore {
public:
    std::optional<std::string> Read(std::string_view section, std::string_view key) const override {
        const auto found = Values.find({std::string(section), std::string(key)});
        if (found == Values.end()) return std::nullopt;
        return found->second;
    }
    void Replace(const std::vector<StatusEntry>& entries) override {
        if (Refuses) throw RunTimeFailure(75, "the store");
        Values.clear();
        for (const StatusEntry& entry : entries) Set(entry.Section, entry.Key, entry.Value);
        Replaced();
    }

    void Set(const std::string& section, const std::string& key, const std::string& value) {
        Values[{section, key}] = value;
    }

    std::map<std::pair<std::string, std::string>, std::string> Values; ///< by section and key
    bool Refuses = false;
    std::function<void()> Replaced = [] {}; ///< behind every step in which it has changed
};

#pragma once

#include "quality/Problems.h"

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

/// Knows of each row of a report whether the records or the templates that it is about are still
/// those that the check saw: the report itself is not made anew when somebody repairs them.
class RowWatch {
public:
    /// Takes what stands in the files now as what the check saw.
    explicit RowWatch(std::span<const ProblemRow> rows = {});

    /// Looks at the files again. Reads a table or a template only when it is another one by now.
    /// True when a row is otherwise than at the last look. Never fails.
    bool Look();

    /// As the last look found it; `row` from 0.
    bool HasChanged(std::size_t row) const { return watched_.at(row).Changed; }

private:
    /// Files by their path, and which version of them was looked at last.
    using Versions = std::map<std::string, std::uint64_t>;

    struct Watched {
        std::vector<std::string> Files;
        std::vector<std::int32_t> Records; ///< ascending, where the row is about records
        bool IsTable = false;
        std::uint64_t Seen = 0; ///< stands for what the check saw
        bool Changed = false;
    };

    static std::uint64_t ContentOf(const Watched& watched);

    std::vector<Watched> watched_;
    Versions versions_;
};

#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// A command that is not written as it should be. `what()` is UTF-8.
class Misuse : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// An option that a command takes.
struct OptionDef {
    std::string_view Name; ///< with its dashes
    bool TakesValue = true;
    bool Repeats = false;
};

/// The words behind a command: its operands, and its options with their values. Options stand anywhere;
/// behind "--" all are operands.
class CommandLine {
public:
    /// Misuse for an option that is not defined, lacks its value or comes twice, and for a number of
    /// operands outside the range.
    CommandLine(std::span<const std::string> words, std::span<const OptionDef> options, std::size_t least,
                std::size_t most);

    const std::vector<std::string>& Operands() const { return operands_; }
    bool Has(std::string_view option) const { return values_.contains(option); }
    /// The option's values; none when it was not given.
    const std::vector<std::string>& Values(std::string_view option) const;
    /// Its only value; empty when it was not given.
    const std::string& Value(std::string_view option) const;
    /// Its value as a whole number; Misuse that names the option for another or one out of the range.
    std::uint64_t Number(std::string_view option, std::uint64_t least, std::uint64_t most) const;

private:
    std::vector<std::string> operands_;
    std::map<std::string_view, std::vector<std::string>> values_; ///< by the names of the definitions
};

/// A text as a whole number; Misuse that begins with `what`.
std::uint64_t WholeNumber(const std::string& what, std::string_view text, std::uint64_t least,
                          std::uint64_t most);

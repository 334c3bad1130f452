#include "handheld/CommandLine.h"

#include <algorithm>
#include <charconv>

CommandLine::CommandLine(std::span<const std::string> words, std::span<const OptionDef> options,
                         std::size_t least, std::size_t most) {
    bool optionsEnded = false;
    for (std::size_t at = 0; at < words.size(); ++at) {
        const std::string& word = words[at];
        if (!optionsEnded && word == "--") {
            optionsEnded = true;
            continue;
        }
        if (optionsEnded || !word.starts_with("--")) {
            operands_.push_back(word);
            continue;
        }
        const std::size_t equals = word.find('=');
        const std::string name = word.substr(0, equals);
        const auto known = std::find_if(options.begin(), options.end(),
                                        [&](const OptionDef& option) { return option.Name == name; });
        if (known == options.end()) throw Misuse("the command has no option " + name);
        if (values_.contains(known->Name) && !known->Repeats) throw Misuse(name + " is given twice");
        std::vector<std::string>& values = values_[known->Name];
        if (!known->TakesValue) {
            if (equals != std::string::npos) throw Misuse(name + " takes no value");
        } else if (equals != std::string::npos) {
            values.push_back(word.substr(equals + 1));
        } else {
            if (at + 1 == words.size()) throw Misuse(name + " lacks its value");
            values.push_back(words[++at]);
        }
    }
    if (operands_.size() < least) throw Misuse("something is missing");
    if (operands_.size() > most) throw Misuse("too many words: " + operands_[most]);
}

const std::vector<std::string>& CommandLine::Values(std::string_view option) const {
    static const std::vector<std::string> none;
    const auto found = values_.find(option);
    return found == values_.end() ? none : found->second;
}

const std::string& CommandLine::Value(std::string_view option) const {
    static const std::string none;
    const std::vector<std::string>& values = Values(option);
    return values.empty() ? none : values.front();
}

std::uint64_t CommandLine::Number(std::string_view option, std::uint64_t least, std::uint64_t most) const {
    return WholeNumber(std::string(option), Value(option), least, most);
}

std::uint64_t WholeNumber(const std::string& what, std::string_view text, std::uint64_t least,
                          std::uint64_t most) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < least || number > most) {
        throw Misuse(what + ": \"" + std::string(text) + "\" is not a whole number from " +
                     std::to_string(least) + " to " + std::to_string(most));
    }
    return number;
}

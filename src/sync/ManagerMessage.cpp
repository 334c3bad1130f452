#include "sync/ManagerMessage.h"

#include "core/Failure.h"

#include <algorithm>
#include <utility>

namespace {

// What is escaped by a backslash, and the letter that stands for it.
constexpr std::pair<char, char> Escapes[] = {{'\\', '\\'}, {'\t', 't'}, {'\n', 'n'}, {'\r', 'r'}};

void AppendEscaped(std::string& line, std::string_view text) {
    for (const char c : text) {
        const auto* const escape =
            std::find_if(std::begin(Escapes), std::end(Escapes), [c](const auto& e) { return e.first == c; });
        if (escape == std::end(Escapes)) {
            line += c;
        } else {
            line += {'\\', escape->second};
        }
    }
}

std::string Unescaped(std::string_view piece) {
    std::string text;
    for (std::size_t at = 0; at < piece.size(); ++at) {
        if (piece[at] != '\\') {
            text += piece[at];
            continue;
        }
        const char letter = ++at < piece.size() ? piece[at] : '\0';
        const auto* const escape = std::find_if(std::begin(Escapes), std::end(Escapes),
                                                [letter](const auto& e) { return e.second == letter; });
        if (escape == std::end(Escapes)) throw RunTimeFailure(5, "message with an unknown escape");
        text += escape->first;
    }
    return text;
}

bool IsVerb(std::string_view verb) {
    return !verb.empty() &&
           std::all_of(verb.begin(), verb.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
}

} // namespace

const std::string& ManagerMessage::TextAt(std::size_t index) const {
    static const std::string none;
    return index < Texts.size() ? Texts[index] : none;
}

std::string PackMessage(const ManagerMessage& message) {
    std::string line = message.Verb;
    for (const std::string& text : message.Texts) {
        line += '\t';
        AppendEscaped(line, text);
    }
    return line + '\n';
}

bool ManagerMessageReader::Next(ManagerMessage& message) {
    const std::size_t end = pending_.find('\n', taken_);
    if ((end == std::string::npos ? pending_.size() : end) - taken_ > LongestLine) {
        throw RunTimeFailure(5, "message of more than a megabyte");
    }
    if (end == std::string::npos) {
        pending_.erase(0, taken_);
        taken_ = 0;
        return false;
    }
    std::string_view line = std::string_view(pending_).substr(taken_, end - taken_);
    taken_ = end + 1;
    const std::size_t verb = std::min(line.find('\t'), line.size());
    if (!IsVerb(line.substr(0, verb))) throw RunTimeFailure(5, "message without a verb");
    message.Verb = line.substr(0, verb);
    message.Texts.clear();
    line.remove_prefix(verb);
    while (!line.empty()) {
        line.remove_prefix(1);
        const std::size_t tab = std::min(line.find('\t'), line.size());
        message.Texts.push_back(Unescaped(line.substr(0, tab)));
        line.remove_prefix(tab);
    }
    return true;
}

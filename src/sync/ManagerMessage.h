#pragma once

#include <string>
#include <string_view>
#include <vector>

/// One message between a program and the HotSync Manager, as docs/hotsync-socket.md tells them: a verb
/// in capitals and the texts that go with it, UTF-8. On the line it is one text line.
struct ManagerMessage {
    std::string Verb;
    std::vector<std::string> Texts;

    /// A text by its place from 0; empty when there are fewer.
    const std::string& TextAt(std::size_t index) const;

    friend bool operator==(const ManagerMessage&, const ManagerMessage&) = default;
};

/// The message as a line with its line feed. Tabs, line ends and backslashes in the texts are escaped.
std::string PackMessage(const ManagerMessage& message);

/// Puts the pieces in which a stream arrives together to messages.
class ManagerMessageReader {
public:
    /// A line longer than this is no message.
    static constexpr std::size_t LongestLine = std::size_t{1} << 20;

    void Feed(std::string_view bytes) { pending_.append(bytes); }

    /// Takes the next whole message; false when there is none yet. RunTimeFailure 5 for a line that is
    /// too long, has no verb, or holds an escape that does not exist: the line is not to be used further.
    bool Next(ManagerMessage& message);

private:
    std::string pending_;
    std::size_t taken_ = 0;
};

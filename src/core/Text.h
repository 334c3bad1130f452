#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// The number of an entry of the message catalogue. The constants stand in `msg::`.
struct MessageId {
    std::uint16_t Number = 0;
    constexpr bool operator==(const MessageId&) const = default;
};

/// What an operator reads: built from catalogue entries and values only, so that a text written
/// into the code does not compile.
class Text {
public:
    Text() = default;
    Text(MessageId entry); ///< the entry as the catalogue in force has it
    Text(const char*) = delete;

    /// A value out of a table, a template or a line, in code page 1252.
    static Text Value(std::string_view codePage);
    /// Decimal digits, with a minus below 0.
    static Text Value(std::int64_t number);
    template <std::size_t N>
    static Text Value(const char (&)[N]) = delete;

    /// A path, or words of the operating system or a run-time failure, in UTF-8.
    static Text Path(std::string_view utf8);
    template <std::size_t N>
    static Text Path(const char (&)[N]) = delete;

    const std::string& Utf8() const { return utf8_; }
    bool IsEmpty() const { return utf8_.empty(); }

    /// As it is written to files: code page 1252.
    std::string CodePage() const;

    Text& operator+=(const Text& other) {
        utf8_ += other.utf8_;
        return *this;
    }
    friend Text operator+(Text left, const Text& right) { return left += right; }
    bool operator==(const Text&) const = default;

private:
    std::string utf8_;
};

/// The texts with a line break between them.
Text Lines(const Text& first, const Text& second);

/// The texts with one blank between them.
template <typename... More>
Text Words(const Text& first, const More&... more) {
    Text text = first;
    ((text += Text::Path(std::string_view(" ")), text += Text(more)), ...);
    return text;
}

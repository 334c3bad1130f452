#include "tools/Mail.h"

#include "core/CodePage.h"
#include "core/Globals.h"
#include "core/Operator.h"
#include "core/TextCompare.h"

#include <array>
#include <utility>

namespace {

constexpr std::string_view Scheme = "mailto:";
constexpr std::string_view Digits = "0123456789ABCDEF";

bool IsSpecial(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < ' ' || byte > '~' || byte == '&';
}

void AppendCode(std::string& to, char c) {
    const auto byte = static_cast<unsigned char>(c);
    to += {'%', Digits[byte >> 4], Digits[byte & 15]};
}

/// The text that ReplaceSpecialCharacters has made this of. A code that it never writes was there before.
std::string Restored(std::string_view text) {
    std::string restored;
    for (std::size_t at = 0; at < text.size(); ++at) {
        restored += text[at];
        if (text[at] != '%' || at + 2 >= text.size()) continue;
        const std::size_t high = Digits.find(text[at + 1]);
        const std::size_t low = Digits.find(text[at + 2]);
        if (high == std::string_view::npos || low == std::string_view::npos) continue;
        const char c = static_cast<char>(high << 4 | low);
        if (!IsSpecial(c)) continue;
        restored.back() = c;
        at += 2;
    }
    return restored;
}

/// The text in UTF-8, with codes for all but letters, digits and what is in `others`.
std::string Coded(std::string_view text, std::string_view others) {
    std::string coded;
    for (const char c : CodePageToUtf8(Restored(text))) {
        const bool isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        if (isPlain || others.find(c) != std::string_view::npos)
            coded += c;
        else
            AppendCode(coded, c);
    }
    return coded;
}

} // namespace

std::string ReplaceSpecialCharacters(std::string_view text) {
    std::string replaced;
    for (const char c : text) {
        if (IsSpecial(c))
            AppendCode(replaced, c);
        else
            replaced += c;
    }
    return replaced;
}

std::string MailLink(std::string_view to, std::string_view cc, std::string_view bcc, std::string_view subject,
                     std::string_view body) {
    const std::array<std::pair<const char*, std::string_view>, 4> parts{
        {{"&CC=", cc}, {"&BCC=", bcc}, {"&Subject=", subject}, {"&Body=", body}}};
    std::string query;
    for (const auto& [name, text] : parts) {
        if (!text.empty()) query += name + ReplaceSpecialCharacters(text);
    }
    if (!query.empty()) query.front() = '?';
    return std::string(Scheme) + std::string(to) + query;
}

bool SendMail(std::string_view to, std::string_view cc, std::string_view bcc, std::string_view subject,
              std::string_view body) {
    return Global.TheOperator->OpenLink(MailLink(to, cc, bcc, subject, body));
}

std::string ToUri(std::string_view link) {
    if (!link.starts_with(Scheme)) return std::string(link);
    const std::string_view rest = link.substr(Scheme.size());
    const std::size_t mark = rest.find('?');
    std::string uri = std::string(Scheme) + Coded(rest.substr(0, mark), "-._~@,+");
    if (mark == std::string_view::npos) return uri;
    char before = '?';
    for (const std::string_view part : SplitText(rest.substr(mark + 1), "&")) {
        const std::size_t equals = part.find('=');
        uri += std::exchange(before, '&') + Coded(part.substr(0, equals), "-._~");
        if (equals != std::string_view::npos) uri += '=' + Coded(part.substr(equals + 1), "-._~@,:!()*");
    }
    return uri;
}

#pragma once

#include <string>
#include <string_view>

/// Messages that the desktop's own mail program is asked to begin. Texts are code page 1252.

/// A text as it stands in a link: "&" and every character below the blank or above "~", by the byte and not
/// as texts are compared, become "%" and two hexadecimal digits of their byte. All others stay, blanks and
/// "%" among them: what reads a link knows that only those characters are ever written so.
std::string ReplaceSpecialCharacters(std::string_view text);

/// The link of a message: "mailto:", the address as it stands, and those of the others that are not empty.
/// "?" stands before the first of these, "&" before each further one.
std::string MailLink(std::string_view to, std::string_view cc, std::string_view bcc, std::string_view subject,
                     std::string_view body);

/// Hands the link of a message to the desktop. False when that has no mail program or does not take it.
bool SendMail(std::string_view to, std::string_view cc, std::string_view bcc, std::string_view subject,
              std::string_view body);

/// A link of MailLink as mail programs of today read it: UTF-8, every character percent-coded that RFC 6068
/// does not allow, and what ReplaceSpecialCharacters has coded taken for the character that it was. Any
/// other link comes back as it is.
std::string ToUri(std::string_view link);

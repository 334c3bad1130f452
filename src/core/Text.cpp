#include "core/Text.h"

#include "core/Catalogue.h"
#include "core/CodePage.h"

Text::Text(MessageId entry) : utf8_(CatalogueText(entry)) {}

Text Text::Value(std::string_view codePage) {
    return Path(CodePageToUtf8(codePage));
}

Text Text::Value(std::int64_t number) {
    return Path(std::to_string(number));
}

Text Text::Path(std::string_view utf8) {
    Text text;
    text.utf8_ = utf8;
    return text;
}

std::string Text::CodePage() const {
    return Utf8ToCodePage(utf8_);
}

Text Lines(const Text& first, const Text& second) {
    return first + Text::Path(std::string_view("\n")) + second;
}

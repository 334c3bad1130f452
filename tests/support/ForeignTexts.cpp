#include "support/ForeignTexts.h"

#include "core/Globals.h"

namespace {

constexpr std::string_view Before = "\xA7"; // a paragraph sign begins and ends no built-in text

} // namespace

void UseForeignTexts() {
    for (std::size_t k = 0; k < CatalogueRowCount; ++k) {
        const CatalogueRow& row = CatalogueRows[k];
        const Text words = Text::Value(ForeignText({row.Number}));
        Global.Replacements[row.Number] = {words.Utf8(), row.Mnemonic};
    }
}

std::string ForeignText(MessageId entry) {
    return std::string(Before) + KeyOf(entry) + "\xFC\xDF";
}

void UseEnglishTexts() {
    Global.Replacements.clear();
}

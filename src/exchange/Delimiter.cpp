#include "exchange/Delimiter.h"

#include "core/TextCompare.h"

std::string_view DelimiterWord(Delimiter delimiter) {
    switch (delimiter) {
    case Delimiter::CsvQuotes:
        return "CSV Quotes";
    case Delimiter::Tab:
        return "TAB";
    case Delimiter::Csv:
        break;
    }
    return "CSV";
}

std::optional<Delimiter> DelimiterOfWord(std::string_view word) {
    for (const Delimiter each : {Delimiter::Csv, Delimiter::CsvQuotes, Delimiter::Tab}) {
        if (SameText(word, DelimiterWord(each))) return each;
    }
    return std::nullopt;
}

std::string_view DelimiterText(Delimiter delimiter) {
    return delimiter == Delimiter::Tab ? "\t" : ",";
}

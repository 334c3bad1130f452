#pragma once

#include "views/Report.h"

#include <string>
#include <vector>

/// A paragraph of a topic.
struct HelpParagraph {
    Text Words;
    bool IsHeading = false;
};

/// A topic on paper: its words, in lines as wide as the paper, without pictures.
class HelpReport final : public Report {
public:
    HelpReport(Text title, std::vector<HelpParagraph> paragraphs)
        : title_(std::move(title)),
          paragraphs_(std::move(paragraphs)) {}

    Text Title() const override { return title_; }
    void Begin(Printer& printer) override;
    std::int32_t PageCount() const override { return static_cast<std::int32_t>(pages_.size()); }
    void PrintPage(std::int32_t page, Printer& printer) override;

private:
    struct Line {
        Text Words;
        bool IsHeading = false;
        int Top = 0; ///< twips
    };

    Text title_;
    std::vector<HelpParagraph> paragraphs_;
    std::vector<std::vector<Line>> pages_;
};

#pragma once

#include "core/Printer.h"
#include "core/Text.h"

#include <cstdint>

/// Something that can be printed: pages that can be had in any order.
class Report {
public:
    Report() = default;
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;
    virtual ~Report() = default;

    /// What the document is called.
    virtual Text Title() const = 0;

    /// Divides the content into pages of this printer's. Comes before the two below, and again when another
    /// printer is to have the pages.
    virtual void Begin(Printer& printer) = 0;

    /// At least 1.
    virtual std::int32_t PageCount() const = 0;

    /// Prints one page, from 1 to PageCount().
    virtual void PrintPage(std::int32_t page, Printer& printer) = 0;

    /// Whether the content has changed since it was divided: pages before and behind do not belong together.
    virtual bool HasChanged() { return false; }

    /// What the operator is told when it has been printed; empty for nothing.
    virtual Text WhenPrinted() const { return {}; }

    /// What it is told, before the reason, when it could not be printed.
    virtual Text WhenNotPrinted() const;
};

/// The way of a report to a printer, so many pages at a time: whoever shows how far it is can stop it between
/// two steps, and nothing is printed then.
class ReportRun {
public:
    /// Begins the report; both outlive the run. Failures as Report::Begin.
    ReportRun(Report& report, Printer& printer);

    /// Prints the next pages of those that the operator wants. After the last one, and only when the content
    /// is still the same, the document is ended. Failures as Printer.
    void Step(std::int32_t pages);

    bool IsOver() const { return next_ > last_; }
    /// The content changed on the way: it is over, and nothing was printed.
    bool WasOutdated() const { return outdated_; }

    /// The page that the next step begins with, and the last one that is wanted.
    std::int32_t NextPage() const { return next_; }
    std::int32_t LastPage() const { return last_; }

private:
    Report& report_;
    Printer& printer_;
    std::int32_t first_ = 1, next_ = 1, last_ = 1;
    bool outdated_ = false;
};

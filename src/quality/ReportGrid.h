#pragma once

#include "quality/Problems.h"
#include "quality/RowWatch.h"
#include "views/GridData.h"

#include <vector>

/// The rows of a report as its grid shows them, in the five columns that an operator reads. A list
/// too long to be read is cut, and the grid says how many more there are. A row whose records or
/// templates have changed since is grey and says so.
class ReportGrid final : public GridData {
public:
    /// In the order of the report.
    explicit ReportGrid(std::vector<ProblemRow> rows);

    /// `record` from 1, as GridData counts.
    const ProblemRow& Row(std::int32_t record) const {
        return rows_.at(static_cast<std::size_t>(record) - 1);
    }
    const std::vector<ProblemRow>& Rows() const { return rows_; }

    int ColumnCount() const override { return static_cast<int>(headings_.size()); }
    const GridHeading& Heading(int column) const override;
    std::int32_t RowCount() const override { return static_cast<std::int32_t>(rows_.size()); }
    Text Cell(std::int32_t row, int column) override;
    CellMark MarkOf(std::int32_t row, int column) const override;

    bool HasChanged() const override { return outdated_; }
    bool CheckChanged() override;
    void Reload() override { outdated_ = false; }

protected:
    std::string Raw(std::int32_t record, int column) override;
    bool IsRecordNumber(int) const override { return false; }

private:
    Text CellOf(std::int32_t record, int column) const;

    std::vector<ProblemRow> rows_;
    std::vector<Text> issues_; ///< of the rows, their lists cut
    std::vector<GridHeading> headings_;
    RowWatch watch_;
    bool outdated_ = false;
};

/// A list (UTF-8) whose entries are parted by ListSeparator, cut behind the last entry that fits into so
/// many bytes, with the number of those left out; as it is when it fits. A first entry that does not fit
/// by itself is cut too, and ends in three points.
Text ShortList(std::string_view list, std::size_t bytes);

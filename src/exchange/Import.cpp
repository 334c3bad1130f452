#include "exchange/Import.h"

#include "core/Failure.h"
#include "core/Messages.h"
#include "core/Numbers.h"
#include "core/TextCompare.h"
#include "core/Trace.h"
#include "exchange/LineSplitter.h"
#include "exchange/LostLines.h"
#include "store/TableRewrite.h"
#include "store/TableScan.h"

#include <algorithm>
#include <limits>
#include <optional>

namespace {

constexpr int LineTooLong = 6;

/// Where one field's value comes from.
struct Source {
    std::size_t Column = 0; ///< from 1; 0: the literal
    std::string Literal;    ///< empty: nothing is written
};

/// The sources of all fields: entry j - 1 belongs to row j of the available fields. Worked out once,
/// since they are the same for every line.
class FieldSources {
public:
    explicit FieldSources(const ImportJob& job) : fields_(job.AvailableFields), sources_(fields_.size()) {
        for (const std::string& row : job.Literals) PlaceLiteral(row);
        for (std::size_t k = 0; k < job.SelectedFields.size(); ++k) PlaceColumn(job.SelectedFields[k], k + 1);
    }

    std::size_t Count() const { return sources_.size(); }

    const std::string& Value(std::size_t slot, const LineSplitter& line) const {
        const Source& source = sources_[slot];
        return source.Column > 0 ? line.Cell(source.Column) : source.Literal;
    }

private:
    Source* SourceOf(std::string_view field) {
        for (std::size_t j = 1; j < fields_.size(); ++j) {
            if (SameText(fields_[j], field)) return &sources_[j - 1];
        }
        return nullptr;
    }

    void PlaceLiteral(std::string_view row) {
        const std::size_t equals = row.find(RowEquals);
        if (equals == std::string_view::npos) return;
        Source* source = SourceOf(Trim(row.substr(0, equals)));
        if (source != nullptr) source->Literal = Trim(row.substr(equals + RowEquals.size()));
    }

    void PlaceColumn(std::string_view row, std::size_t column) {
        const auto place = [&](std::string_view field) {
            if (Source* source = SourceOf(field)) source->Column = column;
        };
        if (row.find(RowAnd) == std::string_view::npos) return place(row);
        while (true) {
            const std::size_t end = row.find(RowAnd);
            place(Trim(row.substr(0, end)));
            if (end == std::string_view::npos) return;
            row.remove_prefix(end + RowAnd.size());
        }
    }

    const std::vector<std::string>& fields_;
    std::vector<Source> sources_;
};

/// The number of columns of the line at which the data starts.
std::size_t ColumnsOfSample(const ImportJob& job, bool utf8) {
    ImportReader file(job.ImportFile, utf8);
    std::string sample;
    for (std::int32_t k = 1; k < job.StartLine; ++k) {
        if (!ReadOrPass(file, sample)) throw RunTimeFailure(62, job.ImportFile);
    }
    if (!file.ReadLine(sample)) throw RunTimeFailure(62, job.ImportFile);
    return CountColumns(sample, job.Delimiter);
}

/// One run over the lines of a file.
class Run {
public:
    Run(const ImportJob& job, std::size_t columns, bool utf8, TableRewrite& table, Progress& progress)
        : job_(job),
          sources_(job),
          splitter_(job.Delimiter, columns),
          file_(job.ImportFile, utf8),
          table_(table),
          lost_(job.ErrorFile, job.ImportFile),
          progress_(progress) {}

    ImportResult TakeLines() {
        SkipLines();
        while (Pass()) ShowProgress();
        return result_;
    }

    /// Puts the list of the lines that failed in place; true when there is one.
    bool ListErrors() { return lost_.Commit(); }

    /// The lines above the first one that is taken are none of those read: the bar fills at the end.
    void ShowFull() {
        constexpr std::int64_t Full = 100;
        if (job_.LineCount >= 1 && percent_ != Full) progress_.Show(Full);
    }

private:
    enum class Read { Line, TooLong, Failed, End };

    void SkipLines() {
        for (std::int32_t k = 1; k < job_.StartLine;) {
            if (ReadLine() != Read::Failed) ++k; // a line that could not be read comes again
        }
    }

    /// A line that cannot be read fails for itself. When the next one cannot be read either, the
    /// file is gone, and the table stays as it was.
    Read ReadLine() {
        try {
            const bool got = file_.ReadLine(line_);
            unreadable_ = false;
            return got ? Read::Line : Read::End;
        } catch (const RunTimeFailure& failure) {
            if (failure.Number() == LineTooLong) return Read::TooLong;
            if (unreadable_) throw;
            unreadable_ = true;
            line_.clear(); // it is tried again
            return Read::Failed;
        }
    }

    bool Pass() {
        const Read read = ReadLine();
        if (read == Read::End) return false;
        if (read == Read::Failed) return Fail(msg::LineCannotBeRead);
        if (read == Read::Line && line_.empty()) return true;
        if (result_.LinesRead < std::numeric_limits<std::int32_t>::max()) ++result_.LinesRead;
        table_.Append();
        if (read == Read::TooLong) return Fail(msg::LineTooLong);
        if (!splitter_.Split(line_)) return Fail(TooManyColumns());
        return WriteRecord() || Fail(msg::NoFieldForValue);
    }

    /// False for a value without a field in the table; the record is then empty.
    bool WriteRecord() {
        const auto fields = static_cast<std::size_t>(table_.Layout().FieldCount());
        for (std::size_t slot = 0; slot < sources_.Count(); ++slot) {
            const std::string& value = sources_.Value(slot, splitter_);
            if (value.empty()) continue;
            if (slot >= fields) {
                table_.Blank();
                return false;
            }
            table_.Write(static_cast<int>(slot) + 1, value);
        }
        return true;
    }

    Text TooManyColumns() const {
        return Words(msg::TooManyColumns, Text::Value(static_cast<std::int64_t>(splitter_.ColumnCount())),
                     msg::ColumnsOfLine, Text::Value(job_.StartLine));
    }

    /// Counts and lists a failed line; true, since the run goes on.
    bool Fail(const Text& reason) {
        lost_.Add(file_.LineNumber(), reason, line_);
        if (result_.LinesFailed < std::numeric_limits<std::int16_t>::max()) ++result_.LinesFailed;
        return true;
    }

    void ShowProgress() {
        if (job_.LineCount < 1) return;
        const double part = static_cast<double>(result_.LinesRead) / job_.LineCount * 100;
        const auto percent = static_cast<std::int64_t>(RoundToEven(part));
        if (percent != percent_) progress_.Show(percent_ = percent);
    }

    const ImportJob& job_;
    FieldSources sources_;
    LineSplitter splitter_;
    ImportReader file_;
    TableRewrite& table_;
    LostLines lost_;
    Progress& progress_;
    std::string line_;
    bool unreadable_ = false;
    std::int64_t percent_ = -1;
    ImportResult result_;
};

} // namespace

ImportResult ImportDataFile(const ImportJob& job, Progress& progress) {
    const bool utf8 = SurveyImportFile(job.ImportFile).Utf8;
    const std::size_t columns = ColumnsOfSample(job, utf8);
    if (columns < job.SelectedFields.size()) {
        ImportResult refused;
        refused.FieldCountMismatch = true;
        return refused;
    }

    TraceEvent("DBFEdit:FileOpen " + job.TableFile);
    TableRewrite table(job.TableFile);
    TraceEvent("DBFEdit:ReIndex " + job.TableFile);
    TraceEvent("DBFEdit:FileClose");
    TraceEvent("DBFEdit:FileOpen " + job.TableFile);
    Run run(job, columns, utf8, table, progress);
    ImportResult result = run.TakeLines();
    TraceEvent("DBFEdit:FileClose");
    table.Commit();
    result.ErrorsListed = run.ListErrors();
    run.ShowFull();
    return result;
}

std::vector<std::string> AvailableFieldsOf(std::string_view tablePath) {
    const TableScan scan(tablePath);
    std::vector<std::string> names{"Ignore"};
    for (int k = 1; k <= scan.Layout().FieldCount(); ++k) names.emplace_back(scan.Layout().PlainName(k));
    return names;
}

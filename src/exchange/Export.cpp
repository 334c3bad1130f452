#include "exchange/Export.h"

#include "core/Dates.h"
#include "core/Failure.h"
#include "core/Numbers.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "core/TextCompare.h"
#include "exchange/ExportColumns.h"
#include "store/TableCatalogue.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <unordered_map>

namespace {

constexpr std::string_view Equals = " = ";
constexpr std::string_view FormatWord = "Format:";

std::span<const TableField> FieldsOf(std::string_view table) {
    const TableEntry* entry = FindTable(table);
    if (entry == nullptr) throw RunTimeFailure(9, std::string(table));
    return entry->Fields;
}

/// A field of the current header or of the current line.
struct FieldPlace {
    enum class Table { None, Header, Line } Of = Table::None;
    int Position = 0;
};

/// The records that a row of output is built from.
struct Current {
    const OrderTables& Tables;
    std::int32_t Header = 0;
    std::int32_t Line = 0;

    /// Nothing when the table in the file has fewer fields than it should.
    std::optional<std::string_view> Value(const FieldPlace& place) const {
        const bool ofLine = place.Of == FieldPlace::Table::Line;
        const MemoryTable& table = ofLine ? Tables.FGLin : Tables.FGHdr;
        if (place.Of == FieldPlace::Table::None || place.Position > table.FieldCount()) return std::nullopt;
        return table.Cell(ofLine ? Line : Header, place.Position);
    }
};

class FieldNames {
public:
    explicit FieldNames(bool withLines)
        : header_(FieldsOf("ZUKORHDR")),
          line_(withLines ? FieldsOf("ZUKORLIN") : std::span<const TableField>()) {}

    FieldPlace FindHeader(std::string_view name) const {
        const int position = PlaceOf(header_, name);
        return position > 0 ? FieldPlace{FieldPlace::Table::Header, position} : FieldPlace{};
    }

    FieldPlace Find(std::string_view name) const {
        const FieldPlace place = FindHeader(name);
        if (place.Of != FieldPlace::Table::None) return place;
        const int position = PlaceOf(line_, name);
        return position > 0 ? FieldPlace{FieldPlace::Table::Line, position} : FieldPlace{};
    }

private:
    std::span<const TableField> header_;
    std::span<const TableField> line_;
};

/// One side of a calculation: a constant, or a field, or neither, which leaves the value of the last
/// calculation in place.
struct Operand {
    Operand() = default;
    Operand(std::string_view text, const FieldNames& names) {
        if (FindText(text, "[") == std::string_view::npos) {
            Place = names.Find(text);
            return;
        }
        // What stands between the first character and the closing bracket, whatever the first is.
        const std::size_t end = text.find(']');
        if (end != std::string_view::npos && end > 0) Constant = text.substr(1, end - 1);
    }

    void Evaluate(const Current& current, std::string& value) const {
        if (Constant)
            value = *Constant;
        else if (const auto field = current.Value(Place))
            value = *field;
    }

    std::optional<std::string> Constant;
    FieldPlace Place;
};

/// The date in eight digits by a format; nothing when they are no date.
std::optional<std::string> FormatDate(std::string_view digits, const std::string& format) {
    const auto part = [&](std::size_t from, std::size_t size) {
        return std::string(digits.substr(std::min(from, digits.size()), size));
    };
    try {
        const auto date = CDate(part(0, 4) + "/" + part(4, 2) + "/" + part(6, 2));
        if (!date) return std::nullopt;
        return std::string(Trim(Format(*date, format)));
    } catch (const RunTimeFailure&) {
        return std::nullopt;
    }
}

/// The result as a number's text; nothing when there is none, as for a division by 0.
std::optional<std::string> Calculate(double left, char operation, double right) {
    if (operation == '/' && right == 0) return std::nullopt;
    double result = 0;
    switch (operation) {
    case '+':
        result = left + right;
        break;
    case '-':
        result = left - right;
        break;
    case '*':
        result = left * right;
        break;
    default:
        result = left / right;
    }
    try {
        return NumberToText(result == 0 ? 0 : result); // no negative zero
    } catch (const RunTimeFailure&) {
        return std::nullopt;
    }
}

/// The operands of the last calculation, shared by all columns and records.
struct Operands {
    std::string Left;
    std::string Right;
};

/// One output column, its row taken apart once.
class Column {
public:
    Column(std::string_view row, const FieldNames& names) {
        const std::size_t equals = row.find(Equals);
        if (equals != std::string_view::npos)
            literal_ = std::string(Trim(row.substr(equals + Equals.size())));
        for (const std::string_view each : Operators) {
            const std::size_t at = row.find(each);
            if (at == std::string_view::npos) continue;
            operator_ = each;
            left_ = Operand(row.substr(0, at), names);
            right_ = Operand(row.substr(at + each.size()), names);
            return;
        }
        const std::size_t format = FindText(row, FormatWord);
        if (format != std::string_view::npos && format > 0) {
            place_ = names.FindHeader(row.substr(0, format - 1));
            if (place_.Of != FieldPlace::Table::None)
                format_ = std::string(row.substr(format + FormatWord.size()));
        }
        if (!format_) place_ = names.Find(row);
    }

    /// True when records with the same header have the same value here.
    bool FollowsHeader() const { return operator_.empty() && place_.Of != FieldPlace::Table::Line; }

    /// The field's value where the cell is just that: it needs no memory of the record before.
    std::optional<std::string_view> Plain(const Current& current) const {
        if (literal_ || format_ || !operator_.empty()) return std::nullopt;
        return current.Value(place_);
    }

    void Fill(const Current& current, Operands& operands, std::string& cell) {
        if (literal_) cell = *literal_;
        if (!operator_.empty())
            FillCalculation(current, operands, cell);
        else if (const auto value = current.Value(place_))
            FillField(*value, cell);
    }

private:
    void FillCalculation(const Current& current, Operands& operands, std::string& cell) const {
        left_.Evaluate(current, operands.Left);
        right_.Evaluate(current, operands.Right);
        const auto left = NumericValue(operands.Left);
        const auto right = NumericValue(operands.Right);
        if (left && right) {
            if (auto result = Calculate(*left, operator_[1], *right)) cell = std::move(*result);
            return;
        }
        cell = operands.Left;
        cell += operator_;
        cell += operands.Right;
    }

    void FillField(std::string_view value, std::string& cell) {
        if (!format_ || value.empty()) {
            cell = value;
            return;
        }
        const auto [date, isNew] = dates_.try_emplace(std::string(value));
        if (isNew) date->second = FormatDate(value, *format_);
        if (date->second) cell = *date->second;
    }

    std::optional<std::string> literal_;
    std::string_view operator_;
    Operand left_;
    Operand right_;
    FieldPlace place_;
    std::optional<std::string> format_;
    std::unordered_map<std::string, std::optional<std::string>> dates_; ///< by their digits: orders share few
};

/// Finds an order's header: the first record whose first field is the code, case not regarded.
class HeaderIndex {
public:
    explicit HeaderIndex(const MemoryTable& headers) {
        first_.reserve(static_cast<std::size_t>(headers.RecordCount()));
        for (std::int32_t k = 1; k <= headers.RecordCount(); ++k) {
            first_.try_emplace(FoldCase(headers.CellOrEmpty(k, 1)), k);
        }
    }

    /// 0 when there is none.
    std::int32_t Find(std::string_view code) {
        if (code == lastCode_ && lastFound_ >= 0) return lastFound_;
        const auto found = first_.find(FoldCase(code));
        lastCode_ = code;
        lastFound_ = found == first_.end() ? 0 : found->second;
        return lastFound_;
    }

private:
    std::unordered_map<std::string, std::int32_t> first_;
    std::string lastCode_; ///< lines of an order mostly stand together
    std::int32_t lastFound_ = -1;
};

void AppendQuoted(std::string& line, std::string_view text) {
    line += '"';
    line += text;
    line += '"';
}

using Sink = std::function<void(std::string_view line)>;

class Run {
public:
    /// `limit`: orders or order lines to write.
    Run(const ExportJob& job, const OrderTables& tables, bool withLines, Sink sink, Progress& progress,
        std::int32_t limit = std::numeric_limits<std::int32_t>::max())
        : job_(job),
          delimiter_(DelimiterText(job.Delimiter)),
          tables_(tables),
          writeLine_(std::move(sink)),
          limit_(limit),
          progress_(progress),
          cells_(job.Columns.size()) {
        const FieldNames names(withLines);
        for (const std::string& row : job.Columns) {
            columns_.emplace_back(row, names);
            const bool followsHeader = columns_.back().FollowsHeader();
            if (parts_.empty() || parts_.back().FollowsHeader != followsHeader)
                parts_.push_back({columns_.size() - 1, 0, followsHeader, {}});
            parts_.back().End = columns_.size();
        }
    }

    void WriteHeadings() {
        std::string line;
        for (const std::string& row : job_.Columns) {
            if (&row != &job_.Columns.front()) line += delimiter_;
            if (job_.Delimiter == Delimiter::CsvQuotes)
                AppendQuoted(line, Trim(row));
            else
                line += row;
        }
        writeLine_(line);
    }

    ExportResult WalkHeaders() {
        result_.Walked = tables_.FGHdr.RecordCount();
        for (std::int32_t header = 1; header <= result_.Walked && result_.Exported < limit_; ++header) {
            WriteRecord({tables_, header, 0});
            if (job_.AddBlankLine) writeLine_("");
        }
        return result_;
    }

    ExportResult WalkLines() {
        HeaderIndex headers(tables_.FGHdr);
        std::string lastOrder;
        result_.Walked = tables_.FGLin.RecordCount();
        for (std::int32_t line = 1; line <= result_.Walked && result_.Exported < limit_; ++line) {
            const std::string_view order = tables_.FGLin.CellOrEmpty(line, 1);
            const std::int32_t header = headers.Find(order);
            if (header == 0) {
                if (result_.OrphanLines < std::numeric_limits<std::int16_t>::max()) ++result_.OrphanLines;
                continue;
            }
            if (!SameText(order, lastOrder)) {
                lastOrder = order;
                if (job_.AddBlankLine) writeLine_("");
            }
            WriteRecord({tables_, header, line});
        }
        return result_;
    }

private:
    /// Columns next to each other that all follow the header, or none of them does.
    struct Part {
        std::size_t First = 0, End = 0;
        bool FollowsHeader = false;
        std::string Text; ///< as it stands in the line, with the delimiter before it
    };

    /// The cell as it stands in the file.
    void AppendText(std::string_view cell, std::string& to) const {
        if (job_.Delimiter != Delimiter::CsvQuotes || IsNumeric(cell)) {
            to += cell;
            return;
        }
        const std::string_view text = Trim(cell);
        if (text.starts_with('"') && text.ends_with('"'))
            to += text;
        else
            AppendQuoted(to, text);
    }

    void Build(Part& part, const Current& current) {
        part.Text.clear();
        for (std::size_t k = part.First; k < part.End; ++k) {
            if (k > 0) part.Text += delimiter_;
            if (const auto value = columns_[k].Plain(current)) {
                AppendText(*value, part.Text);
            } else {
                columns_[k].Fill(current, operands_, cells_[k]);
                AppendText(cells_[k], part.Text);
            }
        }
    }

    void WriteRecord(const Current& current) {
        const bool sameHeader = current.Header == lastHeader_;
        lastHeader_ = current.Header;
        line_.clear();
        for (Part& part : parts_) {
            if (!sameHeader || !part.FollowsHeader) Build(part, current);
            line_ += part.Text;
        }
        writeLine_(line_);
        progress_.Show(++result_.Exported);
    }

    const ExportJob& job_;
    const std::string_view delimiter_;
    const OrderTables& tables_;
    Sink writeLine_;
    std::int32_t limit_;
    Progress& progress_;
    std::vector<Column> columns_;
    std::vector<std::string> cells_; ///< keep their values from record to record
    std::vector<Part> parts_;
    std::int32_t lastHeader_ = 0;
    Operands operands_;
    std::string line_;
    ExportResult result_;
};

} // namespace

bool HasLineFields(std::span<const std::string> columns) {
    const std::span<const TableField> fields = FieldsOf("ZUKORLIN");
    return std::any_of(columns.begin(), columns.end(), [&](const std::string& row) {
        return std::any_of(fields.begin(), fields.end(), [&](const TableField& field) {
            return FindText(row, field.Name) != std::string_view::npos;
        });
    });
}

ExportResult ExportOrders(const ExportJob& job, const OrderTables& tables, Progress& progress) {
    const bool withLines = HasLineFields(job.Columns);
    std::unique_ptr<SafeFile> file;
    try {
        file = std::make_unique<SafeFile>(job.ExportFile);
    } catch (const RunTimeFailure&) {
        ExportResult refused;
        refused.Walked = withLines ? tables.FGLin.RecordCount() : tables.FGHdr.RecordCount();
        refused.CouldNotOpen = true;
        return refused;
    }
    Run run(
        job, tables, withLines, [&](std::string_view line) { file->WriteLine(line); }, progress);
    if (job.AddHeadings) run.WriteHeadings();
    const ExportResult result = withLines ? run.WalkLines() : run.WalkHeaders();
    file->Commit();
    progress.Show(std::int64_t{result.Walked} + StepsBehindExport);
    return result;
}

std::vector<std::string> PreviewOrders(const ExportJob& job, const OrderTables& tables,
                                       std::int32_t records) {
    std::vector<std::string> lines;
    NoProgress nobody;
    const bool withLines = HasLineFields(job.Columns);
    Run run(
        job, tables, withLines, [&](std::string_view line) { lines.emplace_back(line); }, nobody, records);
    if (job.AddHeadings) run.WriteHeadings();
    withLines ? run.WalkLines() : run.WalkHeaders();
    return lines;
}

std::string ExportFileName(std::string_view text, Delimiter delimiter) {
    std::string name(text);
    if (ExtensionOf(text).empty()) name += delimiter == Delimiter::Tab ? ".txt" : ".csv";
    return name;
}

#include "exchange/ExportSteps.h"

#include "core/Dates.h"
#include "core/Failure.h"
#include "core/Numbers.h"
#include "core/TextCompare.h"
#include "store/DBFEdit.h"
#include "store/TableCatalogue.h"

#include <functional>

namespace {

using Grid = std::vector<std::vector<std::string>>;

// Positions count from 1; 0 is "not found".

std::size_t InStr(const std::string& text, std::string_view part) {
    const std::size_t at = FindText(text, part);
    return at == std::string::npos ? 0 : at + 1;
}

std::string Left(const std::string& text, std::ptrdiff_t count) {
    if (count < 0) throw RunTimeFailure(5);
    return text.substr(0, static_cast<std::size_t>(count));
}

std::string Mid(const std::string& text, std::size_t from, std::ptrdiff_t count = 1 << 20) {
    if (count < 0) throw RunTimeFailure(5);
    return from > text.size() ? std::string() : text.substr(from - 1, static_cast<std::size_t>(count));
}

std::string Trimmed(const std::string& text) {
    return std::string(Trim(text));
}

Grid DisplayData(const std::string& path) {
    DBFEdit table;
    table.FileOpen(path);
    Grid grid;
    for (std::int32_t k = 1; k <= table.RecordCount; ++k) {
        table.Go(k);
        std::vector<std::string> row;
        for (int field = 1; field <= table.NoFields(); ++field) row.push_back(Trimmed(table.GetData(field)));
        grid.push_back(row);
    }
    table.FileClose();
    return grid;
}

std::vector<std::string> NamesOf(const char* table) {
    std::vector<std::string> names;
    for (const TableField& field : FindTable(table)->Fields) names.emplace_back(field.Name);
    return names;
}

class Steps {
public:
    Steps(const ExportJob& job, Grid headers, Grid lines)
        : Job(job),
          FGHdr(std::move(headers)),
          FGLin(std::move(lines)),
          Cells(job.Columns.size() + 1) {}

    std::string Run(ExportResult& result) {
        for (const std::string& row : Job.Columns) {
            for (const std::string& name : LineNames) HasLines = HasLines || InStr(row, name) > 0;
        }
        if (Job.AddHeadings) WriteHeadings();
        if (HasLines)
            WalkLines(result);
        else
            WalkHeaders(result);
        return Output;
    }

private:
    void WriteLine(const std::string& line) { Output += line + "\r\n"; }

    std::string Separator() const { return Job.Delimiter == Delimiter::Tab ? "\t" : ","; }

    void WriteHeadings() {
        std::string line;
        for (const std::string& row : Job.Columns) {
            line += Job.Delimiter == Delimiter::CsvQuotes ? "\"" + Trimmed(row) + "\"" : row;
            line += Separator();
        }
        WriteLine(line.substr(0, line.empty() ? 0 : line.size() - 1));
    }

    void WalkHeaders(ExportResult& result) {
        for (Header = 0; Header < FGHdr.size(); ++Header) {
            BuildCells();
            WriteLine(OutputLine());
            if (Job.AddBlankLine) WriteLine("");
            ++result.Exported;
        }
        result.Walked = static_cast<std::int32_t>(FGHdr.size());
    }

    void WalkLines(ExportResult& result) {
        std::string lastOrder;
        for (Line = 0; Line < FGLin.size(); ++Line) {
            const std::string order = FGLin[Line][0];
            Header = 0;
            while (Header < FGHdr.size() && TextCompare(FGHdr[Header][0], order) != 0) ++Header;
            if (Header == FGHdr.size()) {
                result.OrphanLines = static_cast<std::int16_t>(result.OrphanLines + 1);
                continue;
            }
            BuildCells();
            const std::string line = OutputLine();
            if (TextCompare(order, lastOrder) != 0) {
                lastOrder = order;
                if (Job.AddBlankLine) WriteLine("");
            }
            WriteLine(line);
            ++result.Exported;
        }
        result.Walked = static_cast<std::int32_t>(FGLin.size());
    }

    /// A statement that fails is passed over.
    static void Statement(const std::function<void()>& statement) {
        try {
            statement();
        } catch (const RunTimeFailure&) {
        }
    }

    static std::size_t Find(const std::vector<std::string>& names, const std::string& name) {
        for (std::size_t k = 0; k < names.size(); ++k) {
            if (TextCompare(names[k], name) == 0) return k + 1;
        }
        return 0;
    }

    static const std::string& At(const std::vector<std::string>& row, std::size_t position) {
        if (position < 1 || position > row.size()) throw RunTimeFailure(9);
        return row[position - 1];
    }

    void Evaluate(const std::string& operand, std::string& value) {
        if (InStr(operand, "[") > 0) {
            Statement([&] { value = Mid(operand, 2, static_cast<std::ptrdiff_t>(InStr(operand, "]")) - 2); });
        } else if (const std::size_t header = Find(HeaderNames, operand)) {
            Statement([&] { value = At(FGHdr[Header], header); });
        } else if (const std::size_t line = HasLines ? Find(LineNames, operand) : 0) {
            Statement([&] { value = At(FGLin[Line], line); });
        }
    }

    void Calculate(const std::string& row, const std::string& operation, std::string& cell) {
        const std::size_t at = InStr(row, operation);
        Evaluate(Left(row, static_cast<std::ptrdiff_t>(at) - 1), Operand1);
        Evaluate(Mid(row, at + 3), Operand2);
        if (!IsNumeric(Operand1) || !IsNumeric(Operand2)) {
            cell = Operand1 + operation + Operand2;
            return;
        }
        const double left = ToNumber(Operand1);
        const double right = ToNumber(Operand2);
        Statement([&] {
            if (operation == " + ") cell = NumberToText(left + right);
            if (operation == " - ") cell = NumberToText(left - right);
            if (operation == " * ") cell = NumberToText(left * right + 0.0);
            if (operation == " / ") {
                if (right == 0) throw RunTimeFailure(11);
                cell = NumberToText(left / right + 0.0);
            }
        });
    }

    void BuildCells() {
        std::size_t pointer = 1;
        for (const std::string& row : Job.Columns) {
            BuildCell(row, Cells[pointer]);
            ++pointer;
        }
    }

    void BuildCell(const std::string& row, std::string& cell) {
        if (InStr(row, " = ") > 0) cell = Trimmed(Mid(row, InStr(row, " = ") + 3));
        for (const char* operation : {" + ", " - ", " * ", " / "}) {
            if (InStr(row, operation) > 0) return Calculate(row, operation, cell);
        }
        if (InStr(row, "Format:") > 1) {
            const std::size_t word = InStr(row, "Format:");
            const std::size_t field = Find(HeaderNames, Left(row, static_cast<std::ptrdiff_t>(word) - 2));
            if (field > 0) {
                Statement([&] {
                    const std::string value = At(FGHdr[Header], field);
                    if (value.empty()) {
                        cell.clear();
                        return;
                    }
                    const auto date = CDate(Left(value, 4) + "/" + Mid(value, 5, 2) + "/" + Mid(value, 7, 2));
                    if (!date) throw RunTimeFailure(13);
                    cell = Trimmed(Format(*date, Mid(row, word + 7)));
                });
                return;
            }
        }
        if (const std::size_t header = Find(HeaderNames, row)) {
            Statement([&] { cell = At(FGHdr[Header], header); });
        } else if (const std::size_t line = HasLines ? Find(LineNames, row) : 0) {
            Statement([&] { cell = At(FGLin[Line], line); });
        }
    }

    std::string OutputLine() const {
        std::string line;
        for (std::size_t k = 1; k < Cells.size(); ++k) {
            std::string cell = Cells[k];
            if (Job.Delimiter == Delimiter::CsvQuotes && !IsNumeric(cell)) {
                cell = Trimmed(cell);
                if (cell.empty() || cell.front() != '"' || cell.back() != '"') cell = "\"" + cell + "\"";
            }
            line += (k > 1 ? Separator() : "") + cell;
        }
        return line;
    }

    const ExportJob& Job;
    Grid FGHdr, FGLin;
    std::vector<std::string> Cells;
    std::vector<std::string> HeaderNames = NamesOf("ZUKORHDR"), LineNames = NamesOf("ZUKORLIN");
    std::string Operand1, Operand2, Output;
    std::size_t Header = 0, Line = 0;
    bool HasLines = false;
};

} // namespace

std::string ExportStepByStep(const ExportJob& job, const std::string& headerFile, const std::string& lineFile,
                             ExportResult& result) {
    return Steps(job, DisplayData(headerFile), DisplayData(lineFile)).Run(result);
}

#include "exchange/ImportSteps.h"

#include "core/Failure.h"
#include "core/TextCompare.h"
#include "core/TextFile.h"
#include "store/DBFEdit.h"
#include "support/TableSteps.h"

namespace {

// Positions count from 1; 0 is "not found".

std::size_t InStr(std::size_t from, const std::string& text, const std::string& part) {
    const std::size_t at = text.find(part, from - 1);
    return at == std::string::npos ? 0 : at + 1;
}

std::string Left(const std::string& text, std::size_t count) {
    return text.substr(0, count);
}

std::string Mid(const std::string& text, std::size_t from) {
    return from > text.size() ? std::string() : text.substr(from - 1);
}

std::string Trimmed(const std::string& text) {
    return std::string(Trim(text));
}

/// An array with the bounds 0 to `last`.
class TextArray {
public:
    explicit TextArray(std::size_t last) : texts_(last + 1) {}
    std::string& operator()(std::size_t index) {
        if (index >= texts_.size()) throw RunTimeFailure(9);
        return texts_[index];
    }
    std::size_t Last() const { return texts_.size() - 1; }

private:
    std::vector<std::string> texts_;
};

class Steps {
public:
    explicit Steps(const ImportJob& job) : Job(job), Cells(0), FieldValues(job.AvailableFields.size()) {}

    ImportResult Run() {
        PlaceLiterals();
        const std::size_t columnCount = CountColumns();
        if (columnCount < Job.SelectedFields.size()) {
            Result.FieldCountMismatch = true;
            return Result;
        }
        Cells = TextArray(columnCount);
        EmptyStepByStep(Table, Job.TableFile);
        Table.FileOpen(Job.TableFile);
        BeginAppending(Table);
        TextReader file(Job.ImportFile);
        for (int k = 1; k < Job.StartLine; ++k) file.RequireLine();
        while (!file.AtEnd()) {
            try {
                Pass(file);
            } catch (const RunTimeFailure&) {
                Result.LinesFailed = static_cast<std::int16_t>(Result.LinesFailed + 1);
            }
        }
        Table.FileClose();
        return Result;
    }

private:
    std::size_t RowOf(const std::string& name) {
        for (std::size_t j = 1; j < Job.AvailableFields.size(); ++j) {
            if (TextCompare(Job.AvailableFields[j], name) == 0) return j;
        }
        return 0;
    }

    void PlaceLiterals() {
        for (const std::string& row : Job.Literals) {
            const std::size_t equals = InStr(1, row, " = ");
            if (equals == 0) continue;
            const std::size_t j = RowOf(Trimmed(Left(row, equals - 1)));
            if (j > 0) FieldValues(j - 1) = Trimmed(Mid(row, equals + 3));
        }
    }

    std::size_t CountColumns() {
        TextReader file(Job.ImportFile);
        std::string sample;
        for (int k = 1; k <= Job.StartLine; ++k) sample = file.RequireLine();
        std::size_t count = 1;
        for (const char c : sample) count += c == (Job.Delimiter == Delimiter::Tab ? '\t' : ',') ? 1 : 0;
        return count;
    }

    void Pass(TextReader& file) {
        const std::string line = file.RequireLine();
        if (line.empty()) return;
        ++Result.LinesRead;
        Table.Go(DBFEdit::Append);
        if (Job.Delimiter == Delimiter::Tab)
            SplitTabs(line);
        else
            SplitCommas(line);
        MapCells();
        for (std::size_t j = 0; j <= FieldValues.Last(); ++j) {
            if (TextCompare(FieldValues(j), "") > 0) Table.WriteData(static_cast<int>(j) + 1, FieldValues(j));
        }
        Table.UpDate();
    }

    std::string StripFieldQuotes(std::string text) {
        text = Trimmed(text);
        FieldComplete = true;
        if (Left(text, 1) == "\"") {
            FieldComplete = false;
            if (text.size() >= 2 && text.back() == '"') {
                FieldComplete = true;
                QuotesRemoved = true;
                text = text.substr(1, text.size() - 2);
            }
        }
        return text;
    }

    static std::size_t Count(const std::string& text, char c) {
        std::size_t count = 0;
        for (const char each : text) count += each == c ? 1 : 0;
        return count;
    }

    /// Position of the n-th comma.
    static std::size_t Comma(const std::string& text, int n) {
        std::size_t at = 0;
        for (int k = 0; k < n; ++k) {
            at = InStr(at + 1, text, ",");
            if (at == 0) return 0;
        }
        return at;
    }

    void SplitCommas(std::string line) {
        if (Job.Delimiter == Delimiter::Csv && Count(line, ',') + 1 > Cells.Last()) throw RunTimeFailure(5);
        std::size_t pointer = 1;
        while (InStr(1, line, ",") > 0) {
            Cells(pointer) = Left(line, InStr(1, line, ",") - 1);
            const std::string saved = line;
            bool neverCloses = false;
            for (int turn = 1; true; ++turn) {
                Cells(pointer) = StripFieldQuotes(Cells(pointer));
                if (FieldComplete) break;
                neverCloses = turn > 1 && Comma(saved, turn) == 0;
                if (neverCloses) break;
                const std::string held = Cells(pointer);
                line = Mid(saved, held.size() + 1);
                const std::size_t next = Comma(saved, turn + 1);
                Cells(pointer) = held + (next == 0 ? line : Left(line, next - held.size() - 1));
            }
            if (neverCloses) {
                line.clear();
            } else if (QuotesRemoved) {
                QuotesRemoved = false;
                line = Trimmed(Mid(saved, Cells(pointer).size() + 4));
            } else {
                line = Trimmed(Mid(line, Cells(pointer).size() + 2));
            }
            Cells(pointer) = Trimmed(Cells(pointer));
            ++pointer;
        }
        if (!line.empty()) Cells(pointer) = Trimmed(line);
    }

    void SplitTabs(std::string line) {
        if (Count(line, '\t') + 1 > Cells.Last()) throw RunTimeFailure(5);
        std::size_t pointer = 1;
        while (InStr(1, line, "\t") > 0 && !line.empty()) {
            const std::size_t tab = InStr(1, line, "\t");
            Cells(pointer) = Trimmed(Left(line, tab - 1));
            line = Trimmed(Mid(line, tab + 1));
            ++pointer;
        }
        Cells(pointer) = Trimmed(line);
    }

    void MapCells() {
        std::size_t column = 1;
        for (std::string row : Job.SelectedFields) {
            if (InStr(1, row, "; ") == 0) {
                Feed(row, column);
            } else {
                while (InStr(1, row, "; ") > 0) {
                    Feed(Trimmed(Left(row, InStr(1, row, "; ") - 1)), column);
                    row = Mid(row, InStr(1, row, "; ") + 2);
                }
                Feed(Trimmed(row), column);
            }
            ++column;
        }
    }

    void Feed(const std::string& field, std::size_t column) {
        const std::size_t j = RowOf(field);
        if (j > 0) FieldValues(j - 1) = Cells(column);
    }

    const ImportJob& Job;
    DBFEdit Table;
    TextArray Cells;
    TextArray FieldValues;
    bool FieldComplete = false;
    bool QuotesRemoved = false;
    ImportResult Result;
};

} // namespace

ImportResult ImportStepByStep(const ImportJob& job) {
    return Steps(job).Run();
}

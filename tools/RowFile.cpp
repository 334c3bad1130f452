#include "RowFile.h"

#include "core/CodePage.h"
#include "core/Failure.h"
#include "core/TextFile.h"
#include "store/TableRewrite.h"

namespace {

std::vector<std::string> Cells(const std::string& line) {
    std::vector<std::string> cells{""};
    for (const char c : Utf8ToCodePage(line)) {
        if (c == '\t')
            cells.emplace_back();
        else
            cells.back() += c;
    }
    return cells;
}

} // namespace

RowFile ReadRowFile(const std::string& file) {
    TextReader reader(file);
    RowFile rows{file, Cells(reader.RequireLine()), {}};
    for (std::string line; reader.ReadLine(line);) {
        rows.Rows.push_back(Cells(line));
        if (rows.Rows.back().size() != rows.Fields.size()) {
            throw RunTimeFailure(13, file + ", line " + std::to_string(reader.LineNumber()) +
                                         ": it has not as many columns as the first line");
        }
    }
    return rows;
}

void FillTable(const std::string& table, const RowFile& rows) {
    TableRewrite rewrite(table);
    for (const std::string& field : rows.Fields) {
        if (rewrite.Layout().Find(FieldKey(field)) == 0)
            throw RunTimeFailure(13, rows.File + ": the table has no field " + field);
    }
    for (const std::vector<std::string>& cells : rows.Rows) {
        rewrite.Append();
        for (std::size_t i = 0; i < cells.size(); ++i) {
            if (!cells[i].empty()) rewrite.Write(FieldKey(rows.Fields[i]), cells[i]);
        }
    }
    rewrite.Commit();
}

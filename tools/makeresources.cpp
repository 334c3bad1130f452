// Turns resources/ into source text at build time:
//
//   makeresources RESOURCES OUT
//
// reads messages.tsv, tables/tables.tsv and tables/<NAME>.tsv below RESOURCES and writes
// Messages.h (the msg:: constants), MessageTable.cpp and TableList.cpp below OUT, and English.tsv, the rows
// that a translation has. A fault in a file stops the build with its name, the line and the reason.

#include <array>
#include <charconv>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct Place {
    std::string File;
    int Line = 0;
};

[[noreturn]] void Refuse(const Place& place, const std::string& reason) {
    throw std::runtime_error(place.File + ":" + std::to_string(place.Line) + ": " + reason);
}

struct Row {
    Place At;
    std::vector<std::string> Cells;
};

std::vector<Row> ReadTsv(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error(path.string() + ": cannot be opened");
    std::vector<Row> rows;
    Place place{path.string(), 0};
    for (std::string line; std::getline(file, line);) {
        ++place.Line;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line.front() == '#') continue;
        Row row{place, {}};
        std::size_t begin = 0;
        for (std::size_t tab = 0; tab != std::string::npos; begin = tab + 1) {
            tab = line.find('\t', begin);
            row.Cells.push_back(line.substr(begin, tab == std::string::npos ? tab : tab - begin));
        }
        rows.push_back(row);
    }
    return rows;
}

int Number(const Row& row, std::size_t cell, int low, int high) {
    const std::string& text = row.Cells.at(cell);
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || value < low || value > high) {
        Refuse(row.At,
               "'" + text + "' is not a number from " + std::to_string(low) + " to " + std::to_string(high));
    }
    return value;
}

std::string Literal(std::string_view text) {
    std::string out = "\"";
    for (const char c : text) {
        static constexpr std::string_view octal = "01234567";
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\' || byte < 32 || byte > 126) {
            out += '\\';
            out += octal[byte >> 6];
            out += octal[(byte >> 3) & 7];
            out += octal[byte & 7];
        } else {
            out += c;
        }
    }
    return out + "\"";
}

struct Message {
    std::string Name;
    char Mnemonic = 0;
    std::string Words;
};

std::string Unquote(const Row& row, const std::string& cell) {
    if (cell.size() < 2 || cell.front() != '"' || cell.back() != '"')
        Refuse(row.At, "the text is not in quotes");
    std::string text;
    for (std::size_t i = 1; i + 1 < cell.size(); ++i) {
        if (cell[i] != '\\') {
            text += cell[i];
            continue;
        }
        const char next = cell[++i];
        if (next == 'n')
            text += '\n';
        else if (next == 't')
            text += '\t';
        else if (next == '\\')
            text += '\\';
        else
            Refuse(row.At, "behind a backslash only n, t and a backslash can stand");
    }
    return text;
}

std::map<int, Message> ReadMessages(const fs::path& path) {
    std::map<int, Message> messages;
    std::set<std::string> names;
    for (const Row& row : ReadTsv(path)) {
        if (row.Cells.size() != 4) Refuse(row.At, "a row has four columns: number, name, mnemonic, text");
        const int number = Number(row, 0, 1, 59999);
        Message message{row.Cells[1], 0, Unquote(row, row.Cells[3])};
        if (message.Name.empty() || !names.insert(message.Name).second) {
            Refuse(row.At, "the name '" + message.Name + "' is empty or stands twice");
        }
        if (row.Cells[2].size() > 1) Refuse(row.At, "a mnemonic is one letter");
        if (!row.Cells[2].empty()) {
            message.Mnemonic = row.Cells[2][0];
            if (message.Words.find(message.Mnemonic) == std::string::npos) {
                Refuse(row.At, "the mnemonic does not stand in the text");
            }
        }
        if (!messages.emplace(number, message).second) Refuse(row.At, "the number stands twice");
    }
    return messages;
}

struct Field {
    std::string Name;
    char Type = 'C';
    int Length = 0;
    int Decimals = 0;
    std::string Label;
};

struct Table {
    std::string Name;
    int FirstLabel = 0;
    std::string Role;
    std::vector<Field> Fields;
};

std::vector<Field> ReadFields(const fs::path& path) {
    std::vector<Field> fields;
    std::set<std::string> names;
    int recordLength = 1;
    for (const Row& row : ReadTsv(path)) {
        if (row.Cells.size() < 4 || row.Cells.size() > 5) {
            Refuse(row.At, "a field has five columns: name, type, width, decimals, label");
        }
        Field field{row.Cells[0], 'C', Number(row, 2, 1, 254), Number(row, 3, 0, 15), ""};
        if (field.Name.empty() || field.Name.size() > 10)
            Refuse(row.At, "a field's name has 1 to 10 characters");
        if (!names.insert(field.Name).second) Refuse(row.At, "the field stands twice");
        if (row.Cells[1] != "C" && row.Cells[1] != "N" && row.Cells[1] != "D")
            Refuse(row.At, "the type is C, N or D");
        field.Type = row.Cells[1][0];
        if (field.Type == 'D' && field.Length != 8) Refuse(row.At, "a date is 8 wide");
        if (row.Cells.size() == 5) field.Label = row.Cells[4];
        recordLength += field.Length;
        if (recordLength > 4000) Refuse(row.At, "the record is longer than 4000 bytes");
        fields.push_back(field);
    }
    return fields;
}

std::vector<Table> ReadTables(const fs::path& folder) {
    std::vector<Table> tables;
    std::set<int> starts;
    for (const Row& row : ReadTsv(folder / "tables.tsv")) {
        if (row.Cells.size() != 3) Refuse(row.At, "a table has three columns: name, first label, role");
        Table table{row.Cells[0], Number(row, 1, 60000, 63600), row.Cells[2],
                    ReadFields(folder / (row.Cells[0] + ".tsv"))};
        if (table.Fields.empty() || table.Fields.size() > 99) Refuse(row.At, "a table has 1 to 99 fields");
        if (!starts.insert(table.FirstLabel).second || table.FirstLabel % 100 != 0) {
            Refuse(row.At, "a first label is a whole hundred of its own");
        }
        tables.push_back(table);
    }
    return tables;
}

void WriteIfChanged(const fs::path& path, const std::string& content) {
    std::ifstream old(path, std::ios::binary);
    std::ostringstream present;
    present << old.rdbuf();
    if (old && present.str() == content) return;
    std::ofstream file(path, std::ios::binary);
    file << content;
    if (!file.flush()) throw std::runtime_error(path.string() + ": cannot be written");
}

constexpr std::string_view Made = "// Made from resources/ at build time.\n";

std::string MessagesHeader(const std::map<int, Message>& messages) {
    std::ostringstream out;
    out << Made << "#pragma once\n\n#include \"core/Text.h\"\n\nnamespace msg {\n";
    for (const auto& [number, message] : messages) {
        out << "inline constexpr MessageId " << message.Name << "{" << number << "};\n";
    }
    out << "}\n";
    return out.str();
}

/// What the tables and their fields are called, by the numbers of the catalogue.
std::map<int, Message> LabelsOf(const std::vector<Table>& tables) {
    std::map<int, Message> labels;
    for (const Table& table : tables) {
        int number = table.FirstLabel;
        labels[number] = {table.Name, 0, table.Role};
        for (const Field& field : table.Fields)
            labels[++number] = {table.Name + "." + field.Name, 0,
                                field.Label.empty() ? field.Name : field.Label};
    }
    return labels;
}

std::string MessageTable(const std::map<int, Message>& messages, const std::vector<Table>& tables) {
    std::ostringstream out;
    out << Made << "#include \"core/Catalogue.h\"\n\nconst CatalogueRow CatalogueRows[] = {\n";
    for (const auto& [number, message] : messages) {
        out << "{" << number << ", " << static_cast<int>(message.Mnemonic) << ", " << Literal(message.Words)
            << "},\n";
    }
    const std::map<int, Message> labels = LabelsOf(tables);
    for (const auto& [number, label] : labels)
        out << "{" << number << ", 0, " << Literal(label.Words) << "},\n";
    out << "};\nconst std::size_t CatalogueRowCount = " << messages.size() + labels.size() << ";\n";
    return out.str();
}

std::string Quoted(const std::string& words) {
    std::string out = "\"";
    for (const char c : words) {
        if (c == '\n')
            out += "\\n";
        else if (c == '\t')
            out += "\\t";
        else if (c == '\\')
            out += "\\\\";
        else
            out += c;
    }
    return out + "\"";
}

/// All rows that a translation replaces, in the form in which it has them.
std::string TranslationRows(std::map<int, Message> messages, const std::vector<Table>& tables) {
    messages.merge(LabelsOf(tables));
    std::ostringstream out;
    for (const auto& [number, message] : messages) {
        out << number << '\t' << message.Name << '\t';
        if (message.Mnemonic) out << message.Mnemonic;
        out << '\t' << Quoted(message.Words) << '\n';
    }
    return out.str();
}

std::string TableList(const std::vector<Table>& tables) {
    std::ostringstream out;
    out << Made << "#include \"store/TableCatalogue.h\"\n\nnamespace {\n";
    for (const Table& table : tables) {
        out << "const TableField " << table.Name << "Fields[] = {\n";
        for (const Field& field : table.Fields) {
            out << "{" << Literal(field.Name) << ", '" << field.Type << "', " << field.Length << ", "
                << field.Decimals << "},\n";
        }
        out << "};\n";
    }
    out << "const TableEntry Entries[] = {\n";
    for (const Table& table : tables) {
        out << "{" << Literal(table.Name) << ", " << table.FirstLabel << ", " << table.Name << "Fields},\n";
    }
    out << "};\n}\n\nstd::span<const TableEntry> AllTables() { return Entries; }\n";
    return out.str();
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "makeresources RESOURCES OUT\n";
        return 2;
    }
    try {
        const fs::path resources = argv[1];
        const fs::path out = argv[2];
        const auto messages = ReadMessages(resources / "messages.tsv");
        const auto tables = ReadTables(resources / "tables");
        fs::create_directories(out / "core");
        WriteIfChanged(out / "core" / "Messages.h", MessagesHeader(messages));
        WriteIfChanged(out / "MessageTable.cpp", MessageTable(messages, tables));
        WriteIfChanged(out / "TableList.cpp", TableList(tables));
        WriteIfChanged(out / "English.tsv", TranslationRows(messages, tables));
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << "\n";
        return 1;
    }
    return 0;
}

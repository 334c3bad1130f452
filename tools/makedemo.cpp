// Makes the handheld's files of an installed set:
//
//   makedemo RESOURCES TABLES INSTALL VERSION
//
// The demo company of RESOURCES/demo becomes tables in TABLES, in the order in which a handheld looks them
// up, and handheld databases in INSTALL, with the ink of Signatures.tsv behind the orders' headers. Beside
// them go the files of the handheld application: the tables that come with it, and for its programs, which
// are not ours to give, stand-ins that say so. VERSION is this program's, as in 1.0.0.

#include "RowFile.h"
#include "core/Failure.h"
#include "core/Numbers.h"
#include "core/Paths.h"
#include "core/Progress.h"
#include "core/SafeFile.h"
#include "handheld/Handheld.h"
#include "handheld/HandheldTable.h"
#include "handheld/Refusal.h"
#include "handheld/Signature.h"
#include "installation/InstallFiles.h"
#include "palm/Dlp.h"
#include "store/CreateTable.h"
#include "store/SortTables.h"
#include "store/TableCatalogue.h"
#include "store/TableScan.h"

#include <iostream>
#include <string>
#include <vector>

namespace {

/// Always the same files from the same rows.
const std::uint32_t Moment = DlpDate{2026, 1, 1, 12, 0, 0}.Seconds();

std::string StemOf(const std::string& file) {
    return file.substr(0, file.size() - ExtensionOf(file).size());
}

/// The tables of the demo data set.
std::vector<std::string> DemoTables() {
    std::vector<std::string> tables;
    for (const std::string& file : DemoSet()) tables.push_back(TableOfDatabase(StemOf(file)));
    return tables;
}

std::string PathOf(const std::string& tables, std::string_view table) {
    return tables + FindTable(table)->Name + ".dbf";
}

void MakeTables(const std::string& rows, const std::string& tables) {
    for (const std::string& name : DemoTables()) {
        std::vector<FieldDef> fields;
        for (const TableField& field : FindTable(name)->Fields)
            fields.push_back({field.Name, field.Type, field.Length, field.Decimals});
        const std::string path = PathOf(tables, name);
        CreateTable(path, fields);
        const std::string file = rows + FindTable(name)->Name + ".tsv";
        if (FileExists(file)) FillTable(path, ReadRowFile(file));
    }
    NoProgress nobody;
    SortCustFile(PathOf(tables, "ZUKCUST"), {}, nobody);
    SortItemFile(PathOf(tables, "ZUKITEM"), {}, nobody);
    SortSTaxFile(PathOf(tables, "ZUKSTAX"), {}, nobody);
    SortLinkFile(PathOf(tables, "ZUKLINK"));
    RebuildItemIndex(tables, nobody);
}

HandheldTable EmptyTable(const std::string& install, std::string_view name) {
    // A store that holds nothing: each table is made.
    const DatabaseStore none(AddBackslash(install + "none"), HandheldSettings::DefaultMemory);
    return HandheldTable::OpenOrMake(none, name, 0, Moment);
}

void WriteDatabaseTo(const std::string& install, const Database& database, const char* extension) {
    WriteWholeFile(install + database.Name + extension, WriteDatabase(database), false);
}

void WriteTable(const std::string& install, HandheldTable& table) {
    Database database = table.Changed(Moment);
    // Nothing in it waits for a HotSync.
    for (DatabaseRecord& record : database.Records) record.Flags = 0;
    WriteDatabaseTo(install, database, ".pdb");
}

void Sign(HandheldTable& headers, const RowFile& signatures) {
    for (const std::vector<std::string>& cells : signatures.Rows) {
        std::size_t row = 0;
        while (row < headers.Count() && headers.Get(row, "H_ORDCODE") != cells.at(0)) ++row;
        if (row == headers.Count())
            throw RunTimeFailure(13, signatures.File + ": there is no order " + cells.at(0));
        headers.Sign(row, DrawSignature(cells.at(1)));
    }
}

void MakeDatabases(const std::string& rows, const std::string& tables, const std::string& install) {
    for (const std::string& name : DemoTables()) {
        HandheldTable table = EmptyTable(install, name);
        TableScan scan(PathOf(tables, name));
        while (scan.Next()) table.Append(std::string(scan.Fields()));
        if (table.Name() == "ZUKORHDR") Sign(table, ReadRowFile(rows + "Signatures.tsv"));
        WriteTable(install, table);
    }
}

/// As the version caption has it, one digit and two behind the point: 1.0.0 is "100".
std::string MajorVersion(const std::string& version) {
    const std::size_t point = version.find('.');
    const std::string minor = version.substr(point + 1, version.find('.', point + 1) - point - 1);
    return version.substr(0, point) + (minor.size() < 2 ? "0" : "") + minor;
}

/// Tables that come with the application, without records; the version's has one.
void MakeApplicationTable(const std::string& install, const std::string& name, const std::string& version) {
    if (!FindTable(name)) {
        // The application's scratch table has no twin on the PC, and only the application knows its fields.
        Database scratch;
        static_cast<DatabaseHeader&>(scratch) = HandheldHeader(name);
        scratch.Created = scratch.Modified = Moment;
        scratch.AppInfo = PackLayout({{{"TMP_KEY", 'C', 20, 0}, {"TMP_DATA", 'C', 120, 0}}});
        return WriteDatabaseTo(install, scratch, ".pdb");
    }
    HandheldTable table = EmptyTable(install, name);
    if (table.Name() == "ZUKVER") {
        std::string fields = table.NewFields();
        table.Put(fields, "V_MAJOR", MajorVersion(version));
        table.Append(fields);
    }
    WriteTable(install, table);
}

std::string Words(std::string_view file) {
    return "This is a stand-in for " + std::string(file) +
           ", made by ZUK Tramble PC. It holds no program. The handheld application's own file of this name "
           "belongs in its place, in the folder Install of the office.";
}

/// Only the first program is one that a handheld would list.
std::uint32_t TypeOf(const std::string& file) {
    if (ExtensionOf(file) == ".pdb") return HandheldType;
    if (file == "Tramble.prc") return FourCharacters("appl");
    return FourCharacters(file == "TZUK20000#TRAMBLE.prc" ? "form" : "libr");
}

void MakeStandIn(const std::string& install, const std::string& file) {
    Database database;
    database.Name = StemOf(file);
    database.Type = TypeOf(file);
    database.Creator = HandheldCreator;
    database.Version = 1;
    database.Created = database.Modified = Moment;
    if (ExtensionOf(file) == ".prc") {
        constexpr std::uint16_t firstText = 1000;
        const std::string end(1, '\0'); // texts of a handheld end so
        database.Flags = ResourceDatabase;
        database.Resources = {{FourCharacters("tSTR"), firstText, Words(file) + end},
                              {FourCharacters("tver"), 1, "Stand-in" + end}};
    } else {
        database.Records = {{0, 0, 1, Words(file)}};
        database.IdSeed = 1;
    }
    WriteWholeFile(install + file, WriteDatabase(database), false);
}

/// What every install has beside the demo data set.
void MakeApplication(const std::string& install, const std::string& version) {
    for (const std::string& file : FilesOf(InstallKind::Program)) {
        const std::string table = TableOfDatabase(StemOf(file));
        if (table.empty() || ExtensionOf(file) != ".pdb")
            MakeStandIn(install, file);
        else
            MakeApplicationTable(install, table, version);
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        std::cerr << "makedemo RESOURCES TABLES INSTALL VERSION\n";
        return 2;
    }
    try {
        const std::string rows = AddBackslash(AddBackslash(argv[1]) + "demo");
        const std::string tables = AddBackslash(argv[2]);
        const std::string install = AddBackslash(argv[3]);
        MakePath(tables);
        MakePath(install);
        MakeTables(rows, tables);
        MakeDatabases(rows, tables, install);
        MakeApplication(install, argv[4]);
        WriteWholeFile(tables + "complete.txt", "", false);
    } catch (const std::exception& failure) { // RunTimeFailure, PalmFailure or Refusal: all tell it in words
        std::cerr << "makedemo: " << failure.what() << "\n";
        return 1;
    }
    return 0;
}

#include "fuzz/Targets.h"

#include "core/CodePage.h"
#include "core/Globals.h"
#include "core/Paths.h"
#include "core/Progress.h"
#include "core/TextCompare.h"
#include "exchange/Activity.h"
#include "exchange/Export.h"
#include "exchange/ExportTemplate.h"
#include "exchange/HeadLines.h"
#include "exchange/Import.h"
#include "exchange/ImportPreview.h"
#include "exchange/ImportTemplate.h"
#include "exchange/ImportText.h"
#include "exchange/LineSplitter.h"
#include "exchange/OrderTables.h"
#include "fuzz/OfficeTargets.h"
#include "fuzz/Outside.h"
#include "fuzz/PalmTargets.h"
#include "hotsync/HotSyncUsers.h"
#include "hotsync/ListeningAddress.h"
#include "hotsync/ManagerSettings.h"
#include "quality/CheckResults.h"
#include "quality/ReportCsv.h"
#include "quality/ReportGrid.h"
#include "quality/TemplateChecks.h"
#include "store/CreateTable.h"
#include "store/DBFEdit.h"
#include "store/SortTables.h"
#include "store/TableCatalogue.h"
#include "store/TableReader.h"
#include "store/TableRewrite.h"
#include "store/TableScan.h"
#include "store/TextBridge.h"
#include "sync/Conduits.h"
#include "sync/ManagerMessage.h"
#include "sync/UnattendedSettings.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace {

/// The next byte as a choice of the input's; 0 behind its end.
unsigned Choice(std::string_view& bytes) {
    if (bytes.empty()) return 0;
    const auto choice = static_cast<unsigned char>(bytes.front());
    bytes.remove_prefix(1);
    return choice;
}

Delimiter DelimiterOf(unsigned choice) {
    constexpr std::array Delimiters = {Delimiter::Csv, Delimiter::CsvQuotes, Delimiter::Tab};
    return Delimiters[choice % Delimiters.size()];
}

// ---- tables ----

struct TableRead {
    bool Opened = false;
    std::vector<std::string> Cells; ///< of all records, each behind its flag
};

template <typename Deed>
TableRead Reading(Deed&& deed) {
    TableRead read;
    Attempt([&] {
        deed(read);
        read.Opened = true;
    });
    return read;
}

TableRead ScanForward(const std::string& path) {
    return Reading([&](TableRead& read) {
        TableScan scan(path);
        while (scan.Next()) {
            for (int field = 0; field <= scan.Layout().FieldCount(); ++field) {
                read.Cells.emplace_back(scan.Field(field));
                Require(scan.Trimmed(field) == Trim(scan.Field(field)), "a cell is trimmed at both ends");
            }
        }
        scan.Trailing();
    });
}

TableRead StepThrough(const std::string& path) {
    return Reading([&](TableRead& read) {
        DBFEdit table;
        try {
            table.FileOpen(path);
            for (std::int32_t k = 1; k <= table.RecordCount; ++k) {
                table.Go(k);
                for (int field = 0; field <= table.NoFields(); ++field) {
                    read.Cells.push_back(table.GetData(FieldKey(field)));
                }
            }
        } catch (...) {
            table.CloseAllFiles();
            throw;
        }
        table.FileClose();
    });
}

/// Any record at any time, here from the last one back, as a grid does that is scrolled up.
TableRead LookBackward(const std::string& path) {
    return Reading([&](TableRead& read) {
        TableReader reader(path);
        const int fields = reader.Layout().FieldCount() + 1;
        read.Cells.resize(static_cast<std::size_t>(reader.RecordCount()) * static_cast<std::size_t>(fields));
        std::size_t at = read.Cells.size();
        for (std::int32_t record = reader.RecordCount(); record > 0; --record) {
            for (int field = fields - 1; field >= 0; --field)
                read.Cells[--at] = reader.Layout().Get(field, reader.Record(record));
        }
    });
}

/// Every road to a table's records shows the same ones.
void Tables(std::string_view bytes) {
    const Outside outside(bytes);
    const TableRead forward = ScanForward(outside.File);
    const TableRead steps = StepThrough(outside.File);
    const TableRead backward = LookBackward(outside.File);
    Require(forward.Opened == steps.Opened, "a table that can be scanned can be edited");
    Require(forward.Cells == steps.Cells, "a scan shows what the steps show");
    Require(backward.Opened == steps.Opened, "a table that can be edited can be looked at");
    Require(backward.Cells == steps.Cells, "a grid shows what the steps show");
    Require(outside.Disk.Content(outside.File) == bytes, "reading changes nothing");
}

/// The records that are left, and the byte behind them, a blank when it is not there.
std::string Counted(const MemoryDisk& disk, const std::string& path) {
    std::string content = disk.Content(path);
    std::size_t end = 0;
    Attempt([&] {
        const TableLayout layout = TableLayout::Read(*Global.TheDisk->Open(path, Access::Read), path);
        end =
            static_cast<std::size_t>(layout.RecordsAt()) +
            static_cast<std::size_t>(layout.RecordCount()) * static_cast<std::size_t>(layout.RecordLength()) +
            1;
    });
    content.resize(end, ' ');
    return content;
}

/// Every way to change a table leaves one that can be read, or the one that was there.
void TableChanges(std::string_view bytes) {
    Outside outside(bytes);
    std::string compacted;
    Attempt([&] {
        CompactTable(outside.File);
        compacted = Counted(outside.Disk, outside.File);
    });
    outside.Disk.Put(outside.File, std::string(bytes));
    Attempt([&] {
        DBFEdit table;
        table.FileOpen(outside.File);
        try {
            table.ReIndex(outside.File);
        } catch (...) {
            Require(compacted.empty(), "what cannot be compacted by records cannot be compacted at all");
            throw;
        }
        Require(Counted(outside.Disk, outside.File) == compacted, "both compactions leave the same table");
    });

    outside.Disk.Put(outside.File, std::string(bytes));
    Attempt([&] {
        const std::array<std::string, 3> first = {"A", "1", "2026-11-15"};
        const std::int32_t before = TableScan(outside.File).RecordCount();
        ShiftDown(outside.File, first);
        Require(TableScan(outside.File).RecordCount() == before + 1, "a shift adds one record");
    });

    outside.Disk.Put(outside.File, std::string(bytes));
    Attempt([&] {
        DBFEdit table;
        try {
            table.FileOpen(outside.File);
            table.Go(DBFEdit::Last);
            table.KillEOFFlag();
            table.Go(DBFEdit::Append);
            for (int field = 0; field <= table.NoFields(); ++field)
                table.WriteData(FieldKey(field), "2026-11-15");
            table.UpDate();
            constexpr std::int32_t FewRecords = 20;
            if (table.RecordCount < FewRecords) table.SortFile(FieldKey(1), bytes.size() % 2 == 0 ? 0 : -1);
            table.Go(DBFEdit::First);
            table.DeleteRecord();
        } catch (...) {
            table.CloseAllFiles();
            throw;
        }
        table.FileClose();
        TableScan(outside.File).Next();
    });

    outside.Disk.Put(outside.File, std::string(bytes));
    Attempt([&] {
        EmptyTable(outside.File);
        Require(TableScan(outside.File).RecordCount() == 0, "an emptied table has no records");
    });

    for (const bool clean : {false, true}) {
        outside.Disk.Put(outside.File, std::string(bytes));
        bool sorted = false;
        Attempt([&] {
            const std::int32_t before = TableScan(outside.File).RecordCount();
            NoProgress silent;
            SortCustFile(outside.File, {.RemoveSpecial = clean}, silent);
            sorted = true;
            const MemoryTable after = LoadTable(outside.File);
            Require(after.RecordCount() == before, "a sort keeps every record");
            const TableLayout layout = TableScan(outside.File).Layout();
            if (layout.FieldCount() == 0 || !SameText(layout.FieldType(1), "C"))
                return; // others are converted
            for (std::int32_t record = 2; record <= after.RecordCount(); ++record) {
                Require(TextCompare(after.Cell(record - 1, 1), after.Cell(record, 1)) <= 0,
                        "a sorted table is in the order of its keys");
            }
        });
        Require(sorted || outside.Disk.Content(outside.File) == bytes, "a table that is not sorted stays");
    }
    Require(outside.Disk.FileCount() == 1, "no work file is left");
}

std::vector<FieldDef> FieldsOfTable(std::string_view name) {
    std::vector<FieldDef> fields;
    for (const TableField& field : FindTable(name)->Fields) {
        fields.push_back({field.Name, field.Type, field.Length, field.Decimals});
    }
    return fields;
}

/// A table that should be that of the items, or else the index of them.
void BarcodeIndex(std::string_view bytes) {
    constexpr std::array Names = {"ZUKItem", "ZUKBarin"};
    const std::string spoilt = Names[Choice(bytes) % Names.size()];
    Outside outside(bytes);
    for (const char* name : Names) CreateTable("/fuzz/" + std::string(name) + ".dbf", FieldsOfTable(name));
    outside.Disk.Put("/fuzz/" + spoilt + ".dbf", std::string(bytes));
    const std::string before = outside.Disk.Content("/fuzz/ZUKBarin.dbf");
    bool rebuilt = false;
    Attempt([&] {
        NoProgress silent;
        RebuildItemIndex("/fuzz/", silent);
        rebuilt = true;
        Require(TableScan("/fuzz/ZUKBarin.dbf").RecordCount() == TableScan("/fuzz/ZUKItem.dbf").RecordCount(),
                "each item is in the index");
    });
    Require(rebuilt || outside.Disk.Content("/fuzz/ZUKBarin.dbf") == before,
            "an index that is not made stays");
    constexpr int FilesGiven = 3;
    Require(outside.Disk.FileCount() == FilesGiven, "no work file is left");
}

/// An old table, the table that its records are to follow, or the text between them.
void TextBridge(std::string_view bytes) {
    constexpr std::array Names = {"old.dap", "new.dbf", "old.txt"};
    const std::string spoilt = Names[Choice(bytes) % Names.size()];
    const std::string source = "/fuzz/old.dap";
    const std::string target = "/fuzz/new.dbf";
    const std::string text = "/fuzz/old.txt";
    Outside outside(bytes);
    for (const std::string& table : {source, target}) {
        CreateTable(table, FieldsOfTable("ZUKAudHH"));
        TableRewrite rewrite(table);
        rewrite.Append();
        rewrite.Write(1, "12");
        rewrite.Commit();
    }
    outside.Disk.Put("/fuzz/" + spoilt, std::string(bytes));
    const std::string before = outside.Disk.Content(target);

    bool written = false;
    bool merged = false;
    std::int32_t records = 0;
    Attempt([&] {
        BridgeFields fields;
        DBFtoText(source, fields, text);
        written = true;
        if (spoilt == Names[2]) outside.Disk.Put(text, std::string(bytes));
        records = TableScan(target).RecordCount();
        NoProgress silent;
        TextToDBF(target, fields, text, silent);
        merged = true;
    });
    if (!merged) {
        Require(outside.Disk.Content(target) == before, "a table that is not merged stays");
        Require(!written || outside.Disk.IsFile(text), "the text of a merge that failed stays");
    } else if (spoilt != Names[2]) {
        const TableScan old(source);
        Require(TableScan(target).RecordCount() == records + old.RecordCount(), "no record is lost or made");
        Require(AppendMissing(target, source) == 0, "what was merged is known again");
    }
    Require(!outside.Disk.IsFile(target + ".zuk~") && !outside.Disk.IsFile(text + ".zuk~"),
            "no work file is left");
}

void Memo(std::string_view bytes) {
    const unsigned block = Choice(bytes);
    const Outside outside(bytes);
    Global.AppPath = "/fuzz/";
    Attempt([&] { DBFEdit().GetDBTImage(outside.File, static_cast<std::int32_t>(block)); });
}

// ---- import ----

std::string CustomerTable() {
    const std::string path = "/fuzz/ZUKCust.dbf";
    CreateTable(path, FieldsOfTable("ZUKCust"));
    return path;
}

void Import(std::string_view bytes) {
    const Delimiter delimiter = DelimiterOf(Choice(bytes));
    constexpr unsigned StartLines = 8;
    const auto startLine = static_cast<std::int32_t>(Choice(bytes) % StartLines + 1);
    Outside outside(bytes);
    ImportJob job;
    job.ImportFile = outside.File;
    job.TableFile = CustomerTable();
    job.Delimiter = delimiter;
    job.StartLine = startLine;
    job.AvailableFields = AvailableFieldsOf(job.TableFile);
    job.SelectedFields = {"C_CODE; C_SEARCH"};
    job.Literals = {"C_CITY = Ulm"};
    job.LineCount = CountLines(job.ImportFile);
    job.ErrorFile = "/fuzz/lost.txt";
    Attempt([&] { RecogniseDelimiter(job.ImportFile); });
    Attempt([&] { ImportPreview(job.ImportFile).Columns(delimiter, startLine); });
    Attempt([&] { RememberHeadLines("/fuzz/t.cst", ReadHeadLines(job.ImportFile, startLine)); });
    Attempt([&] {
        if (const auto kept = RememberedHeadLines("/fuzz/t.cst"))
            Require(*kept == ReadHeadLines(job.ImportFile, startLine), "what is remembered is what was read");
    });
    outside.Disk.Put("/fuzz/old.cst.head", std::string(bytes));
    Attempt([&] {
        const auto old = RememberedHeadLines("/fuzz/old.cst");
        if (!old || old->Lines.empty()) return;
        RememberHeadLines("/fuzz/new.cst", *old);
        Require(RememberedHeadLines("/fuzz/new.cst") == old, "what is kept again is as it was");
    });
    Attempt([&] {
        NoProgress silent;
        const ImportResult result = ImportDataFile(job, silent);
        Require(result.LinesRead <= job.LineCount, "no line is taken in twice");
        Require(TableScan(job.TableFile).RecordCount() == result.LinesRead, "each line is a record");
        Require(result.LinesFailed <= result.LinesRead, "only a line that was read can fail");
        Require(result.ErrorsListed == (result.LinesFailed > 0), "the lines that fail are listed");
    });
}

std::vector<std::string> CellsOf(const LineSplitter& splitter) {
    std::vector<std::string> cells;
    for (std::size_t k = 1; k <= splitter.ColumnCount(); ++k) cells.push_back(splitter.Cell(k));
    return cells;
}

void Lines(std::string_view bytes) {
    const Delimiter delimiter = DelimiterOf(Choice(bytes));
    const std::size_t columns = Choice(bytes);
    LineSplitter splitter(delimiter, columns);
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\n');
        const std::string_view line = bytes.substr(0, end);
        const bool taken = splitter.Split(line);
        const std::vector<std::string> cells = CellsOf(splitter);
        for (const std::string& cell : cells) {
            Require(!cell.starts_with(' ') && !cell.ends_with(' '), "a cell has no blanks at its ends");
        }
        Require(splitter.Split(line) == taken && CellsOf(splitter) == cells, "a line says the same twice");
        if (end == std::string_view::npos) break;
        bytes.remove_prefix(end + 1);
    }
}

// ---- templates ----

bool Same(const ImportTemplate& a, const ImportTemplate& b) {
    return a.DataFile == b.DataFile && a.Delimiter.value_or(Delimiter::Csv) == b.Delimiter &&
           a.StartLine == b.StartLine && a.Fields == b.Fields && a.Literals == b.Literals;
}

void ImportTemplates(std::string_view bytes) {
    Outside outside(bytes);
    const ImportTemplateRead read = ReadImportTemplate(outside.File);
    Require(Global.Files.Count() == 0, "a file was left open");
    if (read.Complete && !read.BadDataFile) {
        WriteImportTemplate("/fuzz/again.cst", read.Template);
        Require(Same(read.Template, ReadImportTemplate("/fuzz/again.cst").Template),
                "a template that is written is read as it was");
    }
    outside.Disk.Put("/fuzz/data.csv", "Code,Name\r\nA,\"B, C\"\r\nD\r\n");
    ImportJob job;
    job.ImportFile = "/fuzz/data.csv";
    job.TableFile = CustomerTable();
    job.Delimiter = read.Template.Delimiter.value_or(Delimiter::Csv);
    job.StartLine = StartLineNumber(read.Template.StartLine);
    job.AvailableFields = AvailableFieldsOf(job.TableFile);
    job.SelectedFields = read.Template.Fields;
    job.Literals = read.Template.Literals;
    Attempt([&] {
        NoProgress silent;
        ImportDataFile(job, silent);
    });
}

/// Two orders of which one has lines, and a line without an order.
OrderTables SomeOrders() {
    const auto table = [](std::string_view name, std::vector<std::vector<std::string>> rows) {
        constexpr int Width = 8;
        const std::vector<int> lengths(FindTable(name)->Fields.size(), Width);
        MemoryTable orders(lengths);
        for (std::vector<std::string>& row : rows) {
            row.resize(lengths.size(), "12.5");
            std::string fields;
            for (std::string& cell : row) {
                cell.resize(Width, ' ');
                fields += cell;
            }
            orders.Add(fields);
        }
        return orders;
    };
    return {table("ZUKOrHdr", {{"1", "C1", "\"Bill\"", "", "", "20261115"}, {"2"}}),
            table("ZUKOrLin", {{"1", "b", "C1", "I1", "1"}, {"1"}, {"3"}})};
}

bool Same(const ExportTemplate& a, const ExportTemplate& b) {
    return a.FileName == b.FileName && a.Delimiter.value_or(Delimiter::Csv) == b.Delimiter &&
           a.SortOrders == b.SortOrders && a.AddBlankLine == b.AddBlankLine &&
           a.QualityCheck == b.QualityCheck && a.AddHeadings == b.AddHeadings && a.Columns == b.Columns;
}

void ExportTemplates(std::string_view bytes) {
    const Outside outside(bytes);
    const ExportTemplateRead read = ReadExportTemplate(outside.File);
    Require(Global.Files.Count() == 0, "a file was left open");
    if (read.Complete) {
        WriteExportTemplate("/fuzz/again.xor", read.Template);
        Require(Same(read.Template, ReadExportTemplate("/fuzz/again.xor").Template),
                "a template that is written is read as it was");
    }
    static const OrderTables Orders = SomeOrders();
    ExportJob job;
    job.ExportFile = "/fuzz/out.csv";
    job.Delimiter = read.Template.Delimiter.value_or(Delimiter::Csv);
    job.AddHeadings = read.Template.AddHeadings;
    job.AddBlankLine = read.Template.AddBlankLine;
    job.Columns = read.Template.Columns;
    Attempt([&] {
        NoProgress silent;
        const ExportResult result = ExportOrders(job, Orders, silent);
        Require(result.Exported + result.OrphanLines == result.Walked, "each record is exported or told of");
    });
}

void Activities(std::string_view bytes) {
    const Outside outside(bytes);
    Attempt([&] {
        const Activity activity = ReadActivity(outside.File);
        WriteActivity("/fuzz/again.ipm", activity);
        const Activity again = ReadActivity("/fuzz/again.ipm");
        for (std::size_t k = 0; k < activity.Rows.size(); ++k) {
            Require(again.Rows[k].Template == activity.Rows[k].Template,
                    "an activity that is written is read as it was");
        }
    });
}

void Unattended(std::string_view bytes) {
    const Outside outside(bytes);
    Attempt([&] {
        const UnattendedSettings settings = ReadUnattendedSettings(outside.File);
        SaveUA("/fuzz/again.uhs", settings);
        Require(ReadUnattendedSettings("/fuzz/again.uhs") == settings,
                "settings that are written are read as they were");
    });
}

// ---- the HotSync Manager ----

void HotSyncUsersFile(std::string_view bytes) {
    const Outside outside(bytes, "Users.txt");
    Attempt([&] {
        HotSyncUsers users("/fuzz");
        users.Load();
        const std::vector<HotSyncUser> read = users.All();
        for (const HotSyncUser& user : read) {
            Require(user.Id != 0 && users.FindId(user.Id)->Name == user.Name, "an id is that of one user");
            Require(users.FindName(UpperCase(user.Name))->Id == user.Id, "a name is that of one user");
            Require(IsNameForNewFile(NameToPath(user.Name)), "a name is that of a folder");
        }
        users.New("~ a new one ~");
        HotSyncUsers again("/fuzz");
        again.Load();
        Require(again.All() == users.All(), "users that are written are read as they were");
        if (read.empty()) return;
        again.Synced(read[0].Id, {2026, 11, 21, 14, 5, 9}, true);
        again.Delete(read[0].Id);
        users.Load();
        Require(users.All() == again.All(), "changed users are read as they were");
    });
}

void HotSyncSettingsFile(std::string_view bytes) {
    const Outside outside(bytes, "HotSync.ini");
    Attempt([&] {
        ManagerSettings settings = ReadManagerSettings("/fuzz");
        Require(IsListeningAddress(settings.Address) && settings.PCId != 0, "what is read can be used");
        settings.LargestFileMB = 3;
        settings.Address = "::1";
        WriteManagerSettings("/fuzz", settings);
        Require(ReadManagerSettings("/fuzz") == settings, "settings that are written are read as they were");
    });
}

// ---- the Quality Check ----

void CheckResultsFile(std::string_view bytes) {
    const Outside outside(bytes);
    Attempt([&] {
        const CheckResults results = CheckResults::Read(outside.File);
        results.Write("/fuzz/again.dat");
        const CheckResults again = CheckResults::Read("/fuzz/again.dat");
        for (std::size_t check = 0; check < Checks; ++check) {
            Require(again.Of(static_cast<Check>(check)) == results.Of(static_cast<Check>(check)),
                    "results that are written are read as they were");
        }
    });
}

/// The same bytes as a template of every kind.
void CheckedTemplates(std::string_view bytes) {
    Outside outside(bytes);
    Global.DataInPath = "/fuzz/in/";
    const auto put = [&](std::string& folder, const char* path, std::initializer_list<const char*> names) {
        folder = path;
        for (const char* name : names) outside.Disk.Put(folder + name, std::string(bytes));
    };
    put(Global.DownloadTemplates, "/fuzz/download/", {"x.dct", "x.dst"});
    put(Global.UploadTemplates, "/fuzz/upload/", {"x.ust"});
    put(Global.ImportTemplates, "/fuzz/import/", {"x.cst", "x.itm"});
    put(Global.ExportTemplates, "/fuzz/export/", {"x.xor"});
    put(Global.ClearPCTemplates, "/fuzz/clear/", {"x.pct"});
    put(Global.QuickButtonTemplates, "/fuzz/buttons/", {"x.ipm", "x.xpm", "x.ctm"});
    put(Global.UnattendedTemplates, "/fuzz/unattended/", {"x.uhs"});
    ProblemList problems;
    for (const auto& check : {QCDownload, QCUpload, QCImport, QCExport, QCQB, QCUA}) check(problems);
    Require(Global.Files.Count() == 0, "a file was left open");
    Require(!Global.QCFatalFound, "no template is fatal");
    for (const ProblemRow& row : problems.Rows()) {
        Require(IsTemplateTarget(row.Target), "a row about templates says of which kind");
        for (const std::string_view name : SplitText(row.List, ListSeparator))
            Require(name.size() == 5 && name.starts_with("x."), "a row lists the templates' own names");
    }
    ReportGrid grid(problems.Rows());
    Require(!grid.CheckChanged(), "nothing has changed since the check");
    for (std::int32_t row = 0; row < grid.RowCount(); ++row) {
        for (int column = 0; column < grid.ColumnCount(); ++column)
            Require(grid.Cell(row, column).Utf8().size() < 2000, "a cell is short enough to be read");
    }
    Attempt([&] { SaveReport("/fuzz/report.csv", problems.Rows()); });
}

// ---- the HotSync Manager ----

/// The same bytes in one piece and byte by byte: the messages are the same, and packed they are read again.
void ManagerMessages(std::string_view bytes) {
    const auto readAll = [](std::string_view whole, std::size_t piece) {
        ManagerMessageReader reader;
        std::vector<ManagerMessage> messages;
        Attempt([&] {
            ManagerMessage message;
            for (std::size_t at = 0; at < whole.size(); at += piece) {
                reader.Feed(whole.substr(at, piece));
                while (reader.Next(message)) messages.push_back(message);
            }
        });
        return messages;
    };
    const std::vector<ManagerMessage> messages = readAll(bytes, bytes.size());
    Require(readAll(bytes, 1) == messages, "the pieces in which messages come make no difference");
    for (const ManagerMessage& message : messages) {
        const std::string line = PackMessage(message);
        Require(line.find('\n') == line.size() - 1, "a message is one line");
        Require(readAll(line, line.size()) == std::vector{message}, "a message that is packed is read");
    }
}

void ConduitsFile(std::string_view bytes) {
    const Outside outside(bytes, "Conduits.txt");
    Attempt([&] {
        const std::vector<Conduit> conduits = ReadConduits("/fuzz");
        RegisterConduit("/fuzz", {"fuzz", "fuzz.dll", "Fuzz"});
        const std::vector<Conduit> more = ReadConduits("/fuzz");
        Require(more.size() >= conduits.size() && more.size() <= conduits.size() + 1,
                "a registration adds or replaces one conduit");
        for (const Conduit& conduit : conduits) {
            const bool kept = std::find(more.begin(), more.end(), conduit) != more.end();
            Require(kept || conduit.Creator == "fuzz", "the conduits of other creators are kept");
        }
    });
}

constexpr std::array Targets = {
    FuzzTarget{"tables", Tables},
    FuzzTarget{"table-changes", TableChanges},
    FuzzTarget{"barcode-index", BarcodeIndex},
    FuzzTarget{"text-bridge", TextBridge},
    FuzzTarget{"memo", Memo},
    FuzzTarget{"import", Import},
    FuzzTarget{"lines", Lines},
    FuzzTarget{"import-templates", ImportTemplates},
    FuzzTarget{"export-templates", ExportTemplates},
    FuzzTarget{"activities", Activities},
    FuzzTarget{"unattended", Unattended},
    FuzzTarget{"hotsync-users", HotSyncUsersFile},
    FuzzTarget{"hotsync-settings", HotSyncSettingsFile},
    FuzzTarget{"check-results", CheckResultsFile},
    FuzzTarget{"checked-templates", CheckedTemplates},
    FuzzTarget{"handheld-database", FuzzHandheldDatabase},
    FuzzTarget{"handheld-table", FuzzHandheldTable},
    FuzzTarget{"handheld-to-desktop", FuzzHandheldToDesktop},
    FuzzTarget{"desktop-to-handheld", FuzzDesktopToHandheld},
    FuzzTarget{"handheld-session", FuzzHandheldSession},
    FuzzTarget{"manager-messages", ManagerMessages},
    FuzzTarget{"conduits", ConduitsFile},
    FuzzTarget{"settings", FuzzSettings},
    FuzzTarget{"status", FuzzStatus},
    FuzzTarget{"notes", FuzzNotes},
    FuzzTarget{"messages", FuzzMessages},
    FuzzTarget{"support-desk", FuzzSupportDesk},
    FuzzTarget{"backups", FuzzBackups},
    FuzzTarget{"unfinished-jobs", FuzzUnfinishedJobs},
    FuzzTarget{"install-mark", FuzzInstallMark},
    FuzzTarget{"selections", FuzzSelections},
    FuzzTarget{"hotsync-log", FuzzHotSyncLog},
    FuzzTarget{"handheld-file", FuzzHandheldFile},
    FuzzTarget{"update-text", FuzzUpdateText},
    FuzzTarget{"file-version", FuzzFileVersion},
};

} // namespace

std::span<const FuzzTarget> FuzzTargets() {
    return Targets;
}

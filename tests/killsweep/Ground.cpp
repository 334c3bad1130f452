#include "killsweep/Ground.h"

#include "core/Globals.h"
#include "core/Paths.h"
#include "core/Progress.h"
#include "maintenance/Totals.h"
#include "store/TableRewrite.h"
#include "store/TableScan.h"

std::string Table(const std::string& name) {
    return Global.DBFPath + name;
}

void Fill(const char* name, int count, Cells (*cells)(int)) {
    TableRewrite table(Table(name));
    for (int k = 1; k <= count; ++k) {
        table.Append();
        for (const auto& [field, value] : cells(k)) table.Write(field, value);
    }
    table.Commit();
}

int Shuffled(int k, int size) {
    return k * 37 % size;
}

std::string OrderCode(int k) {
    return "HH" + std::to_string(10000 + Shuffled(k, OrderCount * 9 / 10 + 1));
}

std::string LineKey(int k) {
    return OrderCode(k % OrderCount) + "-" + std::to_string(k / OrderCount);
}

void FillOrders() {
    Fill("ZUKOrHdr.dbf", OrderCount, [](int k) {
        return Cells{{"H_ORDCODE", OrderCode(k)}, {"H_CUSTCODE", "C" + std::to_string(k)}};
    });
    Fill("ZUKOrLin.dbf", LineCount, [](int k) {
        return Cells{{"L_ORDCODE", OrderCode(k % OrderCount)},
                     {"L_KEY", LineKey(k)},
                     {"L_QTY", std::to_string(k % 9)},
                     {"L_TOTPRICE", std::to_string(k) + ".25"}};
    });
}

void FillTotals(int events) {
    Fill("ZUKTOTALPC.dbf", events, [](int k) {
        return Cells{{"TP_NUMHEAD", std::to_string(k)}, {"TP_EVENT", "UPLOAD-ADD"}};
    });
}

PCOrders Book() {
    return OpenPCOrders(Table("ZUKOrHdr.dbf"), Table("ZUKOrLin.dbf"));
}

std::vector<std::string> Column(const char* table, const char* field) {
    TableScan scan(Table(table));
    const int place = scan.Layout().Find(FieldKey(field));
    std::vector<std::string> values;
    while (scan.Next()) values.emplace_back(scan.Trimmed(place));
    return values;
}

void PutInto(const std::string& folder, const char* table, std::initializer_list<FieldDef> fields) {
    MakePath(folder);
    CreateTable(folder + table, fields);
}

std::string Event(std::string_view event) {
    NoProgress silent;
    CalcPCTotals(event, silent);
    return {};
}

std::string CodeSent(int k) {
    return "NEW" + std::to_string(k);
}

std::string Old(const std::string& table) {
    return Global.AppPath + "Old/" + table;
}
std::string New(const std::string& table) {
    return Global.AppPath + "New/" + table;
}

void Keep(const std::string& table, const std::string& made) {
    MakePath(Global.AppPath + "Old");
    MakePath(Global.AppPath + "New");
    CopyOver(Table(table.c_str()), Old(table));
    CopyOver(made, New(table));
}

std::vector<std::string> StepsOfBackup() {
    std::vector<std::string> backup = {"Backup/61115093000/"};
    for (const char* name :
         {"ZUKOrHdr.dbf", "ZUKOrLin.dbf", "ZUKAudTH.dbf", "ZUKAudTL.dbf", "ZUKAudHH.dbf", "Backup.txt"})
        backup.push_back(backup.front() + name);
    return backup;
}

std::string HotSyncFolder() {
    return Global.AppPath + "HotSync/";
}

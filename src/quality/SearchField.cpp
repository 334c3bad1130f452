#include "quality/SearchField.h"

#include "core/Failure.h"
#include "core/TextCompare.h"
#include "store/TableLock.h"
#include "store/TableRecords.h"
#include "store/TableRewrite.h"
#include "store/TableScan.h"

#include <algorithm>

namespace {

constexpr SearchField::Choice CustomerChoices[] = {
    {"Code", "C_CODE"}, {"Company", "C_NAME"}, {"Phone", "C_PHONE"}};
constexpr SearchField::Choice ItemChoices[] = {{"Code", "I_ITEMCODE"}, {"Description", "I_DESC1"}};

std::string SetupPath() {
    return Global.DBFPath + "ZUKSETUP.DBF";
}

int FieldOf(const TableScan& table, const char* name, const std::string& path) {
    const int field = table.Layout().Find(FieldKey(name));
    if (field == 0) throw RunTimeFailure(321, path + ": there is no field " + name);
    return field;
}

} // namespace

const SearchField CustomerSearch{"ZUKCUST.DBF", "C_SEARCH", "SU_SRCHCUS", &Globals::SearchCustomers,
                                 CustomerChoices};
const SearchField ItemSearch{"ZUKITEM.DBF", "I_SEARCH", "SU_SRCHITM", &Globals::SearchItems, ItemChoices};

std::string ReadSearchChoice(const SearchField& field) {
    TableScan setup(SetupPath());
    const int choice = FieldOf(setup, field.Setting, SetupPath());
    return setup.Next() ? std::string(setup.Trimmed(choice)) : std::string();
}

void WriteSearchChoice(const SearchField& field, std::string_view choice) {
    TableRecords setup;
    setup.Open(SetupPath(), field.Setting, 1);
    if (setup.RecordCount() == 0 || setup.Trimmed(field.Setting) != Trim(choice))
        setup.Write({{field.Setting, std::string(choice)}});
}

std::int32_t UpdateSearchField(const SearchField& field, std::string_view choice) {
    const auto chosen = std::find_if(field.Choices.begin(), field.Choices.end(),
                                     [&](const auto& each) { return SameText(each.Value, choice); });
    if (chosen == field.Choices.end()) throw RunTimeFailure(5, std::string(choice));
    const std::string path = Global.DBFPath + field.Table;
    TableScan table(path);
    if (TableIsLocked(path)) throw RunTimeFailure(70, path);
    const int search = FieldOf(table, field.Field, path);
    const int from = FieldOf(table, chosen->From, path);
    TableRewrite rewrite(path);
    while (table.Next()) {
        rewrite.AppendRaw(table.Flag(), table.Record());
        rewrite.Write(search, table.Field(from));
    }
    rewrite.SetTrailing(table.Trailing());
    table.Close();
    rewrite.Commit();
    return table.RecordCount();
}

#include "sync/Links.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/TextCompare.h"
#include "store/TableLock.h"
#include "store/TableRewrite.h"
#include "store/TableScan.h"

namespace {

std::string LinksPath() {
    return Global.DBFPath + "ZUKLINK.DBF";
}

constexpr const char* HotSync = "LK_HOTSYNC";
constexpr const char* Serial = "LK_SERIAL";
constexpr const char* SFUser = "LK_SFUSER";

std::vector<std::string> ReadIDs() {
    std::vector<std::string> ids;
    TableScan links(LinksPath());
    const int id = links.Layout().Find(FieldKey(HotSync));
    while (links.Next()) ids.emplace_back(links.Trimmed(id));
    return ids;
}

} // namespace

void LinkTable::Open(std::int32_t record) {
    links_.Open(LinksPath(), HotSync, record);
    try {
        ids_ = ReadIDs();
    } catch (...) {
        Close();
        throw;
    }
}

LinkFields LinkTable::Padded() const {
    return {links_.Padded(HotSync), links_.Padded(Serial), links_.Padded(SFUser)};
}

LinkFields LinkTable::Trimmed() const {
    return {links_.Trimmed(HotSync), links_.Trimmed(Serial), links_.Trimmed(SFUser)};
}

void LinkTable::Write(const LinkFields& fields) {
    links_.Write({{HotSync, fields.HotSync}, {Serial, fields.Serial}, {SFUser, fields.SFUser}});
    ids_.at(static_cast<std::size_t>(RecordNumber()) - 1) = links_.Trimmed(HotSync);
}

void LinkTable::Append() {
    links_.Append();
    ids_.emplace_back();
}

void LinkTable::Delete() {
    links_.Delete(TableRecords::Then::Next);
    ids_ = ReadIDs();
}

std::int32_t LinkTable::OtherWith(std::string_view id) const {
    for (std::size_t k = 0; k < ids_.size(); ++k) {
        const auto number = static_cast<std::int32_t>(k + 1);
        if (number != RecordNumber() && SameText(ids_[k], id)) return number;
    }
    return 0;
}

bool AddLink(std::string_view id) {
    id = Trim(id);
    const std::string path = LinksPath();
    if (id.empty()) throw RunTimeFailure(5, path);
    TableScan links(path);
    if (TableIsLocked(path)) throw RunTimeFailure(70, path);
    const int key = links.Layout().Find(FieldKey(HotSync));
    if (key == 0) throw RunTimeFailure(321, path);
    if (id.size() > links.Field(key).size()) throw RunTimeFailure(6, std::string(id));

    TableRewrite rewrite(path);
    bool entered = false;
    const auto enter = [&] {
        rewrite.Append();
        rewrite.Write(key, id);
        entered = true;
    };
    while (links.Next()) {
        const std::string_view other = links.Trimmed(key);
        if (SameText(other, id) && !links.Deleted()) return false;
        if (!entered && TextCompare(other, id) > 0) enter();
        rewrite.AppendRaw(links.Flag(), links.Record());
    }
    if (!entered) enter();
    rewrite.SetTrailing(links.Trailing());
    links.Close();
    rewrite.Commit();
    return true;
}

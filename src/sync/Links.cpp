#include "sync/Links.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/TextCompare.h"
#include "store/SortTables.h"
#include "store/TableScan.h"

#include <algorithm>

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
    LinkTable links;
    links.Open(1);
    const std::vector<std::string>& ids = links.IDs();
    if (std::ranges::any_of(ids, [&](const std::string& each) { return SameText(each, id); })) return false;
    if (id.size() > links.Padded().HotSync.size()) throw RunTimeFailure(6, std::string(id));
    links.Append();
    try {
        links.Write({std::string(id), {}, {}});
    } catch (const RunTimeFailure&) {
        links.Delete(); // a handheld without an id is none
        throw;
    }
    links.Close();
    SortLinkFile(LinksPath());
    return true;
}

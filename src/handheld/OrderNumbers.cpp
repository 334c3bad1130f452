#include "handheld/OrderNumbers.h"

#include "core/CodePage.h"
#include "core/TextCompare.h"
#include "handheld/Refusal.h"

#include <algorithm>

namespace {

constexpr std::string_view LinksTable = "ZUKLINK";
constexpr std::size_t FirstWidth = 6;
/// Of LK_LSTONUM, and what an order code has room for behind the machine id.
constexpr std::size_t MostDigits = 8;

/// Up to 8 digits as a number; none is 0.
std::uint32_t ValueOf(std::string_view digits) {
    std::uint32_t value = 0;
    for (const char digit : digits) value = value * 10 + static_cast<std::uint32_t>(digit - '0');
    return value;
}

} // namespace

OrderNumbers::OrderNumbers(const Handheld& handheld)
    : user_(Trim(handheld.Settings.User.Name)),
      machine_(handheld.Settings.Machine),
      last_(handheld.Settings.LastOrder) {
    if (!HandheldTable::Has(handheld.Store, LinksTable)) return;
    links_.emplace(handheld.Store, LinksTable);
    const std::size_t user = links_->Field("LK_HOTSYNC");
    while (row_ < links_->Count() && !SameText(links_->Get(row_, user), user_)) ++row_;
    hasRow_ = row_ < links_->Count() && !user_.empty();
    if (!hasRow_) return;
    last_ = links_->Get(row_, links_->Field("LK_LSTONUM"));
    if (const std::string_view machine = links_->Get(row_, "LK_MACH_ID"); !machine.empty())
        machine_ = machine;
    const bool isNumber = last_.size() <= MostDigits && std::all_of(last_.begin(), last_.end(), [](char c) {
                              return c >= '0' && c <= '9';
                          });
    if (!isNumber) {
        throw Refusal("ZUKLINK, record " + std::to_string(row_ + 1) +
                      ": LK_LSTONUM is no number of up to 8 digits: \"" + CodePageToUtf8(last_) + '"');
    }
}

std::string OrderNumbers::Next() {
    if (last_.empty()) last_ = std::string(FirstWidth, '0');
    std::string next = last_;
    std::size_t at = next.size();
    while (at > 0 && next[at - 1] == '9') next[--at] = '0';
    if (at > 0) {
        ++next[at - 1];
    } else {
        next.insert(0, 1, '1');
    }
    if (next.size() > MostDigits) throw Refusal("no order number is left behind " + last_);
    last_ = next;
    counted_ = true;
    return machine_ + last_;
}

/// False when the table has no room for the user's name or the machine id.
bool OrderNumbers::AddRow() {
    const auto fits = [&](std::string_view field, const std::string& value) {
        const std::size_t at = links_->Layout().Find(field);
        return at < links_->Layout().Fields.size() && value.size() <= links_->Layout().Fields[at].Length;
    };
    if (user_.empty() || !fits("LK_HOTSYNC", user_) || !fits("LK_MACH_ID", machine_)) return false;
    std::string fields = links_->NewFields();
    links_->Put(fields, "LK_HOTSYNC", user_);
    links_->Put(fields, "LK_MACH_ID", machine_);
    row_ = links_->Append(fields);
    hasRow_ = true;
    return true;
}

HandheldTable* OrderNumbers::ChangedLinks() {
    if (!links_ || !counted_ || (!hasRow_ && !AddRow())) return nullptr;
    links_->Set(row_, "LK_LSTONUM", last_);
    return &*links_;
}

void OrderNumbers::KeepIn(HandheldSettings& settings) const {
    if (!hasRow_ || ValueOf(last_) > ValueOf(settings.LastOrder)) settings.LastOrder = last_;
}

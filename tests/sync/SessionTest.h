#pragma once

#include "core/Globals.h"
#include "core/Numbers.h"
#include "core/Paths.h"
#include "maintenance/SafetyCopies.h"
#include "maintenance/Totals.h"
#include "support/EngineTest.h"
#include "support/FakeControl.h"
#include "support/Tables.h"
#include "sync/Receipt.h"
#include "sync/Status.h"

#include <map>

using Strings = std::vector<std::string>;

/// An order as a handheld takes it: its code, and the total of each line.
struct TestOrder {
    std::string Code;
    Strings Lines;
};

/// An office with the handhelds Anna, Bea and Carl, and what those carry. Transfers move tables for real.
class SessionTest : public EngineTest {
protected:
    SessionTest() {
        GivenAppDirectory();
        Global.UploadTemplates = Global.TemplatesPath + "Upload/";
        Global.DownloadTemplates = Global.TemplatesPath + "Download/";
        Moment = {2026, 11, 22, 18, 3, 11};
        Global.Clock = [] { return Moment; };
        for (const char* table : {"ZUKOrHdr", "ZUKOrLin", "ZUKAudTH", "ZUKAudTL", "ZUKAudHH", "ZUKPRN",
                                  "ZUKCust", "ZUKItem", "ZUKBarin", "ZUKTOTALPC"})
            GivenTable(Global.DBFPath, table);
        for (const char* table : {"ZUKOrHdr", "ZUKOrLin", "ZUKAudTH", "ZUKAudTL", "ZUKAudHH"})
            GivenTable(Global.DBFEmptyPath, table);
        GivenTable(Global.DBFPath, "ZUKLINK", {Link("Anna", "PC"), Link("Bea", "PC"), Link("Carl", "PC")});
        GetHHStatus();
        for (const char* user : {"Anna", "Bea", "Carl"}) GivenHandheld(user, {});
        Control.Transfer = [this](bool upload, const std::string& path) { return Transfer(upload, path); };
    }

    static inline DateTime Moment;
    FakeControl Control;

    using Tables = std::map<std::string, std::vector<Strings>>; ///< rows by file name, as "ZUKORHDR"
    std::map<std::string, Tables> Handhelds;
    Strings Fails; ///< names of tables whose transfer fails

    static std::string TableName(const std::string& path) {
        std::string name(FileNameOf(path).substr(0, FileNameOf(path).size() - 4));
        for (char& c : name) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        return name;
    }

    virtual bool Transfer(bool upload, const std::string& path) {
        const std::string name = TableName(path);
        Tables& carried = Handhelds[Control.User];
        if (std::find(Fails.begin(), Fails.end(), name) != Fails.end()) return false;
        if (upload) {
            if (!carried.contains(name)) return false;
            GivenTable(std::string(FolderOf(path)), name, carried[name]);
        } else {
            if (!FileExists(path)) return false;
            carried[name] = TableAt(ResolvePath(path)).Rows;
        }
        return true;
    }

    /// A row of a Links table: serial, machine id and the rest tell whose they are.
    static Strings Link(const std::string& user, const std::string& whose, const std::string& last = "1") {
        return RowOf("ZUKLINK", {{"LK_HOTSYNC", user},
                                 {"LK_SERIAL", "S-" + whose},
                                 {"LK_MACH_ID", whose.substr(0, 2)},
                                 {"LK_LSTONUM", last},
                                 {"LK_SFUSER", "U-" + whose}});
    }

    static std::vector<Strings> Headers(const std::vector<TestOrder>& orders) {
        std::vector<Strings> rows;
        for (const TestOrder& order : orders)
            rows.push_back(RowOf("ZUKOrHdr", {{"H_ORDCODE", order.Code}, {"H_CUSTCODE", "C" + order.Code}}));
        return rows;
    }
    static std::vector<Strings> OrderLines(const std::vector<TestOrder>& orders) {
        std::vector<Strings> rows;
        for (const TestOrder& order : orders) {
            int number = 0;
            for (const std::string& total : order.Lines) {
                const std::string line = std::to_string(++number);
                rows.push_back(RowOf("ZUKOrLin", {{"L_ORDCODE", order.Code},
                                                  {"L_KEY", order.Code + line},
                                                  {"L_NUMBER", line},
                                                  {"L_TOTPRICE", total}}));
            }
        }
        return rows;
    }

    /// What a handheld carries: orders, totals that state them, one audit, its own Links table.
    void GivenHandheld(const std::string& user, const std::vector<TestOrder>& orders) {
        Tables& carried = Handhelds[user];
        carried["ZUKORHDR"] = Headers(orders);
        carried["ZUKORLIN"] = OrderLines(orders);
        std::int64_t money = 0;
        for (const TestOrder& order : orders) {
            for (const std::string& total : order.Lines) money += ToFixed4(ToNumber(total));
        }
        carried["ZUKAUDHH"] = {{std::to_string(orders.size()), std::to_string(carried["ZUKORLIN"].size()),
                                Fixed4ToText(money), user.substr(0, 2)}};
        carried["ZUKAUDTH"] = {RowOf("ZUKAudTH", {{"A_ORDCODE", "D" + user}})};
        carried["ZUKAUDTL"] = {RowOf("ZUKAudTL", {{"A_KEY", "D" + user}})};
        carried["ZUKLINK"] = {Link(user, user, "77")};
        carried["ZUKPRN"] = {};
        carried["ZUKCUST"] = {RowOf("ZUKCust", {{"C_CODE", "FromHandheld"}})};
        carried["ZUKITEM"] = {};
    }

    static void GivenOrdersOnPC(const std::vector<TestOrder>& orders) {
        GivenTable(Global.DBFPath, "ZUKOrHdr", Headers(orders));
        GivenTable(Global.DBFPath, "ZUKOrLin", OrderLines(orders));
    }

    void GivenTemplate(const std::string& folder, const std::string& name, const std::string& content) {
        GivenFile(folder.substr(Folder().size()) + name, content);
    }

    /// First fields of a table of the tables directory, trimmed.
    static Strings Column(const std::string& table, int field = 0,
                          const std::string& folder = Global.DBFPath) {
        Strings values;
        const TableContent content = TableAt(ResolvePath(folder + table + ".dbf"));
        for (int row = 1; row <= content.Count; ++row)
            values.push_back(content.Trimmed(row)[static_cast<std::size_t>(field)]);
        return values;
    }
    static Strings OrdersOnPC() { return Column("ZUKOrHdr"); }

    /// Where things were queued, without the folders in front: "UPLOAD HHTotals/Anna/ZUKLINK.DBF".
    Strings Queue() const {
        Strings queue;
        for (const std::string& entry : Control.Queued) {
            const std::size_t at = entry.find(Global.AppPath);
            queue.push_back(entry.substr(0, at) + entry.substr(at + Global.AppPath.size()));
        }
        return queue;
    }

    static Strings LinkOnPC(int row) { return TableAt(Global.DBFPath + "ZUKLINK.dbf").Trimmed(row); }
    static Strings Copies() { return FilesWithExtension(Global.DBFPath, ".dap"); }
    static std::string StatusOf(std::size_t handheld) { return Global.HHStatus[handheld]; }

    static std::string Receipt(const std::string& user) { return LastReceipt(user).value_or("(none)"); }
    /// The line of the last receipt that begins so, or else nothing.
    static std::string ReceiptLine(const std::string& user, const std::string& beginning) {
        const std::string text = "\r\n" + Receipt(user);
        const std::size_t at = text.find("\r\n" + beginning);
        if (at == std::string::npos) return {};
        return text.substr(at + 2, text.find("\r\n", at + 2) - at - 2);
    }
};

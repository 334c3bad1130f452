#include "core/Directories.h"
#include "core/Failure.h"
#include "core/Paths.h"
#include "core/Progress.h"
#include "core/SafeFile.h"
#include "exchange/OrderCheck.h"
#include "hotsync/LoopHandheld.h"
#include "hotsync/Session.h"
#include "maintenance/Office.h"
#include "maintenance/SafetyCopies.h"
#include "maintenance/Totals.h"
#include "store/OfficeTables.h"
#include "store/TableCatalogue.h"
#include "store/TableScan.h"
#include "support/EngineTest.h"
#include "support/IdleControl.h"
#include "support/Tables.h"
#include "support/UnflushedDisk.h"
#include "sync/MainSession.h"
#include "sync/SessionStatus.h"

#include <algorithm>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <map>
#include <optional>
#include <set>

// A session that is broken behind each of its packets in turn: where are the orders then? The session of the
// manager, the one of the PC program, the merge and the handheld's databases are the real ones; the line lies
// in memory.

namespace {

namespace fs = std::filesystem;

using User = HotSyncUser; // a control has a routine of that name

/// The PC program in unattended mode, with the manager's desk as its control. Its forms are those of a
/// screen that nobody looks at.
class UnattendedProgram final : public SessionDesk, public IdleControl, public SessionScreen {
public:
    bool There = true;              ///< false: it was killed
    std::vector<std::string> Moved; ///< how each transfer ended, and its path

    // ---- the manager's side ----

    bool TakesPart(std::string_view creator) override { return There && creator == "ZUK2"; }
    void Raise(std::int32_t status, const User& user, std::string_view, const EndedTransfer* ended) override {
        if (!There) return;
        user_ = user.Name;
        if (status == SessionBegun) well_.clear();
        if (ended)
            Moved.push_back((ended->Well ? "WELL " : "FAILED ") + std::string(FileNameOf(ended->Path)));
        if (ended && ended->Well) well_.insert(ended->Path);
        session_.SFMain_HotSyncStatus(status);
    }
    bool IsThere() override {
        if (!There) queue_.clear();
        return There;
    }
    bool IsBusy(std::chrono::milliseconds) override { return false; }
    std::optional<QueuedTransfer> NextTransfer() override {
        if (!IsThere() || queue_.empty()) return std::nullopt;
        const QueuedTransfer next = queue_.front();
        queue_.pop_front();
        return next;
    }
    void DropTransfers() override { queue_.clear(); }
    Picking PickUser(const std::vector<User>&, std::chrono::milliseconds, std::uint32_t&) override {
        return Picking::Refused;
    }

    // ---- the control ----

    std::string UserName() const override { return user_; }
    std::int32_t CreatorID() const override { return 0x5A554B32; }
    void QueueUpload(std::string_view path, const TransferSettings&) override {
        queue_.push_back({QueuedTransfer::Way::Upload, std::string(path)});
    }
    void QueueDownload(std::string_view path, const TransferSettings&) override {
        queue_.push_back({QueuedTransfer::Way::Download, std::string(path)});
    }
    bool EndedWell(std::string_view path) const override { return well_.contains(std::string(path)); }

    // ---- the screen ----

    void TellUnknownHandheld() override { ADD_FAILURE() << "the Links table has a row"; }
    void TellBackupFailed() override { ADD_FAILURE() << "nothing holds the tables"; }
    void ShowBegun(const std::string&) override {}
    void ShowPhase(SyncPhaseImage, PhaseLook) override {}
    void ShowEnded() override {}
    void Merge() override {
        const std::pair<bool UploadRun::*, MergedTable> steps[] = {
            {&UploadRun::OrderHeaders, MergedOrderHeaders}, {&UploadRun::OrderLines, MergedOrderLines},
            {&UploadRun::AuditHeaders, MergedAuditHeaders}, {&UploadRun::AuditLines, MergedAuditLines},
            {&UploadRun::HHTotals, MergedHHTotals},         {&UploadRun::BarcodeIndex, MergedBarcodeIndex}};
        for (const auto& [isWanted, table] : steps) {
            if (!(Global.SessionRun.*isWanted)) continue;
            TableMerge merge(table);
            merge.WriteText();
            NoProgress silent;
            merge.ReadText(silent);
        }
    }
    void RecordUpload() override {
        NoProgress silent;
        CalcPCTotals("UPLOAD-ADD", silent);
    }
    void GetPCTotals() override {}
    std::optional<Upload> NewestUpload() const override {
        const std::vector<UploadRow> rows = ::GetPCTotals();
        if (rows.empty()) return std::nullopt;
        return Upload{rows.front().Orders, rows.front().Lines, rows.front().Dollars};
    }
    void RefreshRecordCounts() override {}
    void ShowHHStatus() override {}

private:
    MainSession session_{*this, *this};
    std::string user_;
    std::deque<QueuedTransfer> queue_;
    std::set<std::string> well_;
};

struct Blind final : SessionProgress {
    void Begun(std::string_view) override {}
    void Step(Way, std::string_view, std::int32_t, std::int32_t) override {}
    void Ended(std::string_view, bool) override {}
    bool CancelAsked() override { return false; }
};

using Keys = std::multiset<std::string>;

/// The orders of one side.
struct Side {
    Keys Headers, Lines;
};

const Keys PCHeaders{"P1000001", "P1000002"};
const Keys PCLines{"P10000010001", "P10000010002", "P10000020001"};
const Keys HandheldHeaders{"H1000001", "H1000002", "H1000003"};
const Keys HandheldLines{"H10000010001", "H10000010002", "H10000020001", "H10000030001", "H10000030002"};

Keys Together(Keys one, const Keys& other) {
    one.insert(other.begin(), other.end());
    return one;
}

std::string Words(const Keys& keys) {
    std::string words;
    for (const std::string& key : keys) words += key + " ";
    return words;
}

class BreakSweep : public EngineTest {
protected:
    BreakSweep() {
        Global.TheDisk = &disk_;
        LayOutOffice(TRAMBLE_INSTALLED, Folder() + "app/");
        Global.AppPath = Folder() + "app/";
        SetTablesAndInstall();
        SetImagesAndTotals();
        MakeEmptyTwins();
        SetDataOutBackupTemplates();
        TemplatePass([] {});
        for (const auto path : Paths) paths_.push_back(Global.*path);
        Arm();
        WriteWholeFile(Global.UploadTemplates + "All.ust", "Orders=1\r\nAudits=1\r\nHandheld Totals=1\r\n");
        WriteWholeFile(Global.DownloadTemplates + "All.dct",
                       "Order Tables=1\r\nAudit Tables=1\r\nHandheld Totals=1\r\n");
        WriteWholeFile(Global.DownloadTemplates + "All.dst", "Customers=1\r\n");
        GivenOrders(Global.DBFPath, PCHeaders, PCLines);
        GivenTable(Global.DBFPath, "ZUKLINK", {LinkRow()});
        GivenTable(Global.DBFPath, "ZUKCUST", {Customer("NEW1"), Customer("NEW2")});
        MakePath(Folder() + "HotSync/");
        HotSyncUsers users(Folder() + "HotSync/");
        user_ = users.New("ANNA").Id;
        GiveHandheld();
        for (const char* folder : Changing) Keep(folder);
    }

    static std::vector<std::string> LinkRow() {
        return RowOf("ZUKLINK", {{"LK_HOTSYNC", "ANNA"}, {"LK_MACH_ID", "H1"}, {"LK_LSTONUM", "000003"}});
    }
    static std::vector<std::string> Customer(const std::string& code) {
        return RowOf("ZUKCUST", {{"C_SEARCH", code}, {"C_CODE", code}, {"C_NAME", "Name of " + code}});
    }

    static void GivenOrders(const std::string& folder, const Keys& headers, const Keys& lines) {
        std::vector<std::vector<std::string>> rows;
        for (const std::string& code : headers) rows.push_back(RowOf("ZUKORHDR", {{"H_ORDCODE", code}}));
        GivenTable(folder, "ZUKORHDR", rows);
        rows.clear();
        for (const std::string& key : lines) {
            rows.push_back(RowOf(
                "ZUKORLIN",
                {{"L_KEY", key}, {"L_ORDCODE", key.substr(0, 8)}, {"L_QTY", "1"}, {"L_TOTPRICE", "2.5"}}));
        }
        GivenTable(folder, "ZUKORLIN", rows);
    }

    /// The program's state as after a start.
    /// What a start does anew but for the office's folders, which are laid out once; and nothing is traced.
    void Arm() {
        Global = Globals{};
        Global.TheDisk = &disk_;
        for (std::size_t place = 0; place < paths_.size(); ++place) Global.*Paths[place] = paths_[place];
        Global.UnattendedActive = true;
        Global.UploadSelect = Selection(true);
        Global.UploadSelSettings = "All";
        Global.RemoteClearSelect = true;
        Global.RemoteClearSettings = "All";
        Global.RemoteSelect = Selection(true);
        Global.RemoteSelSettings = "All";
    }

    void GiveHandheld() {
        HandheldSettings settings;
        settings.User.UserId = user_;
        settings.User.Name = "ANNA";
        Handheld::Make(Folder() + "handheld/", settings);
        const std::string from = Folder() + "salesman/";
        GivenOrders(from, HandheldHeaders, HandheldLines);
        GivenTable(from, "ZUKAUDHH",
                   {RowOf("ZUKAUDHH", {{"TH_NUMHEAD", "3"}, {"TH_NUMLINE", "5"}, {"TH_DOL_LIN", "12.5"}})});
        GivenTable(from, "ZUKLINK", {LinkRow()});
        GivenTable(from, "ZUKCUST", {Customer("OLD1"), Customer("OLD2"), Customer("OLD3")});
        Handheld handheld(Folder() + "handheld/");
        for (const char* table : {"ZUKORHDR", "ZUKORLIN", "ZUKAUDHH", "ZUKLINK", "ZUKCUST"})
            handheld.Store.Save(AsHandheldDatabase(from, table));
    }

    void Keep(const std::string& folder) {
        fs::create_directories(Folder() + folder);
        fs::create_directories(Folder() + "kept/" + folder);
        fs::copy(Folder() + folder, Folder() + "kept/" + folder, fs::copy_options::recursive);
    }
    /// Everything as before the session, and a program that has just been started.
    void Reset() {
        for (const char* folder : Changing) {
            fs::remove_all(Folder() + folder);
            fs::copy(Folder() + "kept/" + folder, Folder() + folder, fs::copy_options::recursive);
        }
        Start();
    }
    /// What a session writes to, of an office and beside it.
    static constexpr const char* Changing[] = {"app/DBFFiles/", "app/Backup/", "handheld/", "HotSync/"};

    /// The program is started, again perhaps.
    void Start() {
        program_.reset();
        Arm();
        RecoverSafetyCopies();
        program_ = std::make_unique<UnattendedProgram>();
    }

    /// The handheld presses HotSync; how many packets passed the line.
    int HotSync(int cutAfter, int killedAfter) {
        HotSyncUsers users(Folder() + "HotSync/");
        users.Load();
        SessionLog log(Folder() + "HotSync/");
        Blind progress;
        LoopHandheld handheld(Folder() + "handheld/");
        handheld.CutAfter = cutAfter;
        handheld.Passed = [&](int packets) {
            if (packets >= killedAfter) program_->There = false;
        };
        program_->Moved.clear();
        Session session(handheld, {users, log, progress, *program_, settings_, {"ZUK2"}}, "here", 0x7F000001);
        session.Run();
        said_.clear();
        for (const std::string& line : log.Last(30)) said_ += line + "\n";
        return handheld.Packets;
    }
    /// Every so manieth packet, with the sanitizers; each one without them.
#ifdef __SANITIZE_ADDRESS__
    static constexpr int Stride = 11;
#else
    static constexpr int Stride = 1;
#endif
    /// The tests of a sample begin at different packets.
    static int First(int test) {
        return Stride / 3 * test;
    }
    static constexpr int Never = std::numeric_limits<int>::max();

    static Keys KeysOf(const std::string& table, int field) {
        Keys keys;
        TableScan scan(Global.DBFPath + table);
        while (scan.Next()) {
            if (scan.Flag() == TableLayout::Live) keys.emplace(scan.Trimmed(field));
        }
        return keys;
    }
    static Side OnPC() {
        return {KeysOf("ZUKORHDR.DBF", OrderCode), KeysOf("ZUKORLIN.DBF", LineKey)};
    }

    Keys KeysOnHandheld(const std::string& table, const std::string& field) const {
        const Handheld handheld(Folder() + "handheld/");
        Keys keys;
        const std::string name = "TZUK20000_" + table;
        if (!handheld.Store.Has(name)) return keys;
        const Database database = handheld.Store.Load(name);
        EXPECT_EQ(database.Version, WholeTable) << name;
        const HandheldLayout layout = ReadLayout(database.AppInfo);
        for (const DatabaseRecord& record : database.Records) {
            const std::string text(layout.Get(layout.Find(field), ReadRecord(layout, record.Data).Fields));
            keys.insert(text.substr(0, text.find_last_not_of(' ') + 1));
        }
        return keys;
    }
    Side OnHandheld() const {
        return {KeysOnHandheld("ZUKORHDR", "H_ORDCODE"), KeysOnHandheld("ZUKORLIN", "L_KEY")};
    }

    static void ExpectOnce(const char* what, const Keys& keys) {
        for (const std::string& key : keys) EXPECT_EQ(keys.count(key), 1U) << what << " " << key;
    }
    static void ExpectEachSomewhere(const char* what, const Keys& wanted, const Keys& pc,
                                    const Keys& handheld) {
        for (const std::string& key : wanted)
            EXPECT_TRUE(pc.contains(key) || handheld.contains(key)) << what << " " << key << " is lost";
    }

    /// Behind a break: nothing is lost, and nothing doubled on either side.
    void ExpectNothingLost() const {
        const Side pc = OnPC(), handheld = OnHandheld();
        ExpectEachSomewhere("order", HandheldHeaders, pc.Headers, handheld.Headers);
        ExpectEachSomewhere("line", HandheldLines, pc.Lines, handheld.Lines);
        for (const std::string& key : PCHeaders) EXPECT_EQ(pc.Headers.count(key), 1U) << key;
        for (const std::string& key : PCLines) EXPECT_EQ(pc.Lines.count(key), 1U) << key;
        ExpectOnce("order on the PC", pc.Headers);
        ExpectOnce("line on the PC", pc.Lines);
        ExpectOnce("order on the handheld", handheld.Headers);
        ExpectOnce("line on the handheld", handheld.Lines);
        const Keys customers = KeysOnHandheld("ZUKCUST", "C_CODE");
        EXPECT_TRUE((customers == Keys{"NEW1", "NEW2"} || customers == Keys{"OLD1", "OLD2", "OLD3"} ||
                     customers.empty()))
            << Words(customers);
    }

    static void ExpectNoFilesOfASession() {
        for (const std::string& file : Global.TheDisk->FilesIn(Global.DBFPath)) {
            EXPECT_TRUE(ExtensionOf(file) != ".dap" && ExtensionOf(file) != ".DAP" && !file.ends_with("~"))
                << file;
            EXPECT_NE(file, "SafetyCopies.txt");
        }
    }

    /// What an export does first: an order that came twice is taken away once.
    static void CheckOrders() {
        PCOrders book = OpenPCOrders(Global.DBFPath + "ZUKORHDR.DBF", Global.DBFPath + "ZUKORLIN.DBF");
        QualityCheckOrders(book, {[] { return true; }, [] { return true; }, [] {}, [] {}});
    }

    /// The next session comes through, and the check leaves each order once.
    void ExpectAllOnceAfterTheNextSession() {
        HotSync(Never, Never);
        for (const std::string& end : program_->Moved) EXPECT_TRUE(end.starts_with("WELL ")) << end;
        CheckOrders();
        const Side pc = OnPC(), handheld = OnHandheld();
        EXPECT_EQ(Words(pc.Headers), Words(Together(PCHeaders, HandheldHeaders))) << said_;
        EXPECT_EQ(Words(pc.Lines), Words(Together(PCLines, HandheldLines)));
        EXPECT_EQ(Words(handheld.Headers) + Words(handheld.Lines), "");
        EXPECT_EQ(KeysOnHandheld("ZUKCUST", "C_CODE"), (Keys{"NEW1", "NEW2"}));
        ExpectNoFilesOfASession();
    }

    static constexpr std::string Globals::*Paths[] = {
        &Globals::InstallPath,  &Globals::DBFPath,    &Globals::ImagesPath,      &Globals::HHTotalsPath,
        &Globals::DBFEmptyPath, &Globals::BackupPath, &Globals::UploadTemplates, &Globals::DownloadTemplates,
    };

    UnflushedDisk disk_;
    std::vector<std::string> paths_;
    ManagerSettings settings_;
    std::unique_ptr<UnattendedProgram> program_;
    std::uint32_t user_ = 0;
    std::string said_; ///< the manager's log

private:
    static constexpr int OrderCode = 1, LineKey = 6;

    /// A table as a download would have left it.
    static Database AsHandheldDatabase(const std::string& folder, const std::string& table) {
        TableScan scan(ResolvePath(folder + table + ".dbf"));
        HandheldLayout layout;
        for (const TableField& field : FindTable(table)->Fields)
            layout.Fields.push_back({field.Name, field.Type, static_cast<std::uint8_t>(field.Length),
                                     static_cast<std::uint8_t>(field.Decimals)});
        Database database;
        static_cast<DatabaseHeader&>(database) = HandheldHeader(table + ".dbf");
        database.AppInfo = PackLayout(layout);
        while (scan.Next()) {
            DatabaseRecord record;
            record.Data = PackRecord(layout, {std::string(scan.Fields()), {}});
            database.Records.push_back(record);
        }
        return database;
    }
};

} // namespace

TEST_F(BreakSweep, AWholeSessionBringsEachOrderToThePCAndClearsTheHandheld) {
    Reset();
    ExpectAllOnceAfterTheNextSession();
}

TEST_F(BreakSweep, WhereverTheLineBreaksEachOrderIsOnTheHandheldOrOnThePC) {
    Reset();
    const int packets = HotSync(Never, Never);
    ASSERT_GT(packets, 100);
    for (int cut = First(1); cut < packets; cut += Stride) {
        SCOPED_TRACE("the line breaks behind packet " + std::to_string(cut) + " of " +
                     std::to_string(packets));
        Reset();

        HotSync(cut, Never);

        ExpectNothingLost();
        ExpectNoFilesOfASession();
        ExpectAllOnceAfterTheNextSession();
        if (HasFailure()) return;
    }
}

TEST_F(BreakSweep, WhereverTheProgramIsKilledItsNextStartLosesNoOrder) {
    Reset();
    const int packets = HotSync(Never, Never);
    for (int killed = First(2); killed < packets; killed += Stride) {
        SCOPED_TRACE("the program ends at packet " + std::to_string(killed) + " of " +
                     std::to_string(packets));
        Reset();

        HotSync(Never, killed);
        Start();

        ExpectNothingLost();
        ExpectAllOnceAfterTheNextSession();
        if (HasFailure()) return;
    }
}

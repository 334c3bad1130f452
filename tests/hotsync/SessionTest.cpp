#include "hotsync/Session.h"

#include "core/Paths.h"
#include "core/SafeFile.h"
#include "hotsync/LoopHandheld.h"
#include "store/TableCatalogue.h"
#include "store/TableScan.h"
#include "support/EngineTest.h"
#include "support/Rubbish.h"
#include "support/TableMaker.h"
#include "sync/InstallFolder.h"
#include "sync/SessionStatus.h"

#include <map>
#include <random>

namespace {

using Way = QueuedTransfer::Way;

/// The program on the desk: hears the statuses and queues what the test wants.
class ScriptedDesk final : public SessionDesk {
public:
    bool There = true;
    std::vector<std::int32_t> Heard;
    std::vector<std::string> Ended; ///< how each transfer did: "WELL" or "FAILED", a blank and the path
    std::string User;
    std::function<void(std::int32_t status)> Handler = [](std::int32_t) {};
    std::deque<QueuedTransfer> Queue;
    int BusyFor = 0; ///< looks at it that find it busy
    std::vector<std::string> Offered;
    std::uint32_t Pick = 0; ///< 0: nobody wants to say

    void Upload(const std::string& path) { Queue.push_back({Way::Upload, path}); }
    void Download(const std::string& path) { Queue.push_back({Way::Download, path}); }

    bool TakesPart(std::string_view creator) override { return There && creator == "ZUK2"; }
    void Raise(std::int32_t status, const HotSyncUser& user, std::string_view,
               const EndedTransfer* ended) override {
        Heard.push_back(status);
        EXPECT_EQ(ended != nullptr, status == OperationFinished);
        if (ended) Ended.push_back((ended->Well ? "WELL " : "FAILED ") + ended->Path);
        User = user.Name;
        Handler(status);
    }
    bool IsThere() override {
        if (!There) Queue.clear();
        return There;
    }
    bool IsBusy(std::chrono::milliseconds) override { return BusyFor > 0 && BusyFor-- > 0; }
    std::optional<QueuedTransfer> NextTransfer() override {
        if (Queue.empty()) return std::nullopt;
        const QueuedTransfer next = Queue.front();
        Queue.pop_front();
        return next;
    }
    void DropTransfers() override { Queue.clear(); }
    Picking PickUser(const std::vector<HotSyncUser>& users, std::chrono::milliseconds,
                     std::uint32_t& picked) override {
        for (const HotSyncUser& user : users) Offered.push_back(user.Name);
        picked = Pick;
        return Pick != 0 ? Picking::Picked : Picking::Refused;
    }
};

struct Watcher final : SessionProgress {
    std::vector<std::string> Words;
    int CancelAt = -1; ///< the step at which the operator presses Cancel
    int Steps = 0;

    void Begun(std::string_view user) override { Words.push_back("begun " + std::string(user)); }
    void Step(Way, std::string_view, std::int32_t, std::int32_t) override { ++Steps; }
    void Ended(std::string_view how, bool well) override {
        Words.push_back(std::string(well ? "well: " : "not well: ") + std::string(how));
    }
    bool CancelAsked() override { return CancelAt >= 0 && Steps >= CancelAt; }
};

using Rows = std::vector<std::string>;

class SessionTest : public EngineTest {
protected:
    SessionTest() : users_(Folder() + "HotSync/"), log_(Folder() + "HotSync/") {
        MakePath(Folder() + "HotSync/");
        MakePath(Folder() + "pc/");
        anna_ = users_.New("ANNA").Id;
        desk_.Handler = [this](std::int32_t status) {
            if (status == SessionBegun) desk_.Queue.insert(desk_.Queue.end(), wanted_.begin(), wanted_.end());
        };
        GivenHandheld("ANNA", anna_);
    }

    void GivenHandheld(const std::string& name, std::uint32_t id) {
        for (const std::string& file : Global.TheDisk->FilesIn(HandheldFolder() + "databases/")) {
            Global.TheDisk->Remove(HandheldFolder() + "databases/" + file);
        }
        Global.TheDisk->Remove(HandheldFolder() + "Handheld.txt");
        HandheldSettings settings;
        settings.User.UserId = id;
        settings.User.Name = name;
        Handheld::Make(HandheldFolder(), settings);
    }

    std::string HandheldFolder() const { return Folder() + "handheld/"; }
    std::string Table(const std::string& name) const { return Folder() + "pc/" + name + ".DBF"; }

    /// A table of the office with these many records, every byte of its fields at random.
    void GivenTable(const std::string& path, const TableEntry& entry, int records, unsigned seed) {
        std::vector<TableMaker::Column> columns;
        for (const TableField& field : entry.Fields) {
            columns.push_back({field.Name, field.Type, field.Length, field.Decimals});
        }
        TableMaker maker(columns);
        std::mt19937 random(seed);
        for (int k = 0; k < records; ++k) {
            std::string fields;
            for (const TableField& field : entry.Fields) {
                for (int c = 0; c < field.Length; ++c) fields += static_cast<char>(random() % 256);
            }
            maker.RawRow(fields, ' ');
        }
        WriteWholeFile(path, maker.Bytes());
    }

    static Rows RowsOf(const std::string& path) {
        Rows rows;
        TableScan scan(path);
        while (scan.Next()) rows.emplace_back(scan.Fields());
        return rows;
    }

    /// The same of a handheld's table; nothing when it has none. It must be whole.
    std::optional<Rows> HandheldRows(const std::string& table) {
        const Handheld handheld(HandheldFolder());
        const std::string name = "TZUK20000_" + table;
        if (!handheld.Store.Has(name)) return std::nullopt;
        const Database database = handheld.Store.Load(name);
        EXPECT_EQ(database.Version, WholeTable);
        EXPECT_EQ(database.Creator, HandheldCreator);
        const HandheldLayout layout = ReadLayout(database.AppInfo);
        Rows rows;
        for (const DatabaseRecord& record : database.Records)
            rows.push_back(ReadRecord(layout, record.Data).Fields);
        return rows;
    }

    Session::End Hold(LoopHandheld& handheld) {
        desk_.Heard.clear();
        Session session(handheld, {users_, log_, watcher_, desk_, settings_, {"ZUK2"}}, "here", 0x7F000001);
        return session.Run();
    }
    Session::End Hold() {
        LoopHandheld handheld(HandheldFolder());
        return Hold(handheld);
    }

    bool LogSays(const std::string& piece) const {
        for (const std::string& line : log_.Last(1000)) {
            if (line.find(piece) != std::string::npos) return true;
        }
        return false;
    }

    using Statuses = std::vector<std::int32_t>;

    HotSyncUsers users_;
    SessionLog log_;
    ManagerSettings settings_;
    ScriptedDesk desk_;
    Watcher watcher_;
    std::vector<QueuedTransfer> wanted_;
    std::uint32_t anna_ = 0;
};

} // namespace

TEST_F(SessionTest, EachTableComesBackFromTheHandheldAsItWentThere) {
    unsigned seed = 0;
    for (const TableEntry& entry : AllTables()) {
        GivenTable(Table(entry.Name), entry, 5, ++seed);
        wanted_.push_back({Way::Download, Table(entry.Name)});
    }
    ASSERT_EQ(Hold(), Session::End::Well);
    MakePath(Folder() + "back/");
    wanted_.clear();
    for (const TableEntry& entry : AllTables()) {
        wanted_.push_back({Way::Upload, Folder() + "back/" + entry.Name + ".dbf"});
    }

    ASSERT_EQ(Hold(), Session::End::Well);

    EXPECT_EQ(wanted_.size(), 26U);
    EXPECT_EQ(desk_.Heard.size(), 28U);
    for (const TableEntry& entry : AllTables()) {
        const std::string back = Folder() + "back/" + entry.Name + ".dbf";
        EXPECT_EQ(RowsOf(back), RowsOf(Table(entry.Name))) << entry.Name;
        TableScan before(Table(entry.Name)), after(back);
        EXPECT_EQ(after.Layout().Header().substr(8), before.Layout().Header().substr(8)) << entry.Name;
    }
}

TEST_F(SessionTest, StatusThreeFollowsEachTransferAndStatusTwoTheLast) {
    GivenTable(Table("ZUKSTAX"), *FindTable("ZUKSTAX"), 2, 1);
    wanted_ = {{Way::Download, Table("ZUKSTAX")}, {Way::Upload, Folder() + "pc/ZUKLINK.DBF"}};

    EXPECT_EQ(Hold(), Session::End::Well);

    EXPECT_EQ(desk_.Heard, (Statuses{SessionBegun, OperationFinished, OperationFinished, SessionEnded}));
    EXPECT_EQ(desk_.Ended, (Rows{"WELL " + Table("ZUKSTAX"), "WELL " + Folder() + "pc/ZUKLINK.DBF"}));
    EXPECT_EQ(desk_.User, "ANNA");
}

TEST_F(SessionTest, WhatAHandlerQueuesLaterRunsInTheSameSession) {
    GivenTable(Table("ZUKSTAX"), *FindTable("ZUKSTAX"), 2, 1);
    desk_.Handler = [this](std::int32_t status) {
        if (status == SessionBegun) desk_.Upload(Table("ZUKLINK"));
        if (status == OperationFinished && desk_.Heard.size() == 2) desk_.Download(Table("ZUKSTAX"));
    };

    EXPECT_EQ(Hold(), Session::End::Well);

    EXPECT_EQ(desk_.Heard, (Statuses{1, 3, 3, 2}));
    EXPECT_EQ(HandheldRows("ZUKSTAX"), RowsOf(Table("ZUKSTAX")));
}

TEST_F(SessionTest, ATransferThatFailsIsFollowedByStatusThreeAndTheNext) {
    GivenTable(Table("ZUKPAY"), *FindTable("ZUKPAY"), 2, 1);
    wanted_ = {{Way::Download, Table("ZUKSTAX")}, {Way::Download, Table("ZUKPAY")}};

    EXPECT_EQ(Hold(), Session::End::Well);

    EXPECT_EQ(desk_.Heard, (Statuses{1, 3, 3, 2}));
    EXPECT_EQ(desk_.Ended, (Rows{"FAILED " + Table("ZUKSTAX"), "WELL " + Table("ZUKPAY")}));
    EXPECT_TRUE(LogSays("ZUKSTAX.DBF to the handheld failed"));
    EXPECT_EQ(HandheldRows("ZUKPAY"), RowsOf(Table("ZUKPAY")));
    EXPECT_EQ(HandheldRows("ZUKSTAX"), std::nullopt);
    EXPECT_EQ(watcher_.Words.back(), "not well: 1 transfer failed");
}

TEST_F(SessionTest, ATableThatArrivesWhenItsProgramHasGoneReplacesNothing) {
    GivenTable(Table("ZUKORHDR"), *FindTable("ZUKORHDR"), 3, 1);
    wanted_ = {{Way::Download, Table("ZUKORHDR")}};
    ASSERT_EQ(Hold(), Session::End::Well);
    GivenTable(Table("ZUKORHDR"), *FindTable("ZUKORHDR"), 2, 2);
    GivenTable(Table("ZUKORLIN"), *FindTable("ZUKORLIN"), 2, 3);
    const std::string headers = ReadWholeFile(Table("ZUKORHDR"));
    const std::string lines = ReadWholeFile(Table("ZUKORLIN"));
    for (const std::string& last : {Table("ZUKORHDR"), Table("ZUKORLIN")}) {
        wanted_ = {{Way::Upload, last}, {Way::Download, Table("ZUKORHDR")}};
        desk_.There = true;
        LoopHandheld handheld(HandheldFolder());
        // The handheld has no lines: what is not there replaces nothing either.
        handheld.Heard = [this](const DlpRequest& request) {
            if (request.Function == DlpFunction::OpenDB) desk_.There = false;
        };

        EXPECT_EQ(Hold(handheld), Session::End::Well);

        EXPECT_EQ(ReadWholeFile(Table("ZUKORHDR")), headers);
        EXPECT_EQ(ReadWholeFile(Table("ZUKORLIN")), lines);
        EXPECT_EQ(HandheldRows("ZUKORHDR")->size(), 3U);
        EXPECT_TRUE(LogSays("failed: the program that asked for it has gone"));
        EXPECT_EQ(desk_.Ended.back(), "FAILED " + last);
    }
    EXPECT_FALSE(Exists(Folder() + "pc/Images"));
}

TEST_F(SessionTest, OrdersThatCouldNotBeFetchedAreNotOverwrittenOnTheHandheld) {
    MakePath(Folder() + "new/");
    MakePath(Folder() + "empty/");
    GivenTable(Folder() + "new/ZUKORHDR.DBF", *FindTable("ZUKORHDR"), 3, 1);
    GivenTable(Folder() + "new/ZUKORLIN.DBF", *FindTable("ZUKORLIN"), 3, 2);
    GivenTable(Folder() + "new/ZUKCUST.DBF", *FindTable("ZUKCUST"), 3, 3);
    wanted_ = {{Way::Download, Folder() + "new/ZUKORHDR.DBF"},
               {Way::Download, Folder() + "new/ZUKORLIN.DBF"},
               {Way::Download, Folder() + "new/ZUKCUST.DBF"}};
    ASSERT_EQ(Hold(), Session::End::Well);
    GivenTable(Folder() + "empty/ZUKORHDR.DBF", *FindTable("ZUKORHDR"), 0, 1);
    GivenTable(Folder() + "empty/ZUKORLIN.DBF", *FindTable("ZUKORLIN"), 0, 1);
    GivenTable(Folder() + "empty/ZUKCUST.DBF", *FindTable("ZUKCUST"), 0, 1);
    GivenTable(Table("ZUKORLIN"), *FindTable("ZUKORLIN"), 0, 1);
    // Folders where the headers and the customers should go.
    MakePath(Table("ZUKORHDR"));
    MakePath(Table("ZUKCUST"));
    wanted_ = {{Way::Upload, Table("ZUKORHDR")},
               {Way::Upload, Table("ZUKORLIN")},
               {Way::Upload, Table("ZUKCUST")},
               {Way::Download, Folder() + "empty/ZUKORHDR.DBF"},
               {Way::Download, Folder() + "empty/ZUKORLIN.DBF"},
               {Way::Download, Folder() + "empty/ZUKCUST.DBF"}};
    desk_.Ended.clear();

    EXPECT_EQ(Hold(), Session::End::Well);

    EXPECT_EQ(desk_.Ended,
              (Rows{"FAILED " + Table("ZUKORHDR"), "WELL " + Table("ZUKORLIN"), "FAILED " + Table("ZUKCUST"),
                    "FAILED " + Folder() + "empty/ZUKORHDR.DBF", "WELL " + Folder() + "empty/ZUKORLIN.DBF",
                    "WELL " + Folder() + "empty/ZUKCUST.DBF"}));
    EXPECT_EQ(HandheldRows("ZUKORHDR")->size(), 3U);
    EXPECT_EQ(HandheldRows("ZUKORLIN")->size(), 0U);
    EXPECT_EQ(HandheldRows("ZUKCUST")->size(), 0U); // the office's own
    EXPECT_TRUE(LogSays("it could not be fetched in this session"));

    // Asked for alone it is done.
    wanted_ = {{Way::Download, Folder() + "empty/ZUKORHDR.DBF"}};
    EXPECT_EQ(Hold(), Session::End::Well);
    EXPECT_EQ(HandheldRows("ZUKORHDR")->size(), 0U);
}

TEST_F(SessionTest, WhereverTheLineBreaksTheHandheldHasTheOldTableOrTheNew) {
    const std::vector<std::string> names{"ZUKCUST", "ZUKSTAX", "ZUKPAY"};
    for (const std::string& name : names) {
        GivenTable(Table(name), *FindTable(name), 3, 1);
        wanted_.push_back({Way::Download, Table(name)});
    }
    ASSERT_EQ(Hold(), Session::End::Well);
    std::map<std::string, Rows> before, after;
    for (const std::string& name : names) before[name] = RowsOf(Table(name));
    for (const std::string& name : names) GivenTable(Table(name), *FindTable(name), 2, 7);
    for (const std::string& name : names) after[name] = RowsOf(Table(name));
    std::map<std::string, std::string> files;
    for (const std::string& file : Global.TheDisk->FilesIn(HandheldFolder() + "databases/")) {
        files[file] = Bytes(HandheldFolder() + "databases/" + file);
    }

    int cut = 0;
    int lastNew = 0;
    for (bool whole = false; !whole; ++cut) {
        GivenHandheld("ANNA", anna_);
        for (const auto& [file, bytes] : files) WriteWholeFile(HandheldFolder() + "databases/" + file, bytes);
        {
            LoopHandheld handheld(HandheldFolder());
            handheld.CutAfter = cut;
            whole = Hold(handheld) == Session::End::Well;
        }
        const bool begun = !desk_.Heard.empty();
        EXPECT_TRUE(!begun || (desk_.Heard.front() == SessionBegun && desk_.Heard.back() == SessionEnded));

        // The next session first puts in order what this one left.
        wanted_.clear();
        wanted_.push_back({Way::Upload, Table("ZUKLINK")});
        ASSERT_EQ(Hold(), Session::End::Well) << "cut after " << cut;
        wanted_.clear();
        for (const std::string& name : names) wanted_.push_back({Way::Download, Table(name)});
        int isNew = 0;
        for (const std::string& name : names) {
            const auto rows = HandheldRows(name);
            EXPECT_TRUE(rows == before[name] || rows == after[name]) << name << ", cut after " << cut;
            isNew += rows == after[name] ? 1 : 0;
            EXPECT_EQ(HandheldRows(name + "~"), std::nullopt);
        }
        EXPECT_GE(isNew, lastNew) << "cut after " << cut;
        lastNew = isNew;
    }
    EXPECT_EQ(lastNew, 3);
    EXPECT_GT(cut, 60);
}

TEST_F(SessionTest, WhereverTheLineBreaksTheOfficeHasTheOldTableOrTheNew) {
    const std::vector<std::string> names{"ZUKORHDR", "ZUKORLIN", "ZUKAUDHH"};
    for (const std::string& name : names) {
        GivenTable(Table(name), *FindTable(name), 3, 1);
        wanted_.push_back({Way::Download, Table(name)});
    }
    ASSERT_EQ(Hold(), Session::End::Well);
    std::map<std::string, std::string> before;
    std::map<std::string, Rows> after;
    wanted_.clear();
    for (const std::string& name : names) {
        after[name] = RowsOf(Table(name));
        GivenTable(Table(name), *FindTable(name), 2, 9);
        before[name] = Bytes(Table(name));
        wanted_.push_back({Way::Upload, Table(name)});
    }

    int cut = 0;
    for (bool whole = false; !whole; ++cut) {
        for (const std::string& name : names) WriteWholeFile(Table(name), before[name]);
        LoopHandheld handheld(HandheldFolder());
        handheld.CutAfter = cut;
        whole = Hold(handheld) == Session::End::Well;
        for (const std::string& name : names) {
            EXPECT_TRUE(Bytes(Table(name)) == before[name] || RowsOf(Table(name)) == after[name])
                << name << ", cut after " << cut;
        }
        // A lost line is not told as a finished transfer.
        std::size_t arrived = 0;
        for (const std::string& name : names) arrived += Bytes(Table(name)) != before[name] ? 1 : 0;
        const auto told = std::count(desk_.Heard.begin(), desk_.Heard.end(), OperationFinished);
        EXPECT_GE(static_cast<std::size_t>(told) + 1, arrived);
        EXPECT_LE(static_cast<std::size_t>(told), arrived);
    }
    EXPECT_EQ(Global.TheDisk->FilesIn(Folder() + "pc/").size(), 3U) << "no work file stays";
    EXPECT_GT(cut, 50);
}

TEST_F(SessionTest, AHandheldThatFallsSilentInAnyStateEndsItsSessionAndNoOther) {
    GivenTable(Table("ZUKPAY"), *FindTable("ZUKPAY"), 2, 1);
    wanted_ = {{Way::Download, Table("ZUKPAY")}, {Way::Upload, Table("ZUKPAY")}};
    const Rows rows = RowsOf(Table("ZUKPAY"));

    int heard = 0;
    for (bool whole = false; !whole; ++heard) {
        SCOPED_TRACE(heard);
        {
            LoopHandheld handheld(HandheldFolder());
            handheld.CutAfter = heard;
            handheld.Fault = LineFailure::Why::Silent;
            whole = Hold(handheld) == Session::End::Well;
        }
        EXPECT_EQ(whole, log_.Last(1).front().find("did not answer in time") == std::string::npos);
        EXPECT_EQ(RowsOf(Table("ZUKPAY")), rows);
        EXPECT_TRUE(desk_.Heard.empty() || desk_.Heard.back() == SessionEnded);
    }
    EXPECT_GT(heard, 40);
    EXPECT_EQ(Global.TheDisk->FilesIn(Folder() + "pc/"), Rows{"ZUKPAY.DBF"}) << "no work file stays";
    EXPECT_EQ(Hold(), Session::End::Well);
}

TEST_F(SessionTest, AHandheldThatNoUserOwnsIsRefusedAndTheProgramHearsNothing) {
    GivenHandheld("EVE", 4711);

    EXPECT_EQ(Hold(), Session::End::Refused);

    EXPECT_TRUE(desk_.Heard.empty());
    EXPECT_TRUE(LogSays("no user of this manager is called \"EVE\""));
}

/// Whoever can reach the port can say so much as often as it likes.
TEST_F(SessionTest, HandheldsThatNoUserOwnsDoNotFillTheLog) {
    GivenHandheld("EVE", 4711);
    for (int k = 0; k < 3 * SessionLog::StrangersAtOnce; ++k) EXPECT_EQ(Hold(), Session::End::Refused);
    EXPECT_LE(log_.Last(1000).size(), SessionLog::StrangersAtOnce + 10U);

    GivenHandheld("ANNA", anna_);
    EXPECT_EQ(Hold(), Session::End::Well);

    EXPECT_TRUE(LogSays("lines about callers that nobody knows were left out here"));
    EXPECT_TRUE(LogSays("ANNA: session ended well"));
}

TEST_F(SessionTest, WhatAHandheldLeftHalfDoneByTheHundredTakesAFewLinesOfTheLog) {
    wanted_ = {{Way::Upload, Table("ZUKPAY")}};
    {
        Handheld handheld(HandheldFolder());
        for (int k = 0; k < 100; ++k) {
            Database half;
            half.Name = "TZUK20000_X" + std::to_string(k) + "~";
            half.Type = HandheldType;
            half.Creator = HandheldCreator;
            handheld.Store.Save(half);
        }
    }

    EXPECT_EQ(Hold(), Session::End::Well);

    EXPECT_TRUE(LogSays("put 80 more in order"));
    EXPECT_LT(log_.Last(1000).size(), 30U);
    EXPECT_EQ(Handheld(HandheldFolder()).Store.Entries().size(), 0U);
}

TEST_F(SessionTest, AUserNameThatIsAPathMakesNoFolder) {
    GivenHandheld("..\\..\\x/../y", 4711);

    EXPECT_EQ(Hold(), Session::End::Refused);

    EXPECT_EQ(Global.TheDisk->FoldersIn(Folder()), (Rows{"HotSync", "handheld", "pc"}));
    EXPECT_EQ(Global.TheDisk->FoldersIn(Folder() + "HotSync/"), Rows{"ANNA"});
}

TEST_F(SessionTest, ANewHandheldThatBearsAFreeUsersNameBecomesThatUsers) {
    GivenHandheld("anna", 4711);

    EXPECT_EQ(Hold(), Session::End::Well);

    ASSERT_NE(users_.FindId(4711), nullptr);
    EXPECT_EQ(users_.FindId(4711)->Name, "ANNA");
    EXPECT_EQ(Handheld(HandheldFolder()).Settings.User.Name, "ANNA") << "the manager's spelling";
}

TEST_F(SessionTest, ASecondHandheldOfTheSameNameIsRefused) {
    ASSERT_EQ(Hold(), Session::End::Well);
    GivenHandheld("ANNA", 4711);

    EXPECT_EQ(Hold(), Session::End::Refused);

    EXPECT_EQ(users_.FindId(4711), nullptr);
}

TEST_F(SessionTest, AHandheldWithoutAUserIsOfferedThoseThatHadNoneYet) {
    ASSERT_EQ(Hold(), Session::End::Well);
    const std::uint32_t bert = users_.New("BERT").Id;
    GivenHandheld("", 0);
    desk_.Pick = bert;

    EXPECT_EQ(Hold(), Session::End::Well);

    EXPECT_EQ(desk_.Offered, Rows{"BERT"});
    EXPECT_EQ(desk_.User, "BERT");
    const UserInfo user = Handheld(HandheldFolder()).Settings.User;
    EXPECT_EQ(user.UserId, bert);
    EXPECT_EQ(user.Name, "BERT");
    EXPECT_EQ(user.LastSyncPC, settings_.PCId);
}

TEST_F(SessionTest, AHandheldThatNobodyGivesAUserIsRefused) {
    GivenHandheld("", 0);

    EXPECT_EQ(Hold(), Session::End::Refused);

    EXPECT_TRUE(desk_.Heard.empty());
    EXPECT_EQ(Handheld(HandheldFolder()).Settings.User.UserId, 0U);
}

TEST_F(SessionTest, AnUserThatWasRenamedTakesTheNewNameToTheHandheld) {
    users_.Rename(anna_, "Anna Núñez" + std::string());
    GivenHandheld("ANNA", anna_);

    EXPECT_EQ(Hold(), Session::End::Well);

    EXPECT_EQ(Handheld(HandheldFolder()).Settings.User.Name, users_.FindId(anna_)->Name);
}

TEST_F(SessionTest, ASessionThatBreaksLeavesItsUserIncomplete) {
    LoopHandheld handheld(HandheldFolder());
    handheld.CutAfter = 11;

    EXPECT_EQ(Hold(handheld), Session::End::Broken);

    EXPECT_TRUE(users_.FindId(anna_)->Incomplete);
    EXPECT_FALSE(users_.FindId(anna_)->LastSync.IsZero());
    EXPECT_TRUE(LogSays("session ended early: the handheld went away"));
}

TEST_F(SessionTest, AHandheldWithoutLinksCountsAsOneWithNoRow) {
    GivenTable(Table("ZUKLINK"), *FindTable("ZUKLINK"), 3, 1);
    wanted_ = {{Way::Upload, Table("ZUKLINK")}, {Way::Upload, Folder() + "pc/new/ZUKAudHH.dbf"}};
    MakePath(Folder() + "pc/new/");

    EXPECT_EQ(Hold(), Session::End::Well);

    EXPECT_TRUE(RowsOf(Table("ZUKLINK")).empty());
    EXPECT_TRUE(RowsOf(Folder() + "pc/new/ZUKAudHH.dbf").empty());
    EXPECT_TRUE(LogSays("the handheld has no such table"));
}

TEST_F(SessionTest, CustomersThatAHandheldNeverGotAreNotTakenFromTheOffice) {
    GivenTable(Table("ZUKCUST"), *FindTable("ZUKCUST"), 3, 1);
    const std::string before = Bytes(Table("ZUKCUST"));
    wanted_ = {{Way::Upload, Table("ZUKCUST")}};

    EXPECT_EQ(Hold(), Session::End::Well);

    EXPECT_EQ(Bytes(Table("ZUKCUST")), before);
    EXPECT_EQ(desk_.Heard, (Statuses{1, 3, 2}));
}

TEST_F(SessionTest, RecordsThatAreMarkedAsDeletedStayInTheOffice) {
    const TableEntry& pay = *FindTable("ZUKPAY");
    std::vector<TableMaker::Column> columns;
    for (const TableField& field : pay.Fields)
        columns.push_back({field.Name, field.Type, field.Length, field.Decimals});
    TableMaker maker(columns);
    maker.Row({"CASH"}).Row({"GONE"}, '*').Row({"CARD"});
    WriteWholeFile(Table("ZUKPAY"), maker.Bytes());
    wanted_ = {{Way::Download, Table("ZUKPAY")}};

    EXPECT_EQ(Hold(), Session::End::Well);

    const auto rows = HandheldRows("ZUKPAY");
    ASSERT_TRUE(rows);
    ASSERT_EQ(rows->size(), 2U);
    EXPECT_EQ((*rows)[1].substr(0, 4), "CARD");
    EXPECT_TRUE(LogSays("2 records, 1 marked as deleted not sent"));
}

TEST_F(SessionTest, ATableThatHasGrownWiderMeanwhileKeepsItsFields) {
    GivenTable(Table("ZUKSTAX"), *FindTable("ZUKSTAX"), 2, 3);
    const Rows sent = RowsOf(Table("ZUKSTAX"));
    wanted_ = {{Way::Download, Table("ZUKSTAX")}};
    ASSERT_EQ(Hold(), Session::End::Well);
    TableMaker wider({{"ST_NEW", 'C', 5, 0},
                      {"ST_CODE", 'C', 12, 0},
                      {"ST_TYPE", 'C', 10, 0},
                      {"ST_DESC", 'C', 30, 0},
                      {"ST_RATE", 'N', 9, 5}});
    wider.Row({"old"});
    WriteWholeFile(Table("ZUKSTAX"), wider.Bytes());
    wanted_ = {{Way::Upload, Table("ZUKSTAX")}};

    EXPECT_EQ(Hold(), Session::End::Well);

    const Rows rows = RowsOf(Table("ZUKSTAX"));
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0], "     " + sent[0].substr(0, 10) + "  " + sent[0].substr(10));
}

TEST_F(SessionTest, SignaturesComeWithTheOrdersAndLieUnderTheirCodes) {
    const TableEntry& headers = *FindTable("ZUKOrHdr");
    HandheldLayout layout;
    for (const TableField& field : headers.Fields)
        layout.Fields.push_back({field.Name, field.Type, field.Length, field.Decimals});
    Database database;
    static_cast<DatabaseHeader&>(database) = HandheldHeader("ZUKORHDR.DBF");
    database.AppInfo = PackLayout(layout);
    Ink ink;
    ink.Width = 9;
    ink.Height = 2;
    ink.Rows = std::string("\xFF\x80\x00\x80", 4);
    for (const std::string code : {"A1000001", "../../evil", "A1000002", "NUL"}) {
        HandheldRecord record;
        record.Fields.assign(layout.RecordBytes(), ' ');
        layout.Put(0, code, record.Fields);
        if (code != "A1000002") record.Signature = ink;
        database.Records.push_back(
            {0, 0, static_cast<std::uint32_t>(database.Records.size() + 1), PackRecord(layout, record)});
    }
    Handheld(HandheldFolder()).Store.Save(database);
    wanted_ = {{Way::Upload, Table("ZUKORHDR")}};

    EXPECT_EQ(Hold(), Session::End::Well);

    EXPECT_EQ(RowsOf(Table("ZUKORHDR")).size(), 4U);
    EXPECT_EQ(Global.TheDisk->FilesIn(Folder() + "pc/Images/"), Rows{"A1000001"});
    EXPECT_EQ(Bytes(Folder() + "pc/Images/A1000001"), InkBitmap(ink));
    EXPECT_TRUE(LogSays("a signature of order \"../../evil\" has no place to lie, and 1 more"));
}

TEST_F(SessionTest, FilesOfTheInstallFolderAreInstalledAtTheEndAndLeaveIt) {
    Database program;
    program.Name = "Tramble";
    program.Flags = ResourceDatabase;
    program.Type = FourCharacters("appl");
    program.Creator = FourCharacters("ZUK2");
    program.Resources = {{FourCharacters("code"), 1, "bytes"},
                         {FourCharacters("tFRM"), 1000, std::string(60000, 'x')}};
    const std::string install = users_.InstallFolder(*users_.FindId(anna_));
    MakePath(install);
    WriteWholeFile(install + "Tramble.prc", WriteDatabase(program));
    WriteWholeFile(install + "broken.pdb", "not a database");

    EXPECT_EQ(Hold(), Session::End::Well);

    const Handheld handheld(HandheldFolder());
    ASSERT_TRUE(handheld.Store.Has("Tramble"));
    EXPECT_EQ(handheld.Store.Load("Tramble").Resources, program.Resources);
    EXPECT_EQ(Global.TheDisk->FilesIn(install), Rows{"broken.pdb"});
    EXPECT_TRUE(LogSays("could not install broken.pdb"));
    EXPECT_EQ(watcher_.Words.back(), "not well: 1 transfer failed");
}

TEST_F(SessionTest, WhatAProgramHasPutThereThatHasGoneIsNotInstalled) {
    Database program;
    program.Name = "Tramble";
    program.Creator = FourCharacters("ZUK2");
    const std::string install = users_.InstallFolder(*users_.FindId(anna_));
    WriteWholeFile(install + "Tramble.pdb", WriteDatabase(program));
    WriteWholeFile(InstallMark(install), "ANNA\r\n");
    desk_.There = false;

    EXPECT_EQ(Hold(), Session::End::Well);
    EXPECT_FALSE(Handheld(HandheldFolder()).Store.Has("Tramble"));
    EXPECT_EQ(Global.TheDisk->FilesIn(install), Rows{"Tramble.pdb"}) << "the next start takes it back";
    EXPECT_TRUE(LogSays("nothing is installed: the program that has begun the installation has gone"));

    desk_.There = true;
    EXPECT_EQ(Hold(), Session::End::Well);
    EXPECT_TRUE(Handheld(HandheldFolder()).Store.Has("Tramble"));
    EXPECT_TRUE(Global.TheDisk->FilesIn(install).empty());
}

TEST_F(SessionTest, WhatNoProgramAttendsToIsInstalledWithoutOne) {
    Database program;
    program.Name = "Memo";
    program.Creator = FourCharacters("memo");
    const std::string install = users_.InstallFolder(*users_.FindId(anna_));
    WriteWholeFile(install + "Memo.pdb", WriteDatabase(program));
    desk_.There = false;

    EXPECT_EQ(Hold(), Session::End::Well);

    EXPECT_TRUE(Handheld(HandheldFolder()).Store.Has("Memo"));
}

TEST_F(SessionTest, AProgramFileThatIsTooLargeIsLeftWhereItIs) {
    settings_.LargestFileMB = 1;
    const std::string install = users_.InstallFolder(*users_.FindId(anna_));
    WriteWholeFile(install + "huge.pdb", std::string((1 << 20) + 1, 'x'));

    EXPECT_EQ(Hold(), Session::End::Well);

    EXPECT_EQ(Global.TheDisk->FilesIn(install), Rows{"huge.pdb"});
}

TEST_F(SessionTest, ATableThatIsTooLargeIsNotFetched) {
    settings_.LargestTableMB = 1;
    GivenTable(Table("ZUKORLIN"), *FindTable("ZUKORLIN"), 5000, 1);
    wanted_ = {{Way::Download, Table("ZUKORLIN")}, {Way::Upload, Folder() + "pc/back/ZUKORLIN.DBF"}};
    MakePath(Folder() + "pc/back/");

    EXPECT_EQ(Hold(), Session::End::Well);

    EXPECT_FALSE(Exists(Folder() + "pc/back/ZUKORLIN.DBF"));
    EXPECT_TRUE(LogSays("5000 records are more than 1 MB"));
}

TEST_F(SessionTest, AHandheldThatAlwaysAnswersIsEndedWhenTheTimeOfASessionIsOver) {
    settings_.SessionMinutes = 0;

    EXPECT_EQ(Hold(), Session::End::Broken);

    EXPECT_TRUE(LogSays("session ended early: the session has lasted too long"));
}

TEST_F(SessionTest, CancelOnTheHandheldEndsTheSessionCleanly) {
    GivenTable(Table("ZUKPAY"), *FindTable("ZUKPAY"), 2, 1);
    wanted_ = {{Way::Download, Table("ZUKPAY")}};
    LoopHandheld handheld(HandheldFolder());
    handheld.Heard = [&](const DlpRequest& request) {
        if (request.Function == DlpFunction::ReadUserInfo) handheld.Server().Cancel();
    };

    EXPECT_EQ(Hold(handheld), Session::End::Cancelled);

    EXPECT_EQ(handheld.Server().Ended(), EndCode::Cancelled);
    EXPECT_EQ(desk_.Heard, (Statuses{1, 2}));
    EXPECT_TRUE(LogSays("cancelled on the handheld"));
}

TEST_F(SessionTest, CancelOfTheOperatorEndsTheSessionCleanly) {
    GivenTable(Table("ZUKORLIN"), *FindTable("ZUKORLIN"), 20, 1);
    wanted_ = {{Way::Download, Table("ZUKORLIN")}};
    watcher_.CancelAt = 10;
    LoopHandheld handheld(HandheldFolder());

    EXPECT_EQ(Hold(handheld), Session::End::Cancelled);

    EXPECT_EQ(handheld.Server().Ended(), EndCode::Cancelled);
    EXPECT_EQ(HandheldRows("ZUKORLIN"), std::nullopt);
    EXPECT_EQ(Handheld(HandheldFolder()).Store.Entries().size(), 0U) << "nothing half done stays there";
    EXPECT_TRUE(users_.FindId(anna_)->Incomplete);
}

TEST_F(SessionTest, AHandheldIsKeptWaitingWhileTheProgramIsBusy) {
    desk_.BusyFor = 5;
    int kept = 0;
    LoopHandheld handheld(HandheldFolder());
    handheld.Heard = [&](const DlpRequest& request) {
        kept += request.Function == DlpFunction::OpenConduit ? 1 : 0;
    };

    EXPECT_EQ(Hold(handheld), Session::End::Well);

    EXPECT_EQ(kept, 5);
}

TEST_F(SessionTest, WithoutAProgramASessionOnlyInstallsAndEndsWell) {
    desk_.There = false;

    EXPECT_EQ(Hold(), Session::End::Well);

    EXPECT_TRUE(desk_.Heard.empty());
    EXPECT_EQ(watcher_.Words, (Rows{"begun ANNA", "well: well"}));
}

TEST_F(SessionTest, WhateverAHandheldAnswersTheSessionEndsAndTheTablesAreWhole) {
    GivenTable(Table("ZUKPAY"), *FindTable("ZUKPAY"), 2, 1);
    wanted_ = {{Way::Download, Table("ZUKPAY")}, {Way::Upload, Table("ZUKPAY")}};
    const Rows before = RowsOf(Table("ZUKPAY"));
    std::mt19937 random(5);
    for (int request = 0; request < 40; ++request) {
        for (int kind = 0; kind < 6; ++kind) {
            GivenHandheld("ANNA", anna_);
            LoopHandheld handheld(HandheldFolder());
            handheld.LieAt = request;
            std::string lie(random() % 40, '\0');
            for (char& c : lie) c = static_cast<char>(random() % 256);
            if (kind == 1) lie = {};
            if (kind == 2)
                lie = std::string("\xA0\x01\x00\x00\x20\x0A\x00\x00\x00\x01\x00\x00\xFF\xFF\x00\x00", 16);
            if (kind == 3) lie = std::string("\x97\x01\x00\x00\x20\x01\x63", 7);
            if (kind == 4) lie = std::string("\xAB\x01\x00\x00\x20\x02\xFF\xFF", 8);
            if (kind == 5) lie = std::string("\x9B\x01\x00\x00\xA0\x00\x00\x08\x00\x06ZUKT\x00\x01", 16);
            handheld.Lie = lie;

            Hold(handheld);

            EXPECT_EQ(RowsOf(Table("ZUKPAY")), before) << "request " << request << ", kind " << kind;
        }
    }
    GivenHandheld("ANNA", anna_);
    EXPECT_EQ(Hold(), Session::End::Well);
}

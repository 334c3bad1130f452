#include "RealHotSync.h"

#include "core/Paths.h"
#include "handheld/Handheld.h"
#include "handheld/HandheldTable.h"
#include "installation/HandheldInstall.h"
#include "platform/Convert.h"
#include "support/Tables.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>

namespace {

const QString Screen = QStringLiteral("frmHHInstall");
const QString Ready = QStringLiteral("Ready to install files on Handheld ANNA");
using Files = std::map<QString, QByteArray>;

/// The installer with the real HotSync Manager and a handheld of ANNA's, fresh at first.
class Installs : public RealHotSync {
protected:
    Installs() {
        GivenTable(Tables(), "ZUKLINK", {RowOf("ZUKLINK", {{"LK_HOTSYNC", "ANNA"}})});
        GivenTable(Tables(), "ZUKCust",
                   {RowOf("ZUKCust", {{"C_SEARCH", "ACME"}, {"C_CODE", "C1"}, {"C_NAME", "Acme"}}),
                    RowOf("ZUKCust", {{"C_SEARCH", "BOLT"}, {"C_CODE", "C2"}, {"C_NAME", "Bolt & Sons"}})});
        Handheld({"new", "--user", "ANNA", "--id", "7"});
    }

    std::string Tables() const { return PathFromQt(office_.Path("DBFFiles/")); }
    std::string Place() const { return folder_.filePath("handheld").toStdString(); }
    QString Waiting() const { return office_.Path("HotSync/ANNA/Install"); }
    QStringList FilesWaiting() const { return QDir(Waiting()).entryList(QDir::Files); }

    void Open(DriverClient& program) const {
        program.Start();
        program.WaitForm(Main);
        ASSERT_TRUE(QTest::qWaitFor([&] { return ManagerAnswers(); }, Patience));
        OpenScreen(program);
    }
    static void OpenScreen(DriverClient& program) {
        program.Click(Main, "lblInstallHH");
        program.WaitForm(Screen);
        program.Choose(Screen, "cboHSUsers", "ANNA");
    }

    void Begin(DriverClient& program, const QString& button) const {
        program.Click(Screen, button);
        program.WaitTextContaining(Screen, "lblInstallMsg", Ready);
    }
    void BeginLive(DriverClient& program) const {
        program.ExpectContaining("The system will now perform a Quality Check");
        program.ExpectContaining("No fatal problems found");
        program.ExpectContaining("NOTE: This process requires two HotSync actions");
        program.ExpectContaining("Do you want to install nevertheless?", "Yes"); // the office holds orders
        Begin(program, "cmdLive");
    }
    int HotSync(const QStringList& options = {}) {
        return Handheld(QStringList{"hotsync", Address()} + options);
    }

    /// Does something while a HotSync runs, over a line of so many bytes a second.
    void InAHotSync(const QString& speed, const std::function<void()>& deed) const {
        QProcess handheld;
        handheld.start(HandheldProgram(),
                       {folder_.filePath("handheld"), "hotsync", Address(), "--slow", speed});
        deed();
        EXPECT_TRUE(handheld.waitForFinished(Patience));
        EXPECT_EQ(handheld.exitCode(), 0);
    }
    static void CancelInAHotSync(DriverClient& program) {
        program.ExpectContaining("The installation was cancelled before it was complete");
        program.Click(Screen, "cmdCancel");
        program.WaitGone(Screen);
        EXPECT_TRUE(program.Expectations().isEmpty());
    }
    /// The screen once more, behind an install that came to nothing.
    void ReopenWithNothingDone(DriverClient& program) const {
        EXPECT_TRUE(FilesWaiting().isEmpty());
        OpenScreen(program);
        EXPECT_EQ(program.Rows(Screen, "FGTot").Cell(0, "TYPE"), "");
    }
    static void Close(DriverClient& program) {
        program.WaitEnabled(Screen, "cmdDemo");
        program.Click(Screen, "cmdCancel");
        program.WaitGone(Screen);
        EXPECT_EQ(program.Quit(), 0);
    }

    /// The handheld's databases as they stand, by their files.
    Files OnHandheld() const {
        Files files;
        const QDir folder(folder_.filePath("handheld/databases"));
        for (const QString& name : folder.entryList(QDir::Files)) files[name] = Bytes(folder.filePath(name));
        return files;
    }

    /// Names of the databases, as the files of an install have them without their extensions.
    std::set<std::string> Names() const {
        std::set<std::string> names;
        const ::Handheld handheld(Place());
        for (const DatabaseStore::Entry& entry : handheld.Store.Entries()) names.insert(entry.Header.Name);
        return names;
    }
    static std::set<std::string> NamesOf(InstallKind kind) {
        std::set<std::string> names;
        for (const std::string& file : FilesOf(kind)) names.insert(file.substr(0, file.size() - 4));
        return names;
    }

    /// All values of a table of the handheld, or of the office.
    static std::vector<std::vector<std::string>> RowsOnHandheld(const ::Handheld& handheld,
                                                                const std::string& table,
                                                                const std::vector<std::string>& fields) {
        const HandheldTable rows(handheld.Store, table);
        std::vector<std::vector<std::string>> values;
        for (std::size_t row = 0; row < rows.Count(); ++row) {
            auto& cells = values.emplace_back();
            for (const std::string& field : fields) cells.emplace_back(rows.Get(row, field));
        }
        return values;
    }

    void ExpectTheOfficesTablesOnTheHandheld() const {
        const ::Handheld handheld(Place());
        Global.DBFPath = Tables();
        for (const std::string& path : LiveTables()) {
            const std::string file(FileNameOf(path));
            const TableContent office = TableAt(ResolvePath(path));
            std::string name = file.substr(0, file.size() - 4);
            for (char& c : name) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
            std::vector<std::vector<std::string>> rows;
            for (int record = 1; record <= office.Count; ++record) rows.push_back(office.Trimmed(record));
            EXPECT_EQ(RowsOnHandheld(handheld, name, office.Names), rows) << name;
        }
    }

    void PutVersion(const std::string& version) const {
        ::Handheld handheld(Place());
        HandheldTable table = HandheldTable::OpenOrMake(handheld.Store, "ZUKVER", 1, 1);
        table.Clear();
        std::string fields = table.NewFields();
        table.Put(fields, "V_MAJOR", version);
        table.Append(fields);
        handheld.Store.Save(table.Data());
    }
};

} // namespace

TEST_F(Installs, TheDemoCompanyGoesToAFreshHandheldWhichCanTakeAnOrderThen) {
    DriverClient program(InOffice());
    Open(program);
    Begin(program, "cmdDemo");
    EXPECT_FALSE(program.IsEnabled(Screen, "cmdLive"));
    EXPECT_EQ(FilesWaiting().size(), 47);

    ASSERT_EQ(HotSync(), 0) << said_.toStdString();

    program.WaitTextContaining(Screen, "lblInstallMsg", "Demo Company was installed on handheld ANNA");
    EXPECT_EQ(program.Rows(Screen, "FGTot").Cell(0, "TYPE"), "Demo Company");
    EXPECT_TRUE(FilesWaiting().isEmpty());
    const std::set<std::string> names = Names();
    for (const std::string& name : NamesOf(InstallKind::Demo)) EXPECT_TRUE(names.contains(name)) << name;
    EXPECT_EQ(Handheld({"version"}), 0);
    EXPECT_TRUE(said_.contains("100")) << said_.toStdString();
    QString customer, item;
    {
        const ::Handheld handheld(Place());
        for (const std::string& file : DemoSet())
            EXPECT_NO_THROW(HandheldTable(handheld.Store, file.substr(10, file.size() - 14))) << file;
        const HandheldTable customers(handheld.Store, "ZUKCUST"), items(handheld.Store, "ZUKITEM");
        ASSERT_GT(customers.Count(), 0U);
        ASSERT_GT(items.Count(), 0U);
        customer = ToQt(customers.Get(0, "C_CODE"));
        item = ToQt(items.Get(0, "I_ITEMCODE"));
    }
    EXPECT_EQ(Handheld({"order", "--customer", customer, "--line", item + ":2"}), 0) << said_.toStdString();
    Close(program);
}

TEST_F(Installs, LiveTakesTwoHotSyncsOfWhichTheSecondBringsTheOfficesTables) {
    DriverClient program(InOffice());
    Open(program);
    BeginLive(program);

    ASSERT_EQ(HotSync(), 0) << said_.toStdString();
    program.WaitTextContaining(Screen, "lblInstallMsg", "Press the hotsync button once more");
    EXPECT_TRUE(program.IsVisible(Screen, "lblSyncMsg"));
    EXPECT_FALSE(::Handheld(Place()).Store.Has("TZUK20000_ZUKCUST"));
    EXPECT_TRUE(::Handheld(Place()).Store.Has("Tramble"));

    ASSERT_EQ(HotSync(), 0) << said_.toStdString();
    program.WaitTextContaining(Screen, "lblInstallMsg", "Live Data was installed on handheld ANNA");
    EXPECT_EQ(program.Rows(Screen, "FGTot").Cell(0, "TYPE"), "Live Data");
    ExpectTheOfficesTablesOnTheHandheld();
    Close(program);
}

TEST_F(Installs, ProgramOnlyTakesTheSameVersionAndRefusesAnother) {
    DriverClient program(InOffice());
    Open(program);
    PutVersion("112");
    program.Expect("Version 1.12 on the handheld can not be upgraded to version 1.00. Please install the new "
                   "version using the 'Demo Company' or 'Live Install' options.");
    Begin(program, "cmdProgram");
    ASSERT_EQ(HotSync(), 0) << said_.toStdString();
    program.WaitEnabled(Screen, "cmdProgram");
    EXPECT_EQ(Names(), std::set<std::string>{"TZUK20000_ZUKVER"});
    EXPECT_EQ(Handheld({"version"}), 0);
    EXPECT_TRUE(said_.contains("112")) << said_.toStdString();
    EXPECT_TRUE(FilesWaiting().isEmpty());
    EXPECT_EQ(program.Rows(Screen, "FGTot").Cell(0, "TYPE"), "");

    PutVersion("100");
    Begin(program, "cmdProgram");
    ASSERT_EQ(HotSync(), 0) << said_.toStdString();
    program.WaitTextContaining(Screen, "lblInstallMsg", "Program Only was installed on handheld ANNA");
    EXPECT_EQ(Names(), NamesOf(InstallKind::Program)) << "program and runtime, and no table";
    EXPECT_TRUE(QFile::exists(office_.Path("Install/ZUKVER.dbf")));
    EXPECT_TRUE(QFile::exists(office_.Path("Install/TZUK20000_ZUKVER.pdb")));
    Close(program);
}

TEST_F(Installs, CancelledBeforeTheHotSyncNothingReachesTheHandheld) {
    DriverClient program(InOffice());
    Open(program);
    const Files before = OnHandheld();
    Begin(program, "cmdDemo");

    program.Click(Screen, "cmdCancel");
    program.WaitGone(Screen);
    ASSERT_EQ(HotSync(), 0) << said_.toStdString();

    EXPECT_TRUE(FilesWaiting().isEmpty());
    EXPECT_EQ(OnHandheld(), before);
    EXPECT_EQ(program.Quit(), 0);
}

TEST_F(Installs, CancelledInAHotSyncOrBetweenTheTwoOfALiveInstallTheRestStaysAwayAndNothingIsNoted) {
    DriverClient program(InOffice());
    Open(program);
    PutVersion("100");

    // Program Only, while the version is fetched.
    Begin(program, "cmdProgram");
    InAHotSync("500", [&] {
        ASSERT_TRUE(QTest::qWaitFor([&] { return program.IsVisible(Screen, "lblSyncMsg"); }, Patience));
        CancelInAHotSync(program);
        EXPECT_FALSE(ManagerLog().contains(" from the handheld: ")) << "the version has gone over";
    });
    EXPECT_EQ(Names(), std::set<std::string>{"TZUK20000_ZUKVER"});
    ReopenWithNothingDone(program);

    // Live, between its two HotSyncs.
    BeginLive(program);
    ASSERT_EQ(HotSync(), 0) << said_.toStdString();
    program.WaitTextContaining(Screen, "lblInstallMsg", "Press the hotsync button once more");
    CancelInAHotSync(program);
    ASSERT_EQ(HotSync(), 0) << said_.toStdString();
    EXPECT_EQ(Names(), NamesOf(InstallKind::Live)) << "the program, and no table of the office";
    ReopenWithNothingDone(program);

    // A Demo, while its files go over.
    Begin(program, "cmdDemo");
    InAHotSync("60000", [&] {
        ASSERT_TRUE(QTest::qWaitFor([&] { return FilesWaiting().size() < 47; }, Patience));
        EXPECT_FALSE(FilesWaiting().isEmpty());
        CancelInAHotSync(program);
    });
    const std::set<std::string> arrived = Names();
    EXPECT_FALSE(std::ranges::includes(arrived, NamesOf(InstallKind::Demo)));
    ReopenWithNothingDone(program);
    Close(program);
}

TEST_F(Installs, AProgramThatIsKilledWhileItWaitsLeavesTheHandheldAsItIsAndTheNextStartTakesBackTheFiles) {
    {
        DriverClient killed(InOffice());
        Open(killed);
        Begin(killed, "cmdDemo");
        killed.Kill();
    }
    const Files before = OnHandheld();

    ASSERT_EQ(HotSync(), 0) << said_.toStdString();
    EXPECT_EQ(OnHandheld(), before);
    EXPECT_EQ(FilesWaiting().size(), 47);

    DriverClient program(InOffice());
    program.ExpectContaining("The installation was cancelled before it was complete");
    Open(program);
    EXPECT_TRUE(FilesWaiting().isEmpty());
    Begin(program, "cmdDemo");
    ASSERT_EQ(HotSync(), 0) << said_.toStdString();
    program.WaitTextContaining(Screen, "lblInstallMsg", "Demo Company was installed on handheld ANNA");
    Close(program);
}

TEST_F(Installs, ALineCutInTheMiddleIsToldAndTheNextHotSyncBringsTheRest) {
    DriverClient program(InOffice());
    Open(program);
    Begin(program, "cmdDemo");
    constexpr int CutByOurselves = 3;

    EXPECT_EQ(HotSync({"--cut-after", "400"}), CutByOurselves) << said_.toStdString();
    program.WaitTextContaining(Screen, "lblInstallMsg", "Files that have not reached the handheld yet:");
    EXPECT_FALSE(FilesWaiting().isEmpty());
    EXPECT_LT(FilesWaiting().size(), 47);
    EXPECT_EQ(program.Rows(Screen, "FGTot").Cell(0, "TYPE"), "");

    ASSERT_EQ(HotSync(), 0) << said_.toStdString();
    program.WaitTextContaining(Screen, "lblInstallMsg", "Demo Company was installed on handheld ANNA");
    const std::set<std::string> names = Names();
    for (const std::string& name : NamesOf(InstallKind::Demo)) EXPECT_TRUE(names.contains(name)) << name;
    Close(program);
}

#include "RealHotSync.h"

#include "handheld/Handheld.h"
#include "handheld/HandheldTable.h"
#include "platform/Convert.h"
#include "platform/TitledWindow.h"
#include "support/Tables.h"

#include <QDirIterator>
#include <QImage>

#include <map>
#include <set>

namespace {

const QString Remote = QStringLiteral("frmRemoteSync");
const QString Upload = QStringLiteral("frmUploadSelect");

using Codes = std::multiset<std::string>;
using Files = std::map<QString, QByteArray>;

Codes operator+(Codes some, const Codes& others) {
    some.insert(others.begin(), others.end());
    return some;
}

/// An office with orders of its own whose Links table knows ANNA, BERT and CARL; DORA is the manager's alone.
class Uploads : public RealHotSync {
protected:
    Uploads() {
        Put("Users.txt", "7\tANNA\tnever\tcomplete\r\n8\tBERT\tnever\tcomplete\r\n"
                         "9\tCARL\tnever\tcomplete\r\n10\tDORA\tnever\tcomplete\r\n");
        GivenTable(Tables(), "ZUKLINK",
                   {RowOf("ZUKLINK", {{"LK_HOTSYNC", "ANNA"}}), RowOf("ZUKLINK", {{"LK_HOTSYNC", "BERT"}}),
                    RowOf("ZUKLINK", {{"LK_HOTSYNC", "CARL"}})});
        Template("Upload/All.ust", "Orders=1\r\nAudits=1\r\nHandheld Totals=1\r\n");
        Template("Download/All.dct", "Order Tables=1\r\nAudit Tables=1\r\nHandheld Totals=1\r\n");
        Template("UnattendedHotsync/Evening.uhs",
                 "Download=False\r\nDownloadTemplate=\r\nUpload=True\r\n"
                 "UploadTemplate=All\r\nClear=True\r\nClearTemplate=All\r\n");
        oldHeaders_ = OnPC("ZUKOrHdr", "H_ORDCODE");
        oldLines_ = OnPC("ZUKOrLin", "L_ORDCODE");
        EXPECT_FALSE(oldHeaders_.empty() || oldLines_.empty());
    }

    void Template(const QString& name, const QByteArray& content) const {
        const QString path = office_.Path("Templates/") + name;
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }

    // ---- the PC ----

    std::string Tables() const { return PathFromQt(office_.Path("DBFFiles/")); }
    static Codes CodesIn(const TableContent& table, const std::string& field) {
        const auto at = std::find(table.Names.begin(), table.Names.end(), field) - table.Names.begin();
        Codes codes;
        for (int record = 1; record <= table.Count; ++record)
            codes.insert(table.Trimmed(record).at(static_cast<std::size_t>(at)));
        return codes;
    }
    Codes OnPC(const char* table, const char* field) const {
        return CodesIn(TableAt(Tables() + table + ".dbf"), field);
    }

    /// Machine id and last order number, as the PC has learnt them.
    std::string Link(const std::string& user) const {
        const TableContent links = TableAt(Tables() + "ZUKLINK.dbf");
        const auto at = [&](const char* field) {
            return static_cast<std::size_t>(std::find(links.Names.begin(), links.Names.end(), field) -
                                            links.Names.begin());
        };
        for (int record = 1; record <= links.Count; ++record) {
            const auto row = links.Trimmed(record);
            if (row.at(at("LK_HOTSYNC")) == user) return row.at(at("LK_MACH_ID")) + row.at(at("LK_LSTONUM"));
        }
        return "no row";
    }

    /// The letter that the matrix of handhelds shows.
    QString Brick(const QString& user) const {
        constexpr int idWidth = 30, letterWidth = 30;
        for (const QByteArray& line : Bytes(office_.Path("Install/HSStatus.dat")).split('\n')) {
            const QString text = QString::fromLatin1(line);
            if (text.left(idWidth).trimmed() == user) return text.mid(idWidth, letterWidth).trimmed();
        }
        return QStringLiteral("no line");
    }

    QByteArray Receipt(const QString& user) const {
        const QDir folder(office_.Path("DBFFiles/HHTotals/") + user);
        const QStringList receipts = folder.entryList({"*.txt"}, QDir::Files, QDir::Name);
        return receipts.isEmpty() ? QByteArray() : Bytes(folder.filePath(receipts.last()));
    }

    /// What a HotSync may change.
    Files OfficeFiles() const {
        Files files;
        for (const char* folder : {"DBFFiles", "Backup"}) {
            for (QDirIterator each(office_.Path(folder), QDir::Files, QDirIterator::Subdirectories);
                 each.hasNext();) {
                const QString path = each.next();
                files[path] = Bytes(path);
            }
        }
        files["HSStatus.dat"] = Bytes(office_.Path("Install/HSStatus.dat"));
        return files;
    }

    void ExpectNoSafetyCopies() const {
        EXPECT_EQ(QDir(office_.Path("DBFFiles")).entryList({"*.dap", "SafetyCopies.txt"}, QDir::Files),
                  QStringList());
    }

    void Open(DriverClient& program) const {
        program.Start();
        program.WaitForm(Main);
        ASSERT_TRUE(QTest::qWaitFor([&] { return ManagerAnswers(); }, Patience));
    }

    static void Arm(DriverClient& program) {
        program.Click(Main, "lblUA");
        program.WaitForm("frmQBRemote");
        program.Choose("frmQBRemote", "cboUnattended", "Evening");
        program.Expect("Perform Evening - Is that correct?", "Yes");
        program.Click("frmQBRemote", "cmdOK");
        program.WaitForm(Remote);
    }
    static void Disarm(DriverClient& program) {
        program.Click(Remote, "cmdCancel");
        program.WaitGone(Remote);
    }
    static void AwaitEndOfSession(DriverClient& program, const QString& user) {
        program.WaitText(Remote, "lblHotSyncID", user);
        program.WaitTextContaining(Remote, "lblMessage", "The last one was");
    }

    // ---- the handhelds ----

    QString Place(const QString& user) const { return folder_.filePath("handheld-") + user; }
    int Hand(const QString& user, const QStringList& words) {
        return Run(HandheldProgram(), QStringList{Place(user)} + words);
    }

    /// A handheld whose last order was number 100, with customers and items.
    void GivenHandheld(const QString& user, const QString& id, const QString& machine) {
        ASSERT_EQ(Hand(user, {"new", "--user", user, "--id", id, "--machine", machine}), 0)
            << said_.toStdString();
        ::Handheld handheld(Place(user).toStdString());
        const auto put = [&](const char* name, std::vector<std::pair<const char*, std::string>> values) {
            HandheldTable table = HandheldTable::OpenOrMake(handheld.Store, name, 1, 1);
            std::string fields = table.NewFields();
            for (const auto& [field, value] : values) table.Put(fields, field, value);
            table.Append(fields);
            handheld.Store.Save(table.Data());
        };
        put("ZUKCUST", {{"C_SEARCH", "ACME"}, {"C_CODE", "C1"}, {"C_NAME", "Acme"}});
        put("ZUKITEM", {{"I_SEARCH", "NUT"}, {"I_ITEMCODE", "N1"}, {"I_PRICE", "0.215"}});
        put("ZUKLINK", {{"LK_HOTSYNC", user.toStdString()},
                        {"LK_MACH_ID", machine.toStdString()},
                        {"LK_LSTONUM", "000100"}});
    }

    /// Orders with many lines: on a slow line these take their time.
    void TakeOrders(const QString& user, int count) {
        QStringList order{"order", "--customer", "C1"};
        for (const char* line : {"N1:100", "N1:7", "N1:10", "N1:1", "N1:12", "N1:5", "N1:30", "N1:2"})
            order << "--line" << line;
        for (int k = 0; k < count; ++k) ASSERT_EQ(Hand(user, order), 0) << said_.toStdString();
    }

    Codes OnHandheld(const QString& user, const char* table, const char* field) const {
        const ::Handheld handheld(Place(user).toStdString());
        const HandheldTable rows(handheld.Store, table);
        Codes codes;
        for (std::size_t row = 0; row < rows.Count(); ++row) codes.insert(std::string(rows.Get(row, field)));
        return codes;
    }
    Codes Headers(const QString& user) const { return OnHandheld(user, "ZUKORHDR", "H_ORDCODE"); }
    Codes Lines(const QString& user) const { return OnHandheld(user, "ZUKORLIN", "L_ORDCODE"); }

    /// The databases as they stand; the handheld itself counts its totals anew before each HotSync.
    Files HandheldFiles(const QString& user) const {
        Files files;
        const QDir folder(Place(user) + "/databases");
        for (const QString& name : folder.entryList(QDir::Files)) {
            if (!name.contains("AUDHH")) files[name] = Bytes(folder.filePath(name));
        }
        return files;
    }

    void HotSync(DriverClient& program, const QString& user) {
        ASSERT_EQ(Hand(user, {"hotsync", Address()}), 0) << said_.toStdString();
        AwaitEndOfSession(program, user);
    }

    /// Presses HotSync on a slow line and kills the handheld when the Links table and the order headers have
    /// gone over, and the lines have not.
    void KillBetweenHeadersAndLines(const QString& user) {
        const auto moved = [this] { return ManagerLog().count(" from the handheld: "); };
        const auto before = moved();
        QProcess handheld;
        handheld.start(HandheldProgram(), {Place(user), "hotsync", Address(), "--slow", "4000"});
        ASSERT_TRUE(QTest::qWaitFor([&] { return moved() >= before + 2; }, Patience));
        handheld.kill();
        ASSERT_TRUE(handheld.waitForFinished(Patience));
        ASSERT_TRUE(ManagerLogs("session ended early"));
        ASSERT_EQ(moved(), before + 2) << "the lines have gone over";
    }

    Codes oldHeaders_, oldLines_;
};

} // namespace

TEST_F(Uploads, UnattendedTheyComeFromOneHandheldAfterTheOtherUntilOneIsUnknownAndAgainBehindANewStart) {
    DriverClient program(InOffice());
    Open(program);
    const std::map<QString, std::pair<int, QString>> orders{
        {"ANNA", {2, "A1"}}, {"BERT", {1, "B1"}}, {"CARL", {3, "C1"}}};
    int id = 7;
    Codes headers = oldHeaders_, lines = oldLines_;
    for (const auto& [user, taken] : orders) {
        GivenHandheld(user, QString::number(id++), taken.second);
        TakeOrders(user, taken.first);
        headers = headers + Headers(user);
        lines = lines + Lines(user);
    }

    Arm(program);
    for (const auto& [user, taken] : orders) {
        HotSync(program, user);
        EXPECT_EQ(Brick(user), "G");
        EXPECT_TRUE(Receipt(user).contains("BALANCED")) << Receipt(user).toStdString();
        EXPECT_EQ(Link(user.toStdString()),
                  (taken.second + "00010" + QString::number(taken.first)).toStdString());
        EXPECT_TRUE(Headers(user).empty() && Lines(user).empty());
    }
    EXPECT_EQ(OnPC("ZUKOrHdr", "H_ORDCODE"), headers);
    EXPECT_EQ(OnPC("ZUKOrLin", "L_ORDCODE"), lines);
    ExpectNoSafetyCopies();

    // The manager knows no such handheld: the PC hears nothing of it.
    const Files office = OfficeFiles();
    GivenHandheld("ZOE", "99", "Z1");
    EXPECT_NE(Hand("ZOE", {"hotsync", Address()}), 0);
    EXPECT_TRUE(ManagerLogs("no user of this manager is called \"ZOE\""));
    EXPECT_EQ(program.Text(Remote, "lblHotSyncID"), "CARL");
    EXPECT_EQ(OfficeFiles(), office);

    // The manager knows this one and the Links table does not: that the box comes shows the mode on still.
    GivenHandheld("DORA", "10", "D1");
    TakeOrders("DORA", 1);
    const Files doras = HandheldFiles("DORA");
    program.Expect("Hotsync ID for handheld currently being synchronized cannot be found in the Links table! "
                   "ZUK Tramble Hotsync process will not be performed.");
    Hand("DORA", {"hotsync", Address()});
    program.WaitTextContaining(Remote, "lblMessage", "Unattended Hotsync is off");
    program.Done();
    EXPECT_EQ(HandheldFiles("DORA"), doras);
    EXPECT_EQ(OfficeFiles(), office);

    // From here on everybody passes by.
    TakeOrders("ANNA", 1);
    const Files annas = HandheldFiles("ANNA");
    EXPECT_EQ(Hand("ANNA", {"hotsync", Address()}), 0) << said_.toStdString();
    EXPECT_EQ(HandheldFiles("ANNA"), annas);
    EXPECT_EQ(OfficeFiles(), office);

    headers = headers + Headers("ANNA");
    Disarm(program);
    Arm(program);
    HotSync(program, "ANNA");
    EXPECT_EQ(OnPC("ZUKOrHdr", "H_ORDCODE"), headers);
    EXPECT_EQ(Link("ANNA"), "A1000103");
    EXPECT_TRUE(Headers("ANNA").empty());
    Disarm(program);
    EXPECT_EQ(program.Quit(), 0);
}

TEST_F(Uploads, UnattendedFromAHandheldThatDiesKeepTheOldOrdersBehindWhatCameWhole) {
    GivenHandheld("ANNA", "7", "A1");
    TakeOrders("ANNA", 3);
    const Codes headers = Headers("ANNA"), lines = Lines("ANNA");
    DriverClient program(InOffice());
    Open(program);
    Arm(program);

    KillBetweenHeadersAndLines("ANNA");

    AwaitEndOfSession(program, "ANNA");
    EXPECT_EQ(OnPC("ZUKOrHdr", "H_ORDCODE"), oldHeaders_ + headers);
    EXPECT_EQ(OnPC("ZUKOrLin", "L_ORDCODE"), oldLines_);
    EXPECT_EQ(Headers("ANNA"), headers);
    EXPECT_EQ(Lines("ANNA"), lines);
    EXPECT_EQ(Brick("ANNA"), "B");
    ExpectNoSafetyCopies();
    Disarm(program);
    EXPECT_EQ(program.Quit(), 0);
}

TEST_F(Uploads, ByTheScreenFromAHandheldThatDiesMergeNothingAndLeaveTheOldOrdersInTheBackup) {
    GivenHandheld("ANNA", "7", "A1");
    TakeOrders("ANNA", 3);
    const Codes headers = Headers("ANNA"), lines = Lines("ANNA");
    const QByteArray oldHeaders = Bytes(office_.Path("DBFFiles/ZUKOrHdr.dbf")),
                     oldLines = Bytes(office_.Path("DBFFiles/ZUKOrLin.dbf"));
    DriverClient program(InOffice());
    Open(program);
    program.Click(Main, "mnuMainUpload");
    program.WaitForm(Upload);
    program.Set(Upload, "chkOrHdr", true);
    program.Expect("Would you like to perform the upload operation now?", "Yes");
    program.ExpectContaining(
        "The session with the handheld broke off before its end, and nothing was merged.");
    program.Click(Upload, "cmdOK");
    ASSERT_TRUE(QTest::qWaitFor([] { return FindWindow("Hotsync Progress").has_value(); }, Patience));

    KillBetweenHeadersAndLines("ANNA");

    program.Done(std::chrono::milliseconds(Patience));
    EXPECT_EQ(OnPC("ZUKOrHdr", "H_ORDCODE"), headers);
    EXPECT_EQ(OnPC("ZUKOrLin", "L_ORDCODE"), oldLines_);
    const QStringList backups = QDir(office_.Path("Backup")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    ASSERT_EQ(backups.size(), 1);
    EXPECT_TRUE(program.Boxes().last().Text.contains(backups.first()));
    EXPECT_EQ(Bytes(office_.Path("Backup/" + backups.first() + "/ZUKOrHdr.dbf")), oldHeaders);
    EXPECT_EQ(Bytes(office_.Path("Backup/" + backups.first() + "/ZUKOrLin.dbf")), oldLines);
    EXPECT_EQ(Headers("ANNA"), headers);
    EXPECT_EQ(Lines("ANNA"), lines);
    ExpectNoSafetyCopies();
    if (program.IsShown(Upload)) program.Click(Upload, "cmdCancel");
    program.WaitGone(Upload);
    EXPECT_EQ(program.Quit(), 0);
}

TEST_F(Uploads, BringTheSignatureOfAnOrderIntoTheViewer) {
    const QString viewer = QStringLiteral("frmViewSign");
    GivenHandheld("ANNA", "7", "A1");
    TakeOrders("ANNA", 2);
    ASSERT_EQ(Hand("ANNA", {"sign", "A1000102"}), 0) << said_.toStdString();
    DriverClient program(InOffice());
    Open(program);
    Arm(program);
    HotSync(program, "ANNA");
    Disarm(program);

    program.Click(Main, "mnuViewSign");
    program.WaitForm(viewer);

    EXPECT_EQ(program.Text(viewer, "lblCount"), "1 of 1");
    EXPECT_EQ(program.Text(viewer, "txtOrHdr_1"), "A1000102");
    EXPECT_EQ(program.Text(viewer, "txtOrHdr_2"), "C1");
    EXPECT_EQ(program.Text(viewer, "txtOrHdr_3"), "Acme");
    const QImage ink(office_.Path("DBFFiles/Images/A1000102.bmp"));
    EXPECT_FALSE(ink.isNull());
    EXPECT_EQ(program.Property(viewer, "imgSign", "pictureWidth").toInt(), ink.width());
    EXPECT_EQ(program.Property(viewer, "imgSign", "pictureHeight").toInt(), ink.height());
    program.Click(viewer, "cmdOK");
    program.WaitGone(viewer);
    EXPECT_FALSE(QFile::exists(office_.Path("DBFFiles/SIGN.DBF")));
    EXPECT_EQ(program.Quit(), 0);
}

#include "RealHotSync.h"

#include "handheld/Handheld.h"
#include "handheld/HandheldTable.h"
#include "platform/TitledWindow.h"
#include "store/TableScan.h"

namespace {

/// A person before the keyboard, who has never seen the program.
class TourByKeys {
public:
    explicit TourByKeys(DriverClient& program) : program_(program) {}

    void Press(const char* key) { program_.Key(QLatin1String(key)); }

    void TabTo(const QString& form, const char* control) {
        for (int presses = 0; !program_.HasFocus(form, QLatin1String(control)); ++presses) {
            ASSERT_LT(presses, 100) << "the tab key does not lead to " << control;
            Press("Tab");
        }
    }

    void Begin() {
        TabTo(Main, "lblPrev");
        Press("Space");
        TabTo(Main, "lblDemoInstall");
        Press("Space");
        TurnTo(1);
    }

    void TurnTo(int page) {
        if (!page_.isEmpty()) program_.WaitGone(page_);
        page_ = QStringLiteral("frmQuickStart") + (page == 1 ? QString() : QString::number(page));
        program_.WaitForm(page_);
    }

    /// A button by the tab key.
    void PressButton(const char* button) {
        TabTo(page_, button);
        Press("Return");
    }

    /// A button leads to a screen, which is left by Escape, and then the page has the keys again.
    void See(const char* button, const char* form) {
        const QString screen = QLatin1String(form);
        PressButton(button);
        program_.WaitForm(screen);
        Press("Escape");
        program_.WaitGone(screen);
        EXPECT_TRUE(program_.IsShown(page_)) << button;
    }

    const QString& Page() const { return page_; }

private:
    DriverClient& program_;
    QString page_;
};

class Tour : public Program {};

TEST_F(Tour, IsWalkedByTheKeyboardAloneAndEachScreenLeadsBackToItsPage) {
    DriverClient program(InOffice());
    StartUp(program);
    TourByKeys tour(program);

    tour.Begin();
    EXPECT_EQ(program.Text(tour.Page(), "lblQ1"), "QuickStart");
    tour.Press("Return");
    tour.TurnTo(2);
    tour.PressButton("lblSetup");
    tour.TurnTo(3);
    for (const char* button : {"cmdCompany", "cmdSTax", "cmdPrinters", "cmdPayments", "cmdLinks"})
        tour.See(button, "frmViewGrid");
    tour.Press("Alt+Right");
    tour.TurnTo(4);
    for (const char* button : {"cmdCust", "cmdItems"}) tour.See(button, "frmViewGrid");
    program.ExpectContaining("No fatal problems found");
    tour.PressButton("cmdQC");
    program.Done(std::chrono::seconds(20));
    tour.PressButton("lblUpload1");
    tour.TurnTo(6);
    tour.See("cmdUpload", "frmUploadSelect");
    tour.Press("Alt+Left");
    tour.TurnTo(5);
    tour.See("cmdDownload", "frmTableSelectDL");
    program.ExpectContaining("No problems found");
    tour.PressButton("cmdQC");
    program.Done(std::chrono::seconds(20));
    tour.PressButton("lblExport1");
    tour.TurnTo(7);
    tour.See("cmdExport", "frmExport1");
    tour.See("cmdClear", "frmTableSelectPC");
    tour.Press("Alt+N");
    tour.TurnTo(8);
    tour.See("cmdQB", "frmOptions");
    tour.See("cmdUA", "frmOptions");
    tour.See("cmdRestore", "frmViewGrid");
    tour.Press("Escape");
    program.WaitGone(tour.Page());

    EXPECT_EQ(program.Quit(), 0);
}

class FirstMorning : public RealHotSync {
protected:
    std::int32_t Orders() const {
        return TableScan(office_.Path("DBFFiles/ZUKOrHdr.dbf").toStdString()).RecordCount();
    }

    /// What a field of a table of the handheld holds, record by record.
    QStringList OnHandheld(const char* table, const char* field) const {
        const ::Handheld handheld(folder_.filePath("handheld").toStdString());
        const HandheldTable rows(handheld.Store, table);
        QStringList values;
        for (std::size_t row = 0; row < rows.Count(); ++row)
            values << QString::fromLatin1(std::string(rows.Get(row, field)));
        return values;
    }
};

TEST_F(FirstMorning, TheDemoCompanyGoesToAHandheldAndItsFirstOrderComesHomeAndIsExportedByTheKeyboard) {
    ASSERT_EQ(Handheld({"new", "--user", "ANNA", "--id", "7"}), 0) << said_.toStdString();
    DriverClient program(InOffice());
    program.Start();
    program.WaitForm(Main);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ManagerAnswers(); }, Patience));
    TourByKeys tour(program);
    tour.Begin();

    tour.PressButton("lblInstall");
    program.WaitForm("frmMessage");
    EXPECT_EQ(program.Title("frmMessage"), "Install Handheld");
    tour.Press("Alt+Y");
    program.WaitForm("frmHSID");
    EXPECT_EQ(program.Text("frmHSID", "lblMsg"),
              "Select the default hotsync user that you will be using with ZUK Tramble");
    tour.Press("Return");
    program.WaitTextContaining(tour.Page(), "lblInstallMsg", "Ready to install files on Handheld ANNA");
    ASSERT_EQ(Handheld({"hotsync", Address()}), 0) << said_.toStdString();
    program.WaitTextContaining(tour.Page(), "lblInstallMsg", "Demo Company was installed on handheld ANNA");

    const QString customer = OnHandheld("ZUKCUST", "C_CODE").first();
    const QStringList items = OnHandheld("ZUKITEM", "I_ITEMCODE").first(2);
    ASSERT_EQ(
        Handheld({"order", "--customer", customer, "--line", items[0] + ":2", "--line", items[1] + ":7"}), 0)
        << said_.toStdString();
    const QString order = OnHandheld("ZUKORHDR", "H_ORDCODE").last();

    tour.PressButton("lblUpload1");
    tour.TurnTo(6);
    tour.PressButton("cmdUpload");
    program.WaitForm("frmUploadSelect");
    program.Set("frmUploadSelect", "chkOrHdr", true);
    program.Expect("Would you like to perform the upload operation now?", "Yes");
    const std::int32_t before = Orders();
    program.Click("frmUploadSelect", "cmdOK");
    ASSERT_TRUE(QTest::qWaitFor([] { return FindWindow("Hotsync Progress").has_value(); }, Patience));
    ASSERT_EQ(Handheld({"hotsync", Address()}), 0) << said_.toStdString();
    program.WaitForm("frmTotalsMsg");
    EXPECT_TRUE(program.IsShown(tour.Page())) << "the page waits";
    tour.Press("Escape");
    program.WaitGone("frmUploadSelect");
    EXPECT_TRUE(program.IsShown(tour.Page()));
    EXPECT_EQ(Orders(), before + 13) << "those of the Demo Company, and the new one";

    tour.Press("Alt+N");
    tour.TurnTo(7);
    tour.PressButton("cmdExport");
    const QString screen = "frmExport1";
    program.WaitForm(screen);
    tour.TabTo(screen, "cboSettings");
    tour.Press("Down");
    EXPECT_EQ(program.Text(screen, "cboSettings"), "DemoOrders");
    program.ExpectContaining("records successfully exported!");
    program.ExpectContaining("records in the Order Lines table appear to have no"); // of the office before
    program.ExpectContaining("Delete Exported Tables on PC?", "No");
    tour.TabTo(screen, "cmdOK");
    tour.Press("Return");
    program.WaitGone(screen);
    const QStringList lines = QString::fromLatin1(Bytes(office_.Path("DataOut/orders.csv")))
                                  .split("\r\n")
                                  .filter('"' + order + '"');
    ASSERT_EQ(lines.size(), 2) << order.toStdString();
    EXPECT_TRUE(lines[0].contains("\"WEB\",1,\"" + items[0] + "\",") && lines[0].contains(",2,\""))
        << lines[0].toStdString();
    EXPECT_TRUE(lines[1].contains("\"WEB\",2,\"" + items[1] + "\",") && lines[1].contains(",7,\""))
        << lines[1].toStdString();
    EXPECT_TRUE(program.IsShown(tour.Page())) << "the page again";
    tour.Press("Escape");
    program.WaitGone(tour.Page());
    EXPECT_EQ(program.Quit(), 0);
}

} // namespace

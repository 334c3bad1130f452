#include "core/Messages.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "forms/FormTest.h"
#include "platform/PictureBox.h"
#include "program/forms/frmMain1.h"
#include "views/Signatures.h"
#include "views/TableViews.h"
#include "views/forms/Editors.h"
#include "views/forms/frmChSetup.h"
#include "views/forms/frmCompany.h"
#include "views/forms/frmPay.h"
#include "views/forms/frmPrinter.h"
#include "views/forms/frmViewGrid.h"
#include "views/forms/frmViewSign.h"

#include <QPushButton>
#include <QRadioButton>

#include <functional>

namespace {

class SetupScreens : public FormTest {
protected:
    SetupScreens() { GivenOffice(); }

    frmMain1& Start() {
        Operator_.Expect(msg::PalmDesktopMissing);
        return Open<frmMain1>();
    }

    /// A record of the table that is chosen, as the browser's button opens it.
    static void Edit(ViewFlag flag, std::int32_t record = 1) {
        ClearViewFlags();
        Global.View[flag] = true;
        Global.SelectedRow = record;
        OpenEditor();
        Settle();
    }

    static std::string Shown(FormBehaviour& form, const char* name) {
        return TextOf(form, name).toStdString();
    }

    static std::string Payment(int record) {
        std::string row;
        for (const char* field : {"PAY_CODE", "PAY_REF", "PAY_CDESC", "PAY_CDET"})
            row += Cell("ZUKPAY", record, field) + "|";
        return row;
    }

    static std::string Chosen(FormBehaviour& form) {
        for (const char* option : {"optCash", "optCheck", "optCard"})
            if (dynamic_cast<QRadioButton&>(Control(form, option)).isChecked()) return option;
        return "none";
    }
};

TEST_F(SetupScreens, TheEditMenuLeadsOverTheGridToTheCompanyWhoseNameReportsThenBear) {
    GivenRows("ZUKCOMP", {"COMPANY|LINE2|FOOTNOTE3", "Acme|Main Street|Thanks"});
    GivenRows("ZUKSETUP", {"SU_SRCHCUS|SU_SRCHITM", "Phone|Description"});
    GivenRows("ZUKPRINT", {"LINEMAX", "61"});
    auto& main = Start();
    EXPECT_EQ(Global.SearchCustomers + Global.SearchItems, "PhoneDescription");
    EXPECT_EQ(Global.LinesPerPage, 61);
    EXPECT_FALSE(Global.SetupOnly);
    EXPECT_EQ(IfLoaded<frmChSetup>(), nullptr);

    ClickMenu(main, "mnuChgComp");
    auto& grid = The<frmViewGrid>();
    EXPECT_TRUE(dynamic_cast<QPushButton&>(Control(grid, "cmdEdit")).isDefault());
    Click(grid, "cmdEdit");
    EXPECT_EQ(IfLoaded<frmViewGrid>(), nullptr);
    auto& form = The<frmCompany>();
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Edit Company Details"));
    EXPECT_EQ(Shown(form, "txtField_1") + Shown(form, "txtField_2") + Shown(form, "txtField_9"),
              "AcmeMain StreetThanks");

    Type(form, "txtField_1", QStringLiteral(" Bolt \u4e16 "));
    EXPECT_EQ(Shown(form, "lblWarning"),
              "Some of these characters cannot be kept by the table. They are stored as '?'.");
    Type(form, "txtField_1", QString(90, u'x'));
    EXPECT_EQ(Shown(form, "lblWarning"), "");
    Type(form, "txtField_3", QStringLiteral("Third"));
    Operator_.Expect(msg::UpdateChanged).Answer(Answer::Yes);
    Click(form, "cmdView");

    EXPECT_EQ(IfLoaded<frmCompany>(), nullptr);
    EXPECT_EQ(Cell("ZUKCOMP", 1, "COMPANY"), std::string(40, 'x'));
    EXPECT_EQ(Cell("ZUKCOMP", 1, "LINE3") + Cell("ZUKCOMP", 1, "FOOTNOTE3"), "ThirdThanks");
    Click(The<frmViewGrid>(), "cmdEdit");
    auto& again = The<frmCompany>();
    Type(again, "txtField_1", QStringLiteral("Bolt"));
    Click(again, "cmdOK");
    EXPECT_EQ(Global.CompanyName, "Bolt");
    Edit(ViewCompany);
    Type(The<frmCompany>(), "txtField_1", QStringLiteral("Nobody"));
    Click(The<frmCompany>(), "cmdCancel");
    EXPECT_EQ(Cell("ZUKCOMP", 1, "COMPANY"), "Bolt");
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(SetupScreens, ThePrintSettingsGoByTheDriverAndARollPrinterHasItsRules) {
    GivenRows("ZUKPRINT",
              {"LINEMAX|PRINTER|CONTFORM|LINEFEED|BAUDRATE|STDLINE2|LOGO|STDSTYLE|COMPRESCHR|RESETCHR",
               "66|BPM|NO|4|9600|None|NO|Fixed|15|18"});
    Edit(ViewPrinter);
    auto& form = The<frmPrinter>();
    std::string shown;
    for (const char* control : {"txtLineMax", "cboPrinter", "cboContForm", "cboLineFeed", "cboBaudRate",
                                "cboStdLine2", "cboLogo", "cboStdStyle", "txtCompresChr", "txtResetChr"})
        shown += Shown(form, control) + "|";
    EXPECT_EQ(shown, "66|BPM|NO|4|9600|None|NO|Fixed Length|15|18|");
    EXPECT_TRUE(Enabled(form, "cboBaudRate") && Enabled(form, "txtCompresChr") &&
                Enabled(form, "lblResetChr"));
    EXPECT_FALSE(Enabled(form, "cboLogo"));
    Choose(form, "cboPrinter", QStringLiteral("PalmSerial"));
    EXPECT_TRUE(Enabled(form, "cboBaudRate"));
    EXPECT_FALSE(Enabled(form, "txtCompresChr") || Enabled(form, "txtResetChr") || Enabled(form, "cboLogo"));
    Choose(form, "cboContForm", QStringLiteral("YES"));
    EXPECT_FALSE(Enabled(form, "txtLineMax") || Enabled(form, "lblLineFeed") || Enabled(form, "cboLineFeed"));
    EXPECT_TRUE(Enabled(form, "lblLineMax"));
    Choose(form, "cboContForm", QStringLiteral("NO"));
    EXPECT_TRUE(Enabled(form, "txtLineMax") && Enabled(form, "lblLineFeed") && Enabled(form, "cboLineFeed"));
    Type(form, "txtLineMax", QStringLiteral("7a2"));
    EXPECT_EQ(Shown(form, "txtLineMax"), "72");

    Choose(form, "cboPrinter", QStringLiteral("Datecs"));
    EXPECT_TRUE(Enabled(form, "cboLogo"));
    EXPECT_FALSE(Enabled(form, "cboBaudRate"));
    Operator_.Expect(msg::DatecsFormatChanged).With(Icon::Information);
    Operator_.Expect(msg::DatecsContForm).Answer(Answer::No);
    Click(form, "cmdOK");

    EXPECT_EQ(Cell("ZUKPRINT", 1, "PRINTER") + Cell("ZUKPRINT", 1, "STDSTYLE") +
                  Cell("ZUKPRINT", 1, "CONTFORM") + Cell("ZUKPRINT", 1, "LINEMAX"),
              "DatecsContiNO72");
    EXPECT_EQ(Global.LinesPerPage, 72);
    Edit(ViewPrinter);
    Operator_.Expect(msg::DatecsContForm).Answer(Answer::Yes);
    Click(The<frmPrinter>(), "cmdOK");
    EXPECT_EQ(Cell("ZUKPRINT", 1, "CONTFORM"), "YES");
}

TEST_F(SetupScreens, TheHandheldsSetupIsExplainedSavedAndKeptInMind) {
    GivenRows("ZUKSETUP", {"SU_HHBAKUP|SU_RESYN1|SU_SRCHCUS|SU_SRCHITM", "APPEND|abc|nothing|Code"});
    Edit(ViewSetup);
    auto& form = The<frmChSetup>();
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Edit Setup"));
    EXPECT_EQ(Shown(form, "cboHHBackup") + "|" + Shown(form, "cboSrchCus") + "|" + Shown(form, "cboSrchItm"),
              "APPEND||Code");
    EXPECT_TRUE(TextOf(form, "lblHelp").startsWith(QStringLiteral("Move the mouse cursor")));
    Press(form, "cboHHBackup", Qt::Key_Tab);
    EXPECT_TRUE(TextOf(form, "lblHelp").startsWith(QStringLiteral("Select the default field")));

    Choose(form, "cboHHBackup", QStringLiteral("REPLACE"));
    Choose(form, "cboSrchCus", QStringLiteral("Company"));
    Choose(form, "cboSrchItm", QStringLiteral("Description"));
    Click(form, "cmdOK");

    EXPECT_EQ(Cell("ZUKSETUP", 1, "SU_HHBAKUP") + Cell("ZUKSETUP", 1, "SU_SRCHCUS") +
                  Cell("ZUKSETUP", 1, "SU_SRCHITM") + Cell("ZUKSETUP", 1, "SU_RESYN1"),
              "REPLACECompanyDescriptionabc");
    EXPECT_EQ(Global.SearchCustomers + Global.SearchItems, "CompanyDescription");
}

TEST_F(SetupScreens, APaymentIsAskedForItsTypeAndSavedWhenTheOperatorWants) {
    GivenRows("ZUKPAY",
              {"PAY_CODE|PAY_REF|PAY_CDESC|PAY_CDET", "CASH|NO||NO", "card|YES|Visa|YES", "GIRO|NO|x|NO"});
    Edit(ViewPay, 2);
    auto& form = The<frmPay>();
    EXPECT_EQ(Shown(form, "lblCount") + Chosen(form), "2 of 3optCard");
    EXPECT_TRUE(Enabled(form, "txtPayCDesc") && Enabled(form, "cboPayCDet"));

    Click(form, "cmdPrevious"); // nothing was changed, and nothing is asked
    EXPECT_EQ(Shown(form, "lblCount") + Chosen(form), "1 of 3optCash");
    EXPECT_FALSE(Enabled(form, "txtPayCDesc") || Enabled(form, "cboPayCDet") || Enabled(form, "cmdFirst"));
    EXPECT_TRUE(Enabled(form, "cboPayRef"));
    Choose(form, "cboPayRef", QStringLiteral("YES"));
    Operator_.Expect(msg::UpdateChanged).Answer(Answer::No);
    Click(form, "cmdNext");
    EXPECT_EQ(Payment(1), "CASH|NO||NO|");
    EXPECT_EQ(Shown(form, "lblCount"), "2 of 3");
    Type(form, "txtPayCDesc", QStringLiteral("Master"));
    Operator_.Expect(msg::UpdateChanged).Answer(Answer::Yes);
    Click(form, "cmdLast");
    EXPECT_EQ(Payment(2), "CARD|YES|Master|YES|");

    EXPECT_EQ(Shown(form, "lblCount") + Chosen(form), "3 of 3none"); // a type that nobody knows
    Operator_.Expect(msg::SelectPaymentType);
    Click(form, "cmdFirst");
    EXPECT_EQ(Shown(form, "lblCount"), "3 of 3");
    Click(form, "optCheck");
    Click(form, "cmdUpdate");
    EXPECT_EQ(Payment(3), "CHECK|NO|x|NO|");

    Click(form, "cmdAdd");
    EXPECT_EQ(Shown(form, "lblCount") + Chosen(form), "4 of 4none");
    EXPECT_EQ(RecordCount("ZUKPAY"), 4);
    for (const char* move : {"cmdFirst", "cmdPrevious", "cmdAdd", "cmdOK"}) {
        Operator_.Expect(msg::SelectPaymentType);
        Click(form, move);
        EXPECT_EQ(Shown(form, "lblCount"), "4 of 4") << move;
    }
    EXPECT_EQ(RecordCount("ZUKPAY"), 4);
    Operator_.Expect(msg::DeleteCurrentLink).Answer(Answer::Yes);
    Click(form, "cmdDelete");
    EXPECT_EQ(Shown(form, "lblCount") + Chosen(form), "3 of 3optCheck");
    Edit(ViewPay, 1); // the browser's way to an editor that is open
    EXPECT_EQ(Shown(form, "lblCount"), "1 of 3");
    for (int k = 0; k < 3; ++k) {
        Operator_.Expect(msg::DeleteCurrentLink).Answer(Answer::Yes);
        Click(form, "cmdDelete");
    }
    EXPECT_EQ(Shown(form, "lblCount") + Chosen(form), "No records to display!none");
    EXPECT_FALSE(Enabled(form, "cmdDelete") || Enabled(form, "cmdUpdate") || Enabled(form, "optCash"));
    Click(form, "cmdAdd"); // without a question
    Click(form, "optCard");
    Operator_.Expect(msg::UpdateChanged).Answer(Answer::Yes);
    Click(form, "cmdOK");
    EXPECT_EQ(Payment(1), "CARD||||");
    EXPECT_EQ(IfLoaded<frmPay>(), nullptr);
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(SetupScreens, ATableThatIsGoneIsToldAndNothingThatWasTypedIsLost) {
    Edit(ViewCompany);
    auto& form = The<frmCompany>();
    Type(form, "txtField_1", QStringLiteral("Acme"));
    const std::string path = ResolvePath(Global.DBFPath + "ZUKCOMP.DBF");
    const std::string table = Bytes(path);
    Global.TheDisk->Remove(path);
    Operator_.ExpectBeginning(msg::FileError).With(Icon::Stop);
    Click(form, "cmdOK");
    EXPECT_EQ(Shown(form, "txtField_1"), "Acme");
    WriteWholeFile(path, table);
    Click(form, "cmdOK");
    EXPECT_EQ(Cell("ZUKCOMP", 1, "COMPANY"), "Acme");

    for (const char* name : {"ZUKCOMP", "ZUKPRINT", "ZUKSETUP", "ZUKPAY"})
        Global.TheDisk->Remove(ResolvePath(Global.DBFPath + name + ".DBF"));
    for (const ViewFlag flag : {ViewCompany, ViewPrinter, ViewSetup, ViewPay}) {
        Operator_.ExpectBeginning(msg::FileError).With(Icon::Stop);
        Edit(flag);
    }
    EXPECT_EQ(FormRegistry::Instance().Names(), QStringList());
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(SetupScreens, TheViewerWalksTheSignedOrdersAndLeavesNoCopyBehind) {
    GivenRows("ZUKORHDR", {"H_ORDCODE|H_CUSTCODE|H_BILLNAME|H_CUSTFONE|H_ORDDATE", "A1|C1|Acme|555|20261122",
                           "A2|C2|Bolt|556|20261122", "A3|C3|Cog|557|20261121"});
    const std::string headers = Bytes(ResolvePath(Global.DBFPath + "ZUKORHDR.DBF"));
    QImage ink(160, 60, QImage::Format_Mono);
    ink.fill(1);
    ASSERT_TRUE(ink.save(QString::fromStdString(Global.ImagesPath + "a1.bmp"), "BMP"));
    WriteWholeFile(Global.ImagesPath + "A3.bmp", "BM and no more");
    auto& main = Start();

    ClickMenu(main, "mnuViewSign");
    auto& form = The<frmViewSign>();
    const auto& picture = dynamic_cast<PictureBox&>(Control(form, "imgSign"));
    EXPECT_EQ(form.windowTitle(), QStringLiteral("View Signatures"));
    EXPECT_EQ(Shown(form, "lblCount"), "1 of 2");
    std::string shown;
    for (const char* box : {"txtOrHdr_1", "txtOrHdr_2", "txtOrHdr_3", "txtOrHdr_4", "txtOrHdr_5"})
        shown += Shown(form, box) + "|";
    EXPECT_EQ(shown, "A1|C1|Acme|555|20261122|");
    EXPECT_EQ(picture.PictureSize(), QSize(160, 60));
    EXPECT_FALSE(Enabled(form, "cmdFirst") || Enabled(form, "cmdPrevious"));
    EXPECT_TRUE(Exists(SignTablePath()));

    Click(form, "cmdNext");
    EXPECT_EQ(Shown(form, "lblCount") + Shown(form, "txtOrHdr_1"), "2 of 2A3");
    EXPECT_TRUE(picture.PictureSize().isEmpty());
    EXPECT_EQ(picture.Words(), QStringLiteral("The picture of this signature cannot be read."));
    EXPECT_FALSE(Enabled(form, "cmdNext") || Enabled(form, "cmdLast"));
    Global.TheDisk->Remove(Global.ImagesPath + "a1.bmp");
    Click(form, "cmdFirst");
    EXPECT_EQ(Shown(form, "lblCount"), "1 of 2");
    EXPECT_EQ(picture.Words(), QString());
    Click(form, "cmdOK");
    EXPECT_FALSE(Exists(SignTablePath()));
    EXPECT_FALSE(Global.View[ViewOrHdr]);
    EXPECT_EQ(Bytes(ResolvePath(Global.DBFPath + "ZUKORHDR.DBF")), headers);

    Global.TheDisk->Remove(Global.ImagesPath + "A3.bmp");
    ClickMenu(main, "mnuViewSign");
    EXPECT_EQ(Shown(The<frmViewSign>(), "lblCount"), "No records to display!");
    for (const char* button : {"cmdFirst", "cmdPrevious", "cmdNext", "cmdLast"})
        EXPECT_FALSE(Enabled(The<frmViewSign>(), button)) << button;
    Click(The<frmViewSign>(), "cmdOK");
    Global.TheDisk->Remove(ResolvePath(Global.DBFPath + "ZUKORHDR.DBF"));
    Operator_.ExpectBeginning(msg::FileError).With(Icon::Stop);
    ClickMenu(main, "mnuViewSign");
    EXPECT_EQ(Shown(The<frmViewSign>(), "lblCount"), "No records to display!");
    Click(The<frmViewSign>(), "cmdOK");
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(SetupScreens, HoweverTheViewerIsClosedNoWorkingCopyStays) {
    GivenRows("ZUKORHDR", {"H_ORDCODE", "A1", "A2"});
    WriteWholeFile(Global.ImagesPath + "A1.bmp", "BM");
    const std::vector<std::function<void(frmViewSign&)>> ways{
        [](frmViewSign& form) { Press(form, "cmdOK", Qt::Key_Escape); },
        [](frmViewSign& form) { form.close(); },
        [](frmViewSign&) { FormRegistry::Instance().UnloadSecondary(); }};
    for (const auto& close : ways) {
        auto& form = Open<frmViewSign>();
        ASSERT_TRUE(Exists(SignTablePath()));

        close(form);

        EXPECT_EQ(IfLoaded<frmViewSign>(), nullptr);
        EXPECT_FALSE(Exists(SignTablePath()));
        EXPECT_EQ(RecordCount("ZUKORHDR"), 2);
        EXPECT_EQ(Global.Files.Count(), 0);
    }
}

TEST_F(SetupScreens, ABitmapThatLiesAboutItsSizeIsNoPicture) {
    QImage ink(16, 8, QImage::Format_Mono);
    ink.fill(0);
    const std::string path = Folder() + "ink.bmp";
    ASSERT_TRUE(ink.save(QString::fromStdString(path), "BMP"));
    const std::string good = Bytes(path);
    EXPECT_EQ(ReadBitmap(path).size(), QSize(16, 8));
    for (std::size_t cut = 0; cut < 54; cut += 3) {
        WriteWholeFile(path, good.substr(0, cut));
        EXPECT_TRUE(ReadBitmap(path).isNull()) << cut;
    }
    for (const std::size_t side : {18U, 22U}) {
        std::string huge = good;
        huge[side + 2] = '\x7f';
        WriteWholeFile(path, huge);
        EXPECT_TRUE(ReadBitmap(path).isNull()) << side;
    }
    EXPECT_TRUE(ReadBitmap(Folder()).isNull());
}

} // namespace

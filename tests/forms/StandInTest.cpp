#include "forms/FormTest.h"

#include "core/Messages.h"
#include "handheld/Commands.h"
#include "handheld/HandheldTable.h"
#include "handheld/forms/frmStandIn.h"
#include "handheld/forms/frmStandInOrder.h"
#include "handheld/line/FolderLock.h"
#include "platform/GridView.h"
#include "platform/LookupBox.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>

#include <sstream>

namespace {

const QString Tea = QStringLiteral("TE1000  Assam loose leaf tea, 125 g tin  5.20  TIN  2033740000014");
const QString Envelope = QStringLiteral("ST1120  Envelope C6, cream, single  0.1250  EA  2434288000373");
const QString LoonLake =
    QStringLiteral("LOONLAKE02  Loon Lake Magasin g\u00E9n\u00E9ral enr.  Moosehead Bay");

/// The window of a stand-in handheld with the demo company on it.
class StandInWindow : public FormTest {
protected:
    StandInWindow() { Global.StandInFolder = Folder() + "handheld/"; }
    ~StandInWindow() override { FormRegistry::Instance().Clear(); }

    static void Run(std::vector<std::string> words) {
        words.insert(words.begin(), Global.StandInFolder);
        std::ostringstream out, err;
        ASSERT_EQ(RunCommand(words, {out, err, nullptr, nullptr}), Outcome::Done) << err.str();
    }

    static void GivenEmptyHandheld() { Run({"new", "--user", "Demo", "--id", "7", "--machine", "H1"}); }

    static void GivenDemoHandheld() {
        GivenEmptyHandheld();
        std::vector<std::string> words{"install", TRAMBLE_INSTALLED "/Install/Tramble.prc",
                                       TRAMBLE_INSTALLED "/Install/BSSFontDB.pdb"};
        for (const char* const table : {"CUST", "ITEM", "STAX", "LINK", "ORHDR", "ORLIN"})
            words.push_back(std::string(TRAMBLE_INSTALLED "/Install/TZUK20000_ZUK") + table + ".pdb");
        Run(words);
    }

    static HandheldTable Headers() { return {Handheld(Global.StandInFolder).Store, "ZUKORHDR"}; }
    static std::string LastOrder(std::string_view field) {
        const HandheldTable headers = Headers();
        return std::string(headers.Get(headers.Count() - 1, field));
    }

    /// Does something on the form that a click has opened and waits for.
    template <typename Deed>
    static void OnOrderForm(frmStandIn& form, Deed deed) {
        bool came = false;
        QTimer::singleShot(0, &form, [&] {
            auto* const order = IfLoaded<frmStandInOrder>();
            ASSERT_NE(order, nullptr);
            came = true;
            deed(*order);
            if (auto* const stays = IfLoaded<frmStandInOrder>()) stays->Unload();
        });
        Click(form, "cmdTake");
        EXPECT_TRUE(came);
    }

    static void AddLine(frmStandInOrder& order, const QString& item, const char* quantity) {
        Choose(order, "cboItem", item);
        Type(order, "txtQty", QString::fromLatin1(quantity));
        Click(order, "cmdAdd");
    }
};

} // namespace

TEST_F(StandInWindow, TellsWhoseItIsWhatItTookAndWhatIsInstalled) {
    GivenDemoHandheld();

    auto& form = Open<frmStandIn>();

    EXPECT_EQ(form.windowTitle(), QStringLiteral("Stand-in Handheld Demo"));
    EXPECT_TRUE(TextOf(form, "lblStandIn").contains(QStringLiteral("stands in for a Palm OS handheld")));
    EXPECT_EQ(TextOf(form, "lblWho"), QStringLiteral("HotSync user: Demo\nMachine ID: D1"));
    EXPECT_EQ(TextOf(form, "lblSyncMsg"), QStringLiteral("Last HotSync: Never"));
    const auto orders = GridRows(form, "FG1");
    ASSERT_EQ(orders.size(), 12U);
    EXPECT_EQ(orders[0].join(u'|'),
              QStringLiteral("D1000101|Juniper Hill Pantry Inc.|2026-03-02 09:12:40|5|585.75|Yes"));
    EXPECT_EQ(orders[1].last(), QString());
    const auto databases = GridRows(form, "FG2");
    ASSERT_EQ(databases.size(), 8U);
    EXPECT_EQ(databases[0].join(u'|'), QStringLiteral("ZUKCUST|Customers|200"));
    EXPECT_EQ(databases[6].join(u'|'), QStringLiteral("Tramble|Program file|2"));
    EXPECT_EQ(databases[7].join(u'|'), QStringLiteral("BSSFontDB|Data file|1"));
}

TEST_F(StandInWindow, TakesAnOrderOfWhatWasChosenAndSignsIt) {
    GivenDemoHandheld();
    auto& form = Open<frmStandIn>();

    OnOrderForm(form, [](frmStandInOrder& order) {
        Choose(order, "cboCustomer", LoonLake);
        AddLine(order, Tea, "2");
        AddLine(order, Envelope, "100");
        EXPECT_EQ(TextOf(order, "lblTotals").simplified(),
                  QStringLiteral("Items: 22.90 Sales tax: 1.63 Total: 24.53"));
        const auto lines = GridRows(order, "FG1");
        ASSERT_EQ(lines.size(), 2U);
        EXPECT_EQ(lines[1].join(u'|'), QStringLiteral("ST1120|Envelope C6, cream, single|100|12.50"));
        Type(order, "txtPO", QStringLiteral("PO 9"));
        Type(order, "txtSigned", QStringLiteral("\u00C9tienne"));
        Click(order, "cmdOK");
    });

    EXPECT_EQ(LastOrder("H_ORDCODE"), "D1000115");
    EXPECT_EQ(LastOrder("H_CUSTCODE"), "LOONLAKE02");
    EXPECT_EQ(LastOrder("H_TOTTOTAL"), "24.53");
    EXPECT_EQ(LastOrder("H_CUST_PO"), "PO 9");
    EXPECT_TRUE(Headers().IsSigned(12));
    EXPECT_EQ(dynamic_cast<GridView&>(Control(form, "FG1")).SelectedRecord(), 13);
}

TEST_F(StandInWindow, TheFirstKeysAndEnterFindTheCustomer) {
    GivenDemoHandheld();
    auto& form = Open<frmStandIn>();

    OnOrderForm(form, [](frmStandInOrder& order) {
        order.activateWindow();
        Settle();
        auto& customer = dynamic_cast<LookupBox&>(Control(order, "cboCustomer"));
        EXPECT_TRUE(customer.hasFocus());
        QTest::keyClicks(&customer, QStringLiteral("loonlake02"));
        QTest::keyClick(&customer, Qt::Key_Return);
        Settle();
        EXPECT_EQ(customer.currentText(), LoonLake);
        EXPECT_TRUE(Control(order, "cboItem").hasFocus());
    });
}

TEST_F(StandInWindow, AnOrderWithoutANameIsNotSigned) {
    GivenDemoHandheld();
    auto& form = Open<frmStandIn>();

    OnOrderForm(form, [](frmStandInOrder& order) {
        Choose(order, "cboCustomer", LoonLake);
        AddLine(order, Tea, "1");
        Click(order, "cmdOK");
    });

    EXPECT_EQ(Headers().Count(), 13U);
    EXPECT_FALSE(Headers().IsSigned(12));
}

TEST_F(StandInWindow, AnOrderNeedsACustomerAnItemAndAQuantity) {
    GivenDemoHandheld();
    auto& form = Open<frmStandIn>();

    OnOrderForm(form, [this](frmStandInOrder& order) {
        Operator_.Expect(msg::StandInOneItem).With(Icon::Warning);
        Click(order, "cmdAdd");
        for (const char* const quantity : {"0", "-1", "two", ""}) {
            Choose(order, "cboItem", Tea);
            Type(order, "txtQty", QString::fromLatin1(quantity));
            Operator_.Expect(msg::StandInQuantity).With(Icon::Warning);
            Click(order, "cmdAdd");
        }
        Operator_.Expect(msg::StandInOneCustomer).With(Icon::Warning);
        Click(order, "cmdOK");
        Choose(order, "cboCustomer", LoonLake);
        Operator_.Expect(msg::StandInOneLine).With(Icon::Warning);
        Click(order, "cmdOK");
    });

    EXPECT_TRUE(Operator_.AllCame());
    EXPECT_EQ(Headers().Count(), 12U);
}

TEST_F(StandInWindow, ALineThatWasRemovedIsNotOrdered) {
    GivenDemoHandheld();
    auto& form = Open<frmStandIn>();

    OnOrderForm(form, [](frmStandInOrder& order) {
        EXPECT_FALSE(Enabled(order, "cmdRemove"));
        AddLine(order, Tea, "2");
        AddLine(order, Envelope, "100");
        dynamic_cast<GridView&>(Control(order, "FG1")).SelectRecord(1);
        Click(order, "cmdRemove");
        EXPECT_EQ(GridRows(order, "FG1").size(), 1U);
        Choose(order, "cboCustomer", LoonLake);
        Click(order, "cmdOK");
    });

    EXPECT_EQ(LastOrder("H_TOTITEMS"), "12.5");
}

TEST_F(StandInWindow, CancelAsksBeforeItDropsLinesAndTakesNoOrderAndNoNumber) {
    GivenDemoHandheld();
    auto& form = Open<frmStandIn>();
    Operator_.Expect(msg::StandInAskDrop).With(Icon::Warning).Answer(Answer::No);
    Operator_.Expect(msg::StandInAskDrop).With(Icon::Warning).Answer(Answer::Yes);

    OnOrderForm(form, [](frmStandInOrder& order) {
        Choose(order, "cboCustomer", LoonLake);
        AddLine(order, Tea, "2");
        Click(order, "cmdCancel");
        EXPECT_FALSE(order.IsGone());
        Click(order, "cmdCancel");
        EXPECT_TRUE(order.IsGone());
    });
    OnOrderForm(form, [](frmStandInOrder& order) { Click(order, "cmdCancel"); });

    EXPECT_EQ(Headers().Count(), 12U);
    EXPECT_EQ(HandheldTable(Handheld(Global.StandInFolder).Store, "ZUKLINK").Get(0, "LK_LSTONUM"), "000114");
}

TEST_F(StandInWindow, AHandheldWithNothingOnItSaysWhatToDo) {
    GivenEmptyHandheld();
    auto& form = Open<frmStandIn>();
    Operator_.Expect(msg::StandInNoTables).With(Icon::Information);
    EXPECT_EQ(Control(form, "FG1").accessibleDescription(),
              QString::fromStdString(Text(msg::StandInEmpty).Utf8()));

    Click(form, "cmdTake");

    EXPECT_TRUE(Operator_.AllCame());
    EXPECT_FALSE(Enabled(form, "cmdSign"));
    EXPECT_FALSE(Enabled(form, "cmdDelete"));
    EXPECT_TRUE(Enabled(form, "cmdHotSync"));
}

TEST_F(StandInWindow, SignAsksWhoSigns) {
    GivenDemoHandheld();
    auto& form = Open<frmStandIn>();
    dynamic_cast<GridView&>(Control(form, "FG1")).SelectRecord(2);
    Operator_.Expect(msg::StandInAskSign); // given up
    Operator_.Expect(msg::StandInAskSign).Type("Maude");

    Click(form, "cmdSign");
    EXPECT_FALSE(Headers().IsSigned(1));
    Click(form, "cmdSign");

    EXPECT_TRUE(Headers().IsSigned(1));
    EXPECT_EQ(GridRows(form, "FG1")[1].last(), QStringLiteral("Yes"));
    EXPECT_EQ(dynamic_cast<GridView&>(Control(form, "FG1")).SelectedRecord(), 2);
}

TEST_F(StandInWindow, AnOrderIsDeletedWhenTheOperatorSaysYes) {
    GivenDemoHandheld();
    auto& form = Open<frmStandIn>();
    dynamic_cast<GridView&>(Control(form, "FG1")).SelectRecord(1);
    const Text question = ::Lines(Text::Value(std::string_view("D1000101")), msg::StandInAskDelete);
    Operator_.Expect(question).Answer(Answer::No);
    Operator_.Expect(question).Answer(Answer::Yes);

    Click(form, "cmdDelete");
    EXPECT_EQ(Headers().Count(), 12U);
    Click(form, "cmdDelete");

    EXPECT_EQ(Headers().Count(), 11U);
    EXPECT_EQ(HandheldTable(Handheld(Global.StandInFolder).Store, "ZUKAUDTH").Get(0, "A_ORDCODE"),
              "D1000101");
    EXPECT_EQ(GridRows(form, "FG1").size(), 11U);
}

TEST_F(StandInWindow, WhileACommandUsesTheHandheldNothingIsDone) {
    GivenDemoHandheld();
    auto& form = Open<frmStandIn>();
    const auto command = LockFolder(Global.StandInFolder);
    Operator_.ExpectBeginning(msg::StandInNotDone).With(Icon::Warning);

    Click(form, "cmdTake");

    EXPECT_TRUE(Operator_.AllCame());
    EXPECT_TRUE(TextOf(form, "lblWho").startsWith(QStringLiteral("This handheld cannot be used:")));
}

TEST_F(StandInWindow, WithoutAHandheldOffersNothing) {
    auto& form = Open<frmStandIn>();

    for (const char* const button : {"cmdTake", "cmdSign", "cmdDelete", "cmdHotSync"})
        EXPECT_FALSE(Enabled(form, button)) << button;
    EXPECT_TRUE(Enabled(form, "cmdCancel"));
}

TEST_F(StandInWindow, AHotSyncThatNobodyAwaitsIsToldInWords) {
    GivenDemoHandheld();
    quint16 port = 0;
    {
        QTcpServer nobody;
        ASSERT_TRUE(nobody.listen(QHostAddress::LocalHost));
        port = nobody.serverPort();
    }
    Global.StandInDesktop = "127.0.0.1:" + std::to_string(port);
    auto& form = Open<frmStandIn>();

    Click(form, "cmdHotSync");

    EXPECT_TRUE(TextOf(form, "lblSyncMsg")
                    .startsWith(QStringLiteral("HotSync was not completed: no connection to 127.0.0.1: ")))
        << TextOf(form, "lblSyncMsg").toStdString();
    EXPECT_TRUE(Enabled(form, "cmdHotSync"));
    EXPECT_EQ(HandheldTable(Handheld(Global.StandInFolder).Store, "ZUKAUDHH").Get(0, "TH_NUMHEAD"), "12");
}

TEST_F(StandInWindow, APlaceThatIsNoneIsAskedForAgain) {
    GivenDemoHandheld();
    auto& form = Open<frmStandIn>();
    for (const char* const place : {"", "desk:port", "desk:0", "[::1"}) {
        Type(form, "txtHost", QString::fromLatin1(place));
        Operator_.Expect(msg::StandInHostWrong).With(Icon::Warning);
        Click(form, "cmdHotSync");
    }

    EXPECT_TRUE(Operator_.AllCame());
}

TEST_F(StandInWindow, ClosingItInAHotSyncAsksFirst) {
    GivenDemoHandheld();
    QTcpServer silent;
    ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
    Global.StandInDesktop = "127.0.0.1:" + std::to_string(silent.serverPort());
    auto& form = Open<frmStandIn>();
    Operator_.Expect(msg::StandInAskBreak).Answer(Answer::No);
    Operator_.Expect(msg::StandInAskBreak).Answer(Answer::Yes);
    QObject::connect(&silent, &QTcpServer::newConnection, &form, [&] {
        EXPECT_FALSE(Enabled(form, "cmdHotSync"));
        EXPECT_FALSE(Enabled(form, "cmdTake"));
        EXPECT_EQ(TextOf(form, "lblSyncMsg"), QStringLiteral("HotSync is running..."));
        Click(form, "cmdCancel");
        EXPECT_NE(IfLoaded<frmStandIn>(), nullptr);
        Click(form, "cmdCancel");
    });

    Click(form, "cmdHotSync");

    EXPECT_EQ(IfLoaded<frmStandIn>(), nullptr);
    EXPECT_TRUE(Operator_.AllCame());
    EXPECT_NO_THROW(LockFolder(Global.StandInFolder)) << "the handheld is free again";
}

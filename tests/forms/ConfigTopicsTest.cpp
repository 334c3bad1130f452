#include "core/Messages.h"
#include "core/SafeFile.h"
#include "exchange/forms/frmConvert.h"
#include "forms/FormTest.h"
#include "quality/forms/frmConfig.h"
#include "quality/forms/frmConfigCust.h"
#include "quality/forms/frmConfigItem.h"
#include "quality/forms/frmConfigMsg.h"
#include "quality/forms/frmConfigPrint.h"
#include "quality/forms/frmConfigSTax.h"
#include "views/forms/frmViewGrid.h"

#include <QComboBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

#include <functional>

namespace {

class ConfigTopics : public FormTest {
protected:
    ConfigTopics() { GivenOffice(); }
    ~ConfigTopics() override { FormRegistry::Instance().Clear(); }

    void GivenCustomers() {
        GivenRows("ZUKSETUP", {"SU_HHBAKUP|SU_SRCHCUS|SU_SRCHITM", "APPEND|Company|Code"});
        GivenRows("ZUKCUST", {"C_SEARCH|C_CODE|C_NAME|C_PHONE", "ACME|C1|Acme|555", "BOLT|C2|Bolt|"});
    }

    /// What is done while the next modal screen stands.
    static void Meanwhile(std::function<void()> deed) { QTimer::singleShot(0, qApp, std::move(deed)); }

    static void ExpectGrid(const char* title) {
        ASSERT_NE(IfLoaded<frmViewGrid>(), nullptr);
        EXPECT_EQ(The<frmViewGrid>().windowTitle().toStdString(), title);
    }
};

TEST_F(ConfigTopics, TheSearchFieldOfTheCustomersIsChosenOnYesAndKeptInTheSetup) {
    GivenCustomers();
    auto& form = Open<frmConfigCust>();
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Configure Customers"));
    EXPECT_EQ(TextOf(form, "cboSrchCus"), QStringLiteral("Company"));

    // No leaves the records; the list keeps the choice for this visit.
    Operator_.Expect(msg::UpdateCustomersSearch).With(Icon::Question).Answer(Answer::No);
    Choose(form, "cboSrchCus", QStringLiteral("Phone"));
    EXPECT_EQ(Cell("ZUKCUST", 1, "C_SEARCH"), "ACME");
    EXPECT_EQ(TextOf(form, "cboSrchCus"), QStringLiteral("Phone"));
    Click(form, "cmdCancel");
    EXPECT_EQ(IfLoaded<frmConfigCust>(), nullptr);
    EXPECT_EQ(Cell("ZUKSETUP", 1, "SU_SRCHCUS"), "Company");

    auto& again = Open<frmConfigCust>();
    EXPECT_EQ(TextOf(again, "cboSrchCus"), QStringLiteral("Company"));
    Operator_.Expect(msg::UpdateCustomersSearch).Answer(Answer::Yes);
    Choose(again, "cboSrchCus", QStringLiteral("Phone"));
    EXPECT_EQ(Cell("ZUKCUST", 1, "C_SEARCH"), "555");
    EXPECT_EQ(Cell("ZUKCUST", 2, "C_SEARCH"), "");
    EXPECT_EQ(TextOf(again, "lblHelp"), QStringLiteral("2 records have this search field now."));
    EXPECT_EQ(Cell("ZUKSETUP", 1, "SU_SRCHCUS"), "Company"); // written when the screen goes

    // The check finds the blank one, with report and view.
    Click(again, "cmdQC");
    ASSERT_NE(IfLoaded<frmConfigMsg>(), nullptr);
    Click(The<frmConfigMsg>(), "cmdView");
    ExpectGrid("View Customers");
    The<frmViewGrid>().Unload();
    The<frmConfigMsg>().Unload();

    Click(again, "cmdCancel");
    EXPECT_EQ(Cell("ZUKSETUP", 1, "SU_SRCHCUS"), "Phone");
    EXPECT_EQ(Cell("ZUKSETUP", 1, "SU_HHBAKUP"), "APPEND");
    EXPECT_EQ(Global.SearchCustomers, "Phone");
}

TEST_F(ConfigTopics, ARewriteThatFailsIsToldAndTheChoiceGoesBack) {
    GivenCustomers();
    auto& form = Open<frmConfigCust>();
    WriteWholeFile(Global.DBFPath + ".~lock.ZUKCust.dbf#", "office");
    Operator_.Expect(msg::UpdateCustomersSearch).Answer(Answer::Yes);
    Operator_.ExpectBeginning(msg::FileError).With(Icon::Stop);

    Choose(form, "cboSrchCus", QStringLiteral("Code"));

    EXPECT_EQ(TextOf(form, "cboSrchCus"), QStringLiteral("Company"));
    EXPECT_EQ(Cell("ZUKCUST", 1, "C_SEARCH"), "ACME");
    Click(form, "cmdCancel");
    EXPECT_EQ(Cell("ZUKSETUP", 1, "SU_SRCHCUS"), "Company");

    // A setup that cannot be read is told, and no choice is put over it.
    Global.SearchCustomers = "Code";
    const std::string setup = ReadWholeFile(Global.DBFPath + "ZUKSetup.dbf");
    WriteWholeFile(Global.DBFPath + "ZUKSetup.dbf", "rubbish");
    Operator_.ExpectBeginning(msg::FileError).With(Icon::Stop);
    Click(Open<frmConfigCust>(), "cmdCancel");
    EXPECT_EQ(ReadWholeFile(Global.DBFPath + "ZUKSetup.dbf"), "rubbish");
}

TEST_F(ConfigTopics, TheItemsHaveTheirOwnChoicesAndTheWayToTheirImport) {
    GivenCustomers();
    GivenRows("ZUKITEM", {"I_SEARCH|I_ITEMCODE|I_DESC1|I_PRICE", "OLD|H1|Hammer|12.50"});
    auto& form = Open<frmConfigItem>();
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Configure Items"));
    EXPECT_EQ(TextOf(form, "cboSrchItm"), QStringLiteral("Code"));
    Operator_.Expect(msg::UpdateItemsSearch).With(Icon::Question).Answer(Answer::No);
    Choose(form, "cboSrchItm", QStringLiteral("Description"));
    EXPECT_EQ(Cell("ZUKITEM", 1, "I_SEARCH"), "OLD");
    EXPECT_EQ(TextOf(form, "cboSrchItm"), QStringLiteral("Description"));
    form.Unload();
    EXPECT_EQ(Cell("ZUKSETUP", 1, "SU_SRCHITM"), "Code");
    auto& again = Open<frmConfigItem>();
    Operator_.Expect(msg::UpdateItemsSearch).Answer(Answer::Yes);
    Choose(again, "cboSrchItm", QStringLiteral("Description"));
    EXPECT_EQ(Cell("ZUKITEM", 1, "I_SEARCH"), "Hammer");

    Operator_.Expect(msg::NoProblems);
    Click(again, "cmdQC");

    bool items = false;
    Meanwhile([&] {
        auto& convert = The<frmConvert>();
        items = dynamic_cast<QRadioButton&>(Control(convert, "optItem")).isChecked();
        convert.Unload();
    });
    Click(again, "cmdImport");
    EXPECT_TRUE(items);

    Click(again, "cmdEdit");
    ExpectGrid("View Items");
    EXPECT_TRUE(dynamic_cast<QPushButton&>(Control(The<frmViewGrid>(), "cmdEdit")).isDefault());
    again.Unload();
    EXPECT_EQ(Cell("ZUKSETUP", 1, "SU_SRCHITM"), "Description");
    EXPECT_EQ(Cell("ZUKSETUP", 1, "SU_SRCHCUS"), "Company");
}

TEST_F(ConfigTopics, TheConfiguratorOpensEachTopicAndTheTopicsTheirTables) {
    auto& config = Open<frmConfig>();
    int opened = 0;
    const auto open = [&](const char* button, auto deed) {
        Meanwhile([&, deed] {
            ++opened;
            EXPECT_TRUE(Global.FromConfigurator);
            deed();
        });
        Click(config, button);
        EXPECT_FALSE(Global.FromConfigurator);
        EXPECT_TRUE(config.isVisible());
    };
    const auto view = [](FormBehaviour& form, const char* button, const char* title) {
        Click(form, button);
        ExpectGrid(title);
        The<frmViewGrid>().Unload();
    };

    open("cmdCust1", [&] {
        view(The<frmConfigCust>(), "cmdEdit", "View Customers");
        Click(The<frmConfigCust>(), "cmdCancel");
    });
    open("cmdItems1", [&] { Click(The<frmConfigItem>(), "cmdCancel"); });
    open("lblSTax", [&] {
        auto& form = The<frmConfigSTax>();
        EXPECT_EQ(form.windowTitle(), QStringLiteral("Configure Sales Tax"));
        view(form, "cmdSTax", "View Sales Tax");
        view(form, "cmdCust", "View Customers");
        Operator_.Expect(msg::NoProblems);
        Click(form, "cmdQC");
        Click(form, "cmdCancel");
    });
    open("lblPrinter", [&] {
        auto& form = The<frmConfigPrint>();
        EXPECT_EQ(form.windowTitle(), QStringLiteral("Configure Printing"));
        view(form, "cmdComp", "View Company Details");
        view(form, "cmdPrinter", "View Printer Settings");
        Operator_.Expect(msg::NoProblems);
        Click(form, "cmdQC");
        Click(form, "cmdCancel");
    });
    EXPECT_EQ(opened, 4);
}

} // namespace

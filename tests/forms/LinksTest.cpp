#include "core/Catalogue.h"
#include "core/Messages.h"
#include "core/SafeFile.h"
#include "forms/FormTest.h"
#include "platform/GridView.h"
#include "program/forms/frmMain1.h"
#include "support/FaultyDisk.h"
#include "support/IdleControl.h"
#include "sync/forms/frmChgLink.h"
#include "sync/forms/frmHSID.h"
#include "views/forms/frmView.h"
#include "views/forms/frmViewData.h"
#include "views/forms/frmViewGrid.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QScopeGuard>
#include <QTimer>
#include <QToolButton>

namespace {

using Names = std::vector<std::string>;

/// A HotSync Manager with users, and a handheld that can be placed in the cradle.
struct FakeManager {
    class Control final : public IdleControl {
    public:
        explicit Control(FakeManager& manager) : manager_(manager) { manager_.Controls.push_back(this); }
        ~Control() override { std::erase(manager_.Controls, this); }
        std::string HotSyncUser(int index) const override {
            const auto place = static_cast<std::size_t>(index);
            return place < manager_.Users.size() ? manager_.Users[place] : std::string();
        }
        std::string UserName() const override { return manager_.InCradle; }
        std::int32_t UserID() const override { return manager_.IDInCradle; }

    private:
        FakeManager& manager_;
    };

    void Raise(std::int32_t status) const {
        for (SFrmAX40* control : Controls) control->HotSyncStatus(status);
    }

    Names Users;
    std::string InCradle;
    std::int32_t IDInCradle = 0;
    std::vector<SFrmAX40*> Controls;
};

class LinksEditor : public FormTest {
protected:
    LinksEditor() {
        GivenOffice();
        Global.MakeSFrmAX40 = [this] { return std::make_unique<FakeManager::Control>(manager_); };
    }
    ~LinksEditor() override { FormRegistry::Instance().Clear(); }

    void GivenLinks(const Names& ids) {
        std::vector<std::string> rows{"LK_HOTSYNC|LK_SERIAL|LK_SFUSER|LK_MACH_ID"};
        for (const std::string& id : ids) rows.push_back(id + "|S-" + id + "|u|M1");
        GivenRows("ZUKLINK", rows);
    }

    static Names IDs() {
        Names ids;
        for (int k = 1; k <= RecordCount("ZUKLINK"); ++k) ids.push_back(Cell("ZUKLINK", k, "LK_HOTSYNC"));
        return ids;
    }

    frmMain1& Start() {
        Operator_.Expect(msg::PalmDesktopMissing);
        return Open<frmMain1>();
    }

    static std::string Shown(FormBehaviour& form) {
        return (TextOf(form, "lblCount") + QLatin1Char(' ') + TextOf(form, "txtHotSync")).toStdString();
    }

    static std::string Warning(FormBehaviour& form) { return TextOf(form, "lblWarning").toStdString(); }

    static frmViewGrid& Grid() { return The<frmViewGrid>(); }
    static GridView& Rows(frmViewGrid& form) { return dynamic_cast<GridView&>(Control(form, "FG1")); }

    /// Does something once the grid stands.
    static void WhenGridStands(const std::function<void()>& deed) {
        auto* timer = new QTimer(qApp);
        QObject::connect(timer, &QTimer::timeout, [timer, deed] {
            const auto* grid = IfLoaded<frmViewGrid>();
            if (!grid || !grid->isVisible()) return;
            timer->deleteLater();
            timer->stop();
            deed();
        });
        timer->start(1);
    }

    static Names StatusLines() { return EngineTest::Lines(Global.InstallPath + "HSStatus.dat"); }

    static std::string StatusLine(const std::string& id, const std::string& status) {
        return id + std::string(30 - id.size(), ' ') + status;
    }

    FakeManager manager_;
};

// ---- what the screen shows ----

TEST_F(LinksEditor, ShowsTheFirstRecordTrimmedWithItsNumberAndTheCount) {
    GivenRows("ZUKLINK", {"LK_HOTSYNC|LK_SERIAL|LK_SFUSER", " Anna Berg|S1|x y", "Ben|S2|z"});

    auto& form = Open<frmChgLink>();

    EXPECT_EQ(form.windowTitle(), QStringLiteral("Edit Links"));
    EXPECT_EQ(Shown(form), "1 of 2 Anna Berg");
    EXPECT_EQ(TextOf(form, "txtSerial"), QStringLiteral("S1"));
    EXPECT_EQ(TextOf(form, "txtSFUser"), QStringLiteral("x y"));
    EXPECT_FALSE(Enabled(form, "cmdFirst"));
    EXPECT_FALSE(Enabled(form, "cmdPrevious"));
    EXPECT_TRUE(Enabled(form, "cmdNext"));
    EXPECT_TRUE(Enabled(form, "cmdLast"));
    EXPECT_EQ(form.focusWidget(), &Control(form, "txtHotSync"));
}

TEST_F(LinksEditor, AnEmptyTableHasNoRecordsAndOnlyAddAndTheWaysOut) {
    auto& form = Open<frmChgLink>();

    EXPECT_EQ(TextOf(form, "lblCount"), QStringLiteral("No records to display!"));
    for (const char* control : {"cmdFirst", "cmdPrevious", "cmdNext", "cmdLast", "cmdDelete", "txtHotSync",
                                "txtSerial", "txtSFUser"})
        EXPECT_FALSE(Enabled(form, control)) << control;
    EXPECT_EQ(form.focusWidget(), &Control(form, "cmdAdd"));

    Click(form, "cmdOK");

    EXPECT_EQ(IfLoaded<frmChgLink>(), nullptr);
    EXPECT_EQ(RecordCount("ZUKLINK"), 0);
}

TEST_F(LinksEditor, TheInputsTakeAsManyCharactersAsTheirFields) {
    GivenLinks({"Anna"});
    auto& form = Open<frmChgLink>();
    for (const char* name : {"txtHotSync", "txtSerial", "txtSFUser"}) Type(form, name, QString(60, u'x'));

    Click(form, "cmdOK");

    EXPECT_EQ(Cell("ZUKLINK", 1, "LK_HOTSYNC"), std::string(30, 'x'));
    EXPECT_EQ(Cell("ZUKLINK", 1, "LK_SERIAL"), std::string(24, 'x'));
    EXPECT_EQ(Cell("ZUKLINK", 1, "LK_SFUSER"), std::string(40, 'x'));
    EXPECT_EQ(Cell("ZUKLINK", 1, "LK_MACH_ID"), "M1");
    EXPECT_EQ(StatusLines(), Names{std::string(30, 'x')});
}

TEST_F(LinksEditor, ATableThatIsMissingOrStrangeIsToldAndNothingOpens) {
    for (const bool strange : {false, true}) {
        Global.TheDisk->Remove(Global.DBFPath + "ZUKLINK.dbf");
        if (strange) WriteWholeFile(Global.DBFPath + "ZUKLINK.dbf", "no table");
        Operator_.ExpectBeginning(msg::FileError).With(Icon::Stop);

        The<frmChgLink>().Show();
        Settle();

        EXPECT_EQ(IfLoaded<frmChgLink>(), nullptr);
        EXPECT_FALSE(Global.Ending);
        EXPECT_EQ(Global.Files.Count(), 0);
    }
}

// ---- moving ----

TEST_F(LinksEditor, EachMoveSavesAndStopsAtBothEnds) {
    GivenLinks({"Anna", "Ben", "Cleo"});
    auto& form = Open<frmChgLink>();

    Type(form, "txtSerial", QStringLiteral(" 77 "));
    Click(form, "cmdNext");
    EXPECT_EQ(Cell("ZUKLINK", 1, "LK_SERIAL"), "77");
    EXPECT_EQ(Shown(form), "2 of 3 Ben");
    Type(form, "txtHotSync", QStringLiteral("Benjamin"));
    Click(form, "cmdLast");
    EXPECT_EQ(IDs(), (Names{"Anna", "Benjamin", "Cleo"}));
    EXPECT_EQ(Shown(form), "3 of 3 Cleo");
    EXPECT_FALSE(Enabled(form, "cmdNext"));
    EXPECT_FALSE(Enabled(form, "cmdLast"));
    Click(form, "cmdPrevious");
    EXPECT_EQ(Shown(form), "2 of 3 Benjamin");
    Click(form, "cmdFirst");
    EXPECT_EQ(Shown(form), "1 of 3 Anna");
    EXPECT_FALSE(Enabled(form, "cmdFirst"));
}

TEST_F(LinksEditor, ThePageKeysMoveToo) {
    GivenLinks({"Anna", "Ben"});
    auto& form = Open<frmChgLink>();

    Press(form, "txtHotSync", Qt::Key_PageDown);
    EXPECT_EQ(Shown(form), "2 of 2 Ben");
    Press(form, "txtHotSync", Qt::Key_PageUp);
    EXPECT_EQ(Shown(form), "1 of 2 Anna");
}

TEST_F(LinksEditor, AButtonThatIsShutAtTheEndHandsTheFocusToTheWayBack) {
    GivenLinks({"Anna", "Ben"});
    auto& form = Open<frmChgLink>();

    Press(form, "cmdNext", Qt::Key_Space);

    EXPECT_EQ(Shown(form), "2 of 2 Ben");
    EXPECT_EQ(form.focusWidget(), &Control(form, "cmdPrevious"));
}

TEST_F(LinksEditor, AnIdOfBlanksIsRefusedAndTheRecordStaysOnTheScreen) {
    GivenLinks({"Anna", "Ben"});
    auto& form = Open<frmChgLink>();
    Type(form, "txtHotSync", QStringLiteral("   "));
    Type(form, "txtSerial", QStringLiteral("99"));

    for (const char* button : {"cmdNext", "cmdLast", "cmdAdd", "cmdView", "cmdOK"}) {
        Operator_.Expect(msg::EmptyHotSync);
        Click(form, button);

        EXPECT_EQ(TextOf(form, "lblCount"), QStringLiteral("1 of 2")) << button;
        EXPECT_EQ(TextOf(form, "txtSerial"), QStringLiteral("99")) << button;
        EXPECT_EQ(form.focusWidget(), &Control(form, "txtHotSync")) << button;
    }
    EXPECT_EQ(IDs(), (Names{"Anna", "Ben"}));
    EXPECT_EQ(Cell("ZUKLINK", 1, "LK_SERIAL"), "S-Anna");

    Type(form, "txtHotSync", QStringLiteral("Anne"));
    Click(form, "cmdNext");
    EXPECT_EQ(Shown(form), "2 of 2 Ben");
    EXPECT_EQ(IDs(), (Names{"Anne", "Ben"}));
}

// ---- adding and deleting ----

TEST_F(LinksEditor, AnAddedRecordIsBlankAndTypedInto) {
    GivenLinks({"Anna"});
    auto& form = Open<frmChgLink>();
    Type(form, "txtSerial", QStringLiteral("kept"));

    Click(form, "cmdAdd");

    EXPECT_EQ(Shown(form), "2 of 2 ");
    EXPECT_EQ(TextOf(form, "txtSerial"), QString());
    EXPECT_EQ(form.focusWidget(), &Control(form, "txtHotSync"));
    EXPECT_EQ(Cell("ZUKLINK", 1, "LK_SERIAL"), "kept");
    Type(form, "txtHotSync", QStringLiteral("Zoé"));
    Click(form, "cmdAdd");
    EXPECT_EQ(IDs(), (Names{"Anna", "Zo\xE9", ""}));
}

TEST_F(LinksEditor, TheFirstLinkIsAddedInAnEmptyTableWithoutASaveBefore) {
    auto& form = Open<frmChgLink>();

    Click(form, "cmdAdd");
    EXPECT_EQ(Shown(form), "1 of 1 ");
    Type(form, "txtHotSync", QStringLiteral("Anna"));
    Click(form, "cmdOK");

    EXPECT_EQ(IDs(), Names{"Anna"});
    EXPECT_EQ(StatusLines(), Names{"Anna"});
}

TEST_F(LinksEditor, ADeletionIsAskedAndTheNextRecordOrTheNewLastOneShows) {
    GivenLinks({"Anna", "Ben", "Cleo"});
    auto& form = Open<frmChgLink>();
    Operator_.Expect(msg::DeleteCurrentLink).With(Icon::Question).Answer(Answer::No);
    Click(form, "cmdDelete");
    EXPECT_EQ(IDs(), (Names{"Anna", "Ben", "Cleo"}));
    Click(form, "cmdNext");

    Operator_.Expect(msg::DeleteCurrentLink).Answer(Answer::Yes);
    Click(form, "cmdDelete");
    EXPECT_EQ(IDs(), (Names{"Anna", "Cleo"}));
    EXPECT_EQ(Shown(form), "2 of 2 Cleo");
    Operator_.Expect(msg::DeleteCurrentLink).Answer(Answer::Yes);
    Click(form, "cmdDelete");
    EXPECT_EQ(IDs(), Names{"Anna"});
    EXPECT_EQ(Shown(form), "1 of 1 Anna");
}

TEST_F(LinksEditor, DeletingTheOnlyRecordLeavesAnEmptyTableAndAClearedScreen) {
    GivenLinks({"Anna"});
    auto& form = Open<frmChgLink>();
    Operator_.Expect(msg::DeleteCurrentLink).Answer(Answer::Yes);

    Click(form, "cmdDelete");

    EXPECT_EQ(RecordCount("ZUKLINK"), 0);
    EXPECT_EQ(TextOf(form, "lblCount"), QStringLiteral("No records to display!"));
    for (const char* name : {"txtHotSync", "txtSerial", "txtSFUser"})
        EXPECT_EQ(TextOf(form, name), QString());
    EXPECT_FALSE(Enabled(form, "cmdDelete"));
    Click(form, "cmdOK");
    EXPECT_EQ(StatusLines(), Names{});
}

TEST_F(LinksEditor, ARecordWhoseIdWasBlankedCanBeDeletedAsTheMessageSays) {
    GivenLinks({"Anna", "Ben"});
    auto& form = Open<frmChgLink>();
    Type(form, "txtHotSync", QString());
    Operator_.Expect(msg::DeleteCurrentLink).Answer(Answer::Yes);

    Click(form, "cmdDelete");

    EXPECT_EQ(IDs(), Names{"Ben"});
    EXPECT_EQ(Shown(form), "1 of 1 Ben");
}

// ---- the ways out ----

TEST_F(LinksEditor, OkSortsTheTableAndResetsEveryBrick) {
    GivenLinks({"Cleo", "anna", "Ben"});
    WriteWholeFile(Global.InstallPath + "HSStatus.dat", StatusLine("Cleo", "G") + "\r\n" +
                                                            StatusLine("anna", StatusLine("B", "S")) +
                                                            "\r\nBen\r\n");
    auto& main = Start();
    EXPECT_EQ(Control(main, "cmdHHHSIDStd_2").accessibleName(), QStringLiteral("anna: Sync OK"));
    auto& form = Open<frmChgLink>();

    Click(form, "cmdOK");

    EXPECT_EQ(IfLoaded<frmChgLink>(), nullptr);
    EXPECT_EQ(IDs(), (Names{"anna", "Ben", "Cleo"}));
    EXPECT_EQ(Cell("ZUKLINK", 1, "LK_SERIAL"), "S-anna");
    EXPECT_EQ(StatusLines(), (Names{"anna", "Ben", "Cleo"}));
    for (const auto& [brick, name] : {std::pair{"cmdHHHSIDStd_1", "anna: Not Synced"},
                                      {"cmdHHHSIDStd_2", "Ben: Not Synced"},
                                      {"cmdHHHSIDStd_3", "Cleo: Not Synced"}})
        EXPECT_EQ(Control(main, brick).accessibleName().toStdString(), name);
    EXPECT_EQ(Global.HHStatus, (Names{"", "", "", ""}));
    EXPECT_EQ(Global.HHStatusStd, (Names{"", "", "", ""}));
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(LinksEditor, TheBricksShowALinkThatWasAdded) {
    GivenLinks({"Ben"});
    auto& main = Start();
    auto& form = Open<frmChgLink>();
    Click(form, "cmdAdd");
    Type(form, "txtHotSync", QStringLiteral("Anna"));

    Click(form, "cmdOK");

    EXPECT_EQ(Control(main, "cmdHHHSIDStd_1").accessibleName(), QStringLiteral("Anna: Not Synced"));
    EXPECT_EQ(Control(main, "cmdHHHSIDStd_2").accessibleName(), QStringLiteral("Ben: Not Synced"));
}

TEST_F(LinksEditor, CancelDropsWhatWasNotSavedAndLeavesTheStatus) {
    GivenLinks({"Ben", "Anna"});
    WriteWholeFile(Global.InstallPath + "HSStatus.dat", StatusLine("Ben", "G") + "\r\nAnna\r\n");
    auto& form = Open<frmChgLink>();
    Type(form, "txtHotSync", QStringLiteral("Bob"));

    Click(form, "cmdCancel");

    EXPECT_EQ(IfLoaded<frmChgLink>(), nullptr);
    EXPECT_EQ(IDs(), (Names{"Ben", "Anna"}));
    EXPECT_EQ(StatusLines(), (Names{StatusLine("Ben", "G"), "Anna"}));
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(LinksEditor, EveryWayOutTakesAlongARecordThatNeverGotAnId) {
    for (const char* way : {"cmdCancel", "Esc", "cross", "UnloadForms"}) {
        GivenLinks({"Anna"});
        auto& form = Open<frmChgLink>();
        Click(form, "cmdAdd");
        Type(form, "txtHotSync", QStringLiteral("typed, not saved"));

        if (std::string(way) == "cmdCancel")
            Click(form, way);
        else if (std::string(way) == "Esc")
            Press(form, "txtHotSync", Qt::Key_Escape);
        else if (std::string(way) == "cross")
            form.close();
        else
            FormRegistry::Instance().UnloadSecondary();
        Settle();

        EXPECT_EQ(IfLoaded<frmChgLink>(), nullptr) << way;
        EXPECT_EQ(IDs(), Names{"Anna"}) << way;
    }
}

TEST_F(LinksEditor, WhatMovesHaveSavedStaysAtCancelAndTheStatusFollowsTheTable) {
    GivenLinks({"Ben", "Dora"});
    WriteWholeFile(Global.InstallPath + "HSStatus.dat",
                   StatusLine("Ben", "G") + "\r\n" + StatusLine("Dora", "B") + "\r\n");
    auto& main = Start();
    auto& form = Open<frmChgLink>();
    Click(form, "cmdAdd");
    Type(form, "txtHotSync", QStringLiteral("Anna"));
    Click(form, "cmdFirst");

    Click(form, "cmdCancel");

    EXPECT_EQ(IDs(), (Names{"Anna", "Ben", "Dora"}));
    EXPECT_EQ(StatusLines(), (Names{"Anna", "Ben", "Dora"}));
    EXPECT_EQ(Control(main, "cmdHHHSIDStd_3").accessibleName(), QStringLiteral("Dora: Not Synced"));
}

TEST_F(LinksEditor, TheEndOfTheProgramKeepsWhatTheOpenEditorHasSaved) {
    GivenLinks({"Ben", "Anna"});
    auto& main = Start();
    auto& form = Open<frmChgLink>();
    Type(form, "txtHotSync", QStringLiteral("Bob"));
    Click(form, "cmdNext");
    Type(form, "txtSerial", QStringLiteral("not saved"));

    ClickMenu(main, "mnuExit");

    EXPECT_TRUE(Global.Ending);
    EXPECT_EQ(Global.ExitCode, 0);
    EXPECT_EQ(IDs(), (Names{"Anna", "Bob"}));
    EXPECT_EQ(Cell("ZUKLINK", 1, "LK_SERIAL"), "S-Anna");
    EXPECT_EQ(StatusLines(), (Names{"Anna", "Bob"}));
}

TEST_F(LinksEditor, DeletingTheOnlyRecordByAKeyLeavesTheFocusOnAdd) {
    GivenLinks({"Anna"});
    auto& form = Open<frmChgLink>();
    Operator_.Expect(msg::DeleteCurrentLink).Answer(Answer::Yes);

    Press(form, "cmdDelete", Qt::Key_Space);

    EXPECT_EQ(form.focusWidget(), &Control(form, "cmdAdd"));
}

TEST_F(LinksEditor, EnterInAFieldIsOk) {
    GivenLinks({"Anna"});
    auto& form = Open<frmChgLink>();
    Type(form, "txtHotSync", QStringLiteral("Bea"));

    Press(form, "txtHotSync", Qt::Key_Return);

    EXPECT_EQ(IfLoaded<frmChgLink>(), nullptr);
    EXPECT_EQ(IDs(), Names{"Bea"});
}

TEST_F(LinksEditor, AFormThatGoesWhileADeletionIsAskedDeletesNothing) {
    GivenLinks({"Anna"});
    auto& form = Open<frmChgLink>();
    Operator_.Expect(msg::DeleteCurrentLink).Answer(Answer::Yes).Then([&] { form.Unload(); });

    Click(form, "cmdDelete");

    EXPECT_EQ(IDs(), Names{"Anna"});
}

// ---- a disk that fails ----

TEST_F(LinksEditor, AFullDiskIsToldAtEveryStepAndTheTypedTextStays) {
    for (const char* button : {"cmdNext", "cmdAdd", "cmdView", "cmdOK"}) {
        GivenLinks({"Anna", "Ben"});
        FaultyDisk disk(1);
        Global.TheDisk = &disk;
        auto& form = Open<frmChgLink>();
        Type(form, "txtHotSync", QStringLiteral("Anne"));
        Operator_.ExpectBeginning(::Lines(msg::FileError, Text::Path(std::string_view("Disk full"))))
            .With(Icon::Stop);

        Click(form, button);

        EXPECT_EQ(Shown(form), "1 of 2 Anne") << button;
        EXPECT_TRUE(form.isVisible()) << button;
        Global.TheDisk = &NativeDisk();
        EXPECT_EQ(IDs(), (Names{"Anna", "Ben"})) << button;
        form.Unload();
    }
}

TEST_F(LinksEditor, ADeletionThatFailsIsToldAndTheRecordStays) {
    GivenLinks({"Anna", "Ben"});
    FaultyDisk disk(1);
    Global.TheDisk = &disk;
    const auto back = qScopeGuard([] { Global.TheDisk = &NativeDisk(); });
    auto& form = Open<frmChgLink>();
    Operator_.Expect(msg::DeleteCurrentLink).Answer(Answer::Yes);
    Operator_.ExpectBeginning(msg::FileError).With(Icon::Stop);

    Click(form, "cmdDelete");

    EXPECT_EQ(Shown(form), "1 of 2 Anna");
    EXPECT_EQ(IDs(), (Names{"Anna", "Ben"}));
    form.Unload();
}

TEST_F(LinksEditor, ASortThatFailsIsToldAndOkCanBePressedAgain) {
    GivenLinks({"Cleo", "Anna"});
    auto& form = Open<frmChgLink>();
    Type(form, "txtSerial", QStringLiteral("1"));
    RefusingDisk disk(Global.DBFPath, Access::Create); // no room for the sorted table
    Global.TheDisk = &disk;
    Operator_.ExpectBeginning(msg::FileError).With(Icon::Stop);

    Click(form, "cmdOK");

    EXPECT_EQ(Shown(form), "1 of 2 Cleo");
    EXPECT_EQ(Cell("ZUKLINK", 1, "LK_SERIAL"), "1");
    Global.TheDisk = &NativeDisk();
    Click(form, "cmdOK");
    EXPECT_EQ(IfLoaded<frmChgLink>(), nullptr);
    EXPECT_EQ(IDs(), (Names{"Anna", "Cleo"}));
}

TEST_F(LinksEditor, AStatusFileThatCannotBeWrittenIsToldAndEndsTheProgram) {
    GivenLinks({"Anna"});
    auto& form = Open<frmChgLink>();
    Global.InstallPath = Global.AppPath + "gone/";
    Operator_.ExpectBeginning(msg::ConfigurationError).With(Icon::Stop);

    Click(form, "cmdOK");

    EXPECT_TRUE(Global.Ending);
    EXPECT_EQ(Global.ExitCode, 1);
    EXPECT_EQ(IDs(), Names{"Anna"});
}

// ---- what is pointed out ----

TEST_F(LinksEditor, AnIdThatAnotherRecordHasIsPointedOutAndNotRefused) {
    GivenLinks({"Anna", "Ben"});
    auto& form = Open<frmChgLink>();
    EXPECT_EQ(Warning(form), "");

    Type(form, "txtHotSync", QStringLiteral(" BEN "));
    EXPECT_EQ(Warning(form), "Another record has this Hotsync ID already: record 2");
    Click(form, "cmdNext");

    EXPECT_EQ(IDs(), (Names{"BEN", "Ben"}));
    EXPECT_EQ(Warning(form), "Another record has this Hotsync ID already: record 1");
    Type(form, "txtHotSync", QStringLiteral("Cleo"));
    EXPECT_EQ(Warning(form), "");
}

TEST_F(LinksEditor, AUserThatTheManagerDoesNotKnowIsPointedOut) {
    manager_.Users = {"anna", "Cleo"};
    GivenLinks({"Anna", "Ben"});
    auto& form = Open<frmChgLink>();
    EXPECT_EQ(Warning(form), "");

    Click(form, "cmdNext");
    EXPECT_EQ(Warning(form), CatalogueText(msg::UnknownUser));
    Type(form, "txtHotSync", QStringLiteral("cleo"));
    EXPECT_EQ(Warning(form), "");
    Type(form, "txtHotSync", QString());
    EXPECT_EQ(Warning(form), "");
}

TEST_F(LinksEditor, WithoutAManagerNoUserIsUnknown) {
    GivenLinks({"Ben"});

    auto& form = Open<frmChgLink>();

    EXPECT_EQ(Warning(form), "");
}

TEST_F(LinksEditor, CharactersThatTheTableCannotKeepArePointedOutAndBecomeQuestionMarks) {
    GivenLinks({"Anna"});
    auto& form = Open<frmChgLink>();

    Type(form, "txtHotSync", QStringLiteral("Łucja Śliwa"));
    EXPECT_EQ(Warning(form), CatalogueText(msg::CharactersLost));
    Click(form, "cmdOK");

    EXPECT_EQ(IDs(), Names{"?ucja ?liwa"});
}

// ---- the handheld in the cradle ----

TEST_F(LinksEditor, TheSelectedUserInTheCradleShowsItsNumber) {
    GivenLinks({"Anna"});
    Open<frmChgLink>();
    Global.ManualUploadActive = true;
    Global.NewHSUser = "ANNA";
    manager_.InCradle = "Anna";
    manager_.IDInCradle = 4711;
    Operator_.Expect(Text::Value(std::int64_t{4711})).With(Icon::None);

    manager_.Raise(SessionBegun);
}

TEST_F(LinksEditor, AnotherUserInTheCradleIsToldAndTheLinksTableGetsNoNewUser) {
    GivenLinks({"Anna"});
    auto& form = Open<frmChgLink>();
    Click(form, "cmdAdd");
    Type(form, "txtHotSync", QStringLiteral("Ben"));
    Global.ManualUploadActive = true;
    Global.NewHSUser = "Ben";
    manager_.InCradle = "Cleo";
    Operator_.Expect(msg::OtherUserInCradle).With(Icon::Warning);

    manager_.Raise(SessionBegun);
    Click(form, "cmdOK");

    EXPECT_EQ(Shown(form), "2 of 2 Ben");
    EXPECT_EQ(IDs(), (Names{"Anna", ""}));
    EXPECT_EQ(Warning(form), CatalogueText(msg::OtherUserInCradle));
    Click(form, "cmdCancel");
    EXPECT_EQ(IDs(), Names{"Anna"});
}

TEST_F(LinksEditor, TheCradleIsHeardOnlyAtTheBeginningOfASessionThatAScreenWaitsFor) {
    GivenLinks({"Anna"});
    auto& form = Open<frmChgLink>();
    manager_.InCradle = "Cleo";

    manager_.Raise(SessionBegun);
    Global.ManualUploadActive = true;
    for (const std::int32_t status : {0, 2, 3, 4}) manager_.Raise(status);

    Click(form, "cmdOK");
    EXPECT_EQ(IfLoaded<frmChgLink>(), nullptr);
    manager_.Raise(SessionBegun);
}

TEST_F(LinksEditor, AFormThatGoesWhileItTellsOfTheCradleComesToNoHarm) {
    GivenLinks({"Anna"});
    auto& form = Open<frmChgLink>();
    Global.ManualUploadActive = true;
    manager_.InCradle = "Cleo";
    Operator_.Expect(msg::OtherUserInCradle).Then([&] { form.Unload(); });

    manager_.Raise(SessionBegun);
    Settle();

    EXPECT_EQ(IfLoaded<frmChgLink>(), nullptr);
}

// ---- the browser and the editor ----

TEST_F(LinksEditor, TheGridsEditOpensTheSelectedRecordInPlaceOfTheGrid) {
    GivenLinks({"Anna", "Ben", "Cleo"});
    ShowTable(ViewLink);
    Rows(Grid()).SelectRecord(2);

    Click(Grid(), "cmdEdit");

    EXPECT_EQ(IfLoaded<frmViewGrid>(), nullptr);
    EXPECT_EQ(Shown(The<frmChgLink>()), "2 of 3 Ben");
}

TEST_F(LinksEditor, ADoubleClickAndEnterInTheGridEditTheRow) {
    GivenLinks({"Anna", "Ben", "Cleo"});
    for (const bool enter : {false, true}) {
        ShowTable(ViewLink);
        Rows(Grid()).SelectRecord(3);
        if (enter)
            Press(Grid(), "FG1", Qt::Key_Return);
        else
            emit Rows(Grid()).doubleClicked(Rows(Grid()).currentIndex());
        Settle();

        EXPECT_EQ(IfLoaded<frmViewGrid>(), nullptr);
        EXPECT_EQ(Shown(The<frmChgLink>()), "3 of 3 Cleo");
        The<frmChgLink>().Unload();
    }
}

TEST_F(LinksEditor, TheRecordViewersEditOpensItsRecord) {
    GivenLinks({"Anna", "Ben"});
    ShowTable(ViewLink);
    Click(Grid(), "cmdDataView");
    Click(The<frmViewData>(), "cmdNext");

    Click(The<frmViewData>(), "cmdEdit");

    EXPECT_EQ(IfLoaded<frmViewData>(), nullptr);
    EXPECT_EQ(Shown(The<frmChgLink>()), "2 of 2 Ben");
}

TEST_F(LinksEditor, AnotherTableHasNoEditorAndItsDoubleClickViewsTheRecord) {
    GivenRows("ZUKORHDR", {"H_ORDCODE", "A1"});
    ShowTable(ViewOrHdr);
    EXPECT_FALSE(Enabled(Grid(), "cmdEdit"));

    emit Rows(Grid()).doubleClicked(Rows(Grid()).currentIndex());
    Settle();

    ASSERT_NE(IfLoaded<frmViewData>(), nullptr);
    EXPECT_FALSE(Enabled(The<frmViewData>(), "cmdEdit"));
}

TEST_F(LinksEditor, AnEditorThatCannotOpenLeavesTheGrid) {
    GivenLinks({"Anna"});
    ShowTable(ViewLink);
    Settle();
    Global.TheDisk->Remove(Global.DBFPath + "ZUKLINK.dbf");
    Operator_.ExpectBeginning(msg::FileError).With(Icon::Stop);

    Click(Grid(), "cmdEdit");

    EXPECT_EQ(IfLoaded<frmChgLink>(), nullptr);
    EXPECT_NE(IfLoaded<frmViewGrid>(), nullptr);
}

TEST_F(LinksEditor, ViewSavesShowsTheGridAtTheRecordAndComesBackToIt) {
    GivenLinks({"Anna", "Ben", "Cleo"});
    auto& form = Open<frmChgLink>();
    Click(form, "cmdNext");
    Type(form, "txtSerial", QStringLiteral("12"));
    std::int32_t selected = 0;
    bool hidden = false;
    int open = -1;
    WhenGridStands([&] {
        selected = Rows(Grid()).SelectedRecord();
        hidden = !form.isVisible();
        open = Global.Files.Count();
        Rows(Grid()).SelectRecord(3);
        Click(Grid(), "cmdOK");
    });

    Click(form, "cmdView");

    EXPECT_EQ(selected, 2);
    EXPECT_TRUE(hidden);
    EXPECT_EQ(open, 0);
    EXPECT_EQ(Cell("ZUKLINK", 2, "LK_SERIAL"), "12");
    EXPECT_TRUE(form.isVisible());
    EXPECT_EQ(Shown(form), "2 of 3 Ben");
}

TEST_F(LinksEditor, ARowThatIsEditedInTheViewIsTheOneThatTheEditorComesBackTo) {
    GivenLinks({"Anna", "Ben", "Cleo"});
    auto& form = Open<frmChgLink>();
    WhenGridStands([&] {
        Click(Grid(), "cmdDataView");
        Click(The<frmViewData>(), "cmdLast");
        Click(The<frmViewData>(), "cmdGridView");
        Click(Grid(), "cmdEdit");
    });

    Click(form, "cmdView");

    EXPECT_EQ(IfLoaded<frmViewGrid>(), nullptr);
    EXPECT_EQ(IfLoaded<frmViewData>(), nullptr);
    EXPECT_TRUE(form.isVisible());
    EXPECT_EQ(Shown(form), "3 of 3 Cleo");
    Type(form, "txtSerial", QStringLiteral("5"));
    Click(form, "cmdOK");
    EXPECT_EQ(Cell("ZUKLINK", 3, "LK_SERIAL"), "5");
}

TEST_F(LinksEditor, AnEditorThatIsUnloadedWhileItsViewStandsIsGone) {
    GivenLinks({"Anna"});
    auto& form = Open<frmChgLink>();
    WhenGridStands([] { FormRegistry::Instance().UnloadSecondary(); });

    Click(form, "cmdView");

    EXPECT_EQ(IfLoaded<frmChgLink>(), nullptr);
    EXPECT_EQ(Global.Files.Count(), 0);
}

TEST_F(LinksEditor, ATableThatIsGoneAfterTheViewIsToldAndClosesTheEditor) {
    GivenLinks({"Anna"});
    auto& form = Open<frmChgLink>();
    Operator_.ExpectBeginning(msg::FileError).With(Icon::Stop);
    WhenGridStands([] {
        Global.TheDisk->Remove(Global.DBFPath + "ZUKLINK.dbf");
        Click(Grid(), "cmdOK");
    });

    Click(form, "cmdView");

    EXPECT_EQ(IfLoaded<frmChgLink>(), nullptr);
    EXPECT_FALSE(Global.Ending);
}

TEST_F(LinksEditor, EditInAGridBesideTheEditorSavesAndMovesIt) {
    GivenLinks({"Anna", "Ben"});
    auto& form = Open<frmChgLink>();
    Type(form, "txtSerial", QStringLiteral("8"));
    ShowTable(ViewLink);
    Rows(Grid()).SelectRecord(2);

    Click(Grid(), "cmdEdit");
    form.WaitWhile([&] { return Shown(form) != "2 of 2 Ben"; });

    EXPECT_EQ(Cell("ZUKLINK", 1, "LK_SERIAL"), "8");
    EXPECT_EQ(&The<frmChgLink>(), &form);
}

// ---- the main screen ----

TEST_F(LinksEditor, TheEditMenuOpensTheGridWhoseEnterEditsEvenAnEmptyTable) {
    auto& main = Start();

    ClickMenu(main, "mnuChgLinks");

    ASSERT_NE(IfLoaded<frmViewGrid>(), nullptr);
    EXPECT_TRUE(dynamic_cast<QPushButton&>(Control(Grid(), "cmdEdit")).isDefault());
    EXPECT_FALSE(dynamic_cast<QPushButton&>(Control(Grid(), "cmdOK")).isDefault());
    EXPECT_EQ(Rows(Grid()).accessibleDescription().toStdString(), CatalogueText(msg::EmptyLinks));
    Press(Grid(), "FG1", Qt::Key_Return);
    ASSERT_NE(IfLoaded<frmChgLink>(), nullptr);
    EXPECT_EQ(TextOf(The<frmChgLink>(), "lblCount"), QStringLiteral("No records to display!"));
}

TEST_F(LinksEditor, TheViewMenusGridIsLeftByEnter) {
    auto& main = Start();

    ClickMenu(main, "mnuTblLinks");

    EXPECT_TRUE(dynamic_cast<QPushButton&>(Control(Grid(), "cmdOK")).isDefault());
}

TEST_F(LinksEditor, ABrickWithoutTheMarkOpensItsRecordAndClosesOtherForms) {
    GivenLinks({"Anna", "Ben", "Cleo"});
    auto& main = Start();
    Open<frmView>();
    Global.SelectedRow = 3;

    Click(main, "cmdHHHSIDStd_2");

    EXPECT_EQ(IfLoaded<frmView>(), nullptr);
    ASSERT_NE(IfLoaded<frmChgLink>(), nullptr);
    EXPECT_EQ(Shown(The<frmChgLink>()), "2 of 3 Ben");
    EXPECT_TRUE(Global.View[ViewLink]);
    EXPECT_EQ(Global.LinkRecordToShow, 0);
}

TEST_F(LinksEditor, ABrickWithTheMarkDoesNothing) {
    GivenLinks({"Anna", "Ben"});
    WriteWholeFile(Global.InstallPath + "HSStatus.dat",
                   StatusLine("Anna", StatusLine("", "S")) + "\r\nBen\r\n");

    auto& main = Start();

    EXPECT_FALSE(Enabled(main, "cmdHHHSIDStd_1"));
    EXPECT_TRUE(Enabled(main, "cmdHHHSIDStd_2"));
}

TEST_F(LinksEditor, ABrickOpensItsOwnHandheldAlsoWhenTheClosedEditorHasSortedTheTable) {
    GivenLinks({"Ben", "Cleo"});
    auto& main = Start();
    auto& form = Open<frmChgLink>();
    Click(form, "cmdAdd");
    Type(form, "txtHotSync", QStringLiteral("Anna"));
    Click(form, "cmdFirst");

    Click(main, "cmdHHHSIDStd_1");

    EXPECT_EQ(Shown(The<frmChgLink>()), "2 of 3 Ben");
}

TEST_F(LinksEditor, ABrickOfALinkThatTheClosedEditorHasDeletedOpensNothing) {
    GivenLinks({"Ben", "Cleo"});
    auto& main = Start();
    auto& form = Open<frmChgLink>();
    Operator_.Expect(msg::DeleteCurrentLink).Answer(Answer::Yes);
    Click(form, "cmdDelete");

    Click(main, "cmdHHHSIDStd_1");

    EXPECT_EQ(IfLoaded<frmChgLink>(), nullptr);
    EXPECT_EQ(Control(main, "cmdHHHSIDStd_1").accessibleName(), QStringLiteral("Cleo: Not Synced"));
}

// ---- frmHSID ----

TEST_F(LinksEditor, AUserOfTheManagerIsChosenAndKept) {
    manager_.Users = {"Anna", "Zo\xE9 & Co"};
    auto& form = Open<frmHSID>();
    EXPECT_EQ(TextOf(form, "lblMsg"), QStringLiteral("Select the hotsync user to add to the Links table"));
    EXPECT_TRUE(Visible(form, "cmdCancel"));

    Choose(form, "cboUser", QStringLiteral("Zoé & Co"));
    Click(form, "cmdOK");

    EXPECT_EQ(Global.NewHSUser, "Zo\xE9 & Co");
    EXPECT_EQ(IfLoaded<frmHSID>(), nullptr);
}

TEST_F(LinksEditor, CancelLeavesTheUserThatWasChosenBefore) {
    manager_.Users = {"Anna", "Ben"};
    Global.NewHSUser = "Ben";
    auto& form = Open<frmHSID>();
    EXPECT_EQ(TextOf(form, "cboUser"), QStringLiteral("Ben"));
    Choose(form, "cboUser", QStringLiteral("Anna"));

    Click(form, "cmdCancel");

    EXPECT_EQ(Global.NewHSUser, "Ben");
}

TEST_F(LinksEditor, AtFirstUseTheDefaultUserIsAskedForAndThereIsNoCancel) {
    manager_.Users = {"Anna"};
    auto& form = Open<frmHSID>();

    form.AskForDefault();

    EXPECT_EQ(TextOf(form, "lblMsg"),
              QStringLiteral("Select the default hotsync user that you will be using with ZUK Tramble"));
    EXPECT_FALSE(Visible(form, "cmdCancel"));
    Press(form, "cboUser", Qt::Key_Return);
    EXPECT_EQ(Global.NewHSUser, "Anna");
}

TEST_F(LinksEditor, WithoutUsersThereIsNothingToConfirmAndAWayOut) {
    Global.NewHSUser = "Ben";
    auto& form = Open<frmHSID>();

    form.AskForDefault();

    EXPECT_EQ(TextOf(form, "lblMsg").toStdString(), CatalogueText(msg::NoUsers));
    EXPECT_FALSE(Enabled(form, "cmdOK"));
    Click(form, "cmdCancel");
    EXPECT_EQ(Global.NewHSUser, "Ben");
    EXPECT_EQ(IfLoaded<frmHSID>(), nullptr);
}

TEST_F(LinksEditor, AUserWhoIsMadeMeanwhileAppearsAndIsChosen) {
    auto& form = Open<frmHSID>();
    form.AskForDefault();
    EXPECT_FALSE(Enabled(form, "cmdOK"));
    form.findChild<QTimer*>(QStringLiteral("TimerLook"))->start(1);
    const auto& list = dynamic_cast<QComboBox&>(Control(form, "cboUser"));
    const auto has = [&](const Names& users) {
        manager_.Users = users;
        WaitInLoop([&] { return list.count() != static_cast<int>(users.size()); });
    };

    has({"Anna"});
    EXPECT_TRUE(Enabled(form, "cmdOK"));
    EXPECT_EQ(TextOf(form, "lblMsg").toStdString(), CatalogueText(msg::DefaultUser));
    EXPECT_FALSE(Visible(form, "cmdCancel"));
    has({"Anna", "Ben", "Cleo"});
    EXPECT_EQ(TextOf(form, "cboUser"), QStringLiteral("Cleo"));
    Choose(form, "cboUser", QStringLiteral("Ben"));
    has({"Ben", "Cleo"});
    EXPECT_EQ(TextOf(form, "cboUser"), QStringLiteral("Ben")) << "who was chosen stays chosen";
    has({});
    EXPECT_FALSE(Enabled(form, "cmdOK"));
    EXPECT_TRUE(Visible(form, "cmdCancel"));
}

TEST_F(LinksEditor, ThePlatformsOwnControlHasNoManager) {
    Global.MakeSFrmAX40 = nullptr;

    auto& form = Open<frmHSID>();

    EXPECT_FALSE(Enabled(form, "cmdOK"));
}

} // namespace

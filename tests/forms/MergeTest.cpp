#include "core/Messages.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "forms/FormTest.h"
#include "maintenance/SafetyCopies.h"
#include "maintenance/Totals.h"
#include "maintenance/forms/frmTotalsMsg.h"
#include "program/forms/frmMain1.h"
#include "store/TableCatalogue.h"
#include "store/forms/frmAppend.h"
#include "store/forms/frmAppendAudit.h"
#include "store/forms/frmAppendIndex.h"
#include "tools/forms/frmAbout.h"

#include <QLabel>
#include <QProgressBar>

namespace {

class MergeScreens : public FormTest {
protected:
    MergeScreens() {
        GivenOffice();
        Global.UploadSelect = Selection(true);
        Global.MainSyncLoaded = true;
        GivenRows("ZUKOrHdr", {"H_ORDCODE", "P1", "P2"});
        GivenRows("ZUKOrLin", {"L_KEY|L_TOTPRICE", "P1-1|2.5"});
        GivenRows("ZUKAudTH", {"A_ORDCODE", "PA"});
        GivenRows("ZUKAudTL", {"A_KEY", "PA-1"});
        GivenRows("ZUKAudHH", {"TH_NUMHEAD", "7"});
        GivenRows("ZUKBarin", {"BARCODE", "PB"});
        MakeSafetyCopies(SafetyCopies::OfSession);
        GivenRows("ZUKOrHdr", {"H_ORDCODE", "N1"});
        GivenRows("ZUKOrLin", {"L_KEY|L_TOTPRICE", "N1-1|1.25"});
        GivenRows("ZUKAudTH", {"A_ORDCODE", "NA"});
        GivenRows("ZUKAudTL", {"A_KEY", "NA-1"});
        GivenRows("ZUKAudHH", {"TH_NUMHEAD", "9"});
        GivenRows("ZUKBarin", {"BARCODE", "NB"});
    }

    /// As a session does it: the call returns when the form has gone.
    template <class F>
    static void ShowToItsEnd() {
        The<F>().Show(ShowMode::Modal);
        EXPECT_EQ(IfLoaded<F>(), nullptr);
    }

    static bool IsThere(const char* file) { return FileExists(Global.DBFPath + file); }
};

TEST_F(MergeScreens, TheOldOrdersComeBehindThoseOfTheHandheld) {
    Global.SessionRun.OrderHeaders = Global.SessionRun.OrderLines = true;

    ShowToItsEnd<frmAppend>();

    ASSERT_EQ(RecordCount("ZUKOrHdr"), 3);
    EXPECT_EQ(Cell("ZUKOrHdr", 1, "H_ORDCODE"), "N1");
    EXPECT_EQ(Cell("ZUKOrHdr", 2, "H_ORDCODE"), "P1");
    EXPECT_EQ(Cell("ZUKOrHdr", 3, "H_ORDCODE"), "P2");
    ASSERT_EQ(RecordCount("ZUKOrLin"), 2);
    EXPECT_EQ(Cell("ZUKOrLin", 2, "L_TOTPRICE"), "2.5");
    EXPECT_EQ(RecordCount("ZUKAudTH"), 1);
    EXPECT_FALSE(IsThere("OLDHDR.TXT"));
    EXPECT_TRUE(Global.FailedMerges.empty());
}

TEST_F(MergeScreens, ATableThatDidNotArriveIsNotMerged) {
    Global.SessionRun.OrderHeaders = true;

    ShowToItsEnd<frmAppend>();

    EXPECT_EQ(RecordCount("ZUKOrHdr"), 3);
    EXPECT_EQ(RecordCount("ZUKOrLin"), 1);
}

TEST_F(MergeScreens, WithoutTheSessionsFormTheUploadScreenSaysWhatIsMerged) {
    Global.MainSyncLoaded = false;
    Global.SessionRun.OrderHeaders = true;
    Global.UploadScreenRun.OrderLines = true;

    ShowToItsEnd<frmAppend>();

    EXPECT_EQ(RecordCount("ZUKOrHdr"), 1);
    EXPECT_EQ(RecordCount("ZUKOrLin"), 2);
}

TEST_F(MergeScreens, AuditsAndHandheldTotalsAreMergedByAFormOfTheirOwn) {
    Global.SessionRun.OrderHeaders = true;
    Global.SessionRun.AuditHeaders = Global.SessionRun.AuditLines = Global.SessionRun.HHTotals = true;

    ShowToItsEnd<frmAppendAudit>();

    EXPECT_EQ(RecordCount("ZUKOrHdr"), 1);
    EXPECT_EQ(Cell("ZUKAudTH", 2, "A_ORDCODE"), "PA");
    EXPECT_EQ(Cell("ZUKAudTL", 2, "A_KEY"), "PA-1");
    EXPECT_EQ(Cell("ZUKAudHH", 2, "TH_NUMHEAD"), "7");
}

TEST_F(MergeScreens, ThatOfTheBarcodeIndexComesUpAndGoesWithNoEffectInASession) {
    ShowToItsEnd<frmAppendIndex>();

    EXPECT_EQ(RecordCount("ZUKBarin"), 1);
}

TEST_F(MergeScreens, ABarcodeIndexThatCameWouldBeMerged) {
    Global.SessionRun.BarcodeIndex = true;

    ShowToItsEnd<frmAppendIndex>();

    EXPECT_EQ(Cell("ZUKBarin", 2, "BARCODE"), "PB");
}

TEST_F(MergeScreens, TheTextIsWrittenAsTheFormLoadsAndReadWhenItStands) {
    Global.SessionRun.OrderHeaders = true;
    auto& form = The<frmAppend>();
    EXPECT_TRUE(IsThere("OLDHDR.TXT"));
    EXPECT_EQ(RecordCount("ZUKOrHdr"), 1);
    EXPECT_EQ(TextOf(form, "lblProgress"), QStringLiteral("Processing data, please wait...."));

    form.Show(ShowMode::Modal);

    EXPECT_EQ(RecordCount("ZUKOrHdr"), 3);
}

TEST_F(MergeScreens, EscapeAndTheWindowsCrossDoNotEndTheWork) {
    Global.SessionRun.OrderHeaders = true;
    auto& form = The<frmAppend>();
    form.reject();
    form.close();
    EXPECT_EQ(IfLoaded<frmAppend>(), &form);

    form.Show(ShowMode::Modal);

    EXPECT_EQ(RecordCount("ZUKOrHdr"), 3);
}

TEST_F(MergeScreens, AFormAboveThatGoesDoesNotMergeTwice) {
    Global.SessionRun.OrderHeaders = true;
    The<frmAppend>().Show();
    The<frmAbout>().Show();
    The<frmAbout>().Unload();
    Settle();

    EXPECT_EQ(IfLoaded<frmAppend>(), nullptr);
    EXPECT_EQ(RecordCount("ZUKOrHdr"), 3);
    EXPECT_TRUE(Global.FailedMerges.empty());
}

TEST_F(MergeScreens, AFailureOfFilesIsToldNowhereAndTheCallerGoesOn) {
    Global.SessionRun.OrderHeaders = Global.SessionRun.OrderLines = true;
    WriteWholeFile(Global.DBFPath + "ZUKOrHdr.dbf", "no table");

    ShowToItsEnd<frmAppend>();

    EXPECT_TRUE(IsThere("OLDHDR.TXT"));
    EXPECT_EQ(RecordCount("ZUKOrLin"), 2);
    DeleteSafetyCopies(SafetyCopies::OfSession);
    EXPECT_TRUE(IsThere("ZUKORHDR.DAP"));
    EXPECT_FALSE(IsThere("ZUKORLIN.DAP"));
}

TEST_F(MergeScreens, AMissingSafetyCopyIsToldNowhereEither) {
    Global.SessionRun.OrderHeaders = true;
    DeleteSafetyCopies(SafetyCopies::OfSession);

    ShowToItsEnd<frmAppend>();

    EXPECT_EQ(RecordCount("ZUKOrHdr"), 1);
}

// ---- the start behind a session that was cut off ----

class InterruptedSession : public MergeScreens {
protected:
    InterruptedSession() {
        Global.MainSyncLoaded = false;
        Operator_.Expect(msg::PalmDesktopMissing);
    }

    static Text Row(const char* table, int records) {
        return Words(Text(MessageId{FindTable(table)->FirstLabel}) + Text::Path(std::string_view(":")),
                     Text::Value(records), msg::RecoveredRecords);
    }
};

TEST_F(InterruptedSession, TheStartPutsBackWhatWasNotMergedAndSaysSoOnce) {
    NoProgress silent;
    TableMerge headers(MergedOrderHeaders);
    headers.WriteText();
    headers.ReadText(silent);
    Text told = msg::SessionRecovered;
    for (const Text& row : {Row("ZUKOrLin", 1), Row("ZUKAudTH", 1), Row("ZUKAudTL", 1), Row("ZUKAudHH", 1)}) {
        told = ::Lines(told, row);
    }
    Operator_.Expect(told).With(Icon::Information);

    Open<frmMain1>();

    EXPECT_FALSE(Global.Ending);
    EXPECT_EQ(RecordCount("ZUKOrHdr"), 3);
    EXPECT_EQ(RecordCount("ZUKOrLin"), 2);
    EXPECT_FALSE(IsThere("ZUKORHDR.DAP"));
}

TEST_F(InterruptedSession, TheStartSaysNothingWhenEverythingIsInItsPlace) {
    Global.SessionRun = {true, true, true, true, true, false};
    Global.MainSyncLoaded = true;
    ShowToItsEnd<frmAppend>();
    ShowToItsEnd<frmAppendAudit>();

    Open<frmMain1>();

    EXPECT_EQ(RecordCount("ZUKOrHdr"), 3);
    EXPECT_FALSE(IsThere("ZUKORHDR.DAP"));
}

TEST_F(InterruptedSession, WhatCannotBePutBackIsToldWithItsFileAndTheProgramStarts) {
    WriteWholeFile(Global.DBFPath + "ZUKAudTH.dbf", "no table");
    // The other tables have come back, and that is told too.
    Operator_.ExpectBeginning(msg::SessionRecovered).With(Icon::Information);
    Operator_.ExpectBeginning(msg::SessionNotRecovered).With(Icon::Warning);

    Open<frmMain1>();

    EXPECT_FALSE(Global.Ending);
    EXPECT_EQ(RecordCount("ZUKOrHdr"), 3);
    EXPECT_TRUE(IsThere("ZUKAUDTH.DAP"));
}

// ---- frmTotalsMsg ----

class SummaryOfTotals : public FormTest {
protected:
    SummaryOfTotals() {
        Global.CurHeaders = 12;
        Global.CurLines = 40;
        Global.CurDollars = 1250.5;
        Global.OldOrderCount = 10;
        Global.OldLineCount = 33;
        Global.OldLineTotal = 1000.25;
        Global.CurrentHotSyncID = "Anna Berg";
        Global.HHLastOrder = "A0100000012";
    }

    static QStringList Values(FormBehaviour& form, const std::vector<const char*>& labels) {
        QStringList values;
        for (const char* label : labels) values << TextOf(form, label);
        return values;
    }
    static QStringList LastUpload(FormBehaviour& form) {
        return Values(form, {"lblUploadOrders", "lblUploadLines", "lblUploadDollars"});
    }
    static QStringList Total(FormBehaviour& form) {
        return Values(form, {"lblTotalOrders", "lblTotalLines", "lblTotalDollars"});
    }
};

TEST_F(SummaryOfTotals, BehindAnUploadThatAddedOrdersTheFirstRowIsTheDifference) {
    Global.UploadClosing = true;

    auto& form = Open<frmTotalsMsg>();

    EXPECT_EQ(form.windowTitle(), QStringLiteral("Summary of Totals"));
    EXPECT_EQ(LastUpload(form), (QStringList{"2", "7", "250.25"}));
    EXPECT_EQ(Total(form), (QStringList{"12", "40", "1250.50"}));
    EXPECT_EQ(TextOf(form, "lblHSID1"), QStringLiteral("Anna Berg"));
    EXPECT_EQ(TextOf(form, "lblLastOrder1"), QStringLiteral("A0100000012"));
}

TEST_F(SummaryOfTotals, OtherwiseBothRowsAreWhatThePCHolds) {
    auto& form = Open<frmTotalsMsg>();

    EXPECT_EQ(LastUpload(form), (QStringList{"12", "40", "1250.50"}));
    EXPECT_EQ(Total(form), LastUpload(form));
}

TEST_F(SummaryOfTotals, AnIdIsShownAsItStands) {
    Global.CurrentHotSyncID = "<b>Jos\xE9</b> & Co";

    auto& form = Open<frmTotalsMsg>();

    EXPECT_EQ(TextOf(form, "lblHSID1"), QString::fromUtf8("<b>José</b> & Co"));
    EXPECT_EQ(dynamic_cast<QLabel&>(Control(form, "lblHSID1")).textFormat(), Qt::PlainText);
}

TEST_F(SummaryOfTotals, OkEnterAndEscapeCloseIt) {
    Click(Open<frmTotalsMsg>(), "cmdOK");
    EXPECT_EQ(IfLoaded<frmTotalsMsg>(), nullptr);
    for (const auto key : {Qt::Key_Return, Qt::Key_Escape}) {
        Press(Open<frmTotalsMsg>(), "cmdOK", key);
        Settle();
        EXPECT_EQ(IfLoaded<frmTotalsMsg>(), nullptr);
    }
}

} // namespace

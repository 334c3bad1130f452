#include "maintenance/forms/frmTableSelectPC.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/forms/frmProgress.h"
#include "exchange/forms/ExportRun.h"
#include "maintenance/Backup.h"
#include "maintenance/forms/BackupRun.h"
#include "maintenance/forms/CopiesBack.h"
#include "platform/Convert.h"
#include "platform/HelpLine.h"
#include "platform/MainScreen.h"
#include "store/OfficeTables.h"
#include "sync/Status.h"
#include "sync/TableTemplates.h"
#include "sync/forms/StatusFile.h"

frmTableSelectPC::frmTableSelectPC() : TableSelectForm({&Global.ClearPCTemplates, ".pct"}) {
    setupUi(this);
    const std::pair<QCheckBox*, QLabel*> rows[ClearGroups] = {
        {chkOrHdr, lblOrHdr}, {chkAudtH, lblAudtH},    {chkAudHH, lblAudHH}, {chkBarIn, lblBarIn},
        {chkComp, lblComp},   {chkCust, lblCust},      {chkHelp, lblHelp},   {chkItem, lblItem},
        {chkPrint, lblPrint}, {chkSetup, lblSetup},    {chkSTax, lblSTax},   {chkPay, lblPay},
        {chkLinks, lblLinks}, {chkTotalPC, lblTotalPC}};
    std::vector<Group> groups;
    for (std::size_t k = 0; k < ClearGroups; ++k) {
        const auto tables = TablesOf(static_cast<ClearGroup>(k));
        groups.push_back({rows[k].first, rows[k].second, {tables.begin(), tables.end()}});
    }
    groups[0].Hint = msg::HintOrdersPC;
    for (Group* backedUp : {&groups[1], &groups[2]}) backedUp->Hint = msg::HintBackedUp;
    Bind(std::move(groups),
         {msg::HintNoBackup, Global.TemplateEditMode ? msg::HintOKKeepPC : msg::HintOKPC, msg::HintCancelPC,
          msg::NothingTickedPC},
         true);
}

void frmTableSelectPC::Form_Load() {
    TableSelectForm::Form_Load();
    Help().Add(*cmdInvert, msg::HintInvert);
}

void frmTableSelectPC::ShowTables() {
    TableSelectForm::ShowTables();
    const Text images = Counted(msg::SignatureImages, CountImages());
    lblOrHdr->setText(lblOrHdr->text() + QStringLiteral(", ") + ToQt(images));
}

ClearPlan frmTableSelectPC::Plan() const {
    ClearPlan plan;
    for (std::size_t k = 0; k < ClearGroups; ++k) plan.Chosen[k] = Groups()[k].Box->isChecked();
    return plan;
}

void frmTableSelectPC::ReadSettings(const std::string& path) {
    ClearPlan plan = Plan();
    ReadTemplate(path, plan);
    for (std::size_t k = 0; k < ClearGroups; ++k) Groups()[k].Box->setChecked(plan.Chosen[k]);
}

void frmTableSelectPC::WriteSettings(const std::string& path) {
    WriteTemplate(path, Plan());
}

void frmTableSelectPC::cmdInvert_Click() {
    Trace("cmdInvert_Click");
    for (const Group& group : Groups()) group.Box->toggle();
}

bool frmTableSelectPC::IsAgreedTo() {
    if (Keeps() && !AskYesNo(msg::ClearNow)) {
        // What was ticked without a name is saved nowhere: the screen stays.
        if (HasSettingsName()) Unload();
        return false;
    }
    return AskYesNo(msg::ClearWarningPC, Icon::Warning);
}

void frmTableSelectPC::Perform() {
    if (!IsDriven() && !IsAgreedTo()) return;
    const ClearPlan plan = Plan();
    if (plan.NeedsBackup() && !AwaitOwnSecond(*this)) return;
    if (!TablesAreFree(TablesOf(plan))) return;
    if (!CopiesAreIn(plan)) return;
    if (plan.NeedsBackup() && !MakeBackup("CLEAR")) {
        TellNoBackup(msg::TransferAborted);
        if (auto* main = IfMainScreen()) main->RefreshRecordCounts();
        return;
    }
    const bool done = Clear(plan);
    ShowState(plan);
    if (!done) return ShowTables();
    SetPerformed();
    Unload();
}

/// What an upload has left to be put back comes first, or it would come back behind the clearing. False when
/// it cannot be put back: the operator has been told; or when the operator does not want it cleared.
bool frmTableSelectPC::CopiesAreIn(const ClearPlan& plan) {
    const auto back = PutCopiesBack(TablesOf(plan));
    if (!back) return false;
    // What came back just now was not there when the clearing was agreed to, and may not be exported.
    return back->empty() || AskYesNo(msg::ClearWarningPC, Icon::Warning);
}

/// False when it was stopped: the operator has been told.
bool frmTableSelectPC::Clear(const ClearPlan& plan) {
    ClearedTables cleared;
    std::optional<Text> stopped;
    try {
        TableJob job = MarkClearing(plan);
        ClearPCTotals(plan, cleared);
        if (plan.ChangesOrders()) RecordTotals(ProgressFlag::Clear);
        ClearTables(plan, cleared);
        job.Finish();
        if (plan.ChangesOrders()) RecordTotals(ProgressFlag::Clear2);
    } catch (const RunTimeFailure& failure) {
        stopped = Text::Path(std::string_view(failure.what()));
    }
    if (report_) *report_ = cleared;
    Text told = TellCleared(cleared);
    if (stopped) {
        if (told.IsEmpty()) told = msg::NothingCleared;
        Tell(Lines(Lines(Lines(msg::FileError, msg::ClearStopped), told), *stopped), Icon::Stop);
        return false;
    }
    if (auto* main = IfMainScreen(); main && !IsDriven())
        main->ShowOutcome(told.IsEmpty() ? Text(msg::NothingCleared) : Words(msg::TablesCleared, told));
    return true;
}

/// What other screens show of the tables that have gone.
void frmTableSelectPC::ShowState(const ClearPlan& plan) {
    RefreshMainScreen();
    if (plan.Has(ClearGroup::Comp)) Global.CompanyName = ReadCompanyName();
    if (!plan.Has(ClearGroup::Links)) return;
    // The status of the handhelds goes by the rows of the Links table.
    ClearHHStatus();
    if (!WithStatusFile(MakeHHStatusFile)) return;
    if (auto* main = IfMainScreen()) main->GetHHBricksStd();
}

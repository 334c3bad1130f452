#include "exchange/forms/frmQBClearPC.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "exchange/Activity.h"
#include "exchange/forms/ExportRun.h"
#include "maintenance/forms/frmTableSelectPC.h"
#include "platform/BarProgress.h"
#include "platform/Convert.h"
#include "sync/TableTemplates.h"

frmQBClearPC::frmQBClearPC() : QuickButtonForm(ClearPCActivities) {
    SetUp(msg::frmQBClearPC);
}

void frmQBClearPC::ShowHeadings() {
    lblHeading1->setText(ToQt(Text(msg::HeadingTemplate)));
    lblHeading2->setText(ToQt(Text(msg::HeadingTablesCleared)));
}

QuickButtonForm::RowResult frmQBClearPC::RunRow(std::size_t row, const std::string& templateName) {
    const Text name = Text::Value(templateName);
    const std::string file = NameToPath(templateName);
    const std::string_view extension = ExtensionOf(file);
    ClearPlan plan;
    try {
        if (!SameText(extension, ".pct")) throw RunTimeFailure(53, file);
        ReadTemplate(Global.ClearPCTemplates + file, plan);
    } catch (const RunTimeFailure&) {
        return TellCannotOpen(name);
    }
    lblSS[row]->setText(ToQt(name));
    BarProgress progress(lblProgress, *pgbProgress);
    progress.Begin(msg::ProcessingRow, static_cast<std::int64_t>(lblSS.size()));
    progress.Show(static_cast<std::int64_t>(row));

    bool cleared = false;
    ClearedTables tables;
    auto& screen = The<frmTableSelectPC>();
    screen.ReportTo(tables);
    screen.Drive(file.substr(0, file.size() - extension.size()), cleared);
    screen.Show(ShowMode::Modal);
    return {cleared,
            Words(Text::Value(static_cast<std::int64_t>(tables.Tables.size())), msg::Of,
                  Text::Value(static_cast<std::int64_t>(TablesOf(plan).size()))),
            TellCleared(tables)};
}

void frmQBClearPC::FinishRun(bool anyWorked) {
    if (anyWorked) RefreshMainScreen();
}

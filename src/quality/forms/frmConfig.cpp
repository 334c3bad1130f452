#include "quality/forms/frmConfig.h"

#include "core/Messages.h"
#include "exchange/Activity.h"
#include "exchange/forms/frmConvert.h"
#include "exchange/forms/frmExport1.h"
#include "platform/Convert.h"
#include "platform/Look.h"
#include "quality/CheckResults.h"
#include "quality/forms/QCRun.h"
#include "quality/forms/frmConfigCust.h"
#include "quality/forms/frmConfigItem.h"
#include "quality/forms/frmConfigPrint.h"
#include "quality/forms/frmConfigSTax.h"
#include "sync/forms/frmTableSelectDL.h"
#include "sync/forms/frmUploadSelect.h"
#include "tools/forms/frmOptions.h"
#include "views/forms/frmViewGrid.h"

#include <QPushButton>

#include <algorithm>
#include <string>

namespace {

constexpr int LettersOfName = 17;         ///< of a process, that stand in one line
constexpr std::int32_t LongestCount = 99; ///< of problems, that a line has room for

Text ResultText(const std::optional<CheckResult>& result) {
    if (!result) return msg::NeverChecked;
    const Text when = Text::Value(std::string_view(DateAndTime(result->When).substr(0, 16)));
    if (result->Fatal == 0 && result->Warn == 0) return Lines(when, msg::CheckedClean);
    Text counts;
    for (const auto& [count, severity] :
         {std::pair{result->Fatal, Severity::Fatal}, std::pair{result->Warn, Severity::Warn}}) {
        if (count == 0) continue;
        const Text part = Words(Text::Value(std::int64_t{count}), SeverityText(severity));
        counts = counts.IsEmpty() ? part : Words(counts, part);
    }
    return Lines(when, counts);
}

void OpenOptions(const std::function<void(frmOptions&)>& turn) {
    auto& options = The<frmOptions>();
    turn(options);
    options.Show(ShowMode::Modal);
}

} // namespace

void frmConfig::Form_Load() {
    TraceEvent("frmConfig:Form_Load");
    NameButtons();
    ReserveResults();
    ShowResults();
    if (!Global.QCAutoRun) return;
    CheckAll();
    // Behind a run that shows nothing there is nothing to come back to.
    if (!Global.QCAutoRun) Unload();
}

void frmConfig::NameButtons() {
    for (auto* button : findChildren<QPushButton*>()) {
        const QString name = button->objectName();
        const bool configures = name.endsWith(QLatin1Char('1'));
        if (button == cmdCheckAll || button == cmdCancel) continue;
        button->setToolTip(PlainTip(ToQt(Text(configures ? msg::TipConfigure : msg::TipCheck))));
    }
    cmdCheckAll->setToolTip(PlainTip(ToQt(Text(msg::TipCheckAll))));
    cmdCancel->setToolTip(PlainTip(ToQt(Text(msg::TipClose))));
    // All these buttons read alike: who hears them is told their line.
    const auto name = [this](const QString& button, QString line) {
        line.remove(QLatin1Char('&'));
        for (const char* end : {"1", "2"}) {
            if (auto* one = findChild<QPushButton*>(button + QLatin1String(end)))
                one->setAccessibleName(one->text() + QLatin1Char(' ') + line);
        }
    };
    for (auto* label : findChildren<QLabel*>()) {
        if (!label->buddy()) continue;
        name(label->buddy()->objectName().chopped(1), label->text());
        // A name of the usual length stands in one line.
        const QFontMetrics letters = label->fontMetrics();
        label->setMinimumWidth(std::min(letters.size(Qt::TextShowMnemonic, label->text()).width() + 2,
                                        LettersOfName * letters.averageCharWidth()));
    }
    name(QStringLiteral("cmdSTax"), lblSTax->text());
    name(QStringLiteral("cmdPrinter"), lblPrinter->text());
    for (auto* label : {lblSTax, lblPrinter}) label->setToolTip(PlainTip(ToQt(Text(msg::TipConfigure))));
}

QLabel* frmConfig::ResultLabel(std::size_t check) const {
    return findChild<QLabel*>(QStringLiteral("lblResult_%1").arg(check + 1));
}

/// Each result has its room from the first, so that no line moves when it comes.
void frmConfig::ReserveResults() {
    const CheckResult longest{Now(), LongestCount, LongestCount};
    const QLabel* any = ResultLabel(0);
    const QSize room = any->fontMetrics().size(0, ToQt(ResultText(longest)));
    for (std::size_t check = 0; check < Checks; ++check) ResultLabel(check)->setMinimumSize(room);
}

void frmConfig::Form_GotFocus() {
    ShowResults();
}

void frmConfig::ShowResults() {
    const CheckResults results = CheckResults::Read(CheckResultsFile());
    // In the order of the lines, which is that of Check.
    for (std::size_t check = 0; check < Checks; ++check) {
        const auto& result = results.Of(static_cast<Check>(check));
        QLabel* label = ResultLabel(check);
        label->setText(ToQt(ResultText(result)));
        QPalette tone = palette();
        if (result && result->Fatal > 0) tone.setColor(QPalette::WindowText, WarningTone());
        label->setPalette(tone);
    }
}

// ---- checking ----

void frmConfig::CheckOne(const char* handler, Check check) {
    TraceEvent(std::string("frmConfig:") + handler);
    RunSingleCheck(check);
}

void frmConfig::cmdLinks2_Click() {
    CheckOne("cmdLinks2_Click", Check::Links);
}

void frmConfig::cmdCust2_Click() {
    CheckOne("cmdCust2_Click", Check::Customers);
}

void frmConfig::cmdItems2_Click() {
    CheckOne("cmdItems2_Click", Check::Items);
}

void frmConfig::cmdBarcode2_Click() {
    CheckOne("cmdBarcode2_Click", Check::BarCodes);
}

void frmConfig::cmdSTax2_Click() {
    CheckOne("cmdSTax2_Click", Check::SalesTax);
}

void frmConfig::cmdPay2_Click() {
    CheckOne("cmdPay2_Click", Check::Payments);
}

void frmConfig::cmdPrinter2_Click() {
    CheckOne("cmdPrinter2_Click", Check::Printing);
}

void frmConfig::cmdDownload2_Click() {
    CheckOne("cmdDownload2_Click", Check::Download);
}

void frmConfig::cmdUpload2_Click() {
    CheckOne("cmdUpload2_Click", Check::Upload);
}

void frmConfig::cmdImport2_Click() {
    CheckOne("cmdImport2_Click", Check::Import);
}

void frmConfig::cmdExport2_Click() {
    CheckOne("cmdExport2_Click", Check::Export);
}

void frmConfig::cmdQB2_Click() {
    CheckOne("cmdQB2_Click", Check::QuickButtons);
}

void frmConfig::cmdUA2_Click() {
    CheckOne("cmdUA2_Click", Check::Unattended);
}

void frmConfig::cmdBackup2_Click() {
    CheckOne("cmdBackup2_Click", Check::Backup);
}

void frmConfig::CheckAll() {
    TraceEvent("frmConfig:cmdCheckAll_Click");
    RunChecks(AllChecks());
}

void frmConfig::cmdCheckAll_Click() {
    CheckAll();
}

// ---- configuring ----

void frmConfig::Configure(const char* handler, const std::function<void()>& open) {
    TraceEvent(std::string("frmConfig:") + handler);
    OpenToConfigure(open);
}

void frmConfig::cmdLinks1_Click() {
    Configure("cmdLinks1_Click", [] { ShowTable(ViewLink); });
}

void frmConfig::cmdCust1_Click() {
    Configure("cmdCust1_Click", [] { The<frmConfigCust>().Show(ShowMode::Modal); });
}

void frmConfig::cmdItems1_Click() {
    Configure("cmdItems1_Click", [] { The<frmConfigItem>().Show(ShowMode::Modal); });
}

void frmConfig::lblSTax_Click() {
    Configure("lblSTax_Click", [] { The<frmConfigSTax>().Show(ShowMode::Modal); });
}

void frmConfig::lblPrinter_Click() {
    Configure("lblPrinter_Click", [] { The<frmConfigPrint>().Show(ShowMode::Modal); });
}

void frmConfig::cmdBarcode1_Click() {
    Configure("cmdBarcode1_Click", [] { ShowTable(ViewItem); });
}

void frmConfig::cmdSTax1_Click() {
    Configure("cmdSTax1_Click", [] { ShowTable(ViewSTax); });
}

void frmConfig::cmdPay1_Click() {
    Configure("cmdPay1_Click", [] { ShowTable(ViewPay); });
}

void frmConfig::cmdPrinter1_Click() {
    Configure("cmdPrinter1_Click", [] { ShowTable(ViewPrinter); });
}

void frmConfig::cmdDownload1_Click() {
    Configure("cmdDownload1_Click", [] { The<frmTableSelectDL>().Show(ShowMode::Modal); });
}

void frmConfig::cmdUpload1_Click() {
    Configure("cmdUpload1_Click", [] { The<frmUploadSelect>().Show(ShowMode::Modal); });
}

void frmConfig::cmdImport1_Click() {
    Configure("cmdImport1_Click", [] { The<frmConvert>().Show(ShowMode::Modal); });
}

void frmConfig::cmdExport1_Click() {
    Configure("cmdExport1_Click", [] {
        Global.TemplateEditMode = true;
        auto& mapping = The<frmExport1>();
        if (!mapping.IsGone()) mapping.Show(ShowMode::Modal);
        Global.TemplateEditMode = false;
    });
}

void frmConfig::cmdQB1_Click() {
    Configure("cmdQB1_Click", [] { OpenOptions([](auto& options) { options.TurnTo(ImportActivities); }); });
}

void frmConfig::cmdUA1_Click() {
    Configure("cmdUA1_Click",
              [] { OpenOptions([](auto& options) { options.TurnTo(UnattendedExtension); }); });
}

void frmConfig::cmdBackup1_Click() {
    Configure("cmdBackup1_Click", [] { OpenOptions([](auto& options) { options.TurnToBackup(); }); });
}

void frmConfig::cmdCancel_Click() {
    TraceEvent("frmConfig:cmdCancel_Click");
    Unload();
}

#include "exchange/forms/QuickButtonForm.h"

#include "core/Catalogue.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "exchange/Activity.h"
#include "platform/Convert.h"
#include "platform/Look.h"
#include "tools/forms/frmOptions.h"

void QuickButtonForm::SetUp(MessageId caption) {
    setObjectName(QLatin1String(metaObject()->className()));
    setProperty("Tag", QString::number(caption.Number));
    setupUi(this);
    imgSuccess = {imgSuccess_1, imgSuccess_2};
    lblSS = {lblSS_1, lblSS_2};
    lblSST = {lblSST_1, lblSST_2};
}

void QuickButtonForm::Form_Load() {
    Trace("Form_Load");
    for (QWidget* control : {static_cast<QWidget*>(lblProgress), static_cast<QWidget*>(lblWritten),
                             static_cast<QWidget*>(pgbProgress)})
        control->hide();
    PopMaster();
    EmptyRows();
}

void QuickButtonForm::PopMaster() {
    Trace("PopMaster");
    cboMaster->clear();
    for (const std::string& name : NamesWithExtension(Global.QuickButtonTemplates, extension_)) {
        cboMaster->addItem(PathToQt(name));
    }
    cboMaster->setCurrentIndex(-1);
    lblNoActivity->setVisible(cboMaster->count() == 0);
    cboMaster->setFocus();
}

void QuickButtonForm::EmptyRows() {
    templates_ = {};
    lblSSHeading->clear();
    for (std::size_t row = 0; row < templates_.size(); ++row) {
        imgSuccess[row]->clear();
        lblSS[row]->clear();
        lblSST[row]->clear();
        for (QWidget* cell : {imgSuccess[row], lblSST[row]}) cell->setToolTip(QString());
    }
    cmdOK->setEnabled(false); // Setup stays: an office makes its first activity there
}

void QuickButtonForm::cboMaster_Click() {
    Trace("cboMaster_Click");
    EmptyRows();
    if (cboMaster->currentIndex() >= 0) ShowActivity();
}

void QuickButtonForm::ShowActivity() {
    Activity activity;
    try {
        activity =
            ReadActivity(Global.QuickButtonTemplates + PathFromQt(cboMaster->currentText()) + extension_);
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::ActivityError, Text::Path(std::string_view(failure.what()))), Icon::Warning);
        cboMaster->setCurrentIndex(-1);
        return;
    }
    lblSSHeading->setText(ToQt(Text(msg::ActivityContents)));
    constexpr MessageId labels[] = {msg::SavedSetting1, msg::SavedSetting2};
    for (std::size_t row = 0; row < templates_.size(); ++row) {
        templates_[row] = activity.Rows[row].Template;
        lblSS[row]->setText(ToQt(ShownKey(activity.Rows[row].Label, labels)));
        lblSST[row]->setText(ToQt(templates_[row].empty() ? Text(msg::None) : Text::Value(templates_[row])));
    }
    cmdOK->setEnabled(true);
}

void QuickButtonForm::MarkRow(std::size_t row, const RowResult& result) {
    const char* picture = !result.Worked ? "failure" : result.Attention ? "attention" : "success";
    const MessageId state = !result.Worked     ? msg::RowFailed
                            : result.Attention ? msg::RowDrifted
                                               : msg::RowWorked;
    imgSuccess[row]->setPixmap(Picture(picture).pixmap(20, 20));
    imgSuccess[row]->setAccessibleName(ToQt(Text(state)));
    if (result.Report) lblSST[row]->setText(ToQt(*result.Report));
    for (QWidget* cell : {imgSuccess[row], lblSST[row]}) cell->setToolTip(PlainTip(ToQt(result.Note)));
}

QuickButtonForm::RowResult QuickButtonForm::TellCannotOpen(const Text& templateName) {
    Tell(Words(msg::ErrorOpening, templateName) + msg::MakeSureFileExists, Icon::Warning);
    return {};
}

void QuickButtonForm::cmdOK_Click() {
    Trace("cmdOK_Click");
    const Text name = Text::Path(std::string_view(PathFromQt(cboMaster->currentText())));
    if (!AskYesNo(Words(msg::Perform, name) + msg::IsThatCorrect)) return;

    for (QWidget* control : {static_cast<QWidget*>(cmdOK), static_cast<QWidget*>(cmdCancel),
                             static_cast<QWidget*>(cmdSetup), static_cast<QWidget*>(cboMaster)}) {
        control->setEnabled(false);
    }
    lblProgress->clear();
    lblProgress->show();
    pgbProgress->reset();
    pgbProgress->show();
    ShowHeadings();

    std::int64_t errors = 0;
    bool anyWorked = false;
    for (std::size_t row = 0; row < templates_.size(); ++row) {
        if (templates_[row].empty()) continue;
        const RowResult result = RunRow(row, templates_[row]);
        if (IsOver()) return;
        MarkRow(row, result);
        if (!result.Worked) ++errors;
        anyWorked = anyWorked || result.Worked;
    }
    FinishRun(anyWorked);

    pgbProgress->hide();
    Global.TheOperator->Beep();
    const Text count = errors == 0   ? Text(msg::NoErrors)
                       : errors == 1 ? Text(msg::OneError)
                                     : Words(Text::Value(errors), msg::Errors);
    lblProgress->setText(ToQt(Words(msg::CompletedWith, count)));
    cmdCancel->setText(QString::fromStdString(CatalogueCaption(msg::Done)));
    cmdCancel->setEnabled(true);
    cmdCancel->setDefault(true);
    cmdCancel->setFocus();
}

void QuickButtonForm::cmdSetup_Click() {
    Trace("cmdSetup_Click");
    const QString chosen = cboMaster->currentText();
    Global.TemplateEditMode = true;
    auto& options = The<frmOptions>();
    options.TurnTo(PathFromQt(chosen) + extension_);
    options.Show(ShowMode::Modal);
    Global.TemplateEditMode = false;
    if (IsOver()) return;
    PopMaster();
    cboMaster->setCurrentIndex(chosen.isEmpty() ? -1 : cboMaster->findText(chosen));
    cboMaster_Click();
}

void QuickButtonForm::cmdCancel_Click() {
    Trace("cmdCancel_Click");
    Unload();
}

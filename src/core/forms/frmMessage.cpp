#include "core/forms/frmMessage.h"

#include "core/Catalogue.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "platform/Convert.h"
#include "platform/Look.h"

#include <algorithm>

namespace {

constexpr int LettersPerLine = 40; ///< or more: large letters are not to make a column of a question

} // namespace

void frmMessage::Form_Load() {
    TraceEvent("frmMessage:Form_Load");
    Global.MessageAnswer = false;
    const int line = LettersPerLine * lblMessage->fontMetrics().averageCharWidth();
    lblMessage->setMinimumWidth(std::max(lblMessage->minimumWidth(), line));
}

void frmMessage::Fill(const Question& question) {
    lblMessage->setText(ToQt(question.Message));
    if (question.Title) setWindowTitle(ToQt(Text(*question.Title)));
    const bool isNotice = !question.YesCaption;
    if (question.YesCaption) cmdYes->setText(QString::fromStdString(CatalogueCaption(*question.YesCaption)));
    cmdNo->setText(QString::fromStdString(CatalogueCaption(question.NoCaption)));
    okOnNo_ = question.NoCaption == msg::Ok;
    cmdYes->setVisible(!isNotice);
    lblHelpURL->setText(ToQt(std::string_view(question.HelpTopic)));
    cmdHelp->setVisible(!question.HelpTopic.empty());
    imgIcon->setPixmap(Picture(isNotice ? "box-information" : "box-question").pixmap(36, 36));
    (isNotice ? cmdNo : cmdYes)->setDefault(true);
    adjustSize();
}

std::string frmMessage::HelpTopic() const {
    const QString topic = lblHelpURL->text();
    return topic.isEmpty() ? Form::HelpTopic() : topic.toStdString();
}

void frmMessage::cmdYes_Click() {
    TraceEvent("frmMessage:cmdYes_Click");
    Global.MessageAnswer = true;
    Unload();
}

void frmMessage::cmdNo_Click() {
    TraceEvent("frmMessage:cmdNo_Click");
    // The one button of a notice is here, and it is no refusal.
    Global.MessageAnswer = okOnNo_;
    Unload();
}

void frmMessage::reject() {
    cmdNo->click();
}

#include "core/forms/frmMessage.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "platform/Convert.h"
#include "platform/Look.h"

#include <QStyle>

void frmMessage::Form_Load() {
    TraceEvent("frmMessage:Form_Load");
    setWindowTitle(ToQt(Text(msg::Title)));
    Global.MessageAnswer = false;
    imgIcon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxQuestion).pixmap(32, 32));
}

void frmMessage::Fill(const Question& question) {
    lblMessage->setText(ToQt(question.Message));
    cmdYes->setText(ToQt(question.YesCaption));
    cmdNo->setText(ToQt(question.NoCaption));
    cmdYes->setVisible(!question.YesCaption.IsEmpty());
    lblHelpURL->setText(ToQt(std::string_view(question.HelpTopic)));
    cmdHelp->setVisible(!question.HelpTopic.empty());
    (question.YesCaption.IsEmpty() ? cmdNo : cmdYes)->setDefault(true);
    adjustSize();
}

void frmMessage::cmdYes_Click() {
    TraceEvent("frmMessage:cmdYes_Click");
    Global.MessageAnswer = true;
    Unload();
}

void frmMessage::cmdNo_Click() {
    TraceEvent("frmMessage:cmdNo_Click");
    // A notice of one button has it here.
    Global.MessageAnswer = cmdNo->text() == ToQt(Text(msg::Ok));
    Unload();
}

void frmMessage::reject() { cmdNo->click(); }

#include "views/forms/frmViewSign.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "platform/Convert.h"
#include "platform/Look.h"
#include "sync/Images.h"
#include "views/Signatures.h"

#include <QShortcut>

#include <array>

namespace {

constexpr std::array Fields{"H_ORDCODE", "H_CUSTCODE", "H_BILLNAME", "H_CUSTFONE", "H_ORDDATE"};

} // namespace

void frmViewSign::Form_Load() {
    TraceEvent("frmViewSign:Form_Load");
    setWindowIcon(Picture("Orders48x48-16M.ico"));
    const std::pair<Qt::Key, QPushButton*> keys[] = {{Qt::Key_Home, cmdFirst},
                                                     {Qt::Key_PageUp, cmdPrevious},
                                                     {Qt::Key_PageDown, cmdNext},
                                                     {Qt::Key_End, cmdLast}};
    for (const auto& [key, button] : keys)
        connect(new QShortcut(key, this), &QShortcut::activated, button, &QPushButton::click);
    // A session can be over before the main screen has seen the manager's window, and names the images at its
    // end.
    RenameImages(Global.ImagesPath);
    try {
        MakeSignTable();
        headers_.Open(SignTablePath(), Fields[0], 1);
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::FileError, Text::Path(std::string_view(failure.what()))), Icon::Stop);
    }
    DisplayFields();
    DisplayData();
    (cmdNext->isEnabled() ? cmdNext : cmdOK)->setFocus();
}

void frmViewSign::DisplayFields() {
    TraceEvent("frmViewSign:DisplayFields");
    QLabel* const labels[] = {lblOrHdr_1, lblOrHdr_2, lblOrHdr_3, lblOrHdr_4, lblOrHdr_5};
    for (QLabel* label : labels) label->buddy()->setAccessibleName(label->text());
}

void frmViewSign::DisplayData() {
    TraceEvent("frmViewSign:DisplayData");
    const bool any = headers_.IsOpen() && headers_.RecordNumber() > 0;
    QLineEdit* const boxes[] = {txtOrHdr_1, txtOrHdr_2, txtOrHdr_3, txtOrHdr_4, txtOrHdr_5};
    for (std::size_t k = 0; k < Fields.size(); ++k) {
        boxes[k]->setText(any ? ToQt(std::string_view(headers_.Trimmed(Fields[k]))) : QString());
        boxes[k]->setCursorPosition(0);
    }
    const std::string path = any ? SignatureOf(headers_.Trimmed(Fields[0])) : std::string();
    const QImage picture = path.empty() ? QImage() : ReadBitmap(path);
    if (!picture.isNull())
        imgSign->Show(picture);
    else
        imgSign->Show(path.empty() ? QString() : ToQt(Text(msg::SignBroken)));
    ShowCount();
}

void frmViewSign::ShowCount() {
    const bool open = headers_.IsOpen();
    const std::int32_t record = open ? headers_.RecordNumber() : 0;
    const std::int32_t count = open ? headers_.RecordCount() : 0;
    lblCount->setText(
        ToQt(count > 0 ? Words(Text::Value(std::int64_t{record}), msg::Of, Text::Value(std::int64_t{count}))
                       : Text(msg::NoRecords)));
    const QWidget* at = focusWidget();
    for (QPushButton* button : {cmdFirst, cmdPrevious}) button->setEnabled(record > 1);
    for (QPushButton* button : {cmdNext, cmdLast}) button->setEnabled(record < count);
    if (at && !at->isEnabled())
        (cmdNext->isEnabled() ? cmdNext : cmdPrevious->isEnabled() ? cmdPrevious : cmdOK)->setFocus();
}

void frmViewSign::Form_GotFocus() {
    ShowCount();
}

void frmViewSign::Go(const char* handler, std::int32_t target) {
    TraceEvent(std::string("frmViewSign:") + handler);
    try {
        headers_.Go(target);
    } catch (const RunTimeFailure& failure) {
        return Tell(Lines(msg::FileError, Text::Path(std::string_view(failure.what()))), Icon::Stop);
    }
    DisplayData();
}

void frmViewSign::cmdFirst_Click() {
    Go("cmdFirst_Click", DBFEdit::First);
}

void frmViewSign::cmdPrevious_Click() {
    Go("cmdPrevious_Click", DBFEdit::Previous);
}

void frmViewSign::cmdNext_Click() {
    Go("cmdNext_Click", DBFEdit::Next);
}

void frmViewSign::cmdLast_Click() {
    Go("cmdLast_Click", DBFEdit::Last);
}

void frmViewSign::cmdOK_Click() {
    TraceEvent("frmViewSign:cmdOK_Click");
    Unload();
}

void frmViewSign::Form_Unload() {
    TraceEvent("frmViewSign:Form_Unload");
    Global.View[ViewOrHdr] = false;
    headers_.Close();
    RemoveSignTable();
}

#include "views/forms/frmViewSign.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "platform/Convert.h"
#include "platform/Look.h"
#include "sync/Images.h"
#include "views/Signatures.h"

#include <array>

namespace {

constexpr std::array Fields{"H_ORDCODE", "H_CUSTCODE", "H_BILLNAME", "H_CUSTFONE", "H_ORDDATE"};

} // namespace

frmViewSign::frmViewSign() {
    setupUi(this);
    moves_ = new RecordMoves(*this, [this](std::int32_t target) { Move(target); });
    moves_->UseKeys(Qt::Key_Home, Qt::Key_End);
}

void frmViewSign::Form_Load() {
    Trace("Form_Load");
    setWindowIcon(Picture("Orders48x48-16M.ico"));
    // A session can be over before the main screen has seen the manager's window, and names the images at its
    // end.
    RenameImages(Global.ImagesPath);
    Try([this] {
        MakeSignTable();
        headers_.Open(SignTablePath(), Fields[0], 1);
    });
    DisplayFields();
    DisplayData();
    (cmdNext->isEnabled() ? cmdNext : cmdOK)->setFocus();
}

void frmViewSign::DisplayFields() {
    Trace("DisplayFields");
    QLabel* const labels[] = {lblOrHdr_1, lblOrHdr_2, lblOrHdr_3, lblOrHdr_4, lblOrHdr_5};
    for (QLabel* label : labels) label->buddy()->setAccessibleName(label->text());
}

void frmViewSign::DisplayData() {
    Trace("DisplayData");
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
    moves_->Show(record, count, {}, {cmdOK});
}

void frmViewSign::Form_GotFocus() {
    ShowCount();
}

void frmViewSign::Move(std::int32_t target) {
    if (Try([&] { headers_.Go(target); })) DisplayData();
}

void frmViewSign::cmdOK_Click() {
    Trace("cmdOK_Click");
    Unload();
}

void frmViewSign::Form_Unload() {
    Trace("Form_Unload");
    Global.View[ViewOrHdr] = false;
    headers_.Close();
    RemoveSignTable();
}

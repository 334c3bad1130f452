#include "maintenance/forms/frmUpdateMsg.h"

#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/SafeFile.h"
#include "maintenance/RtfText.h"
#include "platform/Convert.h"

#include <QTextCursor>

namespace {

constexpr std::uint64_t LongestNotes = std::uint64_t{4} << 20; // bytes

} // namespace

void frmUpdateMsg::Form_Load() {
    TraceEvent("frmUpdateMsg:Form_Load");
    Global.UpdateCancelled = false;
    try {
        QTextCursor cursor(RTB1->document());
        for (const RtfRun& run : ReadRtf(ReadWholeFile(Global.AppPath + "UpdateReadMe.rtf", LongestNotes))) {
            QTextCharFormat format;
            format.setFontWeight(run.Bold ? QFont::Bold : QFont::Normal);
            format.setFontItalic(run.Italic);
            cursor.insertText(QString::fromStdString(run.Utf8), format);
        }
        RTB1->moveCursor(QTextCursor::Start);
    } catch (const RunTimeFailure& failure) {
        RTB1->setPlainText(
            ToQt(Lines(msg::UpdateReadMeMissing, Text::Path(std::string_view(failure.what())))));
    }
    cmdOK->setFocus();
}

void frmUpdateMsg::cmdOK_Click() {
    TraceEvent("frmUpdateMsg:cmdOK_Click");
    Unload();
}

void frmUpdateMsg::cmdCancel_Click() {
    TraceEvent("frmUpdateMsg:cmdCancel_Click");
    Global.UpdateCancelled = true;
    Unload();
}

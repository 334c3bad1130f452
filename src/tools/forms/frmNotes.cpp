#include "tools/forms/frmNotes.h"

#include "core/Catalogue.h"
#include "core/CodePage.h"
#include "core/Dates.h"
#include "core/Failure.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/TextCompare.h"
#include "platform/Convert.h"
#include "platform/Look.h"
#include "tools/forms/Support.h"
#include "views/LinesReport.h"
#include "views/forms/PrintReport.h"

#include <QApplication>
#include <QCalendarWidget>
#include <QKeyEvent>
#include <QMenu>
#include <QScreen>

#include <algorithm>

namespace {

/// The note's texts end their lines by two characters.
QString Shown(const std::string& text) {
    QString shown = ToQt(std::string_view(text));
    shown.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return shown;
}

std::string Typed(const QPlainTextEdit& text) {
    QString typed = text.document()->toRawText(); // toPlainText would make blanks of no-break blanks
    for (const QChar end : {QChar(QChar::ParagraphSeparator), QChar(QChar::LineSeparator)})
        typed.replace(end, QLatin1String("\r\n"));
    return FromQt(typed);
}

bool IsKept(const QString& text) {
    return ToQt(std::string_view(FromQt(text))) == text;
}

Text Reason(const RunTimeFailure& failure) {
    return Text::Path(std::string_view(failure.what()));
}

} // namespace

frmNotes::frmNotes() : MonthView1(new QCalendarWidget(this)), mnuPop(new QMenu(this)) {
    setupUi(this);
    MonthView1->setObjectName(QStringLiteral("MonthView1"));
    MonthView1->setProperty("TipTag", QStringLiteral("59007"));
    MonthView1->setWindowFlag(Qt::Popup);
    MonthView1->setGridVisible(true);
    MonthView1->hide();
    mnuPop->setObjectName(QStringLiteral("mnuPop"));
    mnuPop->setProperty("Tag", QStringLiteral("59007"));
    mnuPop->addActions({mnuSelect, mnuClear});
    txtResolved->installEventFilter(this);
    connect(txtResolved, &QWidget::customContextMenuRequested, mnuPop,
            [this](const QPoint& at) { mnuPop->popup(txtResolved->mapToGlobal(at)); });
}

void frmNotes::Form_Load() {
    TraceEvent("frmNotes:Form_Load");
    setWindowIcon(Picture("tool-notes"));
    QPalette tone = lblWarning->palette();
    tone.setColor(QPalette::WindowText, WarningTone());
    lblWarning->setPalette(tone);
    lblWarning->setMinimumHeight(2 * lblWarning->fontMetrics().lineSpacing());
    for (const MessageId process : NoteProcesses()) cboProcess->addItem(ToQt(Text(process)));
    try {
        note_ = Global.NewNote ? NewNote(Global.CurrentNote, FromQt(QApplication::applicationVersion()))
                               : ReadNote(Global.CurrentNote);
    } catch (const RunTimeFailure& failure) {
        Tell(Lines(msg::NotesUnreadable, Reason(failure)), Icon::Stop);
        return Unload();
    }
    Fill();
}

void frmNotes::Fill() {
    lblRecNo->setText(QString::number(note_.Number));
    lblDate->setText(ToQt(NoteMoment(note_)));
    lblVersion->setText(ToQt(std::string_view(note_.Version)));
    txtPerson->setText(ToQt(std::string_view(note_.Person)));
    txtResolved->setText(ToQt(std::string_view(note_.Resolved)));
    txtIssue->setPlainText(Shown(note_.Issue));
    txtNote->setPlainText(Shown(note_.Resolution));
    shownIssue_ = Typed(*txtIssue);
    shownResolution_ = Typed(*txtNote);
    const std::vector<MessageId>& processes = NoteProcesses();
    const auto process = std::find_if(processes.begin(), processes.end(),
                                      [this](MessageId each) { return IsKey(note_.Process, each); });
    if (process != processes.end()) note_.Process = KeyOf(*process); // what is saved, changed or not
    // A process of another release stays with its note.
    if (process == processes.end() && !note_.Process.empty())
        cboProcess->addItem(ToQt(std::string_view(note_.Process)));
    const auto row = static_cast<int>(process - processes.begin());
    cboProcess->setCurrentIndex(row < cboProcess->count() ? row : -1);
    ShowWarning();
}

Note frmNotes::FromScreen() const {
    Note note = note_;
    // What nobody has touched stays as it is, whichever characters end its lines.
    if (const std::string issue = Typed(*txtIssue); issue != shownIssue_) note.Issue = issue;
    note.Person = FromQt(txtPerson->text());
    note.Resolved = FromQt(txtResolved->text());
    const auto process = static_cast<std::size_t>(cboProcess->currentIndex()); // none is behind them all
    if (process < NoteProcesses().size()) note.Process = KeyOf(NoteProcesses()[process]);
    if (const std::string resolution = Typed(*txtNote); resolution != shownResolution_)
        note.Resolution = resolution;
    return note;
}

/// What becomes of the texts when they are saved is said while they are typed.
void frmNotes::ShowWarning() {
    Text warning;
    const auto add = [&](bool applies, MessageId text) {
        if (applies) warning = warning.IsEmpty() ? Text(text) : Words(warning, text);
    };
    add(Typed(*txtIssue).size() > IssueLength, msg::IssueTooLong);
    add(Typed(*txtNote).size() > ResolutionLength, msg::ResolutionTooLong);
    const bool areKept =
        IsKept(txtIssue->toPlainText()) && IsKept(txtPerson->text()) && IsKept(txtNote->toPlainText());
    add(!areKept, msg::CharactersNotKept);
    lblWarning->setText(ToQt(warning));
}

void frmNotes::txtIssue_Change() {
    ShowWarning();
}

void frmNotes::txtNote_Change() {
    ShowWarning();
}

void frmNotes::txtPerson_Change() {
    ShowWarning();
}

// ---- the date on which it was resolved ----

bool frmNotes::eventFilter(QObject* watched, QEvent* event) {
    if (watched == txtResolved && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Delete || key == Qt::Key_Backspace) {
            mnuClear->trigger();
            return true;
        }
    }
    return Form::eventFilter(watched, event);
}

void frmNotes::txtResolved_Click() {
    TraceEvent("frmNotes:txtResolved_Click");
    const DateTime date = CDate(FromQt(txtResolved->text())).value_or(Today());
    MonthView1->setSelectedDate(QDate(date.Year, date.Month, date.Day));
    // Below the line, or above it where the screen ends.
    const QSize size = MonthView1->sizeHint();
    const QRect screen = txtResolved->screen()->availableGeometry();
    QPoint at = txtResolved->mapToGlobal(QPoint(0, txtResolved->height()));
    if (at.y() + size.height() > screen.bottom()) at = txtResolved->mapToGlobal(QPoint(0, -size.height()));
    MonthView1->move(std::max(screen.left(), std::min(at.x(), screen.right() - size.width())), at.y());
    MonthView1->show();
    MonthView1->setFocus();
}

void frmNotes::MonthView1_DateClick() {
    TraceEvent("frmNotes:MonthView1_DateClick");
    const QDate date = MonthView1->selectedDate();
    const std::string text = ShortDate({date.year(), date.month(), date.day(), 0, 0, 0});
    txtResolved->setText(ToQt(std::string_view(text)));
    MonthView1->hide();
}

void frmNotes::mnuSelect_Click() {
    TraceEvent("frmNotes:mnuSelect_Click");
    txtResolved_Click();
}

void frmNotes::mnuClear_Click() {
    TraceEvent("frmNotes:mnuClear_Click");
    txtResolved->clear();
}

// ---- what becomes of the note ----

void frmNotes::cmdOK_Click() {
    TraceEvent("frmNotes:cmdOK_Click");
    if (cboProcess->currentIndex() < 0) {
        Tell(msg::SelectProcess, Icon::Warning);
        cboProcess->setFocus();
        return;
    }
    try {
        WriteNote(FromScreen());
    } catch (const RunTimeFailure& failure) {
        return Tell(Lines(msg::NoteNotSaved, Reason(failure)), Icon::Stop);
    }
    Unload();
}

void frmNotes::cmdCancel_Click() {
    TraceEvent("frmNotes:cmdCancel_Click");
    Unload();
}

void frmNotes::cmdPrint_Click() {
    TraceEvent("frmNotes:cmdPrint_Click");
    try {
        LinesReport report(msg::NotesTitle, PrintedNote(FromScreen(), ThisMachine()));
        PrintReport(*this, report);
    } catch (const RunTimeFailure& failure) { // a label that leaves no room for its value
        Tell(Lines(msg::PrinterFailed, Reason(failure)), Icon::Stop);
    }
}

void frmNotes::cmdEMail_Click() {
    TraceEvent("frmNotes:cmdEMail_Click");
    OfferSupportMail({msg::NoteMailQuestion,
                      Text(msg::NoteMailSubject) + Text::Value(std::int64_t{note_.Number}),
                      [this] { return NoteMail(FromScreen(), ThisMachine()); }, msg::MailCreated});
}

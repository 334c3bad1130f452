#include "store/forms/RecordMoves.h"

#include "core/Messages.h"
#include "platform/Convert.h"
#include "store/DBFEdit.h"

#include <QLabel>
#include <QPushButton>
#include <QShortcut>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

void UseKey(QPushButton& button, const QKeySequence& key) {
    QObject::connect(new QShortcut(key, button.window()), &QShortcut::activated, &button,
                     &QPushButton::click);
}

} // namespace

RecordMoves::RecordMoves(Form& form, std::function<void(std::int32_t)> move)
    : FormPart(form),
      move_(std::move(move)),
      cmdFirst(Button("cmdFirst")),
      cmdPrevious(Button("cmdPrevious")),
      cmdNext(Button("cmdNext")),
      cmdLast(Button("cmdLast")),
      lblCount(form.findChild<QLabel*>(QStringLiteral("lblCount"))) {
    UseKey(*cmdPrevious, Qt::Key_PageUp);
    UseKey(*cmdNext, Qt::Key_PageDown);
}

QPushButton* RecordMoves::Button(const char* name) const {
    return Owner().findChild<QPushButton*>(QLatin1String(name));
}

void RecordMoves::UseKeys(const QKeySequence& first, const QKeySequence& last) {
    UseKey(*cmdFirst, first);
    UseKey(*cmdLast, last);
}

void RecordMoves::Show(std::int32_t number, std::int32_t count, std::initializer_list<QWidget*> record,
                       std::initializer_list<QWidget*> harmless) {
    lblCount->setText(
        ToQt(count > 0 ? Words(Text::Value(std::int64_t{number}), msg::Of, Text::Value(std::int64_t{count}))
                       : Text(msg::NoRecords)));
    const QWidget* at = Owner().focusWidget();
    for (QWidget* control : record) control->setEnabled(count > 0);
    for (QPushButton* button : {cmdFirst, cmdPrevious}) button->setEnabled(number > 1);
    for (QPushButton* button : {cmdNext, cmdLast}) button->setEnabled(number < count);
    if (!at || at->isEnabled()) return;
    // The same key once more, at either end or behind the last deletion, is to do no harm.
    std::vector<QWidget*> places{cmdPrevious, cmdNext};
    places.insert(places.end(), harmless);
    (*std::find_if(places.begin(), places.end() - 1, [](const QWidget* each) {
        return each->isEnabled();
    }))->setFocus();
}

void RecordMoves::cmdFirst_Click() {
    Owner().Trace("cmdFirst_Click");
    move_(DBFEdit::First);
}

void RecordMoves::cmdPrevious_Click() {
    Owner().Trace("cmdPrevious_Click");
    move_(DBFEdit::Previous);
}

void RecordMoves::cmdNext_Click() {
    Owner().Trace("cmdNext_Click");
    move_(DBFEdit::Next);
}

void RecordMoves::cmdLast_Click() {
    Owner().Trace("cmdLast_Click");
    move_(DBFEdit::Last);
}

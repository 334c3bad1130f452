#pragma once

#include "platform/Form.h"

#include <cstdint>
#include <functional>
#include <initializer_list>

class QKeySequence;
class QLabel;
class QPushButton;

/// What forms that show a table a record at a time have in common: the buttons cmdFirst, cmdPrevious, cmdNext
/// and cmdLast with their keys, and the count in lblCount. Made after setupUi; it belongs to the form.
class RecordMoves final : public FormPart {
    Q_OBJECT

public:
    /// `move` takes a target of DBFEdit.
    RecordMoves(Form& form, std::function<void(std::int32_t)> move);

    /// The keys of cmdFirst and cmdLast. Those of cmdPrevious and cmdNext are the page keys.
    void UseKeys(const QKeySequence& first, const QKeySequence& last);

    /// Shows which record of how many it is, and lets those buttons be pressed that lead to another. The
    /// controls of `record` are enabled while there is one. A focus that would be lost goes to the first of
    /// cmdPrevious, cmdNext and `harmless` that can have it.
    void Show(std::int32_t number, std::int32_t count, std::initializer_list<QWidget*> record,
              std::initializer_list<QWidget*> harmless);

private slots:
    void cmdFirst_Click();
    void cmdPrevious_Click();
    void cmdNext_Click();
    void cmdLast_Click();

private:
    QPushButton* Button(const char* name) const;

    std::function<void(std::int32_t)> move_;
    QPushButton *cmdFirst, *cmdPrevious, *cmdNext, *cmdLast;
    QLabel* lblCount;
};

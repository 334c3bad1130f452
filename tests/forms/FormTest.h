#pragma once

#include "core/Text.h"
#include "forms/ScriptedOperator.h"
#include "platform/Form.h"
#include "support/EngineTest.h"

#include <QString>
#include <QWidget>

#include <string_view>

/// Words of a message, and of a control.
inline Text T(std::string_view words) {
    return Text::Path(words);
}
inline QString Q(const char* text) {
    return QString::fromUtf8(text);
}

/// A test of a real form, offscreen: acts on it by object name as a person would, answers through
/// the scripted operator, and looks at files and tables.
class FormTest : public EngineTest {
protected:
    FormTest();
    ~FormTest() override;

    /// An application directory laid out from the installed set.
    void GivenOffice();

    /// Writes a table's rows into the office: the first line names the fields, parted by blanks and
    /// bars as in "H_ORDCODE|H_BILLNAME"; then a record a line.
    void GivenRows(const std::string& table, const std::vector<std::string>& lines);

    /// Records of a table of the office, as the header counts them.
    static int RecordCount(const std::string& table);

    /// A trimmed cell of a table of the office, code page 1252.
    static std::string Cell(const std::string& table, int record, const std::string& field);

    template <class F>
    F& Open() {
        F& form = The<F>();
        form.Show();
        Settle();
        return form;
    }

    /// Handles all events that are there.
    static void Settle();

    static QWidget& Control(FormBehaviour& form, const char* name);
    static void Click(FormBehaviour& form, const char* name);
    static void ClickMenu(FormBehaviour& form, const char* name);
    static void Choose(FormBehaviour& form, const char* name, const QString& entry);
    /// Selects rows of a list, and no others.
    static void Select(FormBehaviour& form, const char* list, const QStringList& rows);
    static void DoubleClick(FormBehaviour& form, const char* list, const QString& row);
    static QStringList Rows(FormBehaviour& form, const char* list);
    /// Types into a line, or into the line of an editable list, in place of what stands there.
    static void Type(FormBehaviour& form, const char* name, const QString& text);
    /// A key to a control, as from the keyboard.
    static void Press(FormBehaviour& form, const char* name, Qt::Key key);
    static QString TextOf(FormBehaviour& form, const char* name);
    static bool Enabled(FormBehaviour& form, const char* name);
    static bool Visible(FormBehaviour& form, const char* name);

    /// Rows and columns of a grid as it shows them.
    static std::vector<QStringList> GridRows(FormBehaviour& form, const char* name);

    ScriptedOperator Operator_;
};

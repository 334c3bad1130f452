#include "ScreensByKeys.h"

#include "FilledTables.h"

#include <QStringList>

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

namespace {

const QString Main = QStringLiteral("frmMain1");
const QString Grid = QStringLiteral("frmViewGrid");
const QString RecordViewer = QStringLiteral("frmViewData");

QString Q(const char* text) {
    return QString::fromUtf8(text);
}

void Require(bool holds, const QString& what) {
    if (!holds) throw DriverFailure(what.toStdString());
}

/// A person before the keyboard, who wants to see every screen.
class Keyboard {
public:
    Keyboard(DriverClient& program, std::int32_t records, QString pictures)
        : program_(program),
          records_(records),
          pictures_(std::move(pictures)) {}

    int Screens() const { return screens_; }
    DriverClient& Program() { return program_; }
    std::int32_t AllRecords() const { return records_; }

    /// Keys parted by blanks.
    void Press(const char* keys) {
        for (const QString& key : Q(keys).split(QLatin1Char(' '))) program_.Key(key);
    }

    /// Presses keys that open a screen.
    void Open(const char* keys, const QString& form, const char* picture) {
        Press(keys);
        program_.WaitForm(form);
        Picture(form, picture);
    }

    void Picture(const QString& form, const char* name) {
        ++screens_;
        if (!pictures_.isEmpty()) program_.Grab(form, pictures_ + Q(name) + QStringLiteral(".png"));
    }

    void Leave(const QString& form) {
        program_.Key(Q("Escape"));
        program_.WaitGone(form);
    }

    /// The tab key until a control has the focus.
    void TabTo(const QString& form, const char* control) {
        for (int presses = 0; !program_.HasFocus(form, Q(control)); ++presses) {
            Require(presses < 200,
                    QStringLiteral("the tab key does not lead to %1.%2").arg(form, Q(control)));
            program_.Key(Q("Tab"));
        }
    }

    void RequireText(const QString& form, const char* control, const QString& text) {
        const QString found = program_.Text(form, Q(control));
        Require(found == text,
                QStringLiteral("%1.%2 reads '%3' and not '%4'").arg(form, Q(control), found, text));
    }

    /// What a screen says of the record that it shows.
    QString CountOf(std::int32_t record, std::int32_t of) const {
        return of == 0 ? Q("No records to display!") : QStringLiteral("%1 of %2").arg(record).arg(of);
    }

private:
    DriverClient& program_;
    std::int32_t records_;
    QString pictures_;
    int screens_ = 0;
};

/// A table of the View menu.
struct View {
    const char* Keys;
    const char* Name;
    std::int32_t Most = std::numeric_limits<std::int32_t>::max(); ///< records that its table has
};

constexpr View Views[] = {
    {"Alt+V S C", "company", 1},     {"Alt+V S L", "links", MostHandhelds},
    {"Alt+V S P", "payments"},       {"Alt+V S R", "printer", 1},
    {"Alt+V S T", "salestax"},       {"Alt+V S S", "setup", 1},
    {"Alt+V M C", "customers"},      {"Alt+V M I", "items"},
    {"Alt+V O H", "headers"},        {"Alt+V O L", "lines"},
    {"Alt+V A H", "headeraudit"},    {"Alt+V A L", "lineaudit"},
    {"Alt+V A T", "handheldtotals"}, {"Alt+V B", "barcodes"},
    {"Alt+V R", "spooler"},
};

/// The grid of a table from end to end, and the same record by record.
void SeeTable(Keyboard& keys, const View& view) {
    DriverClient& program = keys.Program();
    const std::int32_t count = std::min(keys.AllRecords(), view.Most);
    keys.Open(view.Keys, Grid, (std::string("grid-") + view.Name).c_str());
    keys.Press("End");
    keys.Press("Alt+V");
    program.WaitForm(RecordViewer);
    keys.Picture(RecordViewer, (std::string("record-") + view.Name).c_str());
    keys.RequireText(RecordViewer, "lblCount", keys.CountOf(count, count));
    keys.Press("Home");
    keys.RequireText(RecordViewer, "lblCount", keys.CountOf(1, count));
    keys.Leave(RecordViewer);
}

/// Over the grid of an entry of the Edit menu to its editor.
void OpenEditor(Keyboard& keys, const char* menu, const QString& editor, const char* picture) {
    keys.Press(menu);
    keys.Program().WaitForm(Grid);
    keys.Open("Alt+E", editor, picture);
}

/// An editor of many records: its key field is reached by a letter.
struct Editor {
    const char* Menu;
    const char* Form;
    const char* Key;   ///< that leads to the field that must not be empty
    const char* Field; ///< its control
    std::int32_t Most = std::numeric_limits<std::int32_t>::max(); ///< records that its table has
};

constexpr Editor Editors[] = {
    {"Alt+E M C", "frmEditCust", "Alt+U", "txtField_2"},
    {"Alt+E M I", "frmEditItem", "Alt+T", "txtField_2"},
    {"Alt+E S T", "frmEditSTax", "Alt+X", "txtField_1"},
    {"Alt+E S L", "frmChgLink", "Alt+Y", "txtHotSync", MostHandhelds},
    {"Alt+E S P", "frmPay", "Alt+T", "txtPayCDesc"},
};

/// From end to end, a record more, to it and away from it, and a record less.
void Edit(Keyboard& keys, const Editor& editor) {
    DriverClient& program = keys.Program();
    const QString form = Q(editor.Form);
    const std::int32_t count = std::min(keys.AllRecords(), editor.Most);
    const bool isPay = form == Q("frmPay");
    OpenEditor(keys, editor.Menu, form, editor.Form);
    keys.RequireText(form, "lblCount", keys.CountOf(1, count));
    if (count > 1) {
        keys.Press("Alt+L");
        keys.RequireText(form, "lblCount", keys.CountOf(count, count));
    }

    keys.Press("Alt+A");
    keys.RequireText(form, "lblCount", keys.CountOf(count + 1, count + 1));
    if (isPay) keys.Press("Alt+R"); // a card has a description
    keys.Press(editor.Key);
    program.Type(Q("KEYED"));
    if (isPay) keys.Press("Alt+U");
    if (count > 0) {
        keys.Press("Alt+F");
        keys.RequireText(form, "lblCount", keys.CountOf(1, count + 1));
        keys.Press("Alt+L");
    }
    keys.RequireText(form, editor.Field, Q("KEYED"));
    keys.Picture(form, (std::string(editor.Form) + "-added").c_str());
    program.ExpectContaining(Q("elete "), Q("Yes"));
    keys.Press("Alt+D");
    keys.RequireText(form, "lblCount", keys.CountOf(count, count));
    keys.Leave(form);
}

/// An editor of one record.
struct Settings {
    const char* Menu;
    const char* Form;
};

constexpr Settings AllSettings[] = {
    {"Alt+E S C", "frmCompany"}, {"Alt+E S R", "frmPrinter"}, {"Alt+E S S", "frmChSetup"}};

/// To the table and back, and out by Enter.
void EditSettings(Keyboard& keys, const Settings& settings) {
    DriverClient& program = keys.Program();
    const QString form = Q(settings.Form);
    OpenEditor(keys, settings.Menu, form, settings.Form);
    keys.Press("Alt+V");
    program.WaitForm(Grid);
    keys.Press("Alt+E");
    program.WaitForm(form);
    keys.Press("Return");
    program.WaitGone(form);
}

void RenameCompany(Keyboard& keys) {
    DriverClient& program = keys.Program();
    const QString form = Q("frmCompany");
    OpenEditor(keys, "Alt+E S C", form, "frmCompany-again");
    const QString before = program.Text(form, Q("txtField_1"));
    for (const QString& name : {Q("Keyed & Sons"), before}) {
        keys.Press("Alt+N Ctrl+A Delete");
        program.Type(name);
        keys.Press("Return");
        program.WaitGone(form);
        OpenEditor(keys, "Alt+E S C", form, "frmCompany-named");
        keys.RequireText(form, "txtField_1", name);
    }
    keys.Leave(form);
}

/// A report before it is printed.
struct Printed {
    const char* Menu;
    const char* Name;
};

constexpr Printed Reports[] = {{"Alt+V T", "totals"},
                               {"Alt+V A H", "headeraudit"},
                               {"Alt+V A L", "lineaudit"},
                               {"Alt+V A T", "handheldtotals"}};

void Preview(Keyboard& keys, const Printed& report) {
    const QString preview = Q("frmPreview");
    keys.Press(report.Menu);
    keys.Program().WaitForm(Grid);
    keys.Open("Alt+W", preview, (std::string("preview-") + report.Name).c_str());
    keys.Press("Alt+W Alt+L");
    keys.Picture(preview, (std::string("preview-end-") + report.Name).c_str());
    keys.Leave(preview);
    keys.Leave(Grid);
}

/// The topics of the Configurator, whose buttons have no letters.
void Configure(Keyboard& keys) {
    DriverClient& program = keys.Program();
    const QString config = Q("frmConfig");
    keys.Open("Alt+T G", config, "frmConfig");
    for (const auto& [button, form] : {std::pair{"cmdCust1", "frmConfigCust"},
                                       {"cmdItems1", "frmConfigItem"},
                                       {"lblSTax", "frmConfigSTax"},
                                       {"lblPrinter", "frmConfigPrint"}}) {
        keys.TabTo(config, button);
        keys.Open("Space", Q(form), form);
        keys.Leave(Q(form));
        program.WaitForm(config);
    }
    keys.Leave(config);
}

/// Everything is marked to go, and stays.
void DoNotClear(Keyboard& keys) {
    DriverClient& program = keys.Program();
    const QString clear = Q("frmTableSelectPC");
    keys.Open("Alt+T C", clear, "frmTableSelectPC");
    keys.Press("Alt+S");
    keys.Picture(clear, "frmTableSelectPC-all");
    program.ExpectContaining(Q("This action will delete all data from the selected tables on the PC."),
                             Q("No"));
    keys.Press("Return");
    keys.Leave(clear);
}

} // namespace

int ScreensByKeys::Run() {
    Keyboard keys(Program, Records, Pictures);
    for (const View& view : Views) SeeTable(keys, view);
    for (const Editor& editor : Editors) Edit(keys, editor);
    for (const Settings& settings : AllSettings) EditSettings(keys, settings);
    RenameCompany(keys);
    for (const Printed& report : Reports) {
        // The headings of the totals are rows, and none that is printed.
        if (Records > 0 || &report != &Reports[0]) Preview(keys, report);
    }
    Configure(keys);
    DoNotClear(keys);
    keys.Open("Alt+V O S", Q("frmViewSign"), "frmViewSign");
    keys.Leave(Q("frmViewSign"));
    keys.Open("Alt+T R", Grid, "restore");
    keys.Leave(Grid);
    return keys.Screens();
}

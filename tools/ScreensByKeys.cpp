#include "ScreensByKeys.h"

#include <QStringList>

#include <functional>

namespace {

const QString Main = QStringLiteral("frmMain1");
const QString Grid = QStringLiteral("frmViewGrid");
const QString Records = QStringLiteral("frmViewData");

QString Q(const char* text) {
    return QString::fromUtf8(text);
}

void Require(bool holds, const QString& what) {
    if (!holds) throw DriverFailure(what.toStdString());
}

/// A person before the keyboard, who wants to see every screen.
class Keyboard {
public:
    Keyboard(DriverClient& program, std::int32_t records, const QString& pictures)
        : program_(program),
          records_(records),
          pictures_(pictures) {}

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
    bool One = false; ///< never has more than one record
};

constexpr View Views[] = {
    {"Alt+V S C", "company", true},  {"Alt+V S L", "links"},       {"Alt+V S P", "payments"},
    {"Alt+V S R", "printer", true},  {"Alt+V S T", "salestax"},    {"Alt+V S S", "setup", true},
    {"Alt+V M C", "customers"},      {"Alt+V M I", "items"},       {"Alt+V O H", "headers"},
    {"Alt+V O L", "lines"},          {"Alt+V A H", "headeraudit"}, {"Alt+V A L", "lineaudit"},
    {"Alt+V A T", "handheldtotals"}, {"Alt+V B", "barcodes"},      {"Alt+V R", "spooler"},
};

/// The grid of a table from end to end, and the same record by record.
void SeeTable(Keyboard& keys, const View& view) {
    DriverClient& program = keys.Program();
    const std::int32_t count = view.One ? std::min(keys.AllRecords(), 1) : keys.AllRecords();
    keys.Open(view.Keys, Grid, (std::string("grid-") + view.Name).c_str());
    keys.Press("End");
    keys.Press("Alt+V");
    program.WaitForm(Records);
    keys.Picture(Records, (std::string("record-") + view.Name).c_str());
    keys.RequireText(Records, "lblCount", keys.CountOf(count, count));
    keys.Press("Home");
    keys.RequireText(Records, "lblCount", keys.CountOf(1, count));
    keys.Leave(Records);
}

} // namespace

int ScreensByKeys::Run() {
    Keyboard keys(Program, Records, Pictures);
    for (const View& view : Views) SeeTable(keys, view);
    return keys.Screens();
}

#include "MappingByKeys.h"

#include "exchange/ExportColumns.h"
#include "exchange/ExportTemplate.h"
#include "exchange/ImportMapping.h"
#include "exchange/ImportTemplate.h"

#include <QFile>
#include <QStringList>

#include <utility>

namespace {

const QString Import = QStringLiteral("frmImport1");
const QString Export = QStringLiteral("frmExport1");

void Require(bool holds, const QString& what) {
    if (!holds) throw DriverFailure(what.toStdString());
}

QString Q(std::string_view text) {
    return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}

/// A person before the keyboard, and one of the two screens before that person.
class Keyboard {
public:
    Keyboard(DriverClient& program, QString form) : program_(program), form_(std::move(form)) {}

    void Press(const char* key) { program_.Key(QString::fromLatin1(key)); }

    /// Goes to a field by its letter and types over what stands there.
    void Fill(const char* field, const QString& text) {
        Press(field);
        Press("Ctrl+A");
        program_.Type(text);
    }

    /// Goes down the list of available fields to one of them.
    void GoTo(const QString& field) {
        Press("Alt+F");
        const qsizetype place = program_.Items(form_, QStringLiteral("lstAvailable")).indexOf(field);
        Require(place >= 0, QStringLiteral("there is no field ") + field);
        Press("Home");
        for (qsizetype k = 0; k < place; ++k) Press("Down");
        Require(program_.ChosenItems(form_, QStringLiteral("lstAvailable")) == QStringList{field},
                QStringLiteral("the keys do not lead to ") + field);
    }

    void Add(const QString& field) {
        GoTo(field);
        Press("Return");
    }

    /// Enter on the file's name presses the default button.
    QString Finish() {
        program_.WaitEnabled(form_, QStringLiteral("cmdOK"));
        const qsizetype before = program_.Boxes().size();
        Press("Return");
        program_.WaitGone(form_);
        const QList<DrivenBox> boxes = program_.Boxes();
        Require(boxes.size() > before, QStringLiteral("no box came"));
        return boxes.at(before).Text;
    }

private:
    DriverClient& program_;
    QString form_;
};

} // namespace

QString ImportByKeys(DriverClient& program, const QString& templateFile, const QString& table,
                     const QString& name) {
    const ImportTemplateRead read = ReadImportTemplate(QFile::encodeName(templateFile).toStdString());
    Require(read.Complete, templateFile + QStringLiteral(" cannot be read"));
    Keyboard keys(program, Import);

    keys.Press("Alt+F");
    keys.Press("I");
    const QString convert = QStringLiteral("frmConvert");
    program.WaitForm(convert);
    keys.Press("Alt+F");
    keys.Press("Home");
    const qsizetype place =
        program.Items(convert, QStringLiteral("filFiles")).indexOf(Q(read.Template.DataFile));
    Require(place >= 0, Q(read.Template.DataFile) + QStringLiteral(" is not listed"));
    for (qsizetype k = 0; k < place; ++k) keys.Press("Down");
    program.Key(table);
    keys.Press("Return");

    program.WaitForm(Import);
    keys.Fill("Alt+L", Q(read.Template.StartLine));
    for (const std::string& row : read.Template.Fields) {
        const std::vector<std::string> fields = ImportMapping::FieldsOfRow(row);
        for (std::size_t k = 0; k < fields.size(); ++k) {
            if (k > 0) keys.Press("Alt+N");
            keys.Add(Q(fields[k]));
        }
    }
    for (const std::string& row : read.Template.Literals) {
        const QStringList sides = Q(row).split(QStringLiteral(" = "));
        keys.GoTo(sides.at(0));
        program.ExpectInput(QStringLiteral("Enter literal value for field: ") + sides.at(0), sides.at(1));
        keys.Press("Alt+T");
    }
    keys.Fill("Alt+G", name);
    program.ExpectContaining(QStringLiteral("lines successfully imported!"));
    return keys.Finish();
}

QString ExportByKeys(DriverClient& program, const QString& templateFile, const QString& name,
                     const std::function<void()>& expectFurther) {
    const ExportTemplateRead read = ReadExportTemplate(QFile::encodeName(templateFile).toStdString());
    Require(read.Complete, templateFile + QStringLiteral(" cannot be read"));
    Keyboard keys(program, Export);

    keys.Press("Alt+F");
    keys.Press("E");
    program.WaitForm(Export);
    const QString date = QStringLiteral(" Format: ");
    const QString literal = QStringLiteral("Literal = ");
    const QString times = QStringLiteral(" * ");
    for (const std::string& column : read.Template.Columns) {
        const QString row = Q(column);
        if (row.startsWith(literal)) {
            program.ExpectInputContaining(QStringLiteral("Enter value"), row.mid(literal.size()));
            keys.Press("Alt+T");
        } else if (row.contains(date)) {
            program.ExpectInputContaining(QStringLiteral("The selected field contains a date."),
                                          row.section(date, 1));
            keys.Add(row.section(date, 0, 0));
        } else if (row.contains(times)) {
            keys.Add(row.section(times, 0, 0));
            keys.Press("Alt+L");
            // Plus has the focus now; its two neighbours are minus and times.
            keys.Press("Tab");
            keys.Press("Tab");
            keys.Press("Space");
            keys.Add(row.section(times, 1));
        } else {
            keys.Add(row);
        }
    }
    if (read.Template.AddHeadings) keys.Press("Alt+N");
    keys.Fill("Alt+G", name);
    keys.Fill("Alt+X", Q(read.Template.FileName));
    program.ExpectContaining(QStringLiteral("records successfully exported!"));
    expectFurther();
    return keys.Finish();
}

#include "forms/FormTest.h"

#include "core/Directories.h"
#include "core/TextCompare.h"
#include "maintenance/Office.h"
#include "store/OfficeTables.h"
#include "store/TableRewrite.h"
#include "store/TableScan.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSettings>
#include <QTableView>
#include <QTest>
#include <QTextEdit>

namespace {

std::vector<std::string> Bars(const std::string& line) {
    std::vector<std::string> cells{""};
    for (const char c : line) {
        if (c == '|')
            cells.emplace_back();
        else
            cells.back() += c;
    }
    return cells;
}

std::string TablePath(const std::string& table) {
    return Global.AppPath + "DBFFiles/" + table + ".dbf";
}

} // namespace

FormTest::FormTest() {
    Global.TheOperator = &Operator_;
    Global.InstantPauses = true;
    // The registry of a test is its own.
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, QString::fromStdString(Folder()));
    // A test before this one may have ended the program; only a fresh loop forgets that.
    QMetaObject::invokeMethod(
        qApp, [] { QCoreApplication::quit(); }, Qt::QueuedConnection);
    QCoreApplication::exec();
}

FormTest::~FormTest() {
    // The forms may not ask anybody while they go.
    FormRegistry::Instance().Clear();
    Settle();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void FormTest::GivenOffice() {
    Global.AppPath = Folder() + "app/";
    LayOutOffice(TRAMBLE_INSTALLED, Global.AppPath);
    SetTablesAndInstall();
    SetImagesAndTotals();
    MakeEmptyTwins();
    SetDataIn();
    SetDataOutBackupTemplates();
    TemplatePass([] {});
}

void FormTest::GivenRows(const std::string& table, const std::vector<std::string>& lines) {
    TableRewrite rewrite(TablePath(table));
    const std::vector<std::string> fields = Bars(lines.at(0));
    for (std::size_t i = 1; i < lines.size(); ++i) {
        rewrite.Append();
        const std::vector<std::string> cells = Bars(lines[i]);
        for (std::size_t k = 0; k < fields.size(); ++k) rewrite.Write(FieldKey(fields[k]), cells.at(k));
    }
    rewrite.Commit();
}

int FormTest::RecordCount(const std::string& table) {
    return TableScan(TablePath(table)).RecordCount();
}

std::string FormTest::Cell(const std::string& table, int record, const std::string& field) {
    TableScan scan(TablePath(table));
    const int column = scan.Layout().Find(FieldKey(field));
    EXPECT_NE(column, 0) << field;
    while (scan.Next()) {
        if (scan.RecordNumber() == record) return std::string(scan.Trimmed(column));
    }
    ADD_FAILURE() << table << " has no record " << record;
    return {};
}

void FormTest::Settle() {
    for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
}

QWidget& FormTest::Control(FormBehaviour& form, const char* name) {
    auto* control = form.Window().findChild<QWidget*>(QString::fromLatin1(name));
    if (!control) throw std::runtime_error(std::string("no control ") + name);
    return *control;
}

void FormTest::Click(FormBehaviour& form, const char* name) {
    auto& button = dynamic_cast<QAbstractButton&>(Control(form, name));
    ASSERT_TRUE(button.isEnabled()) << name;
    // Whatever is live by now has its handler, also what was made or enabled since the load.
    EXPECT_EQ(form.WiringProblems().join(QStringLiteral("\n")).toStdString(), "");
    button.click();
    Settle();
}

void FormTest::ClickMenu(FormBehaviour& form, const char* name) {
    auto* action = form.Window().findChild<QAction*>(QString::fromLatin1(name));
    ASSERT_NE(action, nullptr) << name;
    ASSERT_TRUE(action->isEnabled()) << name;
    action->trigger();
    Settle();
}

void FormTest::Choose(FormBehaviour& form, const char* name, const QString& entry) {
    auto& box = dynamic_cast<QComboBox&>(Control(form, name));
    const int index = box.findText(entry);
    ASSERT_GE(index, 0) << entry.toStdString();
    box.setCurrentIndex(index);
    emit box.activated(index);
    Settle();
}

void FormTest::Select(FormBehaviour& form, const char* list, const QStringList& rows) {
    auto& control = dynamic_cast<QListWidget&>(Control(form, list));
    control.clearSelection();
    for (const QString& row : rows) {
        const QList<QListWidgetItem*> found = control.findItems(row, Qt::MatchExactly);
        ASSERT_FALSE(found.isEmpty()) << row.toStdString();
        control.setCurrentItem(found.first(), QItemSelectionModel::Select);
    }
    Settle();
}

void FormTest::DoubleClick(FormBehaviour& form, const char* list, const QString& row) {
    Select(form, list, {row});
    auto& control = dynamic_cast<QListWidget&>(Control(form, list));
    emit control.doubleClicked(control.currentIndex());
    Settle();
}

QStringList FormTest::Rows(FormBehaviour& form, const char* list) {
    const auto& control = dynamic_cast<QListWidget&>(Control(form, list));
    QStringList rows;
    for (int k = 0; k < control.count(); ++k) rows << control.item(k)->text();
    return rows;
}

void FormTest::Type(FormBehaviour& form, const char* name, const QString& text) {
    QWidget& control = Control(form, name);
    auto* line = qobject_cast<QLineEdit*>(&control);
    if (auto* box = qobject_cast<QComboBox*>(&control)) line = box->lineEdit();
    ASSERT_NE(line, nullptr) << name;
    line->clear();
    for (const QChar c : text) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(c));
        QCoreApplication::sendEvent(line, &press);
    }
    emit line->editingFinished();
    Settle();
}

void FormTest::Press(FormBehaviour& form, const char* name, Qt::Key key) {
    QWidget& control = Control(form, name);
    control.setFocus();
    QTest::keyClick(&control, key);
    Settle();
}

QString FormTest::TextOf(FormBehaviour& form, const char* name) {
    QWidget& control = Control(form, name);
    if (auto* label = qobject_cast<QLabel*>(&control)) return label->text();
    if (auto* button = qobject_cast<QAbstractButton*>(&control))
        return button->text().remove(QLatin1Char('&'));
    if (auto* edit = qobject_cast<QLineEdit*>(&control)) return edit->text();
    if (auto* box = qobject_cast<QComboBox*>(&control)) return box->currentText();
    if (auto* text = qobject_cast<QTextEdit*>(&control)) return text->toPlainText();
    throw std::runtime_error(std::string("no text in ") + name);
}

bool FormTest::Enabled(FormBehaviour& form, const char* name) {
    return Control(form, name).isEnabled();
}
bool FormTest::Visible(FormBehaviour& form, const char* name) {
    return Control(form, name).isVisibleTo(&form.Window());
}

std::vector<QStringList> FormTest::GridRows(FormBehaviour& form, const char* name) {
    const QAbstractItemModel* model = dynamic_cast<QTableView&>(Control(form, name)).model();
    std::vector<QStringList> rows;
    for (int row = 0; row < model->rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < model->columnCount(); ++column) {
            cells << model->index(row, column).data().toString();
        }
        rows.push_back(cells);
    }
    return rows;
}

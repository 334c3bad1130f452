// A program to be driven: one of each kind of control, a modal form, boxes inside it. It knows
// nothing of its driver.

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QEventLoop>
#include <QFileDialog>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QTabWidget>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>

#include <csignal>
#include <cstdlib>
#include <functional>

namespace {

constexpr int ExitCode = 5;

template <class W>
W* Named(W* widget, const char* name) {
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

bool AskBox(const QString& text) {
    QMessageBox box(QApplication::activeWindow());
    box.setObjectName("MsgBox");
    box.setText(text);
    auto* yes = Named(box.addButton("&Yes", QMessageBox::YesRole), "Yes");
    Named(box.addButton("&No", QMessageBox::NoRole), "No");
    box.exec();
    return box.clickedButton() == yes;
}

void TellBox(const QString& text) {
    QMessageBox box(QApplication::activeWindow());
    box.setObjectName("MsgBox");
    box.setText(text);
    Named(box.addButton("OK", QMessageBox::AcceptRole), "Ok");
    box.exec();
}

QString FileBox(const QString& title) {
    QFileDialog box(QApplication::activeWindow());
    box.setObjectName("FileDialog");
    box.setWindowTitle(title);
    box.setOption(QFileDialog::DontUseNativeDialog);
    box.setFileMode(QFileDialog::ExistingFile);
    Named(box.findChild<QLineEdit*>("fileNameEdit"), "txtAnswer");
    auto* buttons = box.findChild<QDialogButtonBox*>();
    for (QAbstractButton* button : buttons->buttons()) {
        if (buttons->buttonRole(button) == QDialogButtonBox::AcceptRole) Named(button, "Ok");
    }
    return box.exec() == QDialog::Accepted ? box.selectedFiles().value(0) : "(given up)";
}

QString InputBox(const QString& prompt) {
    QDialog box(QApplication::activeWindow());
    box.setObjectName("InputBox");
    auto* layout = new QVBoxLayout(&box);
    layout->addWidget(new QLabel(prompt));
    auto* edit = Named(new QLineEdit("preset"), "txtAnswer");
    layout->addWidget(edit);
    auto* ok = Named(new QPushButton("OK"), "Ok");
    auto* cancel = Named(new QPushButton("Cancel"), "Cancel");
    layout->addWidget(ok);
    layout->addWidget(cancel);
    QObject::connect(ok, &QPushButton::clicked, &box, &QDialog::accept);
    QObject::connect(cancel, &QPushButton::clicked, &box, &QDialog::reject);
    return box.exec() == QDialog::Accepted ? edit->text() : "(given up)";
}

class frmDialog : public QDialog {
public:
    explicit frmDialog(QWidget* parent) : QDialog(parent) {
        setObjectName("frmDialog");
        setWindowTitle("A modal form");
        auto* layout = new QVBoxLayout(this);
        answer_ = Named(new QLabel("none"), "lblAnswer");
        ready_ = Named(new QLabel("not ready"), "lblReady");
        auto* ask = Named(new QPushButton("&Ask"), "cmdAsk");
        auto* ok = Named(new QPushButton("OK"), "cmdOK");
        for (QWidget* widget : std::initializer_list<QWidget*>{answer_, ready_, ask, ok})
            layout->addWidget(widget);
        connect(ask, &QPushButton::clicked, this,
                [this] { answer_->setText(AskBox("Delete all of it?") ? "deleted" : "kept"); });
        connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    }

protected:
    void paintEvent(QPaintEvent* event) override {
        QDialog::paintEvent(event);
        // What a form does when it has come to the front, behind its first paint.
        QTimer::singleShot(0, this, [this] { ready_->setText("ready"); });
    }

private:
    QLabel* answer_;
    QLabel* ready_;
};

class frmMain1 : public QMainWindow {
public:
    frmMain1() {
        setObjectName("frmMain1");
        setWindowTitle("The driven program");
        auto* page = new QWidget;
        layout_ = new QVBoxLayout(page);
        setCentralWidget(page);
        log_ = Add(new QLabel, "lblLog");
        MakeButtons();
        MakeInputs();
        MakeLists();
        MakeMenu();
        QTimer::singleShot(150, this, [this] { late_->setEnabled(true); });
    }

protected:
    void closeEvent(QCloseEvent* event) override {
        if (ask_->isChecked() && !AskBox("Leave the program?")) return event->ignore();
        QCoreApplication::exit(ExitCode);
    }

private:
    template <class W>
    W* Add(W* widget, const char* name) {
        layout_->addWidget(Named(widget, name));
        return widget;
    }

    QPushButton* Button(const char* name, const QString& caption, const std::function<void()>& clicked) {
        auto* button = Add(new QPushButton(caption), name);
        connect(button, &QPushButton::clicked, this, clicked);
        return button;
    }

    void Log(const QString& text) { log_->setText(text); }

    void MakeButtons() {
        Button("cmdImport", "&Import", [this] { Log("imported"); });
        Button("cmdDisabled", "Disabled", [this] { Log("cannot be"); })->setEnabled(false);
        Button("cmdHidden", "Hidden", [this] { Log("cannot be"); })->hide();
        late_ = Button("cmdLate", "Late", [this] { Log("late"); });
        late_->setEnabled(false);
        Button("cmdDialog", "Dialog", [this] {
            frmDialog dialog(this);
            dialog.exec();
            Log("dialog over");
        });
        Button("cmdOwnLoop", "Own loop", [this] {
            frmDialog dialog(this);
            dialog.setWindowModality(Qt::ApplicationModal);
            dialog.show();
            QEventLoop loop;
            connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &loop,
                    [&] {
                        if (dialog.isHidden()) loop.quit();
                    });
            loop.exec();
            Log("own loop over");
        });
        Button("cmdEnvironment", "Environment",
               [this] { Log(qEnvironmentVariable("QT_QPA_GENERIC_PLUGINS", "nothing")); });
        Button("cmdTwoBoxes", "Two boxes", [this] {
            const bool first = AskBox("First?");
            TellBox("Second.");
            Log(first ? "yes, then told" : "no, then told");
        });
        Button("cmdInput", "Input", [this] { Log(InputBox("A name?")); });
        Button("cmdFile", "File", [this] { Log(FileBox("Which file?")); });
        Button("cmdInputBehind", "Input behind", [this] {
            // The box is up, and another window is still the active one.
            QTimer::singleShot(0, this, [this] { activateWindow(); });
            Log(InputBox("A name behind?"));
        });
        Button("cmdBoxSoon", "Box soon",
               [this] { QTimer::singleShot(150, this, [] { TellBox("Soon was now."); }); });
        Button("cmdTextSoon", "Text soon",
               [this] { QTimer::singleShot(150, this, [this] { Log("soon, with a tail"); }); });
        Button("cmdFormSoon", "Form soon", [this] {
            QTimer::singleShot(150, this, [this] {
                frmDialog dialog(this);
                dialog.exec();
            });
        });
        Button("cmdExit", "Exit", [] {
            qWarning("these are my last words");
            std::_Exit(7);
        });
        Button("cmdCrash", "Crash", [] { std::raise(SIGKILL); });
    }

    void MakeInputs() {
        auto* name = Add(new QLineEdit("old"), "txtName");
        name->setMaxLength(12);
        Add(new QLineEdit, "txtOther");
        auto* fixed = Add(new QLineEdit("fixed"), "txtFixed");
        fixed->setReadOnly(true);
        ask_ = Add(new QCheckBox("Ask at the end"), "chkAsk");
        Add(new QRadioButton("One"), "optOne");
        Add(new QRadioButton("Two"), "optTwo");
        auto* number = Add(new QSpinBox, "spnNumber");
        number->setRange(0, 500);
        Add(new QPlainTextEdit, "rtbNotes")->setMaximumHeight(60);
        auto* group = Add(new QGroupBox("Extras"), "fraExtras");
        group->setCheckable(true);
        connect(name, &QLineEdit::editingFinished, this, [this, name] { Log("left with " + name->text()); });
    }

    void MakeLists() {
        auto* settings = Add(new QComboBox, "cboSettings");
        settings->addItems({"Standard", "Weekly", "Locked"});
        qobject_cast<QStandardItemModel*>(settings->model())->item(2)->setEnabled(false);
        connect(settings, &QComboBox::activated, this,
                [this, settings] { Log("activated " + settings->currentText()); });
        auto* editable = Add(new QComboBox, "cboEditable");
        editable->setEditable(true);
        auto* names = Add(new QListWidget, "lstNames");
        names->addItems({"Ann", "Bob", "Cid", "Dee"});
        names->setSelectionMode(QAbstractItemView::ExtendedSelection);
        names->setMaximumHeight(60);
        connect(names, &QListWidget::itemDoubleClicked, this,
                [this](const QListWidgetItem* item) { Log("twice on " + item->text()); });
        auto* table = Add(new QTableView, "FG1");
        auto* model = new QStandardItemModel(2, 2, table);
        model->setHorizontalHeaderLabels({"Code", "Name"});
        const char* cells[2][2] = {{"A1", "Acme"}, {"B2", "Bolt"}};
        for (int row = 0; row < 2; ++row) {
            for (int column = 0; column < 2; ++column) {
                model->setItem(row, column, new QStandardItem(cells[row][column]));
            }
        }
        model->item(1, 0)->setBackground(Qt::red);
        table->setModel(model);
        connect(table->horizontalHeader(), &QHeaderView::sectionClicked, this,
                [this](int column) { Log(QString("heading %1").arg(column)); });
        connect(table, &QTableView::doubleClicked, this,
                [this](const QModelIndex& index) { Log("cell " + index.data().toString()); });
        auto* tabs = Add(new QTabWidget, "tabPages");
        auto* first = new QWidget;
        auto* second = new QWidget;
        (new QVBoxLayout(second))->addWidget(Named(new QPushButton("On the second page"), "cmdSecondPage"));
        tabs->addTab(first, "&First");
        tabs->addTab(second, "&Second");
        auto* area = Add(new QScrollArea, "areaLong");
        auto* tall = new QWidget;
        tall->setFixedSize(200, 2000);
        auto* below = Named(new QPushButton("Far below", tall), "cmdFarBelow");
        below->setGeometry(10, 1900, 120, 30);
        connect(below, &QPushButton::clicked, this, [this] { Log("far below"); });
        area->setWidget(tall);
        area->setFixedHeight(80);
    }

    void MakeMenu() {
        QMenu* file = Named(menuBar()->addMenu("&File"), "mnuFile");
        QAction* fresh = Named(file->addAction("&New"), "mnuNew");
        QAction* gray = Named(file->addAction("&Gray"), "mnuGray");
        QAction* byMenu = Named(file->addAction("&When opened"), "mnuWhenOpened");
        QMenu* closed = Named(file->addMenu("&Closed"), "mnuClosed");
        Named(closed->addAction("Inside"), "mnuInside");
        closed->setEnabled(false);
        gray->setEnabled(false);
        byMenu->setEnabled(false);
        connect(file, &QMenu::aboutToShow, byMenu, [byMenu] { byMenu->setEnabled(true); });
        connect(byMenu, &QAction::triggered, this, [this] { Log("when opened"); });
        connect(fresh, &QAction::triggered, this, [this] {
            TellBox("A new one.");
            Log("new");
        });
    }

    QVBoxLayout* layout_ = nullptr;
    QLabel* log_ = nullptr;
    QPushButton* late_ = nullptr;
    QCheckBox* ask_ = nullptr;
};

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    if (application.arguments().contains("--ask-first") && !AskBox("Begin?")) return 0;
    frmMain1 main;
    main.show();
    return QApplication::exec();
}

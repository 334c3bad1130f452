#include "platform/QtOperator.h"

#include "core/Catalogue.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/forms/frmMessage.h"
#include "platform/Convert.h"
#include "platform/DesktopLink.h"
#include "platform/Look.h"
#include "platform/Printing.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

/// The name of a box's picture; empty for none.
const char* BoxPicture(Icon icon) {
    switch (icon) {
    case Icon::Information:
        return "box-information";
    case Icon::Question:
        return "box-question";
    case Icon::Warning:
        return "box-warning";
    case Icon::Stop:
        return "box-stop";
    case Icon::None:
        break;
    }
    return "";
}

QPushButton* AddButton(QMessageBox& box, MessageId caption, const QString& name,
                       QMessageBox::ButtonRole role) {
    QPushButton* button = box.addButton(QString::fromStdString(CatalogueCaption(caption)), role);
    button->setObjectName(name);
    button->setAutoDefault(true);
    return button;
}

} // namespace

Answer QtOperator::MsgBox(const Text& message, Icon icon, Buttons buttons) {
    // The form that it stands above may go meanwhile and takes it along.
    const QPointer<QMessageBox> box = new QMessageBox(QApplication::activeWindow());
    box->setObjectName(QStringLiteral("MsgBox"));
    box->setWindowTitle(ToQt(Text(msg::Title)));
    box->setTextFormat(Qt::PlainText);
    box->setText(ToQt(message));
    if (icon != Icon::None) box->setIconPixmap(Picture(BoxPicture(icon)).pixmap(36, 36));
    box->setWindowModality(Qt::ApplicationModal);
    QPushButton* yes = nullptr;
    if (buttons == Buttons::Ok) {
        box->setEscapeButton(AddButton(*box, msg::Ok, QStringLiteral("Ok"), QMessageBox::AcceptRole));
    } else {
        yes = AddButton(*box, msg::Yes, QStringLiteral("Yes"), QMessageBox::YesRole);
        QPushButton* no = AddButton(*box, msg::No, QStringLiteral("No"), QMessageBox::NoRole);
        box->setDefaultButton(icon == Icon::Warning ? no : yes);
        box->setEscapeButton(no);
    }
    box->exec();
    const bool isYes = box && yes && box->clickedButton() == yes;
    delete box;
    if (buttons == Buttons::Ok) return Answer::Ok;
    return isYes ? Answer::Yes : Answer::No;
}

std::optional<std::string> QtOperator::InputBox(const Text& prompt, const std::string& preset) {
    const QPointer<QDialog> box = new QDialog(QApplication::activeWindow());
    box->setObjectName(QStringLiteral("InputBox"));
    box->setWindowTitle(ToQt(Text(msg::Title)));
    box->setWindowModality(Qt::ApplicationModal);
    auto* label = new QLabel(ToQt(prompt), box);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    auto* answer = new QLineEdit(ToQt(preset), box);
    answer->setObjectName(QStringLiteral("txtAnswer"));
    answer->setMinimumWidth(360);
    label->setBuddy(answer);
    auto* buttons = new QDialogButtonBox(box);
    QPushButton* ok =
        buttons->addButton(QString::fromStdString(CatalogueCaption(msg::Ok)), QDialogButtonBox::AcceptRole);
    ok->setObjectName(QStringLiteral("Ok"));
    ok->setDefault(true);
    QPushButton* cancel = buttons->addButton(QString::fromStdString(CatalogueCaption(msg::Cancel)),
                                             QDialogButtonBox::RejectRole);
    cancel->setObjectName(QStringLiteral("Cancel"));
    QObject::connect(buttons, &QDialogButtonBox::accepted, box, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, box, &QDialog::reject);
    auto* layout = new QVBoxLayout(box);
    layout->addWidget(label);
    layout->addWidget(answer);
    layout->addWidget(buttons);
    answer->selectAll();
    std::optional<std::string> line;
    if (box->exec() == QDialog::Accepted && box) line = FromQt(answer->text());
    delete box;
    return line;
}

std::optional<std::string> QtOperator::OpenFile(const FileQuestion& question) {
    const QPointer<QFileDialog> box = new QFileDialog(QApplication::activeWindow());
    box->setObjectName(QStringLiteral("FileDialog"));
    box->setWindowTitle(ToQt(question.Title));
    box->setWindowModality(Qt::ApplicationModal);
    // The toolkit's own: it looks and reads the same everywhere, and offers names of any case.
    box->setOption(QFileDialog::DontUseNativeDialog);
    box->setFileMode(QFileDialog::ExistingFile);
    box->setNameFilter(ToQt(question.Kind) + QStringLiteral(" (*") + PathToQt(question.Extension) +
                       QLatin1Char(')'));
    box->setDirectory(PathToQt(question.Folder));
    box->setLabelText(QFileDialog::Accept, QString::fromStdString(CatalogueCaption(msg::Ok)));
    box->setLabelText(QFileDialog::Reject, QString::fromStdString(CatalogueCaption(msg::Cancel)));
    if (auto* line = box->findChild<QLineEdit*>(QStringLiteral("fileNameEdit")))
        line->setObjectName(QStringLiteral("txtAnswer"));
    if (auto* buttons = box->findChild<QDialogButtonBox*>()) {
        for (QAbstractButton* button : buttons->buttons()) {
            const bool accepts = buttons->buttonRole(button) == QDialogButtonBox::AcceptRole;
            button->setObjectName(accepts ? QStringLiteral("Ok") : QStringLiteral("Cancel"));
        }
    }
    std::optional<std::string> file;
    if (box->exec() == QDialog::Accepted && box && !box->selectedFiles().isEmpty())
        file = PathFromQt(box->selectedFiles().constFirst());
    delete box;
    return file;
}

bool QtOperator::Ask(const Question& question) {
    auto& form = The<frmMessage>();
    form.Fill(question);
    form.Show(ShowMode::Modal);
    return Global.MessageAnswer;
}

std::unique_ptr<Printer> QtOperator::PrinterDialog(const Text& document) {
    return AskForPrinter(ToQt(document));
}

bool QtOperator::OpenLink(std::string_view link) {
    return OpenDesktopLink(link);
}

void QtOperator::Beep() {
    QApplication::beep();
}

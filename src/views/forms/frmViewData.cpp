#include "views/forms/frmViewData.h"

#include "core/Globals.h"
#include "core/Messages.h"
#include "help/HelpTopics.h"
#include "platform/Convert.h"
#include "platform/Look.h"
#include "views/forms/Editors.h"
#include "views/forms/frmViewGrid.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QShortcut>

#include <algorithm>

namespace {

/// Longer fields get a box of several lines over the whole width.
constexpr int OneLine = 60;
constexpr int LinesOfLong = 3;

QString Element(const char* name, int field) {
    return QString::fromLatin1(name) + QLatin1Char('_') + QString::number(field);
}

QWidget* MakeBox(int length, QWidget* parent) {
    if (length > OneLine) {
        auto* box = new QPlainTextEdit(parent);
        box->setReadOnly(true);
        box->setTabChangesFocus(true);
        box->setFixedHeight(box->fontMetrics().lineSpacing() * LinesOfLong + 12);
        return box;
    }
    auto* box = new QLineEdit(parent);
    box->setReadOnly(true);
    // Room for the whole of a short field; a longer one grows with the window.
    const int characters = std::clamp(length, 4, 14);
    box->setMinimumWidth(box->fontMetrics().averageCharWidth() * characters + 20);
    return box;
}

} // namespace

std::string frmViewData::HelpTopic() const {
    return view_ ? HelpTopicOfView(view_->Flag) : Form::HelpTopic();
}

void frmViewData::Form_Load() {
    TraceEvent("frmViewData:Form_Load");
    Navigation();
    view_ = ChosenView();
    if (!view_) return;
    setWindowTitle(ToQt(Text(view_->RecordTitle)));
    if (*view_->Icon) setWindowIcon(Picture(view_->Icon));
    cmdEdit->setEnabled(HasEditor());
    if (!Try([this] { DisplayFields(view_->Path()); })) return Unload();
    Go(Global.SelectedRow);
    cmdNext->setFocus();
}

void frmViewData::Navigation() {
    const std::pair<Qt::Key, QPushButton*> keys[] = {{Qt::Key_Home, cmdFirst},
                                                     {Qt::Key_PageUp, cmdPrevious},
                                                     {Qt::Key_PageDown, cmdNext},
                                                     {Qt::Key_End, cmdLast}};
    for (const auto& [key, button] : keys)
        connect(new QShortcut(key, this), &QShortcut::activated, button, &QPushButton::click);
}

void frmViewData::DisplayFields(const std::string& path) {
    TraceEvent("frmViewData:DisplayFields");
    table_ = std::make_unique<TableReader>(path);
    LayOutFields();
}

void frmViewData::LayOutFields() {
    // Fields of a table that has another layout by now go with their page.
    auto* page = new QWidget;
    page->setObjectName(picFields->objectName());
    auto* grid = new QGridLayout(page);
    grid->setHorizontalSpacing(10);
    grid->setVerticalSpacing(6);
    int place = 0; // two fields stand side by side
    for (int field = 1; field <= table_->Layout().FieldCount(); ++field) {
        const int length = table_->Layout().FieldLength(field);
        const bool isLong = length > OneLine;
        if (isLong && place % 2 == 1) ++place;
        auto* label = new QLabel(page);
        label->setObjectName(Element("lblOrHdr", field));
        label->setAlignment(Qt::AlignRight | (isLong ? Qt::AlignTop : Qt::AlignVCenter));
        QWidget* box = MakeBox(length, page);
        box->setObjectName(Element("txtOrHdr", field));
        label->setBuddy(box);
        grid->addWidget(label, place / 2, place % 2 * 2);
        grid->addWidget(box, place / 2, place % 2 * 2 + 1, 1, isLong ? 3 : 1);
        place += isLong ? 2 : 1;
    }
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);
    grid->setRowStretch((place + 1) / 2, 1);
    delete scrFields->takeWidget();
    picFields = page;
    scrFields->setWidget(page);
    DisplayFriendlyFieldNames();
}

void frmViewData::DisplayFriendlyFieldNames() {
    for (int field = 1; field <= table_->Layout().FieldCount(); ++field) {
        const QString name =
            ToQt(::DisplayFriendlyFieldNames(view_->Table(), table_->Layout().PlainName(field)));
        auto* label = picFields->findChild<QLabel*>(Element("lblOrHdr", field));
        // The label has a buddy, and an ampersand in a name is no mark of a mnemonic.
        label->setText(QString(name).replace(QLatin1Char('&'), QLatin1String("&&")));
        label->buddy()->setAccessibleName(name);
    }
}

void frmViewData::SetField(int field, const QString& text) {
    auto* box = picFields->findChild<QWidget*>(Element("txtOrHdr", field));
    if (auto* line = qobject_cast<QLineEdit*>(box)) {
        line->setText(text);
        line->setCursorPosition(0);
        line->setToolTip(PlainTip(text));
    } else if (auto* lines = qobject_cast<QPlainTextEdit*>(box)) {
        lines->setPlainText(text);
    }
}

void frmViewData::DisplayData() {
    TraceEvent("frmViewData:DisplayData");
    for (int field = 1; field <= table_->Layout().FieldCount(); ++field) {
        SetField(field, record_ > 0 ? ToQt(table_->Trimmed(record_, field)) : QString());
    }
    const std::int64_t count = table_->RecordCount();
    lblCount->setText(ToQt(record_ > 0
                               ? Words(Text::Value(std::int64_t{record_}), msg::Of, Text::Value(count))
                               : Text(msg::NoRecords)));
    for (QPushButton* button : {cmdFirst, cmdPrevious, cmdNext, cmdLast}) button->setEnabled(record_ > 0);
}

void frmViewData::Go(std::int32_t record) {
    if (!table_) return;
    if (table_->CheckChanged()) {
        const std::string before = table_->Layout().Header().substr(12);
        if (!Try([this] { table_->Reopen(); })) return Unload();
        if (table_->Layout().Header().substr(12) != before) LayOutFields();
    }
    record_ = std::min(std::max(record, 1), table_->RecordCount());
    DisplayData();
}

void frmViewData::cmdFirst_Click() {
    TraceEvent("frmViewData:cmdFirst_Click");
    Go(1);
}

void frmViewData::cmdPrevious_Click() {
    TraceEvent("frmViewData:cmdPrevious_Click");
    Go(record_ - 1);
}

void frmViewData::cmdNext_Click() {
    TraceEvent("frmViewData:cmdNext_Click");
    Go(record_ + 1);
}

void frmViewData::cmdLast_Click() {
    TraceEvent("frmViewData:cmdLast_Click");
    if (table_) Go(table_->RecordCount());
}

void frmViewData::cmdGridView_Click() {
    TraceEvent("frmViewData:cmdGridView_Click");
    Global.SelectedRow = record_;
    auto& grid = The<frmViewGrid>();
    grid.Show();
    if (!grid.IsGone()) Unload();
}

void frmViewData::cmdEdit_Click() {
    TraceEvent("frmViewData:cmdEdit_Click");
    Global.SelectedRow = record_;
    if (OpenEditor()) Unload();
}

void frmViewData::cmdOK_Click() {
    TraceEvent("frmViewData:cmdOK_Click");
    Unload();
}

void frmViewData::Form_GotFocus() {
    Go(record_);
}

void frmViewData::Form_Unload() {
    TraceEvent("frmViewData:Form_Unload");
    table_.reset();
}

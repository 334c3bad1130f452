#include "platform/FindBar.h"

#include "core/Catalogue.h"
#include "core/Messages.h"
#include "platform/Convert.h"
#include "platform/Look.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>

FindBar::FindBar(QWidget* parent)
    : QWidget(parent),
      lblFind_(new QLabel(this)),
      txtFind_(new QLineEdit(this)),
      lblNotFound_(new QLabel(this)) {
    txtFind_->setObjectName(QStringLiteral("txtFind"));
    lblFind_->setObjectName(QStringLiteral("lblFind"));
    lblNotFound_->setObjectName(QStringLiteral("lblNotFound"));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->addWidget(lblFind_);
    row->addWidget(txtFind_, 1);
    row->addWidget(lblNotFound_);
    lblFind_->setTextFormat(Qt::PlainText);
    lblFind_->setBuddy(txtFind_);
    setFocusProxy(txtFind_);
    lblNotFound_->setText(ToQt(::Text(msg::NotFound)));
    lblNotFound_->hide();

    const auto add = [this](const char* picture, MessageId text, auto&& deed) {
        auto* action = txtFind_->addAction(Picture(picture), QLineEdit::TrailingPosition);
        action->setText(QString::fromStdString(CatalogueCaption(text)));
        action->setToolTip(ToQt(::Text(text)));
        connect(action, &QAction::triggered, this, deed);
    };
    add("find-close", msg::FindClose, [this] { emit Closed(); });
    add("find-next", msg::GridFindNext, [this] { emit Find(false); });
    add("find-previous", msg::GridFindPrevious, [this] { emit Find(true); });
    txtFind_->installEventFilter(this);
    connect(txtFind_, &QLineEdit::textEdited, this, [this] { SayNotFound(false); });
}

void FindBar::SetColumn(const QString& title) {
    const QString caption = ToQt(::Text(msg::FindIn)) + QLatin1Char(' ') + title + QLatin1Char(':');
    txtFind_->setAccessibleName(caption);
    // The label has a buddy, and an ampersand in a column's title is no mark of a mnemonic.
    lblFind_->setText(QString(caption).replace(QLatin1Char('&'), QLatin1String("&&")));
}

QString FindBar::Text() const {
    return txtFind_->text();
}

void FindBar::SayNotFound(bool notFound) {
    lblNotFound_->setVisible(notFound);
}

void FindBar::TakeFocus() {
    txtFind_->setFocus();
    txtFind_->selectAll();
}

void FindBar::Begin(const QString& text) {
    txtFind_->setText(text);
}

bool FindBar::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        switch (key.key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_F3:
            emit Find(key.modifiers() & Qt::ShiftModifier);
            return true;
        case Qt::Key_Escape:
            emit Closed();
            return true;
        default:
            break;
        }
    }
    return QWidget::eventFilter(object, event);
}

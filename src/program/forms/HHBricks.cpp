#include "program/forms/HHBricks.h"

#include "platform/Convert.h"
#include "platform/Form.h"
#include "platform/Look.h"
#include "sync/Status.h"

#include <QGridLayout>
#include <QStyleOptionToolButton>
#include <QStylePainter>
#include <QToolButton>

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int BricksInRow = 5;

/// A handheld's button. It tells a state, and is drawn in full colour whether it can be pressed or
/// not. Five in a row are narrow: the picture stands above the id, an id of several words in two lines. One
/// that is still very long ends in an ellipsis.
class Brick final : public QToolButton {
public:
    Brick(const std::string& id, const HHBricks::Face& face, QWidget* parent) : QToolButton(parent) {
        setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
        setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
        setIconSize({16, 16});
        // An ampersand in an id is no mark of a mnemonic.
        setText(ToQt(std::string_view(id)).replace(QLatin1Char('&'), QLatin1String("&&")));
        setIcon(face.Picture);
        const QString tip = ToQt(std::string_view(id)) + QStringLiteral(": ") + ToQt(face.State);
        setToolTip(PlainTip(tip));
        setAccessibleName(tip);
        setEnabled(face.Live);
    }

    QSize sizeHint() const override { return RoomFor(Lines()); }

    /// Without the rest of an id of more than sixteen letters.
    QSize minimumSizeHint() const override {
        const QSize room = sizeHint();
        return {std::min(room.width(), MostLetters * fontMetrics().averageCharWidth()), room.height()};
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QStyleOptionToolButton option;
        initStyleOption(&option);
        option.palette.setColor(QPalette::Disabled, QPalette::ButtonText,
                                palette().color(QPalette::Active, QPalette::ButtonText));
        QStringList lines = Lines();
        for (QString& line : lines)
            line = fontMetrics().elidedText(line, Qt::ElideRight, width() - Margins, Qt::TextShowMnemonic);
        option.text = lines.join(QLatin1Char('\n'));
        QStylePainter(this).drawComplexControl(QStyle::CC_ToolButton, option);
    }

private:
    static constexpr int MostLetters = 16;
    static constexpr int ShortId = 10; // letters; it stands in one line
    static constexpr int Margins = 4;

    /// The id, parted at the blank nearest to its middle.
    QStringList Lines() const {
        const QString id = text();
        qsizetype at = -1;
        for (qsizetype blank = id.indexOf(QLatin1Char(' ')); blank >= 0;
             blank = id.indexOf(QLatin1Char(' '), blank + 1)) {
            if (at < 0 || std::abs(2 * blank - id.size()) < std::abs(2 * at - id.size())) at = blank;
        }
        if (at < 0 || id.size() <= ShortId) return {id};
        return {id.left(at), id.mid(at + 1)};
    }

    QSize RoomFor(const QStringList& lines) const {
        const QSize words = fontMetrics().size(Qt::TextShowMnemonic, lines.join(QLatin1Char('\n')));
        return {std::max(words.width(), iconSize().width()) + 2 * Margins,
                iconSize().height() + words.height() + 3 * Margins};
    }
};

} // namespace

void HHBricks::TakeAway() {
    while (QLayoutItem* item = grid_.takeAt(0)) {
        // Not deleted here: it may be the brick whose click has brought this about.
        item->widget()->setParent(nullptr);
        item->widget()->deleteLater();
        delete item;
    }
}

void HHBricks::Draw(const QString& family, QWidget& before, const std::function<Face(std::size_t)>& faceOf) {
    TakeAway();
    ids_ = LinkIDs();
    std::vector<Brick*> bricks;
    int tallest = 0;
    for (std::size_t index = 1; index <= ids_.size(); ++index) {
        auto* brick = new Brick(ids_[index - 1], faceOf(index), grid_.parentWidget());
        brick->setObjectName(family + QLatin1Char('_') + QString::number(index));
        form_.WireControl(*brick);
        const int place = static_cast<int>(index) - 1;
        grid_.addWidget(brick, place / BricksInRow, place % BricksInRow);
        tallest = std::max(tallest, brick->sizeHint().height());
        bricks.push_back(brick);
    }
    // One without a picture stands beside those that have one.
    QWidget* last = &before;
    for (Brick* brick : bricks) {
        brick->setFixedHeight(tallest);
        QWidget::setTabOrder(last, brick);
        last = brick;
    }
    for (int column = 0; column < BricksInRow; ++column) grid_.setColumnStretch(column, 1);
    grid_.setRowStretch(static_cast<int>(ids_.size()) / BricksInRow + 1, 1);
}

int HHBricks::IndexOf(const std::string& id, int index) const {
    const auto row = static_cast<std::size_t>(index);
    if (row <= ids_.size() && ids_[row - 1] == id) return index;
    const auto moved = std::find(ids_.begin(), ids_.end(), id);
    return moved == ids_.end() ? 0 : static_cast<int>(moved - ids_.begin()) + 1;
}

QIcon StateIcon(std::string_view name) {
    const QIcon plain = Picture(name);
    QIcon icon;
    for (const auto mode : {QIcon::Normal, QIcon::Disabled}) icon.addPixmap(plain.pixmap(16, 16), mode);
    return icon;
}

#include "platform/Look.h"

#include "core/Globals.h"
#include "core/Paths.h"
#include "platform/Convert.h"

#include <QApplication>
#include <QFile>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleOption>

namespace {

struct Tones {
    QColor Window, Base, Alternate, Text, Faint, Button, Disabled, Highlight, Link;
};

QPalette MakePalette(const Tones& tones) {
    QPalette palette;
    palette.setColor(QPalette::Window, tones.Window);
    palette.setColor(QPalette::WindowText, tones.Text);
    palette.setColor(QPalette::Base, tones.Base);
    palette.setColor(QPalette::AlternateBase, tones.Alternate);
    palette.setColor(QPalette::ToolTipBase, tones.Alternate);
    palette.setColor(QPalette::ToolTipText, tones.Text);
    palette.setColor(QPalette::Text, tones.Text);
    palette.setColor(QPalette::Button, tones.Button);
    palette.setColor(QPalette::ButtonText, tones.Text);
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::Highlight, tones.Highlight);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, tones.Link);
    palette.setColor(QPalette::PlaceholderText, tones.Faint);
    palette.setColor(QPalette::Light, tones.Button.lighter(130));
    palette.setColor(QPalette::Midlight, tones.Button.lighter(112));
    palette.setColor(QPalette::Mid, tones.Button.darker(130));
    palette.setColor(QPalette::Dark, tones.Button.darker(160));
    palette.setColor(QPalette::Shadow, tones.Button.darker(220));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, tones.Disabled);
    }
    palette.setColor(QPalette::Disabled, QPalette::Highlight, tones.Disabled);
    return palette;
}

/// Fusion, with room between a button's text and its edge, and with frames that can be seen.
class Style final : public QProxyStyle {
public:
    Style() : QProxyStyle(QStringLiteral("Fusion")) {}

    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                           const QWidget* widget) const override {
        const QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
        if (type == CT_PushButton) return size.expandedTo({contents.width() + 24, 0});
        // With large letters Fusion gives a list a little less than the text in it needs.
        return type == CT_ComboBox ? size + QSize(option->fontMetrics.averageCharWidth(), 0) : size;
    }

    /// The frame of a box or an option is drawn in a shade of the window, which the dark look hides.
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override {
        const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
        const bool framed = element == PE_IndicatorCheckBox || element == PE_IndicatorRadioButton;
        if (!framed || !button || !IsDarkLook())
            return QProxyStyle::drawPrimitive(element, option, painter, widget);
        QStyleOptionButton lighter(*button);
        lighter.palette.setColor(QPalette::Window, option->palette.color(QPalette::Disabled, QPalette::Text));
        QProxyStyle::drawPrimitive(element, &lighter, painter, widget);
    }
};

const Tones Light{QColor(0xf1f3f5), QColor(0xffffff), QColor(0xf6f8fa), QColor(0x1c2430), QColor(0x626c78),
                  QColor(0xe6eaee), QColor(0x8a94a0), QColor(0x1f6fb2), QColor(0x1a5c94)};
const Tones Dark{QColor(0x22272e), QColor(0x1a1e24), QColor(0x262c34), QColor(0xe4e8ec), QColor(0x96a1ae),
                 QColor(0x323a44), QColor(0x7c8794), QColor(0x2f7fc4), QColor(0x7db8ea)};

} // namespace

void ApplyLook(bool dark) {
    QApplication::setStyle(new Style);
    QApplication::setPalette(MakePalette(dark ? Dark : Light));
}

bool IsDarkLook() {
    return QApplication::palette().color(QPalette::Window).lightness() < 128;
}

QColor WarningTone() {
    return IsDarkLook() ? QColor(0xff9a8f) : QColor(0xb3261e);
}

QIcon Picture(std::string_view name) {
    const std::string_view extension = ExtensionOf(name);
    const std::string base(name.substr(0, name.size() - extension.size()));
    if (!Global.GraphicsPath.empty()) {
        const std::string own = ResolvePath(Global.GraphicsPath + base + ".svg");
        if (FileExists(own)) return QIcon(PathToQt(own));
    }
    const QString builtIn = QStringLiteral(":/graphics/") + PathToQt(base) + QStringLiteral(".svg");
    return QFile::exists(builtIn) ? QIcon(builtIn) : QIcon();
}

TitleBox::TitleBox(QWidget* parent) : QWidget(parent) {
    QFont bold = font();
    bold.setBold(true);
    setFont(bold);
    QPalette white = palette();
    white.setColor(QPalette::WindowText, Qt::white);
    white.setColor(QPalette::ButtonText, Qt::white);
    setPalette(white);
}

void TitleBox::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    ShadeObject(painter, rect());
}

void ShadeObject(QPainter& painter, const QRect& place) {
    const QColor from(0x2b6ea6);
    const QColor to(0x17456d);
    const int steps = std::max(1, place.height() - 1);
    for (int y = 0; y < place.height(); ++y) {
        const auto mix = [&](int a, int b) { return a + (b - a) * y / steps; };
        painter.setPen(
            QColor(mix(from.red(), to.red()), mix(from.green(), to.green()), mix(from.blue(), to.blue())));
        painter.drawLine(place.left(), place.top() + y, place.right(), place.top() + y);
    }
}

#pragma once

#include <QColor>
#include <QIcon>
#include <QWidget>

#include <string_view>

/// The program's style, with the light palette or the dark one.
void ApplyLook(bool dark);
bool IsDarkLook();

/// For words that tell of something wrong; readable in either look.
QColor WarningTone();

/// A picture by the base name it was asked for, "zuk1.ico" or "zuk1": drawn for this program as SVG.
/// A picture in the graphics directory wins over the built-in one. Empty when there is none.
QIcon Picture(std::string_view name);

/// Paints the shade of titles, on which text is white: one line for each pixel of height, its colour changing
/// step by step.
void ShadeObject(QPainter& painter, const QRect& place);

/// A quadrant's title: white text on a shade that runs from top to bottom.
class TitleBox final : public QWidget {
    Q_OBJECT

public:
    explicit TitleBox(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

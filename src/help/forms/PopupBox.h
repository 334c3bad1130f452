#pragma once

#include "help/HTMLHelp.h"

#include <QLabel>

/// A pop-up of the help: words in a small frame, which any key or click closes.
class PopupBox final : public QLabel {
    Q_OBJECT

public:
    /// Shows it and lets it destroy itself. In the middle of nowhere it stands at the mouse.
    static void Show(const QString& words, const PopupDefinition& look, std::optional<ScreenPlace> place);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    PopupBox(const QString& words, const PopupDefinition& look);
};

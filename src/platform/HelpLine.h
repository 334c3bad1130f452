#pragma once

#include "core/Text.h"

#include <QObject>

class QLabel;
class QWidget;

/// A label that says what the control under the mouse is for, and the one that a key has come to.
class HelpLine final : public QObject {
    Q_OBJECT

public:
    /// `idle` is shown while no control has anything to say. The line belongs to the label.
    HelpLine(QLabel& label, const Text& idle);

    void Add(QWidget& control, const Text& text);

    /// What the line of its form says of a control; empty for any other.
    static QString TextFor(const QObject& control);

    /// Shows the idle text again.
    void Rest();

    /// Shows a text, whatever the mouse and the keys come to, until Rest.
    void Hold(const Text& text);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void ShowFor(const QObject& control);

    QLabel& label_;
    QString idle_;
    bool held_ = false;
};

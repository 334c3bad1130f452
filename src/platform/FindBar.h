#pragma once

#include <QLineEdit>
#include <QWidget>

class QLabel;

/// The line below a grid in which a text to find is typed. Enter and F3 find the next one, with Shift
/// the one before; Esc closes the line.
class FindBar final : public QWidget {
    Q_OBJECT

public:
    explicit FindBar(QWidget* parent);

    /// Says in which column is looked.
    void SetColumn(const QString& title);
    QString Text() const;
    /// Shows or hides that nothing was found.
    void SayNotFound(bool notFound);
    void TakeFocus();
    /// Takes a first character in place of the text that stands there.
    void Begin(const QString& text);

signals:
    void Find(bool backwards);
    void Closed();

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    QLabel* lblFind_;
    QLineEdit* txtFind_;
    QLabel* lblNotFound_;
};

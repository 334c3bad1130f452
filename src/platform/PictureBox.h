#pragma once

#include <QFrame>
#include <QImage>

#include <string_view>

/// A bitmap out of a file that nobody has looked at before. Null when it cannot be read, is none, or is
/// larger than anything that a handheld can have sent: 16 MB, or 4096 points a side.
QImage ReadBitmap(std::string_view path);

/// A picture as large as the box allows, its sides as they stand to each other, on white paper in either
/// look; or words in its place.
class PictureBox final : public QFrame {
    Q_OBJECT
    Q_PROPERTY(int pictureWidth READ PictureWidth)
    Q_PROPERTY(int pictureHeight READ PictureHeight)
    Q_PROPERTY(QString words READ Words)

public:
    explicit PictureBox(QWidget* parent = nullptr);

    void Show(const QImage& picture);
    void Show(const QString& words);
    void Clear() { Show(QString()); }

    /// In the picture's own points; empty without one.
    QSize PictureSize() const { return picture_.size(); }
    int PictureWidth() const { return picture_.width(); }
    int PictureHeight() const { return picture_.height(); }
    const QString& Words() const { return words_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QImage picture_;
    QString words_;
};

#pragma once

#include <QString>

class QWidget;

/// What is done with each screen.
class Camera {
public:
    virtual ~Camera() = default;

    /// Shows a window, or a part of one, and takes it as it stands. `name`: the form, and its face where it
    /// has several.
    void Take(QWidget& window, const QString& name);

protected:
    /// OfficeFailure when what comes of it cannot be written.
    virtual void TakeShown(QWidget& window, const QString& name) = 0;
};

/// Saves a picture of each, "<name>-light.png" or "<name>-dark.png", and names the file.
class FolderCamera final : public Camera {
public:
    /// Makes the folder.
    explicit FolderCamera(QString folder);

protected:
    void TakeShown(QWidget& window, const QString& name) override;

private:
    QString folder_;
};

/// Looks at the screens in place of a person, instead of taking pictures of them.
class Looker final : public Camera {
public:
    /// `mayScroll`: with letters or a scale for which a small screen has too little room. `longer`: with
    /// texts a third longer, with which the fullest screens scroll there too.
    Looker(bool mayScroll, bool longer) : mayScroll_(mayScroll), longer_(longer) {}

    int Looks() const { return looks_; }
    int Problems() const { return problems_; }

protected:
    void TakeShown(QWidget& window, const QString& name) override;

private:
    bool mayScroll_, longer_;
    int looks_ = 0, problems_ = 0;
};

/// Lets happen what is to happen at once.
void Settle();

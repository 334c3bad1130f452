#pragma once

#include "Camera.h"

#include <QSet>

class QImage;

/// The pictures of screens that pages refer to: those of the help in `resources/help/pictures`, and those of
/// README.md in `docs/pictures`. They are palette PNG files, at most 700 pixels wide. Each that looks
/// otherwise than its file did is named; the file of one that looks the same is left as it is. OfficeFailure
/// when a page or a picture cannot be read or written.
class PagePictures final : public Camera {
public:
    /// Reads which pictures the pages below `sources`, the folder of the program's sources, refer to.
    explicit PagePictures(const QString& sources);

    /// Removes the files that no page refers to any more, and says how many pictures have changed.
    /// OfficeFailure, with their names, when there are pictures that were never taken.
    void Finish();

protected:
    /// For each page that wants a picture of this name. A window may be made narrower for it, and gets its
    /// title above it as a desktop would show it.
    void TakeShown(QWidget& window, const QString& name) override;

private:
    void ReadNames(const QString& page, const QString& folder);
    void Write(const QImage& picture, const QString& path);

    QString sources_;
    QSet<QString> wanted_, taken_; ///< paths below the folder of the sources
    int changed_ = 0;
};

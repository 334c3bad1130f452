#include "platform/Animation.h"

#include "core/Globals.h"
#include "core/Paths.h"
#include "platform/Convert.h"

#include <QLabel>

namespace {

/// The files hold this many pixels for each one of the screen, so that edges are smooth on any ground.
constexpr double Oversize = 3;

} // namespace

Animation::Animation() {
    connect(&movie_, &QMovie::frameChanged, this, [this] { ShowFrame(); });
}

void Animation::SetLabel(QLabel& label) {
    label_ = &label;
    label_->hide();
}

void Animation::Play(const char* name) {
    Stop();
    movie_.setFileName(PathToQt(ResolvePath(Global.GraphicsPath + name + ".gif")));
    if (!movie_.isValid()) return;
    movie_.start();
    label_->setVisible(IsPlaying());
}

void Animation::Stop() {
    movie_.stop();
    label_->hide();
}

void Animation::ShowFrame() {
    const QImage frame = movie_.currentImage();
    if (frame.isNull()) return;
    const double ratio = label_->devicePixelRatioF();
    QImage scaled =
        frame.convertToFormat(QImage::Format_ARGB32_Premultiplied)
            .scaled(frame.size() * (ratio / Oversize), Qt::KeepAspectRatio, Qt::SmoothTransformation);
    scaled.setDevicePixelRatio(ratio);
    label_->setPixmap(QPixmap::fromImage(scaled));
}

#pragma once

#include <QMovie>

class QLabel;

/// Plays the animations of the graphics directory in a label, which is hidden while none plays. One that is
/// not there or is broken shows nothing, and nobody is told: it stops nothing.
class Animation final : public QObject {
    Q_OBJECT

public:
    Animation();

    /// Where it plays. Before the first Play.
    void SetLabel(QLabel& label);

    /// Plays `<name>.gif` over and over, in place of what plays.
    void Play(const char* name);
    void Stop();

    bool IsPlaying() const { return movie_.state() == QMovie::Running; }

private:
    void ShowFrame();

    QLabel* label_ = nullptr;
    QMovie movie_;
};

#pragma once

#include <QAbstractAnimation>

/// Keeps what changes more often than the screen to the pace of the toolkit's animations, so that
/// all that moves shares one frame.
class FramePace : public QAbstractAnimation
{
    Q_OBJECT

public:
    using QAbstractAnimation::QAbstractAnimation;

    /// Asks for `due`: at once after a rest, otherwise with the next frame of the animations.
    void request();
    /// It rests as soon as nobody asks.
    int duration() const override { return -1; }

Q_SIGNALS:
    void due();

protected:
    void updateCurrentTime(int currentTime) override;

private:
    bool m_isRequested = false;
};

#pragma once

#include <QAbstractAnimation>

/// Keeps what changes more often than the eye can follow to every second frame of Qt's animations:
/// all that moves shares one frame, and a flood costs half of what it would.
class FrameThrottle : public QAbstractAnimation
{
    Q_OBJECT

public:
    using QAbstractAnimation::QAbstractAnimation;

    /// Milliseconds that pass between two at least: as long as one frame and half of another, so
    /// that neither a frame that comes late nor one that comes early changes which it is.
    static constexpr int interval = 24;

    /// Asks for `due`: at once after a rest, otherwise with the second frame after the last.
    void request();
    /// What was asked for has come with another frame, and the next is counted from there.
    void markServed();
    /// It rests as soon as nobody asks.
    int duration() const override { return -1; }

Q_SIGNALS:
    void due();

protected:
    void updateCurrentTime(int currentTime) override;

private:
    bool m_isRequested = false;
    int m_lastTime = 0; ///< when it was due or served
};

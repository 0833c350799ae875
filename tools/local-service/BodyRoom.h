#pragma once

#include <QtGlobal>

#include <atomic>

/// How many bytes the bodies of all requests under way may hold together. Safe to use from many
/// threads.
class BodyRoom
{
public:
    /// The room that one body takes up, given back when it is destroyed.
    class Share
    {
    public:
        /// `room` is borrowed and outlives this object.
        explicit Share(BodyRoom &room);
        ~Share();
        Q_DISABLE_COPY_MOVE(Share)

        /// Makes the share at least `bytes` large. False where there is no room: nothing is left of
        /// the share then, so that bodies that do fit find some.
        bool growTo(qint64 bytes);

    private:
        BodyRoom &m_room;
        qint64 m_bytes = 0;
    };

    explicit BodyRoom(qint64 bytes);

private:
    std::atomic<qint64> m_left;
};

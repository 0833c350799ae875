#include "BodyRoom.h"

BodyRoom::BodyRoom(qint64 bytes)
    : m_left(bytes)
{ }

BodyRoom::Share::Share(BodyRoom &room)
    : m_room(room)
{ }

BodyRoom::Share::~Share()
{
    m_room.m_left += m_bytes;
}

bool BodyRoom::Share::growTo(qint64 bytes)
{
    const qint64 more = bytes - m_bytes;
    if (more <= 0)
        return true;
    if (m_room.m_left.fetch_sub(more) < more) {
        m_room.m_left += more + m_bytes;
        m_bytes = 0;
        return false;
    }
    m_bytes = bytes;
    return true;
}

#include "UserMemory.h"

QStringList UserMemory::subjects(const QString &userId) const
{
    const std::scoped_lock lock(m_mutex);
    return m_users.value(userId).subjects;
}

void UserMemory::remember(const QString &userId, const QString &subject)
{
    if (userId.isEmpty() || subject.isEmpty())
        return;
    const std::scoped_lock lock(m_mutex);

    auto user = m_users.find(userId);
    if (user == m_users.end()) {
        if (m_users.size() == mostUsers) {
            m_users.remove(m_order.back());
            m_order.pop_back();
        }
        m_order.push_front(userId);
        user = m_users.insert(userId, {{}, m_order.begin()});
    } else {
        m_order.splice(m_order.begin(), m_order, user->place);
    }

    user->subjects.removeAll(subject);
    user->subjects.prepend(subject);
    if (user->subjects.size() > mostSubjects)
        user->subjects.removeLast();
}

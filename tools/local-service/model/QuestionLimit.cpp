#include "QuestionLimit.h"

QuestionLimit::QuestionLimit(int mostByAll)
    : m_mostByAll(mostByAll)
{ }

bool QuestionLimit::take(const QString &userId, Time now)
{
    const std::scoped_lock lock(m_mutex);
    while (!m_questions.empty() && now - m_questions.front().time >= std::chrono::minutes(1)) {
        const auto user = m_byUser.find(m_questions.front().userId);
        if (--*user == 0)
            m_byUser.erase(user);
        m_questions.pop_front();
    }
    if (static_cast<int>(m_questions.size()) >= m_mostByAll
        || m_byUser.value(userId) >= mostByOneUser)
        return false;
    m_questions.push_back({now, userId});
    ++m_byUser[userId];
    return true;
}

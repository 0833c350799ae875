#include "ModelReply.h"

#include "ChatCompletionParser.h"
#include "MarkdownReducer.h"
#include "ReviewMark.h"
#include "ThinkingFilter.h"

#include <utility>

using namespace Qt::StringLiterals;
using ParserState = ChatCompletionParser::State;

// How often a connection that is still being opened is told to end.
static constexpr auto stopInterval = std::chrono::milliseconds(20);

// What a reader is told below an answer that lacks its end; empty when it has one.
static QString cutNotice(ParserState state, bool isTooLong)
{
    if (state == ParserState::TooLong || isTooLong)
        return u"(La respuesta se cortó porque llegó al largo máximo. Pedime que siga.)"_s;
    if (state == ParserState::Withheld)
        return u"(El proveedor del modelo cortó la respuesta.)"_s;
    return {};
}

ModelReply::ModelReply(const ModelService &service, const QByteArray &body,
                       const QStringList &firstLines, WhenWhole whenWhole)
    : m_connection(service)
    , m_whenWhole(std::move(whenWhole))
    , m_lines(firstLines.begin(), firstLines.end())
    , m_reading([this, body] { read(body); })
{ }

ModelReply::~ModelReply()
{
    {
        std::unique_lock lock(m_mutex);
        while (!m_hasEnded) {
            m_connection.stop();
            m_changed.wait_for(lock, stopInterval, [this] { return m_hasEnded; });
        }
    }
    m_reading.join();
}

ModelReply::State ModelReply::wait(std::chrono::steady_clock::time_point time)
{
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait_until(lock, time, [this] { return m_hasEnded || !m_lines.empty(); });
        if (!m_lines.empty())
            return State::Line;
        if (!m_hasEnded)
            return State::Waiting;
    }
    if (!m_isWhole)
        return State::Failed;
    if (const auto whenWhole = std::exchange(m_whenWhole, {}))
        whenWhole(m_outcome);
    return State::Whole;
}

QString ModelReply::takeLine()
{
    const std::scoped_lock lock(m_mutex);
    QString line = std::move(m_lines.front());
    m_lines.pop_front();
    return line;
}

void ModelReply::give(const QStringList &lines)
{
    if (lines.isEmpty())
        return;
    const std::scoped_lock lock(m_mutex);
    for (const QString &line : lines) {
        if (const auto topic = reviewMark(line)) {
            m_outcome.toReview += *topic;
            continue;
        }
        if (!m_outcome.text.isEmpty())
            m_outcome.text += u'\n';
        m_outcome.text += line;
        m_lines.push_back(line);
    }
    m_changed.notify_all();
}

void ModelReply::read(const QByteArray &body)
{
    ChatCompletionParser parser;
    ThinkingFilter filter;
    MarkdownReducer reducer;
    qsizetype length = 0;

    const auto result = m_connection.post(body, [&](QByteArrayView bytes) {
        const QString text = parser.feed(bytes);
        // Thoughts count as well: a model that never ends them would never be stopped.
        length += text.size();
        give(reducer.feed(filter.feed(text)));
        return parser.state() == ParserState::Reading && length <= longestAnswer;
    });

    const auto *end = std::get_if<ModelConnection::BodyEnd>(&result);
    const bool isTooLong = length > longestAnswer;
    if (end) {
        const QString text = filter.feed(parser.finish()) + filter.finish();
        give(reducer.feed(text));
        const bool isWhole = isTooLong
            || (parser.state() == ParserState::Reading ? *end == ModelConnection::BodyEnd::Told
                                                       : parser.state() != ParserState::Failed);
        if (isWhole) {
            give(reducer.finish());
            const QString notice = cutNotice(parser.state(), isTooLong);
            if (!notice.isEmpty())
                give({notice});
        }
        const std::scoped_lock lock(m_mutex);
        m_isWhole = isWhole && !m_outcome.text.isEmpty();
        if (!isWhole) {
            m_failure = parser.state() == ParserState::Failed ? parser.failure()
                                                              : ModelFailure::BrokenOff;
        }
    }
    const std::scoped_lock lock(m_mutex);
    if (const auto *failure = std::get_if<ModelFailure>(&result))
        m_failure = *failure;
    m_hasEnded = true;
    m_changed.notify_all();
}

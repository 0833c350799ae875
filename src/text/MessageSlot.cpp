#include "MessageSlot.h"

void MessageSlot::setMessageText(const QString &text)
{
    if (m_messageText == text)
        return;
    m_messageText = text;
    Q_EMIT messageTextChanged();
}

void MessageSlot::setTracked(bool tracked)
{
    if (m_isTracked == tracked)
        return;
    m_isTracked = tracked;
    setNearBand(tracked ? VerticalBand{} : VerticalBand{-everywhere, everywhere});
    Q_EMIT trackedChanged();
}

void MessageSlot::setNearBand(VerticalBand band)
{
    if (m_nearBand == band)
        return;
    const bool wasNear = isNearViewport();
    m_nearBand = band;
    Q_EMIT nearBandChanged();
    if (wasNear != isNearViewport())
        Q_EMIT nearViewportChanged();
}

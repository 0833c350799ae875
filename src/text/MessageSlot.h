#pragma once

#include "VerticalBand.h"

#include <QQuickItem>

/// The place of one message among the others. It knows which part of it is near the visible part
/// of the list, so that what it holds is painted only there; its size is exact wherever it is.
/// All of it counts as near unless a `ViewportTracker` looks after it.
class MessageSlot : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString messageText READ messageText WRITE setMessageText NOTIFY messageTextChanged
                   REQUIRED)
    Q_PROPERTY(bool tracked READ isTracked WRITE setTracked NOTIFY trackedChanged)
    Q_PROPERTY(bool nearViewport READ isNearViewport NOTIFY nearViewportChanged)

public:
    using QQuickItem::QQuickItem;

    /// The message itself. It is here and not in QML, where a reply would be copied with every
    /// line.
    QString messageText() const { return m_messageText; }
    void setMessageText(const QString &text);
    /// Whether a tracker looks after it; until that has, nothing is near.
    bool isTracked() const { return m_isTracked; }
    void setTracked(bool tracked);
    bool isNearViewport() const { return !m_nearBand.isEmpty(); }
    /// Empty when no part is near.
    VerticalBand nearBand() const { return m_nearBand; }
    void setNearBand(VerticalBand band);

Q_SIGNALS:
    void messageTextChanged();
    void trackedChanged();
    void nearViewportChanged();
    void nearBandChanged();

private:
    static constexpr double everywhere = 1e9;

    QString m_messageText;
    bool m_isTracked = false;
    VerticalBand m_nearBand{-everywhere, everywhere};
};

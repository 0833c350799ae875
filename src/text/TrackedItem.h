#pragma once

#include "VerticalBand.h"
#include "ViewportTracker.h"

#include <QPointer>
#include <QQuickItem>

/// One item of a list that scrolls. It knows which part of it is near the visible part of the list,
/// so that what it holds is painted only there; its size is exact wherever it is.
class TrackedItem : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(ViewportTracker *tracker READ tracker WRITE setTracker NOTIFY trackerChanged)
    Q_PROPERTY(bool nearViewport READ isNearViewport NOTIFY nearViewportChanged)

public:
    explicit TrackedItem(QQuickItem *parent = nullptr);
    ~TrackedItem() override;
    Q_DISABLE_COPY_MOVE(TrackedItem)

    ViewportTracker *tracker() const { return m_tracker; }
    /// From now on `tracker` says what is near, and nothing is until it has. All of it counts as
    /// near without one.
    void setTracker(ViewportTracker *tracker);
    bool isNearViewport() const { return !m_nearBand.isEmpty(); }
    /// Empty when no part is near.
    VerticalBand nearBand() const { return m_nearBand; }
    void setNearBand(VerticalBand band);

Q_SIGNALS:
    void trackerChanged();
    void nearViewportChanged();
    void nearBandChanged();

private:
    static constexpr double everywhere = 1e9;

    QPointer<ViewportTracker> m_tracker;
    VerticalBand m_nearBand{-everywhere, everywhere};
};

#pragma once

#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

/// What a texture provider holds, stretched smoothly over a rectangle with continuous corners. For
/// renderers that have textures: the software renderer shows nothing of it. Its edge is not
/// smoothed, so something else has to lie over that.
class ContinuousTexture : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    /// An item whose `textureProvider()` is asked, such as a ShaderEffectSource.
    Q_PROPERTY(QQuickItem *source MEMBER m_source NOTIFY sourceChanged)
    /// In points.
    Q_PROPERTY(double radius MEMBER m_radius NOTIFY radiusChanged)

public:
    explicit ContinuousTexture(QQuickItem *parent = nullptr);

Q_SIGNALS:
    void sourceChanged();
    void radiusChanged();

protected:
    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *data) override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;

private:
    QPointer<QQuickItem> m_source;
    double m_radius = 0;
};

#pragma once

#include <QColor>
#include <QImage>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

/// The shadow of a rectangle with continuous corners that floats above the rest: of the item's
/// size, reaching beyond it. It is left out beneath the rectangle, so that one that fades in or out
/// does not darken. It is painted here, not by an effect, and looks the same on every renderer.
class SoftShadow : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    /// The corner radius of what casts it, in points.
    Q_PROPERTY(double radius MEMBER m_radius NOTIFY shapeChanged)
    /// How far it fades out, in points.
    Q_PROPERTY(double spread MEMBER m_spread NOTIFY shapeChanged)
    /// How far below its caster it falls, in points.
    Q_PROPERTY(double drop MEMBER m_drop NOTIFY shapeChanged)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY shapeChanged)

public:
    explicit SoftShadow(QQuickItem *parent = nullptr);

Q_SIGNALS:
    void shapeChanged();

protected:
    void updatePolish() override;
    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *data) override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    void itemChange(ItemChange change, const ItemChangeData &value) override;

private:
    QImage paint(QSizeF casterSize, double ratio) const;

    double m_radius = 0;
    double m_spread = 24;
    double m_drop = 8;
    QColor m_color = Qt::black;
    QImage m_image;
    bool m_imageChanged = false;
};

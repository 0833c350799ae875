#pragma once

#include <QColor>
#include <QImage>
#include <QList>
#include <QQuickItem>

/// A filled and stroked rectangle with continuous corners. The stroke lies inside the edge.
///
/// However large, it costs one small image of its corners, cut in nine: the outer parts stay as
/// they are and the middle ones stretch. Only a dashed stroke is painted at full size. While it is
/// hidden it costs none.
class ContinuousRectangle : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double radius READ radius WRITE setRadius NOTIFY radiusChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
    Q_PROPERTY(QColor borderColor READ borderColor WRITE setBorderColor NOTIFY borderColorChanged)
    Q_PROPERTY(double borderWidth READ borderWidth WRITE setBorderWidth NOTIFY borderWidthChanged)
    Q_PROPERTY(
        QList<double> dashPattern READ dashPattern WRITE setDashPattern NOTIFY dashPatternChanged)

public:
    explicit ContinuousRectangle(QQuickItem *parent = nullptr);

    double radius() const { return m_radius; }
    void setRadius(double radius);
    QColor color() const { return m_color; }
    void setColor(QColor color);
    QColor borderColor() const { return m_borderColor; }
    void setBorderColor(QColor color);
    /// In points; 0, the default, is no border.
    double borderWidth() const { return m_borderWidth; }
    void setBorderWidth(double width);
    /// Lengths in points, drawn and left out in turn; empty is a solid line. Ends are cut square.
    QList<double> dashPattern() const { return m_dashPattern; }
    void setDashPattern(const QList<double> &pattern);

Q_SIGNALS:
    void radiusChanged();
    void colorChanged();
    void borderColorChanged();
    void borderWidthChanged();
    void dashPatternChanged();

protected:
    void updatePolish() override;
    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *data) override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    void itemChange(ItemChange change, const ItemChangeData &value) override;

private:
    QImage paint(QSizeF size, double ratio) const;

    double m_radius = 0;
    QColor m_color = Qt::transparent;
    QColor m_borderColor = Qt::transparent;
    double m_borderWidth = 0;
    QList<double> m_dashPattern;
    QImage m_image;
    bool m_imageChanged = false;
};

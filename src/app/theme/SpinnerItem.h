#pragma once

#include "ImageItem.h"

#include <QBasicTimer>
#include <QColor>

/// An indeterminate progress indicator: spokes that fade one after the other. `size` is its
/// diameter in points. While it cannot be seen it does nothing.
class SpinnerItem : public ImageItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(int size READ diameter WRITE setDiameter NOTIFY sizeChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)

public:
    static constexpr int smallSize = 16;

    explicit SpinnerItem(QQuickItem *parent = nullptr);

    int diameter() const { return m_diameter; }
    void setDiameter(int points);
    QColor color() const { return m_color; }
    void setColor(QColor color);
    bool isRunning() const { return m_timer.isActive(); }

Q_SIGNALS:
    void sizeChanged();
    void colorChanged();

protected:
    void itemChange(ItemChange change, const ItemChangeData &value) override;
    void timerEvent(QTimerEvent *event) override;
    QImage paintedImage(QSizeF size, double ratio) const override;

private:
    void updateRunning();

    QBasicTimer m_timer;
    int m_diameter = smallSize;
    QColor m_color = Qt::gray;
    int m_step = 0;
};

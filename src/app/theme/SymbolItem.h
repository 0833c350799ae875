#pragma once

#include "ImageItem.h"

#include <QColor>
#include <QFont>

/// A symbol beside text: `size` is the font size in points and `weight` the font weight of the
/// text it goes with. A name without a drawing is reported and leaves the item empty.
class SymbolItem : public ImageItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged REQUIRED)
    Q_PROPERTY(double size READ fontSize WRITE setFontSize NOTIFY sizeChanged)
    Q_PROPERTY(int weight READ weight WRITE setWeight NOTIFY weightChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)

public:
    explicit SymbolItem(QQuickItem *parent = nullptr);

    QString name() const { return m_name; }
    void setName(const QString &name);
    double fontSize() const { return m_fontSize; }
    void setFontSize(double points);
    int weight() const { return m_weight; }
    void setWeight(int weight);
    QColor color() const { return m_color; }
    void setColor(QColor color);

Q_SIGNALS:
    void nameChanged();
    void sizeChanged();
    void weightChanged();
    void colorChanged();

protected:
    void componentComplete() override;
    QImage paintedImage(QSizeF size, double ratio) const override;

private:
    void checkName() const;

    QString m_name;
    double m_fontSize = 13;
    int m_weight = QFont::Normal;
    QColor m_color = Qt::black;
};

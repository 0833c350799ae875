#include "SymbolItem.h"

#include "SymbolImage.h"

#include <QtQml/qqmlinfo.h>

SymbolItem::SymbolItem(QQuickItem *parent)
    : ImageItem(parent)
{
    setImplicitSize(symbolExtent(m_fontSize), symbolExtent(m_fontSize));
}

void SymbolItem::setName(const QString &name)
{
    if (m_name == name)
        return;
    m_name = name;
    if (isComponentComplete())
        checkName();
    repaint();
    Q_EMIT nameChanged();
}

void SymbolItem::setFontSize(double points)
{
    if (m_fontSize == points)
        return;
    m_fontSize = points;
    setImplicitSize(symbolExtent(points), symbolExtent(points));
    repaint();
    Q_EMIT sizeChanged();
}

void SymbolItem::setWeight(int weight)
{
    if (m_weight == weight)
        return;
    m_weight = weight;
    repaint();
    Q_EMIT weightChanged();
}

void SymbolItem::setColor(QColor color)
{
    if (m_color == color)
        return;
    m_color = color;
    repaint();
    Q_EMIT colorChanged();
}

void SymbolItem::componentComplete()
{
    ImageItem::componentComplete();
    checkName();
}

QImage SymbolItem::paintedImage(QSizeF, double ratio) const
{
    return symbolImage(m_name, m_fontSize, m_weight, m_color, ratio);
}

void SymbolItem::checkName() const
{
    if (!symbolExists(m_name))
        qmlWarning(this) << "no symbol is named " << m_name;
}

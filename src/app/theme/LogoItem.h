#pragma once

#include "ImageItem.h"

#include <QColor>

/// The logo, the mark and the word "Aulora IA": the mark in its own colours, the word in
/// `wordColor`. Give it a width; its implicit height keeps the proportions.
class LogoItem : public ImageItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor wordColor READ wordColor WRITE setWordColor NOTIFY wordColorChanged)
    Q_PROPERTY(double aspectRatio READ aspectRatio CONSTANT)

public:
    explicit LogoItem(QQuickItem *parent = nullptr);

    QColor wordColor() const { return m_wordColor; }
    void setWordColor(QColor color);
    /// Width divided by height.
    static double aspectRatio();

Q_SIGNALS:
    void wordColorChanged();

protected:
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    QImage paintedImage(QSizeF size, double ratio) const override;

private:
    QColor m_wordColor = Qt::black;
};

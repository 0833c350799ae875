#pragma once

#include "ImageItem.h"

#include <QColor>

/// The logo, the mark and the word "Aulora IA": the mark in its own colours, the word in
/// `wordColor`. Its implicit size is the size it was drawn at, for the proportions.
class LogoItem : public ImageItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor wordColor READ wordColor WRITE setWordColor NOTIFY wordColorChanged)

public:
    explicit LogoItem(QQuickItem *parent = nullptr);

    QColor wordColor() const { return m_wordColor; }
    void setWordColor(QColor color);

Q_SIGNALS:
    void wordColorChanged();

protected:
    QImage paintedImage(QSizeF size, double ratio) const override;

private:
    QColor m_wordColor = Qt::black;
};

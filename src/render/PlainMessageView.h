#pragma once

#include "SelectableText.h"

/// A question as it was typed: every line a row, nothing interpreted.
class PlainMessageView : public SelectableText
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(double points READ points WRITE setPoints NOTIFY pointsChanged)

public:
    explicit PlainMessageView(QQuickItem *parent = nullptr);

    QString text() const { return m_text; }
    void setText(const QString &text);
    /// The size of the font.
    double points() const { return m_points; }
    void setPoints(double points);

Q_SIGNALS:
    void textChanged();
    void pointsChanged();

protected:
    void updateRows() override;

private:
    QString m_text;
    double m_points = 13;
};

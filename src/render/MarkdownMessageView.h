#pragma once

#include "BoldMarkdownText.h"
#include "FrameThrottle.h"
#include "MarkdownBlock.h"
#include "SelectableText.h"

#include <optional>

/// The text that the row of `block` shows, at sizes multiplied by `textScale`; nothing for an empty
/// block, whose row is blank.
std::optional<BoldMarkdownText> blockView(const MarkdownBlock &block, double textScale);

/// A reply as formatted rows, one for each of its lines.
///
/// When `text` grows, only its last line and what follows are parsed, laid out and painted, so a
/// line costs the same at the end of a long reply as at its start. Lines that come faster than
/// frames are shown together.
class MarkdownMessageView : public SelectableText
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY textChanged)
    Q_PROPERTY(double textScale READ textScale WRITE setTextScale NOTIFY textScaleChanged)
    Q_PROPERTY(QColor dotColor READ dotColor WRITE setDotColor NOTIFY colorsChanged)

public:
    static constexpr double rowSpacing = 7;
    static constexpr double blankHeight = 4;

    explicit MarkdownMessageView(QQuickItem *parent = nullptr);

    QString text() const { return m_text; }
    void setText(const QString &text);
    /// The same as setting a text that ends in `piece`, at a cost that does not grow with the text.
    Q_INVOKABLE void appendText(const QString &piece);
    bool isEmpty() const { return m_text.isEmpty(); }
    double textScale() const { return m_textScale; }
    void setTextScale(double scale);
    QColor dotColor() const { return colors().dot; }
    void setDotColor(QColor color);

Q_SIGNALS:
    void textChanged();
    void textScaleChanged();

protected:
    void updateRows() override;

private:
    void textHasChanged();

    QString m_text;
    FrameThrottle m_throttle;
    double m_textScale = 1;
    /// The rows that are as `m_text` says, from the first on, and where the line of the next
    /// begins.
    qsizetype m_validRows = 0;
    qsizetype m_validLength = 0;
};

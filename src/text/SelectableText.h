#pragma once

#include "EdgeScroller.h"
#include "TextRowsItem.h"

#include <QClipboard>
#include <QElapsedTimer>

/// Rows of text that can be selected and copied but not changed: by dragging, a word by a double
/// click, a row by a triple one, all of it by the keys. Focus follows the selection, and leaving
/// the message clears it, so one message at a time has one.
class SelectableText : public TextRowsItem
{
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(
        QColor selectionColor READ selectionColor WRITE setSelectionColor NOTIFY colorsChanged)
    Q_PROPERTY(QString selectedText READ selectedText NOTIFY selectionChanged)

public:
    QColor selectionColor() const { return colors().selection; }
    void setSelectionColor(QColor color);

    /// The selected part of `plainText`, with control characters as they came and not as they are
    /// shown; empty when nothing is selected.
    QString selectedText() const;
    Q_INVOKABLE void selectAll();
    Q_INVOKABLE void clearSelection();

Q_SIGNALS:
    void selectionChanged();

protected:
    SelectableText(double rowSpacing, QQuickItem *parent);

    /// As `TextRowsItem::replaceRows`; what was selected in rows that stay remains selected.
    void replaceRows(qsizetype first, std::vector<TextRow> rows);
    TextSpan selection() const override { return m_selection; }

    bool event(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseUngrabEvent() override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    /// What a drag selects whole.
    enum class Unit { character, word, row };

    void beginSelection(QPointF point, Unit unit);
    void extendSelection(QPointF point);
    void select(const TextSpan &span);
    TextSpan unitAt(QPointF point) const;
    TextRange wordAt(QPointF point) const;
    TextPosition clamped(TextPosition position) const;
    void copyTo(QClipboard::Mode mode) const;

    TextSpan m_selection;
    TextSpan m_anchor; ///< the unit the drag began at
    Unit m_unit = Unit::character;
    QElapsedTimer m_sinceDoubleClick;
    QPointF m_doubleClickPoint;
    EdgeScroller m_edgeScroller;
};

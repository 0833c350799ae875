#pragma once

#include "TextRow.h"
#include "TextSelection.h"
#include "TileCache.h"
#include "TrackedItem.h"

#include <QBasicTimer>
#include <QColor>
#include <QPointer>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

#include <vector>

/// Rows of text, one below the other.
///
/// Its implicit size is exact as soon as it has a width to wrap at. It is painted only where it is
/// near the visible part of the list, as its `trackedItem` says. Text that nobody tracks is painted
/// whole, however long it is, and a warning tells of it.
class TextRowsItem : public QQuickItem
{
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(double wrapWidth READ wrapWidth WRITE setWrapWidth NOTIFY wrapWidthChanged)
    Q_PROPERTY(
        TrackedItem *trackedItem READ trackedItem WRITE setTrackedItem NOTIFY trackedItemChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorsChanged)
    Q_PROPERTY(QString plainText READ plainText NOTIFY plainTextChanged)

public:
    /// In points; without one nothing is laid out.
    double wrapWidth() const { return m_wrapWidth; }
    void setWrapWidth(double width);
    /// The item of the list that holds the text, directly or in others.
    TrackedItem *trackedItem() const { return m_trackedItem; }
    void setTrackedItem(TrackedItem *item);
    QColor color() const { return m_colors.text; }
    void setColor(QColor color);

    /// The rows as they are shown, one a line. While lines are added to the end its change is told
    /// once a second at most, so that a screen reader is not told of every line. The whole text is
    /// told at once.
    QString plainText() const;

    /// Of a line of text at a size and weight, in points: what a label of one line is high.
    Q_INVOKABLE static double lineHeight(double points, int weight);

    qsizetype rowCount() const { return qsizetype(m_rows.size()); }
    const TextRow &row(qsizetype index) const { return m_rows.at(index).row; }
    /// In points below the item's top.
    double rowTop(qsizetype index) const { return m_rows.at(index).top; }

Q_SIGNALS:
    void wrapWidthChanged();
    void trackedItemChanged();
    void colorsChanged();
    void plainTextChanged();

protected:
    TextRowsItem(double rowSpacing, QQuickItem *parent);

    /// Brings the rows in line with what they come from, through `replaceRows`.
    virtual void updateRows() = 0;
    /// Has `updateRows` called before the next frame, once for all that arrives until then.
    void scheduleRows();
    /// Has it called as soon as anything else brings a frame.
    void markRowsStale() { m_rowsAreStale = true; }
    /// Replaces all rows from `first` on.
    void replaceRows(qsizetype first, std::vector<TextRow> rows);

    /// What is drawn as selected.
    virtual TextSpan selection() const { return {}; }
    void repaintRows(qsizetype first, qsizetype last);
    const TextColors &colors() const { return m_colors; }
    void setColors(const TextColors &colors);

    /// The nearest place between two characters.
    TextPosition positionAt(QPointF point) const;
    /// Where the character at `point` begins, or the nearest one of its line.
    TextPosition characterAt(QPointF point) const;

    void componentComplete() override;
    void itemChange(ItemChange change, const ItemChangeData &value) override;
    void updatePolish() override;
    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *data) override;
    void timerEvent(QTimerEvent *event) override;

private:
    struct PlacedRow
    {
        TextRow row;
        double top = 0;
        double widest = 0; ///< of this row and all before it

        double bottom() const { return top + row.height(); }
    };
    using Rows = std::vector<PlacedRow>;

    void placeRows(qsizetype first);
    void tellPlainText(qsizetype firstChanged);
    Rows::const_iterator rowAt(double y) const;
    void paint(QPainter &painter, VerticalBand band) const;
    VerticalBand nearBand() const;
    void warnIfUntracked();
    QPointF offsetToWholePixels(double ratio) const;

    double m_rowSpacing;
    double m_wrapWidth = 0;
    TextColors m_colors;
    Rows m_rows;
    bool m_rowsAreStale = true;
    TileCache m_tileCache;
    QPointer<TrackedItem> m_trackedItem;
    bool m_hasWarned = false;
    QBasicTimer m_plainTextTimer;
    bool m_plainTextIsUntold = false;
};

#pragma once

#include <QPointer>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

/// Keeps a list where it is being read while the room it has, or the size of its text, changes: one
/// at its end stays there, and elsewhere the line that was at the top stays at the top, however
/// lines are broken now.
///
/// It remembers the place whenever the list has been scrolled or its content has changed, and goes
/// back to it in the frame in which the list is laid out anew, before that is seen. The place stays
/// the same meanwhile, so that it does not drift while a window is dragged narrower and wider. What
/// is appended moves nothing.
class ScrollAnchor : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    /// What scrolls: an item with a `contentY` and a `contentHeight`.
    Q_PROPERTY(QQuickItem *flickable MEMBER m_flickable NOTIFY partsChanged REQUIRED)
    /// The column in it, whose children lie one below the other.
    Q_PROPERTY(QQuickItem *content MEMBER m_content NOTIFY partsChanged REQUIRED)
    /// The last of them: while its bottom edge shows, the list is at its end.
    Q_PROPERTY(QQuickItem *end MEMBER m_end NOTIFY partsChanged REQUIRED)

public:
    explicit ScrollAnchor(QQuickItem *parent = nullptr);

    /// Call when something else than the flickable's size will lay the list out anew.
    Q_INVOKABLE void hold();

Q_SIGNALS:
    void partsChanged();

protected:
    void componentComplete() override;
    void updatePolish() override;

private Q_SLOTS:
    void schedule() { polish(); }

private:
    /// A place in the list: an edge of a child, or a line of the text in it.
    struct Place
    {
        QPointer<QQuickItem> child;
        bool isAtEnd = false; ///< the child's bottom edge, and the flickable's
        qsizetype row = -1; ///< of the child's text; -1 for the child's top edge
        qsizetype character = 0; ///< of the row, in UTF-16 units
        double distance = 0; ///< points from there down to the flickable's edge
    };

    void release();
    void restore();
    double contentY() const;
    double lowestContentY() const;
    Place currentPlace() const;
    double contentYFor(const Place &place) const;

    QPointer<QQuickItem> m_flickable;
    QPointer<QQuickItem> m_content;
    QPointer<QQuickItem> m_end;
    Place m_place;
    bool m_isHolding = false;
    bool m_isRestored = false;
};

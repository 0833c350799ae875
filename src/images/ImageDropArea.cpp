#include "ImageDropArea.h"

#include "DroppedItems.h"

#include <QDropEvent>

ImageDropArea::ImageDropArea(QQuickItem *parent)
    : QQuickItem(parent)
{
    setFlag(ItemAcceptsDrops);
}

void ImageDropArea::setIntake(ImageIntake *intake)
{
    if (m_intake == intake)
        return;
    m_intake = intake;
    Q_EMIT intakeChanged();
}

void ImageDropArea::dragEnterEvent(QDragEnterEvent *event)
{
    setTargeted(m_intake && m_intake->wouldTake(draggedItems(event->mimeData())));
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(m_isTargeted);
}

void ImageDropArea::dragMoveEvent(QDragMoveEvent *event)
{
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(m_isTargeted);
}

void ImageDropArea::dragLeaveEvent(QDragLeaveEvent *)
{
    setTargeted(false);
}

void ImageDropArea::dropEvent(QDropEvent *event)
{
    setTargeted(false);
    // Whatever the source proposes: a file it takes to be moved away, it would delete.
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(m_intake && m_intake->handleDrop(draggedItems(event->mimeData())));
}

void ImageDropArea::setTargeted(bool targeted)
{
    if (m_isTargeted == targeted)
        return;
    m_isTargeted = targeted;
    Q_EMIT isTargetedChanged();
}

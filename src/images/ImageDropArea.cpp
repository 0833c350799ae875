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
    if (m_intake)
        m_intake->disconnect(this);
    m_intake = intake;
    if (m_intake)
        connect(m_intake, &ImageIntake::takesDropsChanged, this, &ImageDropArea::updateTargeted);
    updateTargeted();
    Q_EMIT intakeChanged();
}

void ImageDropArea::dragEnterEvent(QDragEnterEvent *event)
{
    // After a drag enter event that was not accepted, neither leave nor drop follows.
    setHoveringImage(m_intake && m_intake->takesDrops()
                     && ImageIntake::containsImage(draggedItems(event->mimeData())));
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
    setHoveringImage(false);
}

void ImageDropArea::dropEvent(QDropEvent *event)
{
    setHoveringImage(false);
    // Always copy: a source that proposes to move would delete its file.
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(m_intake && m_intake->handleDrop(draggedItems(event->mimeData())));
}

void ImageDropArea::setHoveringImage(bool hovering)
{
    m_hasHoveringImage = hovering;
    updateTargeted();
}

void ImageDropArea::updateTargeted()
{
    const bool isTargeted = m_hasHoveringImage && m_intake && m_intake->takesDrops();
    if (m_isTargeted == isTargeted)
        return;
    m_isTargeted = isTargeted;
    Q_EMIT isTargetedChanged();
}

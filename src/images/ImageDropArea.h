#pragma once

#include "ImageIntake.h"

#include <QQuickItem>

/// Where images are dropped, files as well as image data from other programs. Drags that the intake
/// would not take are left to other items.
class ImageDropArea : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(ImageIntake *intake READ intake WRITE setIntake NOTIFY intakeChanged REQUIRED)
    /// True while a drag that would be taken hovers here; false as soon as it would no longer be
    /// taken.
    Q_PROPERTY(bool isTargeted READ isTargeted NOTIFY isTargetedChanged)

public:
    explicit ImageDropArea(QQuickItem *parent = nullptr);

    ImageIntake *intake() const { return m_intake; }
    void setIntake(ImageIntake *intake);
    bool isTargeted() const { return m_isTargeted; }

Q_SIGNALS:
    void intakeChanged();
    void isTargetedChanged();

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void setHoveringImage(bool hovering);
    void updateTargeted();

    ImageIntake *m_intake = nullptr;
    /// True while an accepted drag with an image hovers here, even if it would no longer be taken.
    bool m_hasHoveringImage = false;
    bool m_isTargeted = false;
};

#pragma once

#include <QObject>
#include <QStringList>
#include <QUrl>
#include <QVariantMap>
#include <QWindow>
#include <QtQml/qqmlregistration.h>

/// The desktop's own file chooser, which its portal opens for any program. Nothing here waits for
/// the bus: a desktop without a portal, or with one that does not answer, shows by `unavailable`.
class PortalChooser : public QObject
{
    Q_OBJECT
    QML_ELEMENT

public:
    using QObject::QObject;
    ~PortalChooser() override;

    /// Asks for one file whose name fits one of `patterns`, which go by `filterName`, in a dialog
    /// that belongs to `parent` where the window system can say so. `finished` or `unavailable`
    /// follows, once, unless it is opened again before.
    Q_INVOKABLE void open(QWindow *parent, const QString &title, const QString &acceptLabel,
                          const QString &filterName, const QStringList &patterns);

Q_SIGNALS:
    /// The dialog has gone: with the file that was chosen, or with none. So it does when the portal
    /// itself goes.
    void finished(const QList<QUrl> &urls);
    /// There is no such dialog to be had now.
    void unavailable();

private Q_SLOTS:
    void takeResponse(uint response, const QVariantMap &results);

private:
    void watchPortal();
    void forget();
    void close();

    /// The object that stands for the dialog on the bus; empty while there is none.
    QString m_request;
    /// True once the portal has taken the request on.
    bool m_isOpen = false;
    bool m_watchesPortal = false;
};

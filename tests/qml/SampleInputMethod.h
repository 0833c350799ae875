#pragma once

#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QObject>

/// An input method that composes where the keyboard is.
class SampleInputMethod : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Shows `text` as not yet decided on; an empty one ends composing without a result.
    Q_INVOKABLE void compose(const QString &text)
    {
        QInputMethodEvent event(text, {});
        QGuiApplication::sendEvent(QGuiApplication::focusObject(), &event);
    }
    Q_INVOKABLE void commit(const QString &text)
    {
        QInputMethodEvent event;
        event.setCommitString(text);
        QGuiApplication::sendEvent(QGuiApplication::focusObject(), &event);
    }
};

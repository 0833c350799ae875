// The views a person works with: composer, sidebar, study home, chat pane and settings. They take
// values and give signals; the window connects them to the state.
#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

/// What the composer bar derives from its inputs.
class ComposerRules : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    /// Where text is pasted from: the clipboard, or on X11 what is selected anywhere.
    enum class PasteSource { Clipboard, Selection };
    Q_ENUM(PasteSource)

    using QObject::QObject;

    /// Whether there is something to send and no exchange is under way. An image counts only while
    /// `imageAnalysisEnabled`; text counts when it holds more than white space and line ends.
    Q_INVOKABLE static bool canSend(const QString &text, bool hasImage, bool imageAnalysisEnabled,
                                    bool isLoading);

    /// Whether `text` holds a stretch without a blank so long that looking for word boundaries in
    /// it would hold up the window: with 100,000 characters that takes 635 ms, and grows with the
    /// square; wrapping them anywhere takes 18 ms.
    Q_INVOKABLE static bool hasUnbreakableStretch(const QString &text);

    /// The same of the text that a paste would insert.
    Q_INVOKABLE static bool clipboardHasUnbreakableStretch(ComposerRules::PasteSource source);
};

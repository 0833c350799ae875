// The views a person works with: composer, sidebar, study home, chat pane and settings. They take
// values and give signals; the window connects them to the state.
#pragma once

#include <QObject>
#include <QQuickTextDocument>
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

    /// How much work the layout of a text is, and what has to be saved so that pasting it does not
    /// block the window. Times are for 100,000 characters.
    enum class TextBulk {
        Ordinary,
        Long, ///< kerning and ligatures cost too much: 100 ms, and 20 ms without
        Unbreakable, ///< holds a stretch that costs 635 ms to wrap at words, and 16 ms anywhere
    };
    Q_ENUM(TextBulk)

    using QObject::QObject;

    /// Whether there is something to send and no exchange is under way. An image counts only while
    /// `imageAnalysisEnabled`; text counts when it holds more than white space and line ends.
    Q_INVOKABLE static bool canSend(const QString &text, bool hasImage, bool imageAnalysisEnabled,
                                    bool isLoading);

    /// The text of a field to the character: its `text` property has a space for a no-break space.
    Q_INVOKABLE static QString writtenText(QQuickTextDocument *document);

    /// Lets each paragraph of a field run in the direction of its first letter, as messages and
    /// titles do. By itself Qt takes half of an emoji for a letter that runs to the right.
    Q_INVOKABLE static void directParagraphs(QQuickTextDocument *document);

    Q_INVOKABLE static ComposerRules::TextBulk textBulk(const QString &text);

    /// The bulk of the text that a paste would insert.
    Q_INVOKABLE static ComposerRules::TextBulk clipboardTextBulk(ComposerRules::PasteSource source);
};

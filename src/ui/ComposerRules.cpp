#include "ComposerRules.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>

namespace {

/// Longer than most questions, and still laid out within two frames.
constexpr qsizetype longestOrdinaryText = 20'000;
/// Longer than any word or address a person types, and still wrapped within a frame.
constexpr qsizetype longestStretch = 4000;

} // namespace

bool ComposerRules::canSend(const QString &text, bool hasImage, bool imageAnalysisEnabled,
                            bool isLoading)
{
    if (isLoading)
        return false;
    if (imageAnalysisEnabled && hasImage)
        return true;
    return std::any_of(text.cbegin(), text.cend(), [](QChar c) { return !c.isSpace(); });
}

QString ComposerRules::writtenText(QQuickTextDocument *document)
{
    QString text = document->textDocument()->toRawText();
    return text.replace(QChar::ParagraphSeparator, u'\n');
}

void ComposerRules::directParagraphs(QQuickTextDocument *document)
{
    QTextBlock block = document->textDocument()->begin();
    for (; block.isValid(); block = block.next()) {
        const bool isRightToLeft = block.text().isRightToLeft();
        const bool isForced = block.blockFormat().layoutDirection() != Qt::LayoutDirectionAuto;
        if (isRightToLeft == (block.textDirection() == Qt::RightToLeft) || block.length() == 1)
            continue;
        QTextBlockFormat format = block.blockFormat();
        format.setLayoutDirection(isForced ? Qt::LayoutDirectionAuto : Qt::RightToLeft);
        // Undone together with the change that calls for it.
        QTextCursor cursor(block);
        cursor.joinPreviousEditBlock();
        cursor.setBlockFormat(format);
        cursor.endEditBlock();
    }
}

ComposerRules::TextBulk ComposerRules::textBulk(const QString &text)
{
    qsizetype stretch = 0;
    const bool isUnbreakable = std::any_of(text.cbegin(), text.cend(), [&stretch](QChar c) {
        stretch = c.isSpace() ? 0 : stretch + 1;
        return stretch > longestStretch;
    });
    if (isUnbreakable)
        return TextBulk::Unbreakable;
    return text.size() > longestOrdinaryText ? TextBulk::Long : TextBulk::Ordinary;
}

ComposerRules::TextBulk ComposerRules::clipboardTextBulk(PasteSource source)
{
    const QClipboard::Mode mode
        = source == PasteSource::Selection ? QClipboard::Selection : QClipboard::Clipboard;
    return textBulk(QGuiApplication::clipboard()->text(mode));
}

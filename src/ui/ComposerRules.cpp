#include "ComposerRules.h"

#include <QClipboard>
#include <QGuiApplication>

#include <algorithm>

namespace {

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

bool ComposerRules::hasUnbreakableStretch(const QString &text)
{
    qsizetype stretch = 0;
    return std::any_of(text.cbegin(), text.cend(), [&stretch](QChar c) {
        stretch = c.isSpace() ? 0 : stretch + 1;
        return stretch > longestStretch;
    });
}

bool ComposerRules::clipboardHasUnbreakableStretch(PasteSource source)
{
    const QClipboard::Mode mode
        = source == PasteSource::Selection ? QClipboard::Selection : QClipboard::Clipboard;
    return hasUnbreakableStretch(QGuiApplication::clipboard()->text(mode));
}

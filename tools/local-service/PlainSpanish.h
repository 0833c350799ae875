#pragma once

#include <QString>
#include <QStringList>

/// `text` as a part of a line: no line ends, control or formatting characters or bold markers, at
/// most 120 characters and then an ellipsis.
QString inlineText(const QString &text);

/// `text` as the topic of a sentence: like `inlineText`, and without the marks that wrap a
/// question or start a heading or an item.
QString topicText(const QString &text);

/// `text` with its first letter in upper case.
QString capitalized(const QString &text);

/// "a", "a y b", "a, b y c"; "e" before the sound of an i.
QString spanishList(const QStringList &parts);

#pragma once

#include <QList>
#include <QString>

/// How a stretch of text came.
enum class TextStyle {
    Plain,
    Bold,
    /// As written: nothing in it is a formula.
    Code,
    BoldCode,
};

/// One line in the making: stretches of text, each bold or not.
class StyledLine
{
public:
    void append(const QString &text, TextStyle style);

    /// The line with "**" around what is bold, formulas readable and white space single; nothing
    /// else in it is read as a mark of bold. Empty when there is no text.
    QString text() const;

private:
    struct Run
    {
        QString text;
        TextStyle style;
    };
    QList<Run> m_runs;
};

#pragma once

#include "SelectableText.h"

#include <QStringList>

#include <utility>
#include <vector>

/// Lines of text as rows in one size.
class SampleRows : public SelectableText
{
    Q_OBJECT

public:
    static constexpr double points = 14.5;

    explicit SampleRows(const QStringList &lines, QQuickItem *parent)
        : SelectableText(0, nullptr)
        , m_lines(lines)
    {
        setColor(Qt::black);
        setSelectionColor(Qt::green);
        setWrapWidth(300);
        ensurePolished();
        setSize({300, implicitHeight()});
        setParentItem(parent);
    }

protected:
    void updateRows() override
    {
        std::vector<TextRow> rows;
        for (const QString &line : m_lines)
            rows.emplace_back(AttributedText{
                .text = line, .size = points, .runs = {{0, line.size(), QFont::Normal}}});
        replaceRows(0, std::move(rows));
    }

private:
    QStringList m_lines;
};

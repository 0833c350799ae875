#include "PlainMessageView.h"

PlainMessageView::PlainMessageView(QQuickItem *parent)
    : SelectableText(0, parent)
{ }

void PlainMessageView::setText(const QString &text)
{
    if (m_text == text)
        return;
    m_text = text;
    scheduleRows();
    Q_EMIT textChanged();
}

void PlainMessageView::setPoints(double points)
{
    if (m_points == points)
        return;
    m_points = points;
    scheduleRows();
    Q_EMIT pointsChanged();
}

void PlainMessageView::updateRows()
{
    std::vector<TextRow> rows;
    const auto lines = QStringView(m_text).split(u'\n');
    rows.reserve(lines.size());
    for (QStringView line : lines) {
        if (line.endsWith(u'\r'))
            line.chop(1);
        AttributedText text{.text = line.toString(), .size = m_points, .runs = {}};
        if (!line.isEmpty())
            text.runs.append({0, line.size(), QFont::Normal});
        rows.emplace_back(std::move(text));
    }
    replaceRows(0, std::move(rows));
}

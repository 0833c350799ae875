#include "SelectableText.h"

#include "CharacterClass.h"

#include <QCursor>
#include <QGuiApplication>
#include <QStringList>
#include <QStyleHints>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace {
TextRange wordAround(const QString &text, qsizetype character)
{
    if (text.isEmpty())
        return {};
    QTextBoundaryFinder finder(QTextBoundaryFinder::Word, text);
    finder.setPosition(character + 1);
    const qsizetype start = finder.toPreviousBoundary();
    const qsizetype end = finder.toNextBoundary();
    return {std::max<qsizetype>(start, 0), end < 0 ? text.size() : end};
}
} // namespace

SelectableText::SelectableText(double rowSpacing, QQuickItem *parent)
    : TextRowsItem(rowSpacing, parent)
    , m_edgeScroller(this)
{
    setAcceptedMouseButtons(Qt::LeftButton);
    setCursor(Qt::IBeamCursor);
    connect(&m_edgeScroller, &EdgeScroller::scrolled, this,
            [this](QPointF scenePosition) { extendSelection(mapFromScene(scenePosition)); });
}

void SelectableText::setSelectionColor(QColor color)
{
    TextColors changed = colors();
    changed.selection = color;
    setColors(changed);
}

QString SelectableText::selectedText() const
{
    if (m_selection.isEmpty())
        return {};
    QStringList lines;
    for (qsizetype i = m_selection.start.row; i <= m_selection.end.row; ++i) {
        const QString &text = row(i).original();
        const TextRange range = m_selection.inRow(i, text.size());
        lines.append(text.sliced(range.start, range.end - range.start));
    }
    return lines.join(u'\n');
}

void SelectableText::selectAll()
{
    if (rowCount() > 0)
        select({{}, {rowCount() - 1, row(rowCount() - 1).text().text.size()}});
}

void SelectableText::clearSelection()
{
    select({});
}

void SelectableText::replaceRows(qsizetype first, std::vector<TextRow> rows)
{
    TextRowsItem::replaceRows(first, std::move(rows));
    const bool differs = !m_selection.isEmpty() && m_selection.end.row >= first;
    // The anchor of a drag has to stay within the rows, too. Nothing to repaint: the new rows are
    // painted anyway.
    m_anchor = {clamped(m_anchor.start), clamped(m_anchor.end)};
    m_selection = {clamped(m_selection.start), clamped(m_selection.end)};
    if (differs)
        Q_EMIT selectionChanged();
}

TextPosition SelectableText::clamped(TextPosition position) const
{
    if (rowCount() == 0)
        return {};
    const qsizetype last = std::min(position.row, rowCount() - 1);
    const qsizetype end = row(last).text().text.size();
    return {last, last < position.row ? end : std::min(position.offset, end)};
}

void SelectableText::select(const TextSpan &span)
{
    if (m_selection == span)
        return;
    const TextSpan old = std::exchange(m_selection, span);
    if (old.isEmpty() || span.isEmpty()) {
        const TextSpan &shown = old.isEmpty() ? span : old;
        repaintRows(shown.start.row, shown.end.row);
    } else {
        const auto [firstStart, lastStart] = std::minmax(old.start.row, span.start.row);
        const auto [firstEnd, lastEnd] = std::minmax(old.end.row, span.end.row);
        repaintRows(firstStart, lastStart);
        repaintRows(firstEnd, lastEnd);
    }
    Q_EMIT selectionChanged();
}

TextSpan SelectableText::unitAt(QPointF point) const
{
    const TextPosition position = positionAt(point);
    if (rowCount() == 0 || m_unit == Unit::character)
        return {position, position};
    const TextRange range
        = m_unit == Unit::row ? TextRange{0, row(position.row).text().text.size()} : wordAt(point);
    return {{position.row, range.start}, {position.row, range.end}};
}

TextRange SelectableText::wordAt(QPointF point) const
{
    const TextPosition position = positionAt(point);
    const QString &text = row(position.row).text().text;
    qsizetype character = characterAt(point).offset;
    // A double click at the end of a word may hit the near half of the blank after it: take the
    // word.
    if (position.offset == character && character > 0 && isBlank(text[character]))
        --character;
    return wordAround(text, character);
}

void SelectableText::beginSelection(QPointF point, Unit unit)
{
    m_unit = unit;
    m_anchor = unitAt(point);
    select(m_anchor);
}

void SelectableText::extendSelection(QPointF point)
{
    select(m_anchor.united(unitAt(point)));
}

void SelectableText::mousePressEvent(QMouseEvent *event)
{
    const auto *hints = QGuiApplication::styleHints();
    const bool isThirdClick = m_sinceDoubleClick.isValid()
        && m_sinceDoubleClick.elapsed() < hints->mouseDoubleClickInterval()
        && (event->position() - m_doubleClickPoint).manhattanLength() < hints->startDragDistance();
    m_sinceDoubleClick.invalidate();
    const bool extends = event->modifiers().testFlag(Qt::ShiftModifier) && hasActiveFocus();

    setKeepMouseGrab(true);
    forceActiveFocus(Qt::MouseFocusReason);
    if (extends)
        extendSelection(event->position());
    else
        beginSelection(event->position(), isThirdClick ? Unit::row : Unit::character);
}

void SelectableText::mouseDoubleClickEvent(QMouseEvent *event)
{
    m_sinceDoubleClick.start();
    m_doubleClickPoint = event->position();
    setKeepMouseGrab(true);
    beginSelection(event->position(), Unit::word);
}

void SelectableText::mouseMoveEvent(QMouseEvent *event)
{
    extendSelection(event->position());
    m_edgeScroller.follow(event->scenePosition());
}

void SelectableText::mouseReleaseEvent(QMouseEvent *)
{
    m_edgeScroller.stop();
    setKeepMouseGrab(false);
    if (QGuiApplication::clipboard()->supportsSelection())
        copyTo(QClipboard::Selection);
}

void SelectableText::mouseUngrabEvent()
{
    m_edgeScroller.stop();
    setKeepMouseGrab(false);
}

bool SelectableText::event(QEvent *event)
{
    // Accepted here, the keys come to this text and not to the window's shortcuts.
    if (event->type() == QEvent::ShortcutOverride) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->matches(QKeySequence::Copy) || key->matches(QKeySequence::SelectAll)) {
            event->accept();
            return true;
        }
    }
    return TextRowsItem::event(event);
}

void SelectableText::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Copy))
        copyTo(QClipboard::Clipboard);
    else if (event->matches(QKeySequence::SelectAll))
        selectAll();
    else
        event->ignore();
}

void SelectableText::copyTo(QClipboard::Mode mode) const
{
    if (!m_selection.isEmpty())
        QGuiApplication::clipboard()->setText(selectedText(), mode);
}

void SelectableText::focusOutEvent(QFocusEvent *event)
{
    TextRowsItem::focusOutEvent(event);
    // The focus comes back from another window or a menu: keep the selection.
    if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason)
        clearSelection();
}

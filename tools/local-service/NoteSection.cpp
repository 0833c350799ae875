#include "NoteSection.h"

using namespace Qt::StringLiterals;

QList<NoteSection> parseNoteSections(const QStringList &lines)
{
    QList<NoteSection> sections;
    for (const QString &line : lines) {
        if (line.trimmed().isEmpty() || line.startsWith(u'>'))
            continue;
        if (line.startsWith("# "_L1)) {
            sections += NoteSection{line.sliced(2).trimmed(), {}};
            continue;
        }
        const qsizetype colon = line.indexOf(u':');
        if (colon < 0 || sections.isEmpty())
            qFatal("Not a note's line: %s", qUtf8Printable(line));
        sections.last().values[line.first(colon).trimmed()] += line.sliced(colon + 1).trimmed();
    }
    return sections;
}

#pragma once

#include <QRandomGenerator>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <cmath>

/// Text made up from syllables, the same in every run, with a vocabulary of 4,000 words of which,
/// as in a language, few are frequent; about 90 characters a row, one row in eight in another form
/// than a paragraph.
class TextSource
{
public:
    TextSource()
    {
        using namespace Qt::StringLiterals;
        const QStringList syllables
            = u"ca te mi ro lu pa de si no gu en al es cor dia neu to ra le fi bro sis ón ía pul mo"_s
                  .split(u' ');
        while (m_words.size() < vocabulary) {
            QString word;
            for (int left = 1 + m_random.bounded(4); left > 0; --left)
                word += syllables.at(m_random.bounded(int(syllables.size())));
            m_words.append(word);
        }
    }

    QString row()
    {
        using namespace Qt::StringLiterals;
        QStringList words;
        for (int left = 8 + m_random.bounded(12); left > 0; --left)
            words.append(word());
        QString text = words.join(u' ');
        switch (m_random.bounded(8)) {
        case 0:
            return u"## "_s + words.first(3).join(u' ');
        case 1:
            return {};
        case 2:
        case 3:
            return u"- **"_s + words.first() + u":** "_s + text;
        case 4:
            return u"1. "_s + text;
        default:
            return text;
        }
    }

    QStringList rows(int count)
    {
        QStringList rows;
        while (rows.size() < count)
            rows.append(row());
        return rows;
    }

private:
    static constexpr int vocabulary = 4000;

    QString word()
    {
        // Frequency falls with the rank.
        const double rank = std::pow(double(vocabulary), m_random.generateDouble());
        return m_words.at(std::min(int(rank), vocabulary - 1));
    }

    QRandomGenerator m_random{7};
    QStringList m_words;
};

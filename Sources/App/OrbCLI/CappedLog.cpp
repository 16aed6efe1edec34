#include "OrbCLI/CappedLog.h"

#include <QTextBoundaryFinder>

void CappedLog::append(QUtf8StringView text)
{
    const qsizetype from = m_lastCharacter;
    m_text += text.toString();
    m_characters -= m_characters > 0 ? 1 : 0;
    count(from);
    if (m_characters <= capacity)
        return;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, m_text);
    for (qsizetype dropped = m_characters - keptCharacters; dropped > 0; --dropped)
        finder.toNextBoundary();
    replace(m_text.mid(finder.position()));
}

void CappedLog::replace(const QString &text)
{
    m_text = text;
    m_characters = 0;
    m_lastCharacter = 0;
    count(0);
}

void CappedLog::count(qsizetype from)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, m_text);
    finder.setPosition(from);
    qsizetype start = from;
    for (qsizetype next = finder.toNextBoundary(); next > start; next = finder.toNextBoundary()) {
        ++m_characters;
        m_lastCharacter = start;
        start = next;
    }
}

#include "OrbCLI/CollectedOutput.h"

#include "Text/Utf8.h"

using namespace Qt::StringLiterals;

namespace
{

constexpr qsizetype mebibyte = qsizetype{1024} * 1024;

} // namespace

bool OrbCLI::CollectedOutput::append(QUtf8StringView text)
{
    if (isTooMuch())
        return true;
    m_text.append(QByteArrayView(text.data(), text.size()));
    if (m_need.beyond == OutputNeed::Beyond::stopTool) {
        m_isCut = m_text.size() > m_need.most;
        if (m_isCut)
            m_text = QByteArray();
        return !m_isCut;
    }
    // Seldom, so that a byte is moved once at most.
    if (m_text.size() > 2 * m_need.most) {
        m_text = m_text.last(m_need.most);
        m_isCut = true;
    }
    return true;
}

QString OrbCLI::CollectedOutput::text() const
{
    if (!m_isCut && m_text.size() <= m_need.most)
        return Utf8::toQString(m_text);
    QByteArrayView end = QByteArrayView(m_text).last(std::min(m_need.most, m_text.size()));
    while (!end.isEmpty() && Utf8::isContinuation(end.front()))
        end = end.sliced(1);
    const QString size = QString::number(m_need.most / mebibyte);
    return isTooMuch() ? QString() : u"(only the last "_s + size + u" MiB are kept)\n"_s + Utf8::toQString(end);
}

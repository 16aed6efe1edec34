#include "Look/CellFont.h"

#include <QFontMetricsF>
#include <QTextOption>

#include <algorithm>
#include <cmath>

namespace
{

/// Far more than a screenful holds of different characters.
constexpr qsizetype mostShaped = 4096;

} // namespace

CellFont::CellFont(const QFont &font) : m_font(font), m_rawFont(QRawFont::fromFont(font))
{
    const QFontMetricsF metrics(font);
    m_cellWidth = std::max(1.0, metrics.horizontalAdvance(u'0'));
    m_ascent = std::ceil(metrics.ascent());
    m_rowHeight = std::max(1, static_cast<int>(std::ceil(m_ascent + metrics.descent() + metrics.leading())));
    QString ascii;
    for (char16_t character = firstAscii; character <= lastAscii; ++character)
        ascii += QChar(character);
    const QList<quint32> glyphs = m_rawFont.glyphIndexesForString(ascii);
    std::copy_n(glyphs.begin(), std::min<std::size_t>(m_glyphs.size(), static_cast<std::size_t>(glyphs.size())),
                m_glyphs.begin());
}

const CellFont::Shaped *CellFont::shaped(QByteArrayView character)
{
    // A view as the key until it must be kept: looking up allocates nothing.
    const auto key = QByteArray::fromRawData(character.data(), character.size());
    const auto found = m_shaped.constFind(key);
    if (found != m_shaped.constEnd())
        return &*found;
    const auto laidOut = layout(QString::fromUtf8(character), Qt::LeftToRight);
    if (!laidOut)
        return nullptr;
    if (m_shaped.size() >= mostShaped)
        m_shaped.clear();
    const QTextLine line = laidOut->lineAt(0);
    return &*m_shaped.insert(character.toByteArray(), {laidOut->glyphRuns(), line.naturalTextWidth(), line.ascent()});
}

std::unique_ptr<QTextLayout> CellFont::layout(const QString &text, Qt::LayoutDirection direction) const
{
    return areFontsOpen(text) ? lineOf(text, direction) : nullptr;
}

/// Opens them as far as there is time.
bool CellFont::areFontsOpen(const QString &text) const
{
    for (const char32_t character : text.toUcs4()) {
        const auto script = static_cast<std::size_t>(QChar::script(character));
        if (m_openScripts[script])
            continue;
        if (m_openingTime <= std::chrono::nanoseconds::zero()) {
            m_hasMissed = true;
            return false;
        }
        const auto begin = std::chrono::steady_clock::now();
        lineOf(QString::fromUcs4(&character, 1), Qt::LeftToRight);
        m_openingTime -= std::chrono::steady_clock::now() - begin;
        m_openScripts.set(script);
    }
    return true;
}

std::unique_ptr<QTextLayout> CellFont::lineOf(const QString &text, Qt::LayoutDirection direction) const
{
    auto layout = std::make_unique<QTextLayout>(text, m_font);
    QTextOption option;
    option.setTextDirection(direction);
    option.setWrapMode(QTextOption::NoWrap);
    option.setAlignment(Qt::AlignLeft | Qt::AlignAbsolute);
    layout->setTextOption(option);
    layout->setCacheEnabled(true);
    layout->beginLayout();
    layout->createLine();
    layout->endLayout();
    return layout;
}

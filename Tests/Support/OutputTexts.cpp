#include "Support/OutputTexts.h"

#include <algorithm>

namespace
{

constexpr int columnsOfLine = 80;
constexpr std::size_t sizeOfCodes = 4096;

constexpr std::array<std::string_view, OutputTexts::allKinds.size()> names{"plain", "wide", "one-line", "codes"};

constexpr std::array<std::string_view, 8> accented{"é", "ü", "ß", "ø", "ñ", "λ", "ж", "č"};
/// Two columns each.
constexpr std::array<std::string_view, 12> wideCharacters{"中", "文", "字", "日", "本", "語",
                                                          "한", "글", "🙂", "🚀", "🐧", "👩‍🔬"};

} // namespace

std::string_view OutputTexts::nameOf(Kind kind)
{
    return names[static_cast<std::size_t>(kind)];
}

std::optional<OutputTexts::Kind> OutputTexts::kindNamed(std::string_view name)
{
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end())
        return std::nullopt;
    return allKinds[static_cast<std::size_t>(found - names.begin())];
}

std::string OutputTexts::next()
{
    ++m_number;
    if (m_kind == Kind::oneLine)
        return words(columnsOfLine - 1) + ' ';
    if (m_kind == Kind::codes)
        return escapeCodes() + words(columnsOfLine) + '\n';
    return words(columnsOfLine) + '\n';
}

QByteArray OutputTexts::text(Kind kind, qsizetype size)
{
    OutputTexts lines(kind);
    QByteArray text;
    while (text.size() < size)
        text += QByteArray::fromStdString(lines.next());
    return text;
}

/// Not the standard library's: its distributions differ from one system to another.
std::uint32_t OutputTexts::random(std::uint32_t bound)
{
    m_state = m_state * 6364136223846793005U + 1442695040888963407U;
    return static_cast<std::uint32_t>(m_state >> 33U) % bound;
}

void OutputTexts::addWord(std::string &line, int length)
{
    for (int count = 0; count < length; ++count)
        line += static_cast<char>('a' + random(26));
}

void OutputTexts::addWideCharacter(std::string &line)
{
    line += wideCharacters[random(static_cast<std::uint32_t>(wideCharacters.size()))];
}

/// A text of that many columns: a number first, then words.
std::string OutputTexts::words(int columns)
{
    std::string line = std::to_string(m_number);
    int column = static_cast<int>(line.size());
    const bool isAccented = random(20) == 0;
    while (column < columns) {
        line += ' ';
        ++column;
        if (m_kind == Kind::wide && column + 2 <= columns) {
            addWideCharacter(line);
            column += 2;
        }
        const int length = std::min(columns - column, 3 + static_cast<int>(random(9)));
        addWord(line, length);
        column += length;
        if (isAccented && column < columns) {
            line += accented[random(static_cast<std::uint32_t>(accented.size()))];
            ++column;
        }
    }
    return line;
}

std::string OutputTexts::escapeCodes()
{
    std::string codes;
    while (codes.size() < sizeOfCodes)
        codes += "\x1b[" + std::to_string(random(2)) + ';' + std::to_string(30 + random(8)) + 'm';
    return codes;
}

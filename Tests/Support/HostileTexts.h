#pragma once

// Texts that try to be more than a text: markup, options, quotes, codes that move the cursor, marks that turn the
// direction, characters that are cut, joined, invisible or huge. The same for the same seed.

#include <QString>
#include <QStringList>

#include <cstdint>
#include <random>

class HostileTexts
{
public:
    explicit HostileTexts(std::uint32_t seed) : m_engine(seed) {}

    /// Every text of its kind once.
    static const QStringList &all();

    /// One of them, or some of them in one.
    QString text();

    /// At most `longest` of these characters; every other one has something in it that is not.
    QString nearly(QStringView characters, int longest);

    int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(m_engine); }

private:
    std::mt19937 m_engine;
};

#include "Text/Duration.h"

#include <algorithm>
#include <array>
#include <charconv>

QString Duration::text(double seconds)
{
    // Rounds as printf does, which QString::number does not (0.25), and knows no decimal comma, which printf does.
    std::array<char, 400> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), seconds, std::chars_format::fixed, 1).ptr;
    return QString::fromLatin1(text.data(), end - text.data()) + u's';
}

double Duration::between(const QDateTime &begin, const QDateTime &end)
{
    return static_cast<double>(std::max<qint64>(0, begin.msecsTo(end))) / 1000;
}

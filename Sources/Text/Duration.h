#pragma once

#include <QDateTime>
#include <QString>

namespace Duration
{

/// Seconds with one decimal, and a point in every language: "3.2s". Any thread.
QString text(double seconds);

/// The seconds from one moment to the other; 0 where a clock that was set back would make them negative. Any thread.
double between(const QDateTime &begin, const QDateTime &end);

} // namespace Duration

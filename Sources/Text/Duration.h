#pragma once

#include <QString>

namespace Duration
{

/// Seconds with one decimal, and a point in every language: "3.2s". Any thread.
QString text(double seconds);

} // namespace Duration

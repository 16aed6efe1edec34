#pragma once

// Lets a failed expectation show texts as texts.

#include <QString>

#include <ostream>

inline void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

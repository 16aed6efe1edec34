#pragma once

// What a program measured, told as JSON: one object a line. `Benchmarks/compare` reads it, `Benchmarks/show` words it.

#include <cstdio>
#include <initializer_list>

/// A number by its name, which ends with its unit where it has one.
struct Figure {
    template <typename Number>
    Figure(const char *itsName, Number number) : name(itsName),
                                                 value(static_cast<double>(number))
    {
    }

    const char *name;
    double value;
};

/// `what` tells several objects of one program apart; like the names it needs no escaping.
inline void printFigures(const char *what, std::initializer_list<Figure> figures)
{
    std::printf("{\"what\":\"%s\"", what);
    for (const Figure &figure : figures)
        std::printf(",\"%s\":%.10g", figure.name, figure.value);
    std::puts("}");
}

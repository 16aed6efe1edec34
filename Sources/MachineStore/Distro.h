#pragma once

#include <QString>

#include <array>
#include <optional>

/// The distributions that the application itself offers, in the order in which pickers show them.
enum class Distro { ubuntu, debian, alpine };

inline constexpr std::array allDistros{Distro::ubuntu, Distro::debian, Distro::alpine};

/// The text that names the distribution on screen and on the command line.
inline QString rawValue(Distro distro)
{
    switch (distro) {
    case Distro::ubuntu:
        return QStringLiteral("ubuntu");
    case Distro::debian:
        return QStringLiteral("debian");
    case Distro::alpine:
        return QStringLiteral("alpine");
    }
    Q_UNREACHABLE();
}

/// The distribution with exactly this raw value, letter case included; nothing for any other text.
inline std::optional<Distro> distroFromRawValue(const QString &text)
{
    for (const Distro distro : allDistros) {
        if (rawValue(distro) == text)
            return distro;
    }
    return std::nullopt;
}

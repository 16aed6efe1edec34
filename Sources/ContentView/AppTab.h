#pragma once

#include <QString>

#include <array>
#include <optional>

/// The window's tabs, in the order in which they stand on screen.
enum class AppTab { run, machines, history, containers };

inline constexpr std::array allAppTabs{AppTab::run, AppTab::machines, AppTab::history, AppTab::containers};

/// The tab's label, which is also its identity.
inline QString rawValue(AppTab tab)
{
    switch (tab) {
    case AppTab::run:
        return QStringLiteral("Run");
    case AppTab::machines:
        return QStringLiteral("Machines");
    case AppTab::history:
        return QStringLiteral("History");
    case AppTab::containers:
        return QStringLiteral("Containers");
    }
    Q_UNREACHABLE();
}

/// The tab with exactly this label; nothing for any other text.
inline std::optional<AppTab> appTabFromRawValue(const QString &text)
{
    for (const AppTab tab : allAppTabs) {
        if (rawValue(tab) == text)
            return tab;
    }
    return std::nullopt;
}

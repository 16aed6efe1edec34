#pragma once

#include "Look/Rows/StatusDot.h"

#include <QList>
#include <QString>

#include <optional>

/// What one row of a RowList shows, from its leading edge on: a dot, lines of text, buttons. A plain value: rows are
/// compared by it, and only what differs is touched.
struct RowContent {
    enum class TextStyle { headline, caption, smallestCaption, monospaced };

    enum class Origin {
        outside, ///< shown with its control characters and direction marks written out
        own,     ///< made visible already; its direction marks belong to it
    };

    struct Dot {
        StatusDot::Colour colour = StatusDot::Colour::grey;
        QString words;

        bool operator==(const Dot &) const = default;
    };

    struct Line {
        QString text;
        TextStyle style = TextStyle::caption;
        Origin origin = Origin::outside;

        bool operator==(const Line &) const = default;
    };

    /// The buttons of a row are the same in all its contents, but for being enabled.
    struct Button {
        /// What a press means: a value of the screen's own, which RowList::pressed tells.
        int action = 0;
        QString label;
        bool isEnabled = true;

        bool operator==(const Button &) const = default;
    };

    /// Says which row this is, from one refresh to the next.
    QString id;
    /// What the row is called by who cannot see it; a button's description tells it too ("Stop box").
    QString name;
    std::optional<Dot> dot;
    QList<Line> lines;
    QList<Button> buttons;

    bool operator==(const RowContent &) const = default;
};

#pragma once

#include "Look/Rows/RowContent.h"

#include <QHash>

#include <utility>

/// Which rows a list has, in their order. Of rows with the same id the first is one row, the second another, and so on.
class RowIdentities
{
public:
    RowIdentities() = default;
    explicit RowIdentities(const QList<RowContent> &rows);

    bool operator==(const RowIdentities &other) const { return m_keys == other.m_keys; }

    int count() const { return static_cast<int>(m_keys.size()); }

    /// Where the row at `index` is in another list; -1 when it is not there.
    int placeIn(const RowIdentities &other, int index) const;

    /// Where in another list the nearest row below `index` is that is there, or else the nearest above; `index` itself
    /// when there is none.
    int neighbourPlaceIn(const RowIdentities &other, int index) const;

private:
    /// An id and how often it occurred before.
    using Key = std::pair<QString, int>;

    QList<Key> m_keys;
    QHash<Key, int> m_places;
};

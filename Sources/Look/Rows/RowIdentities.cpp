#include "Look/Rows/RowIdentities.h"

RowIdentities::RowIdentities(const QList<RowContent> &rows)
{
    QHash<QString, int> occurrences;
    occurrences.reserve(rows.size());
    m_keys.reserve(rows.size());
    m_places.reserve(rows.size());
    for (const RowContent &row : rows) {
        m_keys.append({row.id, occurrences[row.id]++});
        m_places.insert(m_keys.last(), count() - 1);
    }
}

int RowIdentities::placeIn(const RowIdentities &other, int index) const
{
    return other.m_places.value(m_keys[index], -1);
}

int RowIdentities::neighbourPlaceIn(const RowIdentities &other, int index) const
{
    for (int below = index + 1; below < count(); ++below) {
        if (const int place = placeIn(other, below); place >= 0)
            return place;
    }
    for (int above = index - 1; above >= 0; --above) {
        if (const int place = placeIn(other, above); place >= 0)
            return place;
    }
    return index;
}

#pragma once

#include <QString>
#include <QVariantMap>

/// Finds the entry with a given index in a map that somebody else owns, without copying the map or its keys.
///
/// It steps from the nearest known place: the beginning, the end, or the place of the last search.
class VTMapCursor
{
public:
    /// @return the entry with this index in key order, or the end when there is none.
    QVariantMap::const_iterator At(const QVariantMap& map, int nIndex);

    /// To be called when entries may have been added or removed.
    void Forget() { m_nSize = -1; }

private:
    QString m_strKey;
    int m_nIndex = 0;
    int m_nSize = -1; ///< size of the map at the last search; -1 when the place is not known
};

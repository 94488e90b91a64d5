#pragma once

#include <QString>
#include <QVariantMap>

/// Finds the entry with a given number in a map that belongs to somebody else, without copying the map or its keys.
///
/// Walks from the nearest known place: the beginning, the end, or where the last search ended.
class VTMapWindow
{
public:
    /// The entry with this number in key order, the end when there is none.
    QVariantMap::const_iterator At(const QVariantMap& map, int nIndex);

    /// To be called when entries may have come or gone.
    void Forget() { m_nSize = -1; }

private:
    QString m_strKey;
    int m_nIndex = 0;
    int m_nSize = -1; ///< of the map that the place was found in
};

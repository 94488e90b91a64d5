#include "mainwindow/vtr_mapcursor.h"

#include <cstdlib>
#include <iterator>

QVariantMap::const_iterator VTMapCursor::At(const QVariantMap& map, int nIndex)
{
    if (nIndex < 0 || nIndex >= map.size())
        return map.constEnd();

    auto itPlace = map.constBegin();
    int nFrom = 0;
    if (map.size() - nIndex < nIndex) {
        itPlace = map.constEnd();
        nFrom = map.size();
    }
    if (m_nSize == map.size() && std::abs(nIndex - m_nIndex) < std::abs(nIndex - nFrom)) {
        const auto itKnown = map.constFind(m_strKey);
        if (itKnown != map.constEnd()) {
            itPlace = itKnown;
            nFrom = m_nIndex;
        }
    }
    std::advance(itPlace, nIndex - nFrom);

    m_strKey = itPlace.key();
    m_nIndex = nIndex;
    m_nSize = map.size();
    return itPlace;
}

#include "host/rendercore/submit/folder_listing.h"

#include "host/rendercore/submit/file_pattern.h"

#include <QDirIterator>

#include <algorithm>

const QStringList& FolderListing::NamesIn(const QString& folder)
{
    const auto known = m_names.constFind(folder);
    if (known != m_names.constEnd())
        return *known;
    QStringList names;
    QDirIterator files(folder, QDir::Files | QDir::Hidden);
    while (files.hasNext() && (!m_goOn || m_goOn(0))) {
        files.next();
        names.append(files.fileName());
    }
    std::sort(names.begin(), names.end());
    return *m_names.insert(folder, names);
}

QStringList FolderListing::Matching(const QString& folder, const FilePattern& pattern)
{
    const QStringList& names = NamesIn(folder);
    const QString prefix = pattern.Prefix();
    QStringList matching;
    for (auto name = std::lower_bound(names.cbegin(), names.cend(), prefix);
         name != names.cend() && name->startsWith(prefix) && (!m_goOn || m_goOn(0)); ++name) {
        if (pattern.Matches(*name))
            matching.append(folder + QLatin1Char('/') + *name);
    }
    return matching;
}

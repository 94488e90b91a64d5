#pragma once

#include "host/rendercore/submit/scene_contents.h"

#include <QHash>

class FilePattern;

/// The names of the files in folders. Each folder is read once.
class FolderListing
{
public:
    /// @param goOn is asked now and then; once it returns false, answers are incomplete.
    explicit FolderListing(const BytesRead& goOn)
        : m_goOn(goOn)
    {
    }

    /// The matching files of a folder, as absolute paths in ascending order.
    QStringList Matching(const QString& folder, const FilePattern& pattern);

private:
    const QStringList& NamesIn(const QString& folder);

    const BytesRead& m_goOn;
    QHash<QString, QStringList> m_names; // sorted names, by folder
};

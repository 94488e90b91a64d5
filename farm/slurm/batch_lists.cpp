#include "farm/slurm/batch_lists.h"

#include "farm/slurm/batch.h"
#include "storage/durable_file.h"
#include "storage/folder_check.h"

#include <QFile>

#include <cstring>

namespace farm {

namespace {

const QString& Suffix()
{
    static const QString suffix = QStringLiteral(".runs");
    return suffix;
}

} // namespace

BatchLists::BatchLists(const QString& folder)
    : m_folder(folder)
{
}

QString BatchLists::File(const QString& batch) const
{
    return m_folder.absoluteFilePath(batch + Suffix());
}

void BatchLists::MakeFolder() const
{
    if (!m_folder.mkpath(QStringLiteral(".")))
        throw std::runtime_error("cannot create the folder " + m_folder.path().toStdString() + ": "
            + std::strerror(storage::FolderError(m_folder.path())));
}

void BatchLists::Write(const QString& batch, const QStringList& runFolders) const
{
    const QString unfinished = File(batch) + QStringLiteral(".new");
    const QString lines = runFolders.join(QLatin1Char('\n')) + QLatin1Char('\n');
    storage::AppendDurably(unfinished, 0, QFile::encodeName(lines));
    storage::RenameDurably(unfinished, File(batch));
}

void BatchLists::Remove(const QString& batch) const
{
    QFile::remove(File(batch));
}

std::map<QString, QStringList> BatchLists::ReadAll() const
{
    std::map<QString, QStringList> all;
    const QStringList names
        = m_folder.entryList({ClusterJobPrefix() + QLatin1Char('*') + Suffix()}, QDir::Files);
    for (const QString& name : names) {
        QFile file(m_folder.filePath(name));
        if (file.open(QIODevice::ReadOnly))
            all[name.chopped(Suffix().size())]
                = QFile::decodeName(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }
    return all;
}

} // namespace farm

#include "host/rendercore/submit/task_packages.h"

#include <QDir>
#include <QFileInfo>

namespace TaskPackages {

QString Folder(const QString& root, qint64 task)
{
    return QStringLiteral("%1/%2").arg(root).arg(task);
}

QString Path(const QString& folder, int file)
{
    return QStringLiteral("%1/%2.zip").arg(folder).arg(file, 4, 10, QLatin1Char('0'));
}

bool AreThere(const QString& folder, const SubmitWork& work)
{
    if (!work.IsPacked())
        return false;
    for (int index = 0; index < work.files.size(); ++index) {
        const QFileInfo package(Path(folder, index));
        if (!package.isFile() || package.size() != work.files.at(index).packageSize)
            return false;
    }
    return true;
}

void Discard(const QString& folder)
{
    QDir(folder).removeRecursively();
}

void Sweep(const QString& root, const QSet<qint64>& tasks)
{
    const QStringList names = QDir(root).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& name : names) {
        if (!tasks.contains(name.toLongLong()))
            Discard(Folder(root, name.toLongLong()));
    }
}

} // namespace TaskPackages

#include "host/rendercore/submit/task_packages.h"

#include <QDir>
#include <QFileInfo>

namespace TaskPackages {

QString Folder(const QString& root, qint64 task)
{
    return QStringLiteral("%1/%2").arg(root).arg(task);
}

QString Path(const QString& folder, int package)
{
    return QStringLiteral("%1/%2.zip").arg(folder).arg(package, 4, 10, QLatin1Char('0'));
}

bool Holds(const QString& folder, const SubmitWork& work, const PackedFile& file)
{
    if (file.package < 0 || file.package >= work.packages.size())
        return false;
    const QFileInfo package(Path(folder, file.package));
    return package.isFile() && package.size() == work.packages.at(file.package).size;
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

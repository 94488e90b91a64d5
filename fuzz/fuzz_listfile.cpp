// List files. The first line of the input is a name that is written and removed, the rest is the file.
#include "dialogs/vtr_jobdependencies.h"
#include "fuzz/fuzz_support.h"

#include <QTemporaryDir>

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray input = Bytes(data, size);
    const int line = input.indexOf('\n');
    const QString name = QString::fromUtf8(input.left(line));
    // QSettings remembers files by their paths.
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("list.ini"));
    WriteFile(path, input.mid(line + 1));

    VTJobDependencies dependencies;
    dependencies.Open(path);
    while (dependencies.HasQueued())
        dependencies.TakeNext();

    const VTListFile list(path, QStringLiteral("parent"));
    const QVector<VTNamedList> entries = list.Entries();
    Require(std::none_of(entries.cbegin(), entries.cend(),
                [](const VTNamedList& entry) { return entry.strName.isEmpty(); }),
        "no name is empty");
    if (name.isEmpty())
        return 0;
    const QStringList values {name, QString(), QStringLiteral("second, value")};
    Require(list.Set(name, values), "an entry is written");
    Require(list.Value(name) == values, "an entry is read as it was written");
    Require(list.Remove(name) && !list.Contains(name), "an entry is removed");
    return 0;
}

// The list file of job dependencies.
#include "bench/kill_run.h"
#include "dialogs/vtr_jobdependencies.h"

#include <QFileInfo>
#include <QSet>
#include <QSettings>

namespace {

constexpr int Writes = 20;
constexpr int MostKept = 3; // groups of one worker, before it releases the oldest

/// The entries of the jobs that a son group waits for.
QStringList ParentsOf(const QString& group)
{
    return {"first of "_s + group, "灯光, of "_s + group};
}

/// The reports of a run's workers: "? group" before a change, "+ group" or "- group" once it is made.
struct Told
{
    QSet<QString> recorded;
    QSet<QString> released;
    QSet<QString> doubtful; ///< may be in the file or not

    void Add(const QByteArrayList& lines)
    {
        for (const QByteArray& line : lines) {
            const QString group = QString::fromUtf8(line.mid(2));
            if (line.startsWith("? "))
                doubtful.insert(group);
            else if (line.startsWith("+ "))
                recorded.insert(group), doubtful.remove(group);
            else if (line.startsWith("- "))
                released.insert(group), doubtful.remove(group);
        }
    }

    void Check(const QString& path) const
    {
        QSettings file(path, QSettings::IniFormat);
        Require(file.status() == QSettings::NoError, "the list file is damaged"_s);
        file.beginGroup("parent"_s);
        const QStringList groups = file.allKeys();
        for (const QString& group : groups) {
            Require(recorded.contains(group) || doubtful.contains(group), "an unknown entry: "_s + group);
            Require(!released.contains(group), "a released entry is back: "_s + group);
            Require(file.value(group).toStringList() == ParentsOf(group), "a changed entry: "_s + group);
        }
        const QSet<QString> lost
            = recorded - released - doubtful - QSet<QString>(groups.cbegin(), groups.cend());
        Require(lost.isEmpty(), "lost entries: "_s + QStringList(lost.cbegin(), lost.cend()).join(" "_s));
    }
};

} // namespace

void KillDependencies(KillRun& run)
{
    const QString path = run.Path("lists/parents.ini"_s);
    Told told;
    for (int part = 0; part <= run.Kills(); ++part) {
        const auto worker = StartWorker("dependencies"_s, {path, QString::number(part)});
        if (part < run.Kills())
            run.KillInWork(*worker);
        else
            Finish(*worker);
        Require(!worker->Has("stray"), "a stray file or a damaged copy outlives the next start"_s);
        told.Add(worker->Lines());
        told.Check(path);
    }
    Require(
        FilesBelow(run.Path("lists"_s)) == QStringList("parents.ini"_s), "files are left beside the list"_s);
}

/// @param arguments the list file, and the number of this worker in its run.
int WorkOnDependencies(const QStringList& arguments)
{
    VTJobDependencies dependencies;
    dependencies.Open(arguments.at(0));
    const QDir folder = QFileInfo(arguments.at(0)).dir();
    if (!folder.entryList({"parents.ini.??????"_s, "*.damaged*"_s}, QDir::Files).isEmpty())
        Tell("stray"_s);
    Tell("begun"_s);
    QStringList kept;
    for (int write = 0; write < Writes; ++write) {
        const QString group = "%1.%2&twin"_s.arg(arguments.at(1)).arg(write);
        kept.append(group);
        Tell("? "_s + group);
        if (dependencies.Record(VTJobDependencies::Sons(group), ParentsOf(group)))
            Tell("+ "_s + group);
        const QString oldest = kept.size() > MostKept ? kept.takeFirst() : QString();
        Tell("? "_s + oldest);
        if (!oldest.isEmpty() && dependencies.Release(oldest))
            Tell("- "_s + oldest);
    }
    Tell("done"_s);
    return 0;
}

#include "farm/rendering/stray_renderers.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <spdlog/spdlog.h>

#include <csignal>

namespace farm::StrayRenderers {

namespace {

constexpr int MostRounds = 100;
constexpr int RoundPause = 10; // ms

const QString FarmVariable = QStringLiteral("QUILLSTAR_FARM");
const QString RunVariable = QStringLiteral("QUILLSTAR_RUN");

/// The mark is a hash, because scenes are programs and should not learn where the farm keeps its files.
QString MarkOf(const QString& dataFolder)
{
    const QByteArray path = QFileInfo(dataFolder).canonicalFilePath().toUtf8();
    return QString::fromLatin1(QCryptographicHash::hash(path, QCryptographicHash::Sha256).toHex());
}

bool HasInEnvironment(const QString& process, const QByteArray& entry)
{
    QFile environment(QStringLiteral("/proc/%1/environ").arg(process));
    return environment.open(QIODevice::ReadOnly) && environment.readAll().split('\0').contains(entry);
}

/// @return whether there were any.
bool EndOnce(const QByteArray& mark)
{
    bool found = false;
    const QStringList processes
        = QDir(QStringLiteral("/proc"))
              .entryList({QStringLiteral("[1-9]*")}, QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& process : processes) {
        if (!HasInEnvironment(process, mark))
            continue;
        spdlog::warn("ending process {}, which a renderer has left behind", process.toStdString());
        ::kill(static_cast<pid_t>(process.toInt()), SIGKILL);
        found = true;
    }
    return found;
}

void EndAll(const QString& variable, const QString& value)
{
    const QByteArray mark = QString(variable + QLatin1Char('=') + value).toLatin1();
    // A process may start another one while they are listed.
    for (int round = 0; round < MostRounds && EndOnce(mark); ++round)
        QThread::msleep(RoundPause);
}

} // namespace

void Mark(QProcessEnvironment& environment, const QString& dataFolder, const QString& run)
{
    environment.insert(FarmVariable, MarkOf(dataFolder));
    environment.insert(RunVariable, run);
}

void End(const QString& dataFolder)
{
    EndAll(FarmVariable, MarkOf(dataFolder));
}

void EndRun(const QString& run)
{
    EndAll(RunVariable, run);
}

} // namespace farm::StrayRenderers

#pragma once

#include "host/services/service_base.h"
#include "vtr_loggerinterface.h"

#include <QObject>

#include <memory>

namespace spdlog {
class logger;
} // namespace spdlog

/// Makes the logger interface a QObject, so that it can be registered and cast like the other services.
class LoggerObject : public QObject, public VTLoggerInterface
{
    Q_OBJECT
    Q_INTERFACES(VTLoggerInterface VTBaseInterface)

public:
    using QObject::QObject;
};

/// Options of the log.
struct LogOptions
{
    QString file;                           ///< empty for the console only
    QString level = QStringLiteral("info"); ///< the least severe level to keep, one of Levels()
    int maxFileBytes = 4 * 1024 * 1024;
    int oldFiles = 3; ///< rotated files kept beside the current one
    bool console = true;

    static QStringList Levels();
};

/// Writes one line per message, with time, level and category, to a rotating file and the console.
///
/// Write may be called in any thread.
class LoggerService : public ServiceBase<LoggerObject>
{
    Q_OBJECT

public:
    /// The levels that Write accepts; the greater the number, the less severe the message.
    enum Level { Critical = 8, Error = 16, Warning = 32, Info = 64, Debug = 128 };

    explicit LoggerService(const LogOptions& options, QObject* parent = nullptr);
    ~LoggerService() override;

    void Write(
        const QString& message, int level, const QString& category, const QString& source, int line) override;

private:
    std::shared_ptr<spdlog::logger> m_logger;
};

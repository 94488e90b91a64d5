#include "host/services/qt_message_route.h"

#include "host/services/logger_service.h"

#include <QReadLocker>
#include <QWriteLocker>

namespace {

// The message handler is a plain function and may run in any thread, also while the route is being destroyed.
QReadWriteLock s_lock;
LoggerService* s_logger = nullptr;

int LevelOf(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return LoggerService::Debug;
    case QtInfoMsg:
        return LoggerService::Info;
    case QtWarningMsg:
        return LoggerService::Warning;
    case QtCriticalMsg:
        return LoggerService::Error;
    case QtFatalMsg:
        return LoggerService::Critical;
    }
    return LoggerService::Debug;
}

void Handle(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    const QReadLocker locker(&s_lock);
    if (s_logger)
        s_logger->Write(message, LevelOf(type), QString::fromUtf8(context.category),
            QString::fromUtf8(context.file), context.line);
}

void SetLogger(LoggerService* logger)
{
    const QWriteLocker locker(&s_lock);
    s_logger = logger;
}

} // namespace

QtMessageRoute::QtMessageRoute(LoggerService* logger)
{
    SetLogger(logger);
    m_former = qInstallMessageHandler(Handle);
}

QtMessageRoute::~QtMessageRoute()
{
    qInstallMessageHandler(m_former);
    SetLogger(nullptr);
}

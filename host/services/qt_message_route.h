#pragma once

#include <QtGlobal>

class LoggerService;

/// Sends Qt's messages (qDebug, qWarning, …) to the log while it lives. Only one may exist at a time.
class QtMessageRoute
{
public:
    /// @param logger must outlive this object.
    explicit QtMessageRoute(LoggerService* logger);
    ~QtMessageRoute();

    Q_DISABLE_COPY(QtMessageRoute)

private:
    QtMessageHandler m_former;
};

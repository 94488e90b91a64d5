#pragma once

#include <QtGlobal>

class LoggerService;

/// Sends Qt's own messages (qDebug, qWarning, …) to the log for as long as it lives. One at a time.
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

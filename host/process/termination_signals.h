#pragma once

#include <QObject>

/// Turns SIGINT, SIGTERM and SIGHUP into a Qt signal. Only one object may exist at a time; without effect on Windows.
class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;

signals:
    void Received();
};

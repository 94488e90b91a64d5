#pragma once

#include <QObject>

/// Turns the signals that ask a process to end (interrupt, terminate, hang-up) into a Qt signal. One at a time.
class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;

signals:
    void Received();
};

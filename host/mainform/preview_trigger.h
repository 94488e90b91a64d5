#pragma once

#include <QObject>

class PreviewerService;

/// Opens a finished download that is double-clicked in the main form, which leaves that to the host.
class PreviewTrigger : public QObject
{
    Q_OBJECT

public:
    /// @param previewer must outlive this object.
    explicit PreviewTrigger(PreviewerService* previewer, QObject* parent = nullptr);

    /// To be called when the main form is shown; it may be another one than the last time.
    void Attach();

private:
    void Open(int row);

    PreviewerService* m_previewer;
};

#pragma once

#include <QObject>

/// Notices double clicks on finished downloads in the main form. The host, not the window, opens them.
class PreviewTrigger : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Watches the table of downloads. Call it whenever the main form is shown, because the form may be a new one.
    void Attach();

signals:
    /// @param file is the path of the finished download.
    void PreviewRequested(const QString& file);

private:
    void HandleDoubleClick(int row);
};

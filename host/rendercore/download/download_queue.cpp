#include "download_queue.h"

DownloadQueue::DownloadQueue(const QString& folder, QObject* parent)
    : QObject(parent)
{
    Q_UNUSED(folder)
}

DownloadQueue::~DownloadQueue() = default;

void DownloadQueue::SetAccess(const FarmAccess& access)
{
    Q_UNUSED(access)
}

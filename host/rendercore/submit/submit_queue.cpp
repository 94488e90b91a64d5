#include "submit_queue.h"

SubmitQueue::SubmitQueue(const QString& folder, QObject* parent)
    : QObject(parent)
{
    Q_UNUSED(folder)
}

SubmitQueue::~SubmitQueue() = default;

void SubmitQueue::SetAccess(const FarmAccess& access)
{
    Q_UNUSED(access)
}

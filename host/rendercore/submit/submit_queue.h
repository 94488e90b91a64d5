#pragma once

#include "farm_access.h"

#include <QObject>
#include <QStringList>
#include <QVariantList>

/// The scenes that are on their way to the farm, as the window sees them: on the GUI thread, for the account that is
/// signed in.
class SubmitQueue : public QObject
{
    Q_OBJECT

public:
    /// @param folder for the database and the packages; made when it is missing.
    explicit SubmitQueue(const QString& folder, QObject* parent = nullptr);
    ~SubmitQueue() override;

    /// Another owner has other tasks. Without a farm that can be reached the tasks wait where they are.
    void SetAccess(const FarmAccess& access);

    const QStringList& Ids() const { return m_ids; }

signals:
    /// A task has come or gone.
    void ListChanged();
    void UploadFailed(const QString& id, const QStringList& files);
    void TexturesLacking(const QString& id, const QStringList& files);

private:
    QStringList m_ids;
};

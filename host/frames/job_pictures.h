#pragma once

#include "host/farmclient/farm_access.h"
#include "host/farmclient/http_transport.h"
#include "host/frames/frames_answer.h"
#include "host/ui/picture_series.h"

#include <QHash>
#include <QTemporaryDir>
#include <QThreadPool>

class PictureFetch;

/// The finished pictures of a job: the files that have been downloaded, or copies that are fetched into a temporary folder
/// when they are wanted.
class JobPictures : public PictureSeries
{
    Q_OBJECT

public:
    /// @param folder is the folder of the job's downloads, below the account's folder.
    JobPictures(const FarmAccess& access, const QString& job, const QString& folder);
    ~JobPictures() override;

    void SetAccess(const FarmAccess& access);
    void SetFrames(const std::vector<Frame>& frames);

    QStringList Names() override { return m_names; }
    void Provide(const QString& name) override;

signals:
    /// Emitted in another thread when the disk has been searched. @param file is empty when the picture is not there.
    void Searched(const QString& name, const QString& file);

private:
    void HandleSearched(const QString& name, const QString& file);
    void Fetch(const QString& name);
    void HandleFetched(const QString& name, const QString& file, const QString& fault);
    QString CopyOf(const QString& name) const;

    FarmAccess m_access;
    QString m_job;
    QString m_folder;
    QStringList m_names;
    QHash<QString, qint64> m_sizes; // sizes of the pictures, by name
    HttpTransport m_transport;
    QTemporaryDir m_copies;
    QStringList m_kept; // names of the copies, the oldest first
    QHash<QString, PictureFetch*> m_fetches;
    QThreadPool m_searches; // last member, because its destructor waits for the searching thread
};

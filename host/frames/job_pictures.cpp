#include "host/frames/job_pictures.h"

#include "host/frames/picture_fetch.h"
#include "host/rendercore/download/download_paths.h"

#include <QFile>
#include <QFileInfo>

namespace {

constexpr qint64 MostBytes = 512LL * 1024 * 1024; // bytes of a picture that is fetched for the preview
constexpr qint64 MostKept = 256LL * 1024 * 1024;  // bytes of all copies except the latest

bool IsPicture(const QString& file, qint64 size)
{
    const QFileInfo info(file);
    return info.isFile() && info.size() == size;
}

} // namespace

JobPictures::JobPictures(const FarmAccess& access, const QString& job, const QString& folder)
    : PictureSeries(nullptr)
    , m_job(job)
    , m_folder(folder)
{
    m_searches.setMaxThreadCount(1);
    connect(this, &JobPictures::Searched, this, &JobPictures::HandleSearched, Qt::QueuedConnection);
    SetAccess(access);
}

JobPictures::~JobPictures()
{
    // Drops the searches that have not begun, so that the destructor waits only for the running one.
    m_searches.clear();
}

void JobPictures::SetAccess(const FarmAccess& access)
{
    // Setting the URL ends the connections of fetches that are under way.
    if (access.apiRoot != m_access.apiRoot)
        m_transport.SetBaseUrl(access.apiRoot);
    m_access = access;
    m_transport.SetProxyLogin(access.proxy);
}

void JobPictures::SetFrames(const std::vector<Frame>& frames)
{
    m_names.clear();
    m_sizes.clear();
    for (const Frame& frame : frames) {
        if (frame.file.isEmpty())
            continue;
        m_names.append(frame.file);
        m_sizes.insert(frame.file, frame.size);
    }
}

QString JobPictures::CopyOf(const QString& name) const
{
    return m_copies.filePath(DownloadPaths::FileName(name, 1));
}

/// The disk is searched in another thread, because the download folder may be on a slow network.
void JobPictures::Provide(const QString& name)
{
    if (m_fetches.contains(name))
        return;
    const QStringList places {DownloadPaths::Destination(m_access.folder, m_folder, name), CopyOf(name)};
    m_searches.start([this, name, places, size = m_sizes.value(name)] {
        QString found;
        for (const QString& place : places) {
            if (found.isEmpty() && IsPicture(place, size))
                found = place;
        }
        emit Searched(name, found);
    });
}

void JobPictures::HandleSearched(const QString& name, const QString& file)
{
    if (!file.isEmpty())
        emit Ready(name, file);
    else if (!m_sizes.contains(name))
        emit Failed(name, tr("The farm no longer has this picture."));
    else if (m_sizes.value(name) > MostBytes)
        emit Failed(name, tr("The picture is too large to be shown before it is downloaded."));
    else if (!m_fetches.contains(name))
        Fetch(name);
}

void JobPictures::Fetch(const QString& name)
{
    HttpRequest request;
    request.verb = "GET";
    request.target = "/jobs/" + QUrl::toPercentEncoding(m_job) + "/files/" + QUrl::toPercentEncoding(name);
    request.token = m_access.token.toLatin1();
    request.headers = {{"Accept", "*/*"}};
    auto* fetch = new PictureFetch(m_transport.Begin(request), CopyOf(name), m_sizes.value(name), this);
    m_fetches.insert(name, fetch);
    connect(fetch, &PictureFetch::Done, this,
        [this, name](const QString& fault) { HandleFetched(name, CopyOf(name), fault); });
}

void JobPictures::HandleFetched(const QString& name, const QString& file, const QString& fault)
{
    m_fetches.remove(name);
    if (!fault.isEmpty()) {
        emit Failed(name, fault);
        return;
    }
    m_kept.removeOne(name);
    qint64 bytes = 0;
    for (const QString& kept : qAsConst(m_kept))
        bytes += QFileInfo(CopyOf(kept)).size();
    while (bytes > MostKept && !m_kept.isEmpty()) {
        const QString oldest = CopyOf(m_kept.takeFirst());
        bytes -= QFileInfo(oldest).size();
        QFile::remove(oldest);
    }
    m_kept.append(name);
    emit Ready(name, file);
}

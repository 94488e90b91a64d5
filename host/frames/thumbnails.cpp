#include "host/frames/thumbnails.h"

#include "host/frames/job_pictures.h"
#include "host/ui/picture_reader.h"

namespace {

constexpr int MostAtOnce = 3;
constexpr qint64 MostBytes = 16LL * 1024 * 1024; // bytes of a picture that is fetched for its thumbnail

} // namespace

Thumbnails::Thumbnails(QObject* parent)
    : QObject(parent)
{
    m_reader.setMaxThreadCount(1);
    connect(this, &Thumbnails::Read, this, &Thumbnails::HandleRead, Qt::QueuedConnection);
}

void Thumbnails::SetPictures(const std::shared_ptr<JobPictures>& pictures)
{
    if (m_pictures)
        m_pictures->disconnect(this);
    m_pictures = pictures;
    ++m_generation;
    m_reader.clear();
    m_wanted.clear();
    m_begun.clear();
    m_failed.clear();
    if (!pictures)
        return;
    connect(pictures.get(), &JobPictures::Ready, this, &Thumbnails::HandleFile);
    connect(pictures.get(), &JobPictures::Failed, this, &Thumbnails::HandleFailure);
}

void Thumbnails::Want(const std::vector<Frame>& frames, const QSize& size)
{
    m_size = size;
    m_wanted.clear();
    for (auto frame = frames.rbegin(); frame != frames.rend(); ++frame) {
        if (IsDue(*frame))
            m_wanted.push_back(*frame);
    }
    Proceed();
}

bool Thumbnails::IsDue(const Frame& frame) const
{
    if (frame.file.isEmpty() || frame.size > MostBytes || m_begun.contains(frame.file))
        return false;
    const auto failure = m_failed.constFind(frame.file);
    return failure == m_failed.constEnd() || failure->end.hasExpired();
}

void Thumbnails::Proceed()
{
    while (m_pictures && !m_wanted.empty() && m_begun.size() < MostAtOnce) {
        const Frame frame = m_wanted.back();
        m_wanted.pop_back();
        m_begun.insert(frame.file, frame);
        m_pictures->Provide(frame.file);
    }
}

void Thumbnails::HandleFile(const QString& name, const QString& file)
{
    // The preview and the thumbnails share the pictures.
    if (!m_begun.contains(name))
        return;
    m_reader.start([this, generation = m_generation, name, file, size = m_size] {
        const QImage picture = PictureReader::Read(file).image;
        emit Read(generation, name,
            picture.isNull() ? picture : picture.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    });
}

void Thumbnails::HandleRead(int generation, const QString& name, const QImage& thumbnail)
{
    if (generation != m_generation || !m_begun.contains(name))
        return;
    if (thumbnail.isNull()) {
        HandleFailure(name);
        return;
    }
    const int number = m_begun.take(name).number;
    m_failed.remove(name);
    emit Made(number, thumbnail);
    Proceed();
}

/// A farm that could not be reached may be back soon, but a damaged picture must not be read over and over.
void Thumbnails::HandleFailure(const QString& name)
{
    if (m_begun.remove(name) == 0)
        return;
    Failure& failure = m_failed[name];
    failure.end = QDeadlineTimer(failure.pauses.Fail());
    Proceed();
}

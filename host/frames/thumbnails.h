#pragma once

#include "host/base/backoff.h"
#include "host/frames/frames_answer.h"

#include <QDeadlineTimer>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QSize>
#include <QThreadPool>

#include <memory>

class JobPictures;

/// Makes small pictures of the frames in view, a few at a time.
class Thumbnails : public QObject
{
    Q_OBJECT

public:
    explicit Thumbnails(QObject* parent = nullptr);

    /// Drops everything and begins with the pictures of another job.
    void SetPictures(const std::shared_ptr<JobPictures>& pictures);

    /// Replaces the frames wanted earlier. @param size limits the thumbnails, in pixels.
    void Want(const std::vector<Frame>& frames, const QSize& size);

signals:
    void Made(int number, const QImage& thumbnail);
    /// Emitted in the reading thread; a null image when the picture cannot be read.
    void Read(int generation, const QString& name, const QImage& thumbnail);

private:
    /// A picture that could not be fetched or read, and the time of the next attempt.
    struct Failure
    {
        Backoff pauses {FirstPause, LongestPause};
        QDeadlineTimer end = {};
    };

    static constexpr int FirstPause = 5000;     // ms
    static constexpr int LongestPause = 300000; // ms

    void Proceed();
    void HandleFile(const QString& name, const QString& file);
    void HandleRead(int generation, const QString& name, const QImage& thumbnail);
    bool IsDue(const Frame& frame) const;
    void HandleFailure(const QString& name);

    std::shared_ptr<JobPictures> m_pictures;
    std::vector<Frame> m_wanted;      // not begun yet; taken from the end
    QHash<QString, Frame> m_begun;    // by the picture's name
    QHash<QString, Failure> m_failed; // by the picture's name
    QSize m_size;
    int m_generation = 0; // changes with the job; results for earlier ones are dropped
    QThreadPool m_reader; // last member, because its destructor waits for the reading thread
};

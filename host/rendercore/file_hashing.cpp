#include "host/rendercore/file_hashing.h"

namespace {

constexpr int BlockBytes = 1024 * 1024;

} // namespace

FileHashing::FileHashing(QFile* file)
    : m_file(file)
    , m_thread(QThread::create([this] { Run(); }))
{
    m_thread->setObjectName(QStringLiteral("file checksum"));
    connect(m_thread.get(), &QThread::finished, this, &FileHashing::Finished);
    m_thread->start(QThread::LowPriority);
}

FileHashing::~FileHashing()
{
    m_isAbandoned = true;
    m_thread->wait();
}

void FileHashing::Run()
{
    QByteArray block(BlockBytes, Qt::Uninitialized);
    while (!m_isAbandoned) {
        const qint64 got = m_file->read(block.data(), block.size());
        if (got <= 0) {
            m_isComplete = got == 0;
            return;
        }
        m_hash.Add(block.constData(), got);
        m_bytes += got;
    }
}

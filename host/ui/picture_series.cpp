#include "host/ui/picture_series.h"

#include "host/ui/picture_reader.h"

#include <QDir>
#include <QFileInfo>

#include <utility>

namespace {

constexpr int ListingInterval = 2000; // ms

} // namespace

FolderPictures::FolderPictures(const QString& file)
    : PictureSeries(nullptr)
    , m_file(QFileInfo(file).absoluteFilePath())
    , m_names(QFileInfo(file).fileName())
{
    connect(this, &FolderPictures::Listed, this, &FolderPictures::HandleListed, Qt::QueuedConnection);
}

FolderPictures::~FolderPictures() = default;

QStringList FolderPictures::Names()
{
    if (!m_isListing && (!m_sinceListing.isValid() || m_sinceListing.hasExpired(ListingInterval))) {
        m_isListing = true;
        m_listings.start([this, file = m_file] { emit Listed(PictureReader::InSameFolder(file)); });
    }
    return m_names;
}

void FolderPictures::HandleListed(const QStringList& names)
{
    m_isListing = false;
    m_sinceListing.start();
    if (std::exchange(m_names, names) != names)
        emit NamesChanged();
}

void FolderPictures::Provide(const QString& name)
{
    emit Ready(name, QFileInfo(m_file).dir().filePath(name));
}

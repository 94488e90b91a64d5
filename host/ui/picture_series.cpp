#include "host/ui/picture_series.h"

#include "host/ui/picture_file.h"

#include <QDir>
#include <QFileInfo>

FolderPictures::FolderPictures(const QString& file)
    : PictureSeries(nullptr)
    , m_file(QFileInfo(file).absoluteFilePath())
{
}

/// The folder is listed each time, since downloads may have added some.
QStringList FolderPictures::Names()
{
    return PictureFile::InSameFolder(m_file);
}

void FolderPictures::Provide(const QString& name)
{
    emit Ready(name, QFileInfo(m_file).dir().filePath(name));
}

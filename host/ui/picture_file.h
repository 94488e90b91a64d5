#pragma once

#include <QImage>
#include <QMetaType>
#include <QString>
#include <QStringList>

/// A picture from a file, or why there is none.
struct PictureFile
{
    enum Trouble { None, Missing, NoPicture, TooLarge, Broken };

    QImage image;
    Trouble trouble = None;

    /// Reads a file that anybody may have made: what it is shows in its content, and how large it says it is is looked
    /// at before it is decoded. At most 16384 pixels a side and 512 MiB. May be called in any thread.
    static PictureFile Read(const QString& file);

    /// The folder's files whose names are those of pictures, and the file itself; paths in the order of their names.
    static QStringList Siblings(const QString& file);
};

Q_DECLARE_METATYPE(PictureFile)
